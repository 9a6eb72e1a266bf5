#include "interchange/palmrepeat.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "support/random.h"

namespace bmr::interchange {
namespace {

using calendar::RedoKind;

constexpr Day kStart{45056};  // Wednesday, 10 May 2023

std::uint32_t Seconds(Day day) {
    return static_cast<std::uint32_t>(day.serial - 25569) * 86400;
}

PalmRepeat Repeat(PalmRepeatKind kind, std::uint32_t interval, std::vector<std::uint32_t> longs = {},
                  std::uint8_t mask = 0) {
    PalmRepeat repeat;
    repeat.classWord = 1;
    repeat.kind = static_cast<std::uint32_t>(kind);
    repeat.interval = interval;
    repeat.longs = std::move(longs);
    repeat.mask = mask;
    return repeat;
}

PalmSeries Map(const PalmRepeat& repeat, Day start = kStart, int firstDayOfWeek = 1) {
    test::SeededRandom random;
    LocaleFacts locale;
    locale.firstDayOfWeek = firstDayOfWeek;
    return MapPalmRepeat(repeat, start, locale, random);
}

std::vector<Day> DaysOf(const PalmSeries& series, Day from, Day to, int firstDayOfWeek = 1) {
    const auto rule = calendar::ReadRedoRule(series.redoString);
    EXPECT_TRUE(rule);
    LocaleFacts locale;
    locale.firstDayOfWeek = firstDayOfWeek;
    std::vector<Day> days;
    calendar::ExpandRule(*rule, {from, to}, locale, days);
    std::ranges::sort(days);
    return days;
}

/// The days on which the file's own rule holds, told day by day.
std::vector<Day> Walk(const PalmRepeat& repeat, Day start, Day to, int firstDayOfWeek) {
    const auto months = [](Day day) {
        const auto date = YearMonthDay(day);
        return static_cast<int>(date.year()) * 12 + static_cast<int>(static_cast<unsigned>(date.month()));
    };
    const auto ofMonth = [](Day day) {
        return static_cast<int>(static_cast<unsigned>(YearMonthDay(day).day()));
    };
    const auto interval = static_cast<int>(repeat.interval);
    std::vector<Day> days;
    for (Day day = start; day <= to; ++day.serial) {
        if (repeat.end != 0 && day > PalmDay(repeat.end)) break;
        if (std::ranges::count(repeat.exceptions, Seconds(day)) != 0) continue;
        bool holds = false;
        switch (static_cast<PalmRepeatKind>(repeat.kind)) {
            case PalmRepeatKind::Daily:
                holds = (day.serial - start.serial) % interval == 0;
                break;
            case PalmRepeatKind::Weekly: {
                const auto week = [&](Day each) {
                    return calendar::WeekStart(each, firstDayOfWeek).serial / 7;
                };
                holds =
                    (week(day) - week(start)) % interval == 0 && (repeat.mask >> (Weekday(day) - 1) & 1) != 0;
                break;
            }
            case PalmRepeatKind::MonthlyByWeekday: {
                const bool last = repeat.longs[1] >= 4;
                const int week = (ofMonth(day) - 1) / 7;
                const bool lastOne = months({day.serial + 7}) != months(day);
                holds = (months(day) - months(start)) % interval == 0 &&
                        Weekday(day) - 1 == static_cast<int>(repeat.longs[0]) &&
                        (last ? lastOne : week == static_cast<int>(repeat.longs[1]));
                break;
            }
            case PalmRepeatKind::MonthlyByDate:
                holds = (months(day) - months(start)) % interval == 0 && ofMonth(day) == ofMonth(start);
                break;
            case PalmRepeatKind::Yearly:
                holds =
                    (months(day) - months(start)) % (12 * interval) == 0 && ofMonth(day) == ofMonth(start);
                break;
            case PalmRepeatKind::None:
                break;
        }
        if (holds) days.push_back(day);
    }
    return days;
}

TEST(PalmRepeat, ExpandsToTheDaysOfTheFilesOwnRule) {
    const Day to{kStart.serial + 6 * 366};
    std::vector<PalmRepeat> repeats;
    for (const std::uint32_t interval : {1, 2, 3, 7, 255}) {
        repeats.push_back(Repeat(PalmRepeatKind::Daily, interval, {0}));
        for (const std::uint8_t mask : std::initializer_list<std::uint8_t>{0x08, 0x01, 0x2a, 0x7f, 0x41})
            repeats.push_back(Repeat(PalmRepeatKind::Weekly, interval, {0}, mask));
        for (const std::uint32_t weekday : {0, 3, 6})
            for (const std::uint32_t week : {0, 1, 3, 4, 5})
                repeats.push_back(Repeat(PalmRepeatKind::MonthlyByWeekday, interval, {weekday, week}));
        repeats.push_back(Repeat(PalmRepeatKind::MonthlyByDate, interval, {10}));
    }
    for (const std::uint32_t years : {1, 2, 3, 21})
        repeats.push_back(Repeat(PalmRepeatKind::Yearly, years, {10, 4}));
    for (PalmRepeat& repeat : repeats)
        for (const int firstDayOfWeek : {1, 2})
            for (const std::uint32_t end : {std::uint32_t{0}, Seconds({kStart.serial + 700})}) {
                repeat.end = end;
                repeat.firstDay = static_cast<std::uint32_t>(firstDayOfWeek - 1);
                const auto wanted = Walk(repeat, kStart, to, firstDayOfWeek);
                const auto series = Map(repeat, kStart, firstDayOfWeek);
                const auto about = "kind " + std::to_string(repeat.kind) + ", every " +
                                   std::to_string(repeat.interval) + ", mask " + std::to_string(repeat.mask) +
                                   ", end " + std::to_string(end);
                if (series.redoString.empty()) {
                    EXPECT_TRUE(end != 0 && wanted.empty()) << about;
                    continue;
                }
                // Periods as they are shown, a month each: the rules of long periods are the calendar's own.
                std::vector<Day> found;
                for (Day from = kStart; from <= to; from.serial += 28)
                    for (const Day day :
                         DaysOf(series, from, std::min(to, Day{from.serial + 27}), firstDayOfWeek))
                        found.push_back(day);
                EXPECT_EQ(found, wanted) << about;
                if (!wanted.empty()) {
                    EXPECT_EQ(series.start, wanted.front()) << about;
                }
                EXPECT_EQ(series.remarks.empty(), series.start == kStart) << about;
            }
}

TEST(PalmRepeat, ExceptionsAreLeftOutOrListed) {
    const auto rule = [](const PalmSeries& series) { return *calendar::ReadRedoRule(series.redoString); };
    PalmRepeat daily = Repeat(PalmRepeatKind::Daily, 1, {0});
    daily.exceptions = {Seconds({kStart.serial + 2}) + 3600, Seconds({kStart.serial + 1}),
                        Seconds(kStart) - 86400, Seconds({kStart.serial + 2})};
    const auto kept = Map(daily);
    EXPECT_TRUE(kept.remarks.empty());
    EXPECT_EQ(rule(kept).excluded.size(), 2U);
    EXPECT_EQ(DaysOf(kept, kStart, {kStart.serial + 3}), (std::vector<Day>{kStart, {kStart.serial + 3}}));
    PalmRepeat monthly = Repeat(PalmRepeatKind::MonthlyByDate, 1, {10});
    monthly.exceptions = {Seconds({kStart.serial + 31})};
    ASSERT_EQ(Map(monthly).remarks.size(), 1U);
    EXPECT_NE(Map(monthly).remarks.front().find("2023-06-10"), std::string::npos);
    daily.exceptions.assign(65535, 0);
    for (std::uint32_t i = 0; i < 65535; ++i)
        daily.exceptions[i] = i * 86400;
    EXPECT_LE(Map(daily).redoString.size(), 65000U);
}

TEST(PalmRepeat, WhatCannotBeKeptComesInOnceOrIsCutAndSaysSo) {
    const auto single = [](const PalmRepeat& repeat) {
        const auto series = Map(repeat);
        EXPECT_EQ(series.remarks.size(), 1U);
        EXPECT_EQ(series.start, kStart);
        return series.redoString.empty();
    };
    EXPECT_TRUE(single(Repeat(PalmRepeatKind::Daily, 0, {0})));
    EXPECT_TRUE(single(Repeat(PalmRepeatKind::Daily, 256, {0})));
    EXPECT_TRUE(single(Repeat(PalmRepeatKind::Yearly, 22, {0, 0})));
    EXPECT_TRUE(single(Repeat(PalmRepeatKind::MonthlyByWeekday, 1, {7, 0})));
    EXPECT_TRUE(single(Repeat(PalmRepeatKind::MonthlyByWeekday, 1, {0, 6})));
    EXPECT_TRUE(single(Repeat(static_cast<PalmRepeatKind>(6), 1)));
    EXPECT_TRUE(single(Repeat(static_cast<PalmRepeatKind>(0), 1)));
    PalmRepeat over = Repeat(PalmRepeatKind::Daily, 1, {0});
    over.end = Seconds(kStart) - 1;
    EXPECT_TRUE(single(over));
    EXPECT_TRUE(Map(PalmRepeat{}).remarks.empty()) << "no repeat at all";

    over.end = 0xFEFFFFFF;
    const auto cut = Map(over);
    ASSERT_EQ(cut.remarks.size(), 1U);
    EXPECT_EQ(calendar::DayOf(calendar::ReadRedoRule(cut.redoString)->last), kLastDay);
    // An end that is told is no number of occurrences, and a day past an end is none of the series.
    EXPECT_EQ(calendar::ReadRedoRule(cut.redoString)->endMode, calendar::RedoEnd::Date);
    EXPECT_EQ(calendar::ReadRedoRule(Map(Repeat(PalmRepeatKind::Daily, 1, {0})).redoString)->endMode,
              calendar::RedoEnd::Never);
    EXPECT_EQ(Map(Repeat(PalmRepeatKind::Weekly, 1, {0}, 0)).remarks.size(), 1U);
    EXPECT_EQ(Map(Repeat(PalmRepeatKind::MonthlyByDate, 1, {31}), Day{45077}).remarks.size(), 1U);
    EXPECT_EQ(Map(Repeat(PalmRepeatKind::Yearly, 1, {29, 1}), Day{45351}).remarks.size(), 1U);
    PalmRepeat weeks = Repeat(PalmRepeatKind::Weekly, 2, {0}, 0x09);
    weeks.firstDay = 1;
    EXPECT_EQ(Map(weeks, kStart, 1).remarks.size(), 1U) << "its weeks begin on Monday";
    EXPECT_TRUE(Map(weeks, kStart, 2).remarks.empty());
}

}  // namespace
}  // namespace bmr::interchange
