#include "kit/pad.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>

#include "kit/emptystate.h"
#include "kit/icons.h"
#include "kit/theme.h"

namespace bmr::kit {

PrivateMark::PrivateMark(QWidget* parent) : QWidget(parent), lock_(new QLabel) {
    setObjectName("ctlPrivate");
    setToolTip(tr("Hidden unless private records are shown"));
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(Space::Tight);
    row->addWidget(lock_);
    row->addWidget(new QLabel(tr("Private")));
    Draw();
}

void PrivateMark::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ApplicationPaletteChange) Draw();
}

void PrivateMark::Draw() {
    lock_->setPixmap(Icon("object-locked").pixmap(QSize(16, 16), devicePixelRatioF()));
}

PadPane::PadPane(QWidget* pad, QWidget* whole, const char* icon, const QString& sentence)
    : pad_(pad), whole_(whole), hint_(new EmptyState) {
    hint_->setObjectName("padHint");
    hint_->Set(icon, sentence, {});
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(whole_);
    column->addWidget(hint_);
    pad_->installEventFilter(this);
    ShowState();
}

bool PadPane::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ShowToParent || event->type() == QEvent::HideToParent) ShowState();
    return QWidget::eventFilter(watched, event);
}

void PadPane::ShowState() {
    const bool shown = !pad_->isHidden();
    if (whole_ != pad_) whole_->setVisible(shown);
    // What is not visible leaves no room: the ground stays.
    hint_->setVisible(!shown && choice_);
}

void PadPane::SetChoice(bool any) {
    choice_ = any;
    ShowState();
}

}  // namespace bmr::kit
