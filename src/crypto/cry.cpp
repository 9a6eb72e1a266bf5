#include "crypto/cry.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "base/wiped.h"
#include "crypto/blowfish.h"
#include "crypto/fieldtext.h"

namespace bmr::cry {
namespace {

constexpr std::size_t kFieldKeySize = Blowfish::kKey;

/// A value as the text that is enciphered.
Bytes TextForm(const Value& value) {
    if (const auto* text = std::get_if<Bytes>(&value)) return *text;
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "True" : "False";
    if (const auto* number = std::get_if<std::int32_t>(&value)) return std::to_string(*number);
    double real = 0;
    if (const auto* money = std::get_if<Money>(&value))
        real = static_cast<double>(money->tenThousandths) / 10000;
    if (const auto* date = std::get_if<DateValue>(&value)) real = date->serial;
    if (const auto* number = std::get_if<double>(&value)) real = *number;
    std::array<char, 40> text{};
    // Not by the C library, whose decimal sign follows the desktop's language.
    const auto end = std::to_chars(text.begin(), text.end(), real, std::chars_format::general, 15).ptr;
    return {text.begin(), end};
}

/// Sets `cipher` to the field key, filled up with zeros where none was picked yet: the operation goes on all
/// the same.
void UseFieldKey(const CipherState& state, Blowfish& cipher) {
    Blowfish::Key key{};
    const auto picked = state.FieldKey.span();
    std::copy_n(picked.begin(), std::min(picked.size(), key.size()), key.begin());
    Blowfish::SetKeys({&key, 1}, {&cipher, 1});
    WipeMemory(key.data(), key.size());
}

/// `prefix`, then vector and cipher text of `text`.
Bytes EncryptText(CipherState& state, std::string_view prefix, std::string_view text) {
    Bytes out = PaddedField(*state.random, prefix, text);
    Blowfish cipher;
    UseFieldKey(state, cipher);
    EncryptField(cipher, prefix.size(), out);
    return out;
}

Bytes Encipher(CipherState& state, std::string_view text) {
    if (state.Keystring.empty()) return {};
    const std::int32_t selector = DrawBelow(*state.random, 65536);
    SelectFieldKey(state, selector);
    return EncryptText(state, SelectorText(selector), text);
}

void DecipherToPlain(CipherState& state, std::string_view text) {
    switch (FieldTextForm(text)) {
        case FieldForm::Malformed:
            state.FieldPlain = Secret(std::string_view("\0", 1));
            break;
        case FieldForm::NoBlock:
            state.FieldPlain.Wipe();
            break;
        case FieldForm::Whole:
            SelectFieldKey(state, SelectorOf(text));
            BlockDecrypt(state, text.substr(2));
            break;
    }
}

Bytes Decipher(CipherState& state, std::string_view text) {
    if (state.Keystring.empty()) return {};
    DecipherToPlain(state, text);
    return Bytes(TrimBlanks(state.FieldPlain.view()));
}

void TellMissingKey(CipherState& state) {
    if (state.FieldKey.size() < kFieldKeySize && state.showMessage) state.showMessage(34);
}

}  // namespace

Bytes FieldCipher(CipherState& state, int mode, std::string_view text) {
    switch (mode) {
        case 1:
            return Encipher(state, text);
        case 2:
            return Decipher(state, text);
        case 3:
            TellMissingKey(state);
            return EncryptText(state, {}, text);
        case 4:
            TellMissingKey(state);
            BlockDecrypt(state, text);
            return Bytes(state.FieldPlain.view());
        default:
            return {};
    }
}

Bytes FieldCipher(CipherState& state, int mode, const Value& value) {
    if (mode == 1 && std::holds_alternative<Empty>(value)) return {};
    if (IsBlank(value)) return FieldCipher(state, mode, std::string_view());
    Bytes text = TextForm(value);
    Bytes out = FieldCipher(state, mode, std::string_view(text));
    WipeString(text);
    return out;
}

std::string_view DecipherField(CipherState& state, std::string_view text) {
    if (text.empty() || state.Keystring.empty()) return {};
    DecipherToPlain(state, text);
    return state.FieldPlain.view();
}

void SelectFieldKey(CipherState& state, std::int32_t selector) {
    if (state.FieldKey.size() != kFieldKeySize) state.FieldKey = Secret(kFieldKeySize);
    PickFieldKey(state.Keystring.span(), static_cast<std::uint32_t>(selector),
                 state.FieldKey.span().first<kFieldKeySize>());
}

Bytes BlockEncrypt(CipherState& state, const Value& value) {
    Bytes text = IsBlank(value) ? Bytes() : TextForm(value);
    Bytes out = EncryptText(state, {}, text);
    WipeString(text);
    return out;
}

std::string BlockDecrypt(CipherState& state, std::string_view text) {
    if (text.size() < Blowfish::kBlock || text.size() % Blowfish::kBlock != 0) return "Error";
    state.FieldPlain = Secret(text.size() - Blowfish::kBlock);
    if (state.FieldPlain.empty()) return "-bad password-";
    ++state.deciphered;
    Blowfish cipher;
    UseFieldKey(state, cipher);
    DecryptField(cipher, text, state.FieldPlain.span());
    const std::size_t size = PlainSize(state.FieldPlain.view());
    if (size == std::string_view::npos) return "-bad password-";
    state.FieldPlain.Resize(size);
    return "";
}

std::uint8_t ByteSum(std::string_view bytes) {
    unsigned sum = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i)
        sum += ByteAt(bytes, i);
    return static_cast<std::uint8_t>(sum);
}

Bytes RandomBytes(RandomSource& random, std::int32_t n) {
    Bytes out(static_cast<std::size_t>(std::max(n, 0)), '\0');
    random.Fill({reinterpret_cast<std::uint8_t*>(out.data()), out.size()});
    return out;
}

Bytes RandomBlocks(RandomSource& random, std::int32_t n) {
    return RandomBytes(random, n * 8);
}

Bytes RandomShortBytes(RandomSource& random) {
    return RandomBytes(random, DrawBelow(random, 8) + 9);
}

void WipeBytes(Secret& bytes) {
    bytes.Wipe();
}

void WipeString(Bytes& text) {
    WipeText(text);
}

Bytes DefaultPin(std::string_view passHashStrong) {
    const Secret once = HashStrong(passHashStrong);
    const Secret digest = HashStrong(once.view());
    std::int64_t sum = 0;
    std::size_t place = 3;  // places count from 1
    for (int power = 1; power <= 4; ++power) {
        const unsigned code = ByteAt(digest.view(), place - 1) / 2;
        std::int64_t term = 1;
        for (int i = 0; i < power; ++i)
            term *= code;
        sum += term;
        place = (code % 5 + place) % 20 + 1;
    }
    return std::to_string(sum);
}

}  // namespace bmr::cry
