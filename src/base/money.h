#pragma once

#include <compare>
#include <cstdint>
#include <string>

namespace bmr {

/// An amount in ten-thousandths of a unit. Never a double.
struct Money {
    std::int64_t tenThousandths = 0;
    auto operator<=>(const Money&) const = default;
};

/// The amount by the format "0.00": rounded to hundredths (half away from zero), point as decimal sign.
std::string FormatAmount(Money amount);

}  // namespace bmr
