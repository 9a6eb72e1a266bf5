#include <CLI/CLI.hpp>

#include "commands.h"
#include "main_shared.h"

namespace {

using bmr::tools::Options;

class CommandLine {
  public:
    CommandLine() : app_("Lists and changes the records of a Brindlemere database.", "bmr") {
        app_.require_subcommand(1);
        AddReaders();
        AddWriters();
        AddWholeFile();
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

    CLI::App* Key(CLI::App* command) {
        command->add_option("FPK", options_.fPK, "The record's key")->required();
        return ShowPrivate(command);
    }

    void AddReaders() {
        Json(Command("info", "Tell what the database holds", bmr::tools::RunInfo));
        CLI::App* list = ShowPrivate(Json(Command("list", "List a section", bmr::tools::RunList)));
        list->add_option("SECTION", options_.section, "todo")->required();
        list->add_option("--category", options_.category, "Only this category");
        list->add_flag("--all", options_.all, "Completed tasks too");
        Key(Json(Command("show", "Show one record", bmr::tools::RunShow)));
        ShowPrivate(Json(Command("dump", "Show every record of every section", bmr::tools::RunDump)));
    }

    void AddWriters() {
        CLI::App* add = Command("add", "Add a record", bmr::tools::RunAdd);
        add->add_option("SECTION", options_.section, "todo")->required();
        add->add_option("--task", options_.task, "The task in one line")->required();
        add->add_option("--note", options_.note, "A note of any length");
        add->add_option("--due", options_.due, "Due date, YYYY-MM-DD");
        add->add_option("--priority", options_.priority, "high, normal or low")
            ->check(CLI::IsMember({"high", "normal", "low"}));
        add->add_option("--category", options_.category, "A category that exists");
        add->add_flag("--private", options_.makePrivate, "Make it a private record");
        Key(Command("done", "Tick a task", bmr::tools::RunDone));
        Key(Command("delete", "Delete a record", bmr::tools::RunDelete));
    }

    void AddWholeFile() {
        Command("new", "Make a new database", bmr::tools::RunNew);
        Command("passwd", "Change the passphrase", bmr::tools::RunPasswd);
        Command("compact", "Repair and compact the file", bmr::tools::RunCompact);
        Command("check", "Check the file and decode every record", bmr::tools::RunCheck);
    }

    CLI::App app_;
    Options options_;
};

}  // namespace

int main(int argc, char** argv) {
    return CommandLine().Run(argc, argv);
}
