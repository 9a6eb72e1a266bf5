#include "kit/guards.h"

#include "kit/burst.h"
#include "kit/frmPW.h"
#include "kit/guardedapplication.h"
#include "kit/keycapture.h"
#include "kit/secretedit.h"

namespace bmr::kit {
namespace {

GuardedApplication* App() {
    return qobject_cast<GuardedApplication*>(QCoreApplication::instance());
}

}  // namespace

Guards::Guards(KeyPort& port, RandomSource& random, ClipboardGuard& clipboard)
    : port_(port), random_(random), clipboard_(clipboard) {
    if (auto* app = App()) app->SetGuards(this);
}

Guards::~Guards() {
    if (auto* app = App()) app->SetGuards(nullptr);
}

KeyCapture* Guards::Attach(QDialog& dialog) {
    auto* capture = new KeyCapture(port_, dialog);
    QObject::connect(capture, &KeyCapture::ClipboardUsed, &clipboard_,
                     &ClipboardGuard::RestartClipboardTimer);
    ClipboardGuard::GuardSelectionIn(dialog);
    return capture;
}

void Guards::Guard(QDialog& dialog) {
    Attach(dialog);
}

void Guards::GuardPrompt(frmPW& prompt) {
    KeyCapture* capture = Attach(prompt);
    auto* sender = new BurstSender(port_, *capture, random_, *prompt.InputBox(), *prompt.BurstBox());
    QObject::connect(&prompt, &frmPW::NoiseWanted, sender, [sender] { sender->SendNoise(); });
    QObject::connect(capture, &KeyCapture::CapsLockTold, &prompt, &frmPW::SetCapsLock);
    prompt.SetBeforeHide([sender](std::function<void()> hide) { sender->CloseAfterNoise(std::move(hide)); });
}

void GuardDialog(QDialog& dialog) {
    if (auto* app = App(); app && app->guards()) app->guards()->Guard(dialog);
}

}  // namespace bmr::kit
