#include "notes/memo.h"

#include <gtest/gtest.h>

#include "support/store.h"

namespace bmr::notes {
namespace {

class Memos : public testing::Test {
  protected:
    Memo Add(const Bytes& subject, bool isPrivate = false, std::int32_t category = 0) {
        Memo memo = ClearRecord(store.session, category);
        memo.subject = subject;
        memo.body = "body of " + subject;
        memo.isPrivate = isPrivate;
        EXPECT_EQ(WriteRecord(store.session, memo), 0);
        return memo;
    }
    std::vector<Bytes> Subjects(std::int32_t category) {
        std::vector<Bytes> subjects;
        auto rows = ListRecords(store.session, category);
        EXPECT_TRUE(rows);
        if (rows)
            for (const std::int32_t key : *rows)
                subjects.push_back(RecordName(store.session, key));
        return subjects;
    }

    test::TempStore store;
};

TEST_F(Memos, ComeBackWhole) {
    store.session.user.UserNumber = 4;
    Memo memo = Add("Garden plan", true, 7);
    const auto back = FetchRecord(store.session, memo.key);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->subject, "Garden plan");
    EXPECT_EQ(back->body, "body of Garden plan");
    EXPECT_TRUE(back->isPrivate);
    EXPECT_EQ(back->category, 7);
    EXPECT_EQ(back->userNumber, 4);
    EXPECT_EQ(DayOf(back->dateCreated), store.clock.Today());
    EXPECT_TRUE(store.session.CalendarDirty);
    EXPECT_EQ(ClearRecord(store.session, 9999).category, 0);
    EXPECT_EQ(ClearRecord(store.session, -1).category, 0);
}

TEST_F(Memos, BlanksAroundASubjectAreNoOtherName) {
    Memo memo = Add("Garden plan");
    const auto columns = [&] {
        const auto row = store.Row("SELECT fR1, fR2 FROM tt WHERE fPK=" + std::to_string(memo.key));
        return std::vector<Value>{row->Field("fR1"), row->Field("fR2")};
    };
    const auto before = columns();
    memo.subject = "  Garden plan ";
    ASSERT_EQ(WriteRecord(store.session, memo), 0);
    EXPECT_EQ(columns(), before) << "it keeps its place";
    memo.subject = "Garden plans";
    ASSERT_EQ(WriteRecord(store.session, memo), 0);
    EXPECT_NE(columns(), before);
}

TEST_F(Memos, OnesThatDoNotDecodeWholeSaySo) {
    const Memo memo = Add("Garden plan");
    EXPECT_TRUE(FetchRecord(store.session, memo.key)->readable);
    Bytes payload(store.session.cipher.FieldPlain.view());
    payload.pop_back();
    store.Set(memo.key, "fEtx", cry::FieldCipher(store.session.cipher, 1, payload));
    const auto cut = FetchRecord(store.session, memo.key);
    EXPECT_FALSE(cut->readable);
    EXPECT_EQ(cut->subject, "Garden plan") << "what can be read is read";
    store.session.ProgramDb.reset();
    EXPECT_FALSE(FetchRecord(store.session, memo.key)) << "a closed database holds none";
}

TEST_F(Memos, ChangingOnlyTheBodyKeepsThePlaceAndTheDayOfMaking) {
    Memo memo = Add("Garden plan");
    const std::string row = "SELECT fR1, fR2, fT1, AE FROM tt WHERE fPK=" + std::to_string(memo.key);
    const auto before = store.Row(row);
    store.clock.now.serial += 3;
    memo.body = "another";
    ASSERT_EQ(WriteRecord(store.session, memo), 0);
    const auto after = store.Row(row);
    for (const char* column : {"fR1", "fR2", "fT1"})
        EXPECT_EQ(before->Field(column), after->Field(column)) << column;
    EXPECT_EQ(NumberOf(after->Field("AE")), 3);
    const auto back = FetchRecord(store.session, memo.key);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->dateLastModified.serial - back->dateCreated.serial, 3);
    memo.subject = "Zebra";
    ASSERT_EQ(WriteRecord(store.session, memo), 0);
    EXPECT_NE(store.Row(row)->Field("fR2"), after->Field("fR2"));
}

TEST_F(Memos, PrivateOnesAreHiddenAndTheOpenListOpensNoPayload) {
    Add("Beta");
    Add("Alpha", true, 3);
    EXPECT_EQ(Subjects(-1), (std::vector<Bytes>{"Beta"}));
    EXPECT_TRUE(Subjects(3).empty());
    store.session.ShowPrivate = true;
    const std::uint64_t before = store.session.cipher.deciphered;
    ASSERT_TRUE(ListRecords(store.session, -1));
    EXPECT_EQ(store.session.cipher.deciphered, before);
    EXPECT_EQ(Subjects(-1), (std::vector<Bytes>{"Alpha", "Beta"}));
    EXPECT_EQ(Subjects(3), (std::vector<Bytes>{"Alpha"}));
}

TEST_F(Memos, DeletingHonoursTheFilterAndLeavesOtherSections) {
    Add("A", false, 3);
    Add("B", true, 3);
    Add("C");
    auto table = store.session.ProgramDb->OpenRecordset("tt");
    ASSERT_TRUE(table);
    (*table)->AddNew();
    (*table)->SetField("fSec", std::int32_t{store::Section::Todo});
    (*table)->SetField("fG1", 3);
    ASSERT_EQ((*table)->Update(), 0);
    const std::int32_t task = NumberOf((*table)->Field("fPK"));
    ASSERT_EQ(DeleteRecords(store.session, 3), 0);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt WHERE fSec=14"), 1);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt WHERE fSec=15"), 1);

    Memo stray = ClearRecord(store.session, 0);
    stray.key = task;
    EXPECT_EQ(WriteRecord(store.session, stray), -16);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt WHERE fSec=14"), 1);
    EXPECT_FALSE(FetchRecord(store.session, task));
}

TEST_F(Memos, ARowThatVanishedBehindTheEditorIsAddedAnew) {
    Memo memo = Add("Gone");
    ASSERT_EQ(store::DeleteRow(store.session, memo.key), 0);
    const std::int32_t old = memo.key;
    ASSERT_EQ(WriteRecord(store.session, memo), 0);
    EXPECT_NE(memo.key, old);
    EXPECT_EQ(Subjects(-1), (std::vector<Bytes>{"Gone"}));
}

TEST_F(Memos, ABulkAddMergesWithWhatStands) {
    store.session.ShowPrivate = true;
    Add("Ab2");
    Add("Ab4");
    std::vector<Memo> memos(3);
    memos[0].subject = "Ab3";
    memos[1].subject = "Ab1";
    memos[2].subject = "Ab5";
    ASSERT_EQ(AddRecords(store.session, memos), 0);
    EXPECT_EQ(Subjects(-1), (std::vector<Bytes>{"Ab1", "Ab2", "Ab3", "Ab4", "Ab5"}));
    EXPECT_EQ(FetchRecord(store.session, memos[1].key)->subject, "Ab1");
}

}  // namespace
}  // namespace bmr::notes
