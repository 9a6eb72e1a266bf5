#include "store/words.h"

#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <utility>

#include "base/unicode.h"
#include "crypto/conversion.h"
#include "crypto/cry.h"
#include "store/record_put.h"

namespace bmr::store {
namespace {

constexpr char kVersion = 1;
constexpr std::size_t kHead = 5;
static_assert(kHead + kLongestWords == kLongestText, "a companion is a field like the others");

/// The check of a field, which no blank at its ends changes: columns are stored without them.
std::uint32_t CheckOf(std::string_view told) {
    told = TrimBlanks(told);
    return static_cast<std::uint32_t>(
        crc32(0, reinterpret_cast<const Bytef*>(told.data()), static_cast<uInt>(told.size())));
}

/// Line breaks of a text that are one character and not two.
struct LoneBreaks {
    std::size_t feeds = 0;
    std::size_t returns = 0;
};

LoneBreaks CountLoneBreaks(std::string_view text) {
    LoneBreaks lone;
    for (std::size_t at = text.find_first_of("\r\n"); at != std::string_view::npos;
         at = text.find_first_of("\r\n", at + 1)) {
        if (text[at] == '\n')
            ++lone.feeds;
        else if (at + 1 < text.size() && text[at + 1] == '\n')
            ++at;
        else
            ++lone.returns;
    }
    return lone;
}

/// With CR LF for every line break.
Words WithWholeBreaks(std::string_view text) {
    const LoneBreaks lone = CountLoneBreaks(text);
    Words out;
    out.reserve(text.size() + lone.feeds + lone.returns);
    char before = 0;
    for (const char c : text) {
        if (c == '\n' && before != '\r') out += '\r';
        if (before == '\r' && c != '\n') out += '\n';
        out += c;
        before = c;
    }
    if (before == '\r') out += '\n';
    return out;
}

/// True for a byte of a UTF-8 character behind its first.
bool IsInside(char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80;
}

/// The start of a text that a companion has room for, up to the end of a character.
std::string_view FirstWords(std::string_view utf8) {
    std::size_t size = std::min(utf8.size(), kLongestWords);
    while (size < utf8.size() && IsInside(utf8[size]))
        --size;
    return utf8.substr(0, size);
}

void CutAndWipe(Bytes& text, std::size_t most) {
    if (text.size() <= most) return;
    WipeMemory(text.data() + most, text.size() - most);
    text.resize(most);
}

Bytes MakeCompanion(std::string_view told, std::string_view utf8) {
    const std::uint32_t check = CheckOf(told);
    Bytes companion;
    companion.reserve(kHead + utf8.size());
    companion += kVersion;
    for (unsigned shift = 0; shift < 32; shift += 8)
        companion += ByteChar(check >> shift);
    companion.append(utf8);
    return companion;
}

/// Each character of the code page as a capital without accents, by its code.
Bytes PlainLetters() {
    Bytes all;
    for (unsigned code = 0; code < 256; ++code)
        all += ByteChar(code);
    return conversion::PlainUpper(all);
}

}  // namespace

ToldWords TellWords(std::string_view utf8, Masked masked) {
    if (auto told = ToBytes(utf8)) return {std::move(*told), {}};
    const WipedText typed = Normalised(utf8);
    ToldWords words;
    if (auto told = ToBytes(typed)) {
        words.told = std::move(*told);
    } else {
        const WipedText whole = WithWholeBreaks(typed);
        words.told = masked == Masked::Yes ? MaskForeign(whole) : Transliterate(whole);
        CutAndWipe(words.told, kLongestText);
        if (TrimBlanks(words.told).empty()) words.told.assign(1, '?');  // a blank one could not be marked
        words.companion = MakeCompanion(words.told, FirstWords(whole));
    }
    return words;
}

CompanionState JudgeCompanion(std::string_view companion, std::string_view told) {
    if (companion.size() <= kHead || companion.front() != kVersion || !IsWellFormed(TrueText(companion)))
        return CompanionState::Malformed;
    std::uint32_t check = 0;
    for (std::size_t at = kHead - 1; at > 0; --at)
        check = check << 8 | ByteAt(companion, at);
    return check == CheckOf(told) ? CompanionState::Fits : CompanionState::Stale;
}

std::string_view TrueText(std::string_view companion) {
    return companion.substr(std::min(kHead, companion.size()));
}

WipedText ColumnText(const ToldWords& words) {
    if (words.companion.empty()) return words.told;
    return Joined(TrimBlanks(words.told), " ");
}

bool IsMarked(std::string_view columnPlain) {
    return columnPlain.ends_with(' ') && !TrimBlanks(columnPlain).empty();
}

WordsLength MeasureWords(std::string_view utf8) {
    const WipedText words = Normalised(utf8);
    const LoneBreaks lone = CountLoneBreaks(words);
    WordsLength measured;
    if (FitsBytes(words)) {
        const auto inside = std::count_if(words.begin(), words.end(), [](char c) { return IsInside(c); });
        // The editors store CR LF and hold LF.
        measured = {words.size() - static_cast<std::size_t>(inside) + lone.feeds, kLongestText, false};
    } else {
        measured = {words.size() + lone.feeds + lone.returns, kLongestWords, true};
    }
    return measured;
}

Needle::Needle(std::string_view utf8) {
    const WipedText words = Normalised(utf8);
    folded_ = FoldCase(words);
    // The letter in front keeps what has no letters at all from becoming "?", which a longer text would lack.
    const WipedText made = Transliterate(Joined("x", words));
    std::string_view letters = std::string_view(made).substr(1);
    // Told texts are searched without the blanks at their ends, so those count only where they were typed.
    const bool isNothing = TrimBlanks(letters).empty() && !FitsBytes(words);
    if (isNothing || TrimBlanks(words) == words) letters = TrimBlanks(letters);
    told_ = conversion::PlainUpper(letters);
    asksTrueText_ = isNothing || std::count(letters.begin(), letters.end(), '?') >
                                     std::count(words.begin(), words.end(), '?');
}

bool Needle::InTold(std::string_view told) const {
    static const Bytes kPlain = PlainLetters();
    told = TrimBlanks(told);
    const auto same = [](char a, char b) { return kPlain[static_cast<unsigned char>(a)] == b; };
    return told_.empty() ||
           std::search(told.begin(), told.end(), told_.begin(), told_.end(), same) != told.end();
}

bool Needle::InTrue(std::string_view words) const {
    const WipedText whole = Normalised(words);
    const WipedText folded = FoldCase(whole);
    return folded.find(folded_) != Words::npos;
}

}  // namespace bmr::store
