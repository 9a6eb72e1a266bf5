#include "base/bytes.h"

#include <algorithm>
#include <array>

#include "base/utf8.h"

namespace bmr {
namespace {

constexpr std::array<char32_t, 32> kUpperControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

char32_t CodePointOf(unsigned char byte) {
    return byte >= 0x80 && byte < 0xA0 ? kUpperControls[byte - 0x80U] : byte;
}

unsigned char UpperOf(unsigned char c) {
    if ((c >= 'a' && c <= 'z') || (c >= 0xE0 && c <= 0xFE && c != 0xF7))
        return static_cast<unsigned char>(c - 32);
    switch (c) {
        case 0x9A:
            return 0x8A;
        case 0x9C:
            return 0x8C;
        case 0x9E:
            return 0x8E;
        case 0xFF:
            return 0x9F;
        default:
            return c;
    }
}

constexpr unsigned char LowerOf(unsigned char c) {
    if ((c >= 'A' && c <= 'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7))
        return static_cast<unsigned char>(c + 32);
    switch (c) {
        case 0x8A:
            return 0x9A;
        case 0x8C:
            return 0x9C;
        case 0x8E:
            return 0x9E;
        case 0x9F:
            return 0xFF;
        default:
            return c;
    }
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

int ByteOf(char32_t character) {
    if (character < 0x80 || (character >= 0xA0 && character <= 0xFF)) return static_cast<int>(character);
    const auto* found = std::find(kUpperControls.begin(), kUpperControls.end(), character);
    return found == kUpperControls.end() ? -1 : 0x80 + static_cast<int>(found - kUpperControls.begin());
}

bool FitsBytes(std::string_view utf8) {
    for (std::size_t at = AsciiRun(utf8, 0); at < utf8.size(); at += AsciiRun(utf8, at))
        if (ByteOf(NextCharacter(utf8, at)) < 0) return false;
    return true;
}

std::optional<Bytes> ToBytes(std::string_view utf8) {
    // Asked first, so that a text that is refused leaves no half of it in memory.
    if (!FitsBytes(utf8)) return std::nullopt;
    Bytes out;
    out.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size();) {
        // Most texts are ASCII from end to end, and every record passes here.
        if (const std::size_t plain = AsciiRun(utf8, at); plain != 0) {
            out.append(utf8.substr(at, plain));
            at += plain;
        } else {
            out += ByteChar(static_cast<unsigned>(ByteOf(NextCharacter(utf8, at))));
        }
    }
    return out;
}

std::vector<Unmappable> FindUnmappable(std::string_view utf8) {
    std::vector<Unmappable> found;
    std::size_t position = 0;
    for (std::size_t at = 0; at < utf8.size(); ++position) {
        const char32_t character = NextCharacter(utf8, at);
        if (ByteOf(character) < 0) found.push_back({position, character});
    }
    return found;
}

std::string ToUtf8(std::string_view bytes) {
    std::size_t plain = AsciiRun(bytes, 0);
    std::string out;
    // Three bytes for each character at most, so that a text with secrets never moves while it grows.
    out.reserve(plain + 3 * (bytes.size() - plain));
    for (std::size_t at = 0; at < bytes.size(); plain = AsciiRun(bytes, at)) {
        out.append(bytes.substr(at, plain));
        at += plain;
        if (at < bytes.size()) AppendUtf8(out, CodePointOf(static_cast<unsigned char>(bytes[at++])));
    }
    return out;
}

std::string_view TrimBlanks(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

Bytes UpperCase(std::string_view text) {
    Bytes out(text);
    for (char& c : out)
        c = static_cast<char>(UpperOf(static_cast<unsigned char>(c)));
    return out;
}

Bytes LowerCase(std::string_view text) {
    Bytes out(text);
    for (char& c : out)
        c = static_cast<char>(LowerOf(static_cast<unsigned char>(c)));
    return out;
}

int CompareNoCase(std::string_view a, std::string_view b) {
    const std::size_t shared = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < shared; ++i) {
        const int difference = static_cast<int>(LowerOf(static_cast<unsigned char>(a[i]))) -
                               static_cast<int>(LowerOf(static_cast<unsigned char>(b[i])));
        if (difference != 0) return difference;
    }
    return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

std::string ToHex(std::string_view bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string out;
    out.reserve(bytes.size() * 2);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        out += kDigits[ByteAt(bytes, i) >> 4];
        out += kDigits[ByteAt(bytes, i) & 15U];
    }
    return out;
}

std::optional<Bytes> FromHex(std::string_view hex) {
    if (hex.size() % 2 != 0) return std::nullopt;
    Bytes out;
    out.reserve(hex.size() / 2);
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        const int high = HexDigit(hex[i]);
        const int low = HexDigit(hex[i + 1]);
        if (high < 0 || low < 0) return std::nullopt;
        out += ByteChar(static_cast<unsigned>(high * 16 + low));
    }
    return out;
}

}  // namespace bmr
