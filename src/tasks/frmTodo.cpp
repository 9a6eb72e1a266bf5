#include "tasks/frmTodo.h"

#include <QApplication>
#include <QCheckBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedLayout>
#include <QTimer>
#include <utility>

#include "base/languageus.h"
#include "kit/categoryfield.h"
#include "kit/emptystate.h"
#include "kit/failure.h"
#include "kit/recordlistview.h"
#include "kit/strip.h"
#include "kit/words.h"
#include "tasks/frmEditTodo.h"
#include "tasks/todomodel.h"

namespace bmr::tasks {

using store::Category;

namespace {

/// Place of the task list among the last-used categories.
constexpr std::size_t kLastCategory = 3;

QString Counted(qsizetype count, const QString& one, const QString& many) {
    return count == 1 ? one : many.arg(QLocale().toString(count));
}

}  // namespace

frmTodo::frmTodo(store::Session& session, QWidget* parent)
    : SectionForm(parent), session_(session), model_(new TodoModel(session, this)) {
    setObjectName("frmTodo");
    setWindowTitle("TASKS");
    BuildActions();
    BuildMenu();
    BuildPopup();
    BuildFilter();
    BuildList();
    Lay();
    const bool lastUsed = session_.settings.CatShow == 0;
    cboCategories->Fill(lastUsed ? session_.settings.LastCategory[kLastCategory] : Category::All);
    showListitems();
    TodoList->SelectFirst();
}

frmTodo::~frmTodo() {
    session_.settings.LastCategory[kLastCategory] = static_cast<std::int16_t>(cboCategories->Number());
    if (session_.DatabaseOpen) session_.quickTask = kit::ToSecret(txtQuickAdd->text());
}

QList<QAction*> frmTodo::ToolActions() {
    return {mnuTodoNew, mnuTodoEdit, mnuTodoDeleteSelected, nullptr, mnuTodoCompleted};
}

void frmTodo::showEvent(QShowEvent* event) {
    SectionForm::showEvent(event);
    TellStatus();
}

void frmTodo::showListitems() {
    if (!session_.DatabaseOpen || session_.ending) return;
    const TaskFilter filter{.showCompleted = ShowCompleted->isChecked(), .category = cboCategories->Number()};
    int error = 0;
    TodoList->Rebuild([&] { error = model_->Rebuild(filter, search_.toStdString()); });
    TodoList->header()->setSortIndicator(-1, Qt::AscendingOrder);  // each build is in standard order
    kit::TellFailure(session_, error, tr("The tasks could not be read."));
    ShowEmptyState();
    TellStatus();
}

void frmTodo::RebuildAndSelect(std::int32_t key) {
    showListitems();
    TodoList->SelectKey(key);
}

std::optional<std::int32_t> frmTodo::Selected() const {
    const std::int32_t key = TodoList->SelectedKey();
    if (key == kit::RecordListView::kNoKey) return std::nullopt;
    return key;
}

bool frmTodo::Editing() const {
    return editing_ || cboCategories->Editing();
}

void frmTodo::Refresh() {
    const std::int32_t key = TodoList->SelectedKey();
    cboCategories->Fill(cboCategories->Number());
    RebuildAndSelect(key);
}

void frmTodo::SetSearch(const QString& text) {
    const QString wanted = text.trimmed();
    if (wanted == search_) return;
    const std::int32_t key = TodoList->SelectedKey();
    if (search_.isEmpty()) beforeSearch_ = key;
    search_ = wanted;
    showListitems();
    TodoList->SelectOneOf({key, beforeSearch_});
}

void frmTodo::SelectRecord(std::int32_t fPK) {
    if (model_->RowOf(fPK) < 0) {
        const auto task = LoadSelected(session_, fPK);
        if (!task) return;
        if (task->completed && !ShowCompleted->isChecked()) ShowCompleted->setChecked(true);
        search_.clear();
        if (cboCategories->Number() != Category::All && cboCategories->Number() != task->category)
            cboCategories->Fill(Category::All);
        showListitems();
    }
    TodoList->SelectKey(fPK);
}

void frmTodo::ShowAllCategories() {
    cboCategories->Fill(Category::All);
    RebuildAndSelect(TodoList->SelectedKey());
}

void frmTodo::ShowCompleted_Click() {
    session_.settings.TodoShowCompleted = ShowCompleted->isChecked() ? 1 : 0;
    RebuildAndSelect(TodoList->SelectedKey());
}

void frmTodo::cmdAdd_Click() {
    EditRecord(ClearRecord(cboCategories->Number()));
}

void frmTodo::mnuTodoEdit_Click() {
    if (model_->rowCount() == 0) return;
    EditRecord(RecordToEdit(session_, Selected(), cboCategories->Number()));
}

std::vector<custody::Draft> frmTodo::Drafts() const {
    std::vector<custody::Draft> drafts;
    if (auto draft = editor_ ? editor_->HalfWritten() : std::nullopt) {
        drafts.push_back(std::move(*draft));
    }
    if (const QString begun = txtQuickAdd->text().trimmed(); !begun.isEmpty()) {
        drafts.push_back(frmEditTodo::DraftOf(begun, store::RealCategory(cboCategories->Number())));
    }
    return drafts;
}

void frmTodo::OpenDraft(const custody::Draft& draft) {
    auto task = LoadSelected(session_, draft.key);
    EditRecord(task ? std::move(*task) : ClearRecord(draft.category), &draft);
}

void frmTodo::EditRecord(Task task, const custody::Draft* draft) {
    if (editing_ || (!task.readable && !kit::AskToOverwrite(session_, tr("task")))) return;
    editing_ = true;
    for (bool another = true; another;) {
        const std::int32_t keyBefore = task.key;
        const bool stored = EditAndStore(task, another, std::exchange(draft, nullptr));
        if (session_.ending || !session_.DatabaseOpen) break;
        emit DraftSettled();
        const std::int32_t categoryBefore = cboCategories->Number();
        const std::int32_t selected = TodoList->SelectedKey();
        cboCategories->Fill(cboCategories->Number());
        if (!stored) {
            // The editor's own door to the categories may have led to the end of the one that is shown.
            if (cboCategories->Number() != categoryBefore) RebuildAndSelect(selected);
            break;
        }
        showListitems();
        TodoList->SelectKey(keyBefore);  // the key before the store: after an add no row has it
        if (keyBefore == store::kNewRecord) TodoList->ShowKey(task.key);
        if (another) task = ClearRecord(cboCategories->Number());
    }
    editing_ = false;
}

bool frmTodo::EditAndStore(Task& task, bool& another, const custody::Draft* draft) {
    EditorValues values =
        RecordToEditor(task, store::FillCategories(session_, store::Section::Todo, false, true, false));
    bool stored = false;
    for (bool again = false; !stored; again = true) {
        frmEditTodo editor(session_, values, task.key, this);
        editor_ = &editor;
        editor.recordChanged = again;
        if (draft) editor.Fill(*std::exchange(draft, nullptr));
        editor.exec();
        if (session_.ending || !session_.DatabaseOpen) return false;
        another = editor.another;
        recordChanged->setChecked(editor.recordChanged);
        if (!recordChanged->isChecked()) return false;
        recordChanged->setChecked(false);
        values = editor.Values();
        EditorToRecord(values, task);
        stored = Store(task);  // what could not be stored comes back in the editor
        if (session_.ending || !session_.DatabaseOpen) break;
    }
    return stored;
}

bool frmTodo::Store(Task& task) {
    const int error = WriteRecord(session_, task).error;
    kit::TellFailure(session_, error, tr("The task was not stored."));
    return error == 0;
}

void frmTodo::AddQuickly() {
    const QString typed = txtQuickAdd->text().trimmed();
    if (typed.isEmpty()) return;
    Task task = ClearRecord(cboCategories->Number());
    task.task = kit::TakeWords(typed);
    if (!Store(task)) return;
    txtQuickAdd->clear();
    strip_->Clear();
    showListitems();
    TodoList->ShowKey(task.key);
    if (model_->RowOf(task.key) < 0)
        strip_->Say(tr("Added. The search hides the new task."), kit::Strip::Kind::Note);
}

void frmTodo::Tick(std::int32_t key, bool checked) {
    const TickOutcome outcome = SetCompleted(session_, key, checked);
    kit::TellFailure(session_, outcome.error, tr("The task was not stored."));
    if (outcome.error != 0 || outcome.rebuild || !outcome.record)
        showListitems();
    else
        model_->Update(*outcome.record);
    TodoList->SelectKey(key);
    TellStatus();
}

void frmTodo::mnuCompleted_Click() {
    if (const auto key = Selected()) Tick(*key, true);
}

void frmTodo::mnuTodoPriority_Click(int Index) {
    const auto key = Selected();
    if (!key) return;
    kit::TellFailure(session_, SetPriority(session_, *key, Index), tr("The task was not stored."));
    RebuildAndSelect(*key);
}

void frmTodo::mnuTodoDeleteItem_Click() {
    const auto key = Selected();
    const int row = TodoList->SelectedRow();
    const Bytes text = key ? kit::TakeWords(model_->TaskText(row)) : Bytes();
    const auto outcome = DeleteItem(session_, key, text);
    kit::TellFailure(session_, outcome.error, tr("The task was not deleted."));
    if (!outcome.rebuild) return;
    showListitems();
    TodoList->PutCursor(row);
}

void frmTodo::mnuTodoDeleteCompleted_Click() {
    const auto outcome = DeleteCompleted(session_);
    kit::TellFailure(session_, outcome.error, tr("The tasks were not deleted."));
    if (outcome.rebuild) showListitems();
}

void frmTodo::mnuTodoDeleteAll_Click() {
    const auto outcome = DeleteAll(session_, model_->rowCount() == 0);
    kit::TellFailure(session_, outcome.error, tr("The tasks were not deleted."));
    if (outcome.rebuild) showListitems();
}

void frmTodo::ColumnClick(int column) {
    const SortOrder order = SortOrderOfColumn(column + 1);
    kit::TellFailure(session_, model_->SortBy(order), tr("The tasks could not be sorted."));
    TodoList->header()->setSortIndicator(order.subItem == SubItem::SortKey ? -1 : column,
                                         order.descending ? Qt::DescendingOrder : Qt::AscendingOrder);
}

void frmTodo::ShowPopup(const QPoint& at) {
    if (!Selected()) {
        QApplication::beep();
        return;
    }
    mnuTodoRC->popup(at);
}

void frmTodo::ShowEmptyState() {
    const bool any = model_->rowCount() > 0;
    stack_->setCurrentIndex(any ? 0 : 1);
    setFocusProxy(any ? static_cast<QWidget*>(TodoList) : txtQuickAdd);
    if (any) return;
    QList<QAction*> offers;
    if (!search_.isEmpty()) {
        if (cboCategories->Number() != Category::All) offers << actShowAll;
        if (!ShowCompleted->isChecked()) offers << actShowCompleted;
        empty_->Set("edit-find", tr("Nothing for “%1” in Tasks.").arg(search_), offers);
        return;
    }
    offers << mnuTodoNew;
    if (cboCategories->Number() != Category::All) offers << actShowAll;
    if (!ShowCompleted->isChecked()) offers << actShowCompleted;
    const bool open = !ShowCompleted->isChecked();
    const QString where = cboCategories->Number() != Category::All ? tr("No tasks in this category.")
                          : open                                   ? tr("No open tasks.")
                                                                   : tr("No tasks yet.");
    empty_->Set("view-pim-tasks", where, offers);
}

void frmTodo::TellStatus() {
    const int count = model_->rowCount();
    QString text = Counted(count, tr("1 task"), tr("%1 tasks"));
    if (const int overdue = model_->CountOverdue())
        text += ", " + tr("%1 overdue").arg(QLocale().toString(overdue));
    if (Selected()) text += ", " + tr("1 selected");
    emit StatusChanged(text);
}

}  // namespace bmr::tasks
