// The tab of the guards: how it is put together. What it does stands in frmOptions.cpp.
#include <QButtonGroup>
#include <QCheckBox>
#include <QFrame>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "app/frmOptions.h"
#include "app/optionparts.h"
#include "kit/formparts.h"
#include "kit/icons.h"
#include "kit/secretedit.h"
#include "kit/stepedit.h"
#include "kit/theme.h"
#include "shell/timeout.h"

namespace bmr::app {

using kit::Space;

void frmOptions::BuildSecurity(QVBoxLayout& page) {
    BuildGuards(page);
    BuildPin(page);
    QVBoxLayout* passphrase = AddGroup(page, tr("Passphrase"));
    cmdPWchange = new QPushButton(kit::Icon("dialog-password"), tr("Change &Master Passphrase"));
    cmdPWchange->setObjectName("cmdPWchange");
    cmdPWchange->setAutoDefault(false);
    lblPWchanged = MakeHint({});
    lblPWchanged->setObjectName("lblPWchanged");
    lblPWchanged->hide();
    QHBoxLayout* row = AddRow(*passphrase);
    row->addWidget(cmdPWchange);
    row->addWidget(lblPWchanged, 1);
    row->addStretch();
    page.addStretch(1);
    connect(cmdPWchange, &QPushButton::clicked, this, &frmOptions::cmdPWchange_Click);
}

void frmOptions::BuildGuards(QVBoxLayout& page) {
    QVBoxLayout* end = AddGroup(page, tr("End of the program"));
    const auto step = [](const QString& text, int, int by) {
        return QString::number(std::clamp(text.toInt() + by, 0, shell::kHighestIdle));
    };
    Idle = new kit::StepEdit("Idle", "00", step);
    Idle->setObjectName("UpDownIdle");
    Idle->setAccessibleName(tr("Minutes of inactivity before the program exits"));
    Idle->setEnabled(false);
    cmdChangeIdle = new QPushButton(tr("Cha&nge"));
    cmdChangeIdle->setObjectName("cmdChangeIdle");
    cmdChangeIdle->setAutoDefault(false);
    QHBoxLayout* row = AddRow(*end);
    row->addWidget(new QLabel("Exit program when inactive for more than"));
    row->addWidget(Idle);
    auto* unit = new QLabel("minutes (0 = never exit, max = 15 min)");
    unit->setWordWrap(true);
    row->addWidget(unit, 1);
    row->addWidget(cmdChangeIdle);
    end->addWidget(ErrorFor("Idle"));
    chkEndOnSuspend = MakeBox("chkEndOnSuspend", tr("&End when the computer is suspended"));
    chkEndOnLock = MakeBox("chkEndOnLock", tr("End when the session is &locked"));
    end->addWidget(chkEndOnSuspend);
    end->addWidget(chkEndOnLock);
    chkEndOnSuspend->setEnabled(surroundings_.offer.suspend);
    chkEndOnLock->setEnabled(surroundings_.offer.lock);
    if (!surroundings_.offer.suspend || !surroundings_.offer.lock) {
        auto* hint = MakeHint(tr("This system does not tell programs when it sleeps or locks."));
        hint->setObjectName("lblNoSessionEvents");
        end->addWidget(hint);
    }

    auto* halves = new QHBoxLayout;
    auto* left = new QVBoxLayout;
    auto* right = new QVBoxLayout;
    for (QVBoxLayout* half : {left, right}) {
        half->setSpacing(Space::Row);
        halves->addLayout(half, 1);
    }
    page.addSpacing(Space::Group);
    page.addLayout(halves);
    chkAlsoForeign = MakeBox("chkAlsoForeign", tr("Also what other pro&grams copied"));
    AddGroup(*left, tr("Clipboard, cleared after 30 seconds"))->addWidget(chkAlsoForeign);
    chkShowPrivate = MakeBox("chkShowPrivate", tr("Show &Private"));
    chkShowPrivate->setToolTip(tr("Takes effect at once"));
    AddGroup(*right, tr("Private records"))->addWidget(chkShowPrivate);
    connect(cmdChangeIdle, &QPushButton::clicked, this, &frmOptions::cmdChangeIdle_Click);
    connect(chkShowPrivate, &QCheckBox::clicked, this, &frmOptions::chkShowPrivate_Click);
}

void frmOptions::BuildPin(QVBoxLayout& page) {
    QVBoxLayout* group = AddGroup(page, tr("Request PIN before loading:"));
    const QString captions[] = {tr("Address Boo&k"), tr("Calenda&r"), tr("Diar&y"),
                                tr("Memopad"),       tr("Todo "),     tr("Con&fidential Data"),
                                tr("Budget &1"),     tr("Budget &2"), tr("Budget &3")};
    auto* grid = new QGridLayout;
    grid->setHorizontalSpacing(Space::Group * 2);
    grid->setVerticalSpacing(Space::Row);
    for (std::size_t i = 0; i < PinApp.size(); ++i) {
        PinApp[i] = MakeBox(QString("PinApp%1").arg(i), captions[i]);
        grid->addWidget(PinApp[i], static_cast<int>(i / 3), static_cast<int>(i % 3));
    }
    grid->setColumnStretch(3, 1);
    group->addLayout(grid);

    lblPinUnread = MakeHint(tr(
        "The record of the PIN cannot be read. It stays as it is, and every section asks for the passphrase, "
        "until you make a new PIN."));
    lblPinUnread->setObjectName("lblPinUnread");
    cmdMakePIN = new QPushButton(tr("Make a ne&w PIN"));
    cmdMakePIN->setObjectName("cmdMakePIN");
    cmdMakePIN->setAutoDefault(false);
    QHBoxLayout* unread = AddRow(*group);
    unread->setSpacing(Space::Group);
    unread->addWidget(lblPinUnread, 1);
    unread->addWidget(cmdMakePIN);

    cmdPIN = new QPushButton(tr("Set P&IN"));
    cmdPIN->setObjectName("cmdPIN");
    cmdPIN->setAutoDefault(false);
    QHBoxLayout* row = AddRow(*group);
    row->setSpacing(Space::Group);
    row->addWidget(new QLabel("Request PIN"));
    PINeveryaccess = MakeOptions("PINeveryaccess", {tr("once a &session"), tr("at e&very access")}, *row);
    row->addStretch();
    row->addWidget(cmdPIN);
    BuildPinFrame();
    group->addWidget(PinFrame);
    connect(cmdPIN, &QPushButton::clicked, this, &frmOptions::cmdPIN_Click);
    connect(cmdMakePIN, &QPushButton::clicked, this, &frmOptions::cmdMakePIN_Click);
}

void frmOptions::BuildPinFrame() {
    PinFrame = new QFrame;
    PinFrame->setObjectName("PinFrame");
    PinFrame->setFrameShape(QFrame::StyledPanel);
    txtPIN = new kit::SecretEdit;
    txtPIN->setObjectName("txtPIN");
    txtPIN->setAccessibleName(tr("PIN"));
    cmdShowPIN = new QToolButton;
    cmdShowPIN->setObjectName("cmdShowPIN");
    cmdShowPIN->setIcon(kit::Icon("view-visible"));
    cmdShowPIN->setCheckable(true);
    cmdShowPIN->setToolTip(tr("Show the PIN"));
    cmdShowPIN->setAccessibleName(tr("Show the PIN"));
    cmdShowPIN->setFocusPolicy(Qt::StrongFocus);
    auto* cmdPINhide = new QPushButton(tr("&Hide"));
    cmdPINhide->setObjectName("cmdPINhide");
    cmdPINhide->setAutoDefault(false);
    lblPinKind = MakeHint({});
    lblPinKind->setObjectName("lblPinKind");

    auto* column = new QVBoxLayout(PinFrame);
    column->setContentsMargins(Space::Margin, Space::Margin, Space::Margin, Space::Margin);
    column->setSpacing(Space::Row);
    QHBoxLayout* row = AddRow(*column);
    row->addWidget(kit::MakeLabel(tr("PIN"), txtPIN));
    row->addWidget(txtPIN, 1);
    row->addWidget(cmdShowPIN);
    row->addWidget(cmdPINhide);
    QLabel* error = ErrorFor("txtPIN");
    column->addWidget(error);
    column->addWidget(MakeHint("(PIN can take any number of numbers/characters)"));
    column->addWidget(lblPinKind);
    PinFrame->hide();

    connect(cmdShowPIN, &QToolButton::toggled, txtPIN, &kit::SecretEdit::SetClear);
    connect(cmdPINhide, &QPushButton::clicked, this, &frmOptions::cmdPINhide_Click);
    connect(txtPIN, &kit::SecretEdit::ContentChanged, this, &frmOptions::txtPIN_Change);
    connect(txtPIN, &kit::SecretEdit::Refused, error, [error](const QString& why) {
        error->setText(why);
        error->show();
    });
}

}  // namespace bmr::app
