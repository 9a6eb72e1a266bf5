#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace bmr::cry {

/// Blowfish (Schneier, "Description of a New Variable-Length Key, 64-Bit Block Cipher", 1993) under keys of
/// 16 bytes: the cipher of all record content. Our own because a row costs one key schedule, and a schedule
/// is a chain of 521 encryptions each of which waits for the one before. Several schedules in one loop fill
/// those waits, and no library offers that.
class Blowfish {
  public:
    static constexpr std::size_t kBlock = 8;
    static constexpr std::size_t kKey = 16;
    /// Schedules in one loop. More are hardly quicker, and their tables crowd a first cache of 32 KiB.
    static constexpr std::size_t kLanes = 6;
    using Key = std::array<std::uint8_t, kKey>;

    Blowfish() = default;  ///< no key yet
    explicit Blowfish(const Key& key) { SetKeys({&key, 1}, {this, 1}); }
    ~Blowfish();
    Blowfish(const Blowfish&) = delete;
    Blowfish& operator=(const Blowfish&) = delete;

    /// Gives each of `ciphers` its key, the schedules interleaved. REQUIRES: as many keys as ciphers, 1 to
    /// kLanes.
    static void SetKeys(std::span<const Key> keys, std::span<Blowfish> ciphers);

    /// Whole blocks in CBC mode (SP 800-38A), in place.
    void EncryptCbc(std::span<const std::uint8_t, kBlock> vector, std::span<std::uint8_t> text) const;
    /// Whole blocks of `text` into `plain`, which is as long and does not overlap it.
    void DecryptCbc(std::span<const std::uint8_t, kBlock> vector, std::span<const std::uint8_t> text,
                    std::span<std::uint8_t> plain) const;

  private:
    struct Kernel;
    static constexpr std::size_t kRounds = 16;
    static constexpr std::size_t kP = kRounds + 2;
    /// The P-array, then the four S-boxes: the order in which a schedule fills them.
    using Words = std::array<std::uint32_t, kP + std::size_t{4} * 256>;
    static const Words kPi;

    Words words_;
};

}  // namespace bmr::cry
