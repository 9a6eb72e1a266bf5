#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/ports.h"
#include "base/serialdate.h"
#include "confidential/generator.h"

namespace bmr::tools {

/// What stood on the command line. Texts in UTF-8.
struct Options {
    std::filesystem::path file;
    int passphraseFd = -1;
    bool json = false;
    /// List private records too, whatever the settings say.
    bool showPrivate = false;
    /// Completed tasks too.
    bool all = false;
    /// Of a list of the calendar: its period as dates, and rows in place of occurrences.
    std::string from;
    std::string to;
    bool rows = false;
    /// The day on which a week begins, "mon" or "sun"; empty: as the locale says.
    std::string week;
    /// Of `archive`: the last day that goes, and the file that keeps it; empty: none.
    std::string until;
    std::filesystem::path archive;
    std::string section = "todo";
    std::string category;
    std::int32_t fPK = 0;

    /// Of `import` and `export`: the table, how it is read, and what is done with entries that are there.
    std::filesystem::path csv;
    std::string columns;
    std::string decimal;
    std::string dates;
    std::string duplicates = "skip";

    /// Show secrets in tables too.
    bool plain = false;

    /// What `add` was given: "NAME=VALUE", and by the sections' short options.
    std::vector<std::string> fields;
    std::map<std::string, std::optional<std::string>> given;
    /// Kind of the record, in sections that have kinds in place of categories.
    std::optional<std::int32_t> kind;
    int secretFd = -1;
    bool makePrivate = false;

    confidential::PasswordRecipe recipe;
};

/// Each runs one command, prints to standard output and throws `Failure`.
void RunNew(const Options& options);
void RunInfo(const Options& options);
void RunList(const Options& options);
void RunShow(const Options& options);
void RunDump(const Options& options);
void RunAdd(const Options& options);
void RunDone(const Options& options);
void RunDelete(const Options& options);
void RunPasswd(const Options& options);
void RunCompact(const Options& options);
void RunCheck(const Options& options);
void RunArchive(const Options& options);
void RunGenerate(const Options& options);

/// Of the budgets.
void RunSummary(const Options& options);
void ImportBudget(const Options& options);
void ExportBudget(const Options& options);

/// The day of an option; nothing for an empty text, Failure for what is no date.
std::optional<Day> DayOption(const std::string& option, const std::string& text);

/// `RunList` of a calendar whose rows are not asked for.
void ListOccurrences(const Options& options);
/// The first day of a week, Sunday-based, and all else as in no locale.
LocaleFacts LocaleOf(const Options& options);

}  // namespace bmr::tools
