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
class QStackedWidget;
class QToolButton;

namespace bmr::kit {
class NamedListModel;
class PadPane;
class PrivateMark;
class RecordListView;
}  // namespace bmr::kit

namespace bmr::confidential {

class FoundModel;

/// The confidential section: sixteen kinds, the records of the chosen kind, and the chosen record. A search
/// goes through all kinds and has a list of its own, which stands in the place of the other while it lasts.
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
    void SetSearch(const QString& text) override;
    void SelectRecord(std::int32_t fPK) override;
    kit::ListPane* Pane() const override { return searching_ ? found_ : pane_; }
    bool Editing() const override { return round_.Open(); }
    std::vector<custody::Draft> Drafts() const override { return round_.Drafts(); }
    void OpenDraft(const custody::Draft& draft) override;

    void cat_Click(int Index);
    void cmdAdd_Click();
    /// The entry of the menu and its key: asks for the kind while none is chosen.
    void mnuConfidentialAdd_Click();
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

    void BuildFound();

    void listSelect_Initialize(std::int32_t key);
    void PressKind(std::int32_t kind, std::int32_t key);
    bool AskKind();
    void ShowCaptions(std::int32_t kind);
    /// Back from what was found to the kind of the chosen record, or to where the search began.
    void LeaveSearch();
    void CloseFound();
    /// In the menu stand the verbs of the list that is shown.
    void ShowRowActions();
    /// Where the keyboard goes on when the section gets it, and whether the pad waits for a choice.
    void AimFocus();
    /// The kinds are one stop for Tab: the pressed one, else the first.
    void AimKinds();
    kit::RecordListView* ShownList() const { return (searching_ ? found_ : pane_)->List(); }
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
    /// The kind whose captions the pad has: of the chosen record, else the one that is pressed.
    const Kind* ShownKind() const { return ConfidentialKindFields(shownKind_); }
    QString FieldText(std::size_t i) const;

    store::Session& session_;
    std::function<void(const QString&)> copy_;
    kit::NamedListModel* model_;
    FoundModel* foundModel_;
    std::int32_t currentKind = 0;
    std::int32_t shownKind_ = 0;
    bool searching_ = false;
    bool foundRead_ = false;  ///< the list of what was found is read for the first time by us
    Record record_;           ///< what the pad shows; wiped with it
    kit::EditRound round_;
    kit::ListPane* pane_;
    kit::ListPane* found_;
    QStackedWidget* lists_;

    QMenu* menu_;
    QAction* addRecord_;
    QAction* editRecord_;
    QAction* deleteRecord_;
    QAction* copyField_;

    QScrollArea* kindsArea_;
    std::array<QAbstractButton*, 17> cat{};
    QAbstractButton* cmdAdd = nullptr;
    kit::RecordListView* ListSelect = nullptr;
    kit::PadPane* padPane_ = nullptr;
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
