#pragma once

#include "kit/categoryfield.h"
#include "kit/editround.h"
#include "kit/listpane.h"
#include "kit/namedlistmodel.h"
#include "kit/sectionform.h"
#include "notes/memo.h"

class QFrame;
class QLabel;
class QPlainTextEdit;

namespace bmr::kit {
class PrivateMark;
class RecordListView;
}  // namespace bmr::kit

namespace bmr::notes {

/// The memo section: subjects in alphabetical order at the left, the chosen memo at the right.
class frmNotepad final : public SectionForm {
    Q_OBJECT

  public:
    explicit frmNotepad(store::Session& session, QWidget* parent = nullptr);
    ~frmNotepad() override;

    QMenu* SectionMenu() override { return menu_; }
    QList<QAction*> ToolActions() override;
    QString HelpPage() const override { return "memos"; }
    void Refresh() override;
    void SetSearch(const QString& text) override { pane_->SetSearch(text); }
    void SelectRecord(std::int32_t fPK) override;
    kit::ListPane* Pane() const override { return pane_; }
    bool Editing() const override { return round_.Open() || asksSubject_ || cboCategories->Editing(); }
    std::vector<custody::Draft> Drafts() const override;
    void OpenDraft(const custody::Draft& draft) override;

    // The operations that the menus call.
    void cmdAdd_Click();
    void cmdEdit_Click();
    void cmdDelete_Click();
    void mnuMemoDeleteAll_Click(bool oneCategory);

  private:
    void BuildActions();
    void BuildMenu();
    void BuildList();
    void BuildPad();
    void Lay();

    kit::Emptiness WhyEmpty() const;
    kit::NamedListModel::Details DetailsOf(std::int32_t key) const;
    void ShowMemo(std::int32_t key);
    void HidePad();
    /// With a draft the editor comes up filled with it.
    void EditRecord(Memo memo, const custody::Draft* draft = nullptr);

    store::Session& session_;
    kit::NamedListModel* model_;
    kit::EditRound round_;
    bool asksSubject_ = false;  ///< the box that asks for a new memo's subject is open
    kit::ListPane* pane_;
    QMenu* menu_;

    QAction* mnuMemoAdd;
    QAction* mnuMemoEdit;
    QAction* mnuMemoDeleteSelected;
    QAction* mnuMemoDeleteCategory;
    QAction* mnuMemoDeleteAll;

    kit::CategoryField* cboCategories;
    kit::RecordListView* listSelect;
    QFrame* padFrame;
    QLabel* txtSubject;
    QPlainTextEdit* txtInput;
    kit::PrivateMark* ctlPrivate;
    QLabel* cboCategory;
    QLabel* ctlDateCreated;
    QLabel* ctlLastModified;
};

}  // namespace bmr::notes
