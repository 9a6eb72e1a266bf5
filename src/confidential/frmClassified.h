#pragma once

#include <QPointer>
#include <array>
#include <functional>

#include "confidential/confidential.h"
#include "confidential/kinds.h"
#include "kit/fieldmenu.h"
#include "kit/sectionform.h"

class QAbstractButton;
class QCheckBox;
class QFormLayout;
class QFrame;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QScrollArea;
class QStackedLayout;
class QToolButton;

namespace bmr::kit {
class EmptyState;
class NamedListModel;
class RecordListView;
}  // namespace bmr::kit

namespace bmr::confidential {

class frmEditConfidential;

/// The confidential section: sixteen kinds, the records of the chosen kind, and the chosen record.
class frmClassified final : public SectionForm {
    Q_OBJECT

  public:
    /// `copy` puts a text into the clipboard, under its guard.
    frmClassified(store::Session& session, std::function<void(const QString&)> copy,
                  QWidget* parent = nullptr);
    ~frmClassified() override;

    QMenu* SectionMenu() override { return mnuConfidential; }
    QList<QAction*> ToolActions() override;
    void Refresh() override;
    void SetSearch(const QString& text) override;
    void SelectRecord(std::int32_t fPK) override;
    bool Editing() const override { return editing_; }
    std::vector<custody::Draft> Drafts() const override;
    void OpenDraft(const custody::Draft& draft) override;

    void cat_Click(int Index);
    void cmdAdd_Click();
    void cmdEdit_Click();
    void cmdDelete_Click();
    void chkPlainPW_Click();
    void mnuCopy_Click();

  protected:
    void showEvent(QShowEvent* event) override;
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
    void ShowEmptyState();
    void TellStatus();
    const Kind* CurrentKind() const { return ConfidentialKindFields(currentKind); }
    QString FieldText(std::size_t i) const;

    store::Session& session_;
    std::function<void(const QString&)> copy_;
    kit::NamedListModel* model_;
    std::int32_t currentKind = 0;
    Record record_;  ///< what the pad shows; wiped with it
    QString search_;
    bool editing_ = false;
    QPointer<frmEditConfidential> editor_;

    QMenu* mnuConfidential;
    QAction* mnuAdd;
    QAction* mnuEdit;
    QAction* mnuDelete;
    QAction* mnuCopy;

    QScrollArea* kindsArea_;
    std::array<QAbstractButton*, 17> cat{};
    kit::RecordListView* ListSelect = nullptr;
    kit::EmptyState* empty_;
    QStackedLayout* stack_;
    QFrame* padFrame = nullptr;
    QFormLayout* padForm_ = nullptr;
    QLabel* lblCategory;
    QLabel* lblDamaged;
    QLabel* lblLastModified;
    QCheckBox* ctlPrivate;
    std::array<Row, 5> rows_{};
    QPlainTextEdit* txtTall_;  ///< the second field where it is several lines high
    QLabel* lblNotes;
    QPlainTextEdit* txtNotes;
    QCheckBox* chkPlainPW;
    QPushButton* cmdAdd;
    QPushButton* cmdEdit;
    QPushButton* cmdDelete;
};

}  // namespace bmr::confidential
