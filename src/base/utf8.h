#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace bmr {

/// What stands in the place of bytes that are no UTF-8.
inline constexpr char32_t kReplacement = 0xFFFD;

/// One byte of a text, 0 to 255.
inline unsigned Octet(std::string_view text, std::size_t at) {
    return static_cast<unsigned char>(text[at]);
}

/// How many bytes of `text` from `at` on are ASCII without a gap.
inline std::size_t AsciiRun(std::string_view text, std::size_t at) {
    const std::size_t begin = at;
    for (std::uint64_t eight = 0; text.size() - at >= sizeof(eight); at += sizeof(eight)) {
        std::memcpy(&eight, text.data() + at, sizeof(eight));
        if ((eight & 0x8080808080808080U) != 0) break;
    }
    while (at < text.size() && Octet(text, at) < 0x80)
        ++at;
    return at - begin;
}

/// Next character of a UTF-8 text, behind which `at` is moved. An encoded surrogate gives one U+FFFD; every
/// other malformed or overlong sequence gives one for its first byte.
inline char32_t NextCharacter(std::string_view text, std::size_t& at) {
    const unsigned first = Octet(text, at++);
    if (first < 0x80) return first;
    if (first >= 0xC2 && first < 0xE0 && at < text.size() && (Octet(text, at) & 0xC0U) == 0x80)
        return (first & 0x1FU) << 6 | (Octet(text, at++) & 0x3FU);  // nearly all that is not ASCII
    const int more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : first >= 0xC0 ? 1 : -1;
    if (more < 0 || first > 0xF4 || at + static_cast<std::size_t>(more) > text.size()) return kReplacement;
    char32_t character = first & (0x3FU >> more);
    for (int i = 0; i < more; ++i) {
        const unsigned next = Octet(text, at + static_cast<std::size_t>(i));
        if ((next & 0xC0U) != 0x80) return kReplacement;
        character = (character << 6) | (next & 0x3FU);
    }
    constexpr std::array<char32_t, 4> kLowest = {0, 0x80, 0x800, 0x10000};
    if (character < kLowest[static_cast<std::size_t>(more)] || character > 0x10FFFF) return kReplacement;
    at += static_cast<std::size_t>(more);
    return character >= 0xD800 && character <= 0xDFFF ? kReplacement : character;
}

/// Appends a character, which is no surrogate, in UTF-8.
inline void AppendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
        return;
    }
    if (c < 0x800) {
        out += static_cast<char>(0xC0U | (c >> 6));
    } else {
        if (c < 0x10000) {
            out += static_cast<char>(0xE0U | (c >> 12));
        } else {
            out += static_cast<char>(0xF0U | (c >> 18));
            out += static_cast<char>(0x80U | ((c >> 12) & 0x3FU));
        }
        out += static_cast<char>(0x80U | ((c >> 6) & 0x3FU));
    }
    out += static_cast<char>(0x80U | (c & 0x3FU));
}

}  // namespace bmr
