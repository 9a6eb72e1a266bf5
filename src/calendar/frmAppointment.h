#pragma once

#include <QDialog>
#include <optional>
#include <vector>

#include "calendar/appointment.h"
#include "calendar/timespan.h"
#include "kit/editorfields.h"
#include "kit/tabring.h"

class QCheckBox;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace bmr::calendar {

/// How the editor begins.
struct Opening {
    /// That of a new appointment. Without one the record is a stored one, and what was not changed is not
    /// stored.
    std::optional<TimeSpan> span = {};
    /// The first letters of the subject, where typing on the grid began the appointment.
    QString letters = {};
};

/// The editor of one appointment, single or a series. It takes a record and gives a record; whether that is
/// to be stored tells `recordChanged` once the form was left.
class frmAppointment final : public QDialog {
    Q_OBJECT

  public:
    frmAppointment(store::Session& session, const Appointment& appointment, const Opening& opening = {},
                   QWidget* parent = nullptr);
    ~frmAppointment() override;

    bool recordChanged = false;
    /// The record as it is to be stored. Excluded days of the series are not in it.
    Appointment Taken();
    /// Days of the stored series without an occurrence, which the person wants to be without one in the
    /// edited series too.
    const std::vector<Day>& ExcludeAgain() const { return excludeAgain_; }

    /// What the controls hold; nothing when nothing was changed.
    std::optional<custody::Draft> HalfWritten() const;
    /// Puts a draft into the controls, as if it had been typed.
    void Fill(const custody::Draft& draft);

    void reject() override;

  protected:
    bool focusNextPrevChild(bool next) override { return kit::StepFocus(*this, next); }

  private:
    void BuildTexts();
    void Lay();
    void cmdOK_Click();

    store::Session& session_;
    Appointment stored_;  ///< as it came
    Appointment record_;  ///< its texts are those of the controls, once taken
    bool isNew_;
    kit::EditorFields fields_;
    std::vector<Day> excludeAgain_;

    QLineEdit* ctlSubject = nullptr;
    QLineEdit* ctlLocation = nullptr;
    QPlainTextEdit* ctlNotes = nullptr;
    QCheckBox* ctlPrivate = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdEsc = nullptr;
};

}  // namespace bmr::calendar
