#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/random.h"
#include "calendar/recurrence.h"
#include "interchange/palmfile.h"

namespace bmr::interchange {

/// A moment of a file: seconds since 1970, local.
calendar::Minutes PalmMinutes(std::uint32_t seconds);
Day PalmDay(std::uint32_t seconds);

/// The last day that dates of ours reach.
inline constexpr Day kLastDay{calendar::kUpperLimit.serial - 1};

/// A repeat of a file as a series of ours.
struct PalmSeries {
    Bytes redoString;  ///< empty: the appointment is single
    Day start;         ///< the day of its first occurrence, which may lie behind the appointment's
    std::vector<std::string> remarks;  ///< what came out otherwise than it was, in plain English
};

/// `start`: the day of the appointment, not behind `kLastDay`. `random` draws the last day of a series
/// without an end.
PalmSeries MapPalmRepeat(const PalmRepeat& repeat, Day start, const LocaleFacts& locale,
                         RandomSource& random);

}  // namespace bmr::interchange
