#include "crypto/blowfish.h"

#include <botan/block_cipher.h>
#include <gtest/gtest.h>

#include <vector>

#include "support/data.h"
#include "support/random.h"

namespace bmr::cry {
namespace {

std::vector<std::uint8_t> Octets(RandomSource& random, std::size_t count) {
    std::vector<std::uint8_t> out(count);
    random.Fill(out);
    return out;
}

/// CBC by the definition, over a block cipher that is not ours.
std::vector<std::uint8_t> PeerEncrypt(const Blowfish::Key& key, std::span<const std::uint8_t> vector,
                                      std::vector<std::uint8_t> text) {
    const auto cipher = Botan::BlockCipher::create_or_throw("Blowfish");
    cipher->set_key(key.data(), key.size());
    const std::uint8_t* chain = vector.data();
    for (std::size_t at = 0; at < text.size(); at += Blowfish::kBlock) {
        for (std::size_t i = 0; i < Blowfish::kBlock; ++i)
            text[at + i] = static_cast<std::uint8_t>(text[at + i] ^ chain[i]);
        cipher->encrypt(&text[at]);
        chain = &text[at];
    }
    return text;
}

// Published with the cipher. An 8-byte key twice over is scheduled like the key itself.
TEST(Blowfish, KnownAnswers) {
    const struct {
        const char *key, *plain, *cipher;
    } cases[] = {{"0000000000000000", "0000000000000000", "4ef997456198dd78"},
                 {"ffffffffffffffff", "ffffffffffffffff", "51866fd5b85ecb8a"},
                 {"3000000000000000", "1000000000000001", "7d856f9a613063f2"},
                 {"0123456789abcdef", "1111111111111111", "61f9c3802281b096"}};
    for (const auto& known : cases) {
        const Bytes half = test::Hex(known.key);
        Blowfish::Key key;
        std::copy_n((half + half).begin(), key.size(), key.begin());
        Bytes block = test::Hex(known.plain);
        const std::array<std::uint8_t, 8> zeros{};
        Blowfish(key).EncryptCbc(zeros, {reinterpret_cast<std::uint8_t*>(block.data()), block.size()});
        EXPECT_EQ(ToHex(block), known.cipher);
    }
}

TEST(Blowfish, EveryNumberOfLanesAndBlocksAgreesWithAnotherImplementation) {
    test::SeededRandom random;
    for (std::size_t lanes = 1; lanes <= Blowfish::kLanes; ++lanes) {
        std::vector<Blowfish::Key> keys(lanes);
        for (auto& key : keys)
            random.Fill(key);
        std::array<Blowfish, Blowfish::kLanes> ciphers;
        Blowfish::SetKeys(keys, {ciphers.data(), lanes});
        for (std::size_t lane = 0; lane < lanes; ++lane)
            for (const std::size_t blocks : {1U, 3U, 4U, 5U, 8U, 300U}) {
                std::array<std::uint8_t, Blowfish::kBlock> vector{};
                random.Fill(vector);
                const auto plain = Octets(random, blocks * Blowfish::kBlock);
                auto text = plain;
                ciphers[lane].EncryptCbc(vector, text);
                EXPECT_EQ(text, PeerEncrypt(keys[lane], vector, plain)) << lane << " of " << lanes;
                std::vector<std::uint8_t> back(text.size());
                ciphers[lane].DecryptCbc(vector, text, back);
                EXPECT_EQ(back, plain) << blocks << " blocks, lane " << lane << " of " << lanes;
            }
    }
}

}  // namespace
}  // namespace bmr::cry
