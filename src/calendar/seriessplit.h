#pragma once

#include <optional>
#include <string>
#include <vector>

#include "calendar/recurrence.h"

/// A series cut at one of its days: what is left of its rule, so that every other day stays as it was. Pure
/// arithmetic of rules. A day counts as one of the series when the month that it lies in has it, expanded
/// alone from its 1st to its last.
namespace bmr::calendar {

/// What a cut leaves. A part without any day is none.
struct SeriesParts {
    std::optional<RedoRule> before;  ///< begins where the series began
    std::optional<RedoRule> after;

    bool operator==(const SeriesParts&) const = default;
};

bool IsOfSeries(const RedoRule& rule, Day day, const LocaleFacts& locale);
/// The nearest day of the series before `day`, and on or after it.
std::optional<Day> LastBefore(const RedoRule& rule, Day day, const LocaleFacts& locale);
std::optional<Day> FirstFrom(const RedoRule& rule, Day day, const LocaleFacts& locale);

/// The series up to the last day before `day`, and from the first one on or after it. The second part keeps
/// the phase and the end of the series, the first ends on its last day; each keeps the excluded days that lie
/// in it.
SeriesParts CutBefore(const RedoRule& rule, Day day, const LocaleFacts& locale);

/// The series without its `day`: excluded where the kind heeds that, which leaves one part (`before`); else
/// cut in two around it.
SeriesParts WithoutDay(const RedoRule& rule, Day day, const LocaleFacts& locale);

/// The days that a series can leave out at most, as its string holds no more.
inline constexpr std::size_t kMostExcluded = 32496;

/// Why a series cannot be cut at `day`, in words; empty where it can, and every view then shows what it
/// showed before.
std::string WhyUncut(const RedoRule& rule, Day day, const LocaleFacts& locale);
/// The same for leaving out `day` alone.
std::string WhyNotWithout(const RedoRule& rule, Day day, const LocaleFacts& locale);

/// A series that begins on its day `from`, moved so that this one is on `to` and the later ones go along: as
/// many days on, or on the weekday, the day of the month or the n-th weekday of `to`. It comes as often as it
/// did; workdays keep their last day. Of several weekdays only that of `from` becomes another, and the others
/// move by whole weeks.
RedoRule MovedTo(const RedoRule& rule, Day from, Day to, const LocaleFacts& locale);
/// Why it cannot be moved there, in words; empty where it can.
std::string WhyUnmoved(const RedoRule& rule, Day from, Day to, const LocaleFacts& locale);

}  // namespace bmr::calendar
