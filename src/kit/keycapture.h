#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include "kit/platform.h"
#include "shell/keyrules.h"

class QKeyEvent;

namespace bmr::kit {

/// Takes the keyboard for one dialog as long as it has the foreground, and only then. Lives as a child of the
/// dialog.
///
/// While Alt or the desktop's own key is held the keyboard is given back, so that the user can still change
/// windows and menus still open: what is typed then is a command and no text.
class KeyCapture final : public QObject {
    Q_OBJECT

  public:
    static constexpr int kTick = 200;  ///< ms

    /// `port` must outlive the dialog.
    KeyCapture(KeyPort& port, QWidget& dialog);
    ~KeyCapture() override;

    bool Held() const { return held_; }

    /// Makes ready for a burst of decoys: true when none of them can reach another window. From then on the
    /// keyboard is kept, whatever happens, until `EndBurst`.
    bool BeginBurst();
    void EndBurst();

  signals:
    /// Ctrl+X, Ctrl+C or Ctrl+V went down in the dialog.
    void ClipboardUsed();
    /// Where the platform tells: at each look, the first as soon as the dialog is in front.
    void CapsLockTold(bool on);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Check();
    void Release();
    void Watch();
    void SeeKey(const QKeyEvent& key);
    void InsertTyped(const QString& text);

    KeyPort& port_;
    QWidget& dialog_;
    QPointer<QWindow> window_;
    QTimer TimerHook;
    bool held_ = false;
    bool busy_ = false;   ///< a burst is under way
    bool chord_ = false;  ///< Alt or the desktop's key is down
};

}  // namespace bmr::kit
