#pragma once

#include <algorithm>
#include <cstdint>

#include "calendar/calendar.h"

/// Parts of a day and steps of months and years.
namespace bmr::calendar {

inline int YearOf(Day day) {
    return static_cast<int>(YearMonthDay(day).year());
}

/// 1 to 12.
inline int MonthOf(Day day) {
    return static_cast<int>(static_cast<unsigned>(YearMonthDay(day).month()));
}

/// 1 to 31.
inline int DayOfMonth(Day day) {
    return static_cast<int>(static_cast<unsigned>(YearMonthDay(day).day()));
}

/// Months since the beginning of year 0: differences are steps of months.
inline std::int32_t MonthNumber(Day day) {
    return YearOf(day) * 12 + MonthOf(day) - 1;
}

/// The date of a year, month and day where any of them may overflow: the 31st of a month with 30 days is the
/// 1st of the next, month 13 the January behind, day 0 the last of the month before.
inline Day RolledDate(int year, int month, int day) {
    const int months = year * 12 + month - 1;
    const int wholeYear = months >= 0 ? months / 12 : (months - 11) / 12;
    const auto rest = static_cast<unsigned>(months - wholeYear * 12);
    return {DayFrom(std::chrono::year(wholeYear) / std::chrono::month(rest + 1) / 1).serial + day - 1};
}

/// So many months later on the same day of the month, or on the last one of a month that is shorter.
inline Day PlusMonths(Day day, std::int32_t months) {
    const Day first = RolledDate(0, MonthNumber(day) + months + 1, 1);
    return {std::min(first.serial + DayOfMonth(day) - 1, MonthLast(first).serial)};
}

}  // namespace bmr::calendar
