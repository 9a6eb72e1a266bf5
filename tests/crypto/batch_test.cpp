#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "crypto/cry.h"
#include "support/random.h"

namespace bmr::cry {
namespace {

struct Keyed {
    explicit Keyed(std::uint64_t seed = 1) : random(seed), state(random) {
        state.Keystring = Secret(RandomBytes(random, 256));
    }
    test::SeededRandom random;
    CipherState state;
};

std::vector<std::string_view> Views(const std::vector<Bytes>& texts) {
    return {texts.begin(), texts.end()};
}

std::vector<Bytes> Decipher(CipherState& state, const std::vector<Bytes>& texts, unsigned threads) {
    std::vector<Bytes> out;
    const auto caller = std::this_thread::get_id();
    DecipherBatch(
        state, Views(texts),
        [&](std::size_t index, std::string_view plain) {
            EXPECT_EQ(index, out.size()) << "each text once, in order";
            EXPECT_EQ(std::this_thread::get_id(), caller);
            out.emplace_back(plain);
        },
        threads);
    return out;
}

/// Good fields, several of them under one selector, and every way in which a field can be bad.
std::vector<Bytes> Mixture(Keyed& keyed) {
    std::vector<Bytes> texts;
    for (int i = 0; i < 400; ++i) {
        Bytes text = FieldCipher(keyed.state, 1, RandomBytes(keyed.random, i % 90));
        if (i % 7 == 1) text.replace(0, 2, texts.back(), 0, 2);  // another's selector: noise as a rule
        if (i % 11 == 2) text[text.size() - 1] = static_cast<char>(text.back() ^ 1);
        if (i % 13 == 3) text.resize(static_cast<std::size_t>(i) % 24);
        texts.push_back(text);
        if (i % 5 == 4) texts.push_back(texts[texts.size() / 2]);
    }
    texts.emplace_back();
    return texts;
}

TEST(DecipherBatch, GivesWhatMode2LeavesForEachText) {
    Keyed keyed;
    const auto texts = Mixture(keyed);
    std::vector<Bytes> expected;
    const auto before = keyed.state.deciphered;
    for (const Bytes& text : texts) {
        FieldCipher(keyed.state, 2, text);
        expected.emplace_back(keyed.state.FieldPlain.view());
    }
    const auto counted = keyed.state.deciphered - before;
    EXPECT_LT(counted, texts.size()) << "the mixture has texts without a block";
    for (const unsigned threads : {0U, 1U, 2U, 5U}) {
        const auto start = keyed.state.deciphered;
        EXPECT_EQ(Decipher(keyed.state, texts, threads), expected) << threads << " threads";
        EXPECT_EQ(keyed.state.deciphered - start, counted);
    }
}

TEST(DecipherBatch, ReadsAsNothingWithoutAKeystring) {
    Keyed keyed;
    const auto texts = Mixture(keyed);
    keyed.state.Keystring.Wipe();
    EXPECT_EQ(Decipher(keyed.state, texts, 2), std::vector<Bytes>(texts.size()));
    EXPECT_EQ(keyed.state.deciphered, 0U);
    EXPECT_TRUE(Decipher(keyed.state, {}, 2).empty());
}

TEST(DecipherBatch, WipesEachPlainTextAndGoesOnWhenTheDatabaseCloses) {
    Keyed keyed;
    // Three of these are more than stands in memory at once, so that the batch falls into parts.
    const Bytes plain(7 << 20, 'x');
    const std::vector<Bytes> texts(5, FieldCipher(keyed.state, 1, plain));
    const char* previous = nullptr;
    int calls = 0;
    DecipherBatch(keyed.state, Views(texts), [&](std::size_t index, std::string_view text) {
        EXPECT_TRUE(text == plain) << index;
        if (index == 1 || index == 2)
            EXPECT_EQ(std::string_view(previous, plain.size()).find_first_not_of('\0'),
                      std::string_view::npos);
        previous = text.data();
        keyed.state.Keystring.Wipe();
        ++calls;
    });
    EXPECT_EQ(calls, 5);
}

TEST(DecipherBatch, PassesOnWhatTheCallerThrows) {
    Keyed keyed;
    const auto texts = Mixture(keyed);
    std::size_t last = 0;
    EXPECT_THROW(DecipherBatch(keyed.state, Views(texts),
                               [&](std::size_t index, std::string_view) {
                                   last = index;
                                   if (index == 3) throw std::runtime_error("enough");
                               }),
                 std::runtime_error);
    EXPECT_EQ(last, 3U);
}

TEST(EncipherBatch, GivesWhatMode1GivesUnderTheSameRandomNumbers) {
    Keyed one(7);
    Keyed many(7);
    std::vector<Bytes> texts;
    for (std::size_t i = 0; i < 300; ++i)
        texts.emplace_back(i % 40, 'a');
    std::vector<Bytes> expected;
    for (const Bytes& text : texts)
        expected.push_back(FieldCipher(one.state, 1, text));
    EXPECT_EQ(EncipherBatch(many.state, Views(texts), 2), expected);
    many.state.Keystring.Wipe();
    EXPECT_EQ(EncipherBatch(many.state, Views(texts)), std::vector<Bytes>(texts.size()));
}

}  // namespace
}  // namespace bmr::cry
