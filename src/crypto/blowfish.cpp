#include "crypto/blowfish.h"

#include <algorithm>

namespace bmr::cry {
namespace {

using Keys = std::span<const std::array<std::uint8_t, kBlowfishKeyBytes>>;

inline std::uint32_t LoadBig(const std::uint8_t* bytes) {
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 |
           bytes[3];
}

inline void StoreBig(std::uint32_t word, std::uint8_t* bytes) {
    for (int i = 3; i >= 0; --i, word >>= 8)
        bytes[i] = static_cast<std::uint8_t>(word);
}

inline std::uint32_t Mix(const BlowfishKey& key, std::uint32_t x) {
    return ((key.s[x >> 24] + key.s[256 + (x >> 16 & 255)]) ^ key.s[512 + (x >> 8 & 255)]) +
           key.s[768 + (x & 255)];
}

/// One block through every lane: the lanes do not wait for each other.
template <std::size_t Lanes>
[[gnu::always_inline]] inline void EncryptLanes(BlowfishKey* keys, std::uint32_t (&left)[Lanes],
                                                std::uint32_t (&right)[Lanes]) {
    for (std::size_t round = 0; round < 16; round += 2) {
#pragma GCC unroll 8
        for (std::size_t lane = 0; lane < Lanes; ++lane) {
            left[lane] ^= keys[lane].p[round];
            right[lane] ^= Mix(keys[lane], left[lane]);
        }
#pragma GCC unroll 8
        for (std::size_t lane = 0; lane < Lanes; ++lane) {
            right[lane] ^= keys[lane].p[round + 1];
            left[lane] ^= Mix(keys[lane], right[lane]);
        }
    }
#pragma GCC unroll 8
    for (std::size_t lane = 0; lane < Lanes; ++lane) {
        const std::uint32_t kept = left[lane];
        left[lane] = right[lane] ^ keys[lane].p[17];
        right[lane] = kept ^ keys[lane].p[16];
    }
}

template <std::size_t Lanes>
void ScheduleLanes(const std::array<std::uint8_t, kBlowfishKeyBytes>* keys, BlowfishKey* schedules) {
    for (std::size_t lane = 0; lane < Lanes; ++lane) {
        BlowfishKey& schedule = schedules[lane];
        for (std::size_t i = 0; i < schedule.p.size(); ++i)
            schedule.p[i] = kPiWords[i] ^ LoadBig(keys[lane].data() + i % 4 * 4);
        std::copy(kPiWords.begin() + 18, kPiWords.end(), schedule.s.begin());
    }
    std::uint32_t left[Lanes] = {};
    std::uint32_t right[Lanes] = {};
    for (std::size_t i = 0; i < 18; i += 2) {
        EncryptLanes<Lanes>(schedules, left, right);
#pragma GCC unroll 8
        for (std::size_t lane = 0; lane < Lanes; ++lane) {
            schedules[lane].p[i] = left[lane];
            schedules[lane].p[i + 1] = right[lane];
        }
    }
    for (std::size_t i = 0; i < 1024; i += 2) {
        EncryptLanes<Lanes>(schedules, left, right);
#pragma GCC unroll 8
        for (std::size_t lane = 0; lane < Lanes; ++lane) {
            schedules[lane].s[i] = left[lane];
            schedules[lane].s[i + 1] = right[lane];
        }
    }
}

}  // namespace

void Schedule(Keys keys, std::span<BlowfishKey> schedules) {
    switch (keys.size()) {
        case 1:
            return ScheduleLanes<1>(keys.data(), schedules.data());
        case 2:
            return ScheduleLanes<2>(keys.data(), schedules.data());
        case 3:
            return ScheduleLanes<3>(keys.data(), schedules.data());
        case 4:
            return ScheduleLanes<4>(keys.data(), schedules.data());
        case 5:
            return ScheduleLanes<5>(keys.data(), schedules.data());
        case 6:
            return ScheduleLanes<6>(keys.data(), schedules.data());
        default:
            return;
    }
}

void EncryptCbc(const BlowfishKey& key, const std::uint8_t* vector, std::span<std::uint8_t> text) {
    std::uint32_t left = LoadBig(vector);
    std::uint32_t right = LoadBig(vector + 4);
    for (std::size_t at = 0; at + kBlowfishBlock <= text.size(); at += kBlowfishBlock) {
        left ^= LoadBig(&text[at]);
        right ^= LoadBig(&text[at + 4]);
        for (std::size_t round = 0; round < 16; round += 2) {
            left ^= key.p[round];
            right ^= Mix(key, left);
            right ^= key.p[round + 1];
            left ^= Mix(key, right);
        }
        const std::uint32_t kept = left;
        left = right ^ key.p[17];
        right = kept ^ key.p[16];
        StoreBig(left, &text[at]);
        StoreBig(right, &text[at + 4]);
    }
}

void DecryptCbc(const BlowfishKey& key, const std::uint8_t* vector, std::span<std::uint8_t> text) {
    std::uint32_t chainLeft = LoadBig(vector);
    std::uint32_t chainRight = LoadBig(vector + 4);
    for (std::size_t at = 0; at + kBlowfishBlock <= text.size(); at += kBlowfishBlock) {
        const std::uint32_t cipherLeft = LoadBig(&text[at]);
        const std::uint32_t cipherRight = LoadBig(&text[at + 4]);
        std::uint32_t left = cipherLeft;
        std::uint32_t right = cipherRight;
        for (std::size_t round = 17; round > 1; round -= 2) {
            left ^= key.p[round];
            right ^= Mix(key, left);
            right ^= key.p[round - 1];
            left ^= Mix(key, right);
        }
        const std::uint32_t kept = left;
        left = right ^ key.p[0];
        right = kept ^ key.p[1];
        StoreBig(left ^ chainLeft, &text[at]);
        StoreBig(right ^ chainRight, &text[at + 4]);
        chainLeft = cipherLeft;
        chainRight = cipherRight;
    }
}

}  // namespace bmr::cry
