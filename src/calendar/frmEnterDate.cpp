#include "calendar/frmEnterDate.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "calendar/calendar.h"
#include "kit/dateedit.h"
#include "kit/formparts.h"
#include "kit/guards.h"
#include "kit/overparent.h"
#include "kit/theme.h"

namespace bmr::calendar {

frmEnterDate::frmEnterDate(Day date, Day today, QWidget* parent)
    : QDialog(parent),
      ctlDate(new kit::DateEdit(today)),
      dateError_(kit::MakeErrorLine("lblDateError")),
      chkArchive(new QCheckBox(tr("&Archive deleted records"))) {
    setObjectName("frmEnterDate");
    setWindowTitle(tr("Delete or Archive"));
    ctlDate->setObjectName("ctlDate");
    ctlDate->SetRequired();
    ctlDate->SetRange(kLowerLimit, kUpperLimit);
    ctlDate->SetCaption(tr("Prior to"));
    ctlDate->SetDate(date);
    connect(ctlDate, &kit::DateEdit::Edited, dateError_, &QLabel::hide);
    connect(ctlDate, &kit::DateEdit::NotUnderstood, this,
            [this](const QString& why) { kit::Tell(*dateError_, why); });
    chkArchive->setObjectName("chkArchive");
    chkArchive->setToolTip(tr("They move to an archive file, which opens with the same passphrase"));

    auto* row = new QHBoxLayout;
    row->setSpacing(kit::Space::Row);
    auto* caption = kit::MakeLabel(tr("Archive appointments &prior to:"), ctlDate);
    caption->setObjectName("lblCaption");
    row->addWidget(caption);
    row->addWidget(kit::WithError(ctlDate, dateError_), 1);
    auto* what = new QLabel(
        tr("Single appointments go up to that day and on it. A series goes as a whole when it began before "
           "it."));
    what->setWordWrap(true);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QPushButton* cmdOK = buttons->button(QDialogButtonBox::Ok);
    cmdOK->setObjectName("cmdOK");
    cmdOK->setText(tr("Go on…"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName("cmdCancel");
    connect(cmdOK, &QPushButton::clicked, this, &frmEnterDate::cmdOK_Click);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(kit::Space::Margin, kit::Space::Margin, kit::Space::Margin,
                               kit::Space::Margin);
    column->setSpacing(kit::Space::Row);
    column->addLayout(row);
    column->addWidget(chkArchive);
    column->addWidget(what);
    column->addSpacing(kit::Space::Tight);
    column->addWidget(buttons);
    ctlDate->FocusLine();
    kit::GiveLetters(*this);
    kit::KeepOverParent(*this);
    kit::GuardDialog(*this);
}

bool frmEnterDate::Archive() const {
    return chkArchive->isChecked();
}

void frmEnterDate::cmdOK_Click() {
    if (!ctlDate->Commit()) return ctlDate->FocusLine();
    date_ = ctlDate->Date();
    accept();
}

}  // namespace bmr::calendar
