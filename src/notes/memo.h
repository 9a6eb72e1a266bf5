#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/serialdate.h"
#include "store/namedsection.h"
#include "store/severalrows.h"

/// The memo pad without a screen: its record, its list and its rules.
namespace bmr::notes {

/// One memo.
struct Memo {
    std::int32_t key = store::kNewRecord;
    std::uint8_t userNumber = 0;
    bool isPrivate = false;
    DateValue dateCreated;  ///< whole days, set once
    DateValue dateLastModified;
    WipedText subject;
    WipedText body;
    std::int32_t category = 0;
    bool readable = true;  ///< false when the payload did not decode whole: a store would end the rest
    store::CarriedFields carried;
};

inline constexpr std::array<store::Field<Memo>, 6> kMemoFields{{
    {{0, store::FieldTag::Byte, "UserNumber", store::Kind::Stamp}, store::At<&Memo::userNumber>},
    {{1, store::FieldTag::Boolean, "Private", store::Kind::Private}, store::At<&Memo::isPrivate>, true},
    {{2, store::FieldTag::Date, "DateCreated"}, store::At<&Memo::dateCreated>},
    {{3, store::FieldTag::Date, "DateLastModified", store::Kind::Stamp}, store::At<&Memo::dateLastModified>},
    {{4, store::FieldTag::Text, "Subject", store::Kind::Name}, store::At<&Memo::subject>},
    {{5, store::FieldTag::Memo, "Memo", store::Kind::Words}, store::At<&Memo::body>},
}};

/// How memos stand in the file: in the order of their subjects, under categories.
inline constexpr store::NamedSection<Memo, kMemoFields.size()> kMemos{
    {.section = store::Section::Memo, .nameField = 4}, kMemoFields, &Memo::category};

/// A new memo in a category; the fixed entries of a combo (all, edit) count as unfiled.
Memo ClearRecord(store::Session& session, std::int32_t category);

/// The memo of a row, or as much of it as decodes; without a flag it counts as private.
Memo ReadRecord(store::Session& session, const engine::Recordset& row);

/// The memo of a key; nothing when it is gone, belongs to another section, or could not be looked for, which
/// `error` tells apart (the engine's number, else 0).
std::optional<Memo> FetchRecord(store::Session& session, std::int32_t key, int* error = nullptr);

/// Stores the memo and sets its key, its user and the day of the change. The subject's own columns and its
/// place in the alphabet are written only when the memo is new or its subject has changed. One transaction;
/// 0, `UpdateImpossible` when the key belongs to another section (nothing written), or the engine's number.
[[nodiscard]] int WriteRecord(store::Session& session, Memo& memo);

/// Stores many new memos in one transaction, their places in the alphabet worked out once. For imports, which
/// bring the days of their changes; 0 becomes today. Sets the keys.
[[nodiscard]] int AddRecords(store::Session& session, std::vector<Memo>& memos);

/// The keys of the list in alphabetical order, without private memos while `ShowPrivate` is false. With
/// `search` only memos whose subject holds it, in any case; that deciphers every subject.
Result<std::vector<std::int32_t>> ListRecords(store::Session& session, std::int32_t category,
                                              std::string_view search = {});

/// The subject of a memo.
WipedText RecordName(store::Session& session, std::int32_t fPK);

/// Overwrites every text.
void WipeRecord(Memo& memo);

inline constexpr store::RecordVerbs<Memo> kMemoVerbs{kMemos.section, FetchRecord, WriteRecord, WipeRecord};

/// The text of the box that confirms a delete.
WipedText DeleteText(std::string_view subject);

/// All memos, or those of one category: 0 or the engine's number.
[[nodiscard]] int DeleteRecords(store::Session& session, std::int32_t category);

}  // namespace bmr::notes
