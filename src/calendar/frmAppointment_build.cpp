#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include "calendar/frmAppointment.h"
#include "kit/fieldmenu.h"
#include "kit/formparts.h"
#include "kit/theme.h"

namespace bmr::calendar {

using kit::MakeLabel;
using kit::Space;

namespace {

/// Numbers of the texts in a draft. Never renumber: files in the field carry these.
enum DraftField : std::uint8_t { kSubject = 1, kLocation, kNotes, kPrivate };

}  // namespace

void frmAppointment::BuildTexts() {
    ctlSubject = kit::MakeLineField("ctlSubject", tr("Subject"));
    ctlLocation = kit::MakeLineField("ctlLocation", tr("Location"));
    ctlNotes = kit::MakeTextField("ctlNotes", tr("Notes"));
    ctlPrivate = kit::MakePrivateBox();
    kit::GiveFieldMenu(*ctlSubject, session_);
    kit::GiveFieldMenu(*ctlLocation, session_);
    kit::GiveFieldMenu(*ctlNotes, session_);
    fields_.Tie(kSubject, *ctlSubject, record_.subject);
    fields_.Tie(kLocation, *ctlLocation, record_.location);
    fields_.Tie(kNotes, *ctlNotes, record_.notes);
    fields_.Tie(kPrivate, *ctlPrivate, record_.isPrivate);
}

void frmAppointment::Lay() {
    auto* texts = new QFormLayout;
    texts->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    texts->setHorizontalSpacing(Space::Row);
    texts->setVerticalSpacing(Space::Row);
    texts->addRow(MakeLabel(tr("S&ubject"), ctlSubject), fields_.Row(ctlSubject));
    texts->addRow(MakeLabel(tr("&Location"), ctlLocation), fields_.Row(ctlLocation));
    const kit::SaveCancel foot = kit::MakeSaveCancel(*this, [this] { cmdOK_Click(); });
    cmdOK = foot.cmdOK;
    cmdEsc = foot.cmdEsc;

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Space::Margin, Space::Margin, Space::Margin, Space::Margin);
    column->setSpacing(Space::Tight);
    column->addLayout(texts);
    column->addSpacing(Space::Row);
    column->addWidget(ctlPrivate);
    column->addWidget(MakeLabel(tr("N&otes"), ctlNotes));
    column->addWidget(fields_.Row(ctlNotes), 1);
    column->addSpacing(Space::Row);
    column->addWidget(foot.box);
    kit::GiveLetters(*this);
    cmdOK->setDefault(true);  // earlier it has no dialog yet, whose own default it is to be
}

}  // namespace bmr::calendar
