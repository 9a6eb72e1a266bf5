#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "calendar/calendar.h"

/// The time span of the appointment editor: what its sliders, its time boxes, the duration and the all-day
/// box make of start and end.
namespace bmr::calendar {

/// Sliders, boxes and the duration's button go by it.
inline constexpr std::int32_t kMinuteStep = 5;

/// The duration's button steps while it is held: first after, then every so many milliseconds.
inline constexpr int kDurationFirstStep = 400;
inline constexpr int kDurationNextStep = 60;

/// Start and end as the editor holds them. What no control has touched stays as it was loaded, an end on
/// another day too.
struct TimeSpan {
    Minutes start;
    Minutes end;
    bool allDay = false;
    /// Come back when the all-day box is cleared.
    Minutes keptStart;
    Minutes keptEnd;

    /// Minutes; 0 for an end before the start.
    std::int32_t Length() const;
    bool operator==(const TimeSpan&) const = default;
};

/// The span of a new appointment: `length` minutes from `start`; a start at exactly midnight becomes 09:00.
TimeSpan NewSpan(Minutes start, std::int32_t length);
/// A span that was drawn on the grid, taken as it is.
TimeSpan DrawnSpan(Minutes start, Minutes end);
/// A day as a whole; with the box cleared it becomes 09:00 for `length` minutes.
TimeSpan AllDaySpan(Day day, std::int32_t length);
/// The span of a stored appointment. `length` is for a stored day as a whole whose box is cleared.
TimeSpan LoadedSpan(Minutes start, Minutes end, bool allDay, std::int32_t length);

/// The start's slider: the end moves along, but not past 24:00. `minute` of the day, 0 to 1439.
void SlideStart(TimeSpan& span, std::int32_t minute);
/// The end's slider: the start stays; past 24:00 becomes 24:00, before the start the start.
void SlideEnd(TimeSpan& span, std::int32_t minute);
/// The start's boxes: the end stays, unless it would lie before the start.
void TypeStart(TimeSpan& span, std::int32_t minute);
/// The end's boxes.
void TypeEnd(TimeSpan& span, std::int32_t minute);
/// The duration's boxes: the end follows from the start, but not past 24:00.
void TypeDuration(TimeSpan& span, std::int32_t minutes);
/// One step of the duration's button, up (1) or down (-1), on the grid of five minutes.
void StepDuration(TimeSpan& span, int direction);
/// The all-day box.
void SetAllDay(TimeSpan& span, bool allDay);
/// The date control: the whole span goes to `day`, its times of day and its length stay.
void MoveToDay(TimeSpan& span, Day day);

/// What the end's boxes show: the minute of the day, 24:00 for the midnight behind the start's day.
std::int32_t EndMinute(const TimeSpan& span);
/// Whether a date has to stand beside them: an end on another day, as it was loaded.
bool EndsElsewhere(const TimeSpan& span);

/// Whether a span runs exactly from a midnight to the next.
bool IsWholeDay(Minutes start, Minutes end);

/// What is stored. A span that is a whole day is all-day, box or no box; an end before the start becomes the
/// start. A series takes the time of day and the length, on `date`.
TimeSpan StoredSpan(TimeSpan span, bool recurring, Day date);

enum class TimeBox : std::uint8_t { Start, End, Duration };

/// What a box shows once it was typed in; nothing for what is no number, which is refused. Hours are kept to
/// 00..23, in the boxes of end and duration to 24; minutes to 00..55 in steps of five.
std::optional<std::int32_t> TypedHour(std::string_view text, TimeBox box);
std::optional<std::int32_t> TypedMinute(std::string_view text);

/// A time of day that stands in one text: "9", "09:30", "930", "24:00". In minutes; nothing for what is none.
std::optional<std::int32_t> ParseTime(std::string_view text);
/// "2027-01-05 09:30", with a blank or a T between.
std::optional<Minutes> ParseDateTime(std::string_view text);

/// Two digits at least.
std::string TwoDigits(std::int32_t number);
/// "09:30"; 1440 gives "24:00".
std::string TimeText(std::int32_t minute);

}  // namespace bmr::calendar
