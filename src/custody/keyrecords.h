#pragma once

namespace bmr::store {
struct Session;
}

namespace bmr::custody {

/// Makes `MasterKey` and `Keystring`, writes rows (1,1) and (1,2), the first user record and the default PIN
/// into the open, empty file, in one transaction. REQUIRES: `PassHash`, `PassHashStrong`. `MasterKey` is
/// wiped.
[[nodiscard]] int CreateKeys(store::Session& session);

/// Finds the user, unwraps `MasterKey`, loads `Keystring`, repairs a lost row (1,1). `MasterKey` is wiped on
/// every path. 0, `NoSuchUser`, an engine number, or `kQuitProgram` after its message.
[[nodiscard]] int LoadKeys(store::Session& session);

enum class PassphraseChange {
    Changed,
    Unverified,  ///< the current passphrase was wrong (Msg(85) was shown) or not given
    Unchanged,   ///< Msg(124) was shown
    Unsure       ///< the disk failed, and either passphrase may be the one: that was shown
};
/// Verifies the current passphrase, asks for a new one and rewrites the user's row and PIN. REQUIRES: an open
/// database.
PassphraseChange ChangePassphrase(store::Session& session);

}  // namespace bmr::custody
