#include "store/fieldtable.h"

#include <gtest/gtest.h>

#include "store/record_get.h"
#include "store/words.h"
#include "support/random.h"

namespace bmr::store {
namespace {

struct Card {
    std::array<Words, 2> lines;
    Words filedAs;
    Bytes label;
    bool isPrivate = false;
    std::uint8_t priority = 0;
    DateValue day;
    CarriedFields carried;
};

constexpr std::array<Field<Card>, 6> kCard{{
    {{0, FieldTag::Byte, "priority"}, At<&Card::priority>},
    {{1, FieldTag::Boolean, "Private", Kind::Private}, At<&Card::isPrivate>, true},
    {{2, FieldTag::Text, "first", Kind::Words}, At<&Card::lines, 0>},
    {{4, FieldTag::Memo, "second", Kind::Words}, At<&Card::lines, 1>},
    {{5, FieldTag::Text, "label"}, At<&Card::label>},
    {{61, FieldTag::Text, "FiledAs", Kind::ColumnName}, At<&Card::filedAs>},
}};

class FieldTable : public ::testing::Test {
  protected:
    EncodedRecord Encode(const Card& card, Blanks blanks = Blanks::LeaveOut, FieldSet masked = 0) {
        return EncodeFields(card, kCard, blanks, random, masked);
    }
    static std::vector<int> Numbers(std::string_view payload) {
        std::vector<int> numbers;
        PayloadReader reader(payload);
        for (RawField field; reader.Next(field);)
            numbers.push_back(field.number);
        EXPECT_TRUE(reader.Clean());
        return numbers;
    }
    static Bytes Told(std::string_view payload, std::uint8_t number) {
        return TextOf(GetPayloadField(payload, number));
    }

    test::SeededRandom random;
};

TEST_F(FieldTable, GivesBackWhatItTookInEveryScript) {
    Card card;
    card.lines = {"Łódź", "naïve"};
    card.filedAs = "Ελλάς";
    card.label = "\x80\xFF";
    card.priority = 7;
    const EncodedRecord encoded = Encode(card);
    EXPECT_EQ(Numbers(encoded.payload), (std::vector<int>{0, 1, 2, 4, 5, 130, 189}));
    EXPECT_EQ(Told(encoded.payload, 2), *ToBytes("Lódz"));
    EXPECT_EQ(encoded.column, "Ellas ");
    Card back;
    back.lines[0] = "gone";
    EXPECT_TRUE(DecodeFields(back, encoded.payload, kCard, encoded.column));
    EXPECT_EQ(back.lines, card.lines);
    EXPECT_EQ(back.filedAs, card.filedAs);
    EXPECT_EQ(back.label, card.label);
    EXPECT_EQ(back.priority, 7);
    EXPECT_FALSE(back.isPrivate);
    EXPECT_EQ(ReadWords(encoded.payload, 2), "Łódź");
    EXPECT_EQ(ReadWords(encoded.payload, 61, encoded.column), "Ελλάς");
}

TEST_F(FieldTable, WhatIsNotWholeSaysSoAndHides) {
    Card card;
    card.lines = {"one", "two"};
    const Bytes whole = Encode(card).payload;
    Card back;
    EXPECT_FALSE(DecodeFields(back, whole.substr(0, whole.size() - 1), kCard));
    EXPECT_EQ(back.lines[0], "one") << "what can be read is read";
    Bytes flagless;
    AppendText(flagless, 2, "one", FieldTag::Text);
    EXPECT_FALSE(DecodeFields(back, flagless, kCard));
    EXPECT_TRUE(back.isPrivate);
    EXPECT_EQ(back.lines, (std::array<Words, 2>{"one", ""}));
}

TEST_F(FieldTable, FieldsOfOthersAreCarriedInTheirPlaces) {
    Bytes payload;
    AppendText(payload, 200, "later", FieldTag::Memo);
    AppendField(payload, 1, false, FieldTag::Boolean, random);
    AppendField(payload, 3, std::int32_t{70000}, FieldTag::Int32, random);
    AppendText(payload, 133, "no companion of words", FieldTag::Text);  // 5 is bytes
    Card card;
    EXPECT_TRUE(DecodeFields(card, payload, kCard));
    card.lines = {"Ł", "x"};
    const EncodedRecord encoded = Encode(card);
    EXPECT_EQ(Numbers(encoded.payload), (std::vector<int>{0, 1, 2, 3, 4, 130, 133, 200}));
    EXPECT_EQ(GetPayloadField(encoded.payload, 3), Value(std::int32_t{70000}));
    EXPECT_EQ(Told(encoded.payload, 200), "later");
    EXPECT_EQ(Told(encoded.payload, 133), "no companion of words");
}

TEST_F(FieldTable, WordsThatNobodyChangedAreNotTransliteratedAnew) {
    // As another version of the letters' tables might have written it.
    const auto withTold = [&](const Bytes& told, const Bytes& of) {
        Bytes companion = TellWords("Łódź").companion;
        const Bytes crc = TellWords(ToUtf8(of) + "Ł").companion.substr(0, 5);
        Bytes payload;
        AppendField(payload, 1, false, FieldTag::Boolean, random);
        AppendText(payload, 2, told, FieldTag::Text);
        companion.replace(1, 4, crc, 1, 4);
        AppendText(payload, 130, companion, FieldTag::Memo);
        return payload;
    };
    // The check sum is that of "WoodgeL", the text with the letter for Ł behind it.
    Card card;
    EXPECT_TRUE(DecodeFields(card, withTold("WoodgeL", "Woodge"), kCard));
    EXPECT_EQ(card.lines[0], "Łódź");
    card.lines[1] = "changed";
    EXPECT_EQ(Told(Encode(card).payload, 2), "WoodgeL");
    card.lines[0] = "Ło\u0301dz\u0301";  // the same, typed in another form
    EXPECT_EQ(Told(Encode(card).payload, 2), "WoodgeL");
    card.lines[0] = "Łódź!";
    EXPECT_EQ(Told(Encode(card).payload, 2), *ToBytes("Lódz!"));
    card.lines[0] = "Lodz";  // the page holds it: nothing is left of the other
    EXPECT_EQ(Numbers(Encode(card).payload), (std::vector<int>{0, 1, 2, 4}));

    // The text was changed by someone who knows no companions: it counts, and the companion goes.
    EXPECT_TRUE(DecodeFields(card, withTold("Torun", "Woodge"), kCard));
    EXPECT_EQ(card.lines[0], "Torun");
    EXPECT_EQ(Numbers(Encode(card).payload), (std::vector<int>{0, 1, 2}));
}

TEST_F(FieldTable, SecretsGetNoLettersThatLookRight) {
    Card card;
    card.lines = {"Łukasz1", "Łukasz1"};
    const Bytes payload = Encode(card, Blanks::Store, SetOf(4)).payload;
    EXPECT_EQ(Told(payload, 2), "Lukasz1");
    EXPECT_EQ(Told(payload, 4), "?ukasz1");
    EXPECT_EQ(ReadWords(payload, 4), "Łukasz1");
}

}  // namespace
}  // namespace bmr::store
