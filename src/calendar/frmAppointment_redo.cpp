#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QScopedValueRollback>
#include <QStackedWidget>
#include <QTimer>
#include <algorithm>

#include "base/languageus.h"
#include "calendar/frmAppointment.h"
#include "calendar/months.h"
#include "calendar/nextdates.h"
#include "calendar/redoevents.h"
#include "calendar/redowords.h"
#include "kit/dateedit.h"
#include "kit/dateentry.h"

/// The recurrence of the appointment editor.
namespace bmr::calendar {

namespace {

constexpr std::size_t kNextShown = 5;

/// "Tue 05/01/2027".
QString WithWeekday(Day day, const CalendarNames& names) {
    return QString::fromStdString(names.shortWeekdays.at(static_cast<std::size_t>(Weekday(day) - 1))) +
           QChar(QChar::Nbsp) + kit::ShortDate(DateValue{static_cast<double>(day.serial)});
}

}  // namespace

SeriesVoice frmAppointment::Voice() {
    SeriesVoice voice;
    voice.beginNextMonth = [this] {
        Box box = MessageBox(151, BoxIcon::Question);
        box.buttons = Buttons::YesNo;
        box.standard = Answer::Yes;
        return session_.ports.prompter.Ask(box) == Answer::Yes;
    };
    voice.limitTaken = [this] {
        const auto box = DateLimitBox(kUpperLimit, locale_);
        if (box && !limitTold_) session_.ports.prompter.Ask(*box);
    };
    return voice;
}

void frmAppointment::ChangeRedo(const RedoChange& change) {
    if (filling_) return;
    const RedoState before = redo_;
    {
        const QScopedValueRollback filling(filling_, true);  // a question takes the focus from what asks it
        change(redo_, locale_, Voice());
    }
    limitTold_ = false;
    if (!(redo_ == before)) Changed();
    MoveToDay(span_, redo_.date);
    ShowRedo();
}

void frmAppointment::ShowRedo() {
    const QScopedValueRollback filling(filling_, true);
    const auto check = [](const auto& options, int which) {
        const auto at = std::clamp<std::size_t>(static_cast<std::size_t>(which), 0, options.size() - 1);
        options.at(at)->setChecked(true);
        // Tab comes to the option that is on; Qt sees to that only after the first press.
        for (QRadioButton* option : options)
            option->setFocusPolicy(option->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
    };
    check(Redo, redo_.frequency);
    check(RedoAlt, redo_.alternative);
    check(RedoEnd, redo_.endMode);
    const bool daily = redo_.frequency == 2;
    const bool monthly = redo_.frequency == 3;
    const bool yearly = redo_.frequency == 4;
    for (std::size_t i = 0; i < 2; ++i) {
        RedoFrD[i]->setVisible(daily);
        RedoFrM[i]->setVisible(monthly);
        RedoFrY[i]->setVisible(yearly);
    }
    nth_->setVisible(monthly || yearly);
    redoPages_->setCurrentIndex(std::min(redo_.frequency, 2));
    RedoEndFrame->setVisible(redo_.frequency != 0);
    for (std::size_t i = 0; i < RedoWD.size(); ++i)
        RedoWD[i]->setChecked(redo_.days[i]);
    cboRedoWhen->setCurrentIndex(redo_.nth <= cboRedoWhen->count() ? redo_.nth - 1 : -1);
    cboRedoWeekday->setCurrentIndex(redo_.weekday - 1);
    cboRedoMonth->setCurrentIndex(redo_.month <= cboRedoMonth->count() ? redo_.month - 1 : -1);
    lblRedoM0->setText(tr("Day %1 every").arg(DayOfMonth(redo_.start)));
    lblRedoY0->setText(
        tr("Every %1 %2")
            .arg(QString::fromStdString(names_.months.at(static_cast<std::size_t>(MonthOf(redo_.start) - 1))))
            .arg(DayOfMonth(redo_.start)));
    const bool ends = redo_.endMode != RedoEnd::Never;
    occ->setEnabled(ends);
    endRedo_.edit->setEnabled(ends);
    ShowDate(startRedo_, redo_.start);
    ShowDate(endRedo_, ends ? redo_.end : kNoEndShown);
    ShowNumbers();
    ShowSpan();
    ShowRedoWords();
}

std::int32_t frmAppointment::NumberShown(const QLineEdit& box) const {
    if (&box == occ) return redo_.count;
    return &box == QQ.back() ? redo_.intervalAlt : redo_.interval;
}

void frmAppointment::ShowNumbers() {
    for (QLineEdit* box : {QQ[0], QQ[1], QQ[2], QQ[3], occ})
        if (box != typed_) box->setText(QString::number(NumberShown(*box)));
    if (redo_.endMode == RedoEnd::Never) occ->clear();
}

void frmAppointment::ShowRedoWords() {
    const bool understood =
        date_.edit->Understood() && startRedo_.edit->Understood() && endRedo_.edit->Understood();
    auto rule = ReadRedoRule(BuildRedoString(redo_, locale_));
    QString sentence = QString::fromStdString(RuleSentence(redo_, names_, locale_));
    if (rule) {
        sentence = sentence.left(1).toUpper() + sentence.mid(1) + ".";
        // Days that are left out so far stay so by the default answer.
        if (const auto before = ReadRedoRule(stored_.redoString)) rule->excluded = before->excluded;
    }
    if (rule && !understood) sentence = tr("The series is told here once its dates are right.");
    sentence_->setText(sentence);
    lblNextHead_->clear();
    next_->clear();
    grid_->clear();
    if (!rule || !understood) return;
    const Day from = std::max(redo_.start, session_.ports.clock.Today());
    QStringList words;
    for (const Day day : NextDates(*rule, from, kNextShown, locale_))
        words << WithWeekday(day, names_);
    if (!words.isEmpty()) lblNextHead_->setText(tr("Next:"));
    next_->setText(words.isEmpty() ? tr("No further dates.") : words.join('\n'));
    if (const auto difference = NextGridDifference(*rule, from, locale_))
        grid_->setText(QString::fromStdString(GridSentence(*difference, names_)));
}

void frmAppointment::RedoWD_Click(std::size_t index, bool chosen) {
    bool left = true;
    ChangeRedo([&](RedoState& state, const LocaleFacts& locale, const SeriesVoice& voice) {
        left = SetWeekday(state, index, chosen, locale, voice);
    });
    if (!left) session_.ports.prompter.Ask(MessageBox(10, BoxIcon::Warning));
}

void frmAppointment::NumberEdited(QLineEdit& box) {
    const auto found = std::ranges::find(QQ, &box);
    if (&box != typed_) numberBefore_ = QString::number(NumberShown(box));
    typed_ = &box;
    const TypedNumber judged = JudgeNumber(numberBefore_.toStdString(), box.text().toStdString());
    const QString text = QString::fromStdString(judged.text);
    if (box.text() != text) box.setText(text);
    numberBefore_ = text;
    for (const int message : judged.messages)
        session_.ports.prompter.Ask(MessageBox(message, BoxIcon::Warning));
    if (text.isEmpty()) return;  // nothing yet
    const std::int32_t number = NumberTyped(judged.text);
    ChangeRedo([&](RedoState& state, const LocaleFacts& locale, const SeriesVoice& voice) {
        if (found == QQ.end())
            SetCount(state, number, locale, voice);
        else
            SetInterval(state, static_cast<int>(found - QQ.begin()), number, locale, voice);
    });
}

void frmAppointment::DateGiven(Day date) {
    ShowWeekday();  // the date that stood may be the one that is given
    ShowRedoWords();
    const auto box = DateLimitBox(date, locale_);
    limitTold_ = box.has_value();
    if (!box) return;
    session_.ports.prompter.Ask(*box);
    // For the change that follows, if one does.
    QTimer::singleShot(0, this, [this] { limitTold_ = false; });
}

void frmAppointment::ctlDate_Change(Day date) {
    ChangeRedo([date](RedoState& state, const LocaleFacts& locale, const SeriesVoice& voice) {
        SetDate(state, date, locale, voice);
    });
}

void frmAppointment::ctlDateStartRedo_Change(Day date) {
    ChangeRedo([date](RedoState& state, const LocaleFacts& locale, const SeriesVoice& voice) {
        SetStart(state, date, locale, voice);
    });
}

void frmAppointment::ctlDateEndRedo_Change(Day date) {
    ChangeRedo([date](RedoState& state, const LocaleFacts& locale, const SeriesVoice& voice) {
        SetEndDate(state, date, locale, voice);
    });
}

}  // namespace bmr::calendar
