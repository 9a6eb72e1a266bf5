#include "base/buckets.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace bmr {
namespace {

struct DateTable {
    std::int32_t base;
    std::int32_t slots;
};

/// All three tables end on 14 April 2069.
constexpr std::array<DateTable, 3> kDateTables = {{{31608, 30225}, {32626, 29207}, {35509, 26324}}};

DateTable TableOf(DateKind kind) {
    return kDateTables[static_cast<std::size_t>(kind) - 1];
}

/// To the nearest whole number, halves to even (the standard rounding mode), clamped to 32 bits.
std::int32_t Round(double value) {
    const double whole = std::nearbyint(value);
    return static_cast<std::int32_t>(std::clamp(whole, -2147483648.0, 2147483647.0));
}

}  // namespace

double RandomFraction(RandomSource& random) {
    const auto high = static_cast<std::uint32_t>(random.Uniform() * 32768);
    const auto low = static_cast<std::uint32_t>(random.Uniform() * 65536);
    return static_cast<double>((high << 16) | low) / kMaxLong;
}

SpreadRange SpreadIndexAt(std::int32_t index, std::int32_t slots, std::int32_t min, std::int32_t max,
                          double r) {
    if (index < 0 && min > 0) index = 0;
    index = std::clamp(index, -(slots - 1), slots - 1);
    const double width = std::floor((static_cast<double>(max) - min) / slots);
    const double sign = index < 0 ? -1 : 1;
    const double place = std::abs(index);
    SpreadRange range;
    range.value = Round(sign * (min + place * width + r * width));
    const std::int32_t inner = Round(sign * (min + place * width));
    const std::int32_t outer = Round(sign * (min + (place + 1) * width - 1));
    range.low = index < 0 ? outer : inner;
    range.high = index < 0 ? inner : outer;
    return range;
}

SpreadRange SpreadIndex(std::int32_t index, std::int32_t slots, std::int32_t min, std::int32_t max,
                        RandomSource& random) {
    return SpreadIndexAt(index, slots, min, max, RandomFraction(random));
}

std::int32_t SlotOf(std::int32_t value, std::int32_t slots, std::int32_t min, std::int32_t max) {
    const std::int64_t width = (static_cast<std::int64_t>(max) - min) / slots;
    return static_cast<std::int32_t>(value / width);
}

SpreadRange PackDateAt(Day day, DateKind kind, double r) {
    const DateTable table = TableOf(kind);
    const std::int64_t last = table.slots - 1;
    const std::int64_t slot = std::clamp<std::int64_t>(std::int64_t{day.serial} - table.base, -last, last);
    return SpreadIndexAt(static_cast<std::int32_t>(slot), table.slots, 0, kMaxLong, r);
}

SpreadRange PackDate(Day day, DateKind kind, RandomSource& random) {
    return PackDateAt(day, kind, RandomFraction(random));
}

Day UnpackDate(std::int32_t value, DateKind kind) {
    const DateTable table = TableOf(kind);
    return {table.base + SlotOf(value, table.slots, 0, kMaxLong)};
}

}  // namespace bmr
