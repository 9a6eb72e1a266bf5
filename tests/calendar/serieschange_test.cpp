#include "calendar/serieschange.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "base/errors.h"
#include "calendar/dayorder.h"
#include "calendar/occurrences.h"
#include "calendar/rowcheck.h"
#include "calendar/series.h"
#include "calendar/seriessplit.h"
#include "store/undo.h"
#include "support/calendar.h"
#include "support/failing_disk.h"
#include "support/sitting.h"
#include "support/store.h"

namespace bmr::calendar {
namespace {

using store::Section;
using store::UndoWay;
using testing::ElementsAre;
using testing::IsEmpty;

/// Monday.
constexpr Day kFirst{46027};
constexpr Period kPeriod{{kFirst.serial - 6}, {kFirst.serial + 900}};

/// A field that a later program gave its appointments.
constexpr std::uint8_t kLaterField = 0x28;

Minutes At(Day day, std::int32_t minute) {
    return {MidnightOf(day).count + minute};
}

TimeSpan Span(Day day, std::int32_t minute, std::int32_t length = 30) {
    return DrawnSpan(At(day, minute), At(day, minute + length));
}

class SeriesChange : public testing::Test {
  protected:
    /// A series at 09:00 for half an hour, with a reminder ten minutes before.
    std::int32_t Add(RedoRule rule, std::int32_t lastAfter, const char* subject = "series") {
        rule.first = DateToDays16(kFirst);
        rule.last = DateToDays16({kFirst.serial + lastAfter});
        Appointment series = ClearRecord(At(kFirst, 540), 30);
        series.subject = subject;
        series.notes = "notes Ω";
        series.isPrivate = true;
        series.alarm = 1;
        series.alarmTime = At(kFirst, 530);
        series.redoString = WriteRedoRule(rule);
        series.carried.unknown.push_back({kLaterField, Bytes("\x28\x02\x07")});
        EXPECT_EQ(WriteRecord(store.session, series).error, 0);
        return series.key;
    }
    std::int32_t AddDaily(std::int32_t times = 5) {
        return Add({.kind = RedoKind::Daily, .endMode = RedoEnd::Count, .interval = 1}, times - 1);
    }
    /// The 5th of January, of every year.
    std::int32_t AddYearly(std::int32_t years = 2) {
        return Add({.kind = RedoKind::YearDay, .endMode = RedoEnd::Date, .pattern = 5, .interval = 1},
                   365 * years + 1);
    }
    std::int32_t AddSingle(Day day, std::int32_t minute) {
        Appointment single = ClearRecord(At(day, minute), 30);
        single.subject = "single";
        EXPECT_EQ(WriteRecord(store.session, single).error, 0);
        return single.key;
    }
    /// Day from the first on, time of day, and what kind of row it is of: "0 540 series".
    std::vector<std::string> Shown() {
        std::vector<std::string> shown;
        for (const Minutes& each : Starts())
            shown.push_back(std::to_string(DayOf(each).serial - kFirst.serial) + " " +
                            std::to_string(MinuteOfDay(each)));
        return shown;
    }
    std::vector<Minutes> Starts() {
        std::vector<Minutes> starts;
        // By months, as yearly series step in a way of their own in a longer period.
        for (Day day = kPeriod.first; day <= kPeriod.last; day.serial += 30) {
            const auto found = AppointmentsInPeriod(store.session, {day, {day.serial + 29}}, locale);
            for (const Occurrence& each : *found)
                starts.push_back(each.minutes);
        }
        return starts;
    }
    int RowsInFile() { return store.Count("SELECT fPK FROM tt WHERE fSec=12"); }
    /// The change comes back and goes forth again to the byte, as one step, and the columns tell the truth.
    void IsOneStep(const std::function<store::StoreOutcome()>& change) {
        const auto before = store.Rows();
        ASSERT_EQ(change().error, 0);
        const auto after = store.Rows();
        ASSERT_NE(before, after);
        EXPECT_THAT(*CheckRows(store.session), IsEmpty());
        EXPECT_THAT(FindDisorder(store.session), IsEmpty());
        EXPECT_EQ(store::TakeStep(store.session, Section::Calendar, UndoWay::Undo).left, 0U);
        EXPECT_EQ(store.Rows(), before);
        EXPECT_EQ(store::TakeStep(store.session, Section::Calendar, UndoWay::Redo).left, 0U);
        EXPECT_EQ(store.Rows(), after);
    }
    store::StoreOutcome Move(std::int32_t key, Day day, const TimeSpan& to, Reach reach) {
        return MoveOccurrence(store.session, key, At(day, 540), to, reach, locale);
    }
    store::StoreOutcome Delete(std::int32_t key, Day day, Reach reach) {
        return DeleteOccurrence(store.session, key, At(day, 540), reach, locale);
    }
    RedoRule RuleOf(std::int32_t key) { return *ReadRedoRule(FetchRecord(store.session, key)->redoString); }

