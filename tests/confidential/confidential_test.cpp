#include "confidential/confidential.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <set>

#include "confidential/generator.h"
#include "confidential/kinds.h"
#include "store/record_get.h"
#include "support/store.h"

namespace bmr::confidential {
namespace {

TEST(Kinds, MaskExactlyTheSettledCaptions) {
    std::set<std::string> masked;
    for (const Kind& kind : ConfidentialKinds())
        for (const std::string_view caption : kind.captions)
            if (IsMaskedCaption(caption)) masked.insert(std::string(caption));
    EXPECT_EQ(masked, (std::set<std::string>{"ATM/PIN Code", "PIN", "PIN Code", "Password", "Password/PIN"}));
    EXPECT_EQ(ConfidentialKinds().size(), 16U);
    EXPECT_EQ(ConfidentialKinds()[8].number, 16);
    EXPECT_EQ(ConfidentialKindFields(5)->captions[4], "Account Number ");
    EXPECT_EQ(ConfidentialKindFields(1)->FieldCount(), 4U);
    EXPECT_EQ(ConfidentialKindFields(0), nullptr);
    EXPECT_EQ(ConfidentialKindFields(17), nullptr);
}

class Records : public testing::Test {
  protected:
    Record Add(std::int32_t kind, const Bytes& name, bool isPrivate = false) {
        Record record;
        record.kind = kind;
        record.n[0] = name;
        record.n[3] = "hunter2 ";
        record.isPrivate = isPrivate;
        EXPECT_EQ(WriteRecord(store.session, record), 0);
        return record;
    }
    std::vector<Bytes> Names(std::int32_t kind) {
        std::vector<Bytes> names;
        auto keys = ListRecords(store.session, kind);
        EXPECT_TRUE(keys);
        if (keys)
            for (const std::int32_t key : *keys)
                names.push_back(RecordName(store.session, key));
        return names;
    }

