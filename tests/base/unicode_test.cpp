#include "base/unicode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

namespace bmr {
namespace {

TEST(Unicode, MalformedBytesBecomeReplacementsAndASurrogateOne) {
    const std::vector<std::pair<Words, Words>> cases = {
        {"a\xFF\xFE", "a\uFFFD\uFFFD"},
        {"\xED\xA0\x80z", "\uFFFDz"},
        {"\xED\xBF\xBF", "\uFFFD"},
        {"\xED\xA0", "\uFFFD\uFFFD"},
        {"\xC0\x80", "\uFFFD\uFFFD"},
        {"\xE2\x82", "\uFFFD\uFFFD"},
        {"\xF4\x90\x80\x80!", "\uFFFD\uFFFD\uFFFD\uFFFD!"},
    };
    for (const auto& [bad, whole] : cases) {
        EXPECT_FALSE(IsWellFormed(bad)) << whole;
        EXPECT_EQ(WellFormed(bad), whole);
        EXPECT_EQ(Normalised(bad), whole);
    }
    for (const Words good : {"", "plain", "€ Łódź 北京 😀 \uFFFD", "\uD7FF\uE000\U0010FFFF"}) {
        EXPECT_TRUE(IsWellFormed(good));
        EXPECT_EQ(WellFormed(good), good);
    }
}

TEST(Unicode, TheFormPutsLetterAndMarkTogether) {
    EXPECT_EQ(Normalised("a\u0308pfel \u212Bngstro\u0308m"), "äpfel Ångström");
    EXPECT_EQ(Normalised("\u1100\u1161 \u0958 q\u0323\u0307"), "가 \u0915\u093C q\u0323\u0307");
    EXPECT_EQ(Normalised("q\u0307\u0323"), "q\u0323\u0307");
    for (const Words stays : {"“€” straße", "Łódź", "😀"})
        EXPECT_EQ(Normalised(stays), stays);
    // A text three times as long in this form: nothing of it may be lost.
    Words notes, parts;
    for (int i = 0; i < 500; ++i) {
        notes += "\U0001D160";
        parts += "\U0001D158\U0001D165\U0001D16E";
    }
    EXPECT_EQ(Normalised(notes), parts);
}

TEST(Unicode, WhatThePageHasStaysAndTheRestBecomesLetters) {
    const std::vector<std::pair<Words, Words>> cases = {
        {"Łódź", "Lódz"},         {"ä€Ł œŸ", "ä€L œŸ"},           {"Привет, мир", "Privet, mir"},
        {"Ελληνικά", "Ellenika"}, {"Ψυχή ΨΥΧΗ", "Psyche PSYCHE"}, {"κόσμος", "kosmos"},
        {"北京 x", "bei jing x"}, {"ﬁne Ａ１", "fine A1"},        {"Əliyev", "Eliyev"},
        {"ʿAlī", "'Ali"},         {"x\u030C Ν\u0303", "x N"},     {"straße ẞ", "straße SS"},
    };
    for (const auto& [text, letters] : cases)
        EXPECT_EQ(ToUtf8(Transliterate(text)), letters) << text;
    const Bytes arabic = Transliterate("مرحبا");
    EXPECT_GE(arabic.size(), 5U);
    EXPECT_TRUE(std::all_of(arabic.begin(), arabic.end(), [](char c) { return c >= 'a' && c <= 'z'; }));
}

TEST(Unicode, WhatHasNoLetterIsAQuestionMarkOnceACharacter) {
    EXPECT_EQ(Transliterate("a😀😀b"), "a??b");
    EXPECT_EQ(Transliterate("\uFFFD"), "?");
    EXPECT_EQ(Transliterate("👩\u200D👧"), "???");
    EXPECT_EQ(Transliterate("\xED\xA0\x80"), "?");
    EXPECT_EQ(Transliterate("a\u0488b"), "ab");
    EXPECT_EQ(Transliterate("\u0301"), "?");
    EXPECT_EQ(Transliterate(" \u3000 "), "?");
    EXPECT_EQ(Transliterate("  "), "  ");
    EXPECT_EQ(Transliterate(""), "");
}

TEST(Unicode, ALongTextLosesNothingNorDoSeveralAtOnce) {
    Words text, letters;
    for (int i = 0; i < 2500; ++i) {
        text += "ж";
        letters += "z";
    }
    std::vector<Bytes> made(4);
    std::vector<std::thread> threads;
    threads.reserve(made.size());
    for (Bytes& one : made)
        threads.emplace_back([&one, &text] { one = Transliterate(text + "Ł" + text); });
    for (std::thread& one : threads)
        one.join();
    for (const Bytes& one : made)
        EXPECT_TRUE(ToUtf8(one) == letters + "L" + letters);
}

TEST(Unicode, AMaskKeepsWhatThePageHasAndGivesNoLetters) {
    EXPECT_EQ(ToUtf8(MaskForeign("pä€ŁŁ北\u0301😀")), "pä€?????");
}

TEST(Unicode, CaseFoldsInEveryScript) {
    EXPECT_EQ(FoldCase("AbZ[9"), "abz[9");
    EXPECT_EQ(FoldCase("ŁÓDŹ Straße"), "łódź strasse");
    EXPECT_EQ(FoldCase("ΚΌΣΜΟΣ"), FoldCase("κόσμος"));
}

}  // namespace
}  // namespace bmr
