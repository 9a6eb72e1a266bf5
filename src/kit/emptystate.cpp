#include "kit/emptystate.h"

#include <QAction>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "kit/icons.h"
#include "kit/theme.h"

namespace bmr::kit {

EmptyState::EmptyState(QWidget* parent)
    : QWidget(parent), icon_(new QLabel), sentence_(new QLabel), buttons_(new QHBoxLayout) {
    setObjectName("emptyState");
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    sentence_->setObjectName("emptySentence");
    sentence_->setTextFormat(Qt::PlainText);
    sentence_->setWordWrap(true);
    for (QLabel* label : {icon_, sentence_})
        label->setAlignment(Qt::AlignCenter);
    buttons_->setSpacing(Space::Row);
    auto* column = new QVBoxLayout(this);
    column->setSpacing(Space::Margin);
    column->addStretch(2);
    column->addWidget(icon_);
    column->addWidget(sentence_);
    auto* centred = new QHBoxLayout;
    centred->addStretch();
    centred->addLayout(buttons_);
    centred->addStretch();
    column->addLayout(centred);
    column->addStretch(3);
}

void EmptyState::Set(const QString& icon, const QString& sentence, const QList<QAction*>& actions) {
    name_ = icon;
    sentence_->setText(sentence);
    while (QLayoutItem* old = buttons_->takeAt(0)) {
        old->widget()->deleteLater();
        old->widget()->hide();
        delete old;
    }
    for (QAction* action : actions) {
        auto* button = new QPushButton(action->icon(), action->iconText());
        button->setObjectName("empty_" + action->objectName());
        connect(button, &QPushButton::clicked, action, &QAction::trigger);
        buttons_->addWidget(button);
    }
    Draw();
}

QString EmptyState::Sentence() const {
    return sentence_->text();
}

void EmptyState::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::ApplicationPaletteChange) Draw();
}

void EmptyState::Draw() {
    icon_->setPixmap(Icon(name_, Ink::Pale).pixmap(QSize(48, 48), devicePixelRatioF()));
}

}  // namespace bmr::kit
