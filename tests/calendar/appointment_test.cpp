#include "calendar/appointment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "base/errors.h"
#include "calendar/dayorder.h"
#include "calendar/months.h"
#include "store/undo.h"
#include "support/calendar.h"
#include "support/full_disk.h"
#include "support/store.h"

namespace bmr::calendar {
namespace {

using store::Section;
using store::UndoWay;
using test::CalendarVectors;

constexpr Day kDay{46000};

std::vector<Minutes> MinutesFrom(const nlohmann::json& counts) {
    std::vector<Minutes> minutes;
    for (const std::int32_t count : counts)
        minutes.push_back({count});
    return minutes;
}

class Appointments : public testing::Test {
  protected:
    Appointment Make(Day day, std::int32_t minute, const char* subject = "", const char* redo = "") {
        Appointment appointment = ClearRecord({MidnightOf(day).count + minute}, 30);
        appointment.subject = subject;
        appointment.redoString = test::Hex(redo);
        return appointment;
    }
    std::int32_t Add(Day day, std::int32_t minute, const char* subject = "", const char* redo = "") {
        Appointment appointment = Make(day, minute, subject, redo);
        EXPECT_EQ(WriteRecord(store.session, appointment).error, 0);
        return appointment.key;
    }
    void Move(std::int32_t key, Day day, std::int32_t minute) {
        Appointment appointment = *FetchRecord(store.session, key);
        const std::int32_t length = appointment.end.count - appointment.start.count;
        appointment.start = {MidnightOf(day).count + minute};
        appointment.end = {appointment.start.count + length};
        ASSERT_EQ(WriteRecord(store.session, appointment).error, 0);
    }
    Bytes Plain(const engine::Recordset& row, const char* column) {
        return Bytes(cry::DecipherField(store.session.cipher, TextOf(row.Field(column))));
    }
    std::vector<std::string> Rows() { return store.Rows(); }
    std::vector<std::string> Subjects() {
        std::vector<std::string> subjects;
        const auto keys = ListRecords(store.session);
        for (const std::int32_t key : *keys)
            subjects.push_back(FetchRecord(store.session, key)->subject);
        return subjects;
    }

