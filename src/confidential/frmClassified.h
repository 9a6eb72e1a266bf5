#pragma once

#include <array>
#include <functional>

#include "confidential/confidential.h"
#include "confidential/kinds.h"
#include "kit/editround.h"
#include "kit/fieldmenu.h"
#include "kit/listpane.h"
#include "kit/sectionform.h"

class QAbstractButton;
class QCheckBox;
class QFormLayout;
class QFrame;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QScrollArea;
class QToolButton;

namespace bmr::kit {
class NamedListModel;
class PrivateMark;
class RecordListView;
}  // namespace bmr::kit

namespace bmr::confidential {

/// The confidential section: sixteen kinds, the records of the chosen kind, and the chosen record.
class frmClassified final : public SectionForm {
    Q_OBJECT

  public:
    /// `copy` puts a text into the clipboard, under its guard.
    frmClassified(store::Session& session, std::function<void(const QString&)> copy,
                  QWidget* parent = nullptr);
    ~frmClassified() override;

    QMenu* SectionMenu() override { return menu_; }
    QList<QAction*> ToolActions() override;
    QString HelpPage() const override { return "confidential"; }
    void Refresh() override;
    void SetSearch(const QString& text) override { pane_->SetSearch(text); }
    void SelectRecord(std::int32_t fPK) override;
    kit::ListPane* Pane() const override { return pane_; }
    bool Editing() const override { return round_.Open(); }
    std::vector<custody::Draft> Drafts() const override { return round_.Drafts(); }
    void OpenDraft(const custody::Draft& draft) override;

    void cat_Click(int Index);
    void cmdAdd_Click();
    void cmdEdit_Click();
    void cmdDelete_Click();
    void chkPlainPW_Click();
    void mnuCopy_Click();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    struct Row {
        QLabel* lblTxt;
        QLineEdit* txtCtl;
        QToolButton* copy;
        QToolButton* open;
    };

    void BuildActions();
    QWidget* BuildKinds();
    QWidget* BuildList();
    QWidget* BuildPad();
    void BuildRow(QFormLayout& form, std::size_t i);

    void listSelect_Initialize(std::int32_t key);
    void ShowRecord(std::int32_t key);
    void ShowFields();
    void HidePad();
    /// The pad of a new record: empty behind the dialog that covers it.
    void ShowEmptyPad();
    /// The keyboard goes on in the list, or at the kind while its list is empty.
    void FocusList();
    bool KindKey(QAbstractButton& kind, int key);
    void ShowNothing();
    /// With a draft the editor comes up filled with it.
    void EditRecord(Record record, const custody::Draft* draft = nullptr);
    void CopyField(std::size_t i);
    void OpenField(std::size_t i);
    kit::FieldUse UseOf(std::size_t i) const;
    bool IsMasked(std::size_t i) const;
    kit::Emptiness WhyEmpty() const;
    const Kind* CurrentKind() const { return ConfidentialKindFields(currentKind); }
    QString FieldText(std::size_t i) const;

    store::Session& session_;
    std::function<void(const QString&)> copy_;
    kit::NamedListModel* model_;
    std::int32_t currentKind = 0;
    Record record_;  ///< what the pad shows; wiped with it
    kit::EditRound round_;
    kit::ListPane* pane_;

    QMenu* menu_;
    QAction* addRecord_;
    QAction* editRecord_;
    QAction* deleteRecord_;
    QAction* copyField_;

    QScrollArea* kindsArea_;
    std::array<QAbstractButton*, 17> cat{};
    kit::RecordListView* ListSelect = nullptr;
    QFrame* padFrame = nullptr;
    QFormLayout* padForm_ = nullptr;
    QLabel* lblCategory;
    QLabel* damaged_;
    QLabel* lblLastModified;
    kit::PrivateMark* ctlPrivate;
    std::array<Row, 5> rows_{};
    QPlainTextEdit* txtTall_;  ///< the second field where it is several lines high
    QLabel* lblNotes;
    QPlainTextEdit* txtNotes;
    QCheckBox* chkPlainPW;
};

}  // namespace bmr::confidential
