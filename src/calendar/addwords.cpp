#include "calendar/addwords.h"

#include <algorithm>
#include <charconv>

#include "base/bytes.h"
#include "calendar/appointment.h"
#include "calendar/redowords.h"
#include "calendar/reminder.h"
#include "calendar/timespan.h"

namespace bmr::calendar {
namespace {

constexpr std::int32_t kMostTimes = 255;
constexpr std::int32_t kLongest = 10 * 366 * kMinutesOfDay;

std::optional<std::int32_t> NumberIn(std::string_view text, std::int32_t least, std::int32_t most) {
    std::int32_t number = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size()) return std::nullopt;
    return number < least || number > most ? std::nullopt : std::optional(number);
}

/// What was given beside the texts; each sets one of them or says what is wrong.
struct Words {
    std::optional<Minutes> start;
    bool dateAlone = false;
    std::optional<Minutes> end;
    std::optional<std::int32_t> duration;
    bool allDay = false;
    std::string every;
    std::optional<Day> until;
    std::optional<std::int32_t> times;
    std::optional<std::int32_t> remind;

    /// False for a name that is none of ours.
    bool Set(std::string_view name, std::string_view value, std::string& problem) {
        if (name == "start") {
            const auto day = ParseIsoDate(value);
            dateAlone = day.has_value();
            start = day ? std::optional(MidnightOf(*day)) : ParseDateTime(value);
            if (!start) problem = "The start is no time of the form YYYY-MM-DD HH:MM.";
        } else if (name == "end") {
            end = ParseDateTime(value);
            if (!end) problem = "The end is no time of the form YYYY-MM-DD HH:MM.";
        } else if (name == "duration") {
            duration = NumberIn(value, 0, kLongest);
            if (!duration) problem = "The duration is no number of minutes.";
        } else if (name == "allDay") {
            allDay = true;
        } else if (name == "every") {
            every = value;
        } else if (name == "until") {
            until = ParseIsoDate(value);
            if (!until) problem = "--until is no date of the form YYYY-MM-DD.";
        } else if (name == "times") {
            times = NumberIn(value, 1, kMostTimes);
            if (!times) problem = "--times is no number from 1 to 255.";
        } else if (name == "remind") {
            remind = NumberIn(value, 0, kLeadTimes.back());
            if (!remind || std::ranges::find(kLeadTimes, *remind) == kLeadTimes.end())
                problem = "--remind is one of 0 5 10 15 30 60 120 180 360 720 1440.";
        } else {
            return false;
        }
        return true;
    }

    /// What does not go together.
    std::string Conflict() const {
        if (!start) return "The start is required: --start \"YYYY-MM-DD HH:MM\".";
        if (dateAlone && !allDay) return "The start has no time: give one, or --all-day.";
        if (end.has_value() + duration.has_value() + allDay > 1)
            return "Only one of --end, --duration and --all-day can be given.";
        if (end && *end < *start) return "The end lies before the start.";
        if (every.empty() && (until || times))
            return "--until and --times belong to a series: give --every too.";
        if (until && times) return "Only one of --until and --times can be given.";
        if (until && *until < DayOf(*start)) return "The series would end before it begins.";
        for (const auto day : {std::optional(DayOf(*start)), until})
            if (const auto box = day ? DateLimitBox(*day, LocaleFacts{}) : std::nullopt) return box->text;
        return {};
    }

    TimeSpan Span(std::int32_t usual) const {
        if (allDay) return AllDaySpan(DayOf(*start), usual);
        return DrawnSpan(*start, end ? *end : Minutes{start->count + duration.value_or(std::max(0, usual))});
    }
};

/// The recurrence string, and the day of its first occurrence.
Result<std::pair<Bytes, Day>> Series(store::Session& session, const Words& words, const LocaleFacts& locale) {
    auto rule = ParseRule(words.every, DayOf(*words.start), locale);
    if (!rule) return rule.error();
    RedoState& state = *rule;
    if (words.until && *words.until < state.start) return Error{0, "The series would end before it begins."};
    if (words.times) {
        state.endMode = RedoEnd::Count;
        state.count = *words.times;
    } else if (words.until) {
        state.endMode = RedoEnd::Date;
        state.end = *words.until;
    }
    bool beyond = DateLimitBox(state.start, locale).has_value();
    if (state.endMode != RedoEnd::Never)
        RecalcRedoEnd(state, locale, {.limitTaken = [&beyond] { beyond = true; }});
    if (beyond) return Error{0, DateLimitBox(kUpperLimit, LocaleFacts{})->text};
    const Day first = state.start;
    return std::pair(StringToStore(state, {}, locale, session.ports.random), first);
}

}  // namespace

Result<std::int32_t> AddFromWords(store::Session& session, const store::NewRecord& given) {
    Words words;
    Appointment appointment = ClearRecord({}, 0);
    appointment.isPrivate = given.isPrivate;
    std::string problem =
        store::SetFields(store::SlotsOf(appointment, kAppointmentFields), given,
                         [&words](std::string_view name, std::string_view value, std::string& why) {
                             return words.Set(name, value, why);
                         });
    if (problem.empty()) problem = words.Conflict();
    if (problem.empty() && TrimBlanks(appointment.subject).empty()) problem = "The subject is required.";
    if (!problem.empty()) return Error{0, std::move(problem)};

    Day day = DayOf(*words.start);
    if (!words.every.empty()) {
        auto series = Series(session, words, given.locale);
        if (!series) return series.error();
        appointment.redoString = std::move(series->first);
        day = series->second;
    }
    const TimeSpan span = StoredSpan(words.Span(session.settings.AppDuration), appointment.Recurring(), day);
    appointment.start = span.start;
    appointment.end = span.end;
    appointment.allDay = span.allDay ? 1 : 0;
    appointment.alarm = words.remind ? 1 : 0;
    appointment.alarmTime = AlarmTime(span.start, words.remind.has_value(), words.remind.value_or(0));
    if (const int error = WriteRecord(session, appointment).error) return Error{error, {}};
    return appointment.key;
}

}  // namespace bmr::calendar
