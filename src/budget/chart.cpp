#include "budget/chart.h"

#include <algorithm>
#include <map>
#include <unordered_set>

#include "budget/amountrows.h"
#include "calendar/calendar.h"
#include "calendar/months.h"

namespace bmr::budget {
namespace {

using ByCategory = std::map<std::int32_t, Money>;

/// Whole thousandths that come to 1000: the largest remainders are rounded up.
void ShareOut(std::vector<RingPart>& parts) {
    long double all = 0;
    for (const RingPart& part : parts)
        all += static_cast<long double>(part.amount.tenThousandths);
    std::vector<std::pair<long double, std::size_t>> rests;
    int left = 1000;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const long double exact = 1000 * static_cast<long double>(parts[i].amount.tenThousandths) / all;
        parts[i].permille = static_cast<int>(exact);
        left -= parts[i].permille;
        rests.emplace_back(exact - parts[i].permille, i);
    }
    std::ranges::stable_sort(rests, std::greater(), &std::pair<long double, std::size_t>::first);
    for (std::size_t i = 0; i < rests.size() && left > 0; ++i, --left)
        ++parts[rests[i].second].permille;
}

std::vector<RingPart> RingOf(const ByCategory& sums) {
    std::vector<RingPart> parts;
    for (const auto& [category, amount] : sums)
        if (amount > Money{}) parts.push_back({category, amount, 0});
    std::ranges::stable_sort(parts, std::greater(), &RingPart::amount);
    ShareOut(parts);
    return parts;
}

std::vector<MonthBar> EmptyBars(Day from, Day to) {
    std::vector<MonthBar> bars;
    for (Day month = calendar::MonthFirst(from); month <= to; month = calendar::PlusMonths(month, 1))
        bars.push_back({month, {}, {}, {}});
    return bars;
}

}  // namespace

Result<ChartFigures> ReadChart(store::Session& session, std::uint8_t section, Day from, Day to,
                               Money carried) {
    ChartFigures figures{.months = EmptyBars(from, to)};
    std::unordered_set<std::int32_t> known;
    for (const auto& entry : store::FillCategories(session, section, false, false, false))
        known.insert(entry.number);
    ByCategory credits, debits;
    const std::int32_t first = calendar::MonthNumber(from);
    const int error = ForEachAmount(session, section, from, to, [&](const AmountRow& row) {
        if (!session.ShowPrivate && (row.cdbw & kPrivate) != 0) return;
        const bool debit = (row.cdbw & kDebit) != 0;
        const auto at = static_cast<std::size_t>(calendar::MonthNumber(row.date) - first);
        if (at >= figures.months.size()) return;  // a point on the edge of its bucket
        Money& bar = debit ? figures.months[at].debit : figures.months[at].credit;
        bar = Plus(bar, row.amount);
        const std::int32_t category = known.contains(row.category) ? row.category : store::Category::Unfiled;
        Money& part = (debit ? debits : credits)[category];
        part = Plus(part, row.amount);
    });
    if (error != 0) return Error{error, session.ProgramDb->LastError()};
    for (MonthBar& bar : figures.months)
        carried = bar.balance = Minus(Plus(carried, bar.credit), bar.debit);
    figures.credits = RingOf(credits);
    figures.debits = RingOf(debits);
    return figures;
}

}  // namespace bmr::budget
