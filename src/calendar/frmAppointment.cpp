#include "calendar/frmAppointment.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QSlider>
#include <algorithm>
#include <iterator>

#include "base/languageus.h"
#include "calendar/localenames.h"
#include "calendar/reminder.h"
#include "calendar/serieschange.h"
#include "kit/dateedit.h"
#include "kit/dateentry.h"
#include "kit/drafttext.h"
#include "kit/failure.h"
#include "kit/guards.h"

namespace bmr::calendar {

namespace {

/// Numbers of what stands in a draft besides the texts, which have 1 to 4. Never renumber: files in the field
/// carry these. Minutes and days are kept as their counts, weekdays Sunday-based, whatever the locale.
enum DraftField : std::uint8_t {
    kStart = 5,
    kEnd,
    kAllDay,
    kKeptStart,
    kKeptEnd,
    kAlarm,
    kLead,
    kFrequency,
    kAlternative,
    kEndMode,
    kRedoStart,
    kRedoEnd,
    kCount,
    kInterval,
    kIntervalAlt,
    kWeekday,
    kNth,
    kMonth,
    kDays,
    kSeriesKey,
    kOccurrence,
    kReach
};

constexpr std::size_t kMostListed = 20;

TimeSpan FirstSpan(const Appointment& appointment, const Opening& opening, std::int32_t length) {
    if (opening.span) return *opening.span;
    return LoadedSpan(appointment.start, appointment.end, appointment.allDay != 0, length);
}

bool SameTimes(const TimeSpan& a, const TimeSpan& b) {
    return a.start == b.start && a.end == b.end && a.allDay == b.allDay;
}

/// A flag of the file keeps its byte while it says the same.
std::uint8_t Flag(bool on, std::uint8_t stored) {
    if (!on) return 0;
    return stored != 0 ? stored : 1;
}

void PutSpan(custody::Draft& draft, const TimeSpan& span) {
    kit::PutNumber(draft, kStart, span.start.count);
    kit::PutNumber(draft, kEnd, span.end.count);
    kit::PutFlag(draft, kAllDay, span.allDay);
    kit::PutNumber(draft, kKeptStart, span.keptStart.count);
    kit::PutNumber(draft, kKeptEnd, span.keptEnd.count);
}

void PutRedo(custody::Draft& draft, const RedoState& redo, const LocaleFacts& locale) {
    std::int32_t days = 0;
    for (int i = 0; i < 7; ++i)
        if (redo.days.at(static_cast<std::size_t>(i))) days |= 1 << LocalToSundayWeekday(i + 1, locale);
    kit::PutNumber(draft, kFrequency, redo.frequency);
    kit::PutNumber(draft, kAlternative, redo.alternative);
    kit::PutNumber(draft, kEndMode, redo.endMode);
    kit::PutNumber(draft, kRedoStart, redo.start.serial);
    kit::PutNumber(draft, kRedoEnd, redo.end.serial);
    kit::PutNumber(draft, kCount, redo.count);
    kit::PutNumber(draft, kInterval, redo.interval);
    kit::PutNumber(draft, kIntervalAlt, redo.intervalAlt);
    kit::PutNumber(draft, kWeekday, LocalToSundayWeekday(redo.weekday, locale));
    kit::PutNumber(draft, kNth, redo.nth);
    kit::PutNumber(draft, kMonth, redo.month);
    kit::PutNumber(draft, kDays, days);
}

TimeSpan SpanIn(const custody::Draft& draft, const TimeSpan& before) {
    const auto minutes = [&draft](std::uint8_t number, Minutes other) {
        return Minutes{kit::NumberOf(draft, number).value_or(other.count)};
    };
    return {minutes(kStart, before.start), minutes(kEnd, before.end), kit::FlagOf(draft, kAllDay),
            minutes(kKeptStart, before.keptStart), minutes(kKeptEnd, before.keptEnd)};
}

/// Of an appointment on `date`. What a draft lacks stays as for a new series.
RedoState RedoIn(const custody::Draft& draft, Day date, const LocaleFacts& locale) {
    RedoState redo = NewRedoState(date, locale);
    const auto take = [&draft](std::uint8_t number, std::int32_t& into) {
        into = kit::NumberOf(draft, number).value_or(into);
    };
    take(kFrequency, redo.frequency);
    take(kAlternative, redo.alternative);
    take(kEndMode, redo.endMode);
    take(kRedoStart, redo.start.serial);
    take(kRedoEnd, redo.end.serial);
    take(kCount, redo.count);
    take(kInterval, redo.interval);
    take(kIntervalAlt, redo.intervalAlt);
    if (const auto weekday = kit::NumberOf(draft, kWeekday))
        redo.weekday = SundayToLocalWeekday(*weekday, locale);
    take(kNth, redo.nth);
    take(kMonth, redo.month);
    if (const auto days = kit::NumberOf(draft, kDays))
        for (int i = 0; i < 7; ++i)
            redo.days.at(static_cast<std::size_t>(i)) =
                (*days >> LocalToSundayWeekday(i + 1, locale) & 1) != 0;
    redo.kind = static_cast<int>(KindOf(redo.frequency, redo.alternative));
    return redo;
}

/// "5 January 2027, 12 January 2027 and 9 more".
QString Listed(const std::vector<Day>& days, const CalendarNames& names) {
    QStringList words;
    for (const Day day : days) {
        if (words.size() == static_cast<qsizetype>(kMostListed)) break;
        words << QString::fromStdString(LongDate(day, names));
    }
    QString last = words.takeLast();
    if (days.size() > kMostListed) {
        words << last;
        last = frmAppointment::tr("%1 more").arg(days.size() - kMostListed);
    }
    return words.isEmpty() ? last : frmAppointment::tr("%1 and %2").arg(words.join(", "), last);
}

}  // namespace

std::optional<SeriesPart> PartIn(const custody::Draft& draft) {
    const auto key = kit::NumberOf(draft, kSeriesKey);
    const auto occurrence = kit::NumberOf(draft, kOccurrence);
    const auto reach = kit::NumberOf(draft, kReach);
    if (!key || !occurrence || !reach || *reach < 0 || *reach >= static_cast<std::int32_t>(Reach::All))
        return std::nullopt;
    return SeriesPart{*key, {*occurrence}, static_cast<Reach>(*reach)};
}

frmAppointment::frmAppointment(store::Session& session, const Appointment& appointment,
                               const Opening& opening, QWidget* parent)
    : QDialog(parent),
      session_(session),
      locale_(kit::FactsOf(QLocale())),
      names_(NamesOf(QLocale())),
      stored_(appointment),
      record_(appointment),
      isNew_(opening.span.has_value()),
      part_(opening.part),
      loaded_(FirstSpan(appointment, opening, session.settings.AppDuration)),
      span_(loaded_),
      redo_(ParseRedoString(appointment.redoString, DayOf(span_.start), locale_)) {
    setObjectName("frmAppointment");
    setWindowTitle(tr("Appointment"));
    BuildTexts();
    BuildTimes();
    BuildDuration();
    BuildReminder();
    BuildRedo();
    BuildNth();
    BuildRedoEnd();
    connect(&fields_, &kit::EditorFields::Changed, this, &frmAppointment::Changed);
    Lay();
    fields_.Show();
    const bool alarm = stored_.alarm != 0;
    ShowReminder(alarm, alarm ? LeadOf(stored_.start, stored_.alarmTime) : 0);
    ShowRedo();
    recordChanged = false;  // showing tells of changes too
    if (!opening.letters.isEmpty()) {
        ctlSubject->setText(opening.letters);
        kit::ContinueAtEnd(*ctlSubject);
    }
    ctlSubject->setFocus();
    kit::GuardDialog(*this);
}

frmAppointment::~frmAppointment() {
    // The one in hand tells that it was left when it goes, and then the form is half gone.
    for (QLineEdit* line : findChildren<QLineEdit*>())
        line->disconnect(this);
    WipeRecord(stored_);
    WipeRecord(record_);
}

Appointment frmAppointment::Taken() {
    fields_.Take();
    Appointment taken = record_;
    TimeSpan span = StoredSpan(span_, redo_.frequency != 0, redo_.date);
    // A foreign whole-day appointment may last several days, which no control here tells.
    if (SameTimes(span_, loaded_) && stored_.allDay != 0 && span.start == stored_.start)
        span.end = std::max(stored_.end, span.start);
    taken.start = span.start;
    taken.end = span.end;
    taken.allDay = Flag(span.allDay, stored_.allDay);
    taken.alarm = Flag(ctlAlarmYN->isChecked(), stored_.alarm);
    taken.alarmTime = AlarmTime(span.start, ctlAlarmYN->isChecked(), Lead());
    RedoState redo = redo_;
    taken.redoString = StringToStore(redo, stored_.redoString, locale_, session_.ports.random);
    return taken;
}

bool frmAppointment::Differs(const Appointment& taken) const {
    if (!SameTimes(span_, loaded_) || taken.redoString != stored_.redoString) return true;
    const bool alarm = stored_.alarm != 0;
    if (ctlAlarmYN->isChecked() != alarm) return true;
    if (alarm && Lead() != LeadOf(stored_.start, stored_.alarmTime)) return true;
    return taken.subject != stored_.subject || taken.location != stored_.location ||
           taken.notes != stored_.notes || taken.isPrivate != stored_.isPrivate;
}

std::optional<custody::Draft> frmAppointment::HalfWritten() const {
    if (!recordChanged) return std::nullopt;
    std::optional<custody::Draft> draft = fields_.HalfWritten(store::Section::Calendar, record_.key);
    PutSpan(*draft, span_);
    kit::PutFlag(*draft, kAlarm, ctlAlarmYN->isChecked());
    kit::PutNumber(*draft, kLead, Lead());
    PutRedo(*draft, redo_, locale_);
    if (part_) {
        kit::PutNumber(*draft, kSeriesKey, part_->key);
        kit::PutNumber(*draft, kOccurrence, part_->occurrence.count);
        kit::PutNumber(*draft, kReach, static_cast<std::int32_t>(part_->reach));
    }
    return draft;
}

void frmAppointment::Fill(const custody::Draft& draft) {
    fields_.Fill(draft);
    span_ = SpanIn(draft, span_);
    redo_ = RedoIn(draft, DayOf(span_.start), locale_);
    ShowReminder(kit::FlagOf(draft, kAlarm), kit::NumberOf(draft, kLead).value_or(0));
    ShowRedo();
    recordChanged = true;
}

void frmAppointment::Changed() {
    recordChanged = true;
    lblTimesError_->hide();
}

bool frmAppointment::CommitTyped() {
    for (const DateField& field : {date_, startRedo_, endRedo_}) {
        if (!field.edit->isVisibleTo(this) || !field.edit->isEnabled() || field.edit->Commit()) continue;
        field.edit->FocusLine();
        return false;
    }
    for (std::size_t which = 0; which < kTimes; ++which)
        TimeTyped(which);
    return true;
}

bool frmAppointment::AskDropped(const Appointment& taken) {
    excludeAgain_.clear();
    const std::vector<Day> dropped = DroppedDays(stored_.redoString, taken.redoString, locale_);
    if (dropped.empty()) return true;
    const std::vector<Day> able = DaysToLeaveOut(taken.redoString, dropped, locale_);
    const bool one = dropped.size() == 1;
    QString text = tr("This series leaves out %1.").arg(Listed(dropped, names_)) + "\r\n\r\n" +
                   (one ? tr("Changed like this, it would come on that day again.")
                        : tr("Changed like this, it would come on those days again."));
    Box box;
    box.icon = BoxIcon::Question;
    if (able.empty()) {
        text += " " + (one ? tr("The changed series cannot leave it out.")
                           : tr("The changed series cannot leave them out."));
        box.buttons = Buttons::OkCancel;
        box.standard = Answer::Cancel;
        box.words = {tr("Let them come").toStdString(), tr("Keep editing").toStdString()};
    } else {
        std::vector<Day> lost;
        std::ranges::set_difference(dropped, able, std::back_inserter(lost));
        if (!lost.empty())
            text += "\r\n\r\n" + tr("The changed series cannot leave out %1.").arg(Listed(lost, names_));
        box.buttons = Buttons::YesNoCancel;
        box.standard = Answer::Yes;
        box.words = {tr("Exclude them again").toStdString(), tr("Let them come").toStdString(),
                     tr("Keep editing").toStdString()};
    }
    box.text = text.toStdString();
    const Answer answer = session_.ports.prompter.Ask(box);
    if (answer == Answer::Yes) excludeAgain_ = able;
    return answer != Answer::Cancel;
}

void frmAppointment::cmdOK_Click() {
    const bool told = lblTimesError_->isVisible();
    if (!CommitTyped() || !fields_.Judge()) return;
    if (lblTimesError_->isVisible() && !told) return;  // times that became others are to be seen first
    if (redo_.frequency == 1 && std::ranges::find(redo_.days, true) == redo_.days.end()) {
        session_.ports.prompter.Ask(MessageBox(10, BoxIcon::Warning));
        RedoWD.front()->setFocus(Qt::OtherFocusReason);
        return;
    }
    const Appointment taken = Taken();
    const bool differs = isNew_ || (recordChanged && Differs(taken));
    if (differs && !AskDropped(taken)) return;
    recordChanged = differs;
    accept();
}

void frmAppointment::reject() {
    if (!session_.ending) {
        const bool understood = CommitTyped();  // what is still being typed is a change too
        const bool changed = recordChanged && (!understood || isNew_ || Differs(Taken()));
        if (changed && !kit::AskDiscardOrStay(session_) && !session_.ending) return;
    }
    recordChanged = false;
    QDialog::reject();
}

}  // namespace bmr::calendar
