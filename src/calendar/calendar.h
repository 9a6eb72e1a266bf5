#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <vector>

#include "base/ports.h"
#include "base/serialdate.h"

/// Every date computation of the calendar; none touches a screen or the file. Local wall-clock times, no
/// zone.
namespace bmr::calendar {

/// 20 March 1997, from which minutes and days are counted.
inline constexpr Day kEpoch{35509};

/// What a person may enter: 22 February 1925 and later, earlier than 15 April 2069.
inline constexpr Day kLowerLimit{9185};
inline constexpr Day kUpperLimit{61833};

inline constexpr std::int32_t kMinutesOfDay = 1440;

/// Minutes since the epoch: starts and ends of appointments, alarms, occurrences.
struct Minutes {
    std::int32_t count = 0;
    auto operator<=>(const Minutes&) const = default;
};

/// Days since the epoch in 16 bits, as the recurrence string keeps them.
struct DayCount {
    std::int16_t count = 0;
    auto operator<=>(const DayCount&) const = default;
};

/// Whole minutes from the epoch; seconds are cut. Nothing, or what is no number, gives 0.
Minutes DateToMinutes(std::optional<DateValue> date);
DateValue MinutesToDate(Minutes minutes);

/// Day and time of day of a minute count, split by floor, so that days before the epoch come out right.
Day DayOf(Minutes minutes);
std::int32_t MinuteOfDay(Minutes minutes);

/// The midnight at which a day begins; the ends of 32 bits for a day beyond them.
Minutes MidnightOf(Day day);

/// Clamped to the ends of 16 bits.
DayCount DateToDays16(Day day);
Day DayOf(DayCount days);

enum class PeriodKind : std::uint8_t { Day = 0, WorkWeek = 1, Week = 2, MonthGrid = 3, Year = 4 };

/// First and last day, both within.
struct Period {
    Day first;
    Day last;
    auto operator<=>(const Period&) const = default;
};

/// The period of `kind` that shows `day`. The month grid is always six whole weeks.
Period PeriodBounds(Day day, PeriodKind kind, const LocaleFacts& locale);

/// 1 when `day` falls on the Sunday-based weekday `firstDay`, to 7 on the day before it.
int WeekdayFrom(Day day, int firstDay);

/// The first day of the week of `day`, `firstDay` Sunday-based.
Day WeekStart(Day day, int firstDay);

Day MonthFirst(Day day);
Day MonthLast(Day day);

/// The locale's first day of the week as a Sunday-based weekday, 1 to 7.
int FirstDayOfWeek(const LocaleFacts& locale);

/// Weekday numbers between the locale's order (1 = its first day) and the Sunday-based one.
int LocalToSundayWeekday(int local, const LocaleFacts& locale);
int SundayToLocalWeekday(int sundayBased, const LocaleFacts& locale);

/// 1 for the days 1 to 7 of a month, 5 for 29 to 31.
int WeekOfMonth(Day day);

/// The calendar's part of the session: what its screens and its editor share.
struct CalendarState {
    PeriodKind calView = PeriodKind::Day;
    Day periodStart;
    Day periodEnd;
    bool inViewFlag = false;
    Minutes appStartMinutes;
    Minutes appEndMinutes;
    std::int32_t appPK = 0;
    bool appNew = false;
};

/// True when `day` is OUTSIDE the period on screen, `inViewFlag` true when it is inside. In the month grid
/// the period is the month shown, not its 42 days.
bool DateInView(Day day, CalendarState& state);

/// The box to show for a day outside the limits: Msg 149 below the lower, Msg 150 on or above the upper.
std::optional<Box> DateLimitBox(Day day, const LocaleFacts& locale);

/// `day` below the upper limit; else tells the limit (Msg 150) and gives it.
Day ClampUpperDate(Day day, Prompter& prompter, const LocaleFacts& locale);

struct Occurrence {
    std::int32_t pk = 0;
    Minutes minutes;
    bool operator==(const Occurrence&) const = default;
};

/// Ascending by minutes; equal minutes keep their order, so that series stand before single appointments.
void SortOccurrences(std::vector<Occurrence>& occurrences);

}  // namespace bmr::calendar
