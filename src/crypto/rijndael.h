#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "crypto/secret.h"

namespace bmr::cry {

/// Rijndael with blocks of 192 bits and a key of 256 bits, one block at a time (Daemen and Rijmen, "AES
/// Proposal: Rijndael", 1999). Not the AES of FIPS 197, whose blocks have 128 bits; so no library of ours
/// offers it.
class Rijndael192 {
  public:
    static constexpr std::size_t kBlock = 24;
    static constexpr std::size_t kKey = 32;

    /// REQUIRES: 32 bytes of key.
    explicit Rijndael192(std::span<const std::uint8_t> key);

    /// Enciphers or deciphers one block of 24 bytes in place.
    void Encrypt(std::span<std::uint8_t, kBlock> block) const;
    void Decrypt(std::span<std::uint8_t, kBlock> block) const;

  private:
    static constexpr std::size_t kColumns = 6;
    static constexpr std::size_t kRounds = 14;
    void AddRoundKey(std::span<std::uint8_t, kBlock> block, std::size_t round) const;

    Secret keys_;  ///< kRounds + 1 round keys of 24 bytes
};

}  // namespace bmr::cry
