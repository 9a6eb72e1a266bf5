#include "crypto/blowfish.h"

#include <utility>

#include "crypto/secret.h"

namespace bmr::cry {
namespace {

std::uint32_t LoadWord(const std::uint8_t* bytes) {
    return static_cast<std::uint32_t>(bytes[0]) << 24 | static_cast<std::uint32_t>(bytes[1]) << 16 |
           static_cast<std::uint32_t>(bytes[2]) << 8 | static_cast<std::uint32_t>(bytes[3]);
}

void StoreWord(std::uint32_t word, std::uint8_t* bytes) {
    bytes[0] = static_cast<std::uint8_t>(word >> 24);
    bytes[1] = static_cast<std::uint8_t>(word >> 16);
    bytes[2] = static_cast<std::uint8_t>(word >> 8);
    bytes[3] = static_cast<std::uint8_t>(word);
}

/// Blocks of one field that are deciphered in one loop.
constexpr std::size_t kBlocksAtOnce = 4;

}  // namespace

/// The rounds over several blocks at once. A round is written out for all lanes before the next one begins:
/// lanes do not depend on each other, so the processor works on one while another waits for its table words.
struct Blowfish::Kernel {
    template <std::size_t kCount>
    using Half = std::array<std::uint32_t, kCount>;

    static std::uint32_t Mix(const Words& words, std::uint32_t x) {
        const std::uint32_t* s = words.data() + kP;
        return ((s[x >> 24] + s[256 + (x >> 16 & 255)]) ^ s[512 + (x >> 8 & 255)]) + s[768 + (x & 255)];
    }

    /// Lane n runs under ciphers[n * stride]; deciphering takes the P-array from its end.
    template <bool kForward, std::size_t kStride, std::size_t... kLane>
    [[gnu::always_inline]] static void Rounds(std::index_sequence<kLane...>, const Blowfish* ciphers,
                                              Half<sizeof...(kLane)>& left, Half<sizeof...(kLane)>& right) {
        const auto place = [](std::size_t i) { return kForward ? i : kP - 1 - i; };
        for (std::size_t round = 0; round < kRounds; round += 2) {
            ((left[kLane] ^= ciphers[kLane * kStride].words_[place(round)]), ...);
            ((right[kLane] ^= Mix(ciphers[kLane * kStride].words_, left[kLane])), ...);
            ((right[kLane] ^= ciphers[kLane * kStride].words_[place(round + 1)]), ...);
            ((left[kLane] ^= Mix(ciphers[kLane * kStride].words_, right[kLane])), ...);
        }
        (std::swap(left[kLane], right[kLane]), ...);
        ((right[kLane] ^= ciphers[kLane * kStride].words_[place(kRounds)]), ...);
        ((left[kLane] ^= ciphers[kLane * kStride].words_[place(kRounds + 1)]), ...);
    }

    template <std::size_t kCount>
    static void Schedule(const Key* keys, Blowfish* ciphers) {
        for (std::size_t lane = 0; lane < kCount; ++lane) {
            ciphers[lane].words_ = kPi;
            for (std::size_t i = 0; i < kP; ++i)
                ciphers[lane].words_[i] ^= LoadWord(keys[lane].data() + i * 4 % kKey);
        }
        Half<kCount> left{};
        Half<kCount> right{};
        for (std::size_t i = 0; i < kPi.size(); i += 2) {
            Rounds<true, 1>(std::make_index_sequence<kCount>(), ciphers, left, right);
            for (std::size_t lane = 0; lane < kCount; ++lane) {
                ciphers[lane].words_[i] = left[lane];
                ciphers[lane].words_[i + 1] = right[lane];
            }
        }
    }

    template <std::size_t... kBelow>
    static constexpr auto MakeSchedules(std::index_sequence<kBelow...>) {
        return std::array{&Schedule<kBelow + 1>...};
    }

    /// Chained to the cipher text before it, or to the vector.
    template <std::size_t kCount>
    static void DecryptBlocks(const Blowfish& cipher, const std::uint8_t* chain, const std::uint8_t* text,
                              std::uint8_t* plain) {
        Half<kCount> left;
        Half<kCount> right;
        for (std::size_t i = 0; i < kCount; ++i) {
            left[i] = LoadWord(text + i * kBlock);
            right[i] = LoadWord(text + i * kBlock + 4);
        }
        Rounds<false, 0>(std::make_index_sequence<kCount>(), &cipher, left, right);
        for (std::size_t i = 0; i < kCount; ++i) {
            StoreWord(left[i] ^ LoadWord(chain), plain + i * kBlock);
            StoreWord(right[i] ^ LoadWord(chain + 4), plain + i * kBlock + 4);
            chain = text + i * kBlock;
        }
    }
};

Blowfish::~Blowfish() {
    WipeMemory(words_.data(), sizeof(words_));
}

void Blowfish::SetKeys(std::span<const Key> keys, std::span<Blowfish> ciphers) {
    static constexpr auto kSchedules = Kernel::MakeSchedules(std::make_index_sequence<kLanes>());
    kSchedules.at(ciphers.size() - 1)(keys.data(), ciphers.data());
}

void Blowfish::EncryptCbc(std::span<const std::uint8_t, kBlock> vector, std::span<std::uint8_t> text) const {
    Kernel::Half<1> left{LoadWord(vector.data())};
    Kernel::Half<1> right{LoadWord(vector.data() + 4)};
    for (std::size_t at = 0; at + kBlock <= text.size(); at += kBlock) {
        std::uint8_t* block = text.data() + at;
        left[0] ^= LoadWord(block);
        right[0] ^= LoadWord(block + 4);
        Kernel::Rounds<true, 0>(std::make_index_sequence<1>(), this, left, right);
        StoreWord(left[0], block);
        StoreWord(right[0], block + 4);
    }
}

void Blowfish::DecryptCbc(std::span<const std::uint8_t, kBlock> vector, std::span<const std::uint8_t> text,
                          std::span<std::uint8_t> plain) const {
    const std::uint8_t* chain = vector.data();
    std::size_t at = 0;
    for (; at + kBlocksAtOnce * kBlock <= text.size(); at += kBlocksAtOnce * kBlock) {
        Kernel::DecryptBlocks<kBlocksAtOnce>(*this, chain, text.data() + at, plain.data() + at);
        chain = text.data() + at + (kBlocksAtOnce - 1) * kBlock;
    }
    for (; at + kBlock <= text.size(); at += kBlock) {
        Kernel::DecryptBlocks<1>(*this, chain, text.data() + at, plain.data() + at);
        chain = text.data() + at;
    }
}

}  // namespace bmr::cry
