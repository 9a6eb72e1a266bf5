// How hard a passphrase is to guess.
#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "crypto/secret.h"
#include "shell/passcheck.h"

#ifdef BMR_HAVE_ZXCVBN
#include <zxcvbn.h>
#endif

namespace bmr::shell {

#ifdef BMR_HAVE_ZXCVBN

double GuessBits(std::string_view typed) {
    // The time that the estimate takes grows with the square of the length; beyond this all is strong.
    constexpr std::size_t kMost = 80;
    Secret text(typed.substr(0, kMost));
    text.Append({"\0", 1});
    return ZxcvbnMatch(text.view().data(), nullptr, nullptr);
}

#else

namespace {

/// What people choose first, in small letters, without its disguises.
constexpr std::array<std::string_view, 28> kCommon = {
    "password", "passwort", "passphrase", "letmein",  "welcome", "iloveyou", "sunshine",
    "princess", "football", "baseball",   "superman", "batman",  "dragon",   "monkey",
    "master",   "shadow",   "secret",     "admin",    "login",   "qwerty",   "qwertz",
    "azerty",   "asdfgh",   "zxcvbn",     "trustno",  "hello",   "starwars", "brindlemere"};
/// A common word, and a character that follows from the one before it.
constexpr double kWordBits = 6;
constexpr double kStepBits = 1;

/// How many characters the kinds that occur in the text offer for each place.
int AlphabetOf(std::string_view text) {
    const CharacterCounts counts = CountCharacters(text);
    return (counts.lower > 0 ? 26 : 0) + (counts.capitals > 0 ? 26 : 0) + (counts.digits > 0 ? 10 : 0) +
           (counts.punctuation > 0 ? 33 : 0);
}

/// A character without the disguise that everybody knows.
char Undisguised(char c) {
    constexpr std::string_view kDisguises = "0134578@$!";
    constexpr std::string_view kLetters = "oieastbasi";
    const std::size_t at = kDisguises.find(c);
    if (at != std::string_view::npos) return kLetters[at];
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool Follows(char c, char before) {
    return c == before || c == before + 1 || c == before - 1;
}

}  // namespace

double GuessBits(std::string_view typed) {
    Secret plain(typed);
    for (std::uint8_t& c : plain.span())
        c = static_cast<std::uint8_t>(Undisguised(static_cast<char>(c)));
    const double each = std::log2(std::max(2, AlphabetOf(typed)));
    double bits = 0;
    for (std::size_t at = 0; at < typed.size();) {
        const auto* word = std::ranges::find_if(
            kCommon,
            [rest = plain.view().substr(at)](std::string_view common) { return rest.starts_with(common); });
        const bool follows = at > 0 && Follows(typed[at], typed[at - 1]);
        bits += word != kCommon.end() ? kWordBits : follows ? kStepBits : each;
        at += word != kCommon.end() ? word->size() : 1;
    }
    return bits;
}

#endif

}  // namespace bmr::shell
