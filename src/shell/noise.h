#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/random.h"

namespace bmr::shell {

/// Virtual-key codes from which decoys are drawn. The letters stand in it four times so that a burst looks
/// like writing; the last 31 entries are beyond what a draw reaches.
extern const std::array<std::uint8_t, 135> KeyTable;

/// Entries that a draw can reach: 0 to 103.
inline constexpr std::int32_t kDrawnKeys = 104;
/// Entries below this one (capitals and shifted digits) are sent with Shift.
inline constexpr std::int32_t kShiftedKeys = 36;
inline constexpr int kLongestBurst = 9;

/// One burst of decoys: the first `count` (2 to 9) places of the two arrays.
struct NoisePlan {
    int count = 0;
    std::array<std::uint8_t, 10> NoiseKeys{};   ///< virtual-key codes
    std::array<std::uint8_t, 10> NoiseShift{};  ///< 1: sent with Shift
};

/// Draws the count, then the key of each place.
NoisePlan DrawBurst(RandomSource& random);

/// Draws one place anew, for a key that cannot be sent as it stands (the user holds it down, or the layout
/// lacks it). REQUIRES: place < plan.count.
void RedrawKey(NoisePlan& plan, std::size_t place, RandomSource& random);

}  // namespace bmr::shell
