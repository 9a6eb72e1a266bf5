#pragma once

#include <chrono>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace bmr {

/// Days since 30 December 1899; the fraction is the time of day. Local wall-clock time, no zone.
struct DateValue {
    double serial = 0;
    auto operator<=>(const DateValue&) const = default;
};

/// A whole day as its serial: days since 30 December 1899. 0 stands for no date in records.
struct Day {
    std::int32_t serial = 0;
    auto operator<=>(const Day&) const = default;
};

/// The whole day of a date value.
Day DayOf(DateValue date);

Day DayFrom(std::chrono::year_month_day date);
std::chrono::year_month_day YearMonthDay(Day day);

/// "2026-11-21"; and back, nothing for a text that is no real date of that form.
std::string IsoDate(Day day);
std::optional<Day> ParseIsoDate(std::string_view text);

/// Sunday-based weekday, 1 = Sunday to 7 = Saturday.
int Weekday(Day day);

}  // namespace bmr
