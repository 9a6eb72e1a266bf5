#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "crypto/secret.h"
#include "store/session.h"

namespace bmr::store {

/// The pattern that all sections share, without a screen: one record is stored, fetched or deleted by its
/// key.

/// The closing words of most statements; they mean nothing to the engine.
inline constexpr const char* kOwnerAccess = " WITH OWNERACCESS OPTION;";

/// Key of a record that is not stored yet.
inline constexpr std::int32_t kNewRecord = -1;

struct StoreOutcome {
    int error = 0;  ///< 0, `UpdateImpossible` (another section's row; nothing written) or the engine's number
    std::int32_t fPK = kNewRecord;
    bool added = false;
};

/// `writeRecord`: finds the row of `key`, adds one when there is none, lets `fill` set the columns (fEtx,
/// fT1, ...) and keeps fSec and the change marks itself (AE Or 1 on an add, Or 2 on an edit). `fill` gets the
/// row in AddNew or Edit and tells 0 or an error number, which stops the store; it may write other rows. One
/// transaction; on an error nothing is changed.
StoreOutcome StoreRow(Session& session, std::uint8_t section, std::int32_t key,
                      const std::function<int(engine::Recordset& row, bool added)>& fill);

/// The row of a key; null when it is gone or belongs to another section, or when the database was closed
/// meanwhile. An engine number where it could not be looked for.
Result<std::unique_ptr<engine::Recordset>> FetchRow(Session& session, std::uint8_t section, std::int32_t key);

/// What lists and searches ask for row by row: fT1 of the row of a key, enciphered as it stands; empty when
/// there is no such row or no open database.
Bytes CipheredName(Session& session, std::int32_t key);

/// DELETE of one row. 0 or the engine's number.
[[nodiscard]] int DeleteRow(Session& session, std::int32_t key);

/// DELETE of all rows of a section that meet `clauses` (" And fF3=True", or ""). 0 or the engine's number.
[[nodiscard]] int DeleteRows(Session& session, std::uint8_t section, const std::string& clauses = "");

/// Enciphers `payload` into fEtx of a row in AddNew or Edit. An error number without keys, so that nothing
/// empty takes a record's place.
[[nodiscard]] int SetPayload(Session& session, engine::Recordset& row, std::string_view payload);

/// The plain payload of the one row of a class and subclass (settings, labels, category lists); nothing when
/// there is no such row, empty when it does not decipher. An engine number fails; so does a closed database.
Result<std::optional<Secret>> FetchSinglePayload(Session& session, std::uint8_t fSec, std::uint8_t fSub);

/// Adds or edits that row: payload, change marks, noise in every column that it leaves unused. One
/// transaction; 0 or an error number with nothing changed.
[[nodiscard]] int StoreSinglePayload(Session& session, std::uint8_t fSec, std::uint8_t fSub,
                                     std::string_view payload);

}  // namespace bmr::store
