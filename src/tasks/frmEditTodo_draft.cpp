// What the task editor hands over when the program ends, and takes back after the next login.
#include <QCheckBox>
#include <QLineEdit>
#include <QPlainTextEdit>

#include "kit/drafttext.h"
#include "kit/formparts.h"
#include "tasks/frmEditTodo.h"

namespace bmr::tasks {

namespace {

/// Numbers of the texts in a draft. Never renumber: files in the field carry these. Days are kept as their
/// serial numbers.
enum DraftField : std::uint8_t { kTask = 1, kNote, kPrivate, kPriority, kDue, kCompleted };

void PutNumber(custody::Draft& draft, std::uint8_t field, std::optional<std::int32_t> number) {
    draft.Put(field, number ? std::to_string(*number) : std::string());
}

std::optional<std::int32_t> NumberIn(const custody::Draft& draft, std::uint8_t field) {
    bool whole = false;
    const int number = kit::TextOf(draft, field).toInt(&whole);
    return whole ? std::optional(number) : std::nullopt;
}

}  // namespace

custody::Draft frmEditTodo::DraftOf(const EditorValues& choices, const QString& task, const QString& note) {
    custody::Draft draft;
    draft.section = store::Section::Todo;
    draft.category = choices.category;
    draft.isPrivate = choices.isPrivate;
    kit::SetTitle(draft, task);
    kit::PutText(draft, kTask, task);
    kit::PutText(draft, kNote, note);
    kit::PutFlag(draft, kPrivate, choices.isPrivate);
    PutNumber(draft, kPriority, choices.priority);
    PutNumber(draft, kDue, choices.due ? std::optional(choices.due->serial) : std::nullopt);
    PutNumber(draft, kCompleted, choices.completed ? std::optional(choices.completed->serial) : std::nullopt);
    return draft;
}

std::optional<custody::Draft> frmEditTodo::HalfWritten() const {
    if (!recordChanged) return std::nullopt;
    const EditorValues values = Values();
    std::optional<custody::Draft> draft = DraftOf(values, ctlTask->text(), kit::PlainText(*ctlNote));
    draft->isPrivate = draft->isPrivate || wasPrivate_;
    return draft;
}

void frmEditTodo::Fill(const custody::Draft& draft) {
    const auto day = [&draft](std::uint8_t number) {
        const auto serial = NumberIn(draft, number);
        return serial ? std::optional(Day{*serial}) : std::nullopt;
    };
    EditorValues values;
    values.priority = NumberIn(draft, kPriority);
    values.isPrivate = kit::FlagOf(draft, kPrivate);
    values.due = day(kDue);
    values.completed = day(kCompleted);
    values.category = draft.category;
    ShowChoices(values);
    ctlTask->setText(kit::TextOf(draft, kTask));
    kit::ContinueAtEnd(*ctlTask);
    ctlNote->setPlainText(kit::TextOf(draft, kNote));
    ctlNote->moveCursor(QTextCursor::End);
    recordChanged = true;
}

}  // namespace bmr::tasks
