#include "budget/balance.h"

#include <algorithm>

#include "budget/amountrows.h"
#include "calendar/months.h"

namespace bmr::budget {
namespace {

/// Days that are asked for at once: most slices of a long time are empty, and cost next to nothing.
constexpr std::int32_t kSlice = 92;

}  // namespace

Money BalanceOf(const ClassSums& sums, bool withPrivate) {
    const Money open = Minus(sums[0], sums[kDebit]);
    return withPrivate ? Plus(open, Minus(sums[kPrivate], sums[kDebit | kPrivate])) : open;
}

std::vector<Money> RunningBalance(std::span<const LedgerRow> rows, Money carried) {
    std::vector<Money> balances;
    balances.reserve(rows.size());
    for (const LedgerRow& row : rows) {
        carried = row.IsDebit() ? Minus(carried, row.amount) : Plus(carried, row.amount);
        balances.push_back(carried);
    }
    return balances;
}

MonthSums::MonthSums(std::uint8_t section) : section_(section) {}

int MonthSums::Step(store::Session& session, std::size_t rows) {
    std::size_t read = 0;
    while (!Done() && read < rows) {
        const Day last{std::min(next_.serial + kSlice - 1, kLastDay.serial)};
        const int error = ForEachAmount(session, section_, next_, last, [&](const AmountRow& row) {
            ++read;
            Add(row.date, row.cdbw, row.amount, false);
        });
        if (error != 0) {
            Restart();
            return error;
        }
        next_ = {last.serial + 1};
    }
    return 0;
}

void MonthSums::Count(Day date, std::int32_t cdbw, Money amount, bool gone) {
    if (date < next_) Add(date, cdbw, amount, gone);
}

void MonthSums::Add(Day date, std::int32_t cdbw, Money amount, bool gone) {
    Money& sum = byMonth_[calendar::MonthNumber(date)][static_cast<std::size_t>(cdbw & 3)];
    sum = gone ? Minus(sum, amount) : Plus(sum, amount);
}

void MonthSums::Restart() {
    next_ = kFirstDay;
    byMonth_.clear();
}

std::optional<Money> MonthSums::CarriedTo(Day month, bool withPrivate) const {
    if (!Done()) return std::nullopt;
    Money carried;
    const std::int32_t number = calendar::MonthNumber(month);
    for (const auto& [each, sums] : byMonth_) {
        if (each >= number) break;
        carried = Plus(carried, BalanceOf(sums, withPrivate));
    }
    return carried;
}

}  // namespace bmr::budget
