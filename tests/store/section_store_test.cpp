#include "store/section_store.h"

#include <gtest/gtest.h>

#include <set>

#include "store/categories.h"
#include "store/record_put.h"
#include "support/store.h"
#include "support/store_file.h"

namespace bmr::store {
namespace {

using test::TempStore;

/// Stores a row of the memo pad with `text` in fT1.
StoreOutcome StoreMemo(TempStore& store, std::int32_t key, const Bytes& text, int fillError = 0) {
    return StoreRow(store.session, Section::Memo, key, [&](engine::Recordset& row, bool) {
        row.SetField("fT1", text);
        return fillError;
    });
}

std::unique_ptr<engine::Recordset> RowOf(TempStore& store, std::int32_t key) {
    return store.Row("SELECT * FROM tt WHERE fPK=" + std::to_string(key));
}

TEST(StoreRow, AddsAndEditsWithChangeMarks) {
    TempStore store;
    const StoreOutcome added = StoreMemo(store, kNewRecord, "one");
    EXPECT_EQ(added.error, 0);
    EXPECT_TRUE(added.added);
    EXPECT_TRUE(added.fPK != 0 && added.fPK != kNewRecord);
    EXPECT_EQ(NumberOf(RowOf(store, added.fPK)->Field("AE")), 1);
    EXPECT_EQ(NumberOf(RowOf(store, added.fPK)->Field("fSec")), 14);

    const StoreOutcome edited = StoreMemo(store, added.fPK, "two");
    EXPECT_FALSE(edited.added);
    EXPECT_EQ(edited.fPK, added.fPK);
    EXPECT_EQ(NumberOf(RowOf(store, added.fPK)->Field("AE")), 3);
    EXPECT_EQ(TextOf(RowOf(store, added.fPK)->Field("fT1")), "two");
    EXPECT_EQ(store.Count("SELECT fPK FROM tt"), 1);

    auto bare = store.session.ProgramDb->OpenRecordset("tt");  // a row whose change marks are Null
    (*bare)->AddNew();
    (*bare)->SetField("fSec", 14);
    ASSERT_EQ((*bare)->Update(), 0);
    const std::int32_t key = NumberOf((*bare)->Field("fPK"));
    StoreMemo(store, key, "three");
    EXPECT_EQ(NumberOf(RowOf(store, key)->Field("AE")), 2);
}

TEST(StoreRow, ARefusalChangesNothing) {
    TempStore store;
    const std::int32_t key = StoreMemo(store, kNewRecord, "kept").fPK;
    EXPECT_EQ(StoreMemo(store, key, "lost", -7).error, -7);
    EXPECT_EQ(StoreMemo(store, kNewRecord, "lost", 3000).error, 3000);
    const auto withOthers = StoreRow(store.session, Section::Memo, key, [&](engine::Recordset& row, bool) {
        EXPECT_EQ(DeleteRows(store.session, Section::Memo), 0);
        row.SetField("fT1", Bytes("lost"));
        return 0;
    });
    EXPECT_NE(withOthers.error, 0) << "the row went while it was filled";
    const auto foreign =
        StoreRow(store.session, Section::Todo, key, [](engine::Recordset&, bool) { return 0; });
    EXPECT_EQ(foreign.error, -16);
    EXPECT_EQ(foreign.fPK, kNewRecord);
    store.Reopen();
    EXPECT_EQ(store.Count("SELECT fPK FROM tt"), 1);
    EXPECT_EQ(TextOf(RowOf(store, key)->Field("fT1")), "kept");
    EXPECT_EQ(NumberOf(RowOf(store, key)->Field("AE")), 1);

    EXPECT_EQ(StoreMemo(store, key, "the next store is whole").error, 0);
    store.Reopen();
    EXPECT_EQ(TextOf(RowOf(store, key)->Field("fT1")), "the next store is whole");
}

TEST(FetchRow, GivesOnlyRowsOfTheSection) {
    TempStore store;
    const std::int32_t key = StoreMemo(store, kNewRecord, "memo").fPK;
    const auto stands = [&](std::uint8_t section, std::int32_t ofKey) {
        const auto row = FetchRow(store.session, section, ofKey);
        EXPECT_TRUE(row);
        return row && *row;
    };
    ASSERT_TRUE(stands(Section::Memo, key));
    EXPECT_FALSE(stands(Section::Todo, key));
    EXPECT_FALSE(stands(Section::Memo, key ^ 1));
    StoreMemo(store, kNewRecord, "other");
    EXPECT_EQ(DeleteRow(store.session, key), 0);
    EXPECT_FALSE(stands(Section::Memo, key));
    EXPECT_EQ(DeleteRows(store.session, Section::Memo, " And fT1 Is Null"), 0);
    EXPECT_EQ(DeleteRows(store.session, Section::Todo), 0);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt"), 1);
    EXPECT_EQ(DeleteRows(store.session, Section::Memo), 0);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt"), 0);
}

TEST(SinglePayload, OneRowWithNoiseInEveryOtherColumn) {
    TempStore store;
    auto payload = FetchSinglePayload(store.session, 10, 15);
    ASSERT_TRUE(payload);
    EXPECT_FALSE(*payload);
    ASSERT_EQ(StoreSinglePayload(store.session, 10, 14, " other "), 0);
    std::set<std::size_t> lengths;
    for (int i = 0; i < 40; ++i) {
        ASSERT_EQ(StoreSinglePayload(store.session, 10, 15, " blanks stay "), 0);
        const auto row = store.Row("SELECT * FROM tt WHERE fSec=10 And fSub=15");
        for (const char* column : {"fT1", "fT2", "fT3"})
            lengths.insert(TextOf(row->Field(column)).size());
        for (const char* column : {"fR1", "fR2", "fR3", "fR4"})
            EXPECT_GE(NumberOf(row->Field(column), -1), 0) << column;
        EXPECT_EQ(row->Field("fR5"), Value(0));
        EXPECT_EQ(NumberOf(row->Field("AE")), i == 0 ? 1 : 3);
    }
    EXPECT_EQ(lengths, (std::set<std::size_t>{8, 16, 24}));
    EXPECT_EQ(store.Count("SELECT fPK FROM tt WHERE fSec=10"), 2);
    payload = FetchSinglePayload(store.session, 10, 15);
    ASSERT_TRUE(payload && *payload);
    EXPECT_EQ((*payload)->view(), " blanks stay ");
}

TEST(DamagedRows, AreNeitherMissedNorAddedASecondTime) {
    TempStore store;
    ASSERT_EQ(StoreSinglePayload(store.session, 10, 14, "the only list"), 0);
    const std::int32_t key = StoreMemo(store, kNewRecord, "memo").fPK;
    const Bytes stored = TextOf(store.Row("SELECT fEtx FROM tt WHERE fSec=10")->Field("fEtx"));
    for (int i = 0; i < 40; ++i)
        ASSERT_EQ(StoreMemo(store, kNewRecord, Bytes(400, 'x')).error, 0);
    store.session.ProgramDb.reset();
    test::DamagePageWith(store.session.DatabasePath, stored);
    store.Reopen();

    constexpr int kDamaged = engine::EngineNumber::Damaged;
    const std::int64_t before = store.session.ProgramDb->ChangeCount();
    EXPECT_EQ(FetchSinglePayload(store.session, 10, 14).error().number, kDamaged);
    EXPECT_EQ(StoreSinglePayload(store.session, 10, 14, "a second list"), kDamaged);
    EXPECT_EQ(FetchRow(store.session, Section::Memo, key).error().number, kDamaged);
    EXPECT_NE(StoreMemo(store, key, "changed").error, 0);
    EXPECT_EQ(store.session.ProgramDb->ChangeCount() - before, 2)
        << "two transactions undone, no row written";
    EXPECT_EQ(StoreMemo(store, kNewRecord, "another").error, 0);
}

}  // namespace
}  // namespace bmr::store
