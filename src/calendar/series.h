#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string_view>

#include "base/bytes.h"
#include "base/random.h"
#include "calendar/recurrence.h"

/// The arithmetic of a series while it is edited: its last day from a number of occurrences, and the number
/// from the last day. Weekdays are in the locale's order here (1 = its first day of the week).
namespace bmr::calendar {

/// What the arithmetic asks and tells. An empty function is neither asked nor told.
struct SeriesVoice {
    /// The question of Msg 151: the month of the start has no such day after it. True: begin next month.
    std::function<bool()> beginNextMonth = {};
    /// A last day was on or above the upper limit, which was taken (Msg 150).
    std::function<void()> limitTaken = {};
};

/// Units in which n-th weekdays step.
enum class SeriesUnit : std::uint8_t { Months, Years };

/// `NthWeekdayOfMonth`, which asks when the day lies before `date`: with Yes `date` becomes the first of the
/// next month, and the day is one of that; with No the day is given although it lies before.
Day FirstNthWeekday(int nth, int weekday, Day& date, const SeriesVoice& voice);

/// The day of occurrence number `count` (1: the first) of a series on the n-th `localWeekday`. In years, the
/// day is in `month` (0: that of the day counted to), never before the month of the start. An interval of 0
/// counts as 1.
Day NthOccurrenceDate(Day start, int nth, int localWeekday, std::int32_t count, SeriesUnit unit,
                      std::int32_t interval, int month, const LocaleFacts& locale,
                      const SeriesVoice& voice = {});
std::int32_t CountNthOccurrences(Day start, int nth, int localWeekday, Day end, SeriesUnit unit,
                                 std::int32_t interval, const LocaleFacts& locale);

/// Chosen weekdays, index 0 = the locale's first day of the week.
using WeekDays = std::array<bool, 7>;

/// Occurrences from `start` to `end`. A start that is no chosen day moves forward to the next one. 0 without
/// chosen days.
std::int32_t WeeklyCount(Day& start, Day end, const WeekDays& days, std::int32_t interval,
                         const LocaleFacts& locale);
/// The day of the last of `count` occurrences; `start` moves as above.
Day WeeklyEndDate(Day& start, std::int32_t count, std::int32_t interval, const WeekDays& days,
                  const LocaleFacts& locale);

/// The day that editors show for "no end date".
inline constexpr Day kNoEndShown{54789};

/// The state of a recurrence in its editor.
struct RedoState {
    int frequency = 0;    ///< 0 none, 1 weekly, 2 daily, 3 monthly, 4 yearly
    int alternative = 0;  ///< 1: workdays, n-th weekday
    int kind = 0;         ///< `RedoKind`, by `KindOf`
    int endMode = RedoEnd::Never;
    Day start;
    Day end;
    std::int32_t count = 1;
    std::int32_t interval = 1;     ///< of the first alternative
    std::int32_t intervalAlt = 1;  ///< of the n-th weekday every n months
    int weekday = 1;
    int nth = 1;    ///< 1 to 5, 5 the last
    int month = 1;  ///< 1 to 12
    WeekDays days{};
    Day date;              ///< of the appointment
    bool filling = false;  ///< the form is being filled: nothing moves

    bool operator==(const RedoState&) const = default;
};

/// The kind of a frequency and an alternative.
RedoKind KindOf(int frequency, int alternative);

/// No recurrence yet: on `date`, its weekday chosen, every 1, without an end.
RedoState NewRedoState(Day date, const LocaleFacts& locale);

/// Seven bytes of the state, empty without a recurrence. Excluded days are not carried.
Bytes BuildRedoString(const RedoState& state, const LocaleFacts& locale);

/// The state of a string, of an appointment on `date`; the number of occurrences comes from the last day, and
/// nothing moves. A string of an odd length of 9 or more is read by its first seven bytes, any other that is
/// not 7 long means no recurrence.
RedoState ParseRedoString(std::string_view redoString, Day date, const LocaleFacts& locale);

/// Last day from the number of occurrences, and number from the last day; both put the last day on an
/// occurrence, and a series on n-th weekdays begins on one. While the form is filled nothing moves and
/// nothing is asked.
void SeriesFromCount(RedoState& state, const LocaleFacts& locale, const SeriesVoice& voice = {});
void CountFromEndDate(RedoState& state, const LocaleFacts& locale, const SeriesVoice& voice = {});
/// The one of the two that the end mode asks for, after every change but while the form is filled.
void RecalcRedoEnd(RedoState& state, const LocaleFacts& locale, const SeriesVoice& voice = {});

/// The last day that a series without an end gets: a random one of the last ten years that the tables hold,
/// never before `start`.
Day NoEndLastDay(Day start, RandomSource& random);

/// The string that a save stores: with a drawn last day where there is no end, and `stored` itself, its
/// excluded days included, where nothing was changed.
Bytes StringToStore(RedoState& state, std::string_view stored, const LocaleFacts& locale,
                    RandomSource& random);

}  // namespace bmr::calendar
