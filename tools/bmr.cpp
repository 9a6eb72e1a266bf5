#include <CLI/CLI.hpp>

#include "commands.h"
#include "main_shared.h"
#include "store/sections.h"

namespace {

using bmr::tools::Options;

class CommandLine {
  public:
    CommandLine() : app_("Lists and changes the records of a Brindlemere database.", "bmr") {
        app_.require_subcommand(1);
        app_.set_version_flag("--version", "bmr " BMR_VERSION);
        AddReaders();
        AddWriters();
        AddTables();
        AddWholeFile();
        AddGenerator();
        AddBackups();
    }

    int Run(int argc, char** argv) { return bmr::tools::RunMain(app_, argc, argv); }

  private:
    CLI::App* Command(const char* name, const char* what, void (*run)(const Options&)) {
        CLI::App* command = app_.add_subcommand(name, what);
        command->add_option("FILE", options_.file, "The database")->required();
        command->add_option(
            "--passphrase-fd", options_.passphraseFd,
            "Read the passphrase as one line of this file descriptor; passwd reads the new one "
            "as a second line. Without it the terminal asks.");
        command->callback([this, run] { run(options_); });
        return command;
    }

    CLI::App* Json(CLI::App* command) {
        command->add_flag("--json", options_.json, "JSON instead of a table");
        return command;
    }

    CLI::App* ShowPrivate(CLI::App* command) {
        command->add_flag("--private", options_.showPrivate,
                          "Private records too, even where they are hidden");
        return command;
    }

    CLI::App* Plain(CLI::App* command) {
        command->add_flag("--plain", options_.plain, "Passwords and PINs in the text too (JSON has them)");
        return command;
    }

    CLI::App* Key(CLI::App* command) {
        command->add_option("FPK", options_.fPK, "The record's key")->required();
        return ShowPrivate(command);
    }

    void AddReaders() {
        Json(Command("info", "Tell what the database holds", bmr::tools::RunInfo));
        CLI::App* list = ShowPrivate(Json(Command("list", "List a section", bmr::tools::RunList)));
        list->add_option("SECTION", options_.section, Names(false))->required();
        list->add_option("--category", options_.category, "Only this category");
        list->add_option("--kind", options_.kind, "Only this kind of confidential records, 1 to 16");
        list->add_flag("--all", options_.all, "Completed tasks too");
        list->add_option("--from", options_.from,
                         "calendar: first day, YYYY-MM-DD (today, or a year before --to); budgets and diary: "
                         "the first day of the list");
        list->add_option("--to", options_.to,
                         "calendar: last day, YYYY-MM-DD (a year after --from); budgets and diary: the last "
                         "day of the list");
        list->add_flag("--rows", options_.rows, "calendar: the rows as they stand, a series once");
        Week(list);
        CLI::App* show = Plain(Key(Json(Command("show", "Show one record", bmr::tools::RunShow))));
        show->add_flag("--card", options_.card, "address: head and body of its card");
        Plain(ShowPrivate(Json(Command("dump", "Show every record of every section", bmr::tools::RunDump))));
    }

    void AddWriters() {
        CLI::App* add = Command("add", "Add a record", bmr::tools::RunAdd);
        add->add_option("SECTION", options_.section, Names(true))->required();
        for (const bmr::store::SectionFacts* section : bmr::store::Sections())
            for (const bmr::store::FieldOption& option : section->options)
                AddOption(add, *section, option);
        add->add_option("--field", options_.fields, "Any field by the name that it has in JSON: NAME=VALUE");
        add->add_option("--category", options_.category, "A category that exists");
        add->add_option("--kind", options_.kind, "confidential: the kind, 1 to 16");
        add->add_option("--secret-fd", options_.secretFd,
                        "confidential: read passwords and PINs from this file descriptor, a line for each in "
                        "the order of the fields. Without it the terminal asks.");
        add->add_flag("--private", options_.makePrivate, "Make it a private record");
        Week(add);
        Key(Command("done", "Tick a task", bmr::tools::RunDone));
        Key(Command("delete", "Delete a record", bmr::tools::RunDelete));
    }

    /// Files of other programs, and the sums of a budget.
    void AddTables() {
        CLI::App* in = ShowPrivate(Command(
            "import", "Add the records of a file of another program, all or none", bmr::tools::RunImport));
        in->add_option("SECTION", options_.section, Names(false))->required();
        in->add_option("--vcard", options_.vcard, "address: a file of vCards of version 2.1, 3.0 or 4.0");
        in->add_option("--palm", options_.palm,
                       "memo, todo, calendar: memopad.dat, todo.dat or datebook.dat of a Palm Desktop; what "
                       "became of it is told in JSON");
        in->add_option("--csv", options_.csv, "budgets: a bank's table; what it holds is guessed");
        in->add_option("--category", options_.category, "vCards: for those that name none that exists");
        in->add_option("--duplicates", options_.duplicates,
                       "vCards and tables: what becomes of a card whose name and number are there already, "
                       "of a row that equals an entry in amount within three days (no merge there)")
            ->check(CLI::IsMember({"skip", "merge", "add"}))
            ->capture_default_str();
        in->add_flag("--known", options_.withKnown, "Palm: records that look like one that exists too");
        in->add_option("--columns", options_.columns,
                       "What the columns of a table hold, with commas between: date, item, amount, credit, "
                       "debit, partner, note, category, payment, private, or nothing");
        in->add_option("--decimal", options_.decimal, "Its decimal sign")->check(CLI::IsMember({".", ","}));
        in->add_option("--dates", options_.dates, "How its dates are written")
            ->check(CLI::IsMember({"dmy", "mdy", "ymd"}));
        in->add_flag("--dry-run,--preview", options_.dryRun, "Store nothing, only tell what the file holds");
        Week(in);
        CLI::App* out = ShowPrivate(
            Command("export", "Write records in plain text, outside of the database", bmr::tools::RunExport));
        out->add_option("SECTION", options_.section, "address, budget1, budget2 or budget3")->required();
        out->add_option("--category", options_.category, "Only this category");
        out->add_option("--tab", options_.tab, "address: a file of lines and tabs, replaced in one step");
        out->add_option("--vcard", options_.vcard,
                        "address: a file of vCards of version 4.0, replaced in one step");
        out->add_option("--csv", options_.csv, "budgets: a table, replaced in one step");
        Span(out);
        CLI::App* sums =
            ShowPrivate(Json(Command("summary", "Sums of a budget by category and class (this year to date)",
                                     bmr::tools::RunSummary)));
        sums->add_option("SECTION", options_.section, "budget1, budget2 or budget3")->required();
        Span(sums);
    }

