#pragma once

#include <QDialog>
#include <optional>

#include "custody/drafts.h"
#include "notes/memo.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace bmr::kit {
class CategoryField;
}

namespace bmr::notes {

/// The editor of one memo. It takes a memo and gives one; whether it is to be stored tells `recordChanged`,
/// which stays set when the form is left by "No" to discarding.
class frmEditNotepad final : public QDialog {
    Q_OBJECT

  public:
    frmEditNotepad(store::Session& session, const Memo& memo, QWidget* parent = nullptr);
    ~frmEditNotepad() override;

    bool recordChanged = false;
    Memo Value() const;

    /// What the controls hold; nothing when nothing was changed.
    std::optional<custody::Draft> HalfWritten() const;
    /// Puts a draft into the controls, as if it had been typed.
    void Fill(const custody::Draft& draft);

    void reject() override;

  private:
    void BuildControls();
    void Lay();
    void Changed();
    bool Storable();
    void cmdOK_Click();
    Bytes Body() const;

    store::Session& session_;
    Memo memo_;
    bool crlf_ = true;  ///< line ends of the body as they are kept
    bool filling_ = false;
    bool cutAccepted_ = false;  ///< the user agreed that a long text is cut

    QLineEdit* ctlSubject;
    QLabel* lblSubjectError;
    QPlainTextEdit* ctlNote;
    QLabel* lblNoteError;
    QLabel* lblLength;
    QCheckBox* ctlPrivate;
    kit::CategoryField* cboCategory;
    QPushButton* cmdOK;
    QPushButton* cmdEsc;
};

}  // namespace bmr::notes
