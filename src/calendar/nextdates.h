#pragma once

#include <optional>
#include <string>
#include <vector>

#include "calendar/periods.h"
#include "calendar/recurrence.h"

/// What a series looks like, told while it is made.
namespace bmr::calendar {

/// The first `count` occurrences on or after `from`, ascending; each month is worked out by itself, from its
/// 1st to its last day. None behind the upper limit of dates.
std::vector<Day> NextDates(const RedoRule& rule, Day from, std::size_t count, const LocaleFacts& locale);

/// Where the six weeks of the month view show other days of a series than its months by themselves do.
struct GridDifference {
    Day month;               ///< the 1st of the month that is shown
    std::vector<Day> added;  ///< ascending
    std::vector<Day> missing;
};

/// The first such month from that of `from` on. Only a series on day 29 to 31 of the month has one: where a
/// month lacks the day, a period that begins earlier goes on into the next month.
std::optional<GridDifference> NextGridDifference(const RedoRule& rule, Day from, const LocaleFacts& locale);

/// "The month view of March 2026 shows 3 March 2026 instead of 31 March 2026."
std::string GridSentence(const GridDifference& difference, const CalendarNames& names);

}  // namespace bmr::calendar
