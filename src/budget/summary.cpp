#include "budget/summary.h"

#include <algorithm>
#include <unordered_map>

#include "budget/amountrows.h"

namespace bmr::budget {
namespace {

using store::Session;

/// The lines by their categories.
class LineIndex {
  public:
    explicit LineIndex(const std::vector<SummaryLine>& lines) {
        for (std::size_t i = 0; i < lines.size(); ++i)
            places_.try_emplace(lines[i].category, i);
    }
    std::optional<std::size_t> Of(std::int32_t category) const {
        const auto found = places_.find(category);
        return found == places_.end() ? std::nullopt : std::optional(found->second);
    }

  private:
    std::unordered_map<std::int32_t, std::size_t> places_;
};

void AddTo(ClassSums& sums, std::int32_t cdbw, Money amount) {
    Money& sum = sums[static_cast<std::size_t>(cdbw & 3)];
    sum = Plus(sum, amount);
}

using Orphans = std::unordered_map<std::int32_t, SummaryRow>;

/// Adds the orphans up, each to the line of the row stored before it. Nothing is deciphered. Rows of one
/// section come in the order in which they were stored, as long as the days are no way in: hence the sum.
int AddOrphans(Session& session, std::uint8_t section, const KeyRange& range, const LineIndex& index,
               const Orphans& orphans, Summary& summary) {
    auto cursor =
        session.ProgramDb->Select("SELECT fPK, fG1 FROM tt WHERE fSec=? And ((fR3 + 0) Between ? And ?)",
                                  {section, range.low, range.high});
    if (!cursor) return cursor.error().number;
    std::size_t line = 0;
    while (cursor->Next()) {
        line = index.Of(cursor->Int(1)).value_or(line);
        const auto orphan = orphans.find(cursor->Int(0));
        if (orphan != orphans.end())
            AddTo(summary.lines[line].sums, orphan->second.cdbw, orphan->second.amount);
    }
    return cursor->error();
}

}  // namespace

SummaryValues ValuesOf(const ClassSums& sums) {
    const Money credit = Plus(sums[0], sums[kPrivate]);
    const Money debit = Plus(sums[kDebit], sums[kDebit | kPrivate]);
    return {sums[0],
            sums[kPrivate],
            credit,
            sums[kDebit],
            sums[kDebit | kPrivate],
            debit,
            Minus(sums[0], sums[kDebit]),
            Minus(sums[kPrivate], sums[kDebit | kPrivate]),
            Minus(credit, debit)};
}

std::array<std::string, kSummaryValues> SummaryTexts(const ClassSums& sums, bool showPrivate,
                                                     const AmountFormat& format) {
    const SummaryValues values = ValuesOf(sums);
    std::array<std::string, kSummaryValues> texts;
    for (std::size_t i = 0; i < texts.size(); ++i)
        if (showPrivate || !TellsPrivate(i)) texts[i] = SumText(values[i], format);
    return texts;
}

std::vector<SummaryLine> SummaryLines(const store::CategoryList& combo) {
    std::vector<SummaryLine> lines;
    for (const store::CategoryEntry& entry : combo)
        if (entry.number >= 0 && entry.number != store::Category::Edit)
            lines.push_back({entry.number, ToUtf8(TrimBlanks(entry.text)), {}});
    return lines;
}

Summary Summarise(std::vector<SummaryLine> lines, const std::vector<SummaryRow>& rows) {
    Summary summary{.lines = std::move(lines)};
    const LineIndex index(summary.lines);
    std::size_t line = 0;
    for (const SummaryRow& row : rows) {
        const auto found = index.Of(row.category);
        line = found.value_or(line);
        if (!found) ++summary.orphans;
        if (line < summary.lines.size()) AddTo(summary.lines[line].sums, row.cdbw, row.amount);
        AddTo(summary.totals, row.cdbw, row.amount);
        ++summary.count;
    }
    return summary;
}

std::string SummaryStatement(std::uint8_t section, Day from, Day to) {
    const KeyRange range = RangeOf(from, to);
    return "SELECT [fR1] Mod 4 AS CDBW, fT1, fG1 FROM tt WHERE ((fR3 Between " + std::to_string(range.low) +
           " And " + std::to_string(range.high) + ") AND (fSec=" + std::to_string(section) + "));";
}

Result<Summary> ReadSummary(Session& session, std::uint8_t section, Day from, Day to) {
    Summary summary{.lines = SummaryLines(store::FillCategories(session, section, true, true, true))};
    const LineIndex index(summary.lines);
    Orphans orphans;
    const auto failed = [&session](int error) { return Error{error, session.ProgramDb->LastError()}; };
    const int error = ForEachAmount(session, section, from, to, [&](const AmountRow& row) {
        ++summary.count;
        AddTo(summary.totals, row.cdbw, row.amount);
        if (const auto line = index.Of(row.category))
            AddTo(summary.lines[*line].sums, row.cdbw, row.amount);
        else
            orphans[row.key] = {row.cdbw, row.category, row.amount};
    });
    if (error != 0) return failed(error);
    summary.orphans = orphans.size();
    // Sums do not hang on the order of rows, but for these.
    if (!orphans.empty())
        if (const int failure = AddOrphans(session, section, RangeOf(from, to), index, orphans, summary))
            return failed(failure);
    return summary;
}

Result<std::vector<std::int32_t>> OrphanedEntries(Session& session, std::uint8_t section) {
    auto cursor = session.ProgramDb->Select(
        "SELECT fPK FROM tt WHERE fSec=" + std::to_string(section) +
        store::CategoryClause(session, section, store::Category::Unfiled) + " And fG1 <> 0");
    if (!cursor) return cursor.error();
    std::vector<std::int32_t> keys;
    // A list that cannot be read has no entry that would be missing.
    if (store::CategoriesUnread(session, section)) return keys;
    while (cursor->Next())
        keys.push_back(cursor->Int(0));
    if (cursor->error() != 0) return Error{cursor->error(), session.ProgramDb->LastError()};
    return keys;
}

store::SeveralOutcome FileOrphans(Session& session, std::uint8_t section, std::int32_t category) {
    const auto keys = OrphanedEntries(session, section);
    if (!keys) return {.error = keys.error().number};
    return MoveSeveral(session, section, *keys, category);
}

}  // namespace bmr::budget
