#include <QActionGroup>
#include <QCalendarWidget>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QSplitter>
#include <QStackedWidget>
#include <QTabBar>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include "calendar/calendarpane.h"
#include "calendar/frmCalendar.h"
#include "calendar/monthview.h"
#include "calendar/weekview.h"
#include "kit/dateentry.h"
#include "kit/formparts.h"
#include "kit/icons.h"
#include "kit/remembered.h"
#include "kit/stepstrip.h"
#include "kit/strip.h"
#include "kit/theme.h"

// How the screen of the calendar is put together; what it does stands in frmCalendar.cpp.
namespace bmr::calendar {

void frmCalendar::BuildActions() {
    using kit::MakeAction;
    mnuNewAppointment = MakeAction(*this,
                                   {"mnuNewAppointment", tr("&New Appointment…"), "appointment-new",
                                    tr("New appointment"), QKeySequence(QKeySequence::New)},
                                   &frmCalendar::mnuNewAppointment_Click);
    mnuAppoOpen = MakeAction(
        *this, {"mnuAppoOpen", tr("&Edit…"), "document-edit", tr("Edit"), QKeySequence(Qt::CTRL | Qt::Key_E)},
        &frmCalendar::mnuCalendarRCAppoOpen_Click);
    mnuAppoCopy = MakeAction(*this,
                             {"mnuAppoCopy", tr("Make a &Copy…"), "edit-copy", tr("Copy"),
                              QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C)},
                             &frmCalendar::mnuAppoCopy_Click);
    mnuAppoDelete = MakeAction(
        *this,
        {"mnuAppoDelete", tr("De&lete"), "edit-delete", tr("Delete"), QKeySequence(Qt::CTRL | Qt::Key_D)},
        &frmCalendar::mnuCalendarRCAppoDelete_Click);
    mnuPrivate_ = MakeAction(*this, {"mnuAppoPrivate", tr("P&rivate"), "object-locked"});
    mnuPrivate_->setCheckable(true);
    connect(mnuPrivate_, &QAction::triggered, this, &frmCalendar::MakePrivate);
    mnuGotoToday = MakeAction(*this,
                              {"mnuGotoToday", tr("Go to &Today"), "go-jump-today", tr("Today"),
                               QKeySequence(Qt::CTRL | Qt::Key_T)},
                              &frmCalendar::cmdToday_Click);
    mnuPrevious = MakeAction(*this, {"mnuPrevious", tr("&Back"), "go-previous", tr("Back"),
                                     QKeySequence(Qt::ALT | Qt::Key_PageUp)});
    connect(mnuPrevious, &QAction::triggered, this, [this] { Step(-1); });
    mnuNext = MakeAction(*this, {"mnuNext", tr("&Forward"), "go-next", tr("Forward"),
                                 QKeySequence(Qt::ALT | Qt::Key_PageDown)});
    connect(mnuNext, &QAction::triggered, this, [this] { Step(1); });
    BuildViewActions();
    mnuSidePane =
        MakeAction(*this, {"mnuSidePane", tr("&Month and Tasks"), nullptr, {}, QKeySequence(Qt::Key_F8)});
    mnuSidePane->setCheckable(true);
    mnuArchive = MakeAction(*this, {"mnuArchive", tr("&Delete/Archive..."), "document-save-as"},
                            &frmCalendar::mnuArchive_Click);
}

void frmCalendar::BuildViewActions() {
    struct Kind {
        const char* name;
        QString text;
        Qt::Key key;
    };
    const std::array<Kind, 4> kinds{{{"mnuViewDay", tr("D&ay"), Qt::Key_1},
                                     {"mnuViewWorkdays", tr("&Workdays"), Qt::Key_5},
                                     {"mnuViewWeek", tr("Wee&k"), Qt::Key_7},
                                     {"mnuViewMonth", tr("M&onth"), Qt::Key_3}}};
    auto* group = new QActionGroup(this);
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        const auto& [name, text, key] = kinds[i];
        QAction* view = kit::MakeAction(*this, {name, text, nullptr, {}, QKeySequence(Qt::ALT | key)});
        view->setCheckable(true);
        view->setChecked(i == static_cast<std::size_t>(state_.calView));
        view->setToolTip(QString(text).remove('&') + " (" +
                         view->shortcut().toString(QKeySequence::NativeText) + ")");
        group->addAction(view);
        connect(view, &QAction::triggered, this, [this, i] { calView_Click(static_cast<int>(i)); });
        mnuView_[i] = view;
    }
}

