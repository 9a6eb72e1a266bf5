#include "base/bytes.h"

#include <gtest/gtest.h>

namespace bmr {
namespace {

TEST(Bytes, EveryByteSurvivesUtf8AndBack) {
    for (unsigned code = 0; code < 256; ++code) {
        const Bytes one(1, ByteChar(code));
        EXPECT_EQ(ToBytes(ToUtf8(one)), one) << code;
    }
    EXPECT_EQ(ToUtf8("\x80"), "€");
    EXPECT_EQ(ToUtf8("\x81"), "\xC2\x81");
}

TEST(Bytes, CharactersStandAtEveryPlaceOfAText) {
    for (std::size_t front = 0; front < 20; ++front) {
        for (std::size_t behind = 0; behind < 20; ++behind) {
            const Bytes text = Bytes(front, 'f') + "\x80\xE4" + Bytes(behind, 'b');
            const Words words = Bytes(front, 'f') + "€ä" + Bytes(behind, 'b');
            EXPECT_EQ(ToUtf8(text), words);
            EXPECT_EQ(ToBytes(words), text);
            EXPECT_FALSE(FitsBytes(words + "Ł"));
            EXPECT_FALSE(FitsBytes(words.substr(0, front + 2) + words.substr(front + 3)));
        }
    }
}

TEST(Bytes, CharactersOutsideThePageAreFoundAndRefused) {
    EXPECT_FALSE(ToBytes("Łódź"));
    const auto found = FindUnmappable("aŁb字");
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].position, 1U);
    EXPECT_EQ(found[0].character, U'Ł');
    EXPECT_EQ(found[1].position, 3U);
}

TEST(Bytes, MalformedUtf8IsRefused) {
    for (const char* bad : {"\xC0\x80", "\xED\xA0\x80", "\xE2\x82", "\xFF", "\xF5\x80\x80\x80", "\x80"})
        EXPECT_FALSE(ToBytes(bad));
}

TEST(Bytes, CaseFollowsThePage) {
    EXPECT_EQ(UpperCase("\xE4\x9A\xFFz"), "\xC4\x8A\x9FZ");
    EXPECT_EQ(CompareNoCase("\xC4pfel", "\xE4PFEL"), 0);
    EXPECT_LT(CompareNoCase("ab", "ABc"), 0);
    EXPECT_EQ(UpperCase("\xD7\xF7"), "\xD7\xF7");
}

}  // namespace
}  // namespace bmr
