#include "diary/page.h"

#include <gtest/gtest.h>

#include "base/errors.h"
#include "diary/rowcheck.h"
#include "diary_store.h"
#include "store/record_get.h"
#include "store/undo.h"

namespace bmr::diary {
namespace {

using store::Section;

constexpr Day kDay{46347};

TEST(DiaryPages, AreStoredWholeAndReadBack) {
    DiaryStore store;
    const std::string_view text = "Łódź, 北京 – 🎉\r\nнапример";
    const std::int32_t key = store.Write(kDay, text);
    const Page page = store.Read(kDay);
    EXPECT_EQ(page.key, key);
    EXPECT_EQ(page.text, text);
    auto row = store.Row("SELECT * FROM tt");
    EXPECT_EQ(NumberOf(row->Field("fSec")), 13);
    EXPECT_EQ(NumberOf(row->Field("AE")), 1);
    EXPECT_EQ(DayOfPage(NumberOf(row->Field("fR2"))), kDay);
    const Bytes column(cry::DecipherField(store.session.cipher, TextOf(row->Field("fT1"))));
    ASSERT_EQ(column.size(), 5U);
    EXPECT_EQ(ByteAt(column, 0), 25U);
    const Bytes payload(cry::DecipherField(store.session.cipher, TextOf(row->Field("fEtx"))));
    std::vector<std::pair<int, int>> fields;
    store::PayloadReader reader(payload);
    for (store::RawField field; reader.Next(field);)
        fields.emplace_back(field.number, field.tag);
    EXPECT_EQ(fields, (std::vector<std::pair<int, int>>{{0, 12}, {1, 25}, {3, 2}, {128, 12}}));
    for (const char* noise : {"fR1", "fR3", "fR4"})
        EXPECT_NE(NumberOf(row->Field(noise)), 0) << noise;
    EXPECT_TRUE(CheckRows(store.session)->empty());
}

TEST(DiaryPages, AnEmptyDayGetsNoRowAndAnEmptiedOneKeepsIts) {
    DiaryStore store;
    Page page = store.Read(kDay);
    EXPECT_EQ(page.key, store::kNewRecord);
    EXPECT_EQ(StorePage(store.session, page).error, 0);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt"), 0);
    page.text = "x";
    EXPECT_TRUE(StorePage(store.session, page).added);
    page.text.clear();
    EXPECT_EQ(StorePage(store.session, page).error, 0);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt"), 1);
    EXPECT_EQ(store.Read(kDay).key, page.key);
    EXPECT_EQ(store.Read(kDay).text, "");
    EXPECT_EQ(NumberOf(store.Row("SELECT * FROM tt")->Field("AE")), 3);
    EXPECT_EQ(store::TakeStep(store.session, Section::Diary, store::UndoWay::Undo).written, 1U);
    EXPECT_EQ(store.Read(kDay).text, "x");
}

TEST(DiaryPages, ADayNeverGetsTwoRowsAndLosesNothing) {
    DiaryStore store;
    Page early = store.Read(kDay);  // the day was empty when its box was filled
    store.Write(kDay, "from elsewhere");
    early.text = "typed here";
    EXPECT_EQ(StorePage(store.session, early).error, 0);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt"), 1);
    EXPECT_EQ(store.Read(kDay).text, "from elsewhere\r\n\r\ntyped here");
    // The row went meanwhile: the page comes back as one row.
    ASSERT_EQ(store::DeleteRow(store.session, early.key), 0);
    Page other = early;
    EXPECT_EQ(StorePage(store.session, early).error, 0);
    EXPECT_EQ(StorePage(store.session, other).error, 0);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt"), 1);
    EXPECT_EQ(store.Read(kDay).text, "from elsewhere\r\n\r\ntyped here");
    EXPECT_EQ(AppendText(store.session, kDay, "more").error, 0);
    EXPECT_EQ(AppendText(store.session, {kDay.serial + 1}, "new").error, 0);
    EXPECT_EQ(store.Read(kDay).text, "from elsewhere\r\n\r\ntyped here\r\n\r\nmore");
    EXPECT_EQ(store.Read({kDay.serial + 1}).text, "new");
}

TEST(DiaryPages, OfTwoRowsTheLaterStoredIsShownAndBothCanBeJoined) {
    // Many times, as the places of the rows among the numbers of their day are drawn.
    for (int i = 0; i < 8; ++i) {
        DiaryStore store;
        store.random = test::SeededRandom(static_cast<std::uint64_t>(i));
        const std::int32_t first = store.Write(kDay, "first");
        const std::int32_t second = store.Double(kDay, "second");
        const std::int32_t third = store.Double(kDay, "third");
        const auto span = ReadSpan(store.session, {kDay.serial - 1}, {kDay.serial + 1});
        EXPECT_EQ(span->pages[1].text, "third");
        EXPECT_EQ(span->doubled, std::vector<Day>{kDay});
        const auto faults = CheckRows(store.session);
        ASSERT_EQ(faults->size(), 2U);
        EXPECT_EQ((*faults)[0].fPK, first);
        EXPECT_EQ((*faults)[1].fPK, second);
        EXPECT_EQ(JoinDay(store.session, kDay), 0);
        const Page joined = store.Read(kDay);
        EXPECT_EQ(joined.key, third);
        EXPECT_EQ(joined.text, "first\r\n\r\nsecond\r\n\r\nthird");
        EXPECT_EQ(store.Count("SELECT fPK FROM tt"), 1);
        EXPECT_EQ(store::TakeStep(store.session, Section::Diary, store::UndoWay::Undo).written, 3U);
        EXPECT_EQ(store.Count("SELECT fPK FROM tt"), 3);
        EXPECT_EQ(JoinDay(store.session, {kDay.serial + 5}), 0);
    }
}

TEST(DiaryPages, WhatDoesNotFitIsToldAndNothingIsCut) {
    DiaryStore store;
    Page page = store.Read(kDay);
    page.text = std::string(70000, 'x');
    EXPECT_EQ(StorePage(store.session, page).error, MessageNumber::InputError);
    EXPECT_EQ(page.text.size(), 70000U);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt"), 0);
    page.text = std::string(65000, 'x');
    EXPECT_EQ(StorePage(store.session, page).error, 0);
    EXPECT_EQ(AppendText(store.session, kDay, "y").error, MessageNumber::InputError);
    EXPECT_EQ(store.Read(kDay).text.size(), 65000U);
    store.Double(kDay, "short");
    EXPECT_EQ(JoinDay(store.session, kDay), MessageNumber::InputError);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt"), 2);
    Page beyond;
    beyond.day = {61833};
    beyond.text = "x";
    EXPECT_EQ(StorePage(store.session, beyond).error, MessageNumber::NoRecord);
}

TEST(DiaryPages, WhatDoesNotDecodeIsNeverWrittenOver) {
    DiaryStore store;
    const std::int32_t key = store.Write(kDay, "x");
    store.Set(key, "fEtx", Bytes("garbage"));
    const auto before = store.Rows();
    Page page = store.Read(kDay);
    EXPECT_FALSE(page.readable);
    page.text = "typed";
    EXPECT_EQ(StorePage(store.session, page).error, MessageNumber::UpdateImpossible);
    page.key = store::kNewRecord;
    EXPECT_EQ(StorePage(store.session, page).error, MessageNumber::UpdateImpossible);
    EXPECT_EQ(AppendText(store.session, kDay, "typed").error, MessageNumber::UpdateImpossible);
    EXPECT_EQ(store.Rows(), before);
}

TEST(DiaryPages, ReadingASpanDeciphersItsRowsAlone) {
    DiaryStore store;
    for (int i = 0; i < 40; ++i)
        store.Write({kDay.serial + 2 * i}, "day " + std::to_string(i));
    std::uint64_t before = store.session.cipher.deciphered;
    const auto span = ReadSpan(store.session, {kDay.serial + 4}, {kDay.serial + 10});
    ASSERT_EQ(span->pages.size(), 7U);
    EXPECT_EQ(span->pages[0].text, "day 2");
    EXPECT_EQ(span->pages[1].key, store::kNewRecord);
    EXPECT_EQ(span->pages[6].text, "day 5");  // the sixth day after the first has the last box
    EXPECT_EQ(span->pages[6].day, Day{kDay.serial + 10});
    EXPECT_EQ(store.session.cipher.deciphered - before, 4U);
    EXPECT_TRUE(span->doubled.empty());

    store.session.ShowPrivate = false;
    before = store.session.cipher.deciphered;
    const auto hidden = ReadSpan(store.session, kDay, kDay);
    EXPECT_TRUE(hidden->hidden);
    EXPECT_EQ(hidden->pages.at(0).text, "");
    EXPECT_TRUE(ListRecords(store.session)->empty());
    EXPECT_EQ(store.session.cipher.deciphered, before);
}

TEST(DiaryPages, ColumnsThatTellAnotherDayAreNamed) {
    DiaryStore store;
    const std::int32_t one = store.Write(kDay, "x");
    const std::int32_t two = store.Write({kDay.serial + 9}, "y");
    store.Set(one, "fR2", PackDateAt({kDay.serial + 2}, kDateKind, 0.5).value);
    store.Set(two, "fT1", cry::FieldCipher(store.session.cipher, 1, Bytes("no date")));
    const auto faults = CheckRows(store.session);
    ASSERT_EQ(faults->size(), 2U);
    for (const RowFault& fault : *faults)
        EXPECT_TRUE(fault.what.starts_with(fault.fPK == one ? "fR2" : "fT1")) << fault.what;
    // A point that was drawn on the edge of its bucket is none.
    store.Set(one, "fR2", PackDateAt(kDay, kDateKind, 0.5).high + 1);
    EXPECT_EQ(CheckRows(store.session)->size(), 1U);
}

}  // namespace
}  // namespace bmr::diary
