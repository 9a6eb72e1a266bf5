#include <botan/cipher_mode.h>
#include <botan/hash.h>
#include <botan/pwdhash.h>

#include <algorithm>

#include "crypto/cry.h"
#include "crypto/rijndael.h"

namespace bmr::cry {
namespace {

constexpr std::size_t kSalt = 16;
constexpr std::size_t kAesBlock = 16;
constexpr int kIterations = 2048;
constexpr std::size_t kVerifierBlock = Rijndael192::kBlock;

std::string_view View(std::span<const std::uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// AES-256-CBC without a padding of its own (FIPS 197, SP 800-38A).
void AesCbc(Secret& text, std::string_view pass, std::string_view salt, Botan::Cipher_Dir direction) {
    const Secret key = DeriveKey(pass, 32, salt, kIterations);
    const auto mode = Botan::Cipher_Mode::create_or_throw("AES-256/CBC/NoPadding", direction);
    mode->set_key(key.span().data(), key.size());
    mode->start(reinterpret_cast<const std::uint8_t*>(salt.data()), salt.size());
    Botan::secure_vector<std::uint8_t> buffer(text.span().begin(), text.span().end());
    mode->finish(buffer);
    text = Secret(View(buffer));
}

/// `rounds` times the digest; after the first each takes the first `kept` bytes of the one before.
Secret Iterated(const char* name, std::string_view text, int rounds, std::size_t kept) {
    const auto hash = Botan::HashFunction::create_or_throw(name);
    hash->update(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
    Secret digest(hash->output_length());
    hash->final(digest.span().data());
    for (int i = 1; i < rounds; ++i) {
        hash->update(digest.span().data(), kept);
        hash->final(digest.span().data());
    }
    return digest;
}

/// Length of the text before the marker 3 and the filling; npos when there is none. With `n` the last byte's
/// value, the last `n` bytes must have it. A last byte 3 that fits no filling is the marker of a text that
/// fills its block.
std::size_t VerifierPlainSize(std::string_view text) {
    const std::size_t n = ByteAt(text, text.size() - 1);
    const bool room = n >= 1 && n < kVerifierBlock && n + 1 <= text.size();
    if (room && ByteAt(text, text.size() - n - 1) == 3 &&
        std::all_of(text.end() - static_cast<std::ptrdiff_t>(n), text.end(),
                    [n](char c) { return static_cast<unsigned char>(c) == n; }))
        return text.size() - n - 1;
    return n == 3 ? text.size() - 1 : std::string_view::npos;
}

}  // namespace

Bytes PassEncrypt(RandomSource& random, std::string_view text, std::string_view pass) {
    const Bytes salt = RandomBytes(random, kSalt);
    Secret plain(text);
    plain.Append("\x03");
    const char sum = ByteChar(ByteSum(text));
    plain.Append({&sum, 1});
    const std::size_t fill = kAesBlock - plain.size() % kAesBlock;
    plain.Append(std::string(fill, static_cast<char>(fill)));
    AesCbc(plain, pass, salt, Botan::ENCRYPTION);
    return salt + Bytes(plain.view());
}

Secret PassDecrypt(std::string_view text, std::string_view pass) {
    if (text.size() < kSalt + kAesBlock || text.size() % kAesBlock != 0) return {};
    Secret plain(text.substr(kSalt));
    AesCbc(plain, pass, text.substr(0, kSalt), Botan::DECRYPTION);
    const std::size_t fill = ByteAt(plain.view(), plain.size() - 1);
    if (fill > kAesBlock || fill + 2 > plain.size()) return {};
    const std::size_t size = plain.size() - fill - 2;
    if (ByteAt(plain.view(), size) != 3) return {};
    if (ByteAt(plain.view(), size + 1) != ByteSum(plain.view().substr(0, size))) return {};
    return Secret(plain.view().substr(0, size));
}

Bytes VerifierEncrypt(std::string_view text, std::string_view pass) {
    const Rijndael192 cipher(HashPassphrase(pass).span());
    const std::size_t fill = (kVerifierBlock - (text.size() + 1) % kVerifierBlock) % kVerifierBlock;
    Secret plain(text);
    plain.Append("\x03");
    plain.Append(std::string(fill, static_cast<char>(fill)));
    for (std::size_t at = 0; at < plain.size(); at += kVerifierBlock)
        cipher.Encrypt(plain.span().subspan(at).first<kVerifierBlock>());
    return Bytes(plain.view());
}

Secret VerifierDecrypt(std::string_view text, std::string_view pass) {
    Secret plain(text.substr(0, text.size() - text.size() % kVerifierBlock));
    if (plain.empty()) return {};
    const Rijndael192 cipher(HashPassphrase(pass).span());
    for (std::size_t at = 0; at < plain.size(); at += kVerifierBlock)
        cipher.Decrypt(plain.span().subspan(at).first<kVerifierBlock>());
    const std::size_t size = VerifierPlainSize(plain.view());
    return size == std::string_view::npos ? Secret() : Secret(plain.view().substr(0, size));
}

Secret HashPassphrase(std::string_view text) {
    return Iterated("SHA-256", text, 80, 32);
}

// Each round leaves the last byte out: required, a round over all 20 bytes gives other values.
Secret HashStrong(std::string_view text) {
    return Iterated("SHA-1", text, 47, 19);
}

Secret DeriveKey(std::string_view pass, std::size_t keyLength, std::string_view salt, int iterations) {
    const auto family = Botan::PasswordHashFamily::create_or_throw("PBKDF2(SHA-1)");
    const auto hash = family->from_params(static_cast<std::size_t>(iterations));
    Secret key(keyLength);
    hash->derive_key(key.span().data(), key.size(), pass.data(), pass.size(),
                     reinterpret_cast<const std::uint8_t*>(salt.data()), salt.size());
    return key;
}

}  // namespace bmr::cry
