#include "calendar/frmCalendar.h"

#include <QApplication>
#include <QCalendarWidget>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QStackedWidget>
#include <QTabBar>
#include <QTableView>
#include <QTextCharFormat>
#include <QTimer>
#include <QToolButton>
#include <algorithm>
#include <cmath>

#include "calendar/calendarpane.h"
#include "calendar/localenames.h"
#include "calendar/monthview.h"
#include "calendar/weekrule.h"
#include "calendar/weekview.h"
#include "kit/calendarlook.h"
#include "kit/dateentry.h"
#include "kit/failure.h"
#include "kit/stepstrip.h"
#include "kit/strip.h"
#include "kit/theme.h"
#include "kit/words.h"
#include "store/undo.h"

namespace bmr::calendar {

namespace {

QString Text(const std::string& words) {
    return QString::fromStdString(words);
}

std::int32_t MinuteOf(DateValue time) {
    return static_cast<std::int32_t>(std::lround((time.serial - std::floor(time.serial)) * kMinutesOfDay)) %
           kMinutesOfDay;
}

std::optional<int> PlaceIn(const Period& period, Day day) {
    if (day < period.first || day > period.last) return std::nullopt;
    return day.serial - period.first.serial;
}

EntryLook LookOf(const Entry& entry) {
    EntryLook look;
    look.start = entry.start;
    look.end = entry.end;
    look.allDay = entry.allDay;
    look.alarm = entry.alarm;
    look.repeats = entry.recurring;
    look.isPrivate = entry.isPrivate;
    look.from = entry.allDay ? QString() : Text(TimeText(MinuteOfDay(entry.start)));
    look.time = Text(EntryTimes(entry.start, entry.end, entry.allDay));
    look.subject = kit::ShowWords(entry.subject);
    const kit::WipedLetters place = kit::ShowWords(entry.location);
    const QString when = entry.allDay ? frmCalendar::tr("All day") : look.time;
    const kit::WipedLetters notes = kit::ShowLines(entry.notes);
    // Nothing is to be left where it grew.
    look.tip.reserve(when.size() + look.subject.size() + place.size() + notes.size() + 3);
    look.tip += when;
    for (const kit::WipedLetters* line : {&std::as_const(look.subject), &place, &notes})
        if (!line->isEmpty()) look.tip.append('\n').append(*line);
    return look;
}

/// As lists find words: blind to case and accents.
bool Holds(const store::Needle& needle, const WipedText& words) {
    return needle.InTold(store::TellWords(words).told) && (!needle.AsksTrueText() || needle.InTrue(words));
}

}  // namespace

frmCalendar::frmCalendar(store::Session& session, FormPorts ports, QWidget* parent)
    : SectionForm(parent),
      session_(session),
      ports_(std::move(ports)),
      locale_(kit::FactsOf(QLocale())),
      firstWeek_(FirstWeekOf(QLocale())),
      names_(NamesOf(QLocale())),
      round_(session, *this),
      today_(session.ports.clock.Today()),
      stepsBefore_(session.undo.lastNumber) {
    setObjectName("frmCalendar");
    setWindowTitle("CALENDAR");
    state_.calView = static_cast<PeriodKind>(
        std::min<std::uint8_t>(session.calendarView.value_or(session.settings.calView), 3));
    const Period period = PeriodBounds(WithinLimits(today_), Kind(), locale_);
    state_.periodStart = period.first;
    state_.periodEnd = period.last;
    BuildActions();
    BuildMenus();
    BuildDates();
    BuildViews();
    Lay();
    SetDate(WithinLimits(today_));
    ShowPeriod();
    MarkDate(Date());
    AwaitMinute();
}

frmCalendar::~frmCalendar() {
    if (session_.DatabaseOpen) session_.calendarView = static_cast<std::uint8_t>(Kind());
}

QList<QAction*> frmCalendar::ToolActions() {
    return {mnuNewAppointment, mnuAppoOpen, mnuAppoDelete};
}

// ---- The period -----------------------------------------------------------------------------------------

Day frmCalendar::Date() const {
    return kit::FromQDate(calDate->selectedDate());
}

void frmCalendar::SetDate(Day date) {
    const QSignalBlocker quiet(calDate);
    calDate->setSelectedDate(kit::ToQDate(date));
}

void frmCalendar::calView_Click(int Index) {
    // What is chosen leads, on a day of the neighbouring month too, where the date does not follow it.
    const auto kept = Chosen() ? chosen_ : std::nullopt;
    const Day date = kept ? WithinLimits(DayOf(kept->minutes)) : Date();
    if (!ChangeView(state_, static_cast<PeriodKind>(Index), date, locale_)) return;
    SetDate(date);
    const QSignalBlocker quiet(calView);
    calView->setCurrentIndex(Index);
    mnuView_[static_cast<std::size_t>(Index)]->setChecked(true);
    DressTabs();
    ShowPeriod();
    if (!kept || !Choose(kept->pk, kept->minutes)) MarkDate(date);
    ShowFirstHour();
    if (!calView->hasFocus()) View()->setFocus(Qt::OtherFocusReason);
}

void frmCalendar::calDate_DateClick(Day date) {
    if (const auto box = DateLimitBox(date, locale_)) {
        session_.ports.prompter.Ask(*box);
        if (session_.ending) return;
    }
    const Day day = WithinLimits(date);
    const bool moved = GoToDay(state_, day, locale_);
    SetDate(day);
    if (moved) ShowPeriod();
    MarkDate(day);
}

void frmCalendar::MarkDate(Day date) {
    const int place = date.serial - state_.periodStart.serial;
    if (InMonth()) return month_->MarkCell(place);
    DaySpan span = week_->Marked();
    // A weekend has no column in the work week.
    span.day = std::clamp(place, 0, state_.periodEnd.serial - state_.periodStart.serial);
    {
        // The nearest column is where the hands go on; the date stays the weekend's.
        const QSignalBlocker quiet(week_);
        week_->Mark(span);
    }
    ChosenChanged();
}

void frmCalendar::ShowFirstHour() {
    // Hours that were never shown have no height yet by which they could be scrolled.
    if (InMonth() || !isVisible() || std::exchange(hoursShown_, true)) return;
    week_->ScrollTo(MinuteOf(session_.settings.DisplayFrom));
    if (const auto chosen = Chosen()) week_->Choose(chosen);
}

void frmCalendar::cmdToday_Click() {
    const Day today = session_.ports.clock.Today();
    calDate_DateClick(today);
    if (InMonth()) return;
    week_->ScrollTo(MinuteOf(session_.settings.DisplayFrom));
    const auto place = PlaceIn({state_.periodStart, state_.periodEnd}, today);
    const std::int32_t now = MinuteOf(session_.ports.clock.Now());
    if (place &&
        week_->AreaOf({*place, now, now + WeekView::kStep, false}).bottom() > week_->viewport()->height())
        week_->ScrollTo(now - 60);
}

void frmCalendar::cmdWeek_Click() {
    calView_Click(static_cast<int>(PeriodKind::Week));
}

void frmCalendar::Step(int way) {
    if (way == 0) return cmdToday_Click();
    const Day next = StepPeriod(Date(), Kind(), way);
    calDate_DateClick(next == Date() ? Day{next.serial + way} : next);
}

void frmCalendar::ShowPeriod() {
    chosen_.reset();
    hidden_.reset();
    ShowHeadings();
    ReadEntries();
    ShowEntries();
    if (session_.CalendarDirty) paneDelay_->start();
}

void frmCalendar::ShowHeadings() {
    const Period period{state_.periodStart, state_.periodEnd};
    heading_->setText(Text(PeriodHeading(period, Kind(), names_)));
    const int week = WeekOfYear(InMonth() ? Date() : period.first, locale_.firstDayOfWeek, firstWeek_);
    cmdWeek->setText(tr("Week %1").arg(week));
    cmdWeek->setVisible(!InMonth());
    mnuPrevious->setToolTip(InMonth()                   ? tr("Month before")
                            : Kind() == PeriodKind::Day ? tr("Day before")
                                                        : tr("Week before"));
    mnuNext->setToolTip(InMonth()                   ? tr("Next month")
                        : Kind() == PeriodKind::Day ? tr("Next day")
                                                    : tr("Next week"));
    ShowSide();
    if (InMonth()) {
        const MonthTable table = FillMonth(period, {}, locale_.firstDayOfWeek, firstWeek_);
        MonthView::Frame frame;
        frame.first = period.first;
        for (std::size_t i = 0; i < frame.weekdays.size(); ++i)
            frame.weekdays[i] = Text(names_.shortWeekdays[static_cast<std::size_t>(
                Weekday({period.first.serial + static_cast<std::int32_t>(i)}) - 1)]);
        for (std::size_t i = 0; i < table.weeks.size(); ++i)
            frame.monWeek[i] = QString::number(table.weeks[i]);
        for (std::size_t i = 0; i < table.cells.size(); ++i) {
            const MonthCell& cell = table.cells[i];
            frame.monDayLabel[i] = cell.label;
            frame.inMonth[i] = cell.ofMonth;
            frame.spoken[i] = Text(PeriodHeading({cell.day, cell.day}, PeriodKind::Day, names_));
        }
        frame.today = PlaceIn(period, today_);
        month_->SetFrame(std::move(frame));
        views_->setCurrentWidget(month_);
    } else {
        WeekView::Frame frame;
        frame.first = period.first;
        for (const Day day : DaysOf(period))
            frame.DLabel.push_back(Text(DayHeading(day, names_)));
        frame.weekNr = QString::number(week);
        for (std::int32_t hour = 0; hour < 24; ++hour)
            frame.hours.push_back(Text(TimeText(hour * 60)));
        frame.today = PlaceIn(period, today_);
        frame.workStart = MinuteOf(session_.settings.WorkdayStart);
        frame.workEnd = MinuteOf(session_.settings.WorkdayEnd);
        frame.now = MinuteOf(session_.ports.clock.Now());
        frame.nowText = Text(TimeText(frame.now));
        frame.dropLength = session_.settings.AppDuration;
        week_->SetFrame(std::move(frame));
        views_->setCurrentWidget(week_);
    }
    setFocusProxy(View());
}

void frmCalendar::ShowSide() {
    const bool shown = sideShown_[InMonth() ? 1 : 0];
    const QSignalBlocker quiet(mnuSidePane);
    mnuSidePane->setChecked(shown);
    side_->setVisible(shown);
    pane_->setVisible(!InMonth());
}

void frmCalendar::DressDates() {
    kit::DressCalendar(*calDate);
    // Narrow enough to stand beside the days, which tell the week themselves.
    calDate->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    calDate->setHorizontalHeaderFormat(QCalendarWidget::SingleLetterDayNames);
    if (auto* days = calDate->findChild<QTableView*>("qt_calendar_calendarview"))
        days->horizontalHeader()->setMinimumSectionSize(fontMetrics().horizontalAdvance("00") + 4);
    calDate->setDateTextFormat(QDate(), {});
    QTextCharFormat format;
    format.setFontWeight(QFont::Bold);
    format.setForeground(kit::InkOf(kit::Ink::Accent, palette()));
    calDate->setDateTextFormat(kit::ToQDate(today_), format);
}

void frmCalendar::DressTabs() {
    // On a dark ground the tab that is in front would hardly stand out.
    for (int tab = 0; tab < calView->count(); ++tab)
        calView->setTabTextColor(
            tab, tab == calView->currentIndex() ? kit::InkOf(kit::Ink::Accent, palette()) : QColor());
}

void frmCalendar::changeEvent(QEvent* event) {
    SectionForm::changeEvent(event);
    if (event->type() != QEvent::PaletteChange) return;
    DressDates();
    DressTabs();
}

void frmCalendar::AwaitMinute() {
    const double minutes = session_.ports.clock.Now().serial * kMinutesOfDay;
    const double rest = 1 - (minutes - std::floor(minutes));
    minute_->start(std::max(1000, static_cast<int>(rest * 60'000) + 50));
}

void frmCalendar::MinutePassed() {
    AwaitMinute();
    if (!session_.DatabaseOpen || session_.ending) return;
    const std::int32_t now = MinuteOf(session_.ports.clock.Now());
    week_->SetNow(now, Text(TimeText(now)));
    const Day today = session_.ports.clock.Today();
    if (today == today_) return;
    today_ = today;
    DressDates();
    ShowHeadings();
    paneDelay_->start();  // other tasks are overdue
}

// ---- The entries ----------------------------------------------------------------------------------------

void frmCalendar::calendarChanged() {
    ReadEntries();
    ShowEntries();
}

void frmCalendar::ReadEntries() {
    entries_.clear();
    if (!session_.DatabaseOpen || session_.ending) return;
    auto read = EntriesInPeriod(session_, {state_.periodStart, state_.periodEnd}, locale_);
    if (!read)
        return kit::TellFailure(session_, read.error().number, tr("The appointments could not be read."));
    entries_ = std::move(*read);
}

bool frmCalendar::Matches(const Entry& entry) const {
    return needle_.empty() || Holds(needle_, entry.subject) || Holds(needle_, entry.location);
}

void frmCalendar::ShowEntries() {
    const auto before = chosen_ ? chosen_ : hidden_;
    shown_.clear();
    std::vector<EntryLook> looks;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (!Matches(entries_[i])) continue;
        shown_.push_back(i);
        looks.push_back(LookOf(entries_[i]));
    }
    if (InMonth())
        month_->SetEntries(std::move(looks));
    else
        week_->SetEntries(std::move(looks));
    for (std::size_t i = 0; before && i < shown_.size(); ++i)
        if (EntryOf(i).pk == before->pk && EntryOf(i).start == before->minutes) ChooseLook(i);
    ShowFound();
    ChosenChanged();
    hidden_ = search_.isEmpty() || chosen_ ? std::nullopt : before;
}

void frmCalendar::ShowFound() {
    if (search_.isEmpty()) return found_->Clear();
    const QString what = shown_.empty() ? tr("Nothing for “%1” in what is shown here.").arg(search_)
                                        : tr("Only what holds “%1” is shown.").arg(search_);
    found_->Say(what, kit::Strip::Kind::Note, tr("Show all"));
}

void frmCalendar::TellStatus() {
    strip_->WithdrawStep();
    const auto count = [](std::size_t number) { return QLocale().toString(static_cast<qulonglong>(number)); };
    const QString all =
        entries_.size() == 1 ? tr("1 appointment") : tr("%1 appointments").arg(count(entries_.size()));
    QStringList words{search_.isEmpty() ? all : tr("%1 of %2").arg(count(shown_.size()), all)};
    if (!session_.ShowPrivate) words += tr("private ones hidden");
    emit StatusChanged(words.join(", "));
}

void frmCalendar::Refresh() {
    ShowHeadings();
    calendarChanged();
    ReadPane();
}

void frmCalendar::SetSearch(const QString& text) {
    const QString wanted = text.trimmed();
    if (wanted == search_) return;
    search_ = wanted;
    needle_ = store::Needle(search_.toStdString());
    ShowEntries();
}

void frmCalendar::EndSearch() {
    if (search_.isEmpty()) return;
    SetSearch({});
    emit SearchEnded();
}

void frmCalendar::ReadPane() {
    if (!session_.DatabaseOpen || session_.ending) return;
    const bool inHand = pane_->hasFocus();
    pane_->Read();
    // With the last task the list goes.
    if (inHand && !pane_->hasFocus()) View()->setFocus(Qt::OtherFocusReason);
}

// ---- What is chosen -------------------------------------------------------------------------------------

QWidget* frmCalendar::View() const {
    return InMonth() ? static_cast<QWidget*>(month_) : week_;
}

std::optional<std::size_t> frmCalendar::Chosen() const {
    const auto chosen = InMonth() ? month_->Chosen() : week_->Chosen();
    return chosen && *chosen < shown_.size() ? chosen : std::nullopt;
}

void frmCalendar::ChooseLook(std::size_t look) {
    if (InMonth())
        month_->Choose(look);
    else
        week_->Choose(look);
}

bool frmCalendar::Choose(std::int32_t fPK, std::optional<Minutes> at) {
    // Of a series the next occurrence from the date on, else the last one before it.
    const Minutes from = at.value_or(MidnightOf(Date()));
    std::optional<std::size_t> found;
    for (std::size_t i = 0; i < shown_.size(); ++i) {
        const Entry& entry = EntryOf(i);
        if (entry.pk != fPK || (found && EntryOf(*found).start >= from)) continue;
        found = i;
    }
    if (!found) return false;
    ChooseLook(*found);
    ChosenChanged();
    return true;
}

void frmCalendar::ChosenChanged() {
    const auto chosen = Chosen();
    chosen_.reset();
    if (chosen) chosen_ = Occurrence{EntryOf(*chosen).pk, EntryOf(*chosen).start};
    for (QAction* action : {mnuAppoOpen, mnuAppoCopy, mnuAppoDelete, mnuPrivate_, mnuCalendarRCAppoOpen,
                            mnuCalendarRCAppoDelete})
        action->setEnabled(chosen.has_value());
    mnuPrivate_->setChecked(chosen && EntryOf(*chosen).isPrivate);
    TellStatus();
}

void frmCalendar::MarkMoved() {
    ChosenChanged();
    const int place = InMonth() ? month_->MarkedCell() : week_->Marked().day;
    const Day day{state_.periodStart.serial + place};
    if (day == Date() || day > state_.periodEnd) return;
    if (!InMonth() || !DateInView(day, state_)) return SetDate(WithinLimits(day));
    if (Chosen()) return;  // what is chosen there would go out of hand
    // Another month is shown, but not between the two clicks of a double click or under a drag.
    if (QApplication::mouseButtons() == Qt::NoButton) return calDate_DateClick(day);
    otherMonth_->start(QApplication::doubleClickInterval());
}

void frmCalendar::GoToOtherMonth() {
    if (!InMonth() || Chosen()) return;
    if (QApplication::mouseButtons() != Qt::NoButton || QApplication::activePopupWidget())
        return otherMonth_->start(QApplication::doubleClickInterval());
    if (round_.Open() || QApplication::activeModalWidget()) return;
    const Day day{state_.periodStart.serial + month_->MarkedCell()};
    if (DateInView(day, state_)) calDate_DateClick(day);
}

void frmCalendar::SelectRecord(std::int32_t fPK) {
    int error = 0;
    auto record = FetchRecord(session_, fPK, &error);
    if (error != 0) return kit::TellFailure(session_, error, tr("The appointment could not be read."));
    if (!record || (record->isPrivate && !session_.ShowPrivate)) return;
    Day day = DayOf(record->start);
    if (const auto rule = ReadRedoRule(record->redoString)) day = FirstOccurrence(*rule).value_or(day);
    WipeRecord(*record);
    calDate_DateClick(day);
    if (session_.ending || Choose(fPK)) return;
    EndSearch();
    Choose(fPK);
}

std::optional<Day> frmCalendar::FirstOccurrence(const RedoRule& rule) const {
    constexpr int kFar = 13 * 31;  // the first of a yearly one lies within the year
    std::vector<Day> days;
    const Day first = DayOf(rule.first);
    ExpandRule(rule, {first, {first.serial + kFar}}, locale_, days);
    std::erase_if(days, [&](Day day) { return day < first; });
    const auto least = std::ranges::min_element(days);
    return least == days.end() ? std::nullopt : std::optional(*least);
}

std::optional<std::uint8_t> frmCalendar::StepSection(store::UndoWay way) const {
    const auto* days = store::NextStep(session_, store::Section::Calendar, way);
    const auto* task = store::NextStep(session_, store::Section::Todo, way);
    // What was done in the section of tasks is taken back there.
    const bool ofTasks = task && task->number > stepsBefore_ && (!days || task->number > days->number);
    return ofTasks ? store::Section::Todo : store::Section::Calendar;
}

void frmCalendar::ShowTaken(std::uint8_t section, const std::vector<std::int32_t>& keys,
                            const QString& words) {
    if (section == store::Section::Todo) {
        ReadPane();
        TellStatus();
        strip_->Say(words);
        if (!keys.empty()) pane_->Select(keys.front());
        const bool listed = pane_->isVisible() && pane_->focusProxy()->isEnabled();
        return (listed ? pane_ : View())->setFocus(Qt::OtherFocusReason);
    }
    calendarChanged();
    if (!keys.empty() && std::ranges::none_of(keys, [this](std::int32_t key) { return Choose(key); }))
        SelectRecord(keys.front());
    strip_->Say(words);
    View()->setFocus(Qt::OtherFocusReason);
}

void frmCalendar::showEvent(QShowEvent* event) {
    SectionForm::showEvent(event);
    TellStatus();
    ShowFirstHour();
    if (!std::exchange(shownOnce_, true)) paneDelay_->start();
}

void frmCalendar::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && !search_.isEmpty()) return EndSearch();
    SectionForm::keyPressEvent(event);
}

}  // namespace bmr::calendar
