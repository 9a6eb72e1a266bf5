#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "base/bytes.h"
#include "calendar/calendar.h"

/// Appointments that come again. A series is one row with a short string of bytes; its occurrences are worked
/// out whenever a period is shown.
namespace bmr::calendar {

/// Stored in every recurrence string. Never renumber: files in the field carry these.
enum class RedoKind : std::uint8_t {
    None = 0,
    Weekly = 1,        ///< on chosen weekdays every n weeks
    Daily = 2,         ///< every n days
    Workdays = 3,      ///< Monday to Friday
    MonthDay = 4,      ///< on a day of the month every n months
    MonthWeekday = 5,  ///< on the n-th weekday of the month every n months
    YearDay = 6,       ///< on a date every year
    YearWeekday = 7,   ///< on the n-th weekday of a month every year
};

/// The same for how a series ends. A number of occurrences is not stored; the last day tells it.
struct RedoEnd {
    static constexpr std::uint8_t Never = 0;
    static constexpr std::uint8_t Count = 1;
    static constexpr std::uint8_t Date = 2;
};

/// A recurrence string taken apart.
struct RedoRule {
    RedoKind kind = RedoKind::None;
    std::uint8_t endMode = RedoEnd::Never;  ///< 3 stands in damaged strings alone and counts as a date
    /// Weekly: bit i for weekday i, 1 = Sunday. Workdays: 124. Day of the month: that day. N-th weekday: the
    /// weekday + 8 * n, where 5 is the last one of the month.
    std::uint8_t pattern = 0;
    /// Every n weeks, days or months; in a yearly series the month. 0 means no occurrences.
    std::uint8_t interval = 1;
    DayCount first;
    DayCount last;  ///< a random day far ahead where the series has no end
    /// Days on which no occurrence is; only `Weekly`, `Daily` and `Workdays` heed them.
    std::vector<DayCount> excluded = {};

    bool operator==(const RedoRule&) const = default;
    bool HeedsExcluded() const {
        return kind == RedoKind::Weekly || kind == RedoKind::Daily || kind == RedoKind::Workdays;
    }
};

/// Nothing where the string means no recurrence: its length is even or below 7, or it has no kind.
std::optional<RedoRule> ReadRedoRule(std::string_view redoString);
/// Seven bytes, and two for each excluded day.
Bytes WriteRedoRule(const RedoRule& rule);

/// Appends the occurrences between two midnights, both days within, in no told order: each is its day and
/// `timeOfDay`, in minutes. The work is bounded by the length of the period, whatever the string holds.
void ExpandRecurrence(Minutes periodStart, Minutes periodEnd, std::int32_t timeOfDay,
                      std::string_view redoString, const LocaleFacts& locale, std::vector<Minutes>& minutes);
/// The same by days, for a string that was taken apart already.
void ExpandRule(const RedoRule& rule, Period period, const LocaleFacts& locale, std::vector<Day>& days);

/// The n-th `weekday` (Sunday-based) of the month of `date`; 5 is the last one. A weekday of 0 stands for
/// that of `date`, an n of 0 for its week of the month.
Day NthWeekdayOfMonth(int nth, int weekday, Day date);

}  // namespace bmr::calendar
