#include "calendar/nextdates.h"

#include <algorithm>
#include <iterator>

#include "calendar/months.h"

namespace bmr::calendar {
namespace {

constexpr int kEachMonthHas = 28;

/// The occurrences of a period, ascending.
std::vector<Day> Expanded(const RedoRule& rule, Period period, const LocaleFacts& locale) {
    std::vector<Day> days;
    ExpandRule(rule, period, locale, days);
    std::ranges::sort(days);
    return days;
}

/// The months from that of `from` on in which the series may have days.
template <class Visit>
void EachMonth(const RedoRule& rule, Day from, const Visit& visit) {
    for (Day month = MonthFirst(from); month < kUpperLimit; month = PlusMonths(month, 1)) {
        if (rule.endMode != RedoEnd::Never && month > DayOf(rule.last)) return;
        if (!visit(month)) return;
    }
}

/// What stands in `days` and not in `others`, both ascending.
std::vector<Day> Without(const std::vector<Day>& days, const std::vector<Day>& others) {
    std::vector<Day> rest;
    std::ranges::set_difference(days, others, std::back_inserter(rest));
    return rest;
}

std::string Listed(const std::vector<Day>& days, const CalendarNames& names) {
    std::string text;
    for (const Day day : days)
        text += (text.empty() ? "" : " and ") + LongDate(day, names);
    return text;
}

}  // namespace

std::vector<Day> NextDates(const RedoRule& rule, Day from, std::size_t count, const LocaleFacts& locale) {
    std::vector<Day> next;
    EachMonth(rule, from, [&](Day month) {
        for (const Day day : Expanded(rule, {month, MonthLast(month)}, locale))
            if (day >= from && next.size() < count) next.push_back(day);
        return next.size() < count;
    });
    return next;
}

std::optional<GridDifference> NextGridDifference(const RedoRule& rule, Day from, const LocaleFacts& locale) {
    if (rule.kind != RedoKind::MonthDay || DayOfMonth(DayOf(rule.first)) <= kEachMonthHas)
        return std::nullopt;
    // In so many months each length of a month has met each step of the series, but for leap years.
    int left = 12 * (rule.interval + 1);
    std::optional<GridDifference> found;
    EachMonth(rule, from, [&](Day month) {
        const Period grid = PeriodBounds(month, PeriodKind::MonthGrid, locale);
        std::vector<Day> alone;
        for (Day each = MonthFirst(grid.first); each <= grid.last; each = PlusMonths(each, 1))
            for (const Day day : Expanded(rule, {each, MonthLast(each)}, locale))
                if (day >= grid.first && day <= grid.last) alone.push_back(day);
        const std::vector<Day> shown = Expanded(rule, grid, locale);
        GridDifference difference{month, Without(shown, alone), Without(alone, shown)};
        // Only what is told of the series itself, not the days before it that a grid shows besides.
        if (!difference.missing.empty() ||
            (!difference.added.empty() && difference.added.back() >= DayOf(rule.first)))
            found = std::move(difference);
        return !found && --left > 0;
    });
    return found;
}

std::string GridSentence(const GridDifference& difference, const CalendarNames& names) {
    std::string text = "The month view of " +
                       names.months.at(static_cast<std::size_t>(MonthOf(difference.month) - 1)) + " " +
                       std::to_string(YearOf(difference.month));
    if (difference.added.empty()) return text + " leaves out " + Listed(difference.missing, names) + ".";
    text += (difference.missing.empty() ? " also shows " : " shows ") + Listed(difference.added, names);
    if (!difference.missing.empty()) text += " instead of " + Listed(difference.missing, names);
    return text + ".";
}

}  // namespace bmr::calendar