    test::TempStore store;
};

TEST_F(Records, EmptyFieldsAreLeftOutAndReadBackEmpty) {
    const Record record = Add(2, "Mail");
    const auto row = store.Row("SELECT fEtx, fG1 FROM tt WHERE fPK=" + std::to_string(record.key));
    EXPECT_EQ(NumberOf(row->Field("fG1")), 2);
    EXPECT_EQ(store::GetRecordField(store.session.cipher, TextOf(row->Field("fEtx")), 4), Value(Empty{}));
    EXPECT_EQ(store::GetRecordField(store.session.cipher, TextOf(row->Field("fEtx")), 3),
              Value(Bytes("hunter2 ")));
    const auto back = FetchRecord(store.session, record.key);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->n[4], "");
    EXPECT_EQ(back->n[0], "Mail");
    EXPECT_EQ(DayOf(back->dateLastModified), store.clock.Today());
}

TEST_F(Records, AnImportFillsNoFieldThatItsKindDoesNotShow) {
    std::vector<Record> many(2);
    many[0].kind = 2;
    many[1].kind = 1;
    many[0].n[4] = many[1].n[4] = "pop.example.org";
    EXPECT_EQ(AddRecords(store.session, many), -43);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt"), 0);
    many[1].n[4].clear();
    EXPECT_EQ(AddRecords(store.session, many), 0);
    EXPECT_EQ(FetchRecord(store.session, many[0].key)->n[4], "pop.example.org");
}

TEST_F(Records, ARecordWithoutANameGetsNoPlaceInTheAlphabet) {
    const Record record = Add(1, "");
    const auto row = store.Row("SELECT fR1, fR2 FROM tt WHERE fPK=" + std::to_string(record.key));
    EXPECT_EQ(NumberOf(row->Field("fR1")), 0);
    EXPECT_EQ(NumberOf(row->Field("fR2")), 0);
    EXPECT_EQ(Names(1), (std::vector<Bytes>{""}));
    // Nor when its bucket is spread by many new ones.
    std::vector<Record> many(3);
    for (Record& each : many)
        each.kind = 1;
    many[1].n[0] = "1";
    ASSERT_EQ(AddRecords(store.session, many), 0);
    EXPECT_EQ(Names(1), (std::vector<Bytes>{"", "", "", "1"}));
    EXPECT_EQ(store.Count("SELECT fPK FROM tt WHERE fR1=0 And fR2=0 And AE=1"), 3);
}

TEST_F(Records, ARecordThatDoesNotDecodeWholeSaysSo) {
    const Record record = Add(1, "Bank");
    EXPECT_TRUE(FetchRecord(store.session, record.key)->readable);
    const Bytes whole = kRecords.Encode(record, store.random).payload;
    for (const Bytes& payload : {whole.substr(0, whole.size() - 1), Bytes("\x09\x01\x01"), Bytes()}) {
        store.Set(record.key, "fEtx", cry::FieldCipher(store.session.cipher, 1, payload));
        EXPECT_FALSE(FetchRecord(store.session, record.key)->readable);
    }
    store.Set(record.key, "fEtx", Null{});
    EXPECT_FALSE(FetchRecord(store.session, record.key)->readable);
}

TEST_F(Records, OnlyARenameMovesARecordAndNothingChangesItsKind) {
    Add(1, "Bank");
    Record record = Add(1, "Aunt");
    const std::string statement = "SELECT fR1, fR2, fG1 FROM tt WHERE fPK=" + std::to_string(record.key);
    const auto before = store.Row(statement);
    record.notes = "changed";
    record.kind = 9;
    ASSERT_EQ(WriteRecord(store.session, record), 0);
    const auto after = store.Row(statement);
    for (const char* column : {"fR1", "fR2", "fG1"})
        EXPECT_EQ(before->Field(column), after->Field(column));
    EXPECT_EQ(Names(1), (std::vector<Bytes>{"Aunt", "Bank"}));
    record.n[0] = "Zoo";
    ASSERT_EQ(WriteRecord(store.session, record), 0);
    EXPECT_EQ(Names(1), (std::vector<Bytes>{"Bank", "Zoo"}));
}

TEST_F(Records, PrivateOnesAndOtherKindsAreNotListed) {
    Add(1, "Open");
    Add(1, "Hidden", true);
    Add(6, "Other kind");
    EXPECT_EQ(Names(1), (std::vector<Bytes>{"Open"}));
    store.session.ShowPrivate = true;
    EXPECT_EQ(Names(1), (std::vector<Bytes>{"Hidden", "Open"}));
    std::vector<Record> many(2);
    many[0].kind = many[1].kind = 1;
    many[0].n[0] = "Middle";
    ASSERT_EQ(AddRecords(store.session, many), 0);
    EXPECT_EQ(Names(1), (std::vector<Bytes>{"", "Hidden", "Middle", "Open"}));
}

TEST(Generator, DrawsEveryClassAndNothingElse) {
    test::SeededRandom random(5);
    PasswordRecipe recipe;
    recipe.length = 4;
    recipe.readable = true;
    for (int i = 0; i < 200; ++i) {
        const Secret password = GeneratePassword(recipe, random);
        ASSERT_EQ(password.size(), 4U);
        EXPECT_EQ(password.view().find_first_of("0Oo1lI|"), std::string_view::npos);
        EXPECT_NE(password.view().find_first_of("23456789"), std::string_view::npos);
        EXPECT_NE(password.view().find_first_of("ABCDEFGHJKLMNPQRSTUVWXYZ"), std::string_view::npos);
    }
    PasswordRecipe digits{.length = 6, .lower = false, .upper = false, .punctuation = false};
    EXPECT_EQ(GeneratePassword(digits, random).view().find_first_not_of("0123456789"),
              std::string_view::npos);
    EXPECT_NEAR(EntropyBits(digits), 19.93, 0.01);
    digits.digits = false;
    EXPECT_TRUE(GeneratePassword(digits, random).empty());
    EXPECT_EQ(EntropyBits(digits), 0);
}

TEST(Generator, CountsPasswordsThatHoldEveryClass) {
    // Two characters of each of two classes: of 26 lower and 10 digits, 36^4 less those of one class alone.
    const PasswordRecipe recipe{.length = 4, .upper = false, .punctuation = false};
    EXPECT_NEAR(EntropyBits(recipe), std::log2(1679616.0 - 456976.0 - 10000.0), 1e-9);
}

TEST(Generator, WordsAreUniqueAndDrawnEvenly) {
    const auto words = WordList();
    EXPECT_EQ(std::set<std::string_view>(words.begin(), words.end()).size(), 1024U);
    test::SeededRandom random(9);
    PasswordRecipe recipe;
    recipe.words = 7;
    const Secret phrase = GeneratePassword(recipe, random);
    EXPECT_EQ(std::count(phrase.view().begin(), phrase.view().end(), '-'), 6);
    EXPECT_EQ(EntropyBits(recipe), 70);
    std::array<int, 5> counts{};
    for (int i = 0; i < 5000; ++i)
        ++counts[UniformBelow(random, 5)];
    for (const int count : counts)
        EXPECT_NEAR(count, 1000, 150);
}

}  // namespace
}  // namespace bmr::confidential
