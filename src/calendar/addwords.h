#pragma once

#include <cstdint>

#include "base/result.h"
#include "calendar/redowords.h"
#include "store/sections.h"

/// A new appointment from words, as on the command line.
namespace bmr::calendar {

/// The short options that `AddFromWords` understands.
inline constexpr store::FieldOption kAddOptions[] = {
    {"--subject", "ctlSubject", "what it is, in one line"},
    {"--start", "start", "\"YYYY-MM-DD HH:MM\"; a date alone with --all-day"},
    {"--end", "end", "\"YYYY-MM-DD HH:MM\""},
    {"--duration", "duration", "minutes, in place of --end; without both, the preferences tell"},
    {"--all-day", "allDay", "the whole day", true},
    {"--location", "ctlLocation", "where"},
    {"--note", "ctlNotes", "a note of any length"},
    {"--every", "every", kRuleForms},
    {"--until", "until", "last day of a series, YYYY-MM-DD"},
    {"--times", "times", "how often a series comes, 1 to 255, in place of --until"},
    {"--remind", "remind", "minutes before the start: 0 5 10 15 30 60 120 180 360 720 1440"},
};

/// Stores it and gives its key, or what is wrong with the words. Times are taken as they are given: a start
/// at midnight stays there. A series whose rule does not fall on the start begins on the first day that it
/// does.
Result<std::int32_t> AddFromWords(store::Session& session, const store::NewRecord& given);

}  // namespace bmr::calendar
