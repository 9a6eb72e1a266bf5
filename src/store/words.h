#pragma once

#include <cstddef>
#include <string_view>

#include "base/bytes.h"
#include "base/wiped.h"

namespace bmr::store {

// A text of a record that code page 1252 cannot hold is stored twice: its field holds it in letters that the
// page has, for every reader and for the order of lists, and a companion field, 128 numbers further, holds
// what was typed. Who writes the field and knows no companion thereby makes the companion stale.

/// A text as a record stores it. Both may hold secrets.
struct ToldWords {
    WipedText told;  ///< the field
    WipedText
        companion;  ///< the companion: 1, CRC-32 of the field, UTF-8; empty when the page holds the text
};

/// Whether a text must not look right when code page 1252 cannot hold it, as a password must not.
enum class Masked : bool { No, Yes };

/// A text in UTF-8 as a record stores it, each part cut without a word at its limit. Line breaks become CR LF
/// where there is a companion, else they stay.
ToldWords TellWords(std::string_view utf8, Masked masked = Masked::No);

enum class CompanionState {
    Fits,
    Stale,      ///< the field was written by someone who does not know companions
    Malformed,  ///< no companion at all
};

/// Whether a companion belongs to the field that holds `told`, with or without blanks at its ends.
CompanionState JudgeCompanion(std::string_view companion, std::string_view told);

/// The UTF-8 of a companion that is not malformed; lives as long as the companion.
std::string_view TrueText(std::string_view companion);

/// What an enciphered column holds of a text; a blank behind it marks one whose payload tells more.
WipedText ColumnText(const ToldWords& words);

/// True when a column, deciphered, bears the mark. A text without companion that was typed with a blank
/// behind it bears it too, which costs a look at its payload and no more.
bool IsMarked(std::string_view columnPlain);

/// The longest text of a companion, in bytes of UTF-8.
inline constexpr std::size_t kLongestWords = 64995;

/// How much of its room a text takes.
struct WordsLength {
    std::size_t length = 0;
    std::size_t most = 0;
    bool inBytes = false;  ///< of UTF-8, for a text with a companion; else characters

    bool TooLong() const { return length > most; }
};

/// `utf8` as it will be stored, line breaks as CR LF.
WordsLength MeasureWords(std::string_view utf8);

/// What the search of a list looks for, without regard to case and accents.
class Needle {
  public:
    explicit Needle(std::string_view utf8);

    bool empty() const { return folded_.empty(); }
    /// What InTold looks for: capitals without accents.
    std::string_view Letters() const { return told_; }
    /// True when a field or column holds it as told: who types plain letters finds every script by them.
    bool InTold(std::string_view told) const;
    /// True when some of its characters have no letter: what InTold finds must then be InTrue too.
    bool AsksTrueText() const { return asksTrueText_; }
    /// True when the text as it was typed holds it.
    bool InTrue(std::string_view words) const;

  private:
    WipedText told_;  ///< capitals without accents
    WipedText folded_;
    bool asksTrueText_ = false;
};

}  // namespace bmr::store
