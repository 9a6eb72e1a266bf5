#pragma once

#include <string>
#include <string_view>

#include "base/ports.h"
#include "crypto/secret.h"

namespace bmr::shell {

/// How many characters of each kind a typed text holds. Blanks count as small letters: they do not improve a
/// passphrase.
struct CharacterCounts {
    int digits = 0;
    int capitals = 0;
    int lower = 0;
    int punctuation = 0;
    bool operator==(const CharacterCounts&) const = default;
};

/// `typed` in code page 1252; what is neither a digit, an unaccented letter nor a blank is punctuation.
CharacterCounts CountCharacters(std::string_view typed);

/// Neither a digit nor a punctuation character. Capitals play no part, although the warning speaks of mixed
/// case; required.
bool IsWeak(std::string_view typed);

/// How many guesses, as a power of two, somebody needs who tries common passwords, words, names, dates, rows
/// of the keyboard and their usual disguises before all else. `typed` in code page 1252. An estimate: for the
/// eye of the person who chooses, and no decision hangs on it.
double GuessBits(std::string_view typed);

/// What `cmdOK` of the passphrase prompt does with what was typed, without a screen: the warning about a weak
/// passphrase and the second entry. Entries are kept in wiped memory and for no longer than they are needed.
class SecretEntry {
  public:
    enum class Step {
        Type,         ///< waits for the first entry
        Confirm,      ///< waits for the second entry, under the prompt Msg(42)
        AskWeak,      ///< `Question` is to be answered: accept a weak passphrase?
        AskMismatch,  ///< `Question` is to be answered: try again after two different entries?
        Done,         ///< `TakeResult`
        Cancelled,
    };

    /// `confirm` is `chkConfirm`, `checkQuality` is `chkCheckPWquality`.
    SecretEntry(bool confirm, bool checkQuality) : confirm_(confirm), checkQuality_(checkQuality) {}

    Step step() const { return step_; }

    /// OK was pressed over `typed`; an empty text cancels, and a new passphrase that is too short is done
    /// with at once: who asked for it refuses it, and nobody need type it twice. The edit is to be emptied
    /// whatever comes back. Nothing happens in a step that waits for an answer or is at its end.
    Step Enter(Secret typed);

    /// The box of AskWeak (Msg 158) or AskMismatch (Msg 84).
    Box Question() const;
    /// No to a weak passphrase and Retry after a mismatch begin anew; Cancel after a mismatch cancels.
    Step Reply(Answer answer);

    Step Cancel();

    /// The secret, once; empty unless the step is Done.
    Secret TakeResult();

  private:
    Step Take();
    Step Restart();

    bool confirm_;
    bool checkQuality_;
    Step step_ = Step::Type;
    Secret firstEntry_;
    Secret secondEntry_;
};

}  // namespace bmr::shell
