#pragma once

#include <cstdint>

#include "base/serialdate.h"

namespace bmr {

/// The time of the outside world, so that tests can stand still in it.
class Clock {
  public:
    virtual ~Clock() = default;

    /// Local wall-clock time.
    virtual DateValue Now() const = 0;

    /// Milliseconds of a clock that never goes back and counts the time that the machine was suspended.
    virtual std::int64_t MonotonicMs() const = 0;

    Day Today() const { return DayOf(Now()); }
};

/// The machine's clocks.
class SystemClock final : public Clock {
  public:
    DateValue Now() const override;
    std::int64_t MonotonicMs() const override;
};

}  // namespace bmr
