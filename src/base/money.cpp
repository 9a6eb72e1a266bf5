#include "base/money.h"

namespace bmr {

std::string FormatAmount(Money amount) {
    // Unsigned, so that the lowest amount has a magnitude too.
    const bool negative = amount.tenThousandths < 0;
    const auto bits = static_cast<std::uint64_t>(amount.tenThousandths);
    const std::uint64_t magnitude = negative ? 0 - bits : bits;
    const std::uint64_t hundredths = magnitude / 100 + (magnitude % 100 >= 50 ? 1 : 0);
    const std::string cents = std::to_string(100 + hundredths % 100).substr(1);
    return (negative && hundredths != 0 ? "-" : "") + std::to_string(hundredths / 100) + "." + cents;
}

}  // namespace bmr
