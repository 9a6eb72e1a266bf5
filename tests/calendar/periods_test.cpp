#include "calendar/periods.h"

#include <gtest/gtest.h>

#include <chrono>

#include "calendar/layout.h"
#include "support/calendar.h"

namespace bmr::calendar {
namespace {

constexpr int kSunday = 1;
constexpr int kMonday = 2;
constexpr int kSaturday = 7;

Day On(const char* date) {
    const auto day = ParseIsoDate(date);
    if (!day) throw std::runtime_error(date);
    return *day;
}

TEST(MonthTables, KnownAnswers) {
    for (const auto& c : test::CalendarVectors("MonthCells")) {
        const int dow = c.at("dow");
        const Period grid = PeriodBounds(Day{c.at("date")}, PeriodKind::MonthGrid, test::WeekFrom(dow));
        const auto& out = c.at("out");
        EXPECT_EQ(grid.first.serial, out.at("first")) << c;
        EXPECT_EQ(grid.last.serial, out.at("last")) << c;
        std::vector<Minutes> minutes;
        for (const auto& occurrence : c.at("occurrences"))
            minutes.push_back({occurrence[0]});
        const MonthTable table =
            FillMonth(grid, minutes, dow, static_cast<FirstWeek>(c.at("firstWeekOfYear").get<int>()));
        EXPECT_EQ(nlohmann::json(table.weeks), out.at("weeks")) << c;
        auto cells = nlohmann::json::object();
        for (std::size_t i = 0; i < table.cells.size(); ++i) {
            EXPECT_EQ(table.cells[i].label, out.at("labels")[i]) << c;
            for (const std::size_t entry : table.cells[i].entries)
                cells[std::to_string(i)].push_back(
                    MonthItemText(minutes[entry], c.at("occurrences")[entry][1].get<std::string>()));
        }
        EXPECT_EQ(cells, out.at("cells")) << c;
    }
}

TEST(MonthTables, ShowOneMonthAndLeaveOutWhatLiesOutsideTheGrid) {
    // February 2026 begins on a Sunday and has four whole weeks.
    const Period grid = PeriodBounds(On("2026-02-14"), PeriodKind::MonthGrid, test::WeekFrom(kSunday));
    const Minutes before{(grid.first.serial - kEpoch.serial) * 1440 - 1};
    const Minutes behind{(grid.last.serial + 1 - kEpoch.serial) * 1440};
    const Minutes last{behind.count - 1};
    const std::vector<Minutes> minutes = {before, last, behind};
    const MonthTable table = FillMonth(grid, minutes, kSunday, FirstWeek::WithNewYear);
    int ofMonth = 0;
    std::size_t entries = 0;
    for (const MonthCell& cell : table.cells) {
        ofMonth += cell.ofMonth;
        entries += cell.entries.size();
    }
    EXPECT_EQ(ofMonth, 28);
    EXPECT_TRUE(table.cells[0].ofMonth);
    EXPECT_EQ(entries, 1U);
    EXPECT_EQ(table.cells[41].entries.size(), 1U);
}

TEST(WeekNumbers, FollowFirstDayAndRule) {
    struct Case {
        const char* day;
        int newYear, fourDays, fullWeek;  ///< weeks from Monday on
    };
    for (const Case& c :
         {Case{"2026-01-01", 1, 1, 52}, Case{"2026-01-05", 2, 2, 1}, Case{"2026-12-31", 53, 53, 52},
          Case{"2027-01-01", 1, 53, 52}, Case{"2027-01-04", 2, 1, 1}, Case{"2024-12-30", 53, 1, 53},
          Case{"2023-01-01", 1, 52, 52}, Case{"2024-01-01", 1, 1, 1}, Case{"2020-12-31", 53, 53, 52},
          Case{"2025-12-29", 53, 1, 52}}) {
        EXPECT_EQ(WeekOfYear(On(c.day), kMonday, FirstWeek::WithNewYear), c.newYear) << c.day;
        EXPECT_EQ(WeekOfYear(On(c.day), kMonday, FirstWeek::FourDays), c.fourDays) << c.day;
        EXPECT_EQ(WeekOfYear(On(c.day), kMonday, FirstWeek::FullWeek), c.fullWeek) << c.day;
    }
    EXPECT_EQ(WeekOfYear(On("2026-01-03"), kSunday, FirstWeek::WithNewYear), 1);
    EXPECT_EQ(WeekOfYear(On("2026-01-04"), kSunday, FirstWeek::WithNewYear), 2);
    EXPECT_EQ(WeekOfYear(On("2026-01-03"), kSaturday, FirstWeek::WithNewYear), 2);
    // However they are counted, a number changes at the first day of a week alone, but for 1 January.
    for (const auto rule : {FirstWeek::FourDays, FirstWeek::FullWeek})
        for (Day day = kLowerLimit; day < kUpperLimit; ++day.serial) {
            const int week = WeekOfYear(day, kMonday, rule);
            ASSERT_TRUE(week >= 1 && week <= 53) << IsoDate(day);
            if (Weekday(day) == kMonday) continue;
            ASSERT_EQ(week, WeekOfYear({day.serial - 1}, kMonday, rule)) << IsoDate(day);
        }
}

TEST(Navigation, StepsByPeriodsWithinTheLimits) {
    const auto step = [](const char* from, PeriodKind kind, int steps) {
        return IsoDate(StepPeriod(On(from), kind, steps));
    };
    EXPECT_EQ(step("2027-01-01", PeriodKind::Day, -1), "2026-12-31");
    EXPECT_EQ(step("2027-01-01", PeriodKind::WorkWeek, 1), "2027-01-08");
    EXPECT_EQ(step("2027-01-01", PeriodKind::Week, -2), "2026-12-18");
    EXPECT_EQ(step("2027-01-31", PeriodKind::MonthGrid, 1), "2027-02-28");
    EXPECT_EQ(step("2027-01-31", PeriodKind::MonthGrid, -2), "2026-11-30");
    EXPECT_EQ(step("2028-02-29", PeriodKind::Year, 1), "2029-02-28");
    for (const auto kind : {PeriodKind::Day, PeriodKind::Week, PeriodKind::MonthGrid, PeriodKind::Year}) {
        EXPECT_EQ(StepPeriod(On("2027-01-01"), kind, 2000000000), kUpperLimit);
        EXPECT_EQ(StepPeriod(On("2027-01-01"), kind, -2000000000), kLowerLimit);
    }
}

TEST(Navigation, AClickInsideThePeriodKeepsIt) {
    const LocaleFacts locale = test::WeekFrom(kMonday);
    CalendarState state;
    EXPECT_TRUE(ChangeView(state, PeriodKind::Week, On("2027-01-06"), locale));
    EXPECT_EQ(state.periodStart, On("2027-01-04"));
    EXPECT_EQ(state.periodEnd, On("2027-01-10"));
    EXPECT_FALSE(ChangeView(state, PeriodKind::Week, On("2020-01-06"), locale));
    EXPECT_FALSE(GoToDay(state, On("2027-01-10"), locale));
    EXPECT_TRUE(GoToDay(state, On("2027-01-11"), locale));
    EXPECT_EQ(state.periodStart, On("2027-01-11"));
    EXPECT_TRUE(ChangeView(state, PeriodKind::MonthGrid, On("2027-01-11"), locale));
    // A day of the neighbouring month is on the grid, and yet a step to that month.
    EXPECT_TRUE(GoToDay(state, On("2026-12-30"), locale));
    EXPECT_EQ(state.periodStart, On("2026-11-30"));
}

TEST(Headings, TellThePeriod) {
    const CalendarNames names;
    const auto heading = [&names](const char* day, PeriodKind kind) {
        return PeriodHeading(PeriodBounds(On(day), kind, test::WeekFrom(kMonday)), kind, names);
    };
    EXPECT_EQ(heading("2027-01-05", PeriodKind::Day), "Tuesday, 5 January 2027");
    EXPECT_EQ(heading("2027-01-05", PeriodKind::WorkWeek), "4 – 8 January 2027");
    EXPECT_EQ(heading("2027-03-30", PeriodKind::Week), "29 March – 4 April 2027");
    EXPECT_EQ(heading("2027-01-01", PeriodKind::Week), "28 December 2026 – 3 January 2027");
    EXPECT_EQ(heading("2027-02-28", PeriodKind::MonthGrid), "February 2027");
    EXPECT_EQ(heading("2027-02-28", PeriodKind::Year), "2027");
    EXPECT_EQ(DayHeading(On("2027-01-05"), names), "Tue 5");
    EXPECT_EQ(DaysOf(PeriodBounds(On("2027-01-05"), PeriodKind::MonthGrid, {})).size(), 42U);
    EXPECT_EQ(EntryText({0}, {1440}, true, "Fair"), "00:00-24:00 Fair");
}

}  // namespace
}  // namespace bmr::calendar
