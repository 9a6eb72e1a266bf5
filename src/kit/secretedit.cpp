#include "kit/secretedit.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <algorithm>

#include "kit/words.h"

namespace bmr::kit {

namespace {

// Not in code page 1252, so that it can never be mistaken for typed text.
constexpr QChar kFiller(u'●');

}  // namespace

SecretEdit::SecretEdit(QWidget* parent) : QLineEdit(parent) {
    setEchoMode(QLineEdit::Password);
    setAcceptDrops(false);
    setDragEnabled(false);
    // Whatever way into the base class was not thought of, a test that sets the text included, ends here.
    connect(this, &QLineEdit::textChanged, this, [this](const QString& shown) {
        if (!own_) Adopt(shown);
    });
}

SecretEdit::~SecretEdit() = default;

void SecretEdit::SetContent(Secret content) {
    content_ = std::move(content);
    ShowContent(static_cast<int>(content_.size()));
    emit ContentChanged();
}

Secret SecretEdit::TakeContent() {
    Secret taken = std::move(content_);
    Empty();
    return taken;
}

void SecretEdit::Empty() {
    content_.Wipe();
    ShowContent(0);
    emit ContentChanged();
}

void SecretEdit::SetClear(bool clear) {
    if (clear == clear_) return;
    clear_ = clear;
    const int cursor = cursorPosition();
    const int start = selectionStart();
    const auto length = selectedText().size();
    if (!clear)
        ShowContent(cursor);  // the fillers first, then the mask: no moment of dots over the true text
    setEchoMode(clear ? QLineEdit::Normal : QLineEdit::Password);
    if (clear) ShowContent(cursor);
    if (start >= 0) setSelection(start, static_cast<int>(length));
}

void SecretEdit::ShowContent(int cursor) {
    own_ = true;
    // setText drops the undo list of the base class; the string before is overwritten in place first.
    if (clear_ || !text().isEmpty()) {
        QString old = text();
        const auto length = old.size();
        setText(QString(length, kFiller));
        WipeQString(old);
    }
    setText(clear_ ? ToQString(content_.view()) : QString(static_cast<qsizetype>(content_.size()), kFiller));
    setCursorPosition(std::min(cursor, static_cast<int>(content_.size())));
    own_ = false;
}

void SecretEdit::Replace(int start, int length, std::string_view with) {
    const std::string_view before = content_.view();
    const auto from = static_cast<std::size_t>(start);
    Secret changed(before.substr(0, from));
    changed.Append(with);
    changed.Append(before.substr(from + static_cast<std::size_t>(length)));
    content_ = std::move(changed);
    ShowContent(start + static_cast<int>(with.size()));
    emit ContentChanged();
}

bool SecretEdit::Insert(const QString& typed) {
    QString text = typed;
    text.remove('\n').remove('\r');
    if (text.isEmpty()) return false;
    if (const QString why = RefusalOf(text); !why.isEmpty()) {
        emit Refused(tr("Not taken. ") + why);
        QApplication::beep();
        return false;
    }
    const int start = hasSelectedText() ? selectionStart() : cursorPosition();
    Replace(start, static_cast<int>(selectedText().size()), ToLatinSecret(text).view());
    WipeQString(text);
    return true;
}

void SecretEdit::Erase(bool backwards, bool whole) {
    if (hasSelectedText()) return Replace(selectionStart(), static_cast<int>(selectedText().size()), {});
    const int at = cursorPosition();
    const int end = static_cast<int>(content_.size());
    const int from = backwards ? (whole ? 0 : std::max(0, at - 1)) : at;
    const int to = backwards ? at : (whole ? end : std::min(end, at + 1));
    if (from < to) Replace(from, to - from, {});
}

void SecretEdit::JudgeCapsLock(const QKeyEvent& event) {
    const QString typed = event.text();
    if (typed.size() != 1 || !typed[0].isLetter() || typed[0].toUpper() == typed[0].toLower()) return;
    const bool shift = event.modifiers() & Qt::ShiftModifier;
    emit CapsLockSeen(typed[0].isUpper() != shift);
}

bool SecretEdit::event(QEvent* event) {
    // Undo and redo would act on fillers; as shortcuts they would reach the base class before keyPressEvent.
    if (event->type() == QEvent::ShortcutOverride) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo)) {
            event->accept();
            return true;
        }
    }
    return QLineEdit::event(event);
}

void SecretEdit::keyPressEvent(QKeyEvent* event) {
    const bool control = event->modifiers() & Qt::ControlModifier;
    if (event->matches(QKeySequence::Undo) || event->matches(QKeySequence::Redo) ||
        event->matches(QKeySequence::Copy) || event->matches(QKeySequence::Cut)) {
        event->accept();  // a passphrase goes neither back in time nor to the clipboard
    } else if (event->matches(QKeySequence::Paste)) {
        Insert(QApplication::clipboard()->text());
    } else if (event->key() == Qt::Key_Backspace || event->key() == Qt::Key_Delete) {
        Erase(event->key() == Qt::Key_Backspace, control);
    } else if (event->matches(QKeySequence::DeleteEndOfLine) ||
               event->matches(QKeySequence::DeleteCompleteLine)) {
        Empty();
    } else if (const QString typed = event->text(); !typed.isEmpty() && typed[0].isPrint() &&
                                                    (!control || (event->modifiers() & Qt::AltModifier)) &&
                                                    !(event->modifiers() & Qt::MetaModifier)) {
        if (Insert(typed)) JudgeCapsLock(*event);
    } else {
        QLineEdit::keyPressEvent(event);
    }
}

void SecretEdit::inputMethodEvent(QInputMethodEvent* event) {
    if (!event->commitString().isEmpty()) Insert(event->commitString());
    event->accept();
}

void SecretEdit::contextMenuEvent(QContextMenuEvent* event) {
    QMenu menu(this);
    QAction* paste =
        menu.addAction(tr("&Paste"), this, [this] { Insert(QApplication::clipboard()->text()); });
    paste->setEnabled(isEnabled());
    menu.addAction(tr("Select &All"), this, &QLineEdit::selectAll);
    menu.exec(event->globalPos());
}

void SecretEdit::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::MiddleButton) return QLineEdit::mouseReleaseEvent(event);
    if (QApplication::clipboard()->supportsSelection())
        Insert(QApplication::clipboard()->text(QClipboard::Selection));
}

void SecretEdit::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) selectAll();
}

void SecretEdit::Adopt(const QString& shown) {
    if (shown.contains(kFiller) || !RefusalOf(shown).isEmpty()) return ShowContent(cursorPosition());
    const int cursor = cursorPosition();
    content_ = ToLatinSecret(shown);
    ShowContent(cursor);
    emit ContentChanged();
}

}  // namespace bmr::kit
