#include "calendar/calendar.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>

#include "base/shortdate.h"

namespace bmr::calendar {
namespace {

constexpr int kMonday = 2;

template <class Int>
Int ClampTo(double number) {
    using Limits = std::numeric_limits<Int>;
    return static_cast<Int>(std::clamp<double>(number, Limits::min(), Limits::max()));
}

/// 1 to 7 for any number that counts weekdays.
int Wrapped(int weekday) {
    return ((weekday - 1) % 7 + 7) % 7 + 1;
}

Day Plus(Day day, std::int32_t days) {
    return {day.serial + days};
}

Period YearOf(Day day) {
    const auto year = YearMonthDay(day).year();
    return {DayFrom(year / 1 / 1), DayFrom(year / 12 / 31)};
}

}  // namespace

Minutes DateToMinutes(std::optional<DateValue> date) {
    if (!date || std::isnan(date->serial)) return {};
    // To the second first: a binary fraction of a day lies a little below or above the minute it means.
    const double seconds = std::round((date->serial - kEpoch.serial) * 86400);
    return {ClampTo<std::int32_t>(std::floor(seconds / 60))};
}

DateValue MinutesToDate(Minutes minutes) {
    return {DayOf(minutes).serial + static_cast<double>(MinuteOfDay(minutes)) / kMinutesOfDay};
}

Day DayOf(Minutes minutes) {
    const std::int32_t whole = minutes.count / kMinutesOfDay;
    return {kEpoch.serial + (minutes.count % kMinutesOfDay < 0 ? whole - 1 : whole)};
}

std::int32_t MinuteOfDay(Minutes minutes) {
    const std::int32_t rest = minutes.count % kMinutesOfDay;
    return rest < 0 ? rest + kMinutesOfDay : rest;
}

Minutes MidnightOf(Day day) {
    return {ClampTo<std::int32_t>((static_cast<double>(day.serial) - kEpoch.serial) * kMinutesOfDay)};
}

DayCount DateToDays16(Day day) {
    return {ClampTo<std::int16_t>(static_cast<double>(day.serial) - kEpoch.serial)};
}

Day DayOf(DayCount days) {
    return {kEpoch.serial + days.count};
}

Period PeriodBounds(Day day, PeriodKind kind, const LocaleFacts& locale) {
    switch (kind) {
        case PeriodKind::Day:
            break;
        case PeriodKind::WorkWeek: {
            const Day monday = WeekStart(day, kMonday);
            return {monday, Plus(monday, 4)};
        }
        case PeriodKind::Week: {
            const Day first = WeekStart(day, FirstDayOfWeek(locale));
            return {first, Plus(first, 6)};
        }
        case PeriodKind::MonthGrid: {
            const Day first = WeekStart(MonthFirst(day), FirstDayOfWeek(locale));
            return {first, Plus(first, 41)};
        }
        case PeriodKind::Year:
            return YearOf(day);
    }
    return {day, day};
}

int WeekdayFrom(Day day, int firstDay) {
    return Wrapped(Weekday(day) - firstDay + 1);
}

Day WeekStart(Day day, int firstDay) {
    return Plus(day, 1 - WeekdayFrom(day, firstDay));
}

Day MonthFirst(Day day) {
    const auto date = YearMonthDay(day);
    return DayFrom(date.year() / date.month() / 1);
}

Day MonthLast(Day day) {
    const auto date = YearMonthDay(day);
    return DayFrom(date.year() / date.month() / std::chrono::last);
}

int FirstDayOfWeek(const LocaleFacts& locale) {
    return Wrapped(locale.firstDayOfWeek);
}

int LocalToSundayWeekday(int local, const LocaleFacts& locale) {
    return Wrapped(local + FirstDayOfWeek(locale) - 1);
}

int SundayToLocalWeekday(int sundayBased, const LocaleFacts& locale) {
    return Wrapped(sundayBased - FirstDayOfWeek(locale) + 1);
}

int WeekOfMonth(Day day) {
    return 1 + (static_cast<int>(static_cast<unsigned>(YearMonthDay(day).day())) - 1) / 7;
}

bool DateInView(Day day, CalendarState& state) {
    Period shown{state.periodStart, state.periodEnd};
    if (state.calView == PeriodKind::MonthGrid) {
        // The last of the 42 days always lies in the month after the one that is shown.
        shown.last = Plus(MonthFirst(state.periodEnd), -1);
        shown.first = MonthFirst(shown.last);
    }
    state.inViewFlag = shown.first <= day && day <= shown.last;
    return !state.inViewFlag;
}

std::optional<Box> DateLimitBox(Day day, const LocaleFacts& locale) {
    if (day >= kLowerLimit && day < kUpperLimit) return std::nullopt;
    const bool low = day < kLowerLimit;
    Box box = MessageBox(low ? 149 : 150);
    box.text += " " + FormatShortDate(low ? kLowerLimit : kUpperLimit, locale.shortDate);
    return box;
}

Day ClampUpperDate(Day day, Prompter& prompter, const LocaleFacts& locale) {
    if (day < kUpperLimit) return day;
    if (const auto box = DateLimitBox(day, locale)) prompter.Ask(*box);
    return kUpperLimit;
}

void SortOccurrences(std::vector<Occurrence>& occurrences) {
    std::stable_sort(occurrences.begin(), occurrences.end(),
                     [](const Occurrence& a, const Occurrence& b) { return a.minutes < b.minutes; });
}

}  // namespace bmr::calendar
