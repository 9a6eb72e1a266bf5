#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "budget/csv.h"
#include "budget/transaction.h"

/// A bank's table into a budget.
namespace bmr::budget {

/// What a column of a file holds.
enum class CsvField : std::uint8_t {
    None,
    Date,
    Item,
    Amount,  ///< credit above 0, debit below
    Credit,
    Debit,
    Partner,
    Note,
    Category,
    Payment,
    Private,
};
inline constexpr std::array<std::string_view, 11> kCsvFieldNames = {
    "", "date", "item", "amount", "credit", "debit", "partner", "note", "category", "payment", "private"};
/// The field of such a name; nothing for another word.
std::optional<CsvField> CsvFieldNamed(std::string_view name);

/// In which order dates are written. A year of four digits in front is understood in every order.
enum class DateOrder : std::uint8_t { DayMonthYear, MonthDayYear, YearMonthDay };

/// How the rows of a file are understood. All of it is guessed, and can be changed.
struct CsvMapping {
    CsvForm form;
    std::size_t headRows = 0;  ///< rows in front of the first entry: heads, and what a bank says before
    std::vector<CsvField> columns;
    char decimal = '.';  ///< '.' or ','
    DateOrder dates = DateOrder::DayMonthYear;
};

/// The rows that a person judges a mapping by.
inline constexpr std::size_t kPreviewRows = 20;
struct CsvPreview {
    CsvMapping mapping;
    std::vector<CsvRow> rows;  ///< behind the head rows, up to `kPreviewRows`
    CsvRow heads;              ///< the last head row; empty without one
};

/// The file's beginning, with everything guessed. An error with words where the file cannot be read or holds
/// nothing.
Result<CsvPreview> PreviewCsv(const std::filesystem::path& path, DateOrder localeOrder);
/// The same under a form that a person chose.
Result<CsvPreview> PreviewCsv(const std::filesystem::path& path, CsvForm form, DateOrder localeOrder);

/// A date as banks write them: numbers with anything between, eight digits, English names of months.
std::optional<Day> ParseCsvDate(std::string_view text, DateOrder order);
/// An amount with a currency, blanks, any grouping, a sign in front or behind, parentheses, or CR, DR, H, S
/// behind; decimal sign as told.
std::optional<Money> ParseCsvAmount(std::string_view text, char decimal);

/// An entry that a file tells of.
struct CsvEntry {
    std::size_t line = 0;  ///< of the file
    Transaction transaction;
    WipedText categoryName;  ///< UTF-8, merged by name when it is stored
    bool duplicate = false;  ///< the budget has an entry of the same amount within three days
    bool ticked = true;      ///< to be stored; a duplicate is not unless a person ticks it
};
struct CsvRefusal {
    std::size_t line = 0;
    std::string why;
};

/// The most entries that are read from one file.
inline constexpr std::size_t kMostCsvEntries = 200000;

struct CsvReading {
    std::vector<CsvEntry> entries;
    std::vector<CsvRefusal> refused;  ///< rows that are no entry; at most so many as fit a report
    std::size_t refusedCount = 0;
    std::size_t doubtful = 0;  ///< rows of which not everything was read
    bool tooMany = false;      ///< the file goes on behind the most that are read
};
/// Reads a file by its mapping; memory is bounded whatever its size. What does not fit a field is refused.
Result<CsvReading> ReadCsv(const std::filesystem::path& path, const CsvMapping& mapping);

/// Marks the entries that equal one of the budget in side and amount within three days, and takes their
/// ticks. No payload is opened. 0 or the engine's number.
[[nodiscard]] int MarkDuplicates(store::Session& session, std::uint8_t section,
                                 std::vector<CsvEntry>& entries);

struct CsvReport {
    std::size_t imported = 0;
    std::size_t leftOut = 0;     ///< without a tick
    std::size_t categories = 0;  ///< that were added to the list
    std::size_t unfiled = 0;     ///< entries whose category found no room in it
};
/// Stores the ticked entries and the categories that are new, in one transaction and one step.
Result<CsvReport> ImportCsv(store::Session& session, std::uint8_t section, std::vector<CsvEntry>& entries);

/// Writes entries in the order of their keys as a file of their own, readable by its owner alone, which takes
/// the place of one of that name in one step. How many; an error leaves what was there. The separator goes by
/// the decimal sign.
Result<std::size_t> ExportCsv(store::Session& session, std::uint8_t section, store::Keys keys,
                              const std::filesystem::path& path, char decimal);

/// The heads of an export, and its rows: a file that `PreviewCsv` understands whole.
CsvRow CsvHeads();
CsvRow CsvRowOf(const Transaction& transaction, const store::CategoryList& categories, char decimal);

}  // namespace bmr::budget
