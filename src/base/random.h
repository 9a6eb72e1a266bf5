#pragma once

#include <cstdint>
#include <span>

#include "base/bytes.h"

namespace bmr {

/// Where every random number comes from. The system's source is `cry::SystemRandom`.
class RandomSource {
  public:
    virtual ~RandomSource() = default;

    /// Strong random bytes.
    virtual void Fill(std::span<std::uint8_t> out) = 0;

    /// Uniform in [0, 1): selectors, counts and points of buckets.
    virtual double Uniform() = 0;
};

/// Int(uniform * count): 0 to count - 1.
inline std::int32_t DrawBelow(RandomSource& random, std::int32_t count) {
    return static_cast<std::int32_t>(random.Uniform() * count);
}

}  // namespace bmr
