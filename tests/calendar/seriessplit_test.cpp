#include "calendar/seriessplit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "calendar/months.h"
#include "support/calendar.h"

namespace bmr::calendar {
namespace {

using test::WeekFrom;

std::string Dates(const std::vector<Day>& days) {
    std::string dates;
    for (const Day day : days)
        dates += IsoDate(day) + " ";
    return dates;
}

Day On(const char* date) {
    return *ParseIsoDate(date);
}

std::vector<Day> Expanded(const std::optional<RedoRule>& rule, const Period& period,
                          const LocaleFacts& locale) {
    std::vector<Day> days;
    if (rule) ExpandRule(*rule, period, locale, days);
    return days;
}

/// The days of a series as its months tell them one by one.
std::vector<Day> AllDays(const std::optional<RedoRule>& rule, Day until, const LocaleFacts& locale) {
    std::vector<Day> days;
    if (!rule) return days;
    for (std::int32_t month = MonthNumber(DayOf(rule->first)); month <= MonthNumber(until); ++month) {
        const Day first = RolledDate(0, month + 1, 1);
        ExpandRule(*rule, {first, MonthLast(first)}, locale, days);
    }
    return days;
}

/// Series as an editor writes them, of all kinds and end modes.
class Rules {
  public:
    RedoRule Any() {
        RedoRule rule;
        rule.kind = static_cast<RedoKind>(1 + Below(7));
        Day first{45000 + Below(1500)};
        rule.interval = static_cast<std::uint8_t>(1 + Below(4));
        const int weekday = 1 + Below(7);
        const int nth = 1 + Below(5);
        if (rule.kind == RedoKind::Weekly) rule.pattern = static_cast<std::uint8_t>(2 * (1 + Below(127)));
        if (rule.kind == RedoKind::MonthDay || rule.kind == RedoKind::YearDay)
            rule.pattern = static_cast<std::uint8_t>(DayOfMonth(first));
        if (rule.kind == RedoKind::MonthWeekday || rule.kind == RedoKind::YearWeekday) {
            rule.pattern = static_cast<std::uint8_t>(weekday + 8 * nth);
            first = NthWeekdayOfMonth(nth, weekday, first);
        }
        if (rule.kind == RedoKind::YearDay || rule.kind == RedoKind::YearWeekday)
            rule.interval = static_cast<std::uint8_t>(MonthOf(first));
        rule.first = DateToDays16(first);
        rule.endMode = static_cast<std::uint8_t>(Below(3));
        rule.last =
            DateToDays16({rule.endMode == 0 ? 61000 : first.serial + Below(Yearly(rule) ? 4000 : 300)});
        for (int i = Below(5); i > 0; --i)
            rule.excluded.push_back(DateToDays16({first.serial + Below(40)}));
        return rule;
    }
    int Below(int n) { return static_cast<int>(engine_() % static_cast<unsigned>(n)); }
    static bool Yearly(const RedoRule& rule) {
        return rule.kind == RedoKind::YearDay || rule.kind == RedoKind::YearWeekday;
    }

