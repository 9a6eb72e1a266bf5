#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "base/bytes.h"
#include "base/random.h"
#include "crypto/blowfish.h"

namespace bmr::cry {

// The shape of field cipher texts, shared by the one-by-one cipher and the batch.

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

inline Bytes SelectorText(std::int32_t selector) {
    return {ByteChar(static_cast<unsigned>(selector) >> 8), ByteChar(static_cast<unsigned>(selector))};
}

/// The 16 bytes that a selector picks from a keystring.
inline void PickFieldKey(std::span<const std::uint8_t> keystring, std::uint32_t selector,
                         std::span<std::uint8_t, Blowfish::kKey> key) {
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

inline std::span<const std::uint8_t> Octets(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

/// `prefix`, a random vector, and `text` with marker and padding, not enciphered yet. An empty text becomes 0
/// to 12 blanks, so that nobody counts the empty fields.
inline Bytes PaddedField(RandomSource& random, std::string_view prefix, std::string_view text) {
    const std::size_t blanks = text.empty() ? static_cast<std::size_t>(DrawBelow(random, 13)) : 0;
    const std::size_t size = text.size() + blanks;
    const std::size_t fill = Blowfish::kBlock - (size + 1) % Blowfish::kBlock;
    Bytes out;
    out.reserve(prefix.size() + Blowfish::kBlock + size + 1 + fill);
    out.append(prefix).append(Blowfish::kBlock, '\0').append(text).append(blanks, ' ');
    out.append(1, '\x03').append(fill, static_cast<char>(fill));
    random.Fill({reinterpret_cast<std::uint8_t*>(out.data()) + prefix.size(), Blowfish::kBlock});
    return out;
}

/// Enciphers in place what `PaddedField` made behind a prefix of `at` bytes.
inline void EncryptField(const Blowfish& cipher, std::size_t at, Bytes& field) {
    const std::span<std::uint8_t> bytes(reinterpret_cast<std::uint8_t*>(field.data()), field.size());
    cipher.EncryptCbc(bytes.subspan(at).first<Blowfish::kBlock>(), bytes.subspan(at + Blowfish::kBlock));
}

/// Deciphers vector and whole blocks into `plain`, which is a block shorter.
inline void DecryptField(const Blowfish& cipher, std::string_view text, std::span<std::uint8_t> plain) {
    cipher.DecryptCbc(Octets(text).first<Blowfish::kBlock>(), Octets(text).subspan(Blowfish::kBlock), plain);
}

/// Length of the text before marker and padding; npos when the marker is not where the last byte says.
inline std::size_t PlainSize(std::string_view deciphered) {
    const std::size_t fill = ByteAt(deciphered, deciphered.size() - 1);
    if (fill + 1 > deciphered.size() || ByteAt(deciphered, deciphered.size() - fill - 1) != 3)
        return std::string_view::npos;
    return deciphered.size() - fill - 1;
}

}  // namespace bmr::cry
