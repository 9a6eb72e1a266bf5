#include "store/startvariables.h"

#include <gtest/gtest.h>

#include "store/record_put.h"
#include "store/section_store.h"
#include "support/data.h"
#include "support/store.h"

namespace bmr::store {
namespace {

using test::TempStore;

Bytes StoredPayload(TempStore& store) {
    const auto payload = FetchSinglePayload(store.session, 5, 1);
    return payload && *payload ? Bytes((*payload)->view()) : Bytes();
}

// Fields 0 to 14 of the defaults, byte by byte.
const char* const kFirstFifteen =
    "00030500"
    "010200"
    "020200"
    "030200"
    "040200"
    "050200"
    "060200"
    "070200"
    "080201"
    "090200"
    "0a0200"
    "0b041e000000"
    "0c16aaaaaa3e"
    "0d165555353f"
    "0e160000a03e";
const char* const kTheRest =
    "0f03ffff"
    "1003ffff"
    "1103ffff"
    "1203ffff"
    "1303ffff"
    "1403ffff"
    "1503ffff"
    "1603ffff"
    "1703ffff";

TEST(Settings, ANewDatabaseGetsItsDefaultsOnTheFirstReading) {
    TempStore store;
    store.session.settings.Idle = 14;  // of the database before
    store.session.settings.LastCategory[3] = 12;
    ASSERT_EQ(ReadSettings(store.session), 0);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt WHERE fSec=5 And fSub=1"), 1);
    EXPECT_EQ(ToHex(StoredPayload(store)), std::string(kFirstFifteen) + kTheRest);
    EXPECT_EQ(store.session.settings.Idle, 5);
    EXPECT_TRUE(store.session.ShowPrivate);

    ASSERT_EQ(ReadSettings(store.session), 0);
    EXPECT_EQ(MinuteOfDay(store.session.settings.WorkdayStart), 8 * 60);
    EXPECT_EQ(MinuteOfDay(store.session.settings.WorkdayEnd), 17 * 60);
    EXPECT_EQ(MinuteOfDay(store.session.settings.DisplayFrom), 7 * 60 + 30);
}

TEST(Settings, ComeBackAsTheyWere) {
    TempStore store;
    Settings& settings = store.session.settings;
    settings.Idle = -3;
    settings.BudgetShow = {1, 2, 15};
    settings.StartSection = 15;
    settings.StartScreen = 2;
    settings.TodoShowCompleted = 1;
    settings.BudgetPrimary = 2;
    settings.DiaryShow = 0;
    settings.CatShow = 1;
    settings.calView = 3;
    settings.AppDuration = 100000;
    settings.WorkdayStart = {0.25};
    settings.WorkdayEnd = {0.75};
    settings.DisplayFrom = {0.5};
    settings.LastCategory = {-1, 0, 1, 9998, 5};
    settings.BudgetCategory = {3, 2, 1};
    store.session.ShowPrivate = false;
    ASSERT_EQ(WriteSettings(store.session), 0);
    const Bytes before = StoredPayload(store);

    settings = Settings();
    store.session.ShowPrivate = true;
    ASSERT_EQ(ReadSettings(store.session), 0);
    EXPECT_FALSE(store.session.ShowPrivate);
    EXPECT_EQ(settings.LastCategory, (std::array<std::int16_t, 5>{-1, 0, 1, 9998, 5}));
    EXPECT_EQ(settings.AppDuration, 100000);
    ASSERT_EQ(WriteSettings(store.session), 0);
    EXPECT_EQ(ToHex(StoredPayload(store)), ToHex(before));
    EXPECT_EQ(store.Count("SELECT fPK FROM tt"), 1);
}

TEST(Settings, AnOlderRowLeavesTheOthersAsTheyAre) {
    for (const bool present : {false, true}) {
        TempStore store;
        ASSERT_EQ(
            StoreSinglePayload(store.session, 5, 1, test::Hex("000307000a0203" + std::string("0b0105"))), 0);
        store.session.settings.AppDuration = 45;
        store.session.settings.LastCategory[2] = 4;
        store.session.ShowPrivate = present;
        ASSERT_EQ(ReadSettings(store.session), 0);
        EXPECT_EQ(store.session.settings.Idle, 7);
        EXPECT_EQ(store.session.settings.calView, 3);
        EXPECT_EQ(store.session.settings.AppDuration, 45);  // stored under another tag: not taken
        EXPECT_EQ(store.session.settings.LastCategory[2], 4);
        EXPECT_EQ(store.session.ShowPrivate, present);
        EXPECT_FALSE(store.session.SettingsUnread);
    }
}

TEST(Settings, ARowThatDoesNotDecodeStaysUntilTheUserStores) {
    for (const Bytes& payload : {Bytes(40, 'x'), Bytes(), test::Hex("00030700") + "cut"}) {
        TempStore store;
        ASSERT_EQ(StoreSinglePayload(store.session, 5, 1, payload), 0);
        const Value before = store.Row("SELECT * FROM tt WHERE fSec=5")->Field("fEtx");
        store.session.settings.Idle = 14;
        ASSERT_EQ(ReadSettings(store.session), 0);
        EXPECT_TRUE(store.session.SettingsUnread);
        EXPECT_EQ(store.session.settings.Idle, 5);
        EXPECT_FALSE(store.session.ShowPrivate);
        ASSERT_EQ(WriteSettingsAtClose(store.session), 0);
        EXPECT_EQ(store.Row("SELECT * FROM tt WHERE fSec=5")->Field("fEtx"), before);

        ASSERT_EQ(WriteSettings(store.session), 0);
        EXPECT_FALSE(store.session.SettingsUnread);
        store.session.settings.Idle = 9;
        ASSERT_EQ(WriteSettingsAtClose(store.session), 0);
        ASSERT_EQ(ReadSettings(store.session), 0);
        EXPECT_EQ(store.session.settings.Idle, 9);
    }
}

TEST(UserLabels, AreKeptForEachUser) {
    TempStore store;
    EXPECT_EQ(ReadUserLabels(store.session, 0), BuiltInUserLabels());
    const UserLabels labels = {"Shoes", "", Bytes(500, 'x'), "\xE9"};
    ASSERT_EQ(WriteUserLabels(store.session, 0, labels), 0);
    ASSERT_EQ(WriteUserLabels(store.session, 7, BuiltInUserLabels()), 0);
    EXPECT_EQ(ReadUserLabels(store.session, 0), labels);
    EXPECT_EQ(ReadUserLabels(store.session, 7), BuiltInUserLabels());
    ASSERT_EQ(StoreSinglePayload(store.session, 9, 0, Bytes(40, 'x')), 0);
    EXPECT_EQ(ReadUserLabels(store.session, 0), BuiltInUserLabels());
}

TEST(MinuteOfDay, RoundsToTheSecondFirst) {
    EXPECT_EQ(MinuteOfDay({static_cast<double>(1.0F / 3)}), 480);
    EXPECT_EQ(MinuteOfDay({46000 + 7.999 / 24}), 7 * 60 + 59);
    EXPECT_EQ(MinuteOfDay({0.9999999}), 0);
}

}  // namespace
}  // namespace bmr::store