    void Span(CLI::App* command) {
        command->add_option("--from", options_.from, "budgets: first day, YYYY-MM-DD");
        command->add_option("--to", options_.to, "budgets: last day, YYYY-MM-DD");
    }

    void Week(CLI::App* command) {
        command
            ->add_option("--week", options_.week,
                         "calendar: a week begins on mon or sun (as the locale says)")
            ->check(CLI::IsMember({"mon", "sun"}));
    }

    /// Sections may share an option; each has words of its own for it.
    void AddOption(CLI::App* add, const bmr::store::SectionFacts& section,
                   const bmr::store::FieldOption& option) {
        const std::string help = std::string(section.command) + ": " + option.help;
        if (CLI::Option* shared = add->get_option_no_throw(option.option))
            shared->description(shared->get_description() + "; " + help);
        else if (option.flag)
            add->add_flag(
                option.option, [this, name = option.option](std::int64_t) { options_.given[name] = ""; },
                help);
        else
            add->add_option(option.option, options_.given[option.option], help);
    }

    /// The sections' words, with commas between.
    static std::string Names(bool onlyAdding) {
        std::string names;
        for (const bmr::store::SectionFacts* section : bmr::store::Sections())
            if (!onlyAdding || section->add)
                names += (names.empty() ? "" : ", ") + std::string(section->command);
        return names;
    }

    void AddGenerator() {
        CLI::App* generate = app_.add_subcommand("generate", "Print a new password, and its strength");
        auto& recipe = options_.recipe;
        CLI::Option* words =
            generate->add_option("--words", recipe.words, "So many words in place of characters")
                ->check(CLI::Range(2, 20));
        const auto only = [words](CLI::Option* option) { option->excludes(words); };
        only(generate->add_option("--length", recipe.length, "Characters")
                 ->check(CLI::Range(4, 128))
                 ->capture_default_str());
        only(generate->add_flag("!--no-lower", recipe.lower, "No small letters"));
        only(generate->add_flag("!--no-upper", recipe.upper, "No capitals"));
        only(generate->add_flag("!--no-digits", recipe.digits, "No digits"));
        only(generate->add_flag("!--no-punctuation", recipe.punctuation, "No other characters"));
        only(generate->add_flag("--readable", recipe.readable,
                                "Nothing that is easily mistaken: 0 O o 1 l I |"));
        generate->callback([this] { bmr::tools::RunGenerate(options_); });
    }

    void AddWholeFile() {
        Command("new", "Make a new database", bmr::tools::RunNew);
        Command("passwd", "Change the passphrase", bmr::tools::RunPasswd);
        Command("compact", "Repair and compact the file", bmr::tools::RunCompact);
        Command("check", "Check the file and decode every record", bmr::tools::RunCheck);
        CLI::App* archive = ShowPrivate(Command(
            "archive", "Delete old appointments, or move them to an archive", bmr::tools::RunArchive));
        archive->add_option("--until", options_.until, "The last day that goes, YYYY-MM-DD")->required();
        archive->add_option(
            "--to", options_.archive,
            "Keep them in this file, which is made or added to (.bma); without it they are gone");
    }

    /// A backup is as enciphered as its database: nobody is asked for a passphrase.
    CLI::App* KeylessCommand(const char* name, const char* what, const char* file, const char* fileIs,
                             void (*run)(const Options&)) {
        CLI::App* command = app_.add_subcommand(name, what);
        command->add_option(file, options_.file, fileIs)->required();
        command->callback([this, run] { run(options_); });
        return command;
    }

    void AddBackups() {
        KeylessCommand("backup", "Make a compressed backup, and print its path", "FILE", "The database",
                       bmr::tools::RunBackup)
            ->add_option("--to", options_.folder, "Its folder (that of the database)");
        CLI::App* restore =
            KeylessCommand("restore", "Bring a backup back, and print the path of the database", "BACKUP",
                           "The backup", bmr::tools::RunRestore);
        restore->add_option("--to", options_.folder, "The folder of the database (that from which it came)");
        restore->add_flag("--replace", options_.replace,
                          "Over a database that stands there, which is kept as .bmb");
        Json(KeylessCommand("backups", "List the backups of a folder, and test each", "FOLDER", "The folder",
                            bmr::tools::RunBackups));
    }

    CLI::App app_;
    Options options_;
};

}  // namespace

int main(int argc, char** argv) {
    return CommandLine().Run(argc, argv);
}
