#pragma once

#include <array>
#include <cstdint>
#include <list>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>
#include <variant>

#include "base/bytes.h"
#include "base/random.h"
#include "base/serialdate.h"
#include "base/wiped.h"
#include "store/record_put.h"

namespace bmr::store {

/// What a field means to those who read every section's records without knowing them.
enum class Kind : std::uint8_t {
    Plain,       ///< a number, a date, a flag, or a text that is bytes
    Words,       ///< what a person typed, in any script
    Name,        ///< words that stand in fT1 too, where lists find them
    ColumnName,  ///< the same, but in fT1 alone: the payload has at most their companion
    Stamp,       ///< written by the program at each store
    Private,     ///< the flag that hides a record; what cannot be read hides it too
    Minutes,     ///< minutes of the calendar
    Hex,         ///< bytes that are no text
    Secret,      ///< never shown: it would open the database, or show what is hidden
};

/// One field of a section's payload. Numbers and tags are stored: never give them another meaning.
struct FieldRule {
    std::uint8_t number = 0;
    FieldTag tag = FieldTag::Text;
    std::string_view name;
    Kind kind = Kind::Plain;

    constexpr bool IsColumn() const { return kind == Kind::Name || kind == Kind::ColumnName; }
    constexpr bool IsWords() const { return kind == Kind::Words || IsColumn(); }
    constexpr bool IsText() const { return tag == FieldTag::Text || tag == FieldTag::Memo; }
};

/// The field that holds the whole text of a word field `number` which code page 1252 could not: see
/// store/words.
constexpr std::uint8_t CompanionOf(std::uint8_t number) {
    return static_cast<std::uint8_t>(128 + number);
}

/// A member of a record as the codec sees it. Texts of word fields are UTF-8, other texts bytes. A number
/// that may be missing is left out like an empty text.
using Member =
    std::variant<std::string*, bool*, std::uint8_t*, std::int32_t*, DateValue*, std::optional<std::uint8_t>*>;

/// A field and where its value stands in the record.
template <class Record>
struct Field {
    FieldRule rule;
    Member (*place)(Record&);
    bool required = false;  ///< a payload without it was not read whole
};

/// The place of a member: `At<&Memo::subject>`, `At<&Record::n, 2>`.
template <auto Pointer, std::size_t... Index, class Record, class Type>
constexpr auto PlaceOf(Type Record::*) {
    return +[](Record& record) -> Member {
        if constexpr (sizeof...(Index) == 0)
            return &(record.*Pointer);
        else
            return &((record.*Pointer)[Index], ...);
    };
}
template <auto Pointer, std::size_t... Index>
inline constexpr auto At = PlaceOf<Pointer, Index...>(Pointer);

/// The rules alone, for those who serve all sections. Does not compile for a table that cannot be: numbers
/// that do not rise or belong to companions, words that are no text or that no `FieldSet` reaches.
template <class Record, std::size_t Count>
consteval std::array<FieldRule, Count> RulesOf(const std::array<Field<Record>, Count>& table) {
    std::array<FieldRule, Count> rules;
    for (std::size_t i = 0; i < Count; ++i) {
        const FieldRule& rule = table[i].rule;
        if (i > 0 && rule.number <= table[i - 1].rule.number) throw "the numbers of a table rise";
        if (rule.number >= 128) throw "128 and above belong to companions";
        if (rule.IsWords() && (rule.number >= 64 || !rule.IsText())) throw "words are texts below 64";
        rules[i] = rule;
    }
    return rules;
}

/// What a payload held beyond the members of its record, to be put back when the record is stored: fields
/// that this version does not know, and words as they stand in the file, so that a text nobody changed is
/// never transliterated anew.
struct CarriedFields {
    struct Unknown {
        std::uint8_t number = 0;
        WipedText field;  ///< whole: number, tag and value
    };
    struct Kept {
        std::uint8_t number = 0;
        WipedText told;       ///< the field's own text
        WipedText companion;  ///< the companion's value
    };
    std::list<Unknown> unknown;
    std::list<Kept> words;

    void Clear() {
        unknown.clear();
        words.clear();
    }
};

/// Whether empty texts are stored, or left out of the payload.
enum class Blanks : bool { Store, LeaveOut };

/// Word fields of a record that hold secrets, by bits of their numbers: their letters are never replaced by
/// others that look alike.
using FieldSet = std::uint64_t;
constexpr FieldSet SetOf(std::uint8_t number) {
    return FieldSet{1} << number;
}

/// A record as it goes into the file, not enciphered yet.
struct EncodedRecord {
    WipedText payload;
    WipedText column;  ///< the text of fT1, with the mark of a companion
};

/// One field of one record: what `EncodeFields` and `DecodeFields` work on.
struct FieldSlot {
    FieldRule rule;
    Member member;
    bool required = false;
};

template <class Record, std::size_t Count>
std::array<FieldSlot, Count> SlotsOf(Record& record, const std::array<Field<Record>, Count>& table) {
    std::array<FieldSlot, Count> members;
    for (std::size_t i = 0; i < Count; ++i)
        members[i] = {table[i].rule, table[i].place(record), table[i].required};
    return members;
}

EncodedRecord EncodeSlots(std::span<const FieldSlot> members, const CarriedFields& carried, Blanks blanks,
                          FieldSet masked, RandomSource& random);
bool DecodeSlots(std::span<const FieldSlot> members, CarriedFields& carried, std::string_view payload,
                 std::string_view column);

/// The payload of a record, its fields in the order of their numbers, and the text of its column. `Record`
/// has a member `carried`.
template <class Record, std::size_t Count>
EncodedRecord EncodeFields(const Record& record, const std::array<Field<Record>, Count>& table, Blanks blanks,
                           RandomSource& random, FieldSet masked = 0) {
    // Places are told for records that can be changed; nothing changes this one.
    const auto members = SlotsOf(const_cast<Record&>(record), table);
    return EncodeSlots(members, record.carried, blanks, masked, random);
}

/// The text of the record's column alone.
template <class Record, std::size_t Count>
Bytes EncodeColumn(const Record& record, const std::array<Field<Record>, Count>& table,
                   RandomSource& random) {
    for (const FieldSlot& slot : SlotsOf(const_cast<Record&>(record), table))
        if (slot.rule.IsColumn())
            return std::move(EncodeSlots({&slot, 1}, record.carried, Blanks::Store, 0, random).column);
    return {};
}

/// Reads a plain payload into a record; fields that it does not hold are empty, the private flag set. False
/// when it did not decode whole or lacks a required field: a store would then end what is left of it.
/// `column` is the deciphered fT1, needed only where a name stands in the column alone.
template <class Record, std::size_t Count>
bool DecodeFields(Record& record, std::string_view payload, const std::array<Field<Record>, Count>& table,
                  std::string_view column = {}) {
    return DecodeSlots(SlotsOf(record, table), record.carried, payload, column);
}

/// The words of one field of a plain payload; `column` stands for a field that the payload lacks.
WipedText ReadWords(std::string_view payload, std::uint8_t number, std::string_view column = {});

/// Empties every text of a record and what it carries, before the record itself goes.
void WipeSlots(std::span<const FieldSlot> members, CarriedFields& carried);
template <class Record, std::size_t Count>
void WipeFields(Record& record, const std::array<Field<Record>, Count>& table) {
    WipeSlots(SlotsOf(record, table), record.carried);
}

}  // namespace bmr::store
