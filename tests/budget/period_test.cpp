#include "budget/period.h"

#include <gtest/gtest.h>

#include <chrono>

#include "calendar/months.h"
#include "support/calendar.h"

namespace bmr::budget {
namespace {

using calendar::RolledDate;
using calendar::YearOf;

constexpr std::array<std::string_view, 12> kEnglish = {"JANUARY",   "FEBRUARY", "MARCH",    "APRIL",
                                                       "MAY",       "JUNE",     "JULY",     "AUGUST",
                                                       "SEPTEMBER", "OCTOBER",  "NOVEMBER", "DECEMBER"};
std::array<std::string, 12> Months() {
    std::array<std::string, 12> months;
    std::copy(kEnglish.begin(), kEnglish.end(), months.begin());
    return months;
}

TEST(PeriodButtons, KnownAnswers) {
    for (const auto& c : test::CalendarVectors("PeriodButton")) {
        BudgetPeriod period;
        period.yearText = c.at("year");
        const int index = c.at("index");
        ChoosePeriod(period, index, Day{c.at("today")}, {c.at("dow")});
        const auto& out = c.at("out");
        EXPECT_EQ(IsoDate(period.from), out.at("iso")[0]) << c;
        EXPECT_EQ(IsoDate(period.to), out.at("iso")[1]) << c;
        EXPECT_EQ(period.pointer, out.at("tag")) << c;
        EXPECT_EQ(period.yearText, out.at("cTimeRange0")) << c;
        EXPECT_EQ(period.weekText, out.at("cTimeRange1")) << c;
        EXPECT_EQ(period.YearShown(), c.at("visible").at("cTimeRange0")) << c;
        EXPECT_EQ(period.WeekShown(), c.at("visible").at("cTimeRange1")) << c;
        EXPECT_EQ(PeriodCaption(index, Months()), c.at("caption")) << c;
    }
}

TEST(PeriodButtons, KnownSteps) {
    for (const auto& c : test::CalendarVectors("PeriodSteps")) {
        const Day today{c.at("today")};
        const WeekRule weeks{c.at("dow")};
        BudgetPeriod period;
        period.yearText = std::to_string(YearOf(today));
        for (const auto& step : c.at("steps")) {
            const std::string what = step.at("do");
            const int index = std::stoi(what.substr(what.find('(') + 1));
            if (what.starts_with("cPeriod"))
                ChoosePeriod(period, index, today, weeks);
            else
                StepPeriod(period, static_cast<PeriodStep>(index), what.starts_with("cmdUp"), weeks);
            EXPECT_EQ(IsoDate(period.from), step.at("iso")[0]) << c.at("id") << what;
            EXPECT_EQ(IsoDate(period.to), step.at("iso")[1]) << c.at("id") << what;
            EXPECT_EQ(period.pointer, step.at("tag")) << c.at("id") << what;
            EXPECT_EQ(period.yearText, step.at("cTimeRange0")) << c.at("id") << what;
            EXPECT_EQ(period.weekText, step.at("cTimeRange1")) << c.at("id") << what;
        }
    }
}

/// What holds of every button on any day, by other means than the code's.
void CheckButton(int index, const BudgetPeriod& period, Day today, const WeekRule& weeks) {
    const auto from = YearMonthDay(period.from);
    const auto behind = YearMonthDay(Day{period.to.serial + 1});
    const int year = YearOf(today);
    ASSERT_LE(period.from, period.to);
    if (index < PeriodButton::YearToDate) {
        const int months = index == 0 ? 12 : index < 3 ? 6 : index < 7 ? 3 : 1;
        EXPECT_EQ(from.day(), std::chrono::day(1));
        EXPECT_EQ(behind.day(), std::chrono::day(1));
        EXPECT_EQ(static_cast<int>(from.year()), year);
        EXPECT_EQ((behind.year() / behind.month() - from.year() / from.month()).count(), months);
        return;
    }
    EXPECT_EQ(period.to, today);
    if (index == PeriodButton::YearToDate) EXPECT_EQ(from, std::chrono::year(year) / 1 / 1);
    if (index == PeriodButton::Day) EXPECT_EQ(period.from, today);
    if (index == PeriodButton::Week) {
        EXPECT_EQ(Weekday(period.from), weeks.firstDay);
        EXPECT_LT(period.to.serial - period.from.serial, 7);
    }
}

TEST(PeriodButtons, HoldOnEveryDayOf2023To2029UnderBothWeekRules) {
    const Day last = DayFrom(std::chrono::year(2029) / 12 / 31);
    for (const WeekRule& weeks :
         {WeekRule{1, calendar::FirstWeek::WithNewYear}, WeekRule{2, calendar::FirstWeek::FourDays}})
        for (Day today = DayFrom(std::chrono::year(2023) / 1 / 1); today <= last; ++today.serial) {
            BudgetPeriod period = FirstPeriod(today, weeks);
            ASSERT_EQ(period.to, today);
            int month = 1;  // the twelve months make up the year
            Day behind = DayFrom(std::chrono::year(YearOf(today)) / 1 / 1);
            for (int index = 0; index < PeriodButton::Count; ++index) {
                ChoosePeriod(period, index, today, weeks);
                CheckButton(index, period, today, weeks);
                if (index >= PeriodButton::FirstMonth && index < PeriodButton::YearToDate) {
                    ASSERT_EQ(period.from, behind) << month++;
                    behind = {period.to.serial + 1};
                }
            }
            // A week up and down again is the whole week of today, and a year keeps the weekday.
            ChoosePeriod(period, PeriodButton::Week, today, weeks);
            const Day week = period.from;
            StepPeriod(period, PeriodStep::Week, true, weeks);
            ASSERT_EQ(period.from.serial, week.serial + 7);
            const int ahead = calendar::WeekOfYear({week.serial + 14}, weeks.firstDay, weeks.firstWeek);
            ASSERT_EQ(period.weekText, "W " + std::to_string(ahead));
            StepPeriod(period, PeriodStep::Week, false, weeks);
            ASSERT_EQ(period.from, week);
            ASSERT_EQ(period.to.serial, week.serial + 6);
            StepPeriod(period, PeriodStep::Year, true, weeks);
            ASSERT_EQ(Weekday(period.from), weeks.firstDay);
            ASSERT_NEAR(period.from.serial - week.serial, 364, 7);
            ASSERT_EQ(period.yearText, std::to_string(YearOf(period.from)));
        }
}

TEST(PeriodButtons, TheWeekLabelWrapsInAYearOf53Weeks) {
    // 2026 has 53 weeks by the rule of four days.
    const WeekRule weeks{2, calendar::FirstWeek::FourDays};
    BudgetPeriod period;
    period.yearText = "2026";
    ChoosePeriod(period, PeriodButton::Week, RolledDate(2026, 12, 17), weeks);
    EXPECT_EQ(period.weekText, "W 51");
    for (const auto& [label, year] :
         {std::pair("W 53", "2026"), {"W 1", "2026"}, {"W 2", "2026"}, {"W 3", "2026"}}) {
        StepPeriod(period, PeriodStep::Week, true, weeks);
        EXPECT_EQ(period.weekText, label);
        EXPECT_EQ(period.yearText, year);
    }
    for (const auto& [label, year] :
         {std::pair("W 53", "2027"), {"W 52", "2027"}, {"W 51", "2027"}, {"W 50", "2027"}}) {
        StepPeriod(period, PeriodStep::Week, false, weeks);
        EXPECT_EQ(period.weekText, label);
        EXPECT_EQ(period.yearText, year) << label;
    }
}

TEST(PeriodButtons, TheYearMayBeTypedAndADayPicked) {
    const Day today = RolledDate(2024, 2, 29);
    for (const auto& [text, year] : std::initializer_list<std::pair<const char*, int>>{{"2023", 2023},
                                                                                       {" 1999 ", 1999},
                                                                                       {"x", 2024},
                                                                                       {"", 2024},
                                                                                       {"24", 2024},
                                                                                       {"30", 1930},
                                                                                       {"2023.4", 2023},
                                                                                       {"1e3", 1000},
                                                                                       {"-5", 2024},
                                                                                       {"10000", 2024}})
        EXPECT_EQ(YearInForce(text, today), year) << text;
    EXPECT_TRUE(IsYearDoubtful("1908"));
    EXPECT_FALSE(IsYearDoubtful("1909"));
    EXPECT_FALSE(IsYearDoubtful("2069"));
    EXPECT_TRUE(IsYearDoubtful("2070"));
    EXPECT_TRUE(IsYearDoubtful("x"));

    BudgetPeriod period = FirstPeriod(today, {});
    SetFrom(period, RolledDate(2024, 5, 1));
    EXPECT_EQ(period.to, RolledDate(2024, 5, 1));
    SetTo(period, RolledDate(2023, 7, 1));
    EXPECT_EQ(period.from, RolledDate(2023, 7, 1));
    PickDay(period, RolledDate(2022, 3, 3));
    EXPECT_EQ(period.from, period.to);
    EXPECT_EQ(period.yearText, "2022");
    // Ends of months by the step of a year from a leap day.
    ChoosePeriod(period, PeriodButton::Day, today, {});
    EXPECT_EQ(period.from, RolledDate(2022, 3, 1));
}

}  // namespace
}  // namespace bmr::budget
