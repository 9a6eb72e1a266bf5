#include <algorithm>
#include <iostream>

#include "budget/csvimport.h"
#include "budget/ledger.h"
#include "budget/summary.h"
#include "calendar/months.h"
#include "commands.h"
#include "recordjson.h"
#include "recordkinds.h"
#include "sitting.h"
#include "store/categories.h"
#include "terminal.h"

namespace bmr::tools {
namespace {

std::uint8_t BudgetOf(const Options& options) {
    const store::SectionFacts& section = SectionByName(options.section);
    if (section.code < store::Section::Budget1)
        throw Failure("That is for budget1, budget2 and budget3, not for " + options.section + ".");
    return section.code;
}

/// The four sums of a line; private ones are not told while they are hidden.
Json AmountsJson(const budget::ClassSums& sums, bool showPrivate) {
    Json amounts = Json::array();
    for (std::size_t i = 0; i < sums.size(); ++i)
        if (showPrivate || (i & budget::kPrivate) == 0)
            amounts.push_back(budget::ExactText(sums[i]));
        else
            amounts.push_back(nullptr);
    return amounts;
}

Json SummaryJson(const budget::Summary& summary, bool showPrivate) {
    Json lines = Json::array();
    for (const budget::SummaryLine& line : summary.lines)
        lines.push_back({{"number", line.category},
                         {"name", line.name},
                         {"amounts", AmountsJson(line.sums, showPrivate)}});
    return {{"categories", std::move(lines)},
            {"totals", AmountsJson(summary.totals, showPrivate)},
            {"count", summary.count},
            {"deletedCategories", summary.orphans}};
}

void PrintLine(const std::string& name, const std::array<std::string, budget::kSummaryValues>& cells) {
    std::string line = name.substr(0, 24);
    const auto width = static_cast<std::size_t>(std::count_if(
        line.begin(), line.end(), [](char c) { return (static_cast<unsigned>(c) & 0xC0U) != 0x80; }));
    line += std::string(24 - std::min<std::size_t>(width, 24), ' ');
    for (const std::string& cell : cells)
        line += std::string(16 - std::min<std::size_t>(cell.size(), 16), ' ') + cell;
    std::cout << Printable(line) << '\n';
}

void PrintSummary(const budget::Summary& summary, bool showPrivate) {
    std::array<std::string, budget::kSummaryValues> heads;
    for (std::size_t i = 0; i < heads.size(); ++i)
        heads[i] =
            std::string(budget::kSummaryGroups[i / 3]) + " " + std::string(budget::kSummaryHeads[i % 3]);
    PrintLine("Category", heads);
    for (const budget::SummaryLine& line : summary.lines)
        PrintLine(line.name, budget::SummaryTexts(line.sums, showPrivate, {}));
    PrintLine("", budget::SummaryTexts(summary.totals, showPrivate, {}));
    if (summary.orphans > 0)
        std::cout << summary.orphans << " entries are of deleted categories, and stand in others.\n";
}

void SetColumns(const std::string& columns, budget::CsvMapping& mapping) {
    mapping.columns.clear();
    for (std::size_t at = 0; at <= columns.size();) {
        const std::size_t end = std::min(columns.find(',', at), columns.size());
        const std::string name = columns.substr(at, end - at);
        const auto field = budget::CsvFieldNamed(name);
        if (!field && !name.empty()) throw Failure("There is no column \"" + name + "\".");
        mapping.columns.push_back(field.value_or(budget::CsvField::None));
        at = end + 1;
    }
}

budget::CsvMapping MappingOf(const Options& options) {
    const auto preview = budget::PreviewCsv(options.csv, budget::DateOrder::DayMonthYear);
    if (!preview) throw Failure(preview.error().detail);
    budget::CsvMapping mapping = preview->mapping;
    if (!options.columns.empty()) SetColumns(options.columns, mapping);
    if (!options.decimal.empty()) mapping.decimal = options.decimal.front();
    if (options.dates == "dmy") mapping.dates = budget::DateOrder::DayMonthYear;
    if (options.dates == "mdy") mapping.dates = budget::DateOrder::MonthDayYear;
    if (options.dates == "ymd") mapping.dates = budget::DateOrder::YearMonthDay;
    return mapping;
}

}  // namespace

void RunSummary(const Options& options) {
    const std::uint8_t section = BudgetOf(options);
    Sitting sitting(options.passphraseFd);
    sitting.Open(options.file, engine::Access::Read);
    store::Session& session = sitting.session();
    const bool showPrivate = session.ShowPrivate || options.showPrivate;
    const Day today = session.ports.clock.Today();
    const Day to = DayOption("--to", options.to).value_or(today);
    const Day from =
        DayOption("--from", options.from).value_or(calendar::RolledDate(calendar::YearOf(to), 1, 1));
    if (to < from) throw Failure("The period would end before it begins.");
    const auto summary = budget::ReadSummary(session, section, from, to);
    sitting.Check(summary ? 0 : summary.error().number);
    if (options.json)
        std::cout << DumpLine(SummaryJson(*summary, showPrivate), 2) << '\n';
    else
        PrintSummary(*summary, showPrivate);
}

void ImportBudget(const Options& options) {
    const std::uint8_t section = BudgetOf(options);
    if (options.duplicates == "merge") throw Failure("Entries cannot be merged: --duplicates skip or add.");
    const budget::CsvMapping mapping = MappingOf(options);
    auto reading = budget::ReadCsv(options.csv, mapping);
    if (!reading) throw Failure(reading.error().detail);
    if (reading->tooMany)
        throw Failure("The file has more than " + std::to_string(budget::kMostCsvEntries) +
                      " entries: import it in parts.");
    if (reading->entries.empty())
        throw Failure("No row of the file is an entry" +
                      (reading->refused.empty() ? std::string()
                                                : ": " + reading->refused.front().why + " in line " +
                                                      std::to_string(reading->refused.front().line)) +
                      ".");
    Sitting sitting(options.passphraseFd);
    sitting.Open(options.file, options.dryRun ? engine::Access::Read : engine::Access::Write);
    store::Session& session = sitting.session();
    sitting.Check(budget::MarkDuplicates(session, section, reading->entries));
    for (budget::CsvEntry& entry : reading->entries) {
        if (!entry.duplicate) continue;
        entry.ticked = options.duplicates == "add";
        std::cout << "line " << entry.line << ": is there already" << (entry.ticked ? ", added" : "") << '\n';
    }
    for (const budget::CsvRefusal& refusal : reading->refused)
        std::cout << "line " << refusal.line << ": " << refusal.why << '\n';
    if (options.dryRun) {
        std::cout << reading->entries.size() << " entries, " << reading->refusedCount << " refused\n";
        return;
    }
    const auto report = budget::ImportCsv(session, section, reading->entries);
    sitting.Check(report ? 0 : report.error().number);
    std::cout << report->imported << " imported, " << report->leftOut << " left out, "
              << reading->refusedCount << " refused, " << report->categories << " new categories\n";
    sitting.Close();
}

void ExportBudget(const Options& options) {
    const std::uint8_t section = BudgetOf(options);
    Sitting sitting(options.passphraseFd);
    sitting.Open(options.file, engine::Access::Read);
    store::Session& session = sitting.session();
    session.ShowPrivate = session.ShowPrivate || options.showPrivate;
    budget::LedgerFilter filter{.section = section};
    if (!options.category.empty()) filter.category = CategoryByName(session, section, options.category);
    const auto ledger =
        budget::ReadLedgerSpan(session, filter, DayOption("--from", options.from).value_or(budget::kFirstDay),
                               DayOption("--to", options.to).value_or(budget::kLastDay));
    sitting.Check(ledger ? 0 : ledger.error().number);
    std::vector<std::int32_t> keys;
    for (const budget::LedgerRow& row : ledger->rows)
        keys.push_back(row.key);
    const auto written = budget::ExportCsv(session, section, keys, options.csv, '.');
    if (!written) throw Failure(written.error().detail);
    std::cout << *written << " exported\n";
}

}  // namespace bmr::tools
