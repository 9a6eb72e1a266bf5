#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/bytes.h"
#include "crypto/secret.h"

namespace bmr::store {
struct Session;
}

namespace bmr::custody {

/// Looks for the user row that `PassHash` opens; fills the current user and `MasterKey`. 0, `NoSuchUser`, an
/// engine number, or `kQuitProgram` (see passphrase.h) when there is no user row at all, after Msg(96).
[[nodiscard]] int FindUser(store::Session& session);

/// The same for the current user's own row alone: two users may share a passphrase.
[[nodiscard]] int FindCurrentUser(store::Session& session);

/// Writes the current user's record under `PassHash`; a new row gives its fPK to the session. The PIN record
/// in fT2 is left alone on an edit.
[[nodiscard]] int WriteUser(store::Session& session);

/// Asks for the passphrase of the current user and tests it; on a wrong one shows Msg(85) and pauses. Keeps
/// no hash.
bool VerifyUser(store::Session& session, const std::string& prompt);

enum class UserCheck { Right, Wrong, Cancelled };
/// `VerifyUser`, telling a wrong passphrase from a cancelled prompt. With `keepHashes` a right one leaves
/// `PassHash` and `PassHashStrong` in the session; the caller wipes them.
UserCheck CheckUser(store::Session& session, const std::string& prompt, bool keepHashes);

/// Reads the PIN record of the current user. One that was never set, or that holds an empty PIN, is made with
/// the default PIN, unless the database is open for reading. One that does not decode is left as it is
/// (`PinRecord::Unread`).
[[nodiscard]] int LoadPin(store::Session& session);
/// Asks for the current user's passphrase when no `PassHashStrong` is at hand, then stores the default PIN.
/// 0, `NoSuchUser`, `Cancelled`, an engine number or `kQuitProgram`.
[[nodiscard]] int SetDefaultPin(store::Session& session);
/// Stores the PIN record and takes it into the session. `kQuitProgram` after Msg(109) when the user's row is
/// gone, `InputError` for a PIN too long to store.
[[nodiscard]] int WritePin(store::Session& session, std::uint8_t kind, std::string_view pin, std::int32_t app,
                           bool everyAccess);

enum class PinAnswer { Right = 1, Wrong = 2, Cancelled = 3 };
/// Asks for the PIN; a wrong one shows Msg(125).
PinAnswer PinPrompt(store::Session& session, const std::string& title);

}  // namespace bmr::custody