  private:
    std::mt19937 engine_{20270105};
};

/// Whether every week and every month's six weeks show of the parts what they showed of the whole.
void ExpectSameViews(const RedoRule& rule, const SeriesParts& parts, std::optional<Day> removed, Day last,
                     const LocaleFacts& locale) {
    const Day first{DayOf(rule.first).serial - 50};
    const auto compare = [&](const Period& view) {
        std::vector<Day> whole = Expanded(rule, view, locale);
        if (removed) std::erase(whole, *removed);
        std::vector<Day> cut = Expanded(parts.before, view, locale);
        const std::vector<Day> after = Expanded(parts.after, view, locale);
        cut.insert(cut.end(), after.begin(), after.end());
        ASSERT_EQ(Dates(cut), Dates(whole))
            << ToHex(WriteRedoRule(rule)) << " " << IsoDate(view.first) << " to " << IsoDate(view.last);
    };
    for (Day day = first; day <= last; day.serial += 7) {
        compare(PeriodBounds(day, PeriodKind::Week, locale));
        compare(PeriodBounds(day, PeriodKind::WorkWeek, locale));
    }
    for (std::int32_t month = MonthNumber(first); month <= MonthNumber(last); ++month)
        compare(PeriodBounds(RolledDate(0, month + 1, 1), PeriodKind::MonthGrid, locale));
}

TEST(SeriesSplit, EveryViewShowsWhatItShowedBefore) {
    Rules rules;
    std::array<std::size_t, 8> cuts{};
    std::array<std::size_t, 8> holes{};
    for (int round = 0; round < 1500; ++round) {
        const RedoRule rule = rules.Any();
        const LocaleFacts locale = WeekFrom(1 + round % 7);
        const Day far{DayOf(rule.first).serial + (Rules::Yearly(rule) ? 2000 : 250)};
        const std::vector<Day> days = AllDays(rule, far, locale);
        if (days.empty()) continue;
        const Day day = days[static_cast<std::size_t>(rules.Below(static_cast<int>(days.size())))];
        const auto kind = static_cast<std::size_t>(rule.kind);
        if (WhyUncut(rule, day, locale).empty()) {
            const SeriesParts parts = CutBefore(rule, day, locale);
            ASSERT_EQ(parts.before.has_value(), day != days.front());
            ASSERT_TRUE(parts.after);
            ASSERT_EQ(DayOf(parts.after->first), day);
            if (parts.before) ASSERT_LT(DayOf(parts.before->last), day);
            ExpectSameViews(rule, parts, {}, {day.serial + 120}, locale);
            ++cuts[kind];
        }
        if (WhyNotWithout(rule, day, locale).empty()) {
            // Where nothing is left the row goes, and with it what only the weeks around a month showed.
            if (const SeriesParts parts = WithoutDay(rule, day, locale); parts != SeriesParts()) {
                ExpectSameViews(rule, parts, day, {day.serial + 420}, locale);
                ++holes[kind];
            }
        }
        if (testing::Test::HasFatalFailure()) return;
    }
    for (std::size_t kind = 1; kind <= 7; ++kind) {
        EXPECT_GT(cuts[kind], kind == 4 ? 50U : 120U) << kind;
        EXPECT_GT(holes[kind], kind == 4 ? 50U : 120U) << kind;
    }
}

TEST(SeriesSplit, EndsAreKeptAndExcludedDaysGoToTheirPart) {
    const LocaleFacts locale = WeekFrom(2);
    RedoRule rule{.kind = RedoKind::Daily, .endMode = RedoEnd::Count, .interval = 2};
    rule.first = DateToDays16(On("2026-03-02"));
    rule.last = DateToDays16(On("2026-03-20"));
    for (const char* date : {"2026-03-16", "2026-03-04", "2026-03-10", "2026-03-04"})
        rule.excluded.push_back(DateToDays16(On(date)));
    const auto dates = [](const RedoRule& part) {
        std::string text = IsoDate(DayOf(part.first)) + ".." + IsoDate(DayOf(part.last));
        for (const DayCount each : part.excluded)
            text += " -" + IsoDate(DayOf(each));
        return text + " " + std::to_string(part.endMode);
    };
    // The day before is excluded: the first part ends on the last that it has.
    SeriesParts parts = CutBefore(rule, On("2026-03-12"), locale);
    EXPECT_EQ(dates(*parts.before), "2026-03-02..2026-03-08 -2026-03-04 1");
    EXPECT_EQ(dates(*parts.after), "2026-03-12..2026-03-20 -2026-03-16 1");
    rule.endMode = RedoEnd::Never;
    parts = CutBefore(rule, On("2026-03-12"), locale);
    EXPECT_EQ(parts.before->endMode, RedoEnd::Date);
    EXPECT_EQ(parts.after->endMode, RedoEnd::Never);
    EXPECT_EQ(parts.after->last, rule.last);
    rule.endMode = RedoEnd::Date;
    EXPECT_EQ(dates(*WithoutDay(rule, On("2026-03-12"), locale).before),
              "2026-03-02..2026-03-20 -2026-03-04 -2026-03-10 -2026-03-12 -2026-03-16 2");
    // Nothing is left of a series whose only day goes.
    rule.last = rule.first;
    EXPECT_EQ(WithoutDay(rule, On("2026-03-02"), locale), SeriesParts());
    rule = {.kind = RedoKind::YearDay, .endMode = RedoEnd::Date, .pattern = 2, .interval = 3};
    rule.first = DateToDays16(On("2026-03-02"));
    rule.last = DateToDays16(On("2027-03-01"));
    EXPECT_EQ(WithoutDay(rule, On("2026-03-02"), locale), SeriesParts());
}

TEST(SeriesSplit, WhatCannotBeCutIsToldInWords) {
    const LocaleFacts locale = WeekFrom(2);
    const auto monthly = [](const char* first, std::uint8_t interval = 1) {
        RedoRule rule{.kind = RedoKind::MonthDay, .interval = interval, .first = DateToDays16(On(first))};
        rule.pattern = static_cast<std::uint8_t>(DayOfMonth(On(first)));
        rule.last = DateToDays16(On("2035-12-31"));
        return rule;
    };
    for (int day = 1; day <= 12; ++day) {
        const RedoRule rule = monthly(IsoDate(RolledDate(2026, 1, day)).c_str());
        EXPECT_NE(WhyUncut(rule, RolledDate(2026, 5, day), locale), "") << day;
        EXPECT_NE(WhyNotWithout(rule, RolledDate(2026, 5, day), locale), "") << day;
        // From its first day on it is the whole series.
        EXPECT_EQ(WhyUncut(rule, DayOf(rule.first), locale), "") << day;
    }
    EXPECT_EQ(WhyUncut(monthly("2026-01-13"), On("2026-05-13"), locale), "");
    EXPECT_EQ(WhyNotWithout(monthly("2026-01-20"), On("2026-05-20"), locale), "");
    // February 2027 has 28 days and begins on a Monday: its six weeks reach the 14th of March.
    EXPECT_NE(WhyUncut(monthly("2026-01-14"), On("2027-03-14"), locale), "");
    EXPECT_EQ(WhyUncut(monthly("2026-01-14"), On("2027-03-14"), WeekFrom(1)), "");
    EXPECT_NE(WhyNotWithout(monthly("2026-01-14"), On("2027-02-14"), locale), "");
    // The six weeks of August 2026 begin on 27 July.
    EXPECT_NE(WhyUncut(monthly("2026-01-28"), On("2026-08-28"), locale), "");
    EXPECT_EQ(WhyUncut(monthly("2026-02-28", 2), On("2026-08-28"), locale), "");
    // In April's weeks the 31st shows on 1 May, which is no day of the series.
    EXPECT_NE(WhyUncut(monthly("2026-01-31"), On("2026-05-01"), locale),
              WhyUncut(monthly("2026-01-31"), On("2026-05-31"), locale));
    RedoRule foreign{.kind = RedoKind::MonthWeekday, .pattern = 2 + 8 * 6, .interval = 1};
    foreign.last = {1000};
    EXPECT_NE(WhyUncut(foreign, {kEpoch.serial + 40}, locale), "");
    RedoRule full{.kind = RedoKind::Daily, .interval = 1, .first = {-20000}};
    for (std::size_t i = 0; i < kMostExcluded - 1; ++i)
        full.excluded.push_back({static_cast<std::int16_t>(-16300 + static_cast<int>(i))});
    EXPECT_EQ(WhyNotWithout(full, DayOf(full.first), locale), "");
    full.excluded.push_back({-19999});
    EXPECT_NE(WhyNotWithout(full, DayOf(full.first), locale), "");
    EXPECT_EQ(WhyUncut(full, {DayOf(full.first).serial + 9}, locale), "");
}

TEST(SeriesSplit, AWeekdayThatMovesTakesNoOtherAlong) {
    Rules rules;
    int moved = 0;
    for (int round = 0; round < 3000; ++round) {
        RedoRule rule = rules.Any();
        if (rule.kind != RedoKind::Weekly) continue;
        const LocaleFacts locale = WeekFrom(1 + round % 7);
        const int firstDay = FirstDayOfWeek(locale);
        const bool endless = rule.endMode == RedoEnd::Never;
        const Day far = endless ? Day{DayOf(rule.first).serial + 250} : DayOf(rule.last);
        const std::vector<Day> days = AllDays(rule, far, locale);
        if (days.empty()) continue;
        const Day from = days[static_cast<std::size_t>(rules.Below(static_cast<int>(days.size())))];
        const Day to{from.serial + rules.Below(29) - 14};
        const RedoRule later = *CutBefore(rule, from, locale).after;
        const std::int32_t weeks = WeekStart(to, firstDay).serial - WeekStart(from, firstDay).serial;
        std::vector<Day> wanted;
        for (const Day day : AllDays(later, far, locale))
            wanted.push_back(
                {day.serial + (Weekday(day) == Weekday(from) ? to.serial - from.serial : weeks)});
        std::ranges::sort(wanted);
        wanted.erase(std::unique(wanted.begin(), wanted.end()), wanted.end());
        std::vector<Day> found = AllDays(MovedTo(later, from, to, locale), {far.serial + 40}, locale);
        // An endless one goes on behind those that are compared, and its last weeks are half there.
        const Day end = endless ? Day{far.serial - 40} : kUpperLimit;
        for (auto* side : {&wanted, &found})
            std::erase_if(*side, [end](Day day) { return day > end; });
        ASSERT_EQ(Dates(found), Dates(wanted))
            << ToHex(WriteRedoRule(later)) << " from " << IsoDate(from) << " to " << IsoDate(to);
        ++moved;
    }
    EXPECT_GT(moved, 300);
}

TEST(SeriesSplit, OtherKindsTakeTheirRuleFromTheNewDay) {
    const LocaleFacts locale = WeekFrom(2);
    Rules rules;
    int moved = 0;
    for (int round = 0; round < 1500; ++round) {
        const RedoRule rule = rules.Any();
        if (rule.kind == RedoKind::Weekly || rule.kind == RedoKind::Workdays) continue;
        const Day far =
            rule.endMode == RedoEnd::Never ? Day{DayOf(rule.first).serial + 3000} : DayOf(rule.last);
        const std::vector<Day> days = AllDays(rule, far, locale);
        if (days.empty() || days.front() != DayOf(rule.first)) continue;
        const Day from = days.front();
        const Day to{from.serial + rules.Below(120) - 60};
        const RedoRule other = MovedTo(rule, from, to, locale);
        EXPECT_EQ(other.endMode, rule.endMode);
        const bool endless = rule.endMode == RedoEnd::Never;
        const std::vector<Day> found = AllDays(other, endless ? far : DayOf(other.last), locale);
        ASSERT_FALSE(found.empty());
        EXPECT_EQ(found.front(), to) << ToHex(WriteRedoRule(rule)) << " " << IsoDate(to);
        if (!endless)
            EXPECT_EQ(found.size(), days.size()) << ToHex(WriteRedoRule(rule)) << " " << IsoDate(to);
        if (rule.kind == RedoKind::Daily && found.size() == days.size())
            for (std::size_t i = 0; i < days.size(); ++i)
                ASSERT_EQ(found[i].serial - days[i].serial, to.serial - from.serial);
        ++moved;
    }
    EXPECT_GT(moved, 600);
    // The last Friday stays the last one; the fourth stays the fourth where both are.
    RedoRule last{.kind = RedoKind::MonthWeekday, .pattern = 6 + 8 * 5, .interval = 1};
    last.first = DateToDays16(On("2026-02-27"));
    EXPECT_EQ(MovedTo(last, On("2026-02-27"), On("2026-02-26"), locale).pattern, 5 + 8 * 5);
    EXPECT_EQ(MovedTo(last, On("2026-02-27"), On("2026-02-20"), locale).pattern, 6 + 8 * 3);
    last.pattern = 6 + 8 * 4;
    EXPECT_EQ(MovedTo(last, On("2026-02-27"), On("2026-02-26"), locale).pattern, 5 + 8 * 4);
    // Workdays stay workdays, and no weekend is offered.
    RedoRule work{.kind = RedoKind::Workdays, .pattern = 124, .first = DateToDays16(On("2026-02-24"))};
    work.excluded = {DateToDays16(On("2026-02-26")), DateToDays16(On("2026-02-27"))};
    const RedoRule later = MovedTo(work, On("2026-02-24"), On("2026-02-26"), locale);
    EXPECT_EQ(AllDays(later, On("2026-02-28"), locale), std::vector{On("2026-02-26")});
    EXPECT_EQ(WhyUnmoved(work, On("2026-02-24"), On("2026-02-26"), locale), "");
    EXPECT_NE(WhyUnmoved(work, On("2026-02-24"), On("2026-02-28"), locale), "");
    EXPECT_NE(WhyUnmoved(work, On("2026-02-24"), {kUpperLimit.serial}, locale), "");
    // A monthly one that goes to the first days of a month would show before its start.
    RedoRule monthly{.kind = RedoKind::MonthDay, .pattern = 20, .interval = 1};
    monthly.first = DateToDays16(On("2026-01-20"));
    EXPECT_NE(WhyUnmoved(monthly, On("2026-04-20"), On("2026-04-05"), locale), "");
    EXPECT_EQ(WhyUnmoved(monthly, On("2026-04-20"), On("2026-04-22"), locale), "");
    EXPECT_EQ(WhyUnmoved(monthly, On("2026-01-20"), On("2026-02-05"), locale), "");
}

}  // namespace
}  // namespace bmr::calendar
