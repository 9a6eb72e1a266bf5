#include "tasks/edittask.h"

#include <QCoreApplication>
#include <utility>

#include "base/errors.h"
#include "kit/failure.h"
#include "tasks/frmEditTodo.h"

namespace bmr::tasks {

namespace {

QString Tr(const char* text) {
    return QCoreApplication::translate("tasks", text);
}

}  // namespace

kit::EditEnd EditAndStore(store::Session& session, kit::EditRound& round, Task& task, bool& another,
                          const custody::Draft* draft, QWidget* parent) {
    auto categories = store::FillCategories(session, store::Section::Todo, false, true, false);
    // While the list cannot be read, nobody knows that the task's category is gone.
    if (store::CategoriesUnread(session, store::Section::Todo)) categories.push_back({{}, task.category});
    frmEditTodo editor(session, RecordToEditor(task, categories), task.key, parent);
    return round.EditUntilStored(editor, draft, Tr("The task was not stored."), [&] {
        another = std::exchange(editor.another, false);
        EditorToRecord(editor.Values(), task);
        return WriteRecord(session, task).error;
    });
}

bool EditTask(store::Session& session, kit::EditRound& round, std::int32_t key, QWidget* parent) {
    if (round.Open()) return false;
    int error = 0;
    auto task = FetchRecord(session, key, &error);
    if (error != 0 || !task) {
        kit::TellFailure(session, error != 0 ? error : MessageNumber::NoRecord,
                         Tr("The task could not be read."));
        return false;
    }
    if (!task->readable && !kit::AskToOverwrite(session, Tr("task"))) return false;
    bool stored = false;
    for (bool another = true; another;) {
        if (EditAndStore(session, round, *task, another, nullptr, parent) != kit::EditEnd::Stored) break;
        stored = true;
        if (another) task = ClearRecord(store::Category::Unfiled);
    }
    store::WipeFields(*task, kTaskFields);
    return stored;
}

}  // namespace bmr::tasks
