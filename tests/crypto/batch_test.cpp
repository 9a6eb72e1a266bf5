#include <botan/block_cipher.h>
#include <gtest/gtest.h>

#include "crypto/blowfish.h"
#include "crypto/cry.h"
#include "support/random.h"

namespace bmr::cry {
namespace {

TEST(Blowfish, EveryCountOfLanesAgreesWithTheLibraryWordByWord) {
    test::SeededRandom random(7);
    for (std::size_t lanes = 1; lanes <= kBlowfishLanes; ++lanes) {
        std::vector<std::array<std::uint8_t, kBlowfishKeyBytes>> keys(lanes);
        for (auto& key : keys)
            random.Fill(key);
        std::vector<BlowfishKey> schedules(lanes);
        Schedule(keys, schedules);
        for (std::size_t lane = 0; lane < lanes; ++lane) {
            const auto reference = Botan::BlockCipher::create_or_throw("Blowfish");
            reference->set_key(keys[lane].data(), keys[lane].size());
            // Enough blocks that every box entry is likely met.
            for (int block = 0; block < 400; ++block) {
                std::array<std::uint8_t, 8> ours{};
                random.Fill(ours);
                const auto plain = ours;
                auto theirs = ours;
                const std::array<std::uint8_t, 8> zero{};
                EncryptCbc(schedules[lane], zero.data(), ours);
                reference->encrypt(theirs.data());
                ASSERT_EQ(ours, theirs) << lanes << " lanes, lane " << lane;
                DecryptCbc(schedules[lane], zero.data(), ours);
                ASSERT_EQ(ours, plain);
            }
        }
    }
}

class Batch : public testing::Test {
  protected:
    Batch() : state(random) { state.Keystring = Secret(RandomBytes(random, 256)); }

    void ExpectLikeOneByOne(const std::vector<Bytes>& texts, unsigned threads) {
        const std::vector<std::string_view> views(texts.begin(), texts.end());
        std::vector<Bytes> plain;
        std::vector<std::size_t> order;
        DecipherBatch(
            state, views,
            [&](std::size_t index, std::string_view text) {
                order.push_back(index);
                plain.emplace_back(text);
            },
            threads);
        ASSERT_EQ(plain.size(), texts.size());
        for (std::size_t i = 0; i < texts.size(); ++i) {
            EXPECT_EQ(order[i], i);
            FieldCipher(state, 2, texts[i]);
            ASSERT_EQ(plain[i], state.FieldPlain.view()) << i;
        }
    }

    test::SeededRandom random{3};
    CipherState state;
};

TEST_F(Batch, DeciphersAsOneByOneWhateverTheTextsAre) {
    std::vector<Bytes> texts;
    for (int i = 0; i < 3000; ++i) {
        Bytes cipher = FieldCipher(state, 1, RandomBytes(random, i % 70));
        if (i % 7 == 0) cipher[0] = cipher[1] = 'x';  // one selector, another key: noise
        if (i % 11 == 0) cipher.resize(static_cast<std::size_t>(i % 40));
        texts.push_back(cipher);
    }
    for (const unsigned threads : {1U, 2U, 5U})
        ExpectLikeOneByOne(texts, threads);
    ExpectLikeOneByOne({}, 0);
}

TEST_F(Batch, CountsWhatItDeciphersAndNothingElse) {
    const Bytes cipher = FieldCipher(state, 1, Bytes("text"));
    const std::vector<std::string_view> views = {cipher, "bad", cipher};
    DecipherBatch(state, views, [](std::size_t, std::string_view) {});
    EXPECT_EQ(state.deciphered, 2U);
    state.Keystring.Wipe();
    DecipherBatch(state, views, [](std::size_t, std::string_view plain) { EXPECT_EQ(plain, ""); });
    EXPECT_EQ(state.deciphered, 2U);
}

TEST_F(Batch, EnciphersWhatOneByOneReads) {
    std::vector<Bytes> texts = {"", "a", Bytes(7, 'b'), Bytes(8, 'c'), Bytes(70000, 'd')};
    for (int i = 0; i < 2000; ++i)
        texts.push_back(std::to_string(i));
    const std::vector<std::string_view> views(texts.begin(), texts.end());
    const std::vector<Bytes> ciphered = EncipherBatch(state, views);
    ASSERT_EQ(ciphered.size(), texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i)
        EXPECT_EQ(FieldCipher(state, 2, ciphered[i]), texts[i]);
    EXPECT_NE(ciphered[1], EncipherBatch(state, views)[1]);
}

}  // namespace
}  // namespace bmr::cry
