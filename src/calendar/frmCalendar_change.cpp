#include <QCalendarWidget>
#include <QLocale>
#include <QMenu>

#include "base/errors.h"
#include "base/languageus.h"
#include "calendar/calendarpane.h"
#include "calendar/frmAppointment.h"
#include "calendar/frmCalendar.h"
#include "calendar/frmReach.h"
#include "calendar/months.h"
#include "calendar/monthview.h"
#include "calendar/weekview.h"
#include "kit/failure.h"
#include "kit/stepstrip.h"
#include "kit/words.h"
#include "store/undostep.h"
#include "tasks/task.h"

// What the hands do to appointments and tasks in the calendar.
namespace bmr::calendar {

using kit::EditEnd;

namespace {

constexpr const char* kTitles[] = {QT_TR_NOOP("Edit"), QT_TR_NOOP("Move"), QT_TR_NOOP("Change the End"),
                                   QT_TR_NOOP("Delete"), QT_TR_NOOP("Copy")};

/// "Thu 19 Nov 21:45-22:45", which stays in one line.
QString SpanWords(Minutes start, Minutes end, bool allDay, const CalendarNames& names) {
    const Day day = DayOf(start);
    const QString words =
        QString::fromStdString(DayHeading(day, names)) + " " +
        QLocale().standaloneMonthName(MonthOf(day), QLocale::ShortFormat) + " " +
        (allDay ? frmCalendar::tr("all day") : QString::fromStdString(EntryTimes(start, end, allDay)));
    return QString(words).replace(' ', QChar::Nbsp);
}

QString ReachQuestion(const Entry& entry, SeriesVerb verb, const std::optional<TimeSpan>& to,
                      const CalendarNames& names) {
    QString subject = kit::ShowWords(entry.subject);
    subject = subject.isEmpty() ? frmCalendar::tr("The appointment") : QString("“%1”").arg(subject);
    const Day day = DayOf(entry.start);
    const QString date = QString::fromStdString(PeriodHeading({day, day}, PeriodKind::Day, names));
    if (verb == SeriesVerb::Delete)
        return QString::fromStdString(Msg(7)) +
               (entry.subject.empty() ? frmCalendar::tr(" on %1.").arg(date)
                                      : frmCalendar::tr(" %1 on %2.").arg(subject, date)) +
               "\n\n" + frmCalendar::tr("It is one of a series: what is to be deleted?");
    if (!to) return frmCalendar::tr("%1 on %2 is one of a series. What is to be edited?").arg(subject, date);
    const QString before = SpanWords(entry.start, entry.end, entry.allDay, names);
    const QString after = SpanWords(to->start, to->end, to->allDay, names);
    const QString words = verb == SeriesVerb::Move
                              ? frmCalendar::tr("%1 is one of a series. What is to be moved from %2 to %3?")
                              : frmCalendar::tr("%1 is one of a series. What is to change from %2 to %3?");
    return words.arg(subject, before, after);
}

Minutes Plus(Minutes minutes, std::int64_t more) {
    return {static_cast<std::int32_t>(minutes.count + more)};
}

}  // namespace

void frmCalendar::ShowDay(int place) {
    calDate_DateClick({state_.periodStart.serial + place});
    calView_Click(static_cast<int>(PeriodKind::Day));
}

void frmCalendar::ShowPopup(const QPoint& at) {
    mnuCalendarRC->popup(at);
}

void frmCalendar::mnuNewAppointment_Click() {
    NewAppointment({});
}

void frmCalendar::mnuCalendarRCAppoOpen_Click() {
    if (const auto chosen = Chosen()) OpenEntry(*chosen);
}

void frmCalendar::mnuCalendarRCAppoDelete_Click() {
    if (const auto chosen = Chosen()) DeleteEntry(*chosen);
}

TimeSpan frmCalendar::MarkedSpan() const {
    const std::int32_t length = session_.settings.AppDuration;
    if (InMonth()) return NewSpan(MidnightOf({state_.periodStart.serial + month_->MarkedCell()}), length);
    const DaySpan& marked = week_->Marked();
    const Day day{state_.periodStart.serial + marked.day};
    if (marked.allDay) return AllDaySpan(day, length);
    const Minutes start = Plus(MidnightOf(day), marked.start);
    // One row is where the cursor stands; what is longer was drawn.
    if (marked.end - marked.start <= WeekView::kStep) return NewSpan(start, length);
    return DrawnSpan(start, Plus(MidnightOf(day), marked.end));
}

void frmCalendar::NewAppointment(const QString& letters) {
    const TimeSpan span = MarkedSpan();
    EditNew(span, letters, nullptr);
}

void frmCalendar::EditNew(const TimeSpan& span, const QString& letters, const custody::Draft* draft) {
    Appointment record = ClearRecord(span.start, span.Length());
    record.end = span.end;
    record.allDay = span.allDay ? 1 : 0;
    EditNew(record, {span, letters}, draft);
}

void frmCalendar::mnuAppoCopy_Click() {
    const auto chosen = Chosen();
    if (!chosen || round_.Open()) return;
    auto record = ReadWhole(EntryOf(*chosen).pk);
    if (!record) return;
    const std::int64_t shift = std::int64_t{EntryOf(*chosen).start.count} - record->start.count;
    for (Minutes* each : {&record->start, &record->end, &record->alarmTime})
        *each = Plus(*each, shift);
    record->key = store::kNewRecord;
    record->redoString = WipedText();
    const TimeSpan span =
        LoadedSpan(record->start, record->end, record->allDay != 0, session_.settings.AppDuration);
    EditNew(*record, {span}, nullptr);
}

void frmCalendar::EditNew(Appointment& record, const Opening& opening, const custody::Draft* draft) {
    if (round_.Open() || !session_.DatabaseOpen) return WipeRecord(record);
    frmAppointment editor(session_, record, opening, this);
    const EditEnd end = round_.EditUntilStored(editor, draft, tr("The appointment was not stored."), [&] {
        const std::int32_t key = record.key;
        record = editor.Taken();
        record.key = key;
        return WriteRecord(session_, record).error;
    });
    if (end == EditEnd::Stored) ShowStored(record.key, record.start);
    WipeRecord(record);
}

void frmCalendar::EditStored(std::int32_t fPK, Minutes occurrence, Reach reach, const custody::Draft* draft) {
    if (round_.Open() || !session_.DatabaseOpen) return;
    int error = 0;
    auto record = ForEditing(session_, fPK, occurrence, reach, locale_, &error);
    if (!record) {
        kit::TellFailure(session_, error, tr("The appointment could not be read."));
        return calendarChanged();
    }
    const auto before = session_.undo.lastNumber;
    Opening opening;
    if (reach != Reach::All && record->key == store::kNewRecord) opening.part = {fPK, occurrence, reach};
    frmAppointment editor(session_, *record, opening, this);
    const EditEnd end = round_.EditUntilStored(editor, draft, tr("The appointment was not stored."), [&] {
        *record = editor.Taken();
        return StoreOccurrence(session_, *record, fPK, occurrence, reach, locale_, editor.ExcludeAgain())
            .error;
    });
    if (end == EditEnd::Stored) {
        if (reach != Reach::All) TellStepSince(before);
        ShowStored(record->key, reach == Reach::All ? occurrence : record->start);
    }
    WipeRecord(*record);
}

void frmCalendar::ShowStored(std::int32_t fPK, Minutes at) {
    calendarChanged();
    // The whole of a series may have been opened far from its first day: the view stays where it still is.
    if (Choose(fPK, at)) {
        const Day day = DayOf(EntryOf(*Chosen()).start);
        if (day != Date()) calDate_DateClick(day);
        Choose(fPK, at);
        return;
    }
    SelectRecord(fPK);
    const Day day = DayOf(at);
    const bool weekend = Weekday(day) == 1 || Weekday(day) == 7;
    if (Kind() != PeriodKind::WorkWeek || !weekend || Chosen()) return;
    strip_->Say(tr("Stored on %1, which the workdays do not show.")
                    .arg(QString::fromStdString(PeriodHeading({day, day}, PeriodKind::Day, names_))));
}

void frmCalendar::OpenEntry(std::size_t look) {
    if (look >= shown_.size() || round_.Open()) return;
    const std::int32_t fPK = EntryOf(look).pk;
    const Minutes at = EntryOf(look).start;
    if (const auto reach = AskReach(EntryOf(look), SeriesVerb::Edit)) EditStored(fPK, at, *reach, nullptr);
}

std::optional<Appointment> frmCalendar::ReadWhole(std::int32_t fPK) {
    int error = 0;
    auto record = FetchRecord(session_, fPK, &error);
    if (record && record->readable) return record;
    const int number = error != 0 ? error
                       : record   ? MessageNumber::UpdateImpossible
                                  : MessageNumber::NoRecord;
    kit::TellFailure(session_, number, tr("The appointment could not be read."));
    return std::nullopt;
}

std::optional<Reach> frmCalendar::AskReach(const Entry& entry, SeriesVerb verb,
                                           const std::optional<TimeSpan>& to) {
    if (!entry.recurring) return Reach::All;
    auto series = ReadWhole(entry.pk);
    if (!series) return std::nullopt;
    const ReachOffer offer =
        ReachesFor(*series, entry.start, verb, to ? std::optional(to->start) : std::nullopt, locale_);
    WipeRecord(*series);
    frmReach box(tr(kTitles[static_cast<std::size_t>(verb)]), ReachQuestion(entry, verb, to, names_), offer,
                 this);
    box.exec();
    if (session_.ending || !session_.DatabaseOpen) return std::nullopt;
    return box.Chosen();
}

void frmCalendar::ShowChanged(const store::StoreOutcome& outcome, const QString& failure, Minutes at) {
    kit::TellFailure(session_, outcome.error, failure);
    if (session_.ending || !session_.DatabaseOpen) return;
    calendarChanged();
    if (outcome.error == 0) Choose(outcome.fPK, at);
}

void frmCalendar::TellStepSince(std::uint64_t before) {
    if (session_.undo.lastNumber != before) strip_->TellStep();
}

void frmCalendar::DeleteEntry(std::size_t look) {
    if (look >= shown_.size() || round_.Open()) return;
    const Entry& entry = EntryOf(look);
    const std::int32_t fPK = entry.pk;
    const Minutes at = entry.start;
    std::optional<Reach> reach;
    if (entry.recurring)
        reach = AskReach(entry, SeriesVerb::Delete);
    else if (session_.ports.prompter.Ask(ConfirmDelete(7, DeleteText(entry.subject))) == Answer::Ok)
        reach = Reach::All;
    if (!reach || session_.ending || !session_.DatabaseOpen) return;
    const auto before = session_.undo.lastNumber;
    ShowChanged(DeleteOccurrence(session_, fPK, at, *reach, locale_), tr("The appointment was not deleted."),
                at);
    TellStepSince(before);
}

void frmCalendar::MakePrivate(bool isPrivate) {
    const auto chosen = Chosen();
    if (!chosen || round_.Open()) return;
    const std::int32_t fPK = EntryOf(*chosen).pk;
    const Minutes at = EntryOf(*chosen).start;
    const auto before = session_.undo.lastNumber;
    const auto outcome = HideSeveral(session_, std::vector{fPK}, isPrivate);
    ShowChanged({.error = outcome.error, .fPK = fPK}, tr("The appointment was not stored."), at);
    TellStepSince(before);
}

void frmCalendar::Drop(std::size_t look, const TimeSpan& to, DropKind kind) {
    if (look >= shown_.size() || round_.Open()) return;
    const Entry& entry = EntryOf(look);
    const std::int32_t fPK = entry.pk;
    const Minutes at = entry.start;
    const bool recurring = entry.recurring;
    const auto before = session_.undo.lastNumber;
    const QString failure = tr("The appointment was not stored.");
    if (kind == DropKind::Copy) {
        ShowChanged(CopyOccurrence(session_, fPK, at, to), failure, to.start);
    } else {
        const auto verb = kind == DropKind::Resize ? SeriesVerb::Resize : SeriesVerb::Move;
        const auto reach = AskReach(entry, verb, to);
        if (session_.ending || !session_.DatabaseOpen) return;
        if (!reach) return calendarChanged();
        ShowChanged(MoveOccurrence(session_, fPK, at, to, *reach, locale_), failure,
                    *reach == Reach::All && recurring ? at : to.start);
    }
    if (session_.DatabaseOpen && !session_.ending) TellStepSince(before);
}

void frmCalendar::DropInWeek(std::size_t look, const DaySpan& span, DropKind kind) {
    const Day day{state_.periodStart.serial + span.day};
    if (span.allDay) return Drop(look, AllDaySpan(day, session_.settings.AppDuration), kind);
    Drop(look, DrawnSpan(Plus(MidnightOf(day), span.start), Plus(MidnightOf(day), span.end)), kind);
}

void frmCalendar::DropInMonth(std::size_t look, int cell, DropKind kind) {
    if (look >= shown_.size()) return;
    const Entry& entry = EntryOf(look);
    const Day day{state_.periodStart.serial + cell};
    const std::int64_t shift = std::int64_t{day.serial - DayOf(entry.start).serial} * kMinutesOfDay;
    TimeSpan to = entry.allDay ? AllDaySpan(day, session_.settings.AppDuration)
                               : DrawnSpan(Plus(entry.start, shift), Plus(entry.end, shift));
    Drop(look, to, kind);
}

void frmCalendar::OpenDraft(const custody::Draft& draft) {
    const auto part = PartIn(draft);
    const std::int32_t key = part ? part->key : draft.key;
    int error = 0;
    auto record = key == store::kNewRecord ? std::nullopt : FetchRecord(session_, key, &error);
    if (error != 0) return kit::TellFailure(session_, error, tr("The appointment could not be read."));
    // A series that was changed since may have the day no more: what was written becomes one of its own.
    const bool stands =
        record &&
        (!part ||
         ReachesFor(*record, part->occurrence, SeriesVerb::Edit, std::nullopt, locale_).Offers(part->reach));
    const Minutes occurrence = part ? part->occurrence : record ? record->start : Minutes{};
    if (record) WipeRecord(*record);
    if (!stands) return EditNew(NewSpan(MidnightOf(Date()), session_.settings.AppDuration), {}, &draft);
    EditStored(key, occurrence, part ? part->reach : Reach::All, &draft);
}

void frmCalendar::OpenTask(std::int32_t fPK) {
    if (!ports_.editTask || round_.Open()) return;
    ports_.editTask(session_, round_, fPK, this);
    if (!session_.DatabaseOpen || session_.ending) return;
    ReadPane();
    TellStatus();
}

void frmCalendar::TickTask(std::int32_t fPK) {
    if (!session_.DatabaseOpen || session_.ending) return;
    const auto before = session_.undo.lastNumber;
    int error = 0;
    {
        store::UndoStep step(session_, store::Section::Todo, {"completion", "completed"});
        error = tasks::SetCompleted(session_, fPK, true).error;
        if (error == 0) step.Keep();
    }
    kit::TellFailure(session_, error, tr("The task was not stored."));
    if (session_.ending || !session_.DatabaseOpen) return;
    ReadPane();
    if (session_.undo.lastNumber != before) strip_->TellStep(store::Section::Todo);
    TellStatus();
}

}  // namespace bmr::calendar
