#include "budget/ledger.h"

#include <gtest/gtest.h>

#include "calendar/months.h"
#include "store/section_store.h"
#include "support/calendar.h"
#include "support/store.h"

namespace bmr::budget {
namespace {

using calendar::RolledDate;
using store::Section;
using test::TempStore;

LedgerFilter FilterOf(const nlohmann::json& c) {
    LedgerFilter filter{.section = c.at("section"), .calDate = {c.at("calDate")}};
    if (!c.at("category").is_null()) filter.category = c.at("category");
    for (std::size_t i = 0; i < filter.show.size(); ++i)
        filter.show[i] = c.at("show")[i] != 0;
    return filter;
}

std::int32_t Add(TempStore& store, Day date, std::int64_t amount, std::int32_t cdbw, std::string_view item,
                 std::int32_t category = 0) {
    Transaction entry;
    entry.date = date;
    entry.amount = {amount};
    entry.cdbw = cdbw;
    entry.isPrivate = (cdbw & kPrivate) != 0;
    entry.description = item;
    entry.category = category;
    EXPECT_EQ(WriteRecord(store.session, Section::Budget1, entry).error, 0);
    return entry.key;
}

std::vector<std::string> Items(const Ledger& ledger) {
    std::vector<std::string> items;
    for (const LedgerRow& row : ledger.rows)
        items.push_back(row.description);
    return items;
}

TEST(LedgerStatements, KnownAnswers) {
    for (const auto& c : test::CalendarVectors("LedgerSql"))
        EXPECT_EQ(LedgerStatement(FilterOf(c)), c.at("out")) << c;
    for (const auto& c : test::CalendarVectors("FilterClick")) {
        BudgetBoxes show{};
        for (std::size_t i = 0; i < show.size(); ++i)
            show[i] = c.at("show")[i] != 0;
        ClickBox(show, c.at("clicked"));
        for (std::size_t i = 0; i < show.size(); ++i)
            EXPECT_EQ(show[i], c.at("out")[i] != 0) << c;
    }
    EXPECT_EQ(WithoutPrivate({true, false, false, true}), (BudgetBoxes{true, false, true, false}));
}

TEST(LedgerSums, KnownAnswers) {
    for (const auto& c : test::CalendarVectors("LedgerSums")) {
        std::vector<LedgerRow> rows;
        for (const auto& each : c.at("rows")) {
            LedgerRow row;
            row.amount = {each.at("amount")};
            row.cdbw = each.at("cdbw");
            if (c.at("showPrivate") || !each.at("private")) rows.push_back(row);
        }
        EXPECT_EQ(SumsOf(rows), (LedgerSums{{c.at("out")[0]}, {c.at("out")[1]}})) << c;
    }
    for (const auto& c : test::CalendarVectors("LedgerColumnClick"))
        EXPECT_EQ(LedgerOrderOf(c.at("column")), (LedgerOrder{c.at("out")[0], c.at("out")[1] != 0})) << c;
}

TEST(Ledgers, ListTheirMonthAndDecipherNothingElse) {
    TempStore store;
    store.session.ShowPrivate = true;
    const Day may = RolledDate(2026, 5, 1);
    Add(store, {may.serial - 1}, 10000, 0, "April");
    Add(store, may, 20000, kDebit, "first");
    Add(store, {may.serial + 30}, 30000, 0, "last");
    Add(store, {may.serial + 31}, 40000, 0, "June");
    Add(store, {may.serial + 10}, 50000, kDebit | kPrivate, "secret", 4);
    const std::uint64_t before = store.session.cipher.deciphered;
    LedgerFilter filter{.calDate = {may.serial + 12}};
    auto ledger = ReadLedger(store.session, filter);
    ASSERT_TRUE(ledger);
    EXPECT_EQ(Items(*ledger), (std::vector<std::string>{"first", "secret", "last"}));
    EXPECT_EQ(store.session.cipher.deciphered - before, 6U);
    EXPECT_EQ(ledger->rows[1].amount, Money{50000});
    EXPECT_EQ(SumsOf(ledger->rows), (LedgerSums{{30000}, {70000}}));

    filter.category = 4;  // no list names it: the entry counts as unfiled
    EXPECT_EQ(ReadLedger(store.session, filter)->rows.size(), 1U);
    filter.category = store::Category::Unfiled;
    EXPECT_EQ(ReadLedger(store.session, filter)->rows.size(), 3U);
    ASSERT_EQ(store::StoreCategories(store.session, {{"Gifts", 4}}, Section::Budget1), 0);
    EXPECT_EQ(ReadLedger(store.session, filter)->rows.size(), 2U);
    filter.category = store::Category::Edit;
    filter.show = {false, true, true, true};
    EXPECT_EQ(Items(*ReadLedger(store.session, filter)), (std::vector<std::string>{"first", "secret"}));
    filter.show = {true, true, false, true};
    EXPECT_EQ(Items(*ReadLedger(store.session, filter)), (std::vector<std::string>{"secret"}));

    // The filter reads the bit, the hiding reads the payload.
    const std::int32_t odd = Add(store, may, 60000, 0, "odd");
    store.Set(odd, "fR1", 4 + kPrivate);
    filter.show = {true, true, true, true};
    store.session.ShowPrivate = false;
    ledger = ReadLedger(store.session, filter);
    EXPECT_EQ(ledger->rows.size(), 3U);
    EXPECT_EQ(ledger->count, 4U);
    filter.show = WithoutPrivate(filter.show);
    EXPECT_EQ(ReadLedger(store.session, filter)->rows.size(), 2U);
}

TEST(Ledgers, DatesBeforeTheTablesBeginningAreFoundToo) {
    TempStore store;
    const Day day = RolledDate(1989, 4, 27);  // the mirrored half begins on that day
    Add(store, day, 10000, 0, "old");
    Add(store, {day.serial + 1}, 10000, 0, "base");
    Add(store, RolledDate(1925, 3, 1), 10000, 0, "oldest");
    EXPECT_EQ(Items(*ReadLedger(store.session, {.calDate = day})), (std::vector<std::string>{"old", "base"}));
    EXPECT_EQ(Items(*ReadLedger(store.session, {.calDate = RolledDate(1925, 3, 31)})),
              (std::vector<std::string>{"oldest"}));
}

TEST(Ledgers, ShowWhatIsToldAndSortAsToldOrByValue) {
    LedgerWords words{.amounts = {",", "."}, .shortDate = "dd.MM.yyyy", .categories = {{"  Food", 2}}};
    LedgerRow row;
    row.date = RolledDate(2026, 5, 3);
    row.amount = {12345678};
    row.cdbw = kDebit | kPrivate;
    row.paymentType = 3;
    row.category = 2;
    row.hasNote = true;
    row.description = "Brot";
    row.partner = "Bäcker";
    const std::array<std::string, LedgerItem::Count> told = {
        "03.05.2026", "Brot", " ", "1.234,57", "CC Visa", "x", "Bäcker", "N", "Food", "046145"};
    for (int i = 0; i < LedgerItem::Count; ++i)
        EXPECT_EQ(LedgerText(row, i, words), told[static_cast<std::size_t>(i)]) << i;
    row.cdbw = 0;
    row.paymentType = 0;
    row.category = 8;
    row.hasNote = false;
    EXPECT_EQ(LedgerText(row, LedgerItem::Credit, words), "1.234,57");
    EXPECT_EQ(LedgerText(row, LedgerItem::Debit, words), " ");
    EXPECT_EQ(LedgerText(row, LedgerItem::Payment, words), "Unfiled");
    EXPECT_EQ(LedgerText(row, LedgerItem::Category, words), "Unfiled");
    EXPECT_EQ(LedgerText(row, LedgerItem::Private, words), " ");
    EXPECT_EQ(LedgerText(row, LedgerItem::Note, words), " ");

    std::vector<LedgerRow> rows;
    for (const std::int64_t amount : {90000, 1000000, 200000}) {
        LedgerRow each;
        each.amount = {amount};
        rows.push_back(std::move(each));
    }
    rows.push_back(LedgerRow{.amount = {5}, .cdbw = kDebit});
    const auto amounts = [&rows] {
        std::vector<std::int64_t> found;
        for (const LedgerRow& each : rows)
            found.push_back(each.amount.tenThousandths);
        return found;
    };
    SortLedger(rows, LedgerOrderOf(3), words, false);
    EXPECT_EQ(amounts(), (std::vector<std::int64_t>{90000, 200000, 1000000, 5}));  // "9,00" "20,00" "100,00"
    SortLedger(rows, LedgerOrderOf(3), words, true);
    EXPECT_EQ(amounts(), (std::vector<std::int64_t>{1000000, 200000, 90000, 5}));
    rows[0].description = "éclair";
    rows[1].description = "Zebra";
    rows[2].description = "apple";
    SortLedger(rows, LedgerOrderOf(2), words, false);
    EXPECT_EQ(rows[1].description, "apple");
    EXPECT_EQ(rows[2].description, "Zebra");
}

}  // namespace
}  // namespace bmr::budget
