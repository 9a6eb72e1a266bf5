#pragma once

#include <QDialog>
#include <array>
#include <functional>
#include <optional>
#include <vector>

#include "calendar/appointment.h"
#include "calendar/periods.h"
#include "calendar/series.h"
#include "calendar/serieschange.h"
#include "calendar/timespan.h"
#include "kit/editorfields.h"
#include "kit/tabring.h"

class QAbstractButton;
class QCheckBox;
class QComboBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;
class QSlider;
class QStackedWidget;
class QTimer;

namespace bmr::kit {
class DateEdit;
}

namespace bmr::calendar {

/// The part of a series that the editor was opened on, which is stored as a row of its own.
struct SeriesPart {
    std::int32_t key = store::kNewRecord;  ///< of the series
    Minutes occurrence;
    Reach reach = Reach::This;
};

/// The part that a draft was made of; nothing where it was another record, or a new one.
std::optional<SeriesPart> PartIn(const custody::Draft& draft);

/// How the editor begins.
struct Opening {
    /// That of a new appointment. Without one the record is a stored one, and what was not changed is not
    /// stored.
    std::optional<TimeSpan> span = {};
    /// The first letters of the subject, where typing on the grid began the appointment.
    QString letters = {};
    /// Goes into drafts, so that one of a part does not become an appointment beside its series.
    std::optional<SeriesPart> part = {};
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
    /// The record as it is to be stored. Where the series was changed, it has no excluded days.
    Appointment Taken();
    /// Days that the stored series leaves out, and that the person wants the changed one to leave out too.
    const std::vector<Day>& ExcludeAgain() const { return excludeAgain_; }

    /// What the controls hold; nothing when nothing was changed.
    std::optional<custody::Draft> HalfWritten() const;
    /// Puts a draft into the controls, as if it had been typed.
    void Fill(const custody::Draft& draft);

    void reject() override;

  protected:
    bool focusNextPrevChild(bool next) override { return kit::StepFocus(*this, next); }
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    /// Start, end, duration.
    static constexpr std::size_t kTimes = 3;
    /// A date and the line that says what is wrong with it.
    struct DateField {
        kit::DateEdit* edit = nullptr;
        QLabel* error = nullptr;
        QWidget* row = nullptr;
    };
    using RedoChange = std::function<void(RedoState&, const LocaleFacts&, const SeriesVoice&)>;

    void BuildTexts();
    void BuildTimes();
    void BuildDuration();
    void BuildReminder();
    void BuildRedo();
    void BuildNth();
    void BuildRedoEnd();
    DateField MakeDate(const char* name, const QString& caption, void (frmAppointment::*changed)(Day));
    QLineEdit* MakeTimeLine(const char* name, std::size_t which, bool hours);
    QComboBox* MakeQuickTimes(const char* name, bool hours);
    QSlider* MakeSlider(const char* name, std::size_t which, bool hours);
    QLineEdit* MakeNumber(const char* name, const QString& caption);
    QWidget* LayTimes();
    QWidget* LayRedo();
    QWidget* LayFrequency();
    QWidget* LayAlternatives();
    QWidget* LayRedoEnd();
    void Lay();

    void Changed();
    /// Takes what is typed and not yet confirmed. False when a date is none.
    bool CommitTyped();
    bool Differs(const Appointment& taken) const;
    /// Where excluded days would come back: false when the person goes on editing.
    bool AskDropped(const Appointment& taken);
    void cmdOK_Click();

    // The time span.
    /// `cut`: what the change did besides what was asked for, told until the next one.
    void ChangeSpan(const std::function<void(TimeSpan&)>& change, const QString& cut = {});
    static QString EndsOn(Day day);
    void ShowDate(const DateField& field, Day date);
    void ShowWeekday();
    void ShowSpan();
    void TimeTyped(std::size_t which);
    QString WhatIsCut(std::size_t which, std::int32_t minutes) const;
    void StepTime(std::size_t which, bool hours, int direction);
    void SliderMoved(std::size_t which);
    void ctlAllday_Click(bool on);
    void cmdDuration_Press(int direction);
    void cmdDuration_Release();
    void tmrDuration_Tick();
    void ShowReminder(bool on, std::int32_t lead);
    std::int32_t Lead() const;

