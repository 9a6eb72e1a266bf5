#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "base/bytes.h"

namespace bmr::cry {

/// The shape of field cipher texts, shared by the one-by-one cipher and the batch.

enum class FieldForm {
    Malformed,  ///< deciphers to one character of code 0
    NoBlock,    ///< a vector without a block: deciphers to nothing
    Whole,
};

inline FieldForm FieldTextForm(std::string_view text) {
    if (text.size() < 3 || (text.size() - 2) % 8 != 0) return FieldForm::Malformed;
    return text.size() < 18 ? FieldForm::NoBlock : FieldForm::Whole;
}

inline std::int32_t SelectorOf(std::string_view text) {
    return static_cast<std::int32_t>(ByteAt(text, 0) * 256 + ByteAt(text, 1));
}

/// The 16 bytes that a selector picks from a keystring.
inline void PickFieldKey(std::span<const std::uint8_t> keystring, std::uint32_t selector,
                         std::span<std::uint8_t, 16> key) {
    const auto n = static_cast<std::uint32_t>(keystring.size());
    const std::uint32_t m = selector % n;
    const std::uint32_t q = selector / n;
    const std::uint32_t step = keystring[m] % 3U + 1;
    for (std::uint32_t i = 1; i <= 16; ++i) {
        const std::uint32_t a = (q + 1) * i + m;
        const std::uint32_t high = keystring[a % n];
        const std::uint32_t low = keystring[(a + step) % n];
        key[i - 1] = keystring[(high * 256 + low) % n];
    }
}

/// Length of the text before marker and padding; npos when the marker is not where the last byte says.
inline std::size_t PlainSize(std::string_view deciphered) {
    const std::size_t fill = ByteAt(deciphered, deciphered.size() - 1);
    if (fill + 1 > deciphered.size() || ByteAt(deciphered, deciphered.size() - fill - 1) != 3)
        return std::string_view::npos;
    return deciphered.size() - fill - 1;
}

}  // namespace bmr::cry
