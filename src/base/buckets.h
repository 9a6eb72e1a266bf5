#pragma once

#include <cstdint>

#include "base/random.h"
#include "base/serialdate.h"

namespace bmr {

/// A random point of a bucket, and the bucket's closed bounds.
struct SpreadRange {
    std::int32_t value = 0;
    std::int32_t high = 0;
    std::int32_t low = 0;
};

inline constexpr std::int32_t kMaxLong = 2147483647;

/// A fraction in 0..1 of 31 bits, from two uniform draws: (Int(r * 32768) << 16 | Int(r' * 65536)) /
/// 2147483647.
double RandomFraction(RandomSource& random);

/// Point of bucket `index` among `slots` equal buckets over [min, max]. An index beyond the table is clamped
/// to the last slot; a negative index mirrors into the negative half. The point can land on the next bucket's
/// edge when the draw is within half a unit of 1: nothing guards against that. REQUIRES: slots > 0, min <=
/// max. Draws twice from `random`.
SpreadRange SpreadIndex(std::int32_t index, std::int32_t slots, std::int32_t min, std::int32_t max,
                        RandomSource& random);

/// The same with the fraction `r` given, for the bounds alone and for known answers.
SpreadRange SpreadIndexAt(std::int32_t index, std::int32_t slots, std::int32_t min, std::int32_t max,
                          double r);

/// The bucket of `value`: value \ ((max - min) \ slots), both divisions cutting, the sign of `value` kept.
std::int32_t SlotOf(std::int32_t value, std::int32_t slots, std::int32_t min, std::int32_t max);

/// The three date tables: 1 in fR3, 2 in fR4, 3 in fR2 for appointments; tasks use 2 (due) and 3 (completed).
enum class DateKind : std::uint8_t { Start = 1, First = 2, Last = 3 };

/// A day as a random point of its bucket in the table `kind`. A day beyond the table is clamped to its last
/// slot.
SpreadRange PackDate(Day day, DateKind kind, RandomSource& random);
SpreadRange PackDateAt(Day day, DateKind kind, double r);
Day UnpackDate(std::int32_t value, DateKind kind);

}  // namespace bmr