    // The recurrence.
    SeriesVoice Voice();
    void ChangeRedo(const RedoChange& change);
    void ShowRedo();
    std::int32_t NumberShown(const QLineEdit& box) const;
    void ShowNumbers();
    void ShowRedoWords();
    void RedoWD_Click(std::size_t index, bool chosen);
    void NumberEdited(QLineEdit& box);
    void DateGiven(Day date);
    void ctlDate_Change(Day date);
    void ctlDateStartRedo_Change(Day date);
    void ctlDateEndRedo_Change(Day date);

    store::Session& session_;
    LocaleFacts locale_;
    CalendarNames names_;
    Appointment stored_;  ///< as it came
    Appointment record_;  ///< its texts are those of the controls, once taken
    bool isNew_;
    std::optional<SeriesPart> part_;
    TimeSpan loaded_;
    TimeSpan span_;  ///< its start lies on the date of `redo_`
    RedoState redo_;
    std::vector<Day> excludeAgain_;
    bool filling_ = false;        ///< the controls are being set: their events mean nothing
    bool limitTold_ = false;      ///< the date that is being taken was brought to its limit, and so told
    QLineEdit* typed_ = nullptr;  ///< the number box that is being typed in
    QString numberBefore_;        ///< and what it held before the last key
    int durationStep_ = 0;        ///< of the button that is held
    kit::EditorFields fields_;

    QLineEdit* ctlSubject = nullptr;
    QLineEdit* ctlLocation = nullptr;
    QPlainTextEdit* ctlNotes = nullptr;
    QCheckBox* ctlPrivate = nullptr;
    DateField date_;  ///< `ctlDate`
    QLabel* lblWeekday_ = nullptr;
    QLabel* ctlDateEnd = nullptr;
    std::array<QLineEdit*, kTimes> ctlHH{};  ///< that of the start is the line of its combo box
    std::array<QLineEdit*, kTimes> ctlNN{};
    std::array<QComboBox*, 2> quickTimes_{};
    std::array<QSlider*, 2> SliderHH{};
    std::array<QSlider*, 2> SliderNN{};
    QWidget* cmdDuration = nullptr;
    QTimer* tmrDuration = nullptr;
    QLabel* lblTimesError_ = nullptr;
    QCheckBox* ctlAllday = nullptr;
    QCheckBox* ctlAlarmYN = nullptr;
    QComboBox* ctlAlarmAnticipate = nullptr;

    std::array<QRadioButton*, 5> Redo{};
    std::array<QRadioButton*, 2> RedoAlt{};
    std::array<QRadioButton*, 3> RedoEnd{};
    std::array<QCheckBox*, 7> RedoWD{};
    std::array<QLineEdit*, 4> QQ{};
    QLineEdit* occ = nullptr;
    DateField startRedo_;  ///< `ctlDateStartRedo`
    DateField endRedo_;    ///< `ctlDateEndRedo`
    QComboBox* cboRedoWhen = nullptr;
    QComboBox* cboRedoWeekday = nullptr;
    QComboBox* cboRedoMonth = nullptr;
    QStackedWidget* redoPages_ = nullptr;
    QWidget* RedoFrW = nullptr;
    QWidget* RedoAltFrame = nullptr;
    QWidget* RedoEndFrame = nullptr;
    QWidget* nth_ = nullptr;  ///< `cboRedoWhen` and `cboRedoWeekday`, of months and years
    std::array<QWidget*, 2> RedoFrD{};
    std::array<QWidget*, 2> RedoFrM{};
    std::array<QWidget*, 2> RedoFrY{};
    QLabel* lblRedoM0 = nullptr;
    QLabel* lblRedoY0 = nullptr;
    QLabel* sentence_ = nullptr;
    QLabel* lblNextHead_ = nullptr;
    QLabel* next_ = nullptr;
    QLabel* grid_ = nullptr;
    QPushButton* cmdOK = nullptr;
    QPushButton* cmdEsc = nullptr;
};

}  // namespace bmr::calendar
