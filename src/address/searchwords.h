#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/ports.h"
#include "base/wiped.h"
#include "store/words.h"

namespace bmr::address {

/// A name or a contact as a search holds it: letters as capitals without accents, one for each byte.
void AppendSearchLetters(WipedText& out, std::string_view told);

/// What a person typed into the search line: words, each of which a record must hold somewhere, without
/// regard to case and accents; or the digits of a telephone number, however it is written.
class SearchWords {
  public:
    explicit SearchWords(std::string_view typed);

    bool empty() const { return needles_.empty(); }
    /// Long enough to be looked for in every field: from the third letter on.
    bool InFields() const { return inFields_; }
    /// Whether name and contact alone can tell: some scripts are known to the payload only.
    bool InColumns() const { return inColumns_; }
    /// Of the letters of both, and the digits of the contact.
    bool Matches(std::string_view name, std::string_view contact, std::string_view digits) const;
    /// Whether digits are asked for.
    bool WantsDigits() const { return !digits_.empty(); }
    /// The same of all that a payload and its name hold.
    bool MatchesPayload(std::string_view nameColumn, std::string_view payload,
                        const LocaleFacts& locale) const;
    /// For the marks on the card: the words, and what was typed as a whole where it is a number.
    const std::vector<WipedText>& Shown() const { return shown_; }

  private:
    std::uint64_t FoundIn(std::string_view letters) const;
    std::uint64_t All() const { return (std::uint64_t{1} << needles_.size()) - 1; }

    std::vector<store::Needle> needles_;
    std::vector<WipedText> shown_;
    WipedText digits_;  ///< of a number; else empty
    bool inFields_ = false;
    bool inColumns_ = true;
};

}  // namespace bmr::address
