#include <iostream>

#include "base/languageus.h"
#include "calendar/calendar.h"
#include "commands.h"
#include "confidential/confidential.h"
#include "confidential/kinds.h"
#include "notes/memo.h"
#include "recordjson.h"
#include "sitting.h"
#include "store/record_put.h"
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
Bytes RecordText(const std::string& option, const std::optional<std::string>& given) {
    const std::string utf8 = given.value_or("");
    const auto bytes = ToBytes(utf8);
    if (!bytes) {
        const Unmappable first = FindUnmappable(utf8).front();
        throw Failure(option + ": character " + std::to_string(first.position + 1) + ", " +
                      CodePoint(first.character) + ", is not in code page 1252.");
    }
    Bytes text;
    for (std::size_t i = 0; i < bytes->size(); ++i) {
        const char c = (*bytes)[i];
        if (c == '\n' && (i == 0 || (*bytes)[i - 1] != '\r')) text += '\r';
        text += c;
    }
    if (text.size() > store::kLongestText)
        throw Failure(option + " has " + std::to_string(text.size()) + " characters; " +
                      std::to_string(store::kLongestText) + " fit.");
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

/// The same for what a list shows in one line.
Bytes LineText(const std::string& option, const std::optional<std::string>& given) {
    Bytes text = RecordText(option, given);
    if (text.find_first_of("\r\n") != Bytes::npos) throw Failure(option + " must be one line.");
    return text;
}

/// An option of another section is a slip of the hand: nothing is stored rather than half of what was meant.
void RefuseForeign(const Options& options) {
    struct Given {
        const char* option;
        bool given;
        std::string_view section;
    };
    const auto& n = options.n;
    const Given all[] = {{"--task", options.task.has_value(), "todo"},
                         {"--note", options.note.has_value(), "todo"},
                         {"--due", options.due.has_value(), "todo"},
                         {"--priority", options.priority.has_value(), "todo"},
                         {"--subject", options.subject.has_value(), "memo"},
                         {"--body", options.body.has_value(), "memo"},
                         {"--kind", options.kind.has_value(), "confidential"},
                         {"--n0", n[0].has_value(), "confidential"},
                         {"--n1", n[1].has_value(), "confidential"},
                         {"--n2", n[2].has_value(), "confidential"},
                         {"--n3", n[3].has_value(), "confidential"},
                         {"--n4", n[4].has_value(), "confidential"},
                         {"--notes", options.notes.has_value(), "confidential"},
                         {"--secret-fd", options.secretFd >= 0, "confidential"}};
    for (const Given& one : all)
        if (one.given && one.section != options.section)
            throw Failure(std::string(one.option) + " is for " + std::string(one.section) + ", not for " +
                          options.section + ".");
    if (options.section == "confidential" && !options.category.empty())
        throw Failure("Confidential records have kinds in place of categories: use --kind.");
}

std::int32_t CategoryOf(Sitting& sitting, const Options& options, std::uint8_t section) {
    if (options.category.empty()) return store::Category::Unfiled;
    return store::RealCategory(CategoryByName(sitting.session(), section, options.category));
}

std::int32_t AddTask(const Options& options, Sitting& sitting) {
    if (!options.task) throw Failure("--task is required.");
    tasks::Task task;
    task.task = LineText("--task", options.task);
    task.note = RecordText("--note", options.note);
    task.priority = PriorityOf(options.priority.value_or("normal"));
    task.isPrivate = options.makePrivate;
    task.hasDueDate = options.due.has_value();
    if (task.hasDueDate) task.dueDate = DueDate(*options.due);

    sitting.Open(options.file);
    task.category = CategoryOf(sitting, options, store::Section::Todo);
    sitting.Check(tasks::WriteRecord(sitting.session(), task).error);
    return task.key;
}

std::int32_t AddMemo(const Options& options, Sitting& sitting) {
    if (!options.subject) throw Failure("--subject is required.");
    const Bytes subject = LineText("--subject", options.subject);
    const Bytes body = RecordText("--body", options.body);

    sitting.Open(options.file);
    notes::Memo memo =
        notes::ClearMemo(sitting.session(), CategoryOf(sitting, options, store::Section::Memo));
    memo.subject = subject;
    memo.body = body;
    memo.isPrivate = options.makePrivate;
    sitting.Check(notes::WriteMemo(sitting.session(), memo));
    return memo.key;
}

/// What may stand in an argument list, which every process of the machine can read.
void SetOpenFields(const Options& options, const confidential::Kind& kind, confidential::Record& record) {
    for (std::size_t i = 0; i < record.n.size(); ++i) {
        if (!options.n[i]) continue;
        const std::string option = "--n" + std::to_string(i);
        if (i >= kind.FieldCount()) throw Failure("The kind " + std::string(kind.caption) + " has no n4.");
        if (confidential::IsMaskedCaption(kind.captions[i]))
            throw Failure(
                option + " is the field " + std::string(kind.captions[i]) + " of " +
                std::string(kind.caption) +
                ": other processes could read it in the arguments. Give it as a line of --secret-fd, "
                "or on the terminal.");
        // Only the second field has kinds in which it takes several lines.
        record.n[i] =
            i == 1 && kind.height > 1 ? RecordText(option, options.n[i]) : LineText(option, options.n[i]);
    }
    record.notes = RecordText("--notes", options.notes);
}

void AskSecretFields(const Options& options, const confidential::Kind& kind, confidential::Record& record) {
    for (std::size_t i = 0; i < kind.FieldCount(); ++i) {
        const std::string caption(kind.captions[i]);
        if (!confidential::IsMaskedCaption(caption)) continue;
        SecretInput input(options.secretFd, "value of " + caption, "--secret-fd");
        Secret typed;
        if (!input.Read(caption + " (empty for none): ", typed)) throw Failure(input.Problem());
        if (input.Interactive() && !typed.empty()) {
            Secret again;
            if (!input.Read(caption + " again: ", again)) throw Failure(input.Problem());
            if (again.view() != typed.view()) throw Failure("The two values of " + caption + " differ.");
        }
        record.n[i] = typed.view();
    }
}

std::int32_t AddConfidential(const Options& options, Sitting& sitting) {
    if (!options.kind) throw Failure("--kind is required.");
    const auto* kind = confidential::ConfidentialKindFields(*options.kind);
    if (kind == nullptr) throw Failure("There is no kind " + std::to_string(*options.kind) + ".");
    struct Wiped : confidential::Record {
        ~Wiped() { confidential::WipeRecord(*this); }
    } record;
    record.kind = kind->number;
    record.isPrivate = options.makePrivate;
    SetOpenFields(options, *kind, record);

    sitting.Open(options.file);
    AskSecretFields(options, *kind, record);
    sitting.Check(confidential::SaveRecord(sitting.session(), record));
    return record.key;
}

}  // namespace

void RunAdd(const Options& options) {
    const auto add = options.section == "todo"           ? AddTask
                     : options.section == "memo"         ? AddMemo
                     : options.section == "confidential" ? AddConfidential
                                                         : nullptr;
    if (add == nullptr) throw Failure("Records can be added to todo, memo and confidential.");
    RefuseForeign(options);
    Sitting sitting(options.passphraseFd);
    const std::int32_t key = add(options, sitting);
    sitting.Close();
    std::cout << key << '\n';
}

}  // namespace bmr::tools
