#pragma once

#include <QPointer>

#include "kit/sectionform.h"
#include "tasks/tasklist.h"

class QCheckBox;
class QLineEdit;
class QPushButton;
class QStackedLayout;

namespace bmr::kit {
class CategoryField;
class EmptyState;
class RecordListView;
class Strip;
}  // namespace bmr::kit

namespace bmr::tasks {

class TodoModel;
class frmEditTodo;

/// The to-do section: the list, its filter, a line for quick entries, and the operations that menus call.
class frmTodo final : public SectionForm {
    Q_OBJECT

  public:
    explicit frmTodo(store::Session& session, QWidget* parent = nullptr);
    ~frmTodo() override;

    QMenu* SectionMenu() override { return mnuTodo; }
    QList<QAction*> ToolActions() override;
    void Refresh() override;
    void SetSearch(const QString& text) override;
    void SelectRecord(std::int32_t fPK) override;
    bool Editing() const override;
    std::vector<custody::Draft> Drafts() const override;
    void OpenDraft(const custody::Draft& draft) override;

    /// Rebuilds the list from the store; nothing is selected afterwards.
    void showListitems();

    // The operations that the menus call.
    void cmdAdd_Click();
    void mnuTodoEdit_Click();
    void mnuTodoDeleteItem_Click();
    void mnuTodoDeleteCompleted_Click();
    void mnuTodoDeleteAll_Click();
    void mnuCompleted_Click();
    void mnuTodoPriority_Click(int Index);
    /// Carries no action: the entries for the due date change nothing.
    void mnuTodoDueDate_Click() {}

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void BuildActions();
    void BuildMenu();
    void BuildPopup();
    void BuildFilter();
    void BuildList();
    void Lay();

    void ShowCompleted_Click();
    void ColumnClick(int column);
    void ShowPopup(const QPoint& at);
    void Tick(std::int32_t key, bool checked);
    void AddQuickly();
    void ShowAllCategories();

    /// With a draft the editor comes up filled with it.
    void EditRecord(Task task, const custody::Draft* draft = nullptr);
    /// One round of the editor. True when the record was stored; `another` when a new one is to follow.
    bool EditAndStore(Task& task, bool& another, const custody::Draft* draft);
    /// Stores; tells of what went wrong. False when the record still waits to be stored.
    bool Store(Task& task);
    std::optional<std::int32_t> Selected() const;
    void RebuildAndSelect(std::int32_t key);
    void ShowEmptyState();
    void TellStatus();

    store::Session& session_;
    TodoModel* model_;
    QString search_;
    std::int32_t beforeSearch_ = store::kNewRecord;  ///< the row that was selected when the search began
    bool editing_ = false;
    QPointer<frmEditTodo> editor_;

    QMenu* mnuTodo;
    QMenu* mnuTodoRC;
    QAction* mnuTodoNew;
    QAction* mnuTodoEdit;
    QAction* mnuTodoDeleteSelected;
    QAction* mnuTodoDeleteCompleted;
    QAction* mnuTodoDeleteAll;
    QAction* mnuTodoCompleted;
    QAction* actShowAll;
    QAction* actShowCompleted;

    kit::CategoryField* cboCategories;
    QCheckBox* ShowCompleted;
    QCheckBox* recordChanged;
    QPushButton* cmdAdd;
    QPushButton* cmdEdit;
    QPushButton* cmdDelete;
    QLineEdit* txtQuickAdd;
    kit::RecordListView* TodoList;
    kit::EmptyState* empty_;
    kit::Strip* strip_;
    QStackedLayout* stack_;
};

}  // namespace bmr::tasks
