#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/calendar.h"

/// The period on screen: how one comes to it and away from it, and the words around it.
namespace bmr::calendar {

/// Which week of a year is its first.
enum class FirstWeek : std::uint8_t {
    WithNewYear = 1,  ///< the one that 1 January falls in
    FourDays = 2,     ///< the first with four days or more in the year
    FullWeek = 3,     ///< the first that lies in the year as a whole
};

/// The number of a day's week, from 1; `firstDay` Sunday-based. Where the first week begins after 1 January,
/// the days before it belong to the last week of the year before, and where it begins before, the last days
/// of a year to the first of the next.
int WeekOfYear(Day day, int firstDay, FirstWeek rule);

/// A date that a person enters or goes to, within the limits: beyond one the limit itself, once told in a
/// box.
Day WithinLimits(Day day);

/// `calDate` after going `steps` periods of `kind` on (back where negative): days, weeks, or months, in which
/// a day that the month lacks becomes its last. Within the limits.
Day StepPeriod(Day calDate, PeriodKind kind, std::int32_t steps);

/// A click on `calDate`: true when `day` lies outside the period and a new one was set, so that the views are
/// to be rebuilt.
bool GoToDay(CalendarState& state, Day day, const LocaleFacts& locale);
/// A click on `calView`: true when the kind is another and the period of `calDate` was set.
bool ChangeView(CalendarState& state, PeriodKind kind, Day calDate, const LocaleFacts& locale);

/// The days that a view shows, in order.
std::vector<Day> DaysOf(const Period& period);

/// The words of a locale, UTF-8. Weekdays begin with Sunday.
struct CalendarNames {
    std::array<std::string, 12> months = {"January",   "February", "March",    "April",
                                          "May",       "June",     "July",     "August",
                                          "September", "October",  "November", "December"};
    std::array<std::string, 7> weekdays = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                           "Thursday", "Friday", "Saturday"};
    std::array<std::string, 7> shortWeekdays = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
};

/// "3 May 2027".
std::string LongDate(Day day, const CalendarNames& names);
/// What stands above the view: "Tuesday, 5 January 2027", "4 – 10 January 2027", "28 December 2026 – 3
/// January 2027", "January 2027".
std::string PeriodHeading(const Period& period, PeriodKind kind, const CalendarNames& names);
/// What stands above a day's column: "Tue 5".
std::string DayHeading(Day day, const CalendarNames& names);

/// "09:00-10:00"; of an all-day entry "00:00-24:00".
std::string EntryTimes(Minutes start, Minutes end, bool allDay);
/// The text of an entry's box: "09:00-10:00 Subject".
WipedText EntryText(Minutes start, Minutes end, bool allDay, std::string_view subject);

/// One of the 42 days.
struct MonthCell {
    Day day;
    int label = 1;                     ///< `monDayLabel`: the day of the month
    bool ofMonth = false;              ///< of the month that is shown, not of its neighbours
    std::vector<std::size_t> entries;  ///< indexes, in the order of their starts
};

struct MonthTable {
    std::array<MonthCell, 42> cells;
    std::array<int, 6> weeks{};  ///< `monWeek`
};

/// The month view. `minutes` are the occurrences of the period in ascending order; each falls into the cell
/// of the day on which it starts, those outside the grid into none.
MonthTable FillMonth(const Period& grid, std::span<const Minutes> minutes, int firstDay, FirstWeek rule);
/// An item of a cell: "09:00 Subject"; an all-day entry has 00:00.
WipedText MonthItemText(Minutes minutes, std::string_view subject);

}  // namespace bmr::calendar
