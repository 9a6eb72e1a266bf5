#pragma once

#include <QPointer>

#include "kit/sectionform.h"
#include "notes/memo.h"
#include "store/categories.h"

class QCheckBox;
class QFrame;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QStackedLayout;

namespace bmr::kit {
class CategoryField;
class EmptyState;
class NamedListModel;
class RecordListView;
}  // namespace bmr::kit

namespace bmr::notes {

class frmEditNotepad;

/// The memo section: subjects in alphabetical order at the left, the chosen memo at the right.
class frmNotepad final : public SectionForm {
    Q_OBJECT

  public:
    explicit frmNotepad(store::Session& session, QWidget* parent = nullptr);
    ~frmNotepad() override;

    QMenu* SectionMenu() override { return mnuMemo; }
    QList<QAction*> ToolActions() override;
    void Refresh() override;
    void SetSearch(const QString& text) override;
    void SelectRecord(std::int32_t fPK) override;
    bool Editing() const override;
    std::vector<custody::Draft> Drafts() const override;
    void OpenDraft(const custody::Draft& draft) override;

    // The operations that the menus call.
    void cmdAdd_Click();
    void cmdEdit_Click();
    void cmdDelete_Click();
    void mnuMemoDeleteAll_Click(bool oneCategory);

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void BuildActions();
    void BuildMenu();
    void BuildList();
    void BuildPad();
    void Lay();

    void ShowAllCategories();
    Result<std::vector<std::int32_t>> KeysOf(std::string_view search) const;
    void Rebuild(std::int32_t key);
    void ShowMemo(std::int32_t key);
    void HidePad();
    void ShowEmptyState();
    void TellStatus();
    /// With a draft the editor comes up filled with it.
    void EditRecord(Memo memo, const custody::Draft* draft = nullptr);
    bool Store(Memo& memo);

    store::Session& session_;
    kit::NamedListModel* model_;
    QString search_;
    std::int32_t beforeSearch_ = store::kNewRecord;  ///< the memo that was selected when the search began
    bool editing_ = false;
    QPointer<frmEditNotepad> editor_;

    QMenu* mnuMemo;
    QAction* mnuMemoAdd;
    QAction* mnuMemoEdit;
    QAction* mnuMemoDeleteSelected;
    QAction* mnuMemoDeleteCategory;
    QAction* mnuMemoDeleteAll;
    QAction* actShowAll;

    kit::CategoryField* cboCategories;
    QPushButton* cmdAdd;
    QPushButton* cmdEdit;
    QPushButton* cmdDelete;
    QCheckBox* recordChanged;
    kit::RecordListView* listSelect;
    kit::EmptyState* empty_;
    QStackedLayout* stack_;

    QFrame* padFrame;
    QLabel* txtSubject;
    QPlainTextEdit* txtInput;
    QCheckBox* ctlPrivate;
    QLabel* cboCategory;
    QLabel* ctlDateCreated;
    QLabel* ctlLastModified;
};

}  // namespace bmr::notes
