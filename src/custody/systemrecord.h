#pragma once

#include <cstdint>
#include <string_view>

#include "base/result.h"
#include "crypto/secret.h"

namespace bmr::store {
struct Session;
}

namespace bmr::custody {

/// Adds or updates the system record (1,3); what its reserved fields hold is kept.
[[nodiscard]] int WriteSystemRecord(store::Session& session);

/// The version in the system record, 0 when the row is missing or does not decode.
int ReadDatabaseVersion(store::Session& session);

/// The same of a plain payload; 0 for one that is no system record's.
int VersionIn(std::string_view payload);

/// Adds the system record (1,3) where there is none; one that stands is left alone. 0 or the engine's number.
[[nodiscard]] int WriteMissingSystemRecord(store::Session& session);

/// The value of a memo field of the system record, empty when the field is. An error when the record does not
/// decode, and when the field holds something of another kind.
Result<Secret> ReadSystemMemo(store::Session& session, std::uint8_t number);

/// Sets that field and keeps every other one byte by byte. 0, the engine's number, or
/// `EngineNumber::Failed` with nothing written when the record does not decode or the value is too long.
[[nodiscard]] int WriteSystemMemo(store::Session& session, std::uint8_t number, std::string_view value);

}  // namespace bmr::custody
