#include <QCheckBox>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QScopedValueRollback>
#include <QShortcutEvent>
#include <QSlider>
#include <QTimer>
#include <algorithm>

#include "calendar/frmAppointment.h"
#include "calendar/localenames.h"
#include "calendar/reminder.h"
#include "kit/dateedit.h"
#include "kit/dateentry.h"
#include "kit/formparts.h"

/// The time span of the appointment editor and its reminder.
namespace bmr::calendar {

namespace {

constexpr std::size_t kStart = 0;
constexpr std::size_t kEnd = 1;
constexpr std::size_t kDuration = 2;
constexpr std::int32_t kHour = 60;
constexpr int kLastHour = 23;
constexpr int kLastMinute = 59;
constexpr int kHoursOfDay = 24;

/// Hours and minutes of one of the three rows, in minutes.
std::int32_t Shown(const TimeSpan& span, std::size_t which) {
    if (which == kStart) return MinuteOfDay(span.start);
    return which == kEnd ? EndMinute(span) : span.Length();
}

}  // namespace

QString frmAppointment::EndsOn(Day day) {
    return tr("ends on %1").arg(kit::ShortDate(DateValue{static_cast<double>(day.serial)}));
}

void frmAppointment::ChangeSpan(const std::function<void(TimeSpan&)>& change, const QString& cut) {
    if (filling_) return;
    const TimeSpan before = span_;
    change(span_);
    if (!(span_ == before)) Changed();
    kit::Tell(*lblTimesError_, cut);
    ShowSpan();
}

void frmAppointment::ShowSpan() {
    const QScopedValueRollback filling(filling_, true);
    for (std::size_t which = 0; which < kTimes; ++which) {
        const std::int32_t minutes = Shown(span_, which);
        const QString hour = QString::fromStdString(TwoDigits(minutes / kHour));
        const QString minute = QString::fromStdString(TwoDigits(minutes % kHour));
        if (which == kStart)
            for (QComboBox* box : quickTimes_)
                box->setCurrentIndex(-1);
        ctlHH[which]->setText(hour);
        ctlNN[which]->setText(minute);
        if (which == kDuration) continue;
        SliderHH[which]->setValue(minutes / kHour);
        SliderNN[which]->setValue(minutes % kHour / kMinuteStep);
    }
    ctlAllday->setChecked(span_.allDay);
    for (QWidget* control : std::initializer_list<QWidget*>{
             quickTimes_[0], quickTimes_[1], ctlHH[kEnd], ctlNN[kEnd], ctlHH[kDuration], ctlNN[kDuration],
             SliderHH[0], SliderHH[1], SliderNN[0], SliderNN[1], cmdDuration})
        control->setEnabled(!span_.allDay);
    const Day day = DayOf(span_.start);
    ShowDate(date_, day);
    ShowWeekday();
    ctlDateEnd->setText(EndsElsewhere(span_) ? EndsOn(DayOf(span_.end)) : QString());
}

void frmAppointment::ShowDate(const DateField& field, Day date) {
    // What was typed and is none stays to be mended, unless another control gave the date.
    if (!field.edit->Understood() && field.edit->Date() == date) return;
    field.error->hide();
    field.edit->SetDate(date);
}

void frmAppointment::ShowWeekday() {
    const auto weekday = static_cast<std::size_t>(Weekday(DayOf(span_.start)) - 1);
    lblWeekday_->setText(date_.edit->Understood() ? QString::fromStdString(names_.weekdays.at(weekday))
                                                  : QString());
}

QString frmAppointment::WhatIsCut(std::size_t which, std::int32_t minutes) const {
    QStringList cut;
    if (which == kStart && ctlHH[which]->text().toInt() > kLastHour) cut << tr("Hours go to 23.");
    const std::int32_t typed = ctlNN[which]->isModified() ? ctlNN[which]->text().toInt() : 0;
    if (typed > kLastMinute) cut << tr("Minutes go to 55.");
    if (typed <= kLastMinute && typed % kMinuteStep != 0) cut << tr("Minutes go in steps of five.");
    const std::int32_t start = which == kStart ? minutes : MinuteOfDay(span_.start);
    // An end on another day comes back to the start's day.
    const std::int32_t end = which == kStart ? (EndsElsewhere(span_) ? kMinutesOfDay + 1 : EndMinute(span_))
                             : which == kEnd ? minutes
                                             : start + minutes;
    const bool beyond =
        which != kStart && ctlHH[which]->isModified() && ctlHH[which]->text().toInt() > kHoursOfDay;
    if (beyond || (minutes != Shown(span_, which) && end > kMinutesOfDay))
        cut << tr("An end after midnight cannot be typed: it is cut at 24:00.");
    else if (minutes != Shown(span_, which) && end < start)
        cut << tr("The end lay before the start: it is the start now.");
    return cut.join(' ');
}

void frmAppointment::TimeTyped(std::size_t which) {
    if (!ctlHH[which]->isModified() && !ctlNN[which]->isModified()) return;
    constexpr std::array kBoxes{TimeBox::Start, TimeBox::End, TimeBox::Duration};
    const std::int32_t before = Shown(span_, which);
    // A box that was left empty says nothing.
    const std::int32_t hour =
        TypedHour(ctlHH[which]->text().toStdString(), kBoxes.at(which)).value_or(before / kHour);
    const std::int32_t typed = ctlNN[which]->isModified()
                                   ? TypedMinute(ctlNN[which]->text().toStdString()).value_or(before % kHour)
                                   : before % kHour;
    const std::int32_t minutes = hour * kHour + typed;
    ChangeSpan(
        [&](TimeSpan& span) {
            if (minutes == before) return;
            if (which == kStart) TypeStart(span, minutes);
            if (which == kEnd) TypeEnd(span, minutes);
            if (which == kDuration) TypeDuration(span, minutes);
        },
        WhatIsCut(which, minutes));
}

void frmAppointment::StepTime(std::size_t which, bool hours, int direction) {
    TimeTyped(which);
    const std::int32_t by = direction * (hours ? kHour : kMinuteStep);
    ChangeSpan([&](TimeSpan& span) {
        if (which == kDuration && !hours) return StepDuration(span, direction);
        const std::int32_t minutes = std::max(Shown(span, which) + by, 0);
        // As the sliders, the start stays where a step would carry it out of its day.
        if (which == kStart && minutes < kMinutesOfDay) SlideStart(span, minutes);
        if (which == kEnd) SlideEnd(span, minutes);
        if (which == kDuration) TypeDuration(span, minutes);
    });
    (hours ? ctlHH : ctlNN).at(which)->selectAll();
}

void frmAppointment::SliderMoved(std::size_t which) {
    const int last = which == kStart ? kLastHour : kHoursOfDay;
    const std::int32_t minutes =
        std::min(SliderHH.at(which)->value(), last) * kHour + SliderNN.at(which)->value() * kMinuteStep;
    ChangeSpan(
        [&](TimeSpan& span) { which == kStart ? SlideStart(span, minutes) : SlideEnd(span, minutes); });
}

void frmAppointment::ctlAllday_Click(bool on) {
    for (std::size_t which = 0; which < kTimes; ++which)
        TimeTyped(which);
    ChangeSpan([on](TimeSpan& span) { SetAllDay(span, on); });
}

void frmAppointment::cmdDuration_Press(int direction) {
    TimeTyped(kDuration);
    durationStep_ = direction;
    tmrDuration->start(kDurationFirstStep);
}

void frmAppointment::cmdDuration_Release() {
    // A click that is shorter than the first pause is a step all the same.
    const bool clicked = tmrDuration->isActive() && tmrDuration->interval() == kDurationFirstStep;
    tmrDuration->stop();
    if (clicked) tmrDuration_Tick();
    tmrDuration->stop();
}

void frmAppointment::tmrDuration_Tick() {
    tmrDuration->start(kDurationNextStep);
    ChangeSpan([this](TimeSpan& span) { StepDuration(span, durationStep_); });
}

void frmAppointment::ShowReminder(bool on, std::int32_t lead) {
    const QScopedValueRollback filling(filling_, true);
    ctlAlarmAnticipate->clear();
    for (const std::int32_t minutes : LeadChoices(lead))
        ctlAlarmAnticipate->addItem(QString::fromStdString(LeadText(minutes)), minutes);
    ctlAlarmAnticipate->setCurrentIndex(ctlAlarmAnticipate->findData(lead));
    ctlAlarmYN->setChecked(on);
    ctlAlarmAnticipate->setEnabled(on);
}

std::int32_t frmAppointment::Lead() const {
    return ctlAlarmAnticipate->currentData().toInt();
}

bool frmAppointment::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool plain = (key->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
        const int direction = key->key() == Qt::Key_Up ? 1 : key->key() == Qt::Key_Down ? -1 : 0;
        if (plain && direction != 0)
            for (std::size_t which = 0; which < kTimes; ++which)
                for (const bool hours : {true, false}) {
                    const QLineEdit* line = (hours ? ctlHH : ctlNN).at(which);
                    if (watched != line && (which != kStart || watched != line->parent())) continue;
                    StepTime(which, hours, direction);
                    return true;
                }
    }
    // The letters of "After" and "By" lead to what is to be typed there.
    if (event->type() == QEvent::Shortcut && !static_cast<QShortcutEvent*>(event)->isAmbiguous())
        for (std::size_t index = 1; index < RedoEnd.size(); ++index) {
            if (watched != RedoEnd.at(index)) continue;
            RedoEnd.at(index)->click();
            if (index == 1) {
                occ->setFocus(Qt::ShortcutFocusReason);
                occ->selectAll();
            } else {
                endRedo_.edit->FocusLine();
            }
            return true;
        }
    // Over a closed list of quick values the wheel would change the time unseen.
    if (event->type() == QEvent::Wheel && qobject_cast<QComboBox*>(watched)) return true;
    // The words beside an option that has none of its own choose it.
    if (event->type() == QEvent::MouseButtonRelease && qobject_cast<QLabel*>(watched))
        if (auto* option = watched->property("option").value<QAbstractButton*>()) option->click();
    return QDialog::eventFilter(watched, event);
}

}  // namespace bmr::calendar
