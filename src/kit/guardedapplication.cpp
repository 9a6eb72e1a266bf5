#include "kit/guardedapplication.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QLineEdit>
#include <QWindow>

namespace bmr::kit {
namespace {

constexpr const char* kGuarded = "_bmr_guarded";

/// Masked text is not announced; everything else goes its way, so that screen readers work in the rest of the
/// program.
void PassToScreenReader(QAccessibleEvent* event) {
    if (TellsMaskedText(*event)) return;
    QAccessible::installUpdateHandler(nullptr);
    QAccessible::updateAccessibility(event);
    QAccessible::installUpdateHandler(&PassToScreenReader);
}

/// A key that writes a character and is no command. AltGr comes as its own modifier or as Ctrl and Alt.
bool Writes(const QKeyEvent& key) {
    const QString text = key.text();
    if (text.isEmpty() || !text[0].isPrint()) return false;
    const auto commands = key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    return commands == Qt::NoModifier || commands == (Qt::ControlModifier | Qt::AltModifier);
}

/// Hands a copy of the key to the field that has the focus. The copy is no event of the system any more, and
/// those who watch the system's events inside this process pass it over. False when it must go the usual way.
bool TakeTyping(QWindow& window, const QKeyEvent& key) {
    if (!Writes(key) || QApplication::activePopupWidget() || QWidget::keyboardGrabber()) return false;
    QWidget* box = QApplication::focusWidget();
    if (!box || box->window()->windowHandle() != &window) return false;
    QKeyEvent copy(key.type(), key.key(), key.modifiers(), key.nativeScanCode(), key.nativeVirtualKey(),
                   key.nativeModifiers(), key.text(), key.isAutoRepeat(), static_cast<quint16>(key.count()));
    copy.setTimestamp(key.timestamp());
    QCoreApplication::sendEvent(box, &copy);
    return true;
}

}  // namespace

bool IsActivity(QEvent::Type type) {
    switch (type) {
        case QEvent::MouseMove:
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::Wheel:
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
        case QEvent::TabletMove:
        case QEvent::TabletPress:
        case QEvent::TabletRelease:
            return true;
        default:
            return false;
    }
}

bool TellsMaskedText(const QAccessibleEvent& event) {
    const auto type = event.type();
    if (type != QAccessible::TextInserted && type != QAccessible::TextRemoved &&
        type != QAccessible::TextUpdated && type != QAccessible::ValueChanged)
        return false;
    const auto* edit = qobject_cast<QLineEdit*>(event.object());
    return edit && edit->echoMode() != QLineEdit::Normal;
}

GuardedApplication::GuardedApplication(int& argc, char** argv) : QApplication(argc, argv) {
    QAccessible::installUpdateHandler(&PassToScreenReader);
}

GuardedApplication::~GuardedApplication() {
    QAccessible::installUpdateHandler(nullptr);
}

void GuardedApplication::SetGuarded(QWindow& window) {
    window.setProperty(kGuarded, true);
}

bool GuardedApplication::IsGuarded(const QWindow& window) {
    return window.property(kGuarded).toBool();
}

void GuardedApplication::AddKeyFilter(const QObject& owner, std::function<bool(const QKeyEvent&)> takes) {
    keyFilters_.push_back({&owner, std::move(takes)});
}

void GuardedApplication::RemoveKeyFilter(const QObject& owner) {
    std::erase_if(keyFilters_, [&owner](const KeyFilter& filter) { return filter.owner == &owner; });
}

bool GuardedApplication::notify(QObject* receiver, QEvent* event) {
    if (!event->spontaneous() || !receiver->isWindowType()) return QApplication::notify(receiver, event);
    const auto type = event->type();
    if (onActivity_ && IsActivity(type)) onActivity_();
    if (type == QEvent::KeyPress || type == QEvent::KeyRelease || type == QEvent::ShortcutOverride) {
        const auto& key = *static_cast<QKeyEvent*>(event);
        for (const KeyFilter& filter : keyFilters_) {
            if (!filter.takes(key)) continue;
            event->accept();  // no shortcut either
            return true;
        }
        auto* window = static_cast<QWindow*>(receiver);
        if (type != QEvent::ShortcutOverride && IsGuarded(*window) && TakeTyping(*window, key)) return true;
    }
    return QApplication::notify(receiver, event);
}

}  // namespace bmr::kit
