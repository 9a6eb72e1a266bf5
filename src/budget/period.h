#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/serialdate.h"
#include "calendar/periods.h"

/// The period of the summary: how its 23 buttons and its steps set it. Pure functions of the state, the day
/// and the locale's weeks.
namespace bmr::budget {

/// The buttons `cPeriod`, by their indexes.
struct PeriodButton {
    static constexpr int Year = 0;
    static constexpr int FirstHalf = 1;
    static constexpr int FirstQuarter = 3;
    static constexpr int FirstMonth = 7;
    static constexpr int YearToDate = 19;
    static constexpr int Day = 20;
    static constexpr int Week = 21;
    static constexpr int Total = 22;
    static constexpr int Count = 23;
};

/// What `cmdUp` and `cmdDown` step by, by their indexes.
enum class PeriodStep : std::uint8_t { Year = 0, Week = 1, Day = 2 };

/// How the locale counts weeks.
struct WeekRule {
    int firstDay = 1;  ///< 1 = Sunday to 7 = Saturday
    calendar::FirstWeek firstWeek = calendar::FirstWeek::WithNewYear;
};

struct BudgetPeriod {
    Day from;  ///< `ctlFrom`; both ends lie within
    Day to;
    int pointer = PeriodButton::YearToDate;  ///< `Pointer.Tag`, the button in force
    std::string yearText;                    ///< `cTimeRange(0)`, as it stands or was typed
    std::string weekText;                    ///< `cTimeRange(1)`, "W 50"
    /// The week that the label names; it runs a week ahead of the period after a step.
    int week = 0;

    bool YearShown() const { return pointer != PeriodButton::Day; }
    bool WeekShown() const { return pointer == PeriodButton::Week; }
};

/// The state at load: the year of today, period button 19.
BudgetPeriod FirstPeriod(Day today, const WeekRule& weeks);

/// The number in `cTimeRange(0)`: any numeric text that can be a year counts (0 to 29 as 2000 to 2029, 30 to
/// 99 as the years before), else the year of today.
int YearInForce(std::string_view yearText, Day today);
/// Whether the text is marked: no number, or a year outside 1909 to 2069.
bool IsYearDoubtful(std::string_view yearText);

/// A click on `cPeriod(index)`.
void ChoosePeriod(BudgetPeriod& period, int index, Day today, const WeekRule& weeks);
/// `cmdUp`, and `cmdDown` where `up` is false.
void StepPeriod(BudgetPeriod& period, PeriodStep step, bool up, const WeekRule& weeks);
/// A date typed in `ctlFrom` or `ctlTo`: the other end gives way.
void SetFrom(BudgetPeriod& period, Day day);
void SetTo(BudgetPeriod& period, Day day);
/// A click on a day of `ctlCalendar`.
void PickDay(BudgetPeriod& period, Day day);

/// The caption of a button, UTF-8, with a locale's names of months, which are given in capitals.
std::string PeriodCaption(int index, const std::array<std::string, 12>& months);

}  // namespace bmr::budget
