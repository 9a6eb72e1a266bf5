#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "budget/amount.h"
#include "budget/transaction.h"
#include "shell/preferences.h"

/// The ledger: the transactions of a month in their list.
namespace bmr::budget {

/// The boxes `showCDBW`: Credit, Debit, Public, Private.
using shell::BudgetBoxes;

/// A click on a box: it turns, and one of its pair stays on.
void ClickBox(BudgetBoxes& show, std::size_t box);
/// The pair of the private flag while private records are hidden: Public alone.
BudgetBoxes WithoutPrivate(BudgetBoxes show);

/// Which transactions are listed.
struct LedgerFilter {
    std::uint8_t section = store::Section::Budget1;
    std::int32_t category = store::Category::All;  ///< 9999 and -1: all
    BudgetBoxes show = {true, true, true, true};
    Day calDate = {};  ///< any day of the month
};

/// The statement of a ledger, as it is told.
std::string LedgerStatement(const LedgerFilter& filter);
/// What the filter asks beside section and days: " And fG1 = 3 And (((fR1 Mod 4) Mod 2) =1) ". Unfiled is
/// what carries no number of the budget's list.
std::string LedgerClauses(store::Session& session, const LedgerFilter& filter);

/// A row of the list.
struct LedgerRow {
    std::int32_t key = 0;
    Day date;
    Money amount;
    std::int32_t cdbw = 0;
    std::int32_t paymentType = 0;
    std::int32_t category = 0;
    bool hasNote = false;
    bool isPrivate = false;  ///< by the payload
    WipedText description;
    WipedText partner;

    bool IsDebit() const { return (cdbw & kDebit) != 0; }
};

struct Ledger {
    std::vector<LedgerRow> rows;  ///< by fR3, without what is hidden
    std::size_t count = 0;        ///< of the query, what is hidden included
};

/// Reads the month of a filter, and nothing outside it: payload and amount of each row, deciphered together.
Result<Ledger> ReadLedger(store::Session& session, const LedgerFilter& filter);
/// The same of any span of days.
Result<Ledger> ReadLedgerSpan(store::Session& session, const LedgerFilter& filter, Day from, Day to);

/// Sub-items of a row; 0 is its main text.
struct LedgerItem {
    static constexpr int Date = 0;
    static constexpr int Item = 1;
    static constexpr int Credit = 2;
    static constexpr int Debit = 3;
    static constexpr int Payment = 4;
    static constexpr int Private = 5;
    static constexpr int Partner = 6;
    static constexpr int Note = 7;
    static constexpr int Category = 8;
    static constexpr int DateKey = 9;
    static constexpr int Count = 10;
};

struct LedgerColumn {
    std::string_view header;
    int width = 0;  ///< proportion at first; 0 a column that is not shown, -1 as wide as its texts
};
extern const std::array<LedgerColumn, LedgerItem::Count> kLedgerColumns;

/// What texts of the list depend on beside their row.
struct LedgerWords {
    AmountFormat amounts;
    std::string shortDate = "yyyy-MM-dd";
    store::CategoryList categories;
};

/// The text of a sub-item, UTF-8.
WipedText LedgerText(const LedgerRow& row, int subItem, const LedgerWords& words);

/// The two sums below the list, formed of the rounded amounts that its rows show.
struct LedgerSums {
    Money credit;
    Money debit;
    bool operator==(const LedgerSums&) const = default;
};
LedgerSums SumsOf(std::span<const LedgerRow> rows);

struct LedgerOrder {
    int subItem = LedgerItem::DateKey;
    bool descending = false;
    bool operator==(const LedgerOrder&) const = default;
};
/// What a click on the head of column `number` (1 is "Date") sorts by.
LedgerOrder LedgerOrderOf(int number);

/// Sorts by the text of a sub-item, without regard to case; equal texts keep their order. `byValue`: amounts
/// by what they are, not by their texts.
void SortLedger(std::vector<LedgerRow>& rows, LedgerOrder order, const LedgerWords& words, bool byValue);

}  // namespace bmr::budget
