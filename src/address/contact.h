#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "address/record.h"
#include "base/bytes.h"
#include "base/random.h"

/// The nine numbers of a record, and which of them the list shows.
namespace bmr::address {

/// What a `ComLabel` says of its value. Stored as decimal digits.
enum class ComKind : std::uint8_t {
    None = 0,  ///< no label, or one that is no kind
    Work = 1,
    Home = 2,
    Fax = 3,
    Other = 4,
    Email = 5,
    Main = 6,
    Pager = 7,
    Mobile = 8,
    Website = 9,
};

struct ComKindFacts {
    ComKind kind = ComKind::None;
    std::string_view text;    ///< in the editor
    std::string_view suffix;  ///< of a contact text
};

/// The nine kinds in the order of the editor's boxes.
std::span<const ComKindFacts> ComKinds();

/// The kind of a label; `None` for anything but 1 to 9.
ComKind KindOfLabel(std::string_view label);
/// The label of a kind; empty for `None`.
std::string_view LabelOf(ComKind kind);

/// The kind of a slot (0 to 8) on a new record.
ComKind DefaultKind(std::size_t slot);

/// What a click on a value does.
enum class ComAction : std::uint8_t { Dial, Mail, Web, None };
ComAction ActionOf(ComKind kind);
/// The same where the kind says nothing of it: by the value.
ComAction ActionOf(ComKind kind, std::string_view value);

/// The slot that the list shows: the one of `ComDisplay` if it has a value, else the first that has (0 to 8).
std::optional<std::size_t> DisplayedSlot(const Record& record);

/// Brings `ComDisplay` to a slot that has a value: its own if it has one, else the first, else none. Empties
/// the labels of the slots that have none. Done by every store.
void MakeContactGood(Record& record);

/// What the list shows beside the name: the chosen value and the suffix of its kind.
WipedText AddressContactText(const Record& record);

/// The same as it stands in fT2: in letters of code page 1252, those that the file holds while nobody changed
/// the value, and with the mark of a companion.
Bytes ContactColumn(const Record& record, RandomSource& random);

/// The same of a plain payload, as fT2 must hold it; nothing is decoded but the fields that tell it.
Bytes ContactOfPayload(std::string_view payload);

}  // namespace bmr::address
