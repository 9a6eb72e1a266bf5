#pragma once

#include <cstdint>
#include <vector>

#include "base/buckets.h"
#include "base/result.h"
#include "base/serialdate.h"
#include "store/session.h"

/// Where the rows of a day lie.
namespace bmr::diary {

/// The day of a page (fR2, field 1, fT1) lies in the first date table.
inline constexpr DateKind kDateKind = DateKind::Start;
inline Day DayOfPage(std::int32_t fR2) {
    return UnpackDate(fR2, kDateKind);
}
/// A random point of a day's bucket; never one on the edge, which would read as the next day.
std::int32_t PointOf(Day day, RandomSource& random);
/// Whether the file can tell the day; it takes the nearest for any other.
bool IsInTable(Day day);

/// The bounds of fR2 over a span of days.
struct KeyRange {
    std::int32_t low = 0;
    std::int32_t high = 0;
};
KeyRange RangeOf(Day first, Day last);

/// The rows of a day in the order in which they were stored: the last is the one that is shown. Nothing is
/// deciphered, and it does not matter what is hidden.
Result<std::vector<std::int32_t>> KeysOfDay(store::Session& session, Day day);

}  // namespace bmr::diary
