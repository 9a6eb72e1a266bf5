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
    /// Of `backup` and `restore`: the folder; empty: that of the database.
    std::filesystem::path folder;
    /// Of `restore`: also over a database that stands there.
    bool replace = false;
    /// Of `import`: the file of the handheld, whether to store nothing, and to take what looks like a record
    /// that exists too.
    std::filesystem::path palm;
    bool dryRun = false;
    bool withKnown = false;
    std::string section = "todo";
    std::string category;
    std::int32_t fPK = 0;

    /// Of `import` and `export`: the table, how it is read, and what is done with entries that are there.
    std::filesystem::path csv;
    std::string columns;
    std::string decimal;
    std::string dates;

    /// Show secrets in tables too.
    bool plain = false;
    /// Show an address as its card.
    bool card = false;
    /// Of `export` and `import`: the text with tabs, the file of vCards; empty: none.
    std::filesystem::path tab;
    std::filesystem::path vcard;
    /// Of `import`: what is done with a card whose name and number are there: skip, merge or add.
    std::string duplicates = "skip";

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
void RunExport(const Options& options);
void RunImport(const Options& options);
void RunGenerate(const Options& options);
void RunBackup(const Options& options);
void RunRestore(const Options& options);
void RunBackups(const Options& options);

/// What `RunImport` and `RunExport` do by the kind of the file.
void ImportContacts(const Options& options);
void ImportPalm(const Options& options);
void ImportBudget(const Options& options);
void ExportContacts(const Options& options);
void ExportBudget(const Options& options);

/// Of the budgets.
void RunSummary(const Options& options);

/// The day of an option; nothing for an empty text, Failure for what is no date.
std::optional<Day> DayOption(const std::string& option, const std::string& text);

/// `RunList` of a calendar whose rows are not asked for.
void ListOccurrences(const Options& options);
/// The first day of a week, Sunday-based, and all else as in no locale.
LocaleFacts LocaleOf(const Options& options);

}  // namespace bmr::tools
