#pragma once

#include <QDialog>
#include <array>
#include <optional>

#include "confidential/confidential.h"
#include "kit/editorfields.h"
#include "kit/tabring.h"

class QCheckBox;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QToolButton;

namespace bmr::confidential {

/// The dialog over the pad: every value in the open, whatever the pad masks. It stores nothing;
/// `recordChanged` tells whether its values are to be stored once it has closed.
class frmEditConfidential final : public QDialog {
    Q_OBJECT

  public:
    frmEditConfidential(store::Session& session, const Record& record, QWidget* parent = nullptr);
    ~frmEditConfidential() override;

    bool recordChanged = false;
    Record Value();

    /// What the controls hold; nothing when nothing was changed.
    std::optional<custody::Draft> HalfWritten() const;
    /// Puts a draft of the same kind into the controls, as if it had been typed.
    void Fill(const custody::Draft& draft);

    /// Takes the place of the pad on the screen.
    void Cover(const QWidget& pad);

    void reject() override;

  protected:
    bool focusNextPrevChild(bool next) override { return kit::StepFocus(*this, next); }
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void BuildFields();
    void Lay();
    void cmdOK_Click();
    QWidget* Field(std::size_t i) const;
    void MoveOn(std::size_t from);
    void Generate(std::size_t i);

    store::Session& session_;
    Record record_;
    kit::EditorFields fields_;
    bool singleLineField1 = true;

    std::array<QLineEdit*, 5> txtCtl{};
    std::array<QToolButton*, 5> dice_{};
    QPlainTextEdit* tmpTxt;
    QPlainTextEdit* txtNotes;
    QCheckBox* ctlPrivate;
    QPushButton* cmdOK;
    QPushButton* cmdEsc;
};

}  // namespace bmr::confidential
