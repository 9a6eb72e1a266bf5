#pragma once

#include <QDialog>

#include "base/random.h"
#include "kit/clipboardguard.h"
#include "kit/platform.h"

namespace bmr::kit {

class KeyCapture;
class frmPW;

/// The guards that dialogs attach to themselves. Made once where the program is put together and known to the
/// application object; without them every dialog works the same, unguarded.
class Guards final {
  public:
    /// All must outlive this; the application object forgets this when it goes.
    Guards(KeyPort& port, RandomSource& random, ClipboardGuard& clipboard);
    ~Guards();
    Guards(const Guards&) = delete;
    Guards& operator=(const Guards&) = delete;

    /// A dialog with text of a record: its typing is taken while it has the foreground, text selected in it
    /// goes to nobody, Ctrl+X, Ctrl+C and Ctrl+V arm the clipboard guard.
    void Guard(QDialog& dialog);

    /// The same for the passphrase prompt, with decoys after its changes and before it goes.
    void GuardPrompt(frmPW& prompt);

    /// What the keyboard's backend is and does, for About.
    std::string Describe() const { return port_.Describe(); }

  private:
    KeyCapture* Attach(QDialog& dialog);

    KeyPort& port_;
    RandomSource& random_;
    ClipboardGuard& clipboard_;
};

/// For the constructor of an edit dialog: guards it where the program has guards.
void GuardDialog(QDialog& dialog);

}  // namespace bmr::kit
