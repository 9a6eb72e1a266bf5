#include "crypto/conversion.h"

#include <array>
#include <bit>
#include <cmath>

namespace bmr::conversion {
namespace {

struct FloatLayout {
    int exponentBits, mantissaBits, bias;
};

FloatLayout LayoutOf(int bitCount) {
    return bitCount == 32 ? FloatLayout{8, 23, 127} : FloatLayout{11, 52, 1023};
}

/// Base letters of the capitals 192 to 223; a blank where there is none.
constexpr std::string_view kBaseLetters = "AAAAAAACEEEEIIIIDNOOOOO OUUUUYTS";

/// The base letter of a byte above 128, the byte itself where it has none.
char BaseLetter(char c) {
    const Bytes upper = UpperCase({&c, 1});
    const unsigned code = ByteAt(upper, 0);
    if (code >= 192 && code <= 223 && kBaseLetters[code - 192] != ' ') return kBaseLetters[code - 192];
    return upper[0];
}

}  // namespace

std::optional<Bytes> PackInteger(std::int64_t value, int byteCount) {
    const std::int64_t limit = std::int64_t{1} << (byteCount * 8 - 1);
    if (value < -limit || value >= limit) return std::nullopt;
    Bytes out;
    auto bits = static_cast<std::uint64_t>(value);
    for (int i = 0; i < byteCount; ++i, bits >>= 8)
        out += ByteChar(static_cast<unsigned>(bits & 0xFF));
    return out;
}

std::int32_t UnpackInteger(std::string_view text) {
    std::uint32_t bits = 0;
    for (std::size_t i = text.size(); i-- > 0;)
        bits = bits << 8 | ByteAt(text, i);
    return text.size() == 2 ? static_cast<std::int16_t>(bits) : static_cast<std::int32_t>(bits);
}

Bytes PackCurrency(Money amount) {
    Bytes out;
    auto bits = static_cast<std::uint64_t>(amount.tenThousandths);
    for (int i = 0; i < 8; ++i, bits >>= 8)
        out += ByteChar(static_cast<unsigned>(bits & 0xFF));
    return out;
}

Money UnpackCurrency(std::string_view text) {
    if (text.size() != 8) return {};
    std::uint64_t bits = 0;
    for (std::size_t i = text.size(); i-- > 0;)
        bits = bits << 8 | ByteAt(text, i);
    return {static_cast<std::int64_t>(bits)};
}

std::string FloatToBits(double value, int bitCount) {
    std::string bits(static_cast<std::size_t>(bitCount), '0');
    const auto set = [&bits](int place) { bits[static_cast<std::size_t>(place)] = '1'; };
    if (!(value >= 1e-200) || std::isinf(value)) return bits;
    const FloatLayout layout = LayoutOf(bitCount);
    int exponent = std::ilogb(value);
    const int stored = exponent + layout.bias;
    if (stored <= 0 || stored >= (1 << layout.exponentBits) - 1) return bits;
    // 52 bits behind the leading 1, the lower ones cut for the single.
    const auto mantissa = std::bit_cast<std::uint64_t>(value) & ((std::uint64_t{1} << 52) - 1);
    for (int i = 0; i < layout.exponentBits; ++i)
        if (stored >> (layout.exponentBits - 1 - i) & 1) set(1 + i);
    for (int i = 0; i < layout.mantissaBits; ++i)
        if (mantissa >> (51 - i) & 1) set(1 + layout.exponentBits + i);
    return bits;
}

std::optional<Bytes> BitsToBytes(std::string_view bits) {
    if (bits.size() % 8 != 0) return std::nullopt;
    Bytes out;
    for (std::size_t at = bits.size(); at > 0; at -= 8) {
        const auto byte = BitsToByte(bits.substr(at - 8, 8));
        out += ByteChar(*byte);
    }
    return out;
}

double BytesToFloat(std::string_view text) {
    if (text.size() != 4 && text.size() != 8) return 0;
    const FloatLayout layout = LayoutOf(static_cast<int>(text.size()) * 8);
    std::uint64_t bits = 0;
    for (std::size_t i = text.size(); i-- > 0;)
        bits = bits << 8 | ByteAt(text, i);
    if (bits == 0) return 0;
    const std::uint64_t mantissa = bits & ((std::uint64_t{1} << layout.mantissaBits) - 1);
    const auto exponent =
        static_cast<int>(bits >> layout.mantissaBits & ((std::uint64_t{1} << layout.exponentBits) - 1));
    const double fraction = 1 + std::ldexp(static_cast<double>(mantissa), -layout.mantissaBits);
    const double magnitude = std::ldexp(fraction, exponent - layout.bias);
    return bits >> (text.size() * 8 - 1) ? -magnitude : magnitude;
}

std::string BitsNegate(std::string_view bits) {
    std::string out(bits);
    bool carry = true;
    for (std::size_t i = out.size(); i-- > 0;) {
        const bool inverted = out[i] == '0';
        out[i] = inverted != carry ? '1' : '0';
        carry = inverted && carry;
    }
    return out;
}

std::string ByteToBits(std::uint8_t byte) {
    std::string bits(8, '0');
    for (std::size_t i = 0; i < 8; ++i)
        if (byte >> (7 - i) & 1) bits[i] = '1';
    return bits;
}

std::optional<std::uint8_t> BitsToByte(std::string_view bits) {
    if (bits.size() != 8) return std::nullopt;
    unsigned byte = 0;
    for (const char bit : bits)
        byte = byte << 1 | (bit == '1' ? 1U : 0U);
    return static_cast<std::uint8_t>(byte);
}

int NameCode(std::string_view text, bool accents) {
    if (text.empty()) return 0;
    if (accents) {
        const Bytes upper = UpperCase(text.substr(0, 1));
        switch (ByteAt(upper, 0)) {
            case 196:
            case 198:
                return 29;
            case 197:
                return 28;
            case 214:
            case 216:
                return 30;
            default:
                break;
        }
    }
    const char letter = BaseLetter(text[0]);
    return letter >= 'A' && letter <= 'Z' ? letter - 'A' + 1 : 0;
}

int NameKey(std::string_view text, bool accents) {
    const int second = text.size() >= 2 ? NameCode(text.substr(1), accents) : 0;
    return (NameCode(text, accents) * 31 + second) / 23;
}

Bytes PlainUpper(std::string_view text) {
    Bytes out;
    for (const char c : text)
        out += BaseLetter(c);
    return out;
}

}  // namespace bmr::conversion
