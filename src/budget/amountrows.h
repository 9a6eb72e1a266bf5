#pragma once

#include <cstdint>
#include <functional>

#include "base/money.h"
#include "base/serialdate.h"
#include "store/session.h"

namespace bmr::budget {

/// What plain columns and the amount tell of a transaction.
struct AmountRow {
    std::int32_t key = 0;
    std::int32_t cdbw = 0;
    Day date;
    std::int32_t category = 0;  ///< fG1, 0 for none
    Money amount;               ///< 0 where fT1 holds none
};

/// The bounds of fR3 over a span of days.
struct KeyRange {
    std::int32_t low = 0;
    std::int32_t high = 0;
};
KeyRange RangeOf(Day from, Day to);

/// Reads the transactions of a span, both ends within, in any order: no payload is opened, and one amount
/// deciphered for each, many at a time. 0 or the engine's number.
[[nodiscard]] int ForEachAmount(store::Session& session, std::uint8_t section, Day from, Day to,
                                const std::function<void(const AmountRow& row)>& each);

}  // namespace bmr::budget
