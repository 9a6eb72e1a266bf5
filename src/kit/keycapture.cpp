#include "kit/keycapture.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWindow>

#include "kit/guardedapplication.h"

namespace bmr::kit {

KeyCapture::KeyCapture(KeyPort& port, QWidget& dialog) : QObject(&dialog), port_(port), dialog_(dialog) {
    TimerHook.setObjectName("TimerHook");
    TimerHook.setInterval(kTick);
    connect(&TimerHook, &QTimer::timeout, this, &KeyCapture::Check);
    dialog_.installEventFilter(this);
    if (dialog_.isVisible()) Watch();
}

KeyCapture::~KeyCapture() {
    busy_ = false;
    Release();
}

void KeyCapture::Watch() {
    if (QWindow* window = dialog_.windowHandle(); window && window != window_) {
        window_ = window;
        window->installEventFilter(this);
        GuardedApplication::SetGuarded(*window);
    }
    TimerHook.start();
    Check();
}

bool KeyCapture::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &dialog_) {
        switch (event->type()) {
            case QEvent::Show:
                Watch();
                break;
            case QEvent::WindowActivate:
                chord_ = false;
                Check();
                break;
            case QEvent::WindowDeactivate:
                Check();
                break;
            case QEvent::Hide:
                TimerHook.stop();
                busy_ = false;
                Release();
                break;
            default:
                break;
        }
    } else if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
        SeeKey(*static_cast<QKeyEvent*>(event));
    }
    return QObject::eventFilter(watched, event);
}

void KeyCapture::SeeKey(const QKeyEvent& key) {
    const bool down = key.type() == QEvent::KeyPress;
    switch (key.key()) {
        case Qt::Key_Alt:
        case Qt::Key_Meta:
        case Qt::Key_Super_L:
        case Qt::Key_Super_R:
            chord_ = down;
            return Check();
        default:
            break;
    }
    // Letters have the same number here and in the rules.
    const shell::Modifiers held{.ctrl = key.modifiers().testFlag(Qt::ControlModifier),
                                .alt = key.modifiers().testFlag(Qt::AltModifier),
                                .meta = key.modifiers().testFlag(Qt::MetaModifier)};
    const auto message = down ? shell::KeyMessage::Down : shell::KeyMessage::Up;
    const auto decision = shell::KeyRules().LowLevelKeys(0, message, static_cast<unsigned>(key.key()), held);
    if (decision.action == shell::KeyAction::PassAndRearm) emit ClipboardUsed();
}

void KeyCapture::Check() {
    if (!window_ || busy_) return;
    // A pop-up of our own has the keyboard for itself; when it closes, the platform has dropped the grab, and
    // the next tick takes it again.
    if (QApplication::activePopupWidget()) return;
    if (chord_ && !(QGuiApplication::queryKeyboardModifiers() & (Qt::AltModifier | Qt::MetaModifier))) {
        // The key went up while another window had the keyboard.
        chord_ = false;
    }
    if (!dialog_.isActiveWindow() || chord_) return Release();
    if (!held_) {
        port_.OnTyped([this](const std::u16string& text, bool rearms) {
            if (rearms) emit ClipboardUsed();
            if (!text.empty()) InsertTyped(QString::fromStdU16String(text));
        });
    }
    held_ = port_.Grab(window_, true);
    if (const auto caps = port_.CapsLock()) emit CapsLockTold(*caps);
}

void KeyCapture::Release() {
    if (!held_) return;
    held_ = false;
    port_.Grab(window_, false);
    port_.OnTyped({});
}

void KeyCapture::InsertTyped(const QString& text) {
    QWidget* box = QApplication::focusWidget();
    if (!box || box->window() != &dialog_) return;
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent key(type, 0, Qt::NoModifier, text);
        QCoreApplication::sendEvent(box, &key);
    }
}

bool KeyCapture::BeginBurst() {
    if (!window_ || !dialog_.isActiveWindow() || chord_ || QApplication::activePopupWidget()) return false;
    if (port_.NoiseNeedsRelease()) {
        Release();
    } else if (port_.InjectsIntoSystem()) {
        held_ = port_.Grab(window_, true);
        if (!held_) return false;
    }
    busy_ = true;
    return true;
}

void KeyCapture::EndBurst() {
    if (!busy_) return;
    busy_ = false;
    Check();
}

}  // namespace bmr::kit