    test::TempStore store;
};

TEST_F(Appointments, PayloadAndColumnsStandAsTheFormatTells) {
    store.session.user.UserNumber = 3;
    Appointment appointment = Make(kDay, 9 * 60 + 35, "Dentist", "");
    appointment.location = "Harbour Street 12";
    appointment.isPrivate = true;
    appointment.alarm = 1;
    appointment.alarmTime = {appointment.start.count - 60};
    const auto outcome = WriteRecord(store.session, appointment);
    ASSERT_EQ(outcome.error, 0);
    EXPECT_TRUE(outcome.added);
    const auto row = store.Row("SELECT * FROM tt WHERE fSec=12");
    // 46000 is 10491 days after the epoch: 15107615 minutes at 09:35, and 95 steps of six minutes.
    EXPECT_EQ(ToHex(Plain(*row, "fEtx")),
              "000203"
              "010101"
              "02041f86e600"
              "03043d86e600"
              "040200"
              "050201"
              "0604e385e600"
              "080a0744656e74697374"
              "090a11486172626f757220537472656574203132");
    EXPECT_EQ(ToHex(Plain(*row, "fT1")), "041f86e600");
    EXPECT_EQ(ToHex(Plain(*row, "fT2")), "035f00");
    EXPECT_EQ(Plain(*row, "fT3").size(), 7U);
    EXPECT_EQ(UnpackDate(NumberOf(row->Field("fR3")), DateKind::Start), kDay);
    EXPECT_LT(NumberOf(row->Field("fSub")), 148);
    EXPECT_EQ(NumberOf(row->Field("AE")), 1);
    EXPECT_TRUE(std::holds_alternative<Null>(row->Field("fG1")));

    const Appointment read = *FetchRecord(store.session, outcome.fPK);
    EXPECT_TRUE(read.readable);
    EXPECT_EQ(read.userNumber, 3);
    EXPECT_TRUE(read.isPrivate);
    EXPECT_EQ(read.start, appointment.start);
    EXPECT_EQ(read.end.count, appointment.start.count + 30);
    EXPECT_EQ(read.alarmTime.count, appointment.start.count - 60);
    EXPECT_EQ(read.location, "Harbour Street 12");
    EXPECT_EQ(read.notes, "");
    EXPECT_FALSE(read.Recurring());

    // Noise of a single appointment is drawn anew at every save, and no reminder means the start.
    Appointment again = read;
    again.alarm = 0;
    ASSERT_EQ(WriteRecord(store.session, again).error, 0);
    const auto now = store.Row("SELECT * FROM tt WHERE fSec=12");
    EXPECT_NE(NumberOf(now->Field("fR4")), NumberOf(row->Field("fR4")));
    EXPECT_NE(NumberOf(now->Field("fR2")), NumberOf(row->Field("fR2")));
    EXPECT_NE(Plain(*now, "fT3"), Plain(*row, "fT3"));
    EXPECT_EQ(NumberOf(now->Field("AE")), 3);
    EXPECT_EQ(FetchRecord(store.session, outcome.fPK)->alarmTime, again.start);
}

TEST_F(Appointments, ASeriesTellsItsBoundsAndItsClass) {
    struct Case {
        const char* redo;
        int low, high;
    };
    // From 2024-01-01 on: weekly, yearly on 1 January, yearly on the second Tuesday of November. The last one
    // ends in a byte that is a blank, which must survive.
    for (const Case& each :
         {Case{"1114023726cf26", 196, 255}, {"1601013726cf26", 148, 151}, {"17130b3726cf20", 188, 191}}) {
        const std::int32_t key = Add(Day{45292}, 600, "series", each.redo);
        const auto row = store.Row("SELECT * FROM tt WHERE fPK=" + std::to_string(key));
        const RedoRule rule = *ReadRedoRule(test::Hex(each.redo));
        EXPECT_EQ(ToHex(Plain(*row, "fT3")), each.redo);
        EXPECT_EQ(ToHex(FetchRecord(store.session, key)->redoString), each.redo);
        EXPECT_EQ(UnpackDate(NumberOf(row->Field("fR4")), DateKind::First), DayOf(rule.first)) << each.redo;
        EXPECT_EQ(UnpackDate(NumberOf(row->Field("fR2")), DateKind::Last), DayOf(rule.last)) << each.redo;
        EXPECT_GE(NumberOf(row->Field("fSub")), each.low) << each.redo;
        EXPECT_LE(NumberOf(row->Field("fSub")), each.high) << each.redo;
    }
    for (const auto& c : CalendarVectors("FSub")) {
        static constexpr std::array<int, 5> kKinds{0, 1, 2, 4, 6};
        const int frequency = c.at("frequency");
        RedoRule rule{.kind = static_cast<RedoKind>(kKinds.at(static_cast<std::size_t>(frequency)))};
        rule.first = DateToDays16(RolledDate(2026, c.at("month"), 5));
        for (const bool nth : {false, true}) {
            if (nth && frequency == 4) rule = {.kind = RedoKind::YearWeekday, .interval = c.at("month")};
            test::ScriptedRandom random;
            random.uniforms = {c.at("rnd")};
            const std::int32_t fSub = SubclassOf(frequency == 0 ? Bytes() : WriteRedoRule(rule), random);
            EXPECT_EQ(fSub, c.at("out")) << c;
            EXPECT_EQ(MonthOfSubclass(fSub),
                      frequency == 4 ? std::optional<int>(c.at("month")) : std::nullopt);
        }
    }
}

TEST_F(Appointments, WhatIsNoAppointmentOfOursStaysAsItIs) {
    const std::int32_t key = Add(kDay, 600, "whole");
    store.Set(key, "fEtx", cry::FieldCipher(store.session.cipher, 1, Bytes("\x08\x0a\x07part")));
    const auto before = Rows();
    Appointment broken = *FetchRecord(store.session, key);
    EXPECT_FALSE(broken.readable);
    EXPECT_TRUE(broken.isPrivate);
    broken.subject = "overwritten";
    EXPECT_EQ(WriteRecord(store.session, broken).error, MessageNumber::UpdateImpossible);
    EXPECT_EQ(HideSeveral(store.session, {&key, 1}, false).unread, 1U);
    EXPECT_EQ(Rows(), before);
    store.session.ShowPrivate = false;
    EXPECT_TRUE(ListRecords(store.session)->empty());
    // One that has vanished meanwhile is written as a new one.
    Appointment vanished = Make(kDay, 660, "vanished");
    vanished.key = 4711;
    const auto outcome = WriteRecord(store.session, vanished);
    EXPECT_TRUE(outcome.added);
    EXPECT_NE(outcome.fPK, 4711);
}

StartReader ReaderOf(const std::vector<Minutes>& starts, std::size_t& asked) {
    return [&](std::span<const std::size_t> places) {
        asked += places.size();
        std::vector<Minutes> read;
        for (const std::size_t place : places)
            read.push_back(starts.at(place));
        return read;
    };
}

TEST(DayOrder, KnownPlaces) {
    for (const auto& c : CalendarVectors("OrderPosition")) {
        const Minutes start{c.at("newStart")};
        std::vector<Minutes> starts = MinutesFrom(c.at(c.contains("place") ? "allStarts" : "otherStarts"));
        std::size_t place = 0;
        std::size_t asked = 0;
        if (c.contains("place")) {
            const std::size_t old = c.at("place");
            const Minutes before = starts[old];
            starts.erase(starts.begin() + static_cast<std::ptrdiff_t>(old));
            place = PlaceOfMoved(starts.size(), ReaderOf(starts, asked), old, before, start);
        } else {
            place = PlaceOfNew(starts.size(), ReaderOf(starts, asked), start);
        }
        EXPECT_EQ(place, c.at("out").at("position")) << c;
    }
}

TEST(DayOrder, APlaceAmongManyIsFoundByALookAtFew) {
    std::vector<Minutes> starts;
    for (std::int32_t i = 0; i < 1000; ++i)
        starts.push_back({i / 3 * 4});
    for (std::int32_t minute = -1; minute <= 1333; ++minute) {
        const auto wanted = static_cast<std::size_t>(
            std::ranges::count_if(starts, [minute](Minutes each) { return each.count <= minute; }));
        std::size_t asked = 0;
        ASSERT_EQ(PlaceOfNew(starts.size(), ReaderOf(starts, asked), {minute}), wanted);
        EXPECT_LE(asked, 24U);
    }
}

TEST_F(Appointments, StandInTheOrderOfTheirStartsAfterManySaves) {
    std::mt19937 engine(7);
    const auto below = [&engine](unsigned n) { return static_cast<std::int32_t>(engine() % n); };
    std::vector<std::int32_t> keys;
    store.session.undo.recording = false;
    engine::Transaction once(*store.session.ProgramDb);  // the disk is not what is tested
    for (int i = 0; i < 10000; ++i) {
        const Day day{kDay.serial + below(2)};
        const std::int32_t minute = below(24) * 60;
        const auto any = keys.empty() ? 0U : engine() % keys.size();
        if (keys.size() < 5 || (below(3) == 0 && keys.size() < 16)) {
            keys.push_back(Add(day, minute, "", below(4) == 0 ? "1114023726cf26" : ""));
        } else if (below(6) == 0) {
            ASSERT_EQ(store::DeleteRow(store.session, keys[any]), 0);
            keys.erase(keys.begin() + any);
        } else {
            Move(keys[any], day, minute);
        }
        if (i % 25 == 0) ASSERT_EQ(FindDisorder(store.session), std::vector<std::int32_t>()) << i;
    }
    ASSERT_EQ(once.Commit(), 0);
    std::vector<Appointment> more;
    for (int i = 0; i < 300; ++i)
        more.push_back(Make({kDay.serial + below(5)}, below(1440)));
    ASSERT_EQ(AddRecords(store.session, more), 0);
    EXPECT_EQ(FindDisorder(store.session), std::vector<std::int32_t>());
    EXPECT_EQ(ListRecords(store.session)->size(), keys.size() + more.size());
    EXPECT_EQ(FetchRecord(store.session, more.back().key)->start, more.back().start);
    // And the search for disorder finds what it is for.
    const std::int32_t early = Add({kDay.serial + 9}, 60);
    const std::int32_t late = Add({kDay.serial + 9}, 120);
    store.Set(early, "fR1", kMaxLong);
    EXPECT_EQ(FindDisorder(store.session), std::vector{early});
    static_cast<void>(late);
}

TEST_F(Appointments, EqualStartsKeepTheOrderInWhichTheyCame) {
    Add(kDay, 600, "first");
    Add(kDay, 600, "second");
    const std::int32_t moved = Add(kDay, 900, "moved");
    Add(kDay, 300, "early");
    EXPECT_EQ(Subjects(), (std::vector<std::string>{"early", "first", "second", "moved"}));
    // Towards the morning it passes those of the same start, and on another day it comes last of them.
    Move(moved, kDay, 600);
    EXPECT_EQ(Subjects(), (std::vector<std::string>{"early", "moved", "first", "second"}));
    Add({kDay.serial + 1}, 600, "next day");
    Move(moved, {kDay.serial + 1}, 600);
    EXPECT_EQ(Subjects(), (std::vector<std::string>{"early", "first", "second", "next day", "moved"}));
    // Rows that make room carry the mark of a change, and no others do.
    EXPECT_EQ(store.Count("SELECT fPK FROM tt WHERE AE=3"), 4);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt WHERE AE=1"), 1);
}

TEST_F(Appointments, EveryChangeComesBackToTheByte) {
    std::vector<std::int32_t> keys;
    for (int i = 0; i < 6; ++i)
        keys.push_back(Add({kDay.serial + i % 2}, 60 * (12 - i), "some"));
    const auto comesBack = [this](const char* what, const std::function<void()>& change) {
        SCOPED_TRACE(what);
        const auto before = Rows();
        change();
        const auto after = Rows();
        ASSERT_NE(before, after);
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(store::TakeStep(store.session, Section::Calendar, UndoWay::Undo).left, 0U);
            EXPECT_EQ(Rows(), before);
            EXPECT_EQ(store::TakeStep(store.session, Section::Calendar, UndoWay::Redo).left, 0U);
            EXPECT_EQ(Rows(), after);
        }
        EXPECT_TRUE(FindDisorder(store.session).empty());
    };
    comesBack("a new one", [&] { Add(kDay, 630, "new"); });
    comesBack("another time", [&] { Move(keys[0], kDay, 30); });
    comesBack("another day", [&] { Move(keys[0], {kDay.serial + 1}, 720); });
    comesBack("a delete", [&] { ASSERT_EQ(store::DeleteRow(store.session, keys[1]), 0); });
    comesBack("a save behind a delete", [&] { Move(keys[3], {kDay.serial + 1}, 545); });
    comesBack("several hidden", [&] { ASSERT_EQ(HideSeveral(store.session, keys, true).changed, 5U); });
    comesBack("an import", [&] {
        std::vector<Appointment> more{Make(kDay, 100), Make(kDay, 900), Make({kDay.serial + 1}, 20)};
        ASSERT_EQ(AddRecords(store.session, more), 0);
    });
    comesBack("several deleted",
              [&] { ASSERT_EQ(DeleteSeveral(store.session, store::Keys(keys).first(4)).changed, 3U); });
    std::vector<std::vector<std::string>> states{Rows()};
    while (store::MayTake(store.session, Section::Calendar, UndoWay::Undo)) {
        store::TakeStep(store.session, Section::Calendar, UndoWay::Undo);
        EXPECT_TRUE(FindDisorder(store.session).empty());
        states.push_back(Rows());
    }
    EXPECT_TRUE(states.back().empty());
    for (auto state = states.rbegin() + 1; state != states.rend(); ++state) {
        store::TakeStep(store.session, Section::Calendar, UndoWay::Redo);
        EXPECT_EQ(Rows(), *state);
    }
}

TEST_F(Appointments, ADayThatHasChangedSinceGivesARowItsPlaceAnew) {
    Add(kDay, 300, "early");
    const std::int32_t key = Add(kDay, 600, "gone");
    ASSERT_EQ(store::DeleteRow(store.session, key), 0);
    for (int minute = 0; minute < 1440; minute += 45)
        Add(kDay, minute, "more");
    store.session.undo.sections[Section::Calendar].done.resize(3);
    const auto outcome = store::TakeStep(store.session, Section::Calendar, UndoWay::Undo);
    EXPECT_EQ(outcome.keys, std::vector{key});
    EXPECT_EQ(FetchRecord(store.session, key)->subject, "gone");
    EXPECT_TRUE(FindDisorder(store.session).empty());
    store::TakeStep(store.session, Section::Calendar, UndoWay::Redo);
    EXPECT_FALSE(FetchRecord(store.session, key));
    EXPECT_TRUE(FindDisorder(store.session).empty());
}

}  // namespace
}  // namespace bmr::calendar
