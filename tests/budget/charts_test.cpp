#include <gtest/gtest.h>

#include "budget/balance.h"
#include "budget/chart.h"
#include "budget/completion.h"
#include "calendar/months.h"
#include "support/store.h"

namespace bmr::budget {
namespace {

using calendar::RolledDate;
using store::Section;
using test::TempStore;

constexpr std::uint8_t kBudget = Section::Budget1;

std::int32_t Add(TempStore& store, Day date, std::int64_t amount, std::int32_t cdbw,
                 std::int32_t category = 0, std::string_view item = "x", std::string_view partner = "") {
    Transaction entry;
    entry.date = date;
    entry.amount = {amount};
    entry.cdbw = cdbw;
    entry.isPrivate = (cdbw & kPrivate) != 0;
    entry.category = category;
    entry.description = item;
    entry.partner = partner;
    entry.paymentType = category;
    EXPECT_EQ(WriteRecord(store.session, kBudget, entry).error, 0);
    return entry.key;
}

MonthSums ReadAll(TempStore& store) {
    MonthSums sums(kBudget);
    while (!sums.Done())
        EXPECT_EQ(sums.Step(store.session, 1), 0);
    return sums;
}

TEST(Balances, AreCarriedOverExactlyAndRunOn) {
    TempStore store;
    Add(store, RolledDate(1988, 1, 1), 7, 0);
    Add(store, RolledDate(2025, 12, 31), 1000001, 0);
    Add(store, RolledDate(2026, 1, 15), 400000, kDebit);
    Add(store, RolledDate(2026, 1, 31), 5, kDebit | kPrivate);
    Add(store, RolledDate(2026, 2, 1), 90000, 0);
    MonthSums sums(kBudget);
    EXPECT_FALSE(sums.CarriedTo(RolledDate(2026, 2, 10), true));
    sums = ReadAll(store);
    EXPECT_EQ(sums.CarriedTo(RolledDate(2026, 2, 10), true), Money{600003});
    EXPECT_EQ(sums.CarriedTo(RolledDate(2026, 2, 10), false), Money{600008});
    EXPECT_EQ(sums.CarriedTo(RolledDate(2026, 1, 31), true), Money{1000008});
    EXPECT_EQ(sums.CarriedTo(RolledDate(1960, 1, 1), true), Money{0});
    const auto ledger = ReadLedger(store.session, {.calDate = RolledDate(2026, 2, 1)});
    EXPECT_EQ(RunningBalance(ledger->rows, {600003}), std::vector<Money>{{690003}});
    std::vector<LedgerRow> rows(3);
    rows[0].amount = rows[1].amount = rows[2].amount = {50};
    rows[1].cdbw = rows[2].cdbw = kDebit;
    EXPECT_EQ(RunningBalance(rows, {1}), (std::vector<Money>{{51}, {1}, {-49}}));
}

TEST(Balances, StayRightWhileEntriesComeAndGoBeforeTheReadingEnds) {
    TempStore store;
    for (int i = 0; i < 40; ++i)
        Add(store, {32000 + 300 * i}, 10000 + i, i % 2);
    MonthSums sums(kBudget);
    ASSERT_EQ(sums.Step(store.session, 10), 0);
    ASSERT_FALSE(sums.Done());
    // One behind the point that was reached, and one before it.
    for (const Day day : {Day{32010}, Day{43000}}) {
        Add(store, day, 777, 0);
        sums.Count(day, 0, {777}, false);
    }
    while (!sums.Done())
        ASSERT_EQ(sums.Step(store.session, 10), 0);
    const Day end = RolledDate(2060, 1, 1);
    EXPECT_EQ(sums.CarriedTo(end, true), ReadAll(store).CarriedTo(end, true));
    sums.Count({43000}, 0, {777}, true);
    EXPECT_EQ(sums.CarriedTo(end, true)->tenThousandths,
              ReadAll(store).CarriedTo(end, true)->tenThousandths - 777);
}

TEST(Charts, GiveEveryMonthAndRingsThatAddUp) {
    TempStore store;
    store.session.ShowPrivate = true;
    ASSERT_EQ(store::StoreCategories(store.session, {{"A", 1}, {"B", 2}, {"C", 3}}, kBudget), 0);
    Add(store, RolledDate(2026, 1, 31), 30000, 0, 1);
    Add(store, RolledDate(2026, 3, 1), 10000, kDebit, 1);
    Add(store, RolledDate(2026, 3, 2), 10000, kDebit, 2);
    Add(store, RolledDate(2026, 3, 3), 4000, kDebit, 3);
    Add(store, RolledDate(2026, 3, 3), 6000, kDebit, 99);
    Add(store, RolledDate(2026, 3, 31), 70000, kDebit | kPrivate, 3);
    Add(store, RolledDate(2026, 4, 1), 1, 0, 1);
    const Day from = RolledDate(2026, 1, 10), to = RolledDate(2026, 3, 31);
    auto chart = ReadChart(store.session, kBudget, from, to, {5000});
    ASSERT_TRUE(chart);
    ASSERT_EQ(chart->months.size(), 3U);
    EXPECT_EQ(chart->months[0].month, RolledDate(2026, 1, 1));
    EXPECT_EQ(chart->months[0].credit, Money{30000});
    EXPECT_EQ(chart->months[1].balance, Money{35000});
    EXPECT_EQ(chart->months[2].debit, Money{100000});
    EXPECT_EQ(chart->months[2].balance, Money{-65000});
    ASSERT_EQ(chart->debits.size(), 4U);
    EXPECT_EQ(chart->debits[0].category, 3);
    EXPECT_EQ(chart->debits[0].permille, 740);
    EXPECT_EQ(chart->debits.back().category, 0);  // of a category that is gone
    store.session.ShowPrivate = false;
    chart = ReadChart(store.session, kBudget, from, to, {0});
    EXPECT_EQ(chart->months[2].debit, Money{30000});
    ASSERT_EQ(chart->debits.size(), 4U);
    int all = 0;
    for (const RingPart& part : chart->debits)
        all += part.permille;
    EXPECT_EQ(all, 1000);
    EXPECT_EQ(chart->debits[0].permille, 334);
    EXPECT_EQ(chart->debits[1].permille, 333);
    EXPECT_TRUE(ReadChart(store.session, kBudget, to, to, {0})->credits.empty());
}

TEST(ItemCompletions, OfferWhatTheLastEntryHad) {
    TempStore store;
    const Day today = RolledDate(2026, 5, 20);
    Add(store, RolledDate(2024, 5, 31), 1, 0, 1, "Too old");
    Add(store, RolledDate(2024, 6, 1), 1, 0, 1, "Bread", "Mill");
    Add(store, RolledDate(2026, 5, 1), 1, kDebit, 2, "BREAD ", "Corner");
    Add(store, RolledDate(2026, 4, 1), 1, kDebit, 3, "Brätchen");
    Add(store, RolledDate(2026, 4, 1), 1, kDebit | kPrivate, 3, "Bribe");
    Add(store, RolledDate(2026, 4, 1), 1, kDebit, 3, "");
    const auto read = [&] {
        ItemCompletion items(kBudget, today);
        for (int steps = 0; !items.Done(); ++steps) {
            EXPECT_EQ(items.Step(store.session), 0);
            EXPECT_LT(steps, 24);
        }
        return items;
    };
    const ItemCompletion items = read();
    const auto found = items.Matching("br", 10);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0]->item, "BREAD");
    EXPECT_EQ(found[0]->partner, "Corner");
    EXPECT_EQ(found[0]->category, 2);
    EXPECT_EQ(found[0]->paymentType, 2);
    EXPECT_EQ(found[0]->times, 2U);
    EXPECT_EQ(items.Matching("BRÄ", 10).size(), 1U);
    EXPECT_EQ(items.Matching("br", 1).size(), 1U);
    EXPECT_TRUE(items.Matching("", 10).empty());
    EXPECT_EQ(items.Of("bribe"), nullptr);
    EXPECT_EQ(items.Of("too old"), nullptr);
    store.session.ShowPrivate = true;
    EXPECT_NE(read().Of("bribe"), nullptr);
}

}  // namespace
}  // namespace bmr::budget
