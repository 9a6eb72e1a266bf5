#include "crypto/rijndael.h"

#include <algorithm>

namespace bmr::cry {
namespace {

using Box = std::array<std::uint8_t, 256>;

constexpr std::uint8_t Double(std::uint8_t x) {
    return static_cast<std::uint8_t>((x << 1) ^ ((x & 0x80) ? 0x1B : 0));
}

constexpr std::uint8_t Multiply(std::uint8_t a, std::uint8_t b) {
    std::uint8_t product = 0;
    for (; b != 0; b = static_cast<std::uint8_t>(b >> 1)) {
        if (b & 1) product = static_cast<std::uint8_t>(product ^ a);
        a = Double(a);
    }
    return product;
}

/// The S-box from its definition: inverse in GF(2^8), then the affine map.
constexpr Box MakeBox() {
    Box box{};
    std::uint8_t p = 1;
    std::uint8_t q = 1;
    do {
        p = static_cast<std::uint8_t>(p ^ Double(p));  // times 3
        q = static_cast<std::uint8_t>(q ^ (q << 1));   // divided by 3
        q = static_cast<std::uint8_t>(q ^ (q << 2));
        q = static_cast<std::uint8_t>(q ^ (q << 4));
        if (q & 0x80) q = static_cast<std::uint8_t>(q ^ 0x09);
        const auto rotate = [q](int n) { return static_cast<std::uint8_t>((q << n) | (q >> (8 - n))); };
        box[p] = static_cast<std::uint8_t>(q ^ rotate(1) ^ rotate(2) ^ rotate(3) ^ rotate(4) ^ 0x63);
    } while (p != 1);
    box[0] = 0x63;
    return box;
}

constexpr Box Invert(const Box& box) {
    Box inverse{};
    for (std::size_t i = 0; i < box.size(); ++i)
        inverse[box[i]] = static_cast<std::uint8_t>(i);
    return inverse;
}

constexpr Box kBox = MakeBox();
constexpr Box kInverse = Invert(kBox);

/// For blocks of six columns, row r moves by r places.
constexpr std::size_t kColumnCount = 6;

void ShiftRows(std::span<std::uint8_t, 24> block, bool back) {
    std::array<std::uint8_t, 24> moved{};
    for (std::size_t column = 0; column < kColumnCount; ++column)
        for (std::size_t row = 0; row < 4; ++row) {
            const std::size_t other = (column + row) % kColumnCount;
            if (back)
                moved[other * 4 + row] = block[column * 4 + row];
            else
                moved[column * 4 + row] = block[other * 4 + row];
        }
    std::copy(moved.begin(), moved.end(), block.begin());
    WipeMemory(moved.data(), moved.size());
}

void MixColumns(std::span<std::uint8_t, 24> block, const std::array<std::uint8_t, 4>& factors) {
    for (std::size_t column = 0; column < kColumnCount; ++column) {
        std::array<std::uint8_t, 4> in{};
        std::copy_n(block.begin() + static_cast<std::ptrdiff_t>(column * 4), 4, in.begin());
        for (std::size_t row = 0; row < 4; ++row) {
            std::uint8_t sum = 0;
            for (std::size_t i = 0; i < 4; ++i)
                sum = static_cast<std::uint8_t>(sum ^ Multiply(in[i], factors[(i + 4 - row) % 4]));
            block[column * 4 + row] = sum;
        }
        WipeMemory(in.data(), in.size());
    }
}

constexpr std::array<std::uint8_t, 4> kMix = {2, 3, 1, 1};
constexpr std::array<std::uint8_t, 4> kUnmix = {14, 11, 13, 9};

}  // namespace

Rijndael192::Rijndael192(std::span<const std::uint8_t> key) : keys_(kBlock * (kRounds + 1)) {
    const auto words = keys_.span();
    std::copy_n(key.begin(), kKey, words.begin());
    std::uint8_t constant = 1;
    constexpr std::size_t kKeyWords = kKey / 4;
    for (std::size_t i = kKeyWords; i < kColumns * (kRounds + 1); ++i) {
        std::array<std::uint8_t, 4> word{};
        std::copy_n(words.begin() + static_cast<std::ptrdiff_t>((i - 1) * 4), 4, word.begin());
        if (i % kKeyWords == 0) {
            std::rotate(word.begin(), word.begin() + 1, word.end());
            for (auto& byte : word)
                byte = kBox[byte];
            word[0] = static_cast<std::uint8_t>(word[0] ^ constant);
            constant = Double(constant);
        } else if (i % kKeyWords == 4) {
            for (auto& byte : word)
                byte = kBox[byte];
        }
        for (std::size_t j = 0; j < 4; ++j)
            words[i * 4 + j] = static_cast<std::uint8_t>(words[(i - kKeyWords) * 4 + j] ^ word[j]);
        WipeMemory(word.data(), word.size());
    }
}

void Rijndael192::AddRoundKey(std::span<std::uint8_t, kBlock> block, std::size_t round) const {
    const auto keys = keys_.span();
    for (std::size_t i = 0; i < kBlock; ++i)
        block[i] = static_cast<std::uint8_t>(block[i] ^ keys[round * kBlock + i]);
}

void Rijndael192::Encrypt(std::span<std::uint8_t, kBlock> block) const {
    AddRoundKey(block, 0);
    for (std::size_t round = 1; round <= kRounds; ++round) {
        for (auto& byte : block)
            byte = kBox[byte];
        ShiftRows(block, false);
        if (round != kRounds) MixColumns(block, kMix);
        AddRoundKey(block, round);
    }
}

void Rijndael192::Decrypt(std::span<std::uint8_t, kBlock> block) const {
    for (std::size_t round = kRounds; round >= 1; --round) {
        AddRoundKey(block, round);
        if (round != kRounds) MixColumns(block, kUnmix);
        ShiftRows(block, true);
        for (auto& byte : block)
            byte = kInverse[byte];
    }
    AddRoundKey(block, 0);
}

}  // namespace bmr::cry
