#include <algorithm>
#include <array>
#include <vector>

#include "budget/transaction.h"
#include "calendar/months.h"
#include "sample.h"
#include "store/categories.h"

namespace bmr::tools {
namespace {

using budget::Transaction;
using store::Section;

constexpr std::string_view kCategories[] = {"Food",   "Home",  "Health",  "Travel",
                                            "Income", "Gifts", "Leisure", "Insurance"};

/// What a household has again and again: so many hundredths at least and at most, and how it is paid.
struct Habit {
    std::string_view item;
    std::string_view partner;
    std::int32_t low;
    std::int32_t high;
    std::int32_t category;  ///< from 1, in the order of `kCategories`
    std::int32_t payment;
};
/// Once a month, on a day of its own.
constexpr Habit kMonthly[] = {{"Salary", "Harbour Works", 265000, 285000, 5, 2},
                              {"Rent", "Okoye Estates", 98000, 98000, 2, 2},
                              {"Electricity", "Town works", 6400, 9900, 2, 2},
                              {"Telephone", "Fernruf GmbH", 3490, 3490, 2, 2},
                              {"Health insurance", "Mutual of Porto", 18240, 18240, 8, 2},
                              {"Pocket money", "Mina", 2000, 2000, 6, 1}};
constexpr std::size_t kCredits = 1;  ///< of these, how many come in
constexpr Habit kDaily[] = {{"Groceries", "Corner shop", 850, 9400, 1, 1},
                            {"Bread", "Bäckerei Groß", 220, 980, 1, 1},
                            {"Market", "Saturday market", 600, 3200, 1, 1},
                            {"Petrol", "Quay garage", 3500, 8200, 4, 3},
                            {"Train ticket", "Railway", 480, 12900, 4, 9},
                            {"Pharmacy", "Löwen-Apotheke", 390, 5400, 3, 9},
                            {"Cinema", "Lux", 900, 3600, 7, 4},
                            {"Books", "Librería Sol", 800, 6400, 7, 4},
                            {"Birthday present", "", 1500, 8000, 6, 5},
                            {"Plumber", "Søren Bak", 6000, 24000, 2, 7},
                            {"Restaurant", "Café Meridian", 1800, 9800, 7, 6},
                            {"Shoes", "Schuh-Eck", 3900, 14900, 7, 8}};

int StoreList(SampleContext& context, std::uint8_t section) {
    store::CategoryList list;
    std::int32_t number = 0;
    for (const std::string_view name : kCategories)
        store::InsertCategory(list, {Page(name), ++number});
    return store::StoreCategories(context.session, list, section);
}

Transaction EntryOf(SampleContext& context, const Habit& habit, Day date, bool credit) {
    Transaction entry;
    entry.date = date;
    entry.amount = {std::int64_t{100} * Between(context, habit.low, habit.high)};
    // Now and then to the ten-thousandth, as by a rate of exchange.
    if (Chance(context, 4)) entry.amount.tenThousandths += Between(context, 1, 99);
    entry.isPrivate = Chance(context, 7);
    entry.cdbw = (credit ? 0 : budget::kDebit) | (entry.isPrivate ? budget::kPrivate : 0);
    entry.description = AnyScript(context, std::string(habit.item));
    entry.partner = habit.partner;
    entry.paymentType = habit.payment;
    entry.category = Chance(context, 6) ? store::Category::Unfiled : habit.category;
    if (Chance(context, 12)) entry.note = AnyScript(context, SampleNote(context));
    return entry;
}

/// Whole months back from today, some thirty entries in each, until all are made.
std::vector<Transaction> Household(SampleContext& context, std::int32_t records) {
    constexpr std::int32_t kInMonth = 30;
    std::vector<Transaction> entries;
    const auto wanted = static_cast<std::size_t>(records);
    entries.reserve(wanted);
    const std::int32_t months = std::clamp(records / kInMonth, 1, 480);
    const auto inMonth = static_cast<std::int32_t>(wanted / static_cast<std::size_t>(months)) + 1;
    for (std::int32_t back = 0; entries.size() < wanted; back = (back + 1) % months) {
        const Day first = calendar::PlusMonths(calendar::MonthFirst(context.today), -back);
        const std::int32_t days = calendar::DayOfMonth(calendar::MonthLast(first));
        const auto day = [&] { return Day{first.serial + Between(context, 0, days - 1)}; };
        for (std::int32_t i = 0; i < inMonth && entries.size() < wanted; ++i) {
            const auto regular = static_cast<std::size_t>(i);
            if (regular < std::size(kMonthly))
                entries.push_back(
                    EntryOf(context, kMonthly[regular], {first.serial + i * 3}, regular < kCredits));
            else
                entries.push_back(EntryOf(
                    context, kDaily[static_cast<std::size_t>(DrawBelow(context.random, std::size(kDaily)))],
                    day(), Chance(context, 5)));
        }
    }
    return entries;
}

}  // namespace

int FillBudgets(SampleContext& context, std::int32_t records) {
    // The first is the household's, the others are a club's and a child's.
    const std::int32_t second = records / 6, third = records / 20;
    const std::pair<std::uint8_t, std::int32_t> budgets[] = {
        {Section::Budget1, records - second - third}, {Section::Budget2, second}, {Section::Budget3, third}};
    for (const auto& [section, count] : budgets) {
        if (const int error = StoreList(context, section)) return error;
        auto entries = Household(context, count);
        if (const int error = budget::AddRecords(context.session, section, entries)) return error;
    }
    return 0;
}

}  // namespace bmr::tools