    SeriesChange() { store.session.ShowPrivate = true; }
    test::TempStore store;
    LocaleFacts locale = test::WeekFrom(2);
};

Day After(std::int32_t days) {
    return {kFirst.serial + days};
}

TEST_F(SeriesChange, OneDayMovesAndTakesEverythingAlong) {
    const std::int32_t key = AddDaily();
    AddSingle(After(9), 700);
    store::StoreOutcome moved;
    IsOneStep([&] { return moved = Move(key, After(2), Span(After(9), 600, 45), Reach::This); });
    EXPECT_THAT(Shown(), ElementsAre("0 540", "1 540", "3 540", "4 540", "9 600", "9 700"));
    EXPECT_TRUE(moved.added);
    const Appointment single = *FetchRecord(store.session, moved.fPK);
    EXPECT_FALSE(single.Recurring());
    EXPECT_EQ(single.end, At(After(9), 645));
    EXPECT_EQ(single.alarmTime, At(After(9), 590));
    EXPECT_EQ(single.notes, "notes Ω");
    EXPECT_TRUE(single.isPrivate);
    EXPECT_EQ(single.carried.unknown.size(), 1U);
    EXPECT_EQ(RuleOf(key).excluded, std::vector{DateToDays16(After(2))});
    EXPECT_EQ(FetchRecord(store.session, key)->start, At(kFirst, 540));
    EXPECT_EQ(NumberOf(store.Row("SELECT * FROM tt WHERE fPK=" + std::to_string(key))->Field("AE")), 3);
    EXPECT_EQ(NumberOf(store.Row("SELECT * FROM tt WHERE fPK=" + std::to_string(moved.fPK))->Field("AE")), 1);
    // A resized one on its own day, and one that becomes all-day.
    IsOneStep([&] { return Move(key, After(3), Span(After(3), 540, 90), Reach::This); });
    TimeSpan whole = Span(After(4), 300);
    whole.allDay = true;
    IsOneStep([&] { return moved = Move(key, After(4), whole, Reach::This); });
    EXPECT_THAT(Shown(), ElementsAre("0 540", "1 540", "3 540", "4 0", "9 600", "9 700"));
    EXPECT_EQ(FetchRecord(store.session, moved.fPK)->end, At(After(5), 0));
    // Where it stands so already nothing is written.
    const auto before = store.Rows();
    EXPECT_EQ(Move(key, After(1), Span(After(1), 540), Reach::This).fPK, key);
    EXPECT_EQ(store.Rows(), before);
}

TEST_F(SeriesChange, OneDayOfAYearlySeriesCutsItInTwo) {
    const std::int32_t key = AddYearly(2);
    IsOneStep([&] { return Move(key, After(365), Span(After(366), 600), Reach::This); });
    EXPECT_EQ(RowsInFile(), 3);
    EXPECT_THAT(Shown(), ElementsAre("0 540", "366 600", "730 540"));
    // The first day goes: the row goes on with the next.
    IsOneStep([&] { return Delete(key, kFirst, Reach::This); });
    EXPECT_THAT(Shown(), ElementsAre("366 600", "730 540"));
    EXPECT_EQ(RowsInFile(), 2);
}

TEST_F(SeriesChange, TheLastDayTakesTheRowAlong) {
    for (const bool daily : {true, false}) {
        for (const Reach reach : {Reach::This, Reach::ThisAndLater, Reach::All}) {
            const std::int32_t key = daily ? AddDaily(1) : AddYearly(0);
            IsOneStep([&] { return Delete(key, kFirst, reach); });
            EXPECT_EQ(RowsInFile(), 0);
        }
        // One that moves stays the row that it was.
        const std::int32_t key = daily ? AddDaily(1) : AddYearly(0);
        EXPECT_EQ(Move(key, kFirst, Span(After(3), 600), Reach::This).fPK, key);
        EXPECT_FALSE(FetchRecord(store.session, key)->Recurring());
        EXPECT_EQ(Delete(key, After(3), Reach::This).error, 0);
    }
}

TEST_F(SeriesChange, LaterOnesBecomeASeriesOfTheirOwn) {
    const std::int32_t key = AddDaily();
    store::StoreOutcome later;
    IsOneStep([&] { return later = Move(key, After(3), Span(After(4), 600), Reach::ThisAndLater); });
    EXPECT_THAT(Shown(), ElementsAre("0 540", "1 540", "2 540", "4 600", "5 600"));
    EXPECT_NE(later.fPK, key);
    EXPECT_EQ(FetchRecord(store.session, later.fPK)->start, At(After(4), 600));
    EXPECT_EQ(FetchRecord(store.session, later.fPK)->alarmTime, At(After(4), 590));
    EXPECT_EQ(FetchRecord(store.session, later.fPK)->carried.unknown.front().number, kLaterField);
    EXPECT_EQ(RuleOf(key).last, DateToDays16(After(2)));
    IsOneStep([&] { return Delete(key, After(1), Reach::ThisAndLater); });
    EXPECT_THAT(Shown(), ElementsAre("0 540", "4 600", "5 600"));
    // From its first day on it is the whole row.
    IsOneStep([&] { return later = Move(key, kFirst, Span(After(2), 60), Reach::ThisAndLater); });
    EXPECT_EQ(later.fPK, key);
    EXPECT_THAT(Shown(), ElementsAre("2 60", "4 600", "5 600"));
    EXPECT_EQ(RowsInFile(), 2);
}

TEST_F(SeriesChange, WorkdaysThatBeginEarlierEndTheOldOnesBefore) {
    const std::int32_t key = Add({.kind = RedoKind::Workdays, .endMode = RedoEnd::Date, .pattern = 124}, 7);
    IsOneStep([&] { return Move(key, After(3), Span(After(1), 600), Reach::ThisAndLater); });
    EXPECT_THAT(Shown(), ElementsAre("0 540", "1 600", "2 600", "3 600", "4 600", "7 600"));
}

TEST_F(SeriesChange, AllKeepTheirDaysAndTakeTheTime) {
    RedoRule rule{.kind = RedoKind::Daily, .endMode = RedoEnd::Date, .interval = 1};
    rule.excluded = {DateToDays16(After(2))};
    const std::int32_t key = Add(rule, 4);
    AddSingle(kFirst, 500);
    IsOneStep([&] { return Move(key, After(3), Span(After(3), 480, 60), Reach::All); });
    EXPECT_THAT(Shown(), ElementsAre("0 480", "0 500", "1 480", "3 480", "4 480"));
    const Appointment series = *FetchRecord(store.session, key);
    EXPECT_EQ(series.start, At(kFirst, 480));
    EXPECT_EQ(series.end, At(kFirst, 540));
    EXPECT_EQ(series.alarmTime, At(kFirst, 470));
    const auto before = store.Rows();
    EXPECT_EQ(Move(key, After(3), Span(After(4), 480), Reach::All).error, MessageNumber::UpdateImpossible);
    EXPECT_EQ(store.Rows(), before);
    const ReachOffer offer =
        ReachesFor(series, At(After(3), 480), SeriesVerb::Move, At(After(4), 480), locale);
    EXPECT_TRUE(offer.thisOne);
    EXPECT_TRUE(offer.thisAndLater);
    EXPECT_FALSE(offer.all);
    EXPECT_NE(offer.why, "");
    EXPECT_EQ(ReachesFor(series, At(After(3), 480), SeriesVerb::Move, At(After(3), 900), locale).why, "");
}

TEST_F(SeriesChange, ASingleOneMovesByItselfAndACopyIsOne) {
    const std::int32_t key = AddSingle(kFirst, 600);
    IsOneStep([&] {
        return MoveOccurrence(store.session, key, At(kFirst, 600), Span(After(1), 60), Reach::All, locale);
    });
    store::StoreOutcome copy;
    IsOneStep(
        [&] { return copy = CopyOccurrence(store.session, key, At(After(1), 60), Span(After(2), 90)); });
    EXPECT_THAT(Shown(), ElementsAre("1 60", "2 90"));
    EXPECT_EQ(FetchRecord(store.session, copy.fPK)->subject, "single");
    const std::int32_t series = AddDaily(2);
    IsOneStep(
        [&] { return copy = CopyOccurrence(store.session, series, At(kFirst, 540), Span(After(8), 90)); });
    EXPECT_FALSE(FetchRecord(store.session, copy.fPK)->Recurring());
    EXPECT_EQ(FetchRecord(store.session, copy.fPK)->alarmTime, At(After(8), 80));
    EXPECT_THAT(Shown(), ElementsAre("0 540", "1 60", "1 540", "2 90", "8 90"));
}

TEST_F(SeriesChange, TheEditorGetsWhatTheReachMeans) {
    const std::int32_t key = AddDaily();
    const auto given = [&](Reach reach, Day day) {
        return *ForEditing(store.session, key, At(day, 540), reach, locale);
    };
    const auto keep = [&](Appointment edited, Reach reach, Day day) {
        return StoreOccurrence(store.session, edited, key, At(day, 540), reach, locale);
    };
    // Nothing changed, nothing written, whatever was asked for.
    const auto untouched = store.Rows();
    for (const Reach reach : {Reach::This, Reach::ThisAndLater, Reach::All})
        EXPECT_EQ(keep(given(reach, After(2)), reach, After(2)).error, 0);
    EXPECT_EQ(store.Rows(), untouched);

    Appointment edited = given(Reach::This, After(1));
    EXPECT_FALSE(edited.Recurring());
    EXPECT_EQ(edited.start, At(After(1), 540));
    edited.subject = "once";
    IsOneStep([&] { return keep(edited, Reach::This, After(1)); });
    edited = given(Reach::ThisAndLater, After(3));
    EXPECT_EQ(edited.start, At(After(3), 540));
    edited.subject = "later";
    IsOneStep([&] { return keep(edited, Reach::ThisAndLater, After(3)); });
    EXPECT_EQ(RowsInFile(), 3);
    edited = given(Reach::ThisAndLater, kFirst);
    EXPECT_EQ(edited.key, key);
    edited.subject = "first";
    IsOneStep([&] { return keep(edited, Reach::ThisAndLater, kFirst); });
    EXPECT_EQ(FetchRecord(store.session, key)->subject, "first");
    EXPECT_THAT(Shown(), ElementsAre("0 540", "1 540", "2 540", "3 540", "4 540"));
    // What was written while the row went becomes a row of its own.
    edited = given(Reach::All, kFirst);
    Appointment one = given(Reach::This, kFirst);
    ASSERT_EQ(store::DeleteRow(store.session, key), 0);
    one.subject = edited.subject = "back";
    EXPECT_TRUE(keep(one, Reach::This, kFirst).added);
    EXPECT_TRUE(keep(edited, Reach::All, kFirst).added);
    int error = 0;
    EXPECT_FALSE(ForEditing(store.session, key, At(kFirst, 540), Reach::This, locale, &error));
    EXPECT_EQ(error, MessageNumber::NoRecord);
}

TEST_F(SeriesChange, ExcludedDaysAreLeftOutAgain) {
    RedoRule rule{.kind = RedoKind::Daily, .endMode = RedoEnd::Date, .interval = 1};
    rule.excluded = {DateToDays16(After(3)), DateToDays16(After(2)), DateToDays16(After(40))};
    const std::int32_t key = Add(rule, 5);
    Appointment edited = *FetchRecord(store.session, key);
    const Bytes stored = edited.redoString;
    RedoState state = ParseRedoString(stored, kFirst, locale);
    EXPECT_EQ(ToHex(StringToStore(state, stored, locale, store.random)), ToHex(stored));
    EXPECT_THAT(DroppedDays(stored, stored, locale), IsEmpty());
    state.interval = 2;
    edited.redoString = StringToStore(state, stored, locale, store.random);
    EXPECT_THAT(DroppedDays(stored, edited.redoString, locale), ElementsAre(After(2)));
    IsOneStep([&] {
        return StoreOccurrence(store.session, edited, key, At(kFirst, 540), Reach::All, locale,
                               DroppedDays(stored, edited.redoString, locale));
    });
    EXPECT_THAT(Shown(), ElementsAre("0 540", "4 540"));
    // Where it cannot be left out again it comes back all the same, which is to be told.
    const RedoRule monthly{.kind = RedoKind::MonthDay,
                           .pattern = 5,
                           .interval = 1,
                           .first = DateToDays16(kFirst),
                           .last = DateToDays16(After(900))};
    rule.first = monthly.first;
    rule.last = monthly.last;
    rule.excluded = {DateToDays16(After(2)), DateToDays16(After(31))};
    const Bytes changed = WriteRedoRule(monthly);
    EXPECT_THAT(DroppedDays(WriteRedoRule(rule), changed, locale), ElementsAre(After(31)));
    EXPECT_THAT(DaysToLeaveOut(changed, std::vector{After(31)}, locale), IsEmpty());
    // A kind that heeds none is cut instead.
    rule = {.kind = RedoKind::MonthWeekday, .endMode = RedoEnd::Never, .pattern = 2 + 8, .interval = 1};
    rule.first = DateToDays16(kFirst);
    rule.last = DateToDays16(After(10000));
    edited = *FetchRecord(store.session, key);
    edited.redoString = WriteRedoRule(rule);
    const std::vector<Day> again{kFirst, After(28)};
    IsOneStep([&] {
        return StoreOccurrence(store.session, edited, key, At(kFirst, 540), Reach::All, locale, again);
    });
    EXPECT_EQ(RowsInFile(), 1);
    EXPECT_EQ(Shown().front(), "56 540");
    EXPECT_EQ(edited.start, At(After(56), 540));
    // A series without an end of which only the drawn last day differs is the one that it was.
    const Appointment now = *FetchRecord(store.session, key);
    state = ParseRedoString(now.redoString, DayOf(now.start), locale);
    edited = now;
    edited.redoString = StringToStore(state, now.redoString, locale, store.random);
    const auto before = store.Rows();
    EXPECT_EQ(StoreOccurrence(store.session, edited, key, now.start, Reach::All, locale).error, 0);
    EXPECT_EQ(store.Rows(), before);
}

TEST_F(SeriesChange, AsManyDaysAsAStringHoldsAndNotOneMore) {
    RedoRule rule{.kind = RedoKind::Daily, .endMode = RedoEnd::Date, .interval = 1};
    for (std::size_t i = 0; i + 1 < kMostExcluded; ++i)
        rule.excluded.push_back({static_cast<std::int16_t>(static_cast<int>(i) - 22000)});
    rule.first = {-22000};
    rule.last = DateToDays16(After(200));
    Appointment series = ClearRecord(At({kEpoch.serial - 22000}, 540), 30);
    series.redoString = WriteRedoRule(rule);
    ASSERT_EQ(WriteRecord(store.session, series).error, 0);
    ASSERT_THAT(Shown().front(), "-6 540");
    IsOneStep([&] { return Delete(series.key, After(1), Reach::This); });
    EXPECT_EQ(RuleOf(series.key).excluded.size(), kMostExcluded);
    EXPECT_EQ(Shown().at(6), "0 540");
    EXPECT_EQ(Shown().at(7), "2 540");
    const auto before = store.Rows();
    EXPECT_EQ(Delete(series.key, After(2), Reach::This).error, MessageNumber::UpdateImpossible);
    EXPECT_EQ(store.Rows(), before);
}

TEST_F(SeriesChange, WhatDoesNotDecodeIsGoneOrLiesOutsideIsLeftAlone) {
    const std::int32_t key = AddDaily();
    const std::int32_t monthly =
        Add({.kind = RedoKind::MonthDay, .endMode = RedoEnd::Date, .pattern = 5, .interval = 1}, 300);
    const auto before = store.Rows();
    for (const Reach reach : {Reach::This, Reach::ThisAndLater}) {
        EXPECT_EQ(Delete(monthly, After(31), reach).error, MessageNumber::UpdateImpossible);
        EXPECT_EQ(Move(monthly, After(31), Span(After(31), 60), reach).error,
                  MessageNumber::UpdateImpossible);
        EXPECT_EQ(Delete(key, After(77), reach).error, MessageNumber::UpdateImpossible);
        EXPECT_EQ(Move(4711, kFirst, Span(kFirst, 60), reach).error, MessageNumber::NoRecord);
        EXPECT_EQ(Delete(4711, kFirst, reach).error, MessageNumber::NoRecord);
    }
    EXPECT_EQ(Move(key, kFirst, Span(kUpperLimit, 60), Reach::This).error, MessageNumber::InputError);
    EXPECT_EQ(store.Rows(), before);
    store.Set(key, "fEtx", cry::FieldCipher(store.session.cipher, 1, Bytes("\x08\x0a\x07part")));
    const auto damaged = store.Rows();
    EXPECT_EQ(Move(key, kFirst, Span(kFirst, 60), Reach::All).error, MessageNumber::UpdateImpossible);
    EXPECT_EQ(CopyOccurrence(store.session, key, At(kFirst, 540), Span(kFirst, 60)).error,
              MessageNumber::UpdateImpossible);
    Appointment edited = ClearRecord(At(kFirst, 60), 30);
    edited.key = key;
    EXPECT_EQ(StoreOccurrence(store.session, edited, key, At(kFirst, 540), Reach::All, locale).error,
              MessageNumber::UpdateImpossible);
    EXPECT_EQ(store.Rows(), damaged);
}

TEST_F(SeriesChange, ADamagedRecurrenceIsNone) {
    Appointment damaged = ClearRecord(At(kFirst, 540), 30);
    damaged.redoString = "odd";
    ASSERT_EQ(WriteRecord(store.session, damaged).error, 0);
    const auto before = store.Rows();
    auto given = ForEditing(store.session, damaged.key, At(kFirst, 540), Reach::All, locale);
    ASSERT_TRUE(given);
    EXPECT_FALSE(given->Recurring());
    ASSERT_EQ(StoreOccurrence(store.session, *given, damaged.key, At(kFirst, 540), Reach::All, locale).error,
              0);
    EXPECT_EQ(store.Rows(), before) << "nothing was changed";
    ASSERT_EQ(Move(damaged.key, kFirst, Span(After(1), 600), Reach::All).error, 0);
    EXPECT_FALSE(FetchRecord(store.session, damaged.key)->Recurring());
    EXPECT_THAT(Shown(), ElementsAre("1 600"));
}

/// Each call by which the disk is written fails in turn.
TEST_F(SeriesChange, AFailureAnywhereLeavesFileAndSessionAsTheyWere) {
    const std::int32_t key = AddYearly(2);
    for (int i = 0; i < 3; ++i)
        AddSingle(After(366), 100 * i);
    store.session.ProgramDb.reset();
    const std::string file = test::FileBytes(store.session.DatabasePath);
    int refused = 0;
    bool failed = true;
    for (int call = 1; failed && call < 200; ++call) {
        test::WriteFile(store.session.DatabasePath, file);
        store.Reopen();
        const auto before = store.Rows();
        store.session.undo.Reset();
        store.session.CalendarDirty = false;
        store::StoreOutcome outcome;
        {
            const test::FailingDisk disk(call);
            outcome = Move(key, After(365), Span(After(366), 150), Reach::This);
            failed = test::FailingDisk::Failed();
        }
        if (outcome.error == engine::EngineNumber::Unsure) continue;
        const bool stored = outcome.error == 0;
        EXPECT_EQ(store.Rows() == before, !stored) << call;
        EXPECT_EQ(store.session.CalendarDirty, stored) << call;
        EXPECT_EQ(store::MayTake(store.session, Section::Calendar, UndoWay::Undo), stored) << call;
        EXPECT_FALSE(store.session.undo.open) << call;
        if (!stored) ++refused;
    }
    EXPECT_FALSE(failed) << "it never ends";
    EXPECT_GT(refused, 2);
}

}  // namespace
}  // namespace bmr::calendar
