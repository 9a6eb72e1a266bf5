#pragma once

#include <string>
#include <string_view>

#include "base/result.h"
#include "calendar/periods.h"
#include "calendar/series.h"

/// A series in words: as one types it on a command line, and as a sentence.
namespace bmr::calendar {

/// How to write a rule: for help and for what is told of a wrong one.
inline constexpr const char* kRuleForms =
    "day, 3 days, workday, week on mon,thu, 2 weeks on mon,thu, month on 31, 2 months on 31, month on first "
    "mon, 2 months on last fri, year, year on second tue of may";

/// The state that a rule describes, of a series that begins on `start` or, where the rule has no occurrence
/// on it, on the first day after it that has one: "3 days", "workday", "2 weeks on mon,thu", "month on 31",
/// "2 months on last fri", "year", "year on second tue of may". Without an end. Or what is wrong with it, in
/// plain English.
Result<RedoState> ParseRule(std::string_view words, Day start, const LocaleFacts& locale);

/// "every 2 weeks on Monday and Thursday until 3 May 2027, 9 times"; empty without a recurrence. Where months
/// lack the day, the number of days that are shown stands beside the count.
std::string RuleSentence(const RedoState& state, const CalendarNames& names, const LocaleFacts& locale);

}  // namespace bmr::calendar
