#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <vector>

#include "base/result.h"
#include "budget/ledger.h"
#include "budget/summary.h"

/// The running balance, and what a month carries over from those before it.
namespace bmr::budget {

/// Credit less debit of what may be counted: all classes, or the public ones alone.
Money BalanceOf(const ClassSums& sums, bool withPrivate);

/// The balance behind each of the rows, which stand by their dates; exact, not of the rounded texts.
std::vector<Money> RunningBalance(std::span<const LedgerRow> rows, Money carried);

/// The sums of all months of a budget, worked out once in a sitting, a slice at a time, so that a window can
/// have it done while nobody waits. Amounts alone are deciphered, and only sums are kept.
class MonthSums {
  public:
    explicit MonthSums(std::uint8_t section);

    std::uint8_t section() const { return section_; }
    bool Done() const { return next_ > kLastDay; }
    /// Reads on until about so many rows have come. 0 or an error number; then it begins anew.
    [[nodiscard]] int Step(store::Session& session, std::size_t rows = 4000);
    /// An entry was stored (or went, where `gone`): what was read already is kept right without another
    /// reading, and what was not will be read as it stands then.
    void Count(Day date, std::int32_t cdbw, Money amount, bool gone);
    /// Begins anew, as after steps were taken back.
    void Restart();

    /// The balance of all days before that one's month; nothing before it is `Done`.
    std::optional<Money> CarriedTo(Day month, bool withPrivate) const;

  private:
    void Add(Day date, std::int32_t cdbw, Money amount, bool gone);

    std::uint8_t section_;
    Day next_ = kFirstDay;                       ///< the first day that was not read yet
    std::map<std::int32_t, ClassSums> byMonth_;  ///< by `calendar::MonthNumber`
};

}  // namespace bmr::budget
