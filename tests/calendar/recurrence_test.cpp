#include "calendar/recurrence.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>

#include "calendar/months.h"
#include "calendar/series.h"
#include "calendar/seriessplit.h"
#include "support/calendar.h"
#include "support/random.h"

namespace bmr::calendar {
namespace {

using test::CalendarVectors;
using test::WeekFrom;

std::vector<Day> DaysOf(const RedoRule& rule, Period period, const LocaleFacts& locale) {
    std::vector<Day> days;
    ExpandRule(rule, period, locale, days);
    return days;
}

TEST(Recurrence, KnownAnswers) {
    for (const auto& c : CalendarVectors("Expand")) {
        std::vector<Minutes> minutes;
        ExpandRecurrence({c.at("periodMinutes")[0]}, {c.at("periodMinutes")[1]}, c.at("tod"),
                         test::Hex(c.at("string")), WeekFrom(c.at("dow")), minutes);
        std::vector<std::int32_t> counts;
        for (const Minutes each : minutes)
            counts.push_back(each.count);
        EXPECT_EQ(nlohmann::json(counts), c.at("out")) << c;
    }
}

TEST(Recurrence, AStringComesBackToTheByte) {
    for (const auto& c : CalendarVectors("Expand")) {
        Bytes bytes = test::Hex(c.at("string"));
        const auto rule = ReadRedoRule(bytes);
        EXPECT_EQ(rule.has_value(), bytes.size() >= 7 && bytes.size() % 2 == 1 &&
                                        ((bytes[0] < 0 ? ~bytes[0] : bytes[0]) & 7) != 0)
            << c;
        if (!rule) continue;
        const auto type = static_cast<std::uint8_t>(bytes[0]);
        bytes[0] = static_cast<char>((type > 127 ? 255 - type : type) & 31);
        EXPECT_EQ(ToHex(WriteRedoRule(*rule)), ToHex(bytes)) << c;
    }
}

/// The n-th weekday of a month, found by looking at each of its days.
bool IsNthWeekday(Day day, int nth, int weekday) {
    if (Weekday(day) != weekday) return false;
    const bool last = MonthOf({day.serial + 7}) != MonthOf(day);
    return nth == 5 ? last : (DayOfMonth(day) + 6) / 7 == nth;
}

/// Whether a day is an occurrence, told by the day alone.
bool Occurs(const RedoRule& rule, Day day, Period period, const LocaleFacts& locale) {
    const Day first = DayOf(rule.first);
    if (first > period.last || (rule.endMode != RedoEnd::Never && day > DayOf(rule.last))) return false;
    if (rule.HeedsExcluded() && (day < first || std::ranges::count(rule.excluded, DateToDays16(day)) > 0))
        return false;
    const int n = rule.interval;
    const int firstDay = FirstDayOfWeek(locale);
    const int months = MonthNumber(day) - MonthNumber(first);
    const int weeks = (WeekStart(day, firstDay).serial - WeekStart(first, firstDay).serial) / 7;
    switch (rule.kind) {
        case RedoKind::None:
            return false;
        case RedoKind::Weekly:
            return weeks % n == 0 && (rule.pattern >> Weekday(day) & 1) != 0;
        case RedoKind::Daily:
            return (day.serial - first.serial) % n == 0;
        case RedoKind::Workdays:
            return Weekday(day) >= 2 && Weekday(day) <= 6;
        case RedoKind::MonthDay:
            return months % n == 0 && DayOfMonth(day) == DayOfMonth(first);
        case RedoKind::MonthWeekday:
            return day >= first && months % n == 0 && IsNthWeekday(day, rule.pattern >> 3, rule.pattern & 7);
        case RedoKind::YearDay:
            return MonthOf(day) == n && DayOfMonth(day) == rule.pattern;
        case RedoKind::YearWeekday:
            // Years before that of the start are passed over where the start lies inside of the period.
            return MonthOf(day) == n && IsNthWeekday(day, rule.pattern >> 3, rule.pattern & 7) &&
                   (first <= period.first || first >= period.last || YearOf(day) >= YearOf(first));
    }
    return false;
}

/// A rule of any kind whose days roll into no other month.
RedoRule AnyRule(std::mt19937& engine) {
    const auto below = [&engine](unsigned n) { return static_cast<int>(engine() % n); };
    RedoRule rule;
    rule.kind = static_cast<RedoKind>(1 + below(7));
    rule.endMode = static_cast<std::uint8_t>(below(4));
    const auto first = static_cast<std::int16_t>(below(26000) - 4000);
    rule.first = {first};
    rule.last = {static_cast<std::int16_t>(first + below(1500))};
    rule.interval = static_cast<std::uint8_t>(1 + below(engine() % 4 == 0 ? 255 : 5));
    rule.pattern = static_cast<std::uint8_t>(2 * (1 + below(127)));
    while (rule.kind == RedoKind::MonthDay && DayOfMonth(DayOf(rule.first)) > 28)
        --rule.first.count;
    if (rule.kind == RedoKind::YearDay) rule.pattern = static_cast<std::uint8_t>(1 + below(28));
    if (rule.kind == RedoKind::MonthWeekday || rule.kind == RedoKind::YearWeekday)
        rule.pattern = static_cast<std::uint8_t>(1 + below(7) + 8 * (1 + below(5)));
    if (rule.kind == RedoKind::YearDay || rule.kind == RedoKind::YearWeekday)
        rule.interval = static_cast<std::uint8_t>(1 + below(12));
    for (int i = below(4); i > 0; --i)
        rule.excluded.push_back({static_cast<std::int16_t>(first + below(60))});
    return rule;
}

TEST(Recurrence, AgreesWithAWalkDayByDay) {
    std::mt19937 engine(20260101);
    std::size_t found = 0;
    for (int round = 0; round < 6000; ++round) {
        const RedoRule rule = AnyRule(engine);
        const LocaleFacts locale = WeekFrom(1 + round % 7);
        Period period;
        period.first = {DayOf(rule.first).serial - 400 + static_cast<std::int32_t>(engine() % 1200)};
        // Yearly dates step in a way of their own in periods beyond a year.
        period.last = {period.first.serial + static_cast<std::int32_t>(engine() % 364)};
        std::vector<Day> walked;
        for (Day day = period.first; day <= period.last; ++day.serial)
            if (Occurs(rule, day, period, locale)) walked.push_back(day);
        ASSERT_EQ(DaysOf(rule, period, locale), walked)
            << ToHex(WriteRedoRule(rule)) << " from " << IsoDate(period.first) << " to "
            << IsoDate(period.last) << " week from " << 1 + round % 7;
        found += walked.size();
    }
    EXPECT_GT(found, 50000U);
}

TEST(Recurrence, MonthsStepFromTheDateIntoWhichADayRolled) {
    RedoRule rule{.kind = RedoKind::MonthDay, .first = DateToDays16(*ParseIsoDate("2026-01-31"))};
    std::vector<std::string> days;
    for (const Day day : DaysOf(rule, {*ParseIsoDate("2026-01-01"), *ParseIsoDate("2026-08-31")}, {}))
        days.push_back(IsoDate(day));
    EXPECT_EQ(days, (std::vector<std::string>{"2026-01-31", "2026-03-03", "2026-05-01", "2026-07-01",
                                              "2026-08-31"}));
    // Yearly dates: so many years further as the month has as a number.
    rule = {.kind = RedoKind::YearDay, .pattern = 29, .interval = 2, .first = {0}};
    days.clear();
    for (const Day day : DaysOf(rule, {*ParseIsoDate("2026-01-01"), *ParseIsoDate("2030-12-31")}, {}))
        days.push_back(IsoDate(day));
    EXPECT_EQ(days, (std::vector<std::string>{"2026-03-01", "2028-02-29", "2030-03-01"}));
}

TEST(Recurrence, NoDamagedStringTakesLongOrLeavesItsPeriod) {
    const LocaleFacts locale = WeekFrom(2);
    const Period month{{45000}, {45041}};
    const Period tenYears{{45000}, {48652}};
    std::size_t strings = 0;
    for (unsigned type = 0; type < 256; ++type)
        for (unsigned interval = 0; interval < 256; ++interval) {
            Bytes text = test::Hex("000000f7240000");
            text[0] = static_cast<char>(type);
            text[1] = static_cast<char>(type * 31 + interval * 7);
            text[2] = static_cast<char>(interval);
            text[5] = static_cast<char>(interval % 3 * 127);
            text[6] = static_cast<char>(type % 5 * 32);
            const Period& period = interval % 16 == 1 ? tenYears : month;
            std::vector<Minutes> minutes;
            ExpandRecurrence(MidnightOf(period.first), MidnightOf(period.last), 5, text, locale, minutes);
            ASSERT_EQ(std::ranges::adjacent_find(minutes, std::greater_equal()), minutes.end())
                << ToHex(text);
            if (minutes.empty()) continue;
            ++strings;
            ASSERT_GE(DayOf(minutes.front()), period.first) << ToHex(text);
            ASSERT_LE(DayOf(minutes.back()), period.last) << ToHex(text);
        }
    EXPECT_GT(strings, 6000U);
}

TEST(Recurrence, NoiseOfAnyLengthIsBorneEverywhere) {
    const LocaleFacts locale = WeekFrom(2);
    std::mt19937 engine(40);
    std::size_t series = 0;
    for (std::size_t length = 0; length <= 40; ++length)
        for (int round = 0; round < 250; ++round) {
            Bytes text;
            while (text.size() < length)
                text += static_cast<char>(engine());
            const auto rule = ReadRedoRule(text);
            std::vector<Minutes> minutes;
            ExpandRecurrence(MidnightOf({44000}), MidnightOf({48000}), 0, text, locale, minutes);
            ASSERT_TRUE(rule || minutes.empty()) << ToHex(text);
            ASSERT_TRUE(!rule || (length >= 7 && length % 2 == 1)) << ToHex(text);
            // The editor reads it, and gives back what nobody changed.
            RedoState state = ParseRedoString(text, {45000}, locale);
            ASSERT_EQ(state.frequency != 0, rule.has_value()) << ToHex(text);
            test::SeededRandom random;
            if (rule) ASSERT_EQ(ToHex(StringToStore(state, text, locale, random)), ToHex(text));
            // What is asked of it from the grid is answered: a day that is left out is gone, and no other.
            if (!rule || minutes.empty()) continue;
            ++series;
            const Day day = DayOf(minutes.front());
            if (!WhyNotWithout(*rule, day, locale).empty()) continue;
            const SeriesParts parts = WithoutDay(*rule, day, locale);
            for (const auto* part : {&parts.before, &parts.after})
                EXPECT_FALSE(*part && IsOfSeries(**part, day, locale)) << ToHex(text);
        }
    EXPECT_GT(series, 500U);
}

}  // namespace
}  // namespace bmr::calendar
