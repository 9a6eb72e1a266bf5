#include "base/serialdate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ctime>
#include <limits>

#include "base/clock.h"

namespace bmr {
namespace {

TEST(SerialDate, SerialsNameTheDaysTheyAreKnownBy) {
    const struct {
        std::int32_t serial;
        const char* iso;
        int weekday;
    } days[] = {{0, "1899-12-30", 7},     {1, "1899-12-31", 1},     {9185, "1925-02-22", 1},
                {35509, "1997-03-20", 5}, {36585, "2000-02-29", 3}, {61833, "2069-04-15", 2},
                {-1, "1899-12-29", 6},    {19335, "1952-12-07", 1}};
    for (const auto& day : days) {
        EXPECT_EQ(IsoDate(Day{day.serial}), day.iso);
        EXPECT_EQ(ParseIsoDate(day.iso), Day{day.serial});
        EXPECT_EQ(DayFrom(YearMonthDay(Day{day.serial})), Day{day.serial});
        EXPECT_EQ(Weekday(Day{day.serial}), day.weekday) << day.iso;
    }
}

TEST(SerialDate, OnlyRealDatesOfTheOneFormAreRead) {
    for (const char* bad : {"", "2023-02-29", "2024-13-01", "2024-00-10", "2024-1-10", "2024-01-100",
                            "+024-01-01", "2024/01/01", "0000-01-01", " 2024-01-01", "2024-01-1x"})
        EXPECT_FALSE(ParseIsoDate(bad)) << bad;
}

TEST(SerialDate, TheDayOfADateValueIsItsFloorAndDamageStaysInTheCalendar) {
    EXPECT_EQ(DayOf({45000.999}).serial, 45000);
    EXPECT_EQ(DayOf({-0.25}).serial, -1);
    EXPECT_EQ(DayOf({std::nan("")}).serial, 0);
    EXPECT_EQ(IsoDate(DayOf({std::numeric_limits<double>::infinity()})), "9999-12-31");
    EXPECT_EQ(IsoDate(Day{std::numeric_limits<std::int32_t>::min()}), "0001-01-01");
}

TEST(SystemClock, TellsLocalTimeAndNeverGoesBack) {
    const SystemClock clock;
    const auto start = clock.MonotonicMs();
    // Not time(): it may be some milliseconds behind, and so a second.
    const auto second = [] { return std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()); };
    const std::time_t before = second();
    const DateValue now = clock.Now();
    const std::time_t after = second();
    const auto serial = [](std::time_t seconds) {
        const std::tm* local = std::localtime(&seconds);
        const double time = local->tm_hour * 3600 + local->tm_min * 60 + local->tm_sec;
        return DayFrom(std::chrono::year{local->tm_year + 1900} / (local->tm_mon + 1) / local->tm_mday)
                   .serial +
               time / 86400;
    };
    EXPECT_LE(serial(before), now.serial);
    EXPECT_LE(now.serial, serial(after));
    EXPECT_LE(start, clock.MonotonicMs());
}

}  // namespace
}  // namespace bmr
