#include "address/foundwords.h"

#include <algorithm>
#include <unordered_map>

#include "address/telephone.h"
#include "base/unicode.h"
#include "base/utf8.h"
#include "crypto/conversion.h"

namespace bmr::address {
namespace {

/// A text in plain letters, and for each of them the place of the character from which it comes.
struct PlainText {
    WipedText letters;
    std::vector<std::size_t> places;  ///< and one more, of the end
};

/// Character by character, each of them looked up once: a long note has few different ones.
PlainText PlainOf(std::string_view text) {
    PlainText plain;
    plain.letters.reserve(text.size());
    plain.places.reserve(text.size() + 1);
    std::unordered_map<char32_t, Bytes> known;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t begin = at;
        const char32_t character = NextCharacter(text, at);
        const auto [entry, isNew] = known.try_emplace(character);
        Bytes& letters = entry->second;
        if (const int byte = isNew ? ByteOf(character) : -1; byte >= 0)
            letters = conversion::PlainUpper(Bytes(1, ByteChar(static_cast<unsigned>(byte))));
        else if (isNew)
            letters = conversion::PlainUpper(Transliterate(text.substr(begin, at - begin)));
        plain.letters.Reserve(letters.size());
        plain.letters.append(letters);
        plain.places.insert(plain.places.end(), letters.size(), begin);
    }
    plain.places.push_back(text.size());
    return plain;
}

void FindLetters(const PlainText& plain, std::string_view text, std::string_view word,
                 std::vector<FoundSpan>& spans) {
    const WipedText letters = conversion::PlainUpper(Transliterate(Normalised(word)));
    if (letters.empty()) return;
    for (std::size_t at = plain.letters.find(letters); at != std::string::npos;
         at = plain.letters.find(letters, at + letters.size())) {
        // Up to the next character that is another: one may have several letters.
        std::size_t end = at + letters.size();
        while (end < plain.letters.size() && plain.places[end] == plain.places[end - 1])
            ++end;
        spans.push_back({plain.places[at], end < plain.letters.size() ? plain.places[end] : text.size()});
    }
}

}  // namespace

std::vector<FoundSpan> FindWords(std::string_view text, const std::vector<WipedText>& words) {
    std::vector<FoundSpan> spans;
    if (words.empty()) return spans;
    const PlainText plain = PlainOf(text);
    for (const WipedText& word : words) {
        FindLetters(plain, text, word, spans);
        if (const auto number = FindNumber(text, word)) spans.push_back({number->first, number->second});
    }
    std::ranges::sort(spans, {}, [](const FoundSpan& span) { return std::pair(span.begin, span.end); });
    std::vector<FoundSpan> merged;
    for (const FoundSpan& span : spans) {
        if (span.begin == span.end) continue;
        if (!merged.empty() && span.begin <= merged.back().end)
            merged.back().end = std::max(merged.back().end, span.end);
        else
            merged.push_back(span);
    }
    return merged;
}

}  // namespace bmr::address
