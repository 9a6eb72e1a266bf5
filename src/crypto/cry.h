#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "base/bytes.h"
#include "base/random.h"
#include "base/value.h"
#include "crypto/secret.h"

namespace bmr::cry {

/// The session's field cipher: the table from which field keys are picked, the key in hand, and the output of
/// the last deciphering. Not for two threads at once; `DecipherBatch` works beside it.
struct CipherState {
    explicit CipherState(RandomSource& source) : random(&source) {}

    Secret Keystring;   ///< 256 bytes after login, empty when no database is open
    Secret FieldKey;    ///< 16 bytes once a key was picked
    Secret FieldPlain;  ///< plain bytes of the last deciphering, untrimmed
    RandomSource* random;
    /// How many fields were deciphered so far; benchmarks and tests hold lists to it.
    std::uint64_t deciphered = 0;
    /// Shows a message by number: modes 3 and 4 without a whole `FieldKey` say Msg(34) and go on.
    std::function<void(int)> showMessage;
};

/// The gate to all record content. Mode 1 enciphers with a fresh selector, 2 deciphers that and trims blanks
/// from both ends, 3 enciphers and 4 deciphers under the current `FieldKey` without a selector. Modes 1 and 2
/// give "" without a `Keystring`; mode 1 gives "" for `Empty`, and a run of 0 to 12 blanks enciphered for
/// `Null` and "". A text that does not decipher reads as noise, by design. Numbers encipher as their decimal
/// text.
Bytes FieldCipher(CipherState& state, int mode, const Value& value);
Bytes FieldCipher(CipherState& state, int mode, std::string_view text);
inline Bytes FieldCipher(CipherState& state, int mode, const Bytes& text) {
    return FieldCipher(state, mode, std::string_view(text));
}

/// Mode 2 without its trimmed result, which would be one more copy of a record in memory: deciphers `text`
/// into `FieldPlain` and gives that, untrimmed. Empty, and `FieldPlain` as it was, for an empty text and
/// without a `Keystring`.
std::string_view DecipherField(CipherState& state, std::string_view text);

/// Sets `FieldKey` to the 16 bytes that `selector` picks from `Keystring`. REQUIRES: a `Keystring`.
void SelectFieldKey(CipherState& state, std::int32_t selector);

/// Initialisation vector (8 bytes) and Blowfish-CBC cipher text of `text`, one byte 3 and the padding.
Bytes BlockEncrypt(CipherState& state, const Value& value);

/// Deciphers vector and cipher text into `FieldPlain`. The status is "", "Error" (a length that is no
/// multiple of 8) or "-bad password-" (no marker; `FieldPlain` stays as deciphered).
std::string BlockDecrypt(CipherState& state, std::string_view text);

/// Deciphers many texts of mode 1, trimmed or not as mode 2 does: grouped by selector, several key schedules
/// in one loop, on up to `threads` threads (0: all cores). `each` is called once for each text, on the
/// calling thread, in ascending order of `index`; `plain` is valid only inside the call, untrimmed, empty
/// where mode 2 would give noise of no length. Counts in `state.deciphered`.
void DecipherBatch(CipherState& state, std::span<const std::string_view> texts,
                   const std::function<void(std::size_t index, std::string_view plain)>& each,
                   unsigned threads = 0);

/// What mode 1 of `FieldCipher` gives for each of `texts` in turn, to the byte under the same random numbers,
/// with the schedules of `DecipherBatch`.
std::vector<Bytes> EncipherBatch(CipherState& state, std::span<const std::string_view> texts,
                                 unsigned threads = 0);

/// AES-256-CBC under a key of PBKDF2 (HMAC-SHA-1, 2048 iterations) with a random 16-byte salt that is also
/// the vector.
Bytes PassEncrypt(RandomSource& random, std::string_view text, std::string_view pass);
/// The text, or empty on any mismatch.
Secret PassDecrypt(std::string_view text, std::string_view pass);

/// Rijndael (192-bit blocks, 256-bit key, no chaining) under HashPassphrase(pass).
Bytes VerifierEncrypt(std::string_view text, std::string_view pass);
/// Bytes behind the last whole block of 24 are ignored; empty when the marker is not found.
Secret VerifierDecrypt(std::string_view text, std::string_view pass);

/// SHA-256 (FIPS 180) applied 80 times: 32 bytes.
Secret HashPassphrase(std::string_view text);
/// SHA-1 (FIPS 180) over the text, then 46 rounds over the first 19 bytes of the digest in place: 20 bytes.
Secret HashStrong(std::string_view text);
/// PBKDF2 of PKCS #5 (RFC 8018) with HMAC-SHA-1.
Secret DeriveKey(std::string_view pass, std::size_t keyLength, std::string_view salt, int iterations);

/// Sum of the bytes modulo 256.
std::uint8_t ByteSum(std::string_view bytes);

/// `n` strong random bytes; empty for 0 and below.
Bytes RandomBytes(RandomSource& random, std::int32_t n);
/// n * 8 strong random bytes.
Bytes RandomBlocks(RandomSource& random, std::int32_t n);
/// 9 to 16 strong random bytes.
Bytes RandomShortBytes(RandomSource& random);

/// Overwrites and empties.
void WipeBytes(Secret& bytes);
void WipeString(Bytes& text);

/// The default PIN of a `PassHashStrong`: digits as text.
Bytes DefaultPin(std::string_view passHashStrong);

}  // namespace bmr::cry
