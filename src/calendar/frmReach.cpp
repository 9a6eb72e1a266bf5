#include "calendar/frmReach.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "kit/formparts.h"
#include "kit/guards.h"
#include "kit/icons.h"
#include "kit/overparent.h"
#include "kit/theme.h"

namespace bmr::calendar {

frmReach::frmReach(const QString& verb, const QString& question, const ReachOffer& offer, QWidget* parent)
    : QDialog(parent) {
    setObjectName("frmReach");
    setWindowTitle(verb);
    auto* icon = new QLabel;
    icon->setPixmap(
        kit::Icon("appointment-recurring", kit::Ink::Accent).pixmap(QSize(32, 32), devicePixelRatioF()));
    auto* text = new QLabel(question);
    text->setObjectName("lblQuestion");
    text->setTextFormat(Qt::PlainText);
    text->setWordWrap(true);
    text->setMinimumWidth(fontMetrics().averageCharWidth() * 48);
    auto* top = new QHBoxLayout;
    top->setSpacing(kit::Space::Margin);
    top->addWidget(icon, 0, Qt::AlignTop);
    top->addWidget(text, 1);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kit::Space::Margin, kit::Space::Margin, kit::Space::Margin,
                               kit::Space::Margin);
    column->setSpacing(kit::Space::Row);
    column->addLayout(top);
    column->addSpacing(kit::Space::Tight);

    struct Way {
        const char* name;
        QString text;
        Reach reach;
        bool offered;
    };
    auto* buttons = new QDialogButtonBox;
    bool first = true;
    for (const Way& way : {Way{"cmdThis", tr("&This one"), Reach::This, offer.thisOne},
                           Way{"cmdLater", tr("This and &later"), Reach::ThisAndLater, offer.thisAndLater},
                           Way{"cmdAll", tr("&All"), Reach::All, offer.all}}) {
        auto* button = new QPushButton(way.text);
        button->setObjectName(way.name);
        button->setEnabled(way.offered);
        button->setAutoDefault(way.offered);
        connect(button, &QPushButton::clicked, this, [this, reach = way.reach] { Choose(reach); });
        buttons->addButton(button, QDialogButtonBox::ActionRole);
        // Return takes what changes least.
        if (way.offered && std::exchange(first, false)) {
            button->setDefault(true);
            button->setFocus();
        }
    }
    if (!offer.why.empty()) {
        auto* why = new QLabel(QString::fromStdString(offer.why));
        why->setObjectName("lblWhy");
        why->setTextFormat(Qt::PlainText);
        why->setWordWrap(true);
        column->addWidget(why);
        column->addSpacing(kit::Space::Tight);
    }
    QPushButton* cancel = buttons->addButton(QDialogButtonBox::Cancel);
    cancel->setObjectName("cmdCancel");
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    column->addWidget(buttons);
    kit::GiveLetters(*this);
    kit::KeepOverParent(*this);
    kit::GuardDialog(*this);
}

void frmReach::keyPressEvent(QKeyEvent* event) {
    // There is nothing to type into: a letter alone does what it does with Alt.
    const QKeySequence typed(Qt::ALT | static_cast<Qt::Key>(event->key()));
    const bool plain = !(event->modifiers() & ~Qt::ShiftModifier);
    for (auto* button : findChildren<QPushButton*>())
        if (plain && QKeySequence::mnemonic(button->text()) == typed) return button->click();
    QDialog::keyPressEvent(event);
}

void frmReach::Choose(Reach reach) {
    chosen_ = reach;
    accept();
}

}  // namespace bmr::calendar
