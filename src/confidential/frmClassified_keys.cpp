#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QFormLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <algorithm>

#include "confidential/frmClassified.h"
#include "kit/formparts.h"
#include "kit/pad.h"
#include "kit/recordlistview.h"
#include "kit/words.h"
#include "shell/helpers.h"

// What the keys do in the confidential section, and what can be done with a field.
namespace bmr::confidential {

void frmClassified::FocusList() {
    if (ShownList()->isEnabled())
        ShownList()->setFocus();
    else
        cat[static_cast<std::size_t>(qMax(1, currentKind))]->setFocus();
}

void frmClassified::AimFocus() {
    padPane_->SetChoice(ShownList()->isEnabled() || (currentKind == 0 && !searching_));
    if (ShownList()->isEnabled())
        setFocusProxy(ShownList());
    else
        setFocusProxy(cat[static_cast<std::size_t>(qMax(1, currentKind))]);
}

void frmClassified::AimKinds() {
    for (const Kind& kind : ConfidentialKinds()) {
        const bool stop = kind.number == qMax(1, currentKind);
        cat[static_cast<std::size_t>(kind.number)]->setFocusPolicy(stop ? Qt::StrongFocus : Qt::ClickFocus);
    }
}

void frmClassified::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Down:
        case Qt::Key_Right:
        case Qt::Key_Tab:
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_PageDown:
            if (currentKind == 0 && !searching_) return cat[1]->setFocus(Qt::TabFocusReason);
            break;
        default:
            break;
    }
    SectionForm::keyPressEvent(event);
}

bool frmClassified::KindKey(QAbstractButton& kind, int key) {
    const auto kinds = ConfidentialKinds();
    auto at = std::find_if(kinds.begin(), kinds.end(), [&](const Kind& each) {
        return cat[static_cast<std::size_t>(each.number)] == &kind;
    });
    const bool chosen = kind.isChecked();
    switch (key) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            break;
        case Qt::Key_Down:
            if (chosen && at + 1 != kinds.end()) ++at;
            break;
        case Qt::Key_Up:
            if (chosen && at != kinds.begin()) --at;
            break;
        case Qt::Key_Right:
            if (chosen) FocusList();
            return true;
        default:
            return false;
    }
    cat[static_cast<std::size_t>(at->number)]->click();
    return true;
}

bool frmClassified::eventFilter(QObject* watched, QEvent* event) {
    // The kinds are built, and heard, before the list is.
    if (ListSelect && watched == ShownList()->viewport() && event->type() == QEvent::MouseButtonPress) {
        // Beside the rows is no row: the record that is shown stays.
        const auto* press = static_cast<QMouseEvent*>(event);
        const QModelIndex row = ShownList()->indexAt(press->position().toPoint());
        return !(row.flags() & Qt::ItemIsSelectable);
    }
    if (watched == padFrame && (event->type() == QEvent::Resize || event->type() == QEvent::LayoutRequest)) {
        // In a small window captions stand above their fields; what the screen has no height for is scrolled.
        const bool narrow = padFrame->width() < fontMetrics().averageCharWidth() * 56;
        const auto policy = narrow ? QFormLayout::WrapAllRows : QFormLayout::DontWrapRows;
        if (padForm_->rowWrapPolicy() != policy) padForm_->setRowWrapPolicy(policy);
        padFrame->setMinimumHeight(
            qMax(0, padFrame->layout()->totalMinimumHeightForWidth(padFrame->width())));
        return false;
    }
    if (event->type() != QEvent::KeyPress) return SectionForm::eventFilter(watched, event);
    const auto* key = static_cast<QKeyEvent*>(event);
    if (ListSelect && watched == ShownList()) {
        if (key->key() != Qt::Key_Left || key->modifiers() != Qt::NoModifier) return false;
        // As Right led into the list.
        cat[static_cast<std::size_t>(qMax(1, currentKind))]->setFocus(Qt::TabFocusReason);
        return true;
    }
    if (auto* kind = qobject_cast<QAbstractButton*>(watched)) return KindKey(*kind, key->key());
    if (!key->matches(QKeySequence::Copy)) return false;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const bool part = rows_[i].txtCtl->hasSelectedText() && !(ShownKind() && IsMasked(i));
        if (rows_[i].txtCtl != watched || part) continue;
        CopyField(i);  // not the mask, and without a selection all there is
        return true;
    }
    return false;
}

void frmClassified::CopyField(std::size_t i) {
    if (record_.n[i].empty()) return;
    copy_(FieldText(i));
    emit StatusChanged(tr("%1 copied").arg(rows_[i].lblTxt->text().trimmed()));
}

void frmClassified::mnuCopy_Click() {
    const QWidget* focus = QApplication::focusWidget();
    if (focus == txtNotes && !record_.notes.empty()) return copy_(kit::PlainText(*txtNotes));
    for (std::size_t i = 0; i < rows_.size(); ++i)
        if (rows_[i].txtCtl->parentWidget()->isAncestorOf(focus) && !record_.n[i].empty())
            return CopyField(i);
    // From elsewhere: the secret, or what else the record is there for.
    for (std::size_t i = 0; i < ShownKind()->FieldCount(); ++i)
        if (IsMaskedCaption(ShownKind()->captions[i]) && !record_.n[i].empty()) return CopyField(i);
    for (const std::size_t i : {1U, 2U, 3U, 4U, 0U})
        if (!record_.n[i].empty()) return CopyField(i);
}

void frmClassified::OpenField(std::size_t i) {
    if (session_.ports.desktop)
        shell::OpenWebsite(session_.ports.prompter, *session_.ports.desktop, kit::TakeWords(FieldText(i)));
}

kit::FieldUse frmClassified::UseOf(std::size_t i) const {
    kit::FieldUse use;
    use.whole = FieldText(i);
    use.masked = IsMasked(i);
    if (use.masked) return use;
    const std::string_view caption = ShownKind()->captions[i];
    WipedText text = kit::TakeWords(*use.whole);
    use.web = IsUrlCaption(caption) || text.starts_with("www.") || text.find("://") != std::string::npos;
    use.mail = IsMailCaption(caption) || shell::ValidEmail(text);
    use.dial = IsPhoneCaption(caption);
    return use;
}

}  // namespace bmr::confidential
