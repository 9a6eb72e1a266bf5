#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <vector>

#include "calendar/calendar.h"
#include "calendar/entrylook.h"
#include "calendar/occurrences.h"
#include "calendar/periods.h"
#include "calendar/serieschange.h"
#include "calendar/timespan.h"
#include "kit/editround.h"
#include "kit/sectionform.h"
#include "store/words.h"

class QCalendarWidget;
class QLabel;
class QStackedWidget;
class QTabBar;
class QTimer;
class QToolButton;

namespace bmr::kit {
class Remembered;
class StepStrip;
class Strip;
}  // namespace bmr::kit

namespace bmr::calendar {

class CalendarPane;
struct Opening;
class MonthView;
class WeekView;
struct DaySpan;

/// The calendar: day, work week, week and month, the month to pick a date from, and the open tasks. It holds
/// the entries of the period on screen; its views paint them and tell what the hands want.
class frmCalendar final : public SectionForm {
    Q_OBJECT

  public:
    frmCalendar(store::Session& session, FormPorts ports, QWidget* parent = nullptr);
    ~frmCalendar() override;

    QMenu* SectionMenu() override { return menu_; }
    QList<QAction*> ToolActions() override;
    QString HelpPage() const override { return "calendar"; }
    void Refresh() override;
    void SetSearch(const QString& text) override;
    void SelectRecord(std::int32_t fPK) override;
    std::optional<std::uint8_t> StepSection(store::UndoWay way) const override;
    void ShowTaken(std::uint8_t section, const std::vector<std::int32_t>& keys,
                   const QString& words) override;
    bool Editing() const override { return round_.Open(); }
    std::vector<custody::Draft> Drafts() const override { return round_.Drafts(); }
    void OpenDraft(const custody::Draft& draft) override;

    // The operations that tabs, buttons and menus call.
    void calView_Click(int Index);
    /// Goes to a date, within the limits; beyond them the limit is told.
    void calDate_DateClick(Day date);
    void cmdToday_Click();
    /// The whole week of the chosen date.
    void cmdWeek_Click();
    void mnuNewAppointment_Click();
    void mnuCalendarRCAppoOpen_Click();
    /// The editor, with a new single appointment like the chosen one.
    void mnuAppoCopy_Click();
    void mnuCalendarRCAppoDelete_Click();
    void mnuArchive_Click();
    /// Reads the period anew: something in it has changed.
    void calendarChanged();

  protected:
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void BuildActions();
    void BuildViewActions();
    void BuildMenus();
    void BuildDates();
    void BuildViews();
    void Lay();
    QWidget* MakeHead();

    // The period and what it shows.
    Day Date() const;
    PeriodKind Kind() const { return state_.calView; }
    bool InMonth() const { return Kind() == PeriodKind::MonthGrid; }
    void Step(int way);
    /// In `calDate` alone.
    void SetDate(Day date);
    /// In the view alone.
    void MarkDate(Day date);
    /// The hours from that of the preferences on, when they are seen for the first time.
    void ShowFirstHour();
    /// Headings, entries and, later, the tasks.
    void ShowPeriod();
    void ShowHeadings();
    void ShowSide();
    void DressDates();
    void DressTabs();
    void ReadEntries();
    void ShowEntries();
    void ShowFound();
    void EndSearch();
    void TellStatus();
    void MinutePassed();
    void AwaitMinute();
    bool Matches(const Entry& entry) const;

    // What is chosen or marked.
    QWidget* View() const;
    std::optional<std::size_t> Chosen() const;
    /// Chooses the occurrence of that row nearest to the date; false when the views do not show it.
    bool Choose(std::int32_t fPK, std::optional<Minutes> at = std::nullopt);
    void ChooseLook(std::size_t look);
    void ChosenChanged();
    /// The hands chose or marked something: `calDate` follows.
    void MarkMoved();
    void GoToOtherMonth();
    std::optional<Day> FirstOccurrence(const RedoRule& rule) const;
    const Entry& EntryOf(std::size_t look) const { return entries_[shown_[look]]; }
    void ShowPopup(const QPoint& at);
    /// A day by its place in the period, alone.
    void ShowDay(int place);

