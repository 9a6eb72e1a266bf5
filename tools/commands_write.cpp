#include <iostream>

#include "base/languageus.h"
#include "calendar/calendar.h"
#include "commands.h"
#include "recordjson.h"
#include "sitting.h"
#include "store/section_store.h"
#include "tasks/task.h"

namespace bmr::tools {
namespace {

std::string CodePoint(char32_t character) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string text = "U+";
    for (int shift = character > 0xFFFF ? 20 : 12; shift >= 0; shift -= 4)
        text += kDigits[(character >> shift) & 15U];
    return text;
}

/// A text of the command line as the records hold it, line ends as the editors make them.
Bytes RecordText(const char* option, const std::string& utf8) {
    const auto bytes = ToBytes(utf8);
    if (!bytes) {
        const Unmappable first = FindUnmappable(utf8).front();
        throw Failure(std::string(option) + ": character " + std::to_string(first.position + 1) + ", " +
                      CodePoint(first.character) + ", is not in code page 1252.");
    }
    Bytes text;
    for (std::size_t i = 0; i < bytes->size(); ++i) {
        const char c = (*bytes)[i];
        if (c == '\n' && (i == 0 || (*bytes)[i - 1] != '\r')) text += '\r';
        text += c;
    }
    return text;
}

Day DueDate(const std::string& text) {
    const auto day = ParseIsoDate(text);
    if (!day) throw Failure("--due is no date of the form YYYY-MM-DD.");
    if (const auto box = calendar::DateLimitBox(*day, LocaleFacts{})) throw Failure(box->text);
    return *day;
}

std::int32_t PriorityOf(const std::string& name) {
    return name == "high"  ? tasks::Priority::High
           : name == "low" ? tasks::Priority::Low
                           : tasks::Priority::Normal;
}

/// The record of a key in one of the sections; throws for a hidden one too.
Row SectionRow(Sitting& sitting, const Options& options) {
    auto row = FindRow(sitting.session(), options.fPK, options.showPrivate);
    if (!row) throw Failure(row.error().detail);
    if (row->fSec < store::Section::Address)
        throw Failure("The record belongs to the database itself and stays.");
    return *row;
}

}  // namespace

void RunAdd(const Options& options) {
    if (options.section != "todo") throw Failure("Only tasks can be added: bmr add FILE todo --task ...");
    tasks::Task task;
    task.task = RecordText("--task", options.task);
    if (task.task.find_first_of("\r\n") != Bytes::npos) throw Failure("--task must be one line.");
    task.note = RecordText("--note", options.note);
    task.priority = PriorityOf(options.priority);
    task.isPrivate = options.makePrivate;
    task.hasDueDate = !options.due.empty();
    if (task.hasDueDate) task.dueDate = DueDate(options.due);

    Sitting sitting(options.passphraseFd);
    sitting.Open(options.file);
    if (!options.category.empty())
        task.category =
            store::RealCategory(CategoryByName(sitting.session(), store::Section::Todo, options.category));
    sitting.Check(tasks::WriteRecord(sitting.session(), task).error);
    sitting.Close();
    std::cout << task.key << '\n';
}

void RunDone(const Options& options) {
    Sitting sitting(options.passphraseFd);
    sitting.Open(options.file);
    if (SectionRow(sitting, options).fSec != store::Section::Todo) throw Failure("The record is no task.");
    const auto outcome = tasks::SetCompleted(sitting.session(), options.fPK, true);
    sitting.Check(outcome.error);
    if (!outcome.record) throw Failure(Msg(31));
    sitting.Close();
}

void RunDelete(const Options& options) {
    Sitting sitting(options.passphraseFd);
    sitting.Open(options.file);
    SectionRow(sitting, options);
    sitting.Check(store::DeleteRow(sitting.session(), options.fPK));
    sitting.Close();
}

}  // namespace bmr::tools
