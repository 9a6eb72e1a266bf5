#include "base/serialdate.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace bmr {
namespace {

using std::chrono::day;
using std::chrono::days;
using std::chrono::month;
using std::chrono::sys_days;
using std::chrono::year;
using std::chrono::year_month_day;

constexpr sys_days kDayZero = sys_days(year_month_day(year(1899), month(12), day(30)));

/// 1 January of year 1 and 31 December of year 9999. A damaged record may hold any number; one beyond these
/// stays in the calendar.
constexpr std::int32_t kFirstSerial = -693593;
constexpr std::int32_t kLastSerial = 2958465;

}  // namespace

Day DayOf(DateValue date) {
    if (std::isnan(date.serial)) return {};
    return {
        static_cast<std::int32_t>(std::clamp<double>(std::floor(date.serial), kFirstSerial, kLastSerial))};
}

Day DayFrom(year_month_day date) {
    return {static_cast<std::int32_t>((sys_days(date) - kDayZero).count())};
}

year_month_day YearMonthDay(Day day) {
    return {kDayZero + days(std::clamp(day.serial, kFirstSerial, kLastSerial))};
}

std::string IsoDate(Day day) {
    const year_month_day date = YearMonthDay(day);
    std::array<char, 32> text{};
    const int length =
        std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", static_cast<int>(date.year()),
                      static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
    return {text.data(), static_cast<std::size_t>(length)};
}

std::optional<Day> ParseIsoDate(std::string_view text) {
    if (text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
    std::array<int, 3> parts{};
    std::size_t part = 0;
    for (const char c : text) {
        if (c == '-') {
            ++part;
            if (part > 2) return std::nullopt;
        } else if (c >= '0' && c <= '9') {
            parts[part] = parts[part] * 10 + (c - '0');
        } else {
            return std::nullopt;
        }
    }
    const year_month_day date{year(parts[0]), month(static_cast<unsigned>(parts[1])),
                              day(static_cast<unsigned>(parts[2]))};
    if (!date.ok() || parts[0] == 0) return std::nullopt;
    return DayFrom(date);
}

int Weekday(Day day) {
    const int place = (day.serial - 1) % 7;  // serial 1 is a Sunday
    return (place < 0 ? place + 7 : place) + 1;
}

}  // namespace bmr