void frmCalendar::BuildMenus() {
    menu_ = new QMenu(tr("&Appointment"), this);
    menu_->setObjectName("mnuAppointment");
    menu_->addActions({mnuNewAppointment, mnuAppoOpen, mnuAppoCopy, mnuAppoDelete, mnuPrivate_});
    menu_->addSeparator();
    menu_->addActions({mnuGotoToday, mnuPrevious, mnuNext});
    menu_->addSeparator();
    for (QAction* view : mnuView_)
        menu_->addAction(view);
    menu_->addAction(mnuSidePane);
    menu_->addSeparator();
    menu_->addAction(mnuArchive);
    mnuCalendarRC = new QMenu("Calendar Rightclick", this);
    mnuCalendarRC->setObjectName("mnuCalendarRC");
    const auto add = [this](const char* name, const char* text, const char* icon, QAction* like) {
        QAction* action = mnuCalendarRC->addAction(kit::Icon(icon), text, like, &QAction::trigger);
        action->setObjectName(name);
        return action;
    };
    mnuCalendarRCAppoOpen = add("mnuCalendarRCAppoOpen", "&Open", "document-edit", mnuAppoOpen);
    mnuCalendarRC->addAction(mnuAppoCopy);
    mnuCalendarRCAppoDelete = add("mnuCalendarRCAppoDelete", "&Delete", "edit-delete", mnuAppoDelete);
    mnuCalendarRC->addAction(mnuPrivate_);
    mnuCalendarRC->addSeparator();
    add("mnuCalendarRCAppoNew", "&New Appointment", "appointment-new", mnuNewAppointment);
}

void frmCalendar::BuildDates() {
    calDate = new QCalendarWidget;
    calDate->setObjectName("calDate");
    calDate->setAccessibleName(tr("Date"));
    DressDates();
    connect(calDate, &QCalendarWidget::selectionChanged, this, [this] { calDate_DateClick(Date()); });
    // A click on the day that is chosen already leads back to it.
    connect(calDate, &QCalendarWidget::clicked, this, [this](const QDate& date) {
        if (date == calDate->selectedDate()) calDate_DateClick(Date());
    });
    connect(calDate, &QCalendarWidget::activated, this, [this] { View()->setFocus(Qt::OtherFocusReason); });

    calView = new QTabBar;
    calView->setObjectName("calView");
    calView->setAccessibleName(tr("Period"));
    calView->setExpanding(false);
    calView->setDrawBase(false);
    // The day has no number of its own.
    const std::array<QString, 4> tabs = {tr("1"), tr("5"), tr("7"), tr("30")};
    for (std::size_t i = 0; i < tabs.size(); ++i) {
        const int tab = calView->addTab(tabs[i]);
        calView->setTabToolTip(tab, mnuView_[i]->toolTip());
    }
    calView->setCurrentIndex(static_cast<int>(Kind()));
    DressTabs();
    connect(calView, &QTabBar::currentChanged, this, &frmCalendar::calView_Click);

    AlarmTimer = new QTimer(this);
    AlarmTimer->setObjectName("AlarmTimer");
    minute_ = new QTimer(this);
    minute_->setSingleShot(true);
    connect(minute_, &QTimer::timeout, this, &frmCalendar::MinutePassed);
    paneDelay_ = new QTimer(this);
    paneDelay_->setSingleShot(true);
    connect(paneDelay_, &QTimer::timeout, this, &frmCalendar::ReadPane);
    otherMonth_ = new QTimer(this);
    otherMonth_->setSingleShot(true);
    connect(otherMonth_, &QTimer::timeout, this, &frmCalendar::GoToOtherMonth);
}

void frmCalendar::BuildViews() {
    week_ = new WeekView;
    week_->setObjectName("calFrame");
    week_->setAccessibleName(tr("Appointments"));
    month_ = new MonthView;
    month_->setObjectName("monFrame");
    month_->setAccessibleName(tr("Appointments"));
    views_ = new QStackedWidget;
    views_->setObjectName("calViewFrame");
    views_->addWidget(week_);
    views_->addWidget(month_);

    connect(week_, &WeekView::ChosenChanged, this, &frmCalendar::MarkMoved);
    connect(week_, &WeekView::OpenWanted, this, &frmCalendar::OpenEntry);
    connect(week_, &WeekView::NewWanted, this, &frmCalendar::NewAppointment);
    connect(week_, &WeekView::DeleteWanted, this, &frmCalendar::DeleteEntry);
    connect(week_, &WeekView::MenuWanted, this, &frmCalendar::ShowPopup);
    connect(week_, &WeekView::StepWanted, this, &frmCalendar::Step);
    connect(week_, &WeekView::Dropped, this, &frmCalendar::DropInWeek);
    connect(week_, &WeekView::DayWanted, this, &frmCalendar::ShowDay);
    connect(month_, &MonthView::ChosenChanged, this, &frmCalendar::MarkMoved);
    connect(month_, &MonthView::OpenWanted, this, &frmCalendar::OpenEntry);
    connect(month_, &MonthView::NewWanted, this, &frmCalendar::NewAppointment);
    connect(month_, &MonthView::DeleteWanted, this, &frmCalendar::DeleteEntry);
    connect(month_, &MonthView::MenuWanted, this, &frmCalendar::ShowPopup);
    connect(month_, &MonthView::StepWanted, this, &frmCalendar::Step);
    connect(month_, &MonthView::Dropped, this, &frmCalendar::DropInMonth);
    connect(month_, &MonthView::DayWanted, this, &frmCalendar::ShowDay);

    zoom_ = new kit::Remembered(session_.ports.registry, "Calendar/Hour", this);
    if (const QList<int> kept = zoom_->Numbers(); kept.size() == 1) week_->SetPixelsOfHour(kept.front());
    connect(week_, &WeekView::HourZoomed, this, [this](int pixels) { zoom_->Keep(QList<int>{pixels}); });

    pane_ = new CalendarPane(session_);
    connect(pane_, &CalendarPane::OpenWanted, this, &frmCalendar::OpenTask);
    connect(pane_, &CalendarPane::Ticked, this, &frmCalendar::TickTask);
    strip_ = new kit::StepStrip(session_, store::Section::Calendar, this);
    connect(strip_, &kit::StepStrip::UndoWanted, this, &SectionForm::UndoWanted);
    found_ = new kit::Strip;
    connect(found_, &kit::Strip::Acted, this, &frmCalendar::EndSearch);
    connect(found_, &kit::Strip::Closed, this, &frmCalendar::EndSearch);
}

