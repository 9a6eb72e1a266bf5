#include "calendar/redoevents.h"

#include <gtest/gtest.h>

#include "support/calendar.h"

namespace bmr::calendar {
namespace {

const LocaleFacts kMondays = test::WeekFrom(2);
constexpr int kWeekly = 1;
constexpr int kDaily = 2;
constexpr int kMonthly = 3;
constexpr int kYearly = 4;

Day On(const char* date) {
    return ParseIsoDate(date).value();
}

/// A new series that begins on Tuesday, 5 January 2027.
RedoState Begun(int frequency, int alternative = 0) {
    RedoState state = NewRedoState(On("2027-01-05"), kMondays);
    ChooseFrequency(state, frequency, kMondays, {});
    ChooseAlternative(state, alternative, kMondays, {});
    return state;
}

TEST(RedoEvents, AnEndIsChosenFromNoneAndGivenUpAgain) {
    for (const int frequency : {kWeekly, kDaily, kMonthly, kYearly})
        for (const int alternative : {0, 1}) {
            RedoState state = Begun(frequency, alternative);
            EXPECT_EQ(state.end, kNoEndShown) << state.kind;
            ChooseEndMode(state, RedoEnd::Date, kMondays, {});
            EXPECT_EQ(state.count, 5) << state.kind;
            EXPECT_LT(state.end, kNoEndShown) << state.kind;
            const Day fifth = state.end;
            ChooseEndMode(state, RedoEnd::Never, kMondays, {});
            EXPECT_EQ(state.end, kNoEndShown) << state.kind;
            ChooseEndMode(state, RedoEnd::Count, kMondays, {});
            EXPECT_EQ(state.end, fifth) << state.kind << ": a number above ten becomes five";
            SetCount(state, 9, kMondays, {});
            ChooseEndMode(state, RedoEnd::Date, kMondays, {});
            EXPECT_EQ(state.count, 9) << state.kind << ": an end that was given is kept";
            ChooseEndMode(state, RedoEnd::Count, kMondays, {});
            EXPECT_EQ(state.count, 9) << state.kind;
        }
    RedoState loaded = ParseRedoString(BuildRedoString(Begun(kDaily), kMondays), On("2027-01-05"), kMondays);
    loaded.end = On("2066-03-01");
    ChooseEndMode(loaded, RedoEnd::Date, kMondays, {});
    EXPECT_EQ(IsoDate(loaded.end), "2027-01-09") << "the random last day is nobody's choice";
}

TEST(RedoEvents, CountAndLastDayFollowEachOther) {
    RedoState state = Begun(kMonthly);
    SetCount(state, 3, kMondays, {});
    EXPECT_EQ(IsoDate(state.end), "2027-03-05");
    SetInterval(state, 2, 2, kMondays, {});
    EXPECT_EQ(IsoDate(state.end), "2027-05-05");
    SetInterval(state, 3, 7, kMondays, {});
    EXPECT_EQ(state.kind, 5) << "box 3 is the other alternative's";
    EXPECT_EQ(IsoDate(state.end), "2028-03-07");
    SetInterval(state, 2, 2, kMondays, {});
    EXPECT_EQ(state.kind, 4);
    EXPECT_EQ(IsoDate(state.end), "2027-05-05");
    SetEndDate(state, On("2027-08-01"), kMondays, {});
    EXPECT_EQ(state.endMode, RedoEnd::Date);
    EXPECT_EQ(state.count, 3) << "seven whole months by twos";
    EXPECT_EQ(IsoDate(state.end), "2027-05-05");
    SetStart(state, On("2028-02-10"), kMondays, {});
    EXPECT_EQ(state.end, state.start);
    EXPECT_EQ(state.date, state.start) << "in months the appointment goes with it";

    int told = 0;
    SetCount(state, 5000, kMondays, {.limitTaken = [&told] { ++told; }});
    EXPECT_EQ(state.end, kUpperLimit);
    EXPECT_EQ(told, 1) << "once, however often it is met on the way";
    RedoState late = Begun(kYearly);
    SetStart(late, On("2067-01-05"), kMondays, {});
    told = 0;
    ChooseEndMode(late, RedoEnd::Date, kMondays, {.limitTaken = [&told] { ++told; }});
    EXPECT_EQ(late.end, On("2069-01-05"));
    EXPECT_EQ(told, 1);
}

TEST(RedoEvents, TheLastWeekdayStays) {
    RedoState state = Begun(kWeekly);
    EXPECT_FALSE(SetWeekday(state, 1, false, kMondays, {}));
    EXPECT_TRUE(state.days[1]);
    EXPECT_TRUE(SetWeekday(state, 3, true, kMondays, {}));
    EXPECT_TRUE(SetWeekday(state, 1, false, kMondays, {}));
    EXPECT_EQ(IsoDate(state.start), "2027-01-07") << "the first Thursday";
}

TEST(RedoEvents, TheDateTakesTheSeriesAlong) {
    RedoState none = NewRedoState(On("2027-01-05"), kMondays);
    SetDate(none, On("2027-05-20"), kMondays, {});
    EXPECT_EQ(none, NewRedoState(On("2027-05-20"), kMondays));

    RedoState weekly = Begun(kWeekly);
    SetDate(weekly, On("2027-01-08"), kMondays, {});
    EXPECT_EQ(IsoDate(weekly.start), "2027-01-08") << "the lone weekday goes with it";
    EXPECT_TRUE(weekly.days[4] && !weekly.days[1]);
    ASSERT_TRUE(SetWeekday(weekly, 0, true, kMondays, {}));
    SetDate(weekly, On("2027-01-12"), kMondays, {});
    EXPECT_EQ(IsoDate(weekly.start), "2027-01-15") << "several are the person's choice";
    EXPECT_EQ(IsoDate(weekly.date), "2027-01-12");

    RedoState yearly = Begun(kYearly, 1);
    SetDate(yearly, On("2027-05-31"), kMondays, {});
    EXPECT_EQ(yearly.nth, 5);
    EXPECT_EQ(yearly.weekday, 1);
    EXPECT_EQ(yearly.month, 5);
    EXPECT_EQ(IsoDate(yearly.start), "2027-05-31");
    RedoState daily = Begun(kDaily);
    SetStart(daily, On("2027-02-01"), kMondays, {});
    EXPECT_EQ(IsoDate(daily.date), "2027-01-05") << "days and weeks leave the appointment where it is";
}

TEST(RedoEvents, ADayBeforeTheStartIsAskedAbout) {
    for (const bool next : {true, false}) {
        RedoState state = Begun(kMonthly, 1);  // the first Tuesday
        SetStart(state, On("2027-01-20"), kMondays, {});
        int asked = 0;
        SetNth(state, 1, kMondays, {.beginNextMonth = [&] { return ++asked > 0 && next; }});
        EXPECT_EQ(asked, 1);
        EXPECT_EQ(IsoDate(state.start), next ? "2027-02-03" : "2027-01-06");
        EXPECT_EQ(state.date, state.start);
        SetNthWeekday(state, 7, kMondays, {});
        EXPECT_EQ(Weekday(state.start), 1);
    }
    RedoState yearly = Begun(kYearly, 1);
    const SeriesVoice silent{.beginNextMonth = [] {
        ADD_FAILURE() << "another month lies behind the start or before it, whatever its weekdays";
        return true;
    }};
    SetMonth(yearly, 3, kMondays, silent);
    EXPECT_EQ(IsoDate(yearly.start), "2027-03-02");
    SetMonth(yearly, 2, kMondays, silent);
    EXPECT_EQ(IsoDate(yearly.start), "2028-02-01");
    EXPECT_EQ(yearly.date, yearly.start);
}

TEST(RedoEvents, TheMonthOfAYearlySeriesIsItsOwn) {
    struct Case {
        const char* start;
        int nth;
        int month;
        const char* first;
        int asked = 0;
        bool next = true;
    };
    const Case cases[] = {
        {"2027-01-05", 1, 3, "2027-03-02"},  // its 5th lies behind the Tuesday, but so does the start
        {"2027-01-31", 1, 2, "2027-02-07"},  // no 31st
        {"2027-05-31", 5, 6, "2027-06-28"},  // no 31st
        {"2027-03-20", 1, 2, "2028-02-05"},
        {"2027-01-20", 1, 1, "2028-01-05", 1},  // the next month is none of the series
        {"2027-01-20", 1, 1, "2027-01-06", 1, false},
    };
    for (const Case& each : cases)
        for (const std::uint8_t mode : {RedoEnd::Never, RedoEnd::Count, RedoEnd::Date}) {
            RedoState state = Begun(kYearly, 1);
            SetStart(state, On(each.start), kMondays, {});
            ChooseEndMode(state, mode, kMondays, {});
            state.nth = each.nth;
            int asked = 0;
            SetMonth(state, each.month, kMondays,
                     {.beginNextMonth = [&] { return ++asked > 0 && each.next; }});
            EXPECT_EQ(IsoDate(state.start), each.first) << each.start << " mode " << int{mode};
            EXPECT_EQ(state.date, state.start) << each.start;
            EXPECT_EQ(asked, each.asked) << each.start;
        }
    RedoState late = Begun(kYearly, 1);
    SetStart(late, On("2069-03-05"), kMondays, {});
    SetMonth(late, 2, kMondays, {});
    EXPECT_EQ(IsoDate(late.start), "2069-03-05") << "no February is left";
}

TEST(RedoEvents, NumberBoxes) {
    struct Case {
        const char* before;
        const char* typed;
        const char* text;
        std::vector<int> messages;
    };
    const Case cases[] = {
        {"1", "12", "12", {}},
        {"", "x", "1", {12}},
        {"2", "2é", "21", {12}},
        {"25", "255", "255", {}},
        {"25", "256", "25", {13}},
        {"25", "25-", "251", {12}},
        {"9", "9999999999", "9", {13}},
        {"30", "30x", "30", {12, 13}},
        {"3000", "300", "300", {}},
        {"300", "3001", "300", {13}},
        {"7", "", "", {}},
    };
    for (const Case& c : cases) {
        const TypedNumber judged = JudgeNumber(c.before, c.typed);
        EXPECT_EQ(judged.text, c.text) << c.typed;
        EXPECT_EQ(judged.messages, c.messages) << c.typed;
    }
}

}  // namespace
}  // namespace bmr::calendar
