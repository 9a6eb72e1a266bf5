#include "calendar/periods.h"

#include <algorithm>
#include <chrono>

#include "calendar/timespan.h"

namespace bmr::calendar {
namespace {

namespace chrono = std::chrono;

/// First day of the first week of a year.
Day FirstWeekOf(chrono::year year, int firstDay, FirstWeek rule) {
    const Day newYear = DayFrom(year / 1 / 1);
    const Day week = WeekStart(newYear, firstDay);
    const int inside = 7 - (newYear.serial - week.serial);
    const int wanted = rule == FirstWeek::FullWeek ? 7 : rule == FirstWeek::FourDays ? 4 : 1;
    return inside >= wanted ? week : Day{week.serial + 7};
}

Day StepMonths(Day day, std::int32_t months) {
    const auto date = YearMonthDay(day);
    const auto month = date.year() / date.month() + chrono::months(months);
    const auto last = (month / chrono::last).day();
    return DayFrom(month / std::min(date.day(), last));
}

/// The month that a grid of 42 days shows: its last day always lies in the next.
chrono::year_month MonthOfGrid(const Period& grid) {
    const auto last = YearMonthDay(Day{MonthFirst(grid.last).serial - 1});
    return last.year() / last.month();
}

int DayNumber(Day day) {
    return static_cast<int>(static_cast<unsigned>(YearMonthDay(day).day()));
}

std::string MonthAndYear(chrono::year_month month, const CalendarNames& names) {
    return names.months.at(static_cast<unsigned>(month.month()) - 1) + " " +
           std::to_string(static_cast<int>(month.year()));
}

std::string SpanHeading(const Period& period, const CalendarNames& names) {
    const auto first = YearMonthDay(period.first);
    const auto last = YearMonthDay(period.last);
    std::string begin = std::to_string(DayNumber(period.first));
    if (first.year() != last.year())
        begin = LongDate(period.first, names);
    else if (first.month() != last.month())
        begin += " " + names.months.at(static_cast<unsigned>(first.month()) - 1);
    return begin + " – " + LongDate(period.last, names);
}

const std::string& NameOfWeekday(const std::array<std::string, 7>& names, Day day) {
    return names.at(static_cast<std::size_t>(Weekday(day) - 1));
}

}  // namespace

int WeekOfYear(Day day, int firstDay, FirstWeek rule) {
    const auto year = YearMonthDay(day).year();
    Day first = FirstWeekOf(year, firstDay, rule);
    // 1 January always has week 1 by that rule, and the days before it the last number of their own year.
    if (rule != FirstWeek::WithNewYear) {
        if (const Day next = FirstWeekOf(year + chrono::years(1), firstDay, rule); day >= next) return 1;
        if (day < first) first = FirstWeekOf(year - chrono::years(1), firstDay, rule);
    }
    return (day.serial - first.serial) / 7 + 1;
}

Day WithinLimits(Day day) {
    return std::clamp(day, kLowerLimit, kUpperLimit);
}

Day StepPeriod(Day calDate, PeriodKind kind, std::int32_t steps) {
    // Further than that lies outside the limits anyway, and the sums below hold.
    steps = std::clamp(steps, -60000, 60000);
    calDate = WithinLimits(calDate);
    switch (kind) {
        case PeriodKind::Day:
            return WithinLimits({calDate.serial + steps});
        case PeriodKind::WorkWeek:
        case PeriodKind::Week:
            return WithinLimits({calDate.serial + 7 * steps});
        case PeriodKind::MonthGrid:
            return WithinLimits(StepMonths(calDate, std::clamp(steps, -2400, 2400)));
        case PeriodKind::Year:
            return WithinLimits(StepMonths(calDate, 12 * std::clamp(steps, -200, 200)));
    }
    return calDate;
}

bool GoToDay(CalendarState& state, Day day, const LocaleFacts& locale) {
    if (!DateInView(day, state)) return false;
    const Period period = PeriodBounds(day, state.calView, locale);
    state.periodStart = period.first;
    state.periodEnd = period.last;
    return true;
}

bool ChangeView(CalendarState& state, PeriodKind kind, Day calDate, const LocaleFacts& locale) {
    if (kind == state.calView) return false;
    state.calView = kind;
    const Period period = PeriodBounds(calDate, kind, locale);
    state.periodStart = period.first;
    state.periodEnd = period.last;
    return true;
}

std::vector<Day> DaysOf(const Period& period) {
    std::vector<Day> days;
    for (Day day = period.first; day <= period.last; ++day.serial)
        days.push_back(day);
    return days;
}

std::string LongDate(Day day, const CalendarNames& names) {
    const auto date = YearMonthDay(day);
    return std::to_string(DayNumber(day)) + " " + MonthAndYear(date.year() / date.month(), names);
}

std::string PeriodHeading(const Period& period, PeriodKind kind, const CalendarNames& names) {
    switch (kind) {
        case PeriodKind::Day:
            return NameOfWeekday(names.weekdays, period.first) + ", " + LongDate(period.first, names);
        case PeriodKind::WorkWeek:
        case PeriodKind::Week:
            return SpanHeading(period, names);
        case PeriodKind::MonthGrid:
            return MonthAndYear(MonthOfGrid(period), names);
        case PeriodKind::Year:
            return std::to_string(static_cast<int>(YearMonthDay(period.first).year()));
    }
    return {};
}

std::string DayHeading(Day day, const CalendarNames& names) {
    return NameOfWeekday(names.shortWeekdays, day) + " " + std::to_string(DayNumber(day));
}

std::string EntryTimes(Minutes start, Minutes end, bool allDay) {
    if (allDay) return "00:00-24:00";
    return TimeText(MinuteOfDay(start)) + "-" + TimeText(MinuteOfDay(end));
}

WipedText EntryText(Minutes start, Minutes end, bool allDay, std::string_view subject) {
    return Joined(EntryTimes(start, end, allDay), " ", subject);
}

MonthTable FillMonth(const Period& grid, std::span<const Minutes> minutes, int firstDay, FirstWeek rule) {
    MonthTable table;
    const auto shown = MonthOfGrid(grid);
    for (std::size_t i = 0; i < table.cells.size(); ++i) {
        MonthCell& cell = table.cells[i];
        cell.day = {grid.first.serial + static_cast<std::int32_t>(i)};
        const auto date = YearMonthDay(cell.day);
        cell.label = DayNumber(cell.day);
        cell.ofMonth = date.year() / date.month() == shown;
        if (i % 7 == 0) table.weeks[i / 7] = WeekOfYear(cell.day, firstDay, rule);
    }
    for (std::size_t i = 0; i < minutes.size(); ++i) {
        const std::int64_t at = std::int64_t{DayOf(minutes[i]).serial} - grid.first.serial;
        if (at >= 0 && at < static_cast<std::int64_t>(table.cells.size()))
            table.cells[static_cast<std::size_t>(at)].entries.push_back(i);
    }
    return table;
}

WipedText MonthItemText(Minutes minutes, std::string_view subject) {
    return Joined(TimeText(MinuteOfDay(minutes)), " ", subject);
}

}  // namespace bmr::calendar
