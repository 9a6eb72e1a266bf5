#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace bmr {

/// Text of the record format: one character for each byte, in code page 1252. Never UTF-8.
using Bytes = std::string;

/// Text as a person typed it, of every script, in UTF-8 that is whole. Never code page 1252.
using Words = std::string;

/// A character of a UTF-8 text that code page 1252 cannot hold. `position` counts characters from 0.
struct Unmappable {
    std::size_t position = 0;
    char32_t character = 0;
};

/// True when code page 1252 has every character of a UTF-8 text, which is then whole.
bool FitsBytes(std::string_view utf8);

/// UTF-8 to code page 1252; nothing when a character has no place there or the text is no valid UTF-8.
/// The five bytes that the page leaves open (81 8D 8F 90 9D) stand for the code points of the same number.
std::optional<Bytes> ToBytes(std::string_view utf8);

/// The characters of `utf8` that code page 1252 cannot hold, in order; malformed bytes count as U+FFFD.
std::vector<Unmappable> FindUnmappable(std::string_view utf8);

/// Code page 1252 to UTF-8; never fails.
std::string ToUtf8(std::string_view bytes);

/// The byte that code page 1252 has for a character, -1 when it has none.
int ByteOf(char32_t character);

/// Without the blanks (byte 32 only) at both ends.
std::string_view TrimBlanks(std::string_view text);

/// Upper and lower case by code page 1252.
Bytes UpperCase(std::string_view text);
Bytes LowerCase(std::string_view text);

/// Below, equal to or above 0 as `a` stands before, with or behind `b`, without regard to case.
int CompareNoCase(std::string_view a, std::string_view b);

/// Lower-case hex, and back; nothing when `hex` is no even run of hex digits.
std::string ToHex(std::string_view bytes);
std::optional<Bytes> FromHex(std::string_view hex);

/// One character of code `value` modulo 256.
inline char ByteChar(unsigned value) {
    return static_cast<char>(static_cast<unsigned char>(value));
}

/// The code of character `at` of `text`, 0 to 255.
inline unsigned ByteAt(std::string_view text, std::size_t at) {
    return static_cast<unsigned char>(text[at]);
}

}  // namespace bmr
