#pragma once

#include <QDialog>
#include <optional>

#include "kit/editorfields.h"
#include "kit/tabring.h"
#include "notes/memo.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace bmr::notes {

/// The editor of one memo. It takes a memo and gives one; whether it is to be stored tells `recordChanged`,
/// which stays set when the form is left by "No" to discarding.
class frmEditNotepad final : public QDialog {
    Q_OBJECT

  public:
    frmEditNotepad(store::Session& session, const Memo& memo, QWidget* parent = nullptr);
    ~frmEditNotepad() override;

    bool recordChanged = false;
    Memo Value();

    /// What the controls hold; nothing when nothing was changed.
    std::optional<custody::Draft> HalfWritten() const;
    /// A draft of a new memo that has its subject only.
    static custody::Draft DraftOf(const QString& subject, std::int32_t category);
    /// Puts a draft into the controls, as if it had been typed.
    void Fill(const custody::Draft& draft);

    void reject() override;

  protected:
    bool focusNextPrevChild(bool next) override { return kit::StepFocus(*this, next); }

  private:
    void BuildControls();
    void Lay();
    void Changed();
    void cmdOK_Click();

    store::Session& session_;
    Memo memo_;
    kit::EditorFields fields_;

    QLineEdit* ctlSubject;
    QPlainTextEdit* ctlNote;
    QLabel* length_;
    QCheckBox* ctlPrivate;
    kit::CategoryField* cboCategory;
    QPushButton* cmdOK;
    QPushButton* cmdEsc;
};

}  // namespace bmr::notes
