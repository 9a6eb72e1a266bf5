// Memos in every script: how they stand in the file, in order, and what becomes of them in other hands.
#include <gtest/gtest.h>

#include "notes/memo.h"
#include "store/indices.h"
#include "store/record_get.h"
#include "store/record_put.h"
#include "store/words.h"
#include "support/store.h"

namespace bmr::notes {
namespace {

class Scripts : public testing::Test {
  protected:
    Scripts() { store.session.ShowPrivate = true; }

    std::int32_t Add(const Words& subject, const Words& body = "text") {
        Memo memo = ClearRecord(store.session, 0);
        memo.subject = subject;
        memo.body = body;
        EXPECT_EQ(WriteRecord(store.session, memo), 0);
        return memo.key;
    }
    std::vector<Words> Names(std::string_view search = {}) {
        std::vector<Words> names;
        const auto keys = ListRecords(store.session, -1, search);
        EXPECT_TRUE(keys);
        for (const std::int32_t key : keys ? *keys : std::vector<std::int32_t>())
            names.push_back(RecordName(store.session, key));
        return names;
    }
    Value Column(std::int32_t key, const char* column) {
        return store.Row("SELECT * FROM tt WHERE fPK=" + std::to_string(key))->Field(column);
    }
    Bytes Plain(std::int32_t key, const char* column) {
        return Bytes(cry::DecipherField(store.session.cipher, TextOf(Column(key, column))));
    }
    /// Stores the memo as a program does that knows the told fields alone.
    void StoreElsewhere(std::int32_t key, const Bytes& subject, const Bytes& body) {
        Bytes payload;
        store::AppendField(payload, 0, std::int32_t{0}, store::FieldTag::Byte, store.random);
        store::AppendField(payload, 1, false, store::FieldTag::Boolean, store.random);
        store::AppendText(payload, 4, subject, store::FieldTag::Text);
        store::AppendText(payload, 5, body, store::FieldTag::Memo);
        store.Set(key, "fEtx", cry::FieldCipher(store.session.cipher, 1, payload));
    }

    test::TempStore store;
};

TEST_F(Scripts, StandInOrderByTheirLetters) {
    Add("Lm");
    Add("Łódź");
    Add("Lz");
    Add("Μνήμη");
    Add("Mz");
    EXPECT_EQ(Names(), (std::vector<Words>{"Lm", "Łódź", "Lz", "Μνήμη", "Mz"}));
    EXPECT_TRUE(store::FindDisorder(store.session, store::Section::Memo).empty());
}

TEST_F(Scripts, AreReadByAProgramThatKnowsNoCompanions) {
    const std::int32_t key = Add("Ελλάς", "Η αυλή\nδύο");
    std::vector<Value> told(6);
    store::DecodeRecord(told, TextOf(Column(key, "fEtx")), true, store.session.cipher);
    EXPECT_EQ(TextOf(told[4]), "Ellas");
    EXPECT_EQ(TextOf(told[5]), "E aule\r\ndyo");
    EXPECT_EQ(cry::FieldCipher(store.session.cipher, 2, TextOf(Column(key, "fT1"))), "Ellas");
    EXPECT_EQ(FetchRecord(store.session, key)->body, "Η αυλή\r\nδύο");
}

TEST_F(Scripts, OnlyMarkedRowsOpenTheirPayloadWhenTheyAreSeen) {
    const std::int32_t plain = Add("Garden");
    const std::int32_t greek = Add("Κήπος");
    const auto cost = [&](std::int32_t key) {
        const std::uint64_t before = store.session.cipher.deciphered;
        RecordName(store.session, key);
        return store.session.cipher.deciphered - before;
    };
    EXPECT_EQ(cost(plain), 1U);
    EXPECT_EQ(cost(greek), 2U);
}

TEST_F(Scripts, ATextThatThePageHoldsLosesItsMarkAndKeepsItsPlace) {
    const std::int32_t key = Add("Łodz");
    const Value place = Column(key, "fR1");
    Memo memo = *FetchRecord(store.session, key);
    memo.subject = "Lodz";
    ASSERT_EQ(WriteRecord(store.session, memo), 0);
    EXPECT_EQ(Plain(key, "fT1"), "Lodz");
    EXPECT_EQ(Column(key, "fR1"), place);
    EXPECT_EQ(Names(), (std::vector<Words>{"Lodz"}));

    memo = *FetchRecord(store.session, key);
    memo.subject = "Łodz";
    ASSERT_EQ(WriteRecord(store.session, memo), 0);
    EXPECT_EQ(Plain(key, "fT1"), "Lodz ");
    EXPECT_EQ(Column(key, "fR1"), place);

    const Value column = Column(key, "fT1");
    memo = *FetchRecord(store.session, key);
    memo.body = "another";
    ASSERT_EQ(WriteRecord(store.session, memo), 0);
    EXPECT_EQ(Column(key, "fT1"), column);
}

TEST_F(Scripts, ASaveOfAnotherProgramLeavesLettersAndOrder) {
    Add("Lm");
    const std::int32_t key = Add("Łódź", "Ελλάς");
    Add("Lz");
    StoreElsewhere(key, *ToBytes("Lódz"), "changed there");
    EXPECT_EQ(Names(), (std::vector<Words>{"Lm", "Lódz", "Lz"}));
    Memo memo = *FetchRecord(store.session, key);
    EXPECT_EQ(memo.body, "changed there");
    EXPECT_TRUE(memo.carried.words.empty());
    ASSERT_EQ(WriteRecord(store.session, memo), 0);
    EXPECT_EQ(Plain(key, "fT1"), *ToBytes("Lódz"));
    EXPECT_TRUE(store::FindDisorder(store.session, store::Section::Memo).empty());
}

TEST_F(Scripts, AreFoundByTheirLettersAndByThemselves) {
    Add("Łukasz");
    Add("Lukas");
    Add("Fest 🎉");
    Add("Fest?");
    EXPECT_EQ(Names("lukasz"), (std::vector<Words>{"Łukasz"}));
    EXPECT_EQ(Names("ŁUKAS"), (std::vector<Words>{"Lukas", "Łukasz"}));
    EXPECT_EQ(Names("🎉"), (std::vector<Words>{"Fest 🎉"}));
    EXPECT_EQ(Names("🎈"), std::vector<Words>());
}

TEST_F(Scripts, ComeInBulkAsOneByOne) {
    std::vector<Memo> memos(3);
    memos[0].subject = "Щи";
    memos[1].subject = "Sb";
    memos[2].subject = "St";
    ASSERT_EQ(AddRecords(store.session, memos), 0);
    Add("Щи 2");
    EXPECT_EQ(Names(), (std::vector<Words>{"Sb", "Щи", "Щи 2", "St"}));
    EXPECT_TRUE(store::FindDisorder(store.session, store::Section::Memo).empty());
}

}  // namespace
}  // namespace bmr::notes
