#include "calendar/timespan.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "base/bytes.h"

namespace bmr::calendar {
namespace {

constexpr std::int32_t kMorning = 540;

/// A foreign row may hold any number of minutes: at the ends of the range the result stands still.
Minutes Later(Minutes minutes, std::int64_t by) {
    using Limits = std::numeric_limits<std::int32_t>;
    return {static_cast<std::int32_t>(
        std::clamp<std::int64_t>(minutes.count + by, Limits::min(), Limits::max()))};
}

std::int64_t Between(Minutes from, Minutes to) {
    return std::int64_t{to.count} - from.count;
}

Minutes Midnight(Minutes minutes) {
    return Later(minutes, -MinuteOfDay(minutes));
}

/// Start and end within the start's day: the end at most at 24:00, and never before the start.
void Set(TimeSpan& span, Minutes start, Minutes end) {
    span.start = start;
    span.end = std::clamp(end, start, Later(Midnight(start), kMinutesOfDay));
    span.allDay = false;
}

std::optional<std::int32_t> WholeNumber(std::string_view text) {
    std::int32_t number = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || parsed.ptr != text.data() + text.size()) return std::nullopt;
    // More digits than fit are a large number all the same.
    if (parsed.ec == std::errc::result_out_of_range) return text.front() == '-' ? -1 : kMinutesOfDay;
    return parsed.ec == std::errc() ? std::optional(number) : std::nullopt;
}

bool OnlyDigits(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

std::int32_t TimeSpan::Length() const {
    return Later({}, std::max<std::int64_t>(0, Between(start, end))).count;
}

TimeSpan NewSpan(Minutes start, std::int32_t length) {
    if (MinuteOfDay(start) == 0) start = Later(start, kMorning);
    return DrawnSpan(start, Later(start, std::max(0, length)));
}

TimeSpan DrawnSpan(Minutes start, Minutes end) {
    return {start, end, false, start, end};
}

TimeSpan AllDaySpan(Day day, std::int32_t length) {
    TimeSpan span = NewSpan(MidnightOf(day), length);
    SetAllDay(span, true);
    return span;
}

TimeSpan LoadedSpan(Minutes start, Minutes end, bool allDay, std::int32_t length) {
    TimeSpan span = DrawnSpan(start, end);
    if (!allDay) return span;
    const TimeSpan cleared = NewSpan(Midnight(start), length);
    span.allDay = true;
    span.keptStart = cleared.start;
    span.keptEnd = cleared.end;
    return span;
}

void SlideStart(TimeSpan& span, std::int32_t minute) {
    const std::int32_t length = span.Length();
    const Minutes start = Later(Midnight(span.start), minute);
    Set(span, start, Later(start, length));
}

void SlideEnd(TimeSpan& span, std::int32_t minute) {
    Set(span, span.start, Later(Midnight(span.start), minute));
}

void TypeStart(TimeSpan& span, std::int32_t minute) {
    Set(span, Later(Midnight(span.start), minute), span.end);
}

void TypeEnd(TimeSpan& span, std::int32_t minute) {
    SlideEnd(span, minute);
}

void TypeDuration(TimeSpan& span, std::int32_t minutes) {
    Set(span, span.start, Later(span.start, minutes));
}

void StepDuration(TimeSpan& span, int direction) {
    const std::int32_t length = span.Length();
    // From a length off the grid the first step goes to the grid's next line, not past it.
    const std::int32_t below = length - length % kMinuteStep;
    const std::int32_t next = direction > 0     ? below + kMinuteStep
                              : length != below ? below
                                                : below - kMinuteStep;
    TypeDuration(span, std::max(0, next));
}

void SetAllDay(TimeSpan& span, bool allDay) {
    if (allDay == span.allDay) return;
    span.allDay = allDay;
    if (allDay) {
        span.keptStart = span.start;
        span.keptEnd = span.end;
        span.start = Midnight(span.start);
        span.end = Later(span.start, kMinutesOfDay);
    } else {
        span.start = span.keptStart;
        span.end = span.keptEnd;
    }
}

void MoveToDay(TimeSpan& span, Day day) {
    const std::int64_t by = Between(Midnight(span.start), MidnightOf(day));
    for (Minutes* minutes : {&span.start, &span.end, &span.keptStart, &span.keptEnd})
        *minutes = Later(*minutes, by);
}

std::int32_t EndMinute(const TimeSpan& span) {
    return EndsElsewhere(span) ? MinuteOfDay(span.end)
                               : static_cast<std::int32_t>(Between(Midnight(span.start), span.end));
}

bool EndsElsewhere(const TimeSpan& span) {
    const std::int64_t end = Between(Midnight(span.start), span.end);
    return end < 0 || end > kMinutesOfDay;
}

bool IsWholeDay(Minutes start, Minutes end) {
    return MinuteOfDay(start) == 0 && Between(start, end) == kMinutesOfDay;
}

TimeSpan StoredSpan(TimeSpan span, bool recurring, Day date) {
    span.end = std::max(span.end, span.start);
    span.allDay = span.allDay || IsWholeDay(span.start, span.end);
    if (span.allDay) {
        span.start = Midnight(span.start);
        span.end = Later(span.start, kMinutesOfDay);
    }
    if (recurring) MoveToDay(span, date);
    return span;
}

std::optional<std::int32_t> TypedHour(std::string_view text, TimeBox box) {
    const auto number = WholeNumber(text);
    if (!number) return std::nullopt;
    return std::clamp(*number, 0, box == TimeBox::Start ? 23 : 24);
}

std::optional<std::int32_t> TypedMinute(std::string_view text) {
    const auto number = WholeNumber(text);
    if (!number) return std::nullopt;
    const std::int32_t minute = std::clamp(*number, 0, 59);
    return minute - minute % kMinuteStep;
}

std::optional<std::int32_t> ParseTime(std::string_view text) {
    text = TrimBlanks(text);
    std::string_view hours = text;
    std::string_view minutes = "0";
    if (const auto colon = text.find(':'); colon != std::string_view::npos) {
        hours = text.substr(0, colon);
        minutes = text.substr(colon + 1);
        if (minutes.size() != 2) return std::nullopt;
    } else if (text.size() > 2) {
        hours = text.substr(0, text.size() - 2);
        minutes = text.substr(text.size() - 2);
    }
    if (!OnlyDigits(hours) || !OnlyDigits(minutes) || hours.size() > 2) return std::nullopt;
    const std::int32_t hour = *WholeNumber(hours);
    const std::int32_t minute = *WholeNumber(minutes);
    if (minute > 59 || hour * 60 + minute > kMinutesOfDay) return std::nullopt;
    return hour * 60 + minute;
}

std::optional<Minutes> ParseDateTime(std::string_view text) {
    text = TrimBlanks(text);
    constexpr std::size_t kDate = 10;
    if (text.size() <= kDate || (text[kDate] != ' ' && text[kDate] != 'T')) return std::nullopt;
    const auto day = ParseIsoDate(text.substr(0, kDate));
    const auto minute = ParseTime(text.substr(kDate + 1));
    if (!day || !minute) return std::nullopt;
    return Later(MidnightOf(*day), *minute);
}

std::string TwoDigits(std::int32_t number) {
    return (number >= 0 && number < 10 ? "0" : "") + std::to_string(number);
}

std::string TimeText(std::int32_t minute) {
    return TwoDigits(minute / 60) + ":" + TwoDigits(minute % 60);
}

}  // namespace bmr::calendar
