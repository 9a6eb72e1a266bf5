#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/serialdate.h"
#include "store/namedsection.h"
#include "store/severalrows.h"

/// The confidential section without a screen: its record, its list and its rules.
namespace bmr::confidential {

/// One confidential record. Texts may be secrets: `WipeRecord` when done.
struct Record {
    std::int32_t key = store::kNewRecord;
    std::int32_t kind = 0;  ///< 1 to 16, written when the record is made and never again
    std::array<WipedText, 5> n;
    WipedText notes;
    DateValue dateLastModified;  ///< a whole day
    bool isPrivate = false;
    std::uint8_t userNumber = 0;
    bool readable = true;  ///< false when the payload did not decode whole: a store would end the rest
    store::CarriedFields carried;
};

/// What the five mean is told by the record's kind.
inline constexpr std::array<store::Field<Record>, 9> ConfidentialFields{{
    {{0, store::FieldTag::Text, "n0", store::Kind::Name}, store::At<&Record::n, 0>},
    {{1, store::FieldTag::Text, "n1", store::Kind::Words}, store::At<&Record::n, 1>},
    {{2, store::FieldTag::Text, "n2", store::Kind::Words}, store::At<&Record::n, 2>},
    {{3, store::FieldTag::Text, "n3", store::Kind::Words}, store::At<&Record::n, 3>},
    {{4, store::FieldTag::Text, "n4", store::Kind::Words}, store::At<&Record::n, 4>},
    {{5, store::FieldTag::Memo, "notes", store::Kind::Words}, store::At<&Record::notes>},
    {{6, store::FieldTag::Date, "DateLastModified", store::Kind::Stamp},
     store::At<&Record::dateLastModified>},
    {{7, store::FieldTag::Boolean, "Private", store::Kind::Private}, store::At<&Record::isPrivate>, true},
    {{8, store::FieldTag::Byte, "UserName", store::Kind::Stamp}, store::At<&Record::userNumber>},
}};

/// The fields of a record that its kind masks.
store::FieldSet MaskedFields(const Record& record);

/// How the records stand in the file: in the order of their names, under kinds that never change.
inline constexpr store::NamedSection<Record, ConfidentialFields.size()> kRecords{
    {.section = store::Section::Confidential,
     .nameField = 0,
     .blanks = store::Blanks::LeaveOut,
     .placeNameless = false,
     .fixedGroup = true,
     .alwaysWriteName = true},
    ConfidentialFields,
    &Record::kind,
    MaskedFields};

/// The record of a key; nothing when it is gone, belongs to another section, or could not be looked for,
/// which `error` tells apart (the engine's number, else 0).
std::optional<Record> FetchRecord(store::Session& session, std::int32_t key, int* error = nullptr);

/// `SaveRecord`: sets key, user and the day of the change, and stores. Place in the alphabet and its keys are
/// written only when the name (n0) differs from the stored one; a new record counts as having the empty name,
/// so one without a name gets no place. One transaction; 0, `UpdateImpossible` (another section's row,
/// nothing written) or the engine's number.
[[nodiscard]] int WriteRecord(store::Session& session, Record& record);

/// Stores many new records in one transaction, their places in the alphabet worked out once. A day of change
/// that is given stays, 0 becomes today. Sets the keys. `InputError` with nothing stored when a record fills
/// the fifth field of a kind that has none, where nobody would see it.
[[nodiscard]] int AddRecords(store::Session& session, std::vector<Record>& records);

/// The list's statement of a kind.
std::string ConfidentialListSql(std::int32_t kind);

/// The keys of a kind in alphabetical order, private ones left out while `ShowPrivate` is false.
/// With `search` only records whose name holds it, in any case; that deciphers every name.
Result<std::vector<std::int32_t>> ListRecords(store::Session& session, std::int32_t kind,
                                              std::string_view search = {});

/// The records of one kind, in alphabetical order.
struct KindRecords {
    std::int32_t kind = 0;
    std::vector<std::int32_t> keys;
};

/// The records of all kinds whose name holds `search`, by kinds in the order of the screen; a kind without
/// any is left out.
Result<std::vector<KindRecords>> FindRecords(store::Session& session, std::string_view search);

/// The name (n0) of a record.
WipedText RecordName(store::Session& session, std::int32_t fPK);

/// The text of the box that confirms a delete.
WipedText DeleteText(std::string_view name);

/// Overwrites every text.
void WipeRecord(Record& record);

inline constexpr store::RecordVerbs<Record> kRecordVerbs{kRecords.section, FetchRecord, WriteRecord,
                                                         WipeRecord};

}  // namespace bmr::confidential
