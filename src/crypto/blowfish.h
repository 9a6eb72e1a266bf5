#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <span>

#include "crypto/secret.h"

namespace bmr::cry {

/// The fraction of pi, from which every key schedule starts.
extern const std::array<std::uint32_t, 1042> kPiWords;

/// Blowfish (Schneier, 1993) with keys of 16 bytes. The schedule of a key costs 521 block encryptions, each
/// waiting for the one before; so a single schedule leaves most of the processor idle, and `Schedule` works
/// several side by side.
struct BlowfishKey {
    std::array<std::uint32_t, 18> p;
    std::array<std::uint32_t, 1024> s;  ///< four boxes of 256

    BlowfishKey() = default;
    BlowfishKey(const BlowfishKey&) = delete;
    BlowfishKey& operator=(const BlowfishKey&) = delete;
    ~BlowfishKey() { WipeMemory(this, sizeof(*this)); }
};

inline constexpr std::size_t kBlowfishKeyBytes = 16;
inline constexpr std::size_t kBlowfishBlock = 8;

/// As many schedules as fit the first-level cache with room for the rest.
inline constexpr std::size_t kBlowfishLanes = 6;

/// Makes `count` schedules (1 to kBlowfishLanes) in one loop. `keys` are 16 bytes each.
void Schedule(std::span<const std::array<std::uint8_t, kBlowfishKeyBytes>> keys,
              std::span<BlowfishKey> schedules);

/// CBC over whole blocks of `text`, in place (SP 800-38A). `vector` has 8 bytes.
void EncryptCbc(const BlowfishKey& key, const std::uint8_t* vector, std::span<std::uint8_t> text);
void DecryptCbc(const BlowfishKey& key, const std::uint8_t* vector, std::span<std::uint8_t> text);

}  // namespace bmr::cry
