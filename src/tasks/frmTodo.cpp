#include "tasks/frmTodo.h"

#include <QApplication>
#include <QCheckBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <utility>

#include "kit/failure.h"
#include "kit/recordlistview.h"
#include "kit/strip.h"
#include "kit/words.h"
#include "tasks/edittask.h"
#include "tasks/frmEditTodo.h"
#include "tasks/todomodel.h"

namespace bmr::tasks {

using kit::EditEnd;
using store::Category;

frmTodo::frmTodo(store::Session& session, QWidget* parent)
    : SectionForm(parent), session_(session), model_(new TodoModel(session, this)), round_(session, *this) {
    setObjectName("frmTodo");
    setWindowTitle("TASKS");
    BuildActions();
    BuildMenu();
    BuildPopup();
    BuildFilter();
    BuildList();
    BuildNote();
    Lay();
    cboCategories->FillLastUsed();
    showListitems();
    TodoList->SelectFirst();
}

frmTodo::~frmTodo() {
    HideNote();
}

QList<QAction*> frmTodo::ToolActions() {
    return {mnuTodoNew, mnuTodoEdit, mnuTodoDeleteSelected, nullptr, complete_};
}

void frmTodo::showListitems() {
    pane_->Rebuild(store::kNewRecord);
}

int frmTodo::ReadTasks(const QString& search) {
    HideNote();
    TodoList->header()->setSortIndicator(-1, Qt::AscendingOrder);  // each build is in standard order
    const int error =
        model_->Rebuild({.showCompleted = ShowCompleted->isChecked(), .category = cboCategories->Number()},
                        kit::TakeWords(search));
    notePane_->setVisible(!model_->ColumnEmpty(SubItem::Note));
    return error;
}

kit::Emptiness frmTodo::WhyEmpty() const {
    const bool filtered = cboCategories->Number() != Category::All;
    const bool open = !ShowCompleted->isChecked();
    kit::Emptiness empty;
    empty.sentence = filtered ? tr("No tasks in this category.")
                     : open   ? tr("No open tasks.")
                              : tr("No tasks yet.");
    if (filtered) empty.wider << cboCategories->ShowAll();
    if (open) empty.wider << showCompleted_;
    return empty;
}

QStringList frmTodo::StatusWords() const {
    QStringList words;
    if (const int overdue = model_->CountOverdue())
        words << tr("%1 overdue").arg(QLocale().toString(overdue));
    return words;
}

std::optional<std::int32_t> frmTodo::Selected() const {
    const std::int32_t key = TodoList->SelectedKey();
    if (key == kit::RecordListView::kNoKey) return std::nullopt;
    return key;
}

void frmTodo::Refresh() {
    cboCategories->Refill();
    pane_->Rebuild(TodoList->SelectedKey());
}

void frmTodo::SelectRecord(std::int32_t fPK) {
    if (model_->RowOf(fPK) < 0) {
        const auto task = FetchRecord(session_, fPK);
        if (!task) return;
        if (task->completed && !ShowCompleted->isChecked()) ShowCompleted->setChecked(true);
        pane_->ClearSearch();
        emit SearchEnded();
        if (cboCategories->Number() != Category::All && cboCategories->Number() != task->category)
            cboCategories->Fill(Category::All);
        showListitems();
    }
    TodoList->SelectKey(fPK);
}

void frmTodo::ShowCompleted_Click() {
    session_.settings.TodoShowCompleted = ShowCompleted->isChecked() ? 1 : 0;
    pane_->Rebuild(TodoList->SelectedKey());
}

void frmTodo::cmdAdd_Click() {
    EditRecord(ClearRecord(cboCategories->Number()));
}

void frmTodo::mnuTodoEdit_Click() {
    if (model_->rowCount() == 0) return;
    int error = 0;
    Task task = RecordToEdit(session_, Selected(), cboCategories->Number(), &error);
    if (error != 0) return kit::TellFailure(session_, error, tr("The task could not be read."));
    EditRecord(std::move(task));
}

std::vector<custody::Draft> frmTodo::Drafts() const {
    std::vector<custody::Draft> drafts = round_.Drafts();
    if (const QString begun = quickAdd_->text().trimmed(); !begun.isEmpty())
        drafts.push_back(frmEditTodo::DraftOf(begun, store::RealCategory(cboCategories->Number())));
    return drafts;
}

void frmTodo::Resume(const std::vector<custody::Draft>& begun) {
    if (!begun.empty()) quickAdd_->setText(frmEditTodo::TaskIn(begun.back()));
}

void frmTodo::OpenDraft(const custody::Draft& draft) {
    auto task = FetchRecord(session_, draft.key);
    EditRecord(task ? std::move(*task) : ClearRecord(draft.category), &draft);
}

void frmTodo::EditRecord(Task task, const custody::Draft* draft) {
    if (round_.Open() || (!task.readable && !kit::AskToOverwrite(session_, tr("task")))) return;
    for (bool another = true; another;) {
        const std::int32_t keyBefore = task.key;
        const EditEnd end =
            EditAndStore(session_, round_, task, another, std::exchange(draft, nullptr), this);
        if (end == EditEnd::Closed) return;
        // The editor's own door to the categories may have led to the end of the one that is shown.
        const bool there = cboCategories->Refill();
        if (end == EditEnd::GivenUp) {
            if (!there) pane_->Rebuild(TodoList->SelectedKey());
            return;
        }
        pane_->Rebuild(keyBefore);  // the key before the store: after an add no row has it
        if (keyBefore == store::kNewRecord) TodoList->ShowKey(task.key);
        if (another) task = ClearRecord(cboCategories->Number());
    }
}

void frmTodo::AddQuickly() {
    const QString typed = quickAdd_->text().trimmed();
    if (typed.isEmpty()) return;
    Task task = ClearRecord(cboCategories->Number());
    task.task = kit::TakeWords(typed);
    if (const QString why = kit::TooLongOf(task.task); !why.isEmpty())
        return strip_->Say(why, kit::Strip::Kind::Warning);
    const int error = WriteRecord(session_, task).error;
    kit::TellFailure(session_, error, tr("The task was not stored."));
    if (error != 0) return;
    quickAdd_->setText({});  // unlike clear, nothing is left to be undone but the task
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
    pane_->TellStatus();
}

void frmTodo::mnuCompleted_Click() {
    const auto key = Selected();
    if (TodoList->SelectedCount() > 1)
        pane_->ChangeSelected([this](store::Keys keys) { return CompleteSeveral(session_, keys); });
    else if (key)
        Tick(*key, true);
}

void frmTodo::mnuTodoPriority_Click(int Index) {
    pane_->ChangeSelected([&](store::Keys keys) { return SetPriority(session_, keys, Index); });
}

void frmTodo::ShowDeleted(const DeleteOutcome& outcome, const QString& failure) {
    kit::TellFailure(session_, outcome.error, failure);
    if (!outcome.rebuild) return;
    const int row = TodoList->SelectedRow();
    showListitems();
    TodoList->PutCursor(qMax(row, 0));
    pane_->TellStep();
}

void frmTodo::SetDue(std::optional<int> days) {
    std::optional<Day> due;
    if (days) due = Day{session_.ports.clock.Today().serial + *days};
    pane_->ChangeSelected([&](store::Keys keys) { return SetDueDate(session_, keys, due); });
}

void frmTodo::mnuTodoDeleteItem_Click() {
    if (TodoList->SelectedCount() > 1) return pane_->DeleteSelected(29);
    const auto key = Selected();
    const int row = TodoList->SelectedRow();
    const WipedText text = key ? kit::TakeWords(model_->TaskText(row)) : WipedText();
    const auto outcome = DeleteItem(session_, key, text);
    ShowDeleted(outcome, tr("The task was not deleted."));
}

void frmTodo::mnuTodoDeleteCompleted_Click() {
    ShowDeleted(DeleteCompleted(session_), tr("The tasks were not deleted."));
}

void frmTodo::mnuTodoDeleteAll_Click() {
    ShowDeleted(DeleteAll(session_, model_->rowCount() == 0), tr("The tasks were not deleted."));
}

void frmTodo::ShowNote(std::int32_t key) {
    const int row = model_->RowOf(key);
    if (row < 0 || !model_->RowAt(row).hasNote) return HideNote();
    auto task = FetchRecord(session_, key);
    if (!task) return HideNote();
    note_->setPlainText(kit::ShowLines(task->note));
    store::WipeFields(*task, kTaskFields);
}

void frmTodo::HideNote() {
    note_->clear();
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

}  // namespace bmr::tasks
