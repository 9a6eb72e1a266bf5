#include "calendar/calendar.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/calendar.h"
#include "support/ports.h"

namespace bmr::calendar {
namespace {

using test::WeekFrom;

TEST(CalendarMinutes, KnownAnswersThereAndBack) {
    for (const auto& c : test::CalendarVectors("DateToMinutes")) {
        const double time = c.at("minuteOfDay").get<double>() / 1440;
        const Minutes minutes = DateToMinutes(DateValue{c.at("serial").get<int>() + time});
        EXPECT_EQ(minutes.count, c.at("out")) << c;
        EXPECT_EQ(DayOf(minutes).serial, c.at("back").at("serial")) << c;
        EXPECT_EQ(MinuteOfDay(minutes), c.at("back").at("minuteOfDay")) << c;
        EXPECT_EQ(DateToMinutes(MinutesToDate(minutes)), minutes) << c;
    }
    for (const auto& c : test::CalendarVectors("DateToDays16"))
        EXPECT_EQ(DateToDays16(Day{c.at("serial")}).count, c.at("out")) << c;
}

TEST(CalendarMinutes, EveryMinuteOfADayBeforeAndAfterTheEpochSurvives) {
    for (const std::int32_t serial : {9185, 35508, 35509, 61832})
        for (std::int32_t minute = 0; minute < 1440; ++minute) {
            const Minutes minutes{(serial - kEpoch.serial) * 1440 + minute};
            ASSERT_EQ(DateToMinutes(MinutesToDate(minutes)), minutes);
            ASSERT_EQ(DayOf(minutes).serial, serial);
        }
    EXPECT_EQ(DateToMinutes(DateValue{kEpoch.serial + 59.0 / 86400}).count, 0);
    const Minutes lowest{std::numeric_limits<std::int32_t>::min()};
    EXPECT_EQ(DateToMinutes(MinutesToDate(lowest)), lowest);
    EXPECT_EQ(DateToMinutes(std::nullopt).count, 0);
    EXPECT_EQ(DateToMinutes(DateValue{1e300}).count, std::numeric_limits<std::int32_t>::max());
}

TEST(CalendarPeriods, KnownAnswers) {
    for (const auto& c : test::CalendarVectors("PeriodBounds")) {
        const Period period = PeriodBounds(
            Day{c.at("serial")}, static_cast<PeriodKind>(c.at("kind").get<int>()), WeekFrom(c.at("dow")));
        EXPECT_EQ(period.first.serial, c.at("out")[0]) << c;
        EXPECT_EQ(period.last.serial, c.at("out")[1]) << c;
    }
    for (const auto& c : test::CalendarVectors("WeekStart"))
        EXPECT_EQ(WeekStart(Day{c.at("serial")}, c.at("first")).serial, c.at("out")) << c;
    for (const auto& c : test::CalendarVectors("MonthEnds")) {
        const Day day{c.at("serial")};
        EXPECT_EQ(MonthFirst(day).serial, c.at("out")[0]) << c;
        EXPECT_EQ(MonthLast(day).serial, c.at("out")[1]) << c;
        EXPECT_EQ(WeekOfMonth(day), c.at("weekOfMonth")) << c;
    }
}

TEST(CalendarWeekdays, KnownAnswersInEveryWeekOrder) {
    for (const auto& c : test::CalendarVectors("Weekdays")) {
        const LocaleFacts locale = WeekFrom(c.at("dow"));
        EXPECT_EQ(FirstDayOfWeek(locale), c.at("firstDayOfWeek")) << c;
        for (int k = 1; k <= 7; ++k) {
            const auto at = static_cast<std::size_t>(k - 1);
            EXPECT_EQ(LocalToSundayWeekday(k, locale), c.at("localToSunday")[at]) << c;
            EXPECT_EQ(SundayToLocalWeekday(k, locale), c.at("sundayToLocal")[at]) << c;
        }
    }
}

TEST(CalendarView, DateInViewAnswersTheOppositeOfItsFlag) {
    for (const auto& c : test::CalendarVectors("DateInView")) {
        CalendarState state;
        state.calView = static_cast<PeriodKind>(c.at("calView").get<int>());
        state.periodStart = Day{c.at("periodStart")};
        state.periodEnd = Day{c.at("periodEnd")};
        EXPECT_EQ(DateInView(Day{c.at("serial")}, state), c.at("out").at("returns")) << c;
        EXPECT_EQ(state.inViewFlag, c.at("out").at("inViewFlag")) << c;
    }
}

TEST(CalendarLimits, TheUpperLimitIsToldAndTaken) {
    LocaleFacts locale;
    locale.shortDate = "d.M.yyyy";
    for (const auto& c : test::CalendarVectors("ClampUpperDate")) {
        test::ScriptedPrompter prompter;
        if (!c.at("msg").is_null()) prompter.Expect(c.at("msg"));
        EXPECT_EQ(ClampUpperDate(Day{c.at("serial")}, prompter, locale).serial, c.at("out")) << c;
        for (const Box& box : prompter.shown)
            EXPECT_EQ(box.text, "Upper range limit for dates is 15.4.2069");
    }
}

TEST(CalendarLimits, APickerRefusesWhatLiesOutside) {
    const LocaleFacts locale;
    EXPECT_FALSE(DateLimitBox(Day{9185}, locale));
    EXPECT_FALSE(DateLimitBox(Day{61832}, locale));
    ASSERT_TRUE(DateLimitBox(Day{9184}, locale));
    EXPECT_EQ(DateLimitBox(Day{9184}, locale)->text, "Lower range limit for dates is 1925-02-22");
    EXPECT_EQ(DateLimitBox(Day{61833}, locale)->number, 150);
}

TEST(CalendarOccurrences, EqualMinutesKeepTheirOrder) {
    for (const auto& c : test::CalendarVectors("SortOccurrences")) {
        std::vector<Occurrence> occurrences;
        std::vector<Occurrence> expected;
        for (std::size_t i = 0; i < c.at("pk").size(); ++i) {
            occurrences.push_back({c.at("pk")[i], {c.at("minutes")[i]}});
            expected.push_back({c.at("out").at("pk")[i], {c.at("out").at("minutes")[i]}});
        }
        SortOccurrences(occurrences);
        EXPECT_EQ(occurrences, expected) << c;
    }
}

}  // namespace
}  // namespace bmr::calendar
