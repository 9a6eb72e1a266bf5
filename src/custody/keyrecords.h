#pragma once

#include <string>

namespace bmr::store {
struct Session;
}

namespace bmr::custody {

/// How a routine of the key chain ended the program: the caller shows nothing more and quits.
inline constexpr int kQuitProgram = -1000;

/// Prompts of one opening, wrong and short passphrases together.
inline constexpr int kMostAttempts = 3;

/// Wipes `PassHash`, `PassHashStrong`, `MasterKey` and what the user record holds of them.
void WipeHashes(store::Session& session);

/// Wipes the hashes and the master key on every way out of a block.
class HashWiper {
  public:
    explicit HashWiper(store::Session& session) : session_(session) {}
    ~HashWiper() { WipeHashes(session_); }
    HashWiper(const HashWiper&) = delete;
    HashWiper& operator=(const HashWiper&) = delete;

  private:
    store::Session& session_;
};

/// "Database: " and the file's name in capitals, UTF-8: the line above every prompt for a secret.
std::string PromptTitle(const store::Session& session);

/// Counts a failed attempt, shows Msg(-error), with Retry while attempts are left, and pauses. True when the
/// prompt is to be shown again.
bool RetryAfterFailure(store::Session& session, int error);

/// "Stand By", the forced pause, and an empty panel again.
void StandBy(store::Session& session);

/// Shows the prompt as often as allowed, with the forced pause after each failure, and sets `PassHash` and
/// `PassHashStrong`; the typed text is wiped. 0, `Cancelled`, `PassphraseTooShort` for a text below 8
/// characters, or `kQuitProgram` when the attempts are used up and no database is open.
[[nodiscard]] int RequestPassphrase(store::Session& session, bool newOne);

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
};
/// Verifies the current passphrase, asks for a new one and rewrites the user's row and PIN. REQUIRES: an open
/// database.
PassphraseChange ChangePassphrase(store::Session& session);

}  // namespace bmr::custody
