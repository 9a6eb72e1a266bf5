#include "store/words.h"

#include <gtest/gtest.h>

#include "store/record_put.h"

namespace bmr::store {
namespace {

Bytes Told(std::string_view utf8, Masked masked = Masked::No) {
    return TellWords(utf8, masked).told;
}

TEST(Words, WhatThePageHoldsNeedsNoCompanion) {
    for (const Words plain : {"", "  a\nb\r\nc\rd ", "Müller & Søn €"}) {
        const ToldWords words = TellWords(plain);
        EXPECT_EQ(ToUtf8(words.told), plain);
        EXPECT_EQ(words.companion, "");
        EXPECT_EQ(ColumnText(words), words.told);
    }
    for (const Words composed : {"\u00E4\u00C5", "a\u0308\u212B"}) {
        EXPECT_EQ(Told(composed), "\xE4\xC5");
        EXPECT_EQ(TellWords(composed).companion, "");
    }
}

TEST(Words, AForeignTextStandsInTheCompanionBehindItsCheck) {
    const ToldWords words = TellWords(" Łódź ");
    EXPECT_EQ(words.told,
              " L\xF3"
              "dz ");
    // CRC-32 of the four bytes 4C F3 64 7A, low byte first.
    EXPECT_EQ(words.companion, "\x01\x91\xC3\x45\xF6 Łódź ");
    EXPECT_EQ(TrueText(words.companion), " Łódź ");
    EXPECT_EQ(JudgeCompanion(words.companion, words.told), CompanionState::Fits);
    EXPECT_EQ(JudgeCompanion(words.companion,
                             "L\xF3"
                             "dz"),
              CompanionState::Fits);
    EXPECT_EQ(ColumnText(words),
              "L\xF3"
              "dz ");
}

TEST(Words, TheCompanionHoldsTheTextInOneForm) {
    EXPECT_EQ(TrueText(TellWords("Ł a\u0308").companion), "Ł ä");
    EXPECT_EQ(TrueText(TellWords("Ł\xED\xA0\x80\xFF").companion), "Ł\uFFFD\uFFFD");
    const ToldWords lines = TellWords("\nŁ\r\rb\n\nc\r\nd\r");
    EXPECT_EQ(TrueText(lines.companion), "\r\nŁ\r\n\r\nb\r\n\r\nc\r\nd\r\n");
    EXPECT_EQ(lines.told, "\r\nL\r\n\r\nb\r\n\r\nc\r\nd\r\n");
}

TEST(Words, AMaskedTextNeverLooksRight) {
    const ToldWords words = TellWords("Łódź北", Masked::Yes);
    EXPECT_EQ(words.told,
              "?\xF3"
              "d??");
    EXPECT_EQ(TrueText(words.companion), "Łódź北");
    EXPECT_EQ(JudgeCompanion(words.companion, words.told), CompanionState::Fits);
    EXPECT_EQ(Told("p\xC3\xA4ss", Masked::Yes), "p\xE4ss");
}

TEST(Words, LongTextsAreCutAndTheCheckIsThatOfTheCutOne) {
    const ToldWords words = TellWords(Words(70000, 'a') + "Ł");
    EXPECT_EQ(words.told, Bytes(kLongestText, 'a'));
    EXPECT_EQ(JudgeCompanion(words.companion, words.told), CompanionState::Fits);

    Words han;
    for (int i = 0; i < 21665; ++i)
        han += "北";
    // The last one stands across the limit: a companion ends with a whole character.
    const ToldWords over = TellWords("aa" + han);
    EXPECT_EQ(over.told.size(), kLongestText);
    EXPECT_EQ(TrueText(over.companion), "aa" + han.substr(3));
    EXPECT_EQ(JudgeCompanion(over.companion, over.told), CompanionState::Fits);

    const ToldWords blanks = TellWords(Words(kLongestText, ' ') + "Ł");
    EXPECT_TRUE(IsMarked(ColumnText(blanks)));
}

TEST(Words, ACompanionIsJudgedByItsFieldAndByItself) {
    const ToldWords words = TellWords("Łukasz");
    const Bytes& good = words.companion;
    EXPECT_EQ(JudgeCompanion(good, "  Lukasz "), CompanionState::Fits);
    for (const char* other : {"lukasz", "Lukas", "", "Lukasz\r\n"})
        EXPECT_EQ(JudgeCompanion(good, other), CompanionState::Stale) << other;
    Bytes flipped = good;
    flipped[4] ^= 1;
    EXPECT_EQ(JudgeCompanion(flipped, "Lukasz"), CompanionState::Stale);
    Bytes version = good;
    version[0] = 2;
    for (const Bytes& bad : {Bytes(), good.substr(0, 4), good.substr(0, 5), version, good.substr(0, 6),
                             good + "\xC5", good + "\xED\xA0\x80"})
        EXPECT_EQ(JudgeCompanion(bad, "Lukasz"), CompanionState::Malformed) << bad.size();
    EXPECT_EQ(TrueText("\x01"), "");
}

TEST(Words, ABlankBehindAColumnIsTheMark) {
    EXPECT_TRUE(IsMarked(ColumnText(TellWords("  Ł  "))));
    EXPECT_EQ(ColumnText(TellWords("  Ł  ")), "L ");
    EXPECT_EQ(ColumnText(TellWords("\u0301")), "? ");
    for (const char* plain : {"", " ", "     ", "L", " L"})
        EXPECT_FALSE(IsMarked(plain)) << plain;
}

TEST(Words, TheMeasureIsThatOfWhatIsStored) {
    const WordsLength page = MeasureWords(Words(64998, 'a') + "ä\n");
    EXPECT_EQ(page.length, 65001U);
    EXPECT_EQ(page.most, kLongestText);
    EXPECT_FALSE(page.inBytes);
    EXPECT_TRUE(page.TooLong());
    EXPECT_FALSE(MeasureWords(Words(64998, 'a') + "\r\n").TooLong());
    EXPECT_EQ(MeasureWords("a\u0308€").length, 2U);

    const WordsLength foreign = MeasureWords("Ł\n\r\na\u0308\r");
    EXPECT_EQ(foreign.length, TrueText(TellWords("Ł\n\r\na\u0308\r").companion).size());
    EXPECT_EQ(foreign.length, 10U);
    EXPECT_EQ(foreign.most, kLongestWords);
    EXPECT_TRUE(foreign.inBytes);
    EXPECT_FALSE(MeasureWords("Ł" + Words(64993, 'a')).TooLong());
    EXPECT_TRUE(MeasureWords("Ł" + Words(64994, 'a')).TooLong());
}

TEST(Needle, PlainLettersFindEveryScript) {
    for (const char* typed : {"lukasz", "LUKASZ", "Łukasz", "łUK"}) {
        const Needle needle(typed);
        EXPECT_TRUE(needle.InTold("Lukasz ")) << typed;
        EXPECT_FALSE(needle.InTold("Lucas")) << typed;
        EXPECT_FALSE(needle.AsksTrueText()) << typed;
    }
    EXPECT_TRUE(Needle("\u00C4PFEL \u0160").InTold("zwei \xE4pfel \x9A!"));
    EXPECT_TRUE(Needle("lodz").InTold(Told("Łódź")));
    EXPECT_TRUE(Needle("Müller").InTold("muller"));
    EXPECT_TRUE(Needle("京").InTold(Told("北京")));
    EXPECT_TRUE(Needle("北京\u3000").InTold(Told("北京")));
    EXPECT_FALSE(Needle("z ").InTold("Lukasz "));
    EXPECT_TRUE(Needle("").empty());
    EXPECT_FALSE(Needle(" ").empty());
    EXPECT_TRUE(Needle("").InTold(""));
    EXPECT_FALSE(Needle("aab").InTold("aa"));
    EXPECT_TRUE(Needle("aab").InTold("aaab"));
}

TEST(Needle, WhatHasNoLetterIsAskedOfTheTrueText) {
    const Needle needle("Party 😀");
    EXPECT_TRUE(needle.AsksTrueText());
    EXPECT_TRUE(needle.InTold(Told("party 🎈")));
    EXPECT_FALSE(needle.InTrue("party 🎈"));
    EXPECT_TRUE(needle.InTrue("Zur PARTY 😀!"));
    EXPECT_FALSE(Needle("what?").AsksTrueText());
    // What leaves nothing in the letters is asked of every text.
    const Needle mark("\u0301");
    EXPECT_TRUE(mark.AsksTrueText());
    EXPECT_TRUE(mark.InTold(Told("Ł x\u0301")));
    EXPECT_TRUE(mark.InTrue("Ł x\u0301"));
    EXPECT_FALSE(mark.InTrue("Ł x"));
}

TEST(Needle, TheTrueTextComparesWithoutCaseInOneForm) {
    EXPECT_TRUE(Needle("ŁÓDŹ").InTrue("moja łódź"));
    EXPECT_TRUE(Needle("a\u0308").InTrue("Łä"));
    EXPECT_TRUE(Needle("\u00C4").InTrue("Ła\u0308"));
    EXPECT_TRUE(Needle("ΚΌΣΜΟΣ").InTrue("κόσμος"));
    EXPECT_FALSE(Needle("lodz").InTrue("Łódź"));
}

}  // namespace
}  // namespace bmr::store
