#include "calendar/frmAppointment.h"

#include <QLineEdit>
#include <QPlainTextEdit>

#include "kit/drafttext.h"
#include "kit/failure.h"
#include "kit/guards.h"

namespace bmr::calendar {

frmAppointment::frmAppointment(store::Session& session, const Appointment& appointment,
                               const Opening& opening, QWidget* parent)
    : QDialog(parent),
      session_(session),
      stored_(appointment),
      record_(appointment),
      isNew_(opening.span.has_value()) {
    setObjectName("frmAppointment");
    setWindowTitle(tr("Appointment"));
    if (opening.span) {
        record_.start = opening.span->start;
        record_.end = opening.span->end;
        record_.allDay = opening.span->allDay ? 1 : 0;
    }
    BuildTexts();
    connect(&fields_, &kit::EditorFields::Changed, this, [this] { recordChanged = true; });
    Lay();
    fields_.Show();
    recordChanged = false;  // showing tells of changes too
    if (!opening.letters.isEmpty()) {
        ctlSubject->setText(opening.letters);
        kit::ContinueAtEnd(*ctlSubject);
    }
    ctlSubject->setFocus();
    kit::GuardDialog(*this);
}

frmAppointment::~frmAppointment() {
    WipeRecord(stored_);
    WipeRecord(record_);
}

Appointment frmAppointment::Taken() {
    fields_.Take();
    return record_;
}

std::optional<custody::Draft> frmAppointment::HalfWritten() const {
    if (!recordChanged) return std::nullopt;
    return fields_.HalfWritten(store::Section::Calendar, record_.key);
}

void frmAppointment::Fill(const custody::Draft& draft) {
    fields_.Fill(draft);
    recordChanged = true;
}

void frmAppointment::cmdOK_Click() {
    if (!fields_.Judge()) return;
    recordChanged = recordChanged || isNew_;
    accept();
}

void frmAppointment::reject() {
    if (recordChanged && !session_.ending && !kit::AskDiscardOrStay(session_) && !session_.ending) return;
    recordChanged = false;
    QDialog::reject();
}

}  // namespace bmr::calendar
