#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "address/record.h"
#include "base/errors.h"
#include "store/severalrows.h"

/// The records of the address book in the file: stored, fetched, listed and deleted.
namespace bmr::address {

/// A record must be filed under something: the number of the message that says so.
inline constexpr int kNameMissing = -15;

/// A new record in a category, with the kinds that its nine numbers have at first; the fixed entries of a
/// combo (all, edit) count as unfiled.
Record ClearRecord(std::int32_t category);

/// The record of a row, or as much of it as decodes; without a flag it counts as private.
Record ReadRecord(store::Session& session, const engine::Recordset& row);

/// The record of a plain payload and a plain fT1.
Record DecodeAddressRecord(std::string_view payload, std::string_view column);

/// The record of a key; nothing when it is gone, belongs to another section, or could not be looked for,
/// which `error` tells apart (the engine's number, else 0).
std::optional<Record> FetchRecord(store::Session& session, std::int32_t key, int* error = nullptr);

/// `SaveAddressRecord`: makes the contact good, sets key and user, and stores. Name, contact and place in the
/// alphabet are written only when the record is new or one of the two texts has changed. One transaction; 0,
/// `UpdateImpossible` when the key belongs to another section (nothing written), or the engine's number.
[[nodiscard]] int WriteRecord(store::Session& session, Record& record);

/// Stores many new records in one transaction and one step, their places in the alphabet worked out once. For
/// imports. Sets the keys.
[[nodiscard]] int AddRecords(store::Session& session, std::vector<Record>& records);

/// The conditions of a list beside the section: -1, 9999 and 65535 mean all categories.
std::string ClausesOf(store::Session& session, std::int32_t category);

/// The keys of the list in alphabetical order. Private records are left out while `ShowPrivate` is false, by
/// their markers alone; rows without a name are left out by opening the names of the bucket in which those
/// stand, and no others.
Result<std::vector<std::int32_t>> ListRecords(store::Session& session, std::int32_t category);

/// What a record is filed as.
WipedText RecordName(store::Session& session, std::int32_t fPK);

/// Overwrites every text.
void WipeRecord(Record& record);

inline constexpr store::RecordVerbs<Record> kRecordVerbs{kRecords.section, FetchRecord, WriteRecord,
                                                         WipeRecord};

/// The text of the box that confirms a delete; `name` is what the list shows.
WipedText DeleteText(std::string_view name);

/// How many private records of a category, or of all, the list does not show now.
Result<std::size_t> CountHidden(store::Session& session, std::int32_t category);

/// The text of the first box before `DeleteRecords`: Msg(80), or Msg(102) of one category, and how many of
/// them nobody sees. Msg(81) follows it.
std::string DeleteAllText(std::int32_t category, std::size_t hidden);

/// All records, or those of one category, hidden and nameless ones too: 0 or the engine's number.
[[nodiscard]] int DeleteRecords(store::Session& session, std::int32_t category);

}  // namespace bmr::address
