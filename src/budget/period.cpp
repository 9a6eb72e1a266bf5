#include "budget/period.h"

#include <algorithm>
#include <cstdlib>

#include "budget/amount.h"
#include "calendar/months.h"

namespace bmr::budget {
namespace {

using calendar::RolledDate;
using calendar::YearOf;

constexpr Day kTotalFrom{36526};  ///< 1 January 2000
constexpr int kLowestYear = 1909;
constexpr int kHighestYear = 2069;
constexpr int kDaysOfWeek = 7;
constexpr int kHalfYear = 26;  ///< in weeks

/// The last day of a month is day 0 of the next.
calendar::Period Months(int year, int first, int last) {
    return {RolledDate(year, first, 1), RolledDate(year, last + 1, 0)};
}

/// A whole number that can be a year; two digits are one of the century around 1980.
std::optional<int> NumberedYear(std::string_view text) {
    const auto number = ParseAmount(text, {});
    if (!number || number->tenThousandths < 0) return std::nullopt;
    const std::int64_t year = (number->tenThousandths + 5000) / 10000;
    if (year < 30) return static_cast<int>(year) + 2000;
    if (year < 100) return static_cast<int>(year) + 1900;
    return year <= 9999 ? std::optional(static_cast<int>(year)) : std::nullopt;
}

int WeekOf(Day day, const WeekRule& weeks) {
    return calendar::WeekOfYear(day, weeks.firstDay, weeks.firstWeek);
}

void ShowWeek(BudgetPeriod& period, int week) {
    period.week = week;
    period.weekText = "W " + std::to_string(week);
}

void ShowYear(BudgetPeriod& period) {
    period.yearText = std::to_string(YearOf(period.from));
}

calendar::Period PeriodOf(int index, int year, Day today, const WeekRule& weeks) {
    const Day thisDay = RolledDate(year, calendar::MonthOf(today), calendar::DayOfMonth(today));
    switch (index) {
        case PeriodButton::Year:
            return Months(year, 1, 12);
        case PeriodButton::YearToDate:
            return {RolledDate(year, 1, 1), thisDay};
        case PeriodButton::Day:
            return {thisDay, thisDay};
        case PeriodButton::Week:
            return {calendar::WeekStart(thisDay, weeks.firstDay), thisDay};
        case PeriodButton::Total:
            return {kTotalFrom, today};
        default:
            break;
    }
    if (index < PeriodButton::FirstQuarter) return Months(year, (index - 1) * 6 + 1, index * 6);
    if (index < PeriodButton::FirstMonth) return Months(year, (index - 3) * 3 + 1, (index - 2) * 3);
    return Months(year, index - 6, index - 6);
}

/// So many weeks from a day to the week of a number.
int WeeksTo(int number, Day from, const WeekRule& weeks) {
    const int between = number - WeekOf(from, weeks);
    if (std::abs(between) <= kHalfYear) return between;
    // The numbers begin anew beside it, as where the last days of December are in week 1: to count through
    // them would lead back into the year before.
    for (const int beside : {1, -1})
        if (WeekOf({from.serial + kDaysOfWeek * beside}, weeks) == number) return beside;
    return 0;
}

/// The same week number of another year, as a whole week. The number of weeks between is not turned round on
/// the way down: it makes up for what the step of the year did.
void StepYearOfWeek(BudgetPeriod& period, int years, const WeekRule& weeks) {
    const int before = WeekOf(period.from, weeks);
    period.from = calendar::PlusMonths(period.from, 12 * years);
    period.from.serial += kDaysOfWeek * WeeksTo(before, period.from, weeks);
    period.from = calendar::WeekStart(period.from, weeks.firstDay);
    period.to = {period.from.serial + kDaysOfWeek - 1};
}

void StepWeek(BudgetPeriod& period, int sign, const WeekRule& weeks) {
    period.from.serial += sign * kDaysOfWeek;
    period.to = {period.from.serial + kDaysOfWeek - 1};
    const int before = period.week;
    ShowWeek(period, WeekOf({period.from.serial + sign * kDaysOfWeek}, weeks));
    if (sign > 0 ? period.week < before : period.week > before) ShowYear(period);
}

}  // namespace

BudgetPeriod FirstPeriod(Day today, const WeekRule& weeks) {
    BudgetPeriod period;
    period.yearText = std::to_string(YearOf(today));
    ChoosePeriod(period, PeriodButton::YearToDate, today, weeks);
    return period;
}

int YearInForce(std::string_view yearText, Day today) {
    return NumberedYear(yearText).value_or(YearOf(today));
}

bool IsYearDoubtful(std::string_view yearText) {
    const auto year = NumberedYear(yearText);
    return !year || *year < kLowestYear || *year > kHighestYear;
}

void ChoosePeriod(BudgetPeriod& period, int index, Day today, const WeekRule& weeks) {
    const auto chosen = PeriodOf(index, YearInForce(period.yearText, today), today, weeks);
    period.from = chosen.first;
    period.to = chosen.last;
    period.pointer = index;
    if (index == PeriodButton::Week) ShowWeek(period, WeekOf(period.to, weeks));
}

void StepPeriod(BudgetPeriod& period, PeriodStep step, bool up, const WeekRule& weeks) {
    const int sign = up ? 1 : -1;
    switch (step) {
        case PeriodStep::Year:
            if (period.pointer == PeriodButton::Week) {
                StepYearOfWeek(period, sign, weeks);
            } else {
                period.from = calendar::PlusMonths(period.from, 12 * sign);
                period.to = calendar::PlusMonths(period.to, 12 * sign);
            }
            ShowYear(period);
            break;
        case PeriodStep::Week:
            StepWeek(period, sign, weeks);
            break;
        case PeriodStep::Day:
            period.from.serial += sign;
            period.to.serial += sign;
            break;
    }
}

void SetFrom(BudgetPeriod& period, Day day) {
    period.from = day;
    period.to = std::max(period.to, day);
}

void SetTo(BudgetPeriod& period, Day day) {
    period.to = day;
    period.from = std::min(period.from, day);
}

void PickDay(BudgetPeriod& period, Day day) {
    period.from = period.to = day;
    ShowYear(period);
}

std::string PeriodCaption(int index, const std::array<std::string, 12>& months) {
    switch (index) {
        case PeriodButton::Year:
            return "YEAR";
        case PeriodButton::YearToDate:
            return "YEAR TO DATE";
        case PeriodButton::Day:
            return "DAY";
        case PeriodButton::Week:
            return "WEEK";
        case PeriodButton::Total:
            return "TOTAL";
        default:
            break;
    }
    const auto month = [&months](int number) -> const std::string& {
        return months.at(static_cast<std::size_t>(number - 1));
    };
    if (index < PeriodButton::FirstQuarter) return month((index - 1) * 6 + 1) + " - " + month(index * 6);
    if (index < PeriodButton::FirstMonth) return "Q" + std::to_string(index - 2);
    return month(index - 6);
}

}  // namespace bmr::budget