    // What the hands want.
    void NewAppointment(const QString& letters);
    TimeSpan MarkedSpan() const;
    void OpenEntry(std::size_t look);
    void DeleteEntry(std::size_t look);
    void MakePrivate(bool isPrivate);
    void Drop(std::size_t look, const TimeSpan& to, DropKind kind);
    void DropInWeek(std::size_t look, const DaySpan& span, DropKind kind);
    void DropInMonth(std::size_t look, int cell, DropKind kind);
    /// Nothing, and told, where it is gone or does not decode.
    std::optional<Appointment> ReadWhole(std::int32_t fPK);
    /// How far a change reaches: asked for a series, `All` for a single appointment. Nothing: given up. `to`:
    /// where a drag would put it.
    std::optional<Reach> AskReach(const Entry& entry, SeriesVerb verb,
                                  const std::optional<TimeSpan>& to = std::nullopt);
    /// Tells what came of a change, reads anew and chooses what was changed.
    void ShowChanged(const store::StoreOutcome& outcome, const QString& failure, Minutes at);
    /// Offers to take back what was done since the step of that number.
    void TellStepSince(std::uint64_t before);
    void EditNew(const TimeSpan& span, const QString& letters, const custody::Draft* draft);
    /// Leaves the record wiped.
    void EditNew(Appointment& record, const Opening& opening, const custody::Draft* draft);
    void EditStored(std::int32_t fPK, Minutes occurrence, Reach reach, const custody::Draft* draft);
    /// Goes to what the editor has stored.
    void ShowStored(std::int32_t fPK, Minutes at);
    bool ConfirmRunning(Day until);
    std::optional<std::filesystem::path> AskArchive();

    void ReadPane();
    void TickTask(std::int32_t fPK);
    void OpenTask(std::int32_t fPK);

    store::Session& session_;
    FormPorts ports_;
    LocaleFacts locale_;
    FirstWeek firstWeek_;
    CalendarNames names_;
    CalendarState state_;
    kit::EditRound round_;
    Day today_;
    std::uint64_t stepsBefore_;  ///< number of the last step before the form was opened
    QString search_;
    store::Needle needle_{""};
    std::vector<Entry> entries_;      ///< of the period
    std::vector<std::size_t> shown_;  ///< those that the views have, by their places there
    std::optional<Occurrence> chosen_;
    std::optional<Occurrence> hidden_;  ///< was chosen until the search left it out
    std::optional<Day> archiveDate_;    ///< up to which an archive was begun and given up
    Day archiveFrom_;                   ///< the date that the calendar had then
    bool shownOnce_ = false;
    bool hoursShown_ = false;

    QMenu* menu_;
    QMenu* mnuCalendarRC;
    QAction* mnuNewAppointment;
    QAction* mnuAppoOpen;
    QAction* mnuAppoCopy;
    QAction* mnuAppoDelete;
    QAction* mnuCalendarRCAppoOpen;
    QAction* mnuCalendarRCAppoDelete;
    QAction* mnuPrivate_;
    QAction* mnuGotoToday;
    QAction* mnuPrevious;
    QAction* mnuNext;
    std::array<QAction*, 4> mnuView_{};  ///< day, workdays, week, month
    QAction* mnuSidePane;
    QAction* mnuArchive;

    QTabBar* calView;
    QCalendarWidget* calDate;
    QToolButton* cmdToday;
    QToolButton* cmdWeek;
    QLabel* heading_;
    WeekView* week_;
    MonthView* month_;
    QStackedWidget* views_;
    CalendarPane* pane_;
    QWidget* side_;
    kit::Strip* found_;  ///< what a search leaves out
    kit::StepStrip* strip_;
    QTimer* AlarmTimer;  ///< nothing is attached to it
    QTimer* minute_;
    QTimer* paneDelay_;   ///< the tasks come after the days
    QTimer* otherMonth_;  ///< a day of another month was clicked, perhaps for the first of two times
    kit::Remembered* zoom_;
    std::array<bool, 2> sideShown_{true, false};  ///< beside the days, beside the month
    kit::Remembered* sideKept_;
};

}  // namespace bmr::calendar
