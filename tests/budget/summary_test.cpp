#include "budget/summary.h"

#include <gtest/gtest.h>

#include <map>

#include "calendar/months.h"
#include "support/calendar.h"
#include "support/store.h"

namespace bmr::budget {
namespace {

using calendar::RolledDate;
using store::Section;
using test::TempStore;

constexpr std::uint8_t kBudget = Section::Budget2;

Transaction Entry(Day date, std::int64_t amount, std::int32_t cdbw, std::int32_t category) {
    Transaction entry;
    entry.date = date;
    entry.amount = {amount};
    entry.cdbw = cdbw;
    entry.category = category;
    return entry;
}

/// A sum that cannot overflow: whole units and ten-thousandths apart.
struct ExactSum {
    std::int64_t units = 0;
    std::int64_t rest = 0;
    void Add(std::int64_t amount) {
        units += amount / 10000;
        rest += amount % 10000;
    }
    std::int64_t Value() const { return units * 10000 + rest; }
};

TEST(Summaries, KnownAnswers) {
    for (const auto& c : test::CalendarVectors("Summary")) {
        store::CategoryList combo;
        for (const auto& entry : c.at("combo"))
            combo.push_back({entry[1], entry[0]});
        std::vector<SummaryRow> rows;
        for (const auto& row : c.at("rows"))
            rows.push_back({row[0], row[1], {row[2]}});
        const Summary summary = Summarise(SummaryLines(combo), rows);
        const auto& out = c.at("out");
        ASSERT_EQ(summary.lines.size(), out.at("categories").size()) << c;
        for (std::size_t i = 0; i < summary.lines.size(); ++i) {
            EXPECT_EQ(summary.lines[i].category, out.at("categories")[i][0]) << c;
            EXPECT_EQ(summary.lines[i].name, out.at("categories")[i][1]) << c;
            const SummaryValues nine = ValuesOf(summary.lines[i].sums);
            for (std::size_t k = 0; k < nine.size(); ++k)
                EXPECT_EQ(nine[k].tenThousandths, out.at("nine")[i][k]) << c;
        }
        const SummaryValues totals = ValuesOf(summary.totals);
        const auto hidden = SummaryTexts(summary.totals, false, {});
        for (std::size_t k = 0; k < totals.size(); ++k) {
            EXPECT_EQ(totals[k].tenThousandths, out.at("result")[k]) << c;
            EXPECT_EQ(hidden[k].empty(), out.at("resultHidden")[k].is_null()) << c;
        }
    }
    for (const auto& c : test::CalendarVectors("SummarySql"))
        EXPECT_EQ(SummaryStatement(c.at("section"), {c.at("from")}, {c.at("to")}), c.at("out"));
}

TEST(Summaries, SumsOf100000RandomTransactionsAreExact) {
    TempStore store;
    store::CategoryList list;
    for (std::int32_t i = 1; i <= 20; ++i)
        store::InsertCategory(list, {"Category " + std::to_string(i), i});
    ASSERT_EQ(store::StoreCategories(store.session, list, kBudget), 0);
    store.session.undo.recording = false;
    const Day first = RolledDate(2016, 1, 1);
    std::map<std::int32_t, std::array<ExactSum, kClasses>> exact;
    std::array<ExactSum, kClasses> outside;
    std::vector<Transaction> entries;
    entries.reserve(100000);
    test::SeededRandom random(17);
    for (int i = 0; i < 100000; ++i) {
        const auto amount = static_cast<std::int64_t>(random.Uniform() * 0x1p45) - (1 << 20);
        const Day day{first.serial + DrawBelow(random, 3650)};
        const std::int32_t cdbw = DrawBelow(random, 4), category = DrawBelow(random, 21);
        entries.push_back(Entry(day, amount, cdbw, category));
        const bool inside = day >= RolledDate(2018, 3, 5) && day <= RolledDate(2024, 11, 30);
        (inside ? exact[category] : outside)[static_cast<std::size_t>(cdbw)].Add(amount);
    }
    ASSERT_EQ(AddRecords(store.session, kBudget, entries), 0);
    const std::uint64_t before = store.session.cipher.deciphered;
    const auto summary =
        ReadSummary(store.session, kBudget, RolledDate(2018, 3, 5), RolledDate(2024, 11, 30));
    ASSERT_TRUE(summary);
    EXPECT_EQ(summary->orphans, 0U);
    // One amount for each row of the period, the list of categories, and nothing else.
    EXPECT_LE(store.session.cipher.deciphered - before, summary->count + 2);
    ASSERT_EQ(summary->lines.size(), 21U);
    std::array<ExactSum, kClasses> totals;
    for (const SummaryLine& line : summary->lines)
        for (std::size_t k = 0; k < kClasses; ++k) {
            EXPECT_EQ(line.sums[k].tenThousandths, exact[line.category][k].Value()) << line.name;
            totals[k].Add(exact[line.category][k].Value());
        }
    for (std::size_t k = 0; k < kClasses; ++k)
        EXPECT_EQ(summary->totals[k].tenThousandths, totals[k].Value());
    const auto all = ReadSummary(store.session, kBudget, kFirstDay, kLastDay);
    EXPECT_EQ(all->count, 100000U);
    for (std::size_t k = 0; k < kClasses; ++k)
        EXPECT_EQ(all->totals[k].tenThousandths, totals[k].Value() + outside[k].Value());
}

TEST(Summaries, ADeletedCategoryGoesToTheRowStoredBeforeIt) {
    TempStore store;
    ASSERT_EQ(store::StoreCategories(store.session, {{"A", 1}, {"B", 2}}, kBudget), 0);
    // Stored against the order of their days, so that no index gives the right one by chance.
    const Day day = RolledDate(2026, 5, 20);
    std::vector<std::int32_t> keys;
    for (const auto& [amount, category] : std::initializer_list<std::pair<int, int>>{
             {1, 77}, {10, 2}, {100, 77}, {1000, 78}, {10000, 0}, {100000, 77}, {1000000, 1}}) {
        Transaction entry =
            Entry({day.serial - static_cast<std::int32_t>(keys.size())}, amount, kDebit, category);
        ASSERT_EQ(WriteRecord(store.session, kBudget, entry).error, 0);
        keys.push_back(entry.key);
    }
    const auto summary = ReadSummary(store.session, kBudget, {day.serial - 30}, day);
    EXPECT_EQ(summary->orphans, 4U);
    EXPECT_EQ(summary->lines[0].sums[1].tenThousandths, 1000001);  // "A", and what came first of all
    EXPECT_EQ(summary->lines[1].sums[1].tenThousandths, 1110);
    EXPECT_EQ(summary->lines[2].sums[1].tenThousandths, 110000);
    // What lies outside the period is no row before anything.
    const auto part = ReadSummary(store.session, kBudget, {day.serial - 30}, {day.serial - 2});
    EXPECT_EQ(part->lines[0].sums[1].tenThousandths, 1001100);

    EXPECT_EQ(FileOrphans(store.session, kBudget, 2).changed, 4U);
    const auto filed = ReadSummary(store.session, kBudget, {day.serial - 30}, day);
    EXPECT_EQ(filed->orphans, 0U);
    EXPECT_EQ(filed->lines[1].sums[1].tenThousandths, 101111);
    EXPECT_TRUE(OrphanedEntries(store.session, kBudget)->empty());
}

TEST(Summaries, OpenNoPayloadAndShowNothingPrivateWhileItIsHidden) {
    TempStore store;
    Transaction open = Entry({46000}, 15000, 0, 0), secret = Entry({46000}, 25000, kPrivate | kDebit, 0);
    secret.isPrivate = true;
    ASSERT_EQ(WriteRecord(store.session, kBudget, open).error, 0);
    ASSERT_EQ(WriteRecord(store.session, kBudget, secret).error, 0);
    store.Set(open.key, "fEtx", Bytes("damaged"));
    const auto summary = ReadSummary(store.session, kBudget, {46000}, {46000});
    EXPECT_EQ(summary->totals, (ClassSums{Money{15000}, Money{}, Money{}, Money{25000}}));
    const auto shown = SummaryTexts(summary->totals, true, {});
    EXPECT_EQ(shown, (std::array<std::string, 9>{" 1.50", " 0.00", " 1.50", " 0.00", " 2.50", " 2.50",
                                                 " 1.50", " -2.50", " -1.00"}));
    const auto hidden = SummaryTexts(summary->totals, false, {});
    EXPECT_EQ(hidden, (std::array<std::string, 9>{" 1.50", "", "", " 0.00", "", "", " 1.50", "", ""}));
    EXPECT_EQ(ReadSummary(store.session, kBudget, {45000}, {45001})->totals, ClassSums{});
}

}  // namespace
}  // namespace bmr::budget
