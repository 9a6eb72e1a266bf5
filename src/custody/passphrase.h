#pragma once

#include <cstddef>
#include <string>

namespace bmr::store {
struct Session;
}

namespace bmr::custody {

/// How a routine of the key chain ended the program: the caller shows nothing more and quits.
inline constexpr int kQuitProgram = -1000;

/// Prompts of one opening, wrong and short passphrases together.
inline constexpr int kMostAttempts = 3;

/// Characters of the shortest new passphrase.
inline constexpr std::size_t kShortestPassphrase = 8;

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

}  // namespace bmr::custody