QWidget* frmCalendar::MakeHead() {
    using kit::Space;
    const auto arrow = [](const char* name, QAction* action) {
        auto* button = new QToolButton;
        button->setObjectName(name);
        button->setDefaultAction(action);
        button->setToolButtonStyle(Qt::ToolButtonIconOnly);
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::StrongFocus);
        return button;
    };
    cmdToday = new QToolButton;
    cmdToday->setObjectName("cmdToday");
    cmdToday->setText(tr("today"));
    cmdToday->setToolTip(tr("Go to today (Ctrl+T)"));
    cmdToday->setFocusPolicy(Qt::StrongFocus);
    connect(cmdToday, &QToolButton::clicked, this, &frmCalendar::cmdToday_Click);
    cmdWeek = new QToolButton;
    cmdWeek->setObjectName("cmdWeek");
    cmdWeek->setAutoRaise(true);
    cmdWeek->setToolTip(tr("Show the whole week"));
    cmdWeek->setFocusPolicy(Qt::StrongFocus);
    connect(cmdWeek, &QToolButton::clicked, this, &frmCalendar::cmdWeek_Click);
    heading_ = kit::MakeHeading("lblPeriod");
    heading_->setWordWrap(false);
    heading_->setMinimumWidth(1);  // a long one is cut before it widens the window

    auto* head = new QWidget;
    head->setObjectName("WeekFrame");
    auto* row = new QHBoxLayout(head);
    row->setContentsMargins(Space::Margin, Space::Row, Space::Margin, Space::Row);
    row->setSpacing(Space::Tight);
    row->addWidget(arrow("cmdPrevious", mnuPrevious));
    row->addWidget(cmdToday);
    row->addWidget(arrow("cmdNext", mnuNext));
    row->addSpacing(Space::Row);
    row->addWidget(heading_, 1);
    row->addWidget(cmdWeek);
    row->addSpacing(Space::Row);
    row->addWidget(calView);
    return head;
}

void frmCalendar::Lay() {
    constexpr int kLeastSide = 200;
    constexpr int kMostSide = 300;
    auto* tasks = new QWidget;
    auto* below = new QVBoxLayout(tasks);
    below->setContentsMargins(0, 0, 0, 0);
    below->setSpacing(0);
    below->addWidget(pane_, 1);
    // In the month the tasks go, and the dates stay where they are.
    below->addStretch(0);
    auto* sideParts = new QSplitter(Qt::Vertical);
    sideParts->setChildrenCollapsible(false);
    sideParts->addWidget(calDate);
    sideParts->addWidget(tasks);
    sideParts->setStretchFactor(0, 0);
    sideParts->setStretchFactor(1, 1);
    kit::RememberSplitter(*sideParts, session_.ports.registry, "calendar/side");
    side_ = sideParts;
    side_->setMinimumWidth(kLeastSide);
    side_->setMaximumWidth(kMostSide);

    auto* splitter = new QSplitter;
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(side_);
    // Over the days: nothing moves under the hand when the line comes and goes.
    auto* days = new QWidget;
    auto* over = new QGridLayout(days);
    over->setContentsMargins(0, 0, 0, 0);
    over->addWidget(views_, 0, 0);
    over->addWidget(strip_->Line(), 0, 0, Qt::AlignBottom);
    splitter->addWidget(days);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({220, 1000});
    kit::RememberSplitter(*splitter, session_.ports.registry, "calendar");
    // The month needs the room, and is its own calendar to pick from: beside it the dates come when asked
    // for.
    sideKept_ = new kit::Remembered(session_.ports.registry, "Calendar/Side", this);
    if (const QList<int> kept = sideKept_->Numbers(); kept.size() == 2)
        sideShown_ = {kept[0] != 0, kept[1] != 0};
    connect(mnuSidePane, &QAction::toggled, this, [this](bool on) {
        sideShown_[InMonth() ? 1 : 0] = on;
        sideKept_->Keep(QList<int>{sideShown_[0] ? 1 : 0, sideShown_[1] ? 1 : 0});
        ShowSide();
    });

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(MakeHead());
    column->addWidget(found_);
    column->addWidget(splitter, 1);
}

}  // namespace bmr::calendar
