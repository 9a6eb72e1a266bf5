#include "kit/burst.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <algorithm>

#include "kit/guardedapplication.h"

namespace bmr::kit {
namespace {

constexpr int kClosingBursts = 5;
/// When more keys than this wait (somebody drums on the keyboard), they are handed over together and get one
/// burst: what is typed must not lag behind the hand.
constexpr std::size_t kPatience = 8;
/// A decoy that the platform cannot confirm is given up after this time.
constexpr int kLostAfter = 60;    // ms
constexpr int kStuckAfter = 500;  // ms, where the platform confirms

bool IsCommand(const QKeyEvent& key) {
    const auto commands = key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    return commands != Qt::NoModifier && commands != (Qt::ControlModifier | Qt::AltModifier);
}

}  // namespace

BurstSender::BurstSender(KeyPort& port, KeyCapture& capture, RandomSource& random, QLineEdit& txtInput,
                         QLineEdit& txtBurst)
    : QObject(&txtInput),
      port_(port),
      capture_(capture),
      random_(random),
      txtInput_(txtInput),
      txtBurst_(txtBurst) {
    watchdog_.setSingleShot(true);
    connect(&watchdog_, &QTimer::timeout, this, &BurstSender::Lost);
    txtBurst_.setUpdatesEnabled(false);  // not even its one pixel is to blink
    txtInput_.installEventFilter(this);
    txtBurst_.installEventFilter(this);
    // A decoy that comes when its box can no longer take it (a menu opened, the focus went) must get nowhere.
    if (auto* app = qobject_cast<GuardedApplication*>(QCoreApplication::instance()))
        app->AddKeyFilter(*this, [this](const QKeyEvent& key) { return CannotArrive() && IsDecoy(key); });
}

BurstSender::~BurstSender() {
    if (auto* app = qobject_cast<GuardedApplication*>(QCoreApplication::instance()))
        app->RemoveKeyFilter(*this);
}

bool BurstSender::CannotArrive() const {
    return !running_ || !txtBurst_.hasFocus() || QApplication::activePopupWidget();
}

void BurstSender::SendNoise(int bursts) {
    wanted_ += bursts;
    Begin();
}

void BurstSender::CloseAfterNoise(std::function<void()> closed) {
    closed_ = std::move(closed);
    held_.clear();
    wanted_ = kClosingBursts;
    Begin();
}

void BurstSender::Begin() {
    if (starting_ || running_ || replayed_) return;
    starting_ = true;
    // Not at once: the change that asks for noise is still being worked on further up.
    QMetaObject::invokeMethod(this, &BurstSender::Enter, Qt::QueuedConnection);
}

void BurstSender::Enter() {
    starting_ = false;
    if (wanted_ <= 0) return Rest();
    if (!port_.Usable() || !txtInput_.isVisible() || !capture_.BeginBurst()) {
        wanted_ = 0;
        return Rest();
    }
    --wanted_;
    running_ = true;
    port_.Aim(&txtBurst_);
    focused_ = txtInput_.window()->focusWidget();
    caret_ = txtInput_.cursorPosition();
    SelStart_ = txtInput_.selectionStart();
    SelLength_ = txtInput_.selectionLength();
    txtInput_.setUpdatesEnabled(false);  // the entry keeps its picture while it is without the focus
    txtBurst_.setEnabled(true);
    txtBurst_.setFocus(Qt::PopupFocusReason);  // a reason that leaves the selection alone
    plan_ = shell::DrawBurst(random_);
    place_ = 0;
    SendNext();
}

void BurstSender::SendNext() {
    if (!running_) return;
    watchdog_.stop();
    while (place_ < static_cast<std::size_t>(plan_.count)) {
        if (CannotArrive() || !txtBurst_.isActiveWindow()) break;
        port_.Look();
        if (port_.CommandHeld()) break;
        if (SendKey(place_++)) return;
    }
    End();
}

/// False when no key for this place could be found: all that were drawn are held down or missing.
bool BurstSender::SendKey(std::size_t place) {
    constexpr int kTries = 32;
    unsigned scan = port_.ScanFor(plan_.NoiseKeys[place]);
    for (int i = 0; i < kTries && (scan == 0 || port_.IsDown(scan)); ++i) {
        shell::RedrawKey(plan_, place, random_);
        scan = port_.ScanFor(plan_.NoiseKeys[place]);
    }
    if (scan == 0 || port_.IsDown(scan)) return false;
    // A Shift that the user holds serves for the decoy too; our own would end it when it goes up.
    const unsigned shift = port_.ScanFor(KeyPort::kShift);
    const bool shifted = plan_.NoiseShift[place] == 1 && !port_.ShiftHeld();
    if (shifted) {
        Await(shift);
        port_.Key(shift, true);
    }
    Await(scan);
    port_.Key(scan, true);
    port_.Key(scan, false);
    if (shifted) port_.Key(shift, false);
    port_.Flush();  // in one go: no key of the user falls between
    const quint64 number = ++keys_;
    confirms_ = port_.Fence(txtInput_.window()->windowHandle(), [self = QPointer(this), number] {
        if (self) self->Reached(number);
    });
    watchdog_.start(confirms_ ? kStuckAfter : kLostAfter);
    return true;
}

void BurstSender::Lost() {
    // A platform that confirms and does not is stuck: stop, and go on waiting for what is still on its way.
    if (confirms_) return End();
    awaited_.clear();
    SendNext();
}

void BurstSender::Await(unsigned scan) {
    awaited_.push_back({scan, true});
    awaited_.push_back({scan, false});
}

void BurstSender::Reached(quint64 number) {
    if (number != keys_) return;
    awaited_.clear();  // what has not come by now was lost on the way
    SendNext();
}

void BurstSender::End() {
    if (!running_) return;
    running_ = false;
    watchdog_.stop();
    txtBurst_.setText({});  // not clear(): that would also end an accent that the user has begun
    // A click of the user may have gone elsewhere meanwhile; then that is where the focus and the caret are.
    const bool undisturbed = txtInput_.window()->focusWidget() == &txtBurst_;
    if (undisturbed) (focused_ ? focused_.data() : &txtInput_)->setFocus(Qt::PopupFocusReason);
    txtBurst_.setEnabled(false);
    if (undisturbed) RestoreSelection();
    txtInput_.setUpdatesEnabled(true);
    capture_.EndBurst();
    Replay(false);
}

void BurstSender::RestoreSelection() {
    const int end = SelStart_ + SelLength_;
    if (SelStart_ < 0) {
        txtInput_.setCursorPosition(caret_);
    } else if (caret_ == end) {
        txtInput_.setSelection(SelStart_, SelLength_);
    } else {
        txtInput_.setSelection(end, -SelLength_);
    }
}

void BurstSender::Replay(bool all) {
    if (replayed_) return;
    const QPointer<BurstSender> self(this);
    while (!held_.empty()) {
        const std::unique_ptr<QEvent> event = std::move(held_.front());
        held_.pop_front();
        QWidget* box = txtInput_.window()->focusWidget();
        replayed_ = event.get();
        QCoreApplication::sendEvent(box ? box : &txtInput_, event.get());
        if (!self) return;
        replayed_ = nullptr;
        if (wanted_ > 0 && held_.size() < kPatience && !all) break;
        if (!closed_) wanted_ = std::min(wanted_, 1);
    }
    if (wanted_ > 0)
        Begin();
    else
        Rest();
}

void BurstSender::Rest() {
    if (!held_.empty()) return Replay(false);
    if (closed_) std::exchange(closed_, nullptr)();
}

bool BurstSender::IsDecoy(const QKeyEvent& key) {
    const bool press = key.type() != QEvent::KeyRelease;
    const auto found = std::find_if(awaited_.begin(), awaited_.end(), [&](const Awaited& awaited) {
        return awaited.scan == key.nativeScanCode() && awaited.press == press;
    });
    if (found == awaited_.end()) return false;
    if (key.type() != QEvent::ShortcutOverride) {
        awaited_.erase(found);
        // Without the platform's word the last release is the sign to go on.
        if (awaited_.empty() && !confirms_)
            QMetaObject::invokeMethod(this, &BurstSender::SendNext, Qt::QueuedConnection);
    }
    return true;
}

bool BurstSender::HoldShortcut(QKeyEvent& key) {
    if (!IsCommand(key)) {
        key.accept();
        return true;
    }
    // A command acts at once, but on all that was typed before it.
    wanted_ = 0;
    End();
    Replay(true);
    return false;
}

bool BurstSender::Hold(QEvent& event) {
    held_.emplace_back(event.clone());
    return true;
}

bool BurstSender::eventFilter(QObject* watched, QEvent* event) {
    const auto type = event->type();
    const bool isKey =
        type == QEvent::KeyPress || type == QEvent::KeyRelease || type == QEvent::ShortcutOverride;
    if ((!isKey && type != QEvent::InputMethod) || event == replayed_) return false;

    const bool inBox = watched == &txtBurst_;
    if (isKey && IsDecoy(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return !inBox || type == QEvent::ShortcutOverride || IsCommand(*static_cast<QKeyEvent*>(event));
    }
    if (closed_) return true;  // typed after the form was left: it belongs to nobody
    // Behind a key that waits all that follow wait too, whichever box they came to.
    if (!running_ && held_.empty()) return false;
    return type == QEvent::ShortcutOverride ? HoldShortcut(*static_cast<QKeyEvent*>(event)) : Hold(*event);
}

}  // namespace bmr::kit
