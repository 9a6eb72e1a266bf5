#pragma once

#include "kit/categoryfield.h"
#include "kit/editround.h"
#include "kit/listpane.h"
#include "kit/sectionform.h"
#include "tasks/tasklist.h"

class QCheckBox;
class QLineEdit;
class QPlainTextEdit;

namespace bmr::kit {
class RecordListView;
class Strip;
}  // namespace bmr::kit

namespace bmr::tasks {

class TodoModel;

/// The to-do section: the list, its filter, a line for quick entries, and the operations that menus call.
class frmTodo final : public SectionForm {
    Q_OBJECT

  public:
    explicit frmTodo(store::Session& session, QWidget* parent = nullptr);
    ~frmTodo() override;

    QMenu* SectionMenu() override { return menu_; }
    QList<QAction*> ToolActions() override;
    QString HelpPage() const override { return "tasks"; }
    void Refresh() override;
    void SetSearch(const QString& text) override { pane_->SetSearch(text); }
    void SelectRecord(std::int32_t fPK) override;
    kit::ListPane* Pane() const override { return pane_; }
    bool Editing() const override { return round_.Open() || cboCategories->Editing(); }
    std::vector<custody::Draft> Drafts() const override;
    void Resume(const std::vector<custody::Draft>& begun) override;
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
    /// Due in that many days, or at no date.
    void SetDue(std::optional<int> days);

  private:
    void BuildActions();
    void BuildMenu();
    void BuildPopup();
    void AddDueEntries(QMenu& menu, const QByteArray& name);
    void BuildFilter();
    void BuildList();
    void BuildNote();
    void Lay();

    void ShowCompleted_Click();
    void ColumnClick(int column);
    void ShowNote(std::int32_t key);
    void HideNote();
    void ShowPopup(const QPoint& at);
    void Tick(std::int32_t key, bool checked);
    void ShowDeleted(const DeleteOutcome& outcome, const QString& failure);
    void AddQuickly();

    /// With a draft the editor comes up filled with it.
    void EditRecord(Task task, const custody::Draft* draft = nullptr);
    std::optional<std::int32_t> Selected() const;
    int ReadTasks(const QString& search);
    kit::Emptiness WhyEmpty() const;
    QStringList StatusWords() const;

    store::Session& session_;
    TodoModel* model_;
    kit::EditRound round_;
    kit::ListPane* pane_;
    QMenu* menu_;
    QMenu* mnuTodoRC;
    QAction* mnuTodoNew;
    QAction* mnuTodoEdit;
    QAction* mnuTodoDeleteSelected;
    QAction* mnuTodoDeleteCompleted;
    QAction* mnuTodoDeleteAll;
    QAction* complete_;
    QAction* showCompleted_;

    kit::CategoryField* cboCategories;
    QCheckBox* ShowCompleted;
    kit::RecordListView* TodoList;
    QPlainTextEdit* note_;  ///< of the selected task
    QWidget* notePane_;     ///< there while any listed task has a note
    QLineEdit* quickAdd_;
    kit::Strip* strip_;
};

}  // namespace bmr::tasks
