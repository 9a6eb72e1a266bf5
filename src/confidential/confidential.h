#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/bytes.h"
#include "base/serialdate.h"
#include "store/section_store.h"
#include "store/session.h"

namespace bmr::confidential {

/// One confidential record. Texts are bytes of code page 1252 and may be secrets: `WipeRecord` when done.
struct Record {
    std::int32_t key = store::kNewRecord;
    std::int32_t kind = 0;  ///< 1 to 16, written when the record is made and never again
    std::array<Bytes, 5> n;
    Bytes notes;
    DateValue dateLastModified;  ///< a whole day
    bool isPrivate = false;
    std::uint8_t userNumber = 0;
    bool readable = true;  ///< false when the payload did not decode whole: a store would end the rest
};

/// Stored in every record. Never renumber.
enum class RecordField : std::uint8_t { n0, n1, n2, n3, n4, notes, DateLastModified, Private, UserName };

/// The payload's plain bytes; empty texts are left out altogether. Wipe them.
Bytes EncodeConfidentialRecord(store::Session& session, const Record& record);

/// Reads a field cipher text. Fields that it does not hold are empty; an unreadable one is private.
void DecodeConfidentialRecord(store::Session& session, std::string_view fEtx, Record& record);

/// The record of a key; nothing when it is gone or belongs to another section.
std::optional<Record> FetchRecord(store::Session& session, std::int32_t key);

/// `SaveRecord`: sets key, user and the day of the change, and stores. Place in the alphabet and its keys are
/// written only when the name (n0) differs from the stored one; a new record counts as having the empty name,
/// so one without a name gets no place. One transaction; 0, -16 (another section's row, nothing written) or
/// the engine's number.
[[nodiscard]] int SaveRecord(store::Session& session, Record& record);

/// Stores many new records in one transaction, their places in the alphabet worked out once. A day of change
/// that is given stays, 0 becomes today. Sets the keys.
[[nodiscard]] int AddRecords(store::Session& session, std::vector<Record>& records);

/// The list's statement of a kind.
std::string ConfidentialListSql(std::int32_t kind);

/// The keys of a kind in alphabetical order, private ones left out while `ShowPrivate` is false.
/// With `search` only records whose name holds it, without regard to case; that deciphers every name.
Result<std::vector<std::int32_t>> ListRecords(store::Session& session, std::int32_t kind,
                                              std::string_view search = {});

/// The name (n0) of a record: one field deciphered.
Bytes RecordName(store::Session& session, std::int32_t fPK);

/// The text of the box that confirms a delete.
std::string DeleteRecordText(std::string_view name);

/// Overwrites every text.
void WipeRecord(Record& record);

}  // namespace bmr::confidential
