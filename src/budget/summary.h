#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/result.h"
#include "budget/amount.h"
#include "budget/transaction.h"

/// The summary of a period: sums by category and by the four classes of `CDBW`.
namespace bmr::budget {

/// A sum for each class.
using ClassSums = std::array<Money, kClasses>;

/// The nine value columns: public, private and total of credit, debit and balance.
inline constexpr std::size_t kSummaryValues = 9;
using SummaryValues = std::array<Money, kSummaryValues>;
SummaryValues ValuesOf(const ClassSums& sums);
/// Whether a value tells of private entries: it stands empty while those are hidden.
constexpr bool TellsPrivate(std::size_t value) {
    return value % 3 != 0;
}
/// The texts of the nine cells.
std::array<std::string, kSummaryValues> SummaryTexts(const ClassSums& sums, bool showPrivate,
                                                     const AmountFormat& format);

/// The heads of the nine columns, and of the three groups above them.
inline constexpr std::array<std::string_view, 3> kSummaryGroups = {"CREDIT", "DEBIT", "BALANCE"};
inline constexpr std::array<std::string_view, 3> kSummaryHeads = {"Public", "Private", "TOTAL"};

struct SummaryLine {
    std::int32_t category = 0;
    std::string name;  ///< UTF-8
    ClassSums sums{};
};

struct Summary {
    std::vector<SummaryLine> lines;  ///< a line for each category, in the order of the combo; Unfiled is last
    ClassSums totals{};
    std::size_t count = 0;    ///< of all rows
    std::size_t orphans = 0;  ///< of those whose category is deleted
};

/// The categories of a combo that have a line: no negative numbers, and not 9999.
std::vector<SummaryLine> SummaryLines(const store::CategoryList& combo);

/// A row of the query, in the order in which rows were stored.
struct SummaryRow {
    std::int32_t cdbw = 0;
    std::int32_t category = 0;
    Money amount;
};
/// Adds rows up. One of a deleted category goes to the line of the row before it, the first to the first
/// line.
Summary Summarise(std::vector<SummaryLine> lines, const std::vector<SummaryRow>& rows);

/// The statement of a summary, as it is told.
std::string SummaryStatement(std::uint8_t section, Day from, Day to);

/// The summary of a period, both ends within. Opens no payload, and keeps nothing that it deciphered but the
/// sums.
Result<Summary> ReadSummary(store::Session& session, std::uint8_t section, Day from, Day to);

/// The keys of the budget's entries, of whatever day, whose category is deleted.
Result<std::vector<std::int32_t>> OrphanedEntries(store::Session& session, std::uint8_t section);
/// Files them under a category; one step.
store::SeveralOutcome FileOrphans(store::Session& session, std::uint8_t section, std::int32_t category);

}  // namespace bmr::budget
