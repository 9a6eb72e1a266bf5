#pragma once

#include <cstdint>
#include <vector>

#include "base/result.h"
#include "budget/summary.h"

/// The charts as numbers: bars by month, and rings of categories.
namespace bmr::budget {

struct MonthBar {
    Day month;  ///< its first day
    Money credit;
    Money debit;
    Money balance;  ///< at its end, with what was carried over before the period
};

/// A part of a ring. Entries of a deleted category count as unfiled.
struct RingPart {
    std::int32_t category = 0;
    Money amount;
    int permille = 0;  ///< of the ring; all parts together are 1000, unless nothing is there
};

struct ChartFigures {
    std::vector<MonthBar> months = {};   ///< every month of the period, empty ones too
    std::vector<RingPart> credits = {};  ///< largest first; only what lies above 0
    std::vector<RingPart> debits = {};
};

/// Reads a period in one pass, both ends within. Private entries count where `session.ShowPrivate`.
Result<ChartFigures> ReadChart(store::Session& session, std::uint8_t section, Day from, Day to,
                               Money carried);

}  // namespace bmr::budget
