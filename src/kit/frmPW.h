#pragma once

#include <QDialog>
#include <functional>

#include "base/ports.h"
#include "crypto/secret.h"
#include "shell/passcheck.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;

namespace bmr::kit {

class SecretEdit;

/// The one prompt through which a passphrase or a PIN is typed. It tests the quality of a new one and asks
/// for it twice, as the request says. Its size never changes, so that nothing moves while decoys are typed.
///
/// A sender of decoys attaches itself by `NoiseWanted` and `SetBeforeHide`, the box `txtBurst` and the edit
/// `txtInput`; the form works the same without one.
class frmPW final : public QDialog {
    Q_OBJECT

  public:
    /// `boxes` shows the form's own questions.
    frmPW(const PassphraseRequest& request, Prompter& boxes, QWidget* parent = nullptr);
    ~frmPW() override;

    /// `TypedSecret`: what was typed, empty after a cancel. Bytes of code page 1252; handed over once.
    Secret TakeTypedSecret();

    QLineEdit* BurstBox() const { return txtBurst; }
    SecretEdit* InputBox() const { return txtInput; }

    /// Called once when the form is left, with nothing in it any more; it hides when `hide` is called.
    void SetBeforeHide(std::function<void(std::function<void()> hide)> beforeHide) {
        beforeHide_ = std::move(beforeHide);
    }

    /// What the platform or the last letter tells about Caps Lock.
    void SetCapsLock(bool on);

    void done(int result) override;

  signals:
    /// The text changed and the request wants decoys for it.
    void NoiseWanted();

  protected:
    void showEvent(QShowEvent* event) override;

  private:
    void BuildTexts();
    void BuildEntry();
    void Lay();
    void ShowMeter(bool on);
    void Restart();
    void InputChanged();
    void ShowHint(const QString& text, bool alarm);
    void ShowQuality();
    void cmdOK_Click();

    PassphraseRequest request_;
    Prompter& boxes_;
    std::function<void(std::function<void()>)> beforeHide_;
    bool leaving_ = false;
    bool capsLock_ = false;
    shell::SecretEntry entry_;
    Secret TypedSecret;

    QLabel* lblTitle;
    QLabel* lblPrompt;
    QLabel* lblHint;
    QLabel* lblQuality = nullptr;
    QProgressBar* barQuality = nullptr;
    SecretEdit* txtInput;
    QLineEdit* txtBurst;
    QCheckBox* chkShowClear;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;
};

}  // namespace bmr::kit
