#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "address/record.h"
#include "base/ports.h"
#include "base/wiped.h"
#include "store/session.h"

/// Two records of one person become one.
namespace bmr::address {

/// A field in which two records say different things: its number, that of its first field for an address.
struct FieldPair {
    std::uint8_t number = 0;
    WipedText left;
    WipedText right;
};

/// What a person has to choose between; numbers and notes are kept of both and are never here.
std::vector<FieldPair> DifferentFields(const Record& left, const Record& right, const LocaleFacts& locale);

/// What becomes of a value that is not taken.
enum class Losers : std::uint8_t { Drop, ToNotes };

/// `left` with what it lacks, and with what `right` says in the fields of `fromRight`. Numbers are those of
/// both, each once; those beyond nine and a second note go to the notes. Private if either is.
Record MergeRecords(const Record& left, const Record& right, std::span<const std::uint8_t> fromRight,
                    const LocaleFacts& locale, Losers losers = Losers::Drop);

/// Stores what came of it and deletes the other, in one transaction and one step. 0 or an error number.
[[nodiscard]] int StoreMerged(store::Session& session, Record& merged, std::int32_t gone);

}  // namespace bmr::address
