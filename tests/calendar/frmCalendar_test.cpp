#include <QCalendarWidget>
#include <QComboBox>
#include <QLineEdit>
#include <QStackedWidget>
#include <QTreeWidget>
#include <filesystem>

#include "calendar/frmAppointment.h"
#include "calendar/weekrule.h"
#include "frmCalendar_fixture.h"
#include "kit/recordlistview.h"
#include "store/severalrows.h"
#include "tasks/task.h"

namespace bmr::calendar {
namespace {

TEST_F(FormCalendar, ADayOfUse) {
    Visitor visitor;
    EXPECT_EQ(Heading(), "16 – 22 November 2026");
    EXPECT_EQ(status, "0 appointments");
    visitor.Meet("frmAppointment", [](QWidget& editor) {
        auto& subject = Named<QLineEdit>(editor, "ctlSubject");
        EXPECT_EQ(subject.text(), "Dent") << "what was typed among the days";
        test::TypeText(subject, "ist");
        Click(editor, "cmdOK");
    });
    QTest::keyClicks(form->focusProxy(), "D");
    QTest::keyClicks(QApplication::focusWidget(), "ent");
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    ASSERT_EQ(All(), Texts{"0 540-570 Dentist"}) << "in the marked row, as long as the preferences say";
    EXPECT_EQ(status, "1 appointment");
    ASSERT_EQ(week->Chosen(), 0U);

    Drag(0, {4, 600, 630, false});
    EXPECT_EQ(All(), Texts{"-1 600-630 Dentist"});
    Drag(0, {3, 720, 750, false}, Qt::ControlModifier);
    EXPECT_EQ(All(), (Texts{"-2 720-750 Dentist", "-1 600-630 Dentist"}));
    emit week->Dropped(0, {3, 720, 810, false}, DropKind::Resize);
    EXPECT_EQ(All().front(), "-2 720-810 Dentist");
    emit week->Dropped(0, {3, 0, 1440, true}, DropKind::Move);
    EXPECT_EQ(All().front(), "-2 0-1440 Dentist");
    EXPECT_EQ(week->Chosen(), 0U) << "what was dragged stays chosen";

    const auto before = db.Rows();
    db.prompter.Expect(7, Answer::Cancel).Expect(7, Answer::Ok);
    Press(Qt::Key_Delete);
    EXPECT_EQ(db.Rows(), before);
    Press(Qt::Key_Delete);
    EXPECT_EQ(All(), Texts{"-1 600-630 Dentist"});
    PressUndo();
    EXPECT_EQ(db.Rows(), before);
    EXPECT_EQ(status, "2 appointments") << "what came back is shown";
    for (int step = 0; step < 4; ++step)
        TakeBack();
    EXPECT_EQ(All(), Texts{"0 540-570 Dentist"});

    db.Reopen();
    Open();
    EXPECT_EQ(status, "1 appointment");
    form->SelectRecord(std::get<int>(db.Row("SELECT fPK FROM tt WHERE fSec=12")->Field("fPK")));
    ASSERT_TRUE(week->Chosen());
    visitor.Meet("frmAppointment", [](QWidget& editor) {
        EXPECT_EQ(Named<QLineEdit>(editor, "ctlSubject").text(), "Dentist");
        QTest::keyClick(&editor, Qt::Key_Escape);
    });
    Press(Qt::Key_Return);

    week->ScrollTo(1410);
    Trigger("mnuGotoToday");
    EXPECT_TRUE(week->viewport()->rect().contains(week->AreaOf({5, 540, 570, false}).center()));
}

TEST_F(FormCalendar, ASeriesAsksHowFarAChangeReaches) {
    AddFridays();
    const Texts whole = All();
    ASSERT_EQ(whole.size(), 5);
    form->calDate_DateClick({kSaturday.serial + 6});
    ASSERT_EQ(status, "1 appointment");
    Visitor visitor;
    const auto rows = db.Rows();
    const auto back = [&] {
        TakeBack();
        EXPECT_EQ(db.Rows(), rows) << "one step";
        form->calDate_DateClick({kSaturday.serial + 6});
        week->Choose(0);
    };
    // Given up, and the box falls back.
    visitor.Meet("frmReach", [](QWidget& box) { QTest::keyClick(&box, Qt::Key_Escape); });
    Drag(0, {4, 600, 660, false});
    EXPECT_EQ(db.Rows(), rows);

    MeetReach(visitor, "cmdThis");
    Drag(0, {4, 600, 660, false});
    EXPECT_EQ(All(), (Texts{whole[0], "6 600-660 Market", whole[2], whole[3], whole[4]}));
    EXPECT_FALSE(Stored(std::get<int>(db.Row("SELECT fPK FROM tt WHERE fSec=12 And fSub<148")->Field("fPK")))
                     .Recurring());
    back();
    // Dropped on another day the whole of it cannot go there, and the box says why.
    visitor.Meet("frmReach", [](QWidget& box) {
        EXPECT_FALSE(Named(box, "cmdAll").isEnabled());
        EXPECT_EQ(
            Named<QLabel>(box, "lblQuestion").text().replace(QChar::Nbsp, ' '),
            "“Market” is one of a series. What is to be moved from Fri 27 Nov 08:00-09:00 to Thu 26 Nov "
            "08:00-09:00?");
        EXPECT_FALSE(Named<QLabel>(box, "lblWhy").text().isEmpty());
        Click(box, "cmdLater");
    });
    Drag(0, {3, 480, 540, false});
    EXPECT_EQ(All(), (Texts{whole[0], "5 480-540 Market", "12 480-540 Market", "19 480-540 Market",
                            "26 480-540 Market"}));
    back();
    MeetReach(visitor, "cmdAll");
    emit week->Dropped(0, {4, 480, 570, false}, DropKind::Resize);
    EXPECT_EQ(All().front(), "-1 480-570 Market");
    EXPECT_EQ(All().back(), "27 480-570 Market");
    back();
    MeetReach(visitor, "cmdThis");
    Press(Qt::Key_Delete);
    EXPECT_EQ(All(), (Texts{whole[0], whole[2], whole[3], whole[4]}));
    back();
    // One day of it, in the editor: a single appointment takes its place.
    MeetReach(visitor, "cmdThis");
    visitor.Meet("frmAppointment", [](QWidget& editor) {
        Named<QLineEdit>(editor, "ctlSubject").clear();
        test::TypeText(Named(editor, "ctlSubject"), "Fair");
        Click(editor, "cmdOK");
    });
    Press(Qt::Key_Return);
    EXPECT_EQ(All(), (Texts{whole[0], "6 480-540 Fair", whole[2], whole[3], whole[4]}));
    ASSERT_TRUE(week->Chosen());
    PressUndo();
    EXPECT_EQ(db.Rows(), rows);
    form->calDate_DateClick({kSaturday.serial + 6});
    week->Choose(0);
    // A copy of one day is an appointment of its own.
    visitor.Meet("frmAppointment", [](QWidget& editor) {
        EXPECT_EQ(Named<QLineEdit>(editor, "ctlSubject").text(), "Market");
        Named<QComboBox>(editor, "ctlHH0").setFocus();
        QTest::keyClick(&Named(editor, "ctlHH0"), Qt::Key_Up);
        Click(editor, "cmdOK");
    });
    Trigger("mnuAppoCopy");
    EXPECT_EQ(All(), (Texts{whole[0], whole[1], "6 540-600 Market", whole[2], whole[3], whole[4]}));
    EXPECT_EQ(week->Chosen(), 1U) << "not at the marked row";
    back();
    visitor.Meet("frmReach", [](QWidget& box) {
        EXPECT_EQ(Named<QLabel>(box, "lblQuestion").text(),
                  "Confirm deletion of the appointment “Market” on Friday, 27 November 2026.\n\nIt is one of "
                  "a series: what is to be deleted?");
        QTest::keyClicks(&box, "a");
    });
    Press(Qt::Key_Delete);
    EXPECT_TRUE(All().empty());
}

TEST_F(FormCalendar, TheMonthGoesWhereItIsLedTo) {
    Trigger("mnuViewMonth");
    EXPECT_EQ(Heading(), "November 2026");
    EXPECT_FALSE(Named(*form, "TodoList").isVisible());
    // The grid begins on 26 October.
    const std::int32_t key = Add("Fair", -18, 540, 600);
    EXPECT_EQ(status, "1 appointment");
    emit month->Dropped(0, 10, DropKind::Move);
    EXPECT_EQ(MinuteOfDay(Stored(key).start), 540);
    EXPECT_EQ(DayOf(Stored(key).start), (Day{kSaturday.serial - 16}));
    month->setFocus();
    month->MarkCell(0);
    emit month->ChosenChanged();
    QCoreApplication::processEvents();
    EXPECT_EQ(Heading(), "October 2026") << "a day of the neighbour leads there";
    EXPECT_EQ(Named<QCalendarWidget>(*form, "calDate").selectedDate(), QDate(2026, 10, 26));
    Trigger("mnuNext");
    EXPECT_EQ(Heading(), "November 2026");
    Trigger("mnuGotoToday");
    EXPECT_EQ(Named<QCalendarWidget>(*form, "calDate").selectedDate(), QDate(2026, 11, 21));
    // What is chosen leads to its day, where the grid stays as it is.
    Add("Trip", -23, 540, 600);
    month->Choose(0);
    EXPECT_EQ(Heading(), "November 2026");
    Trigger("mnuViewWeek");
    EXPECT_EQ(Heading(), "26 October – 1 November 2026");
    EXPECT_EQ(week->Chosen(), 0U);
    Trigger("mnuGotoToday");
    Trigger("mnuViewMonth");
    emit month->DayWanted(29);
    EXPECT_EQ(Heading(), "Tuesday, 24 November 2026");

    db.prompter.Expect(150).Expect(150).Expect(149);
    Named<QCalendarWidget>(*form, "calDate").setSelectedDate(QDate(2069, 4, 16));
    EXPECT_EQ(Named<QCalendarWidget>(*form, "calDate").selectedDate(), QDate(2069, 4, 15));
    Trigger("mnuNext");
    EXPECT_EQ(Named<QCalendarWidget>(*form, "calDate").selectedDate(), QDate(2069, 4, 15));
    Named<QCalendarWidget>(*form, "calDate").setSelectedDate(QDate(1925, 2, 21));
    EXPECT_EQ(Heading(), "Sunday, 22 February 1925");

    Open();
    EXPECT_EQ(Named<QTabBar>(*form, "calView").currentIndex(), 0) << "the view that was left";
    db.session.calendarView.reset();
    EXPECT_EQ(Heading(), "Saturday, 21 November 2026");
}

TEST_F(FormCalendar, ShowsOpenTasksBesideTheDays) {
    tasks::Task task = tasks::ClearRecord(0);
    task.task = "Buy paper";
    ASSERT_EQ(tasks::WriteRecord(db.session, task).error, 0);
    std::int32_t opened = 0;
    ports.editTask = [&](store::Session&, kit::EditRound&, std::int32_t key, QWidget*) {
        opened = key;
        return false;
    };
    Open();
    auto& list = Named<kit::RecordListView>(*form, "TodoList");
    QTest::qWait(1);
    ASSERT_EQ(list.model()->rowCount(), 1);
    EXPECT_EQ(list.model()->index(0, 2).data(), "Buy paper");
    const QRect cell = list.visualRect(list.model()->index(0, 2));
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, cell.center() + QPoint(20, 0));
    EXPECT_EQ(opened, task.key);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, QPoint(cell.left() + 12, cell.center().y()));
    QCoreApplication::processEvents();
    EXPECT_TRUE(tasks::FetchRecord(db.session, task.key)->completed);
    EXPECT_EQ(list.model()->rowCount(), 0);
    EXPECT_EQ(QApplication::focusWidget(), week) << "the list has gone with its last task";
    PressUndo();
    EXPECT_EQ(QApplication::focusWidget(), &list);
    EXPECT_FALSE(tasks::FetchRecord(db.session, task.key)->completed);
    EXPECT_EQ(list.model()->rowCount(), 1);
    EXPECT_FALSE(db.session.CalendarDirty);
}

TEST_F(FormCalendar, HidesPrivateOnesAndWhatASearchDoesNotFind) {
    Add("Birthday", 0, 600, 660);
    const auto secret =
        Add("Surprise", 0, 660, 720, [](Appointment& appointment) { appointment.isPrivate = true; });
    Add("Walk", 0, 720, 780, [](Appointment& appointment) { appointment.location = "Birch wood"; });
    EXPECT_EQ(status, "3 appointments");
    db.session.ShowPrivate = false;
    form->Refresh();
    EXPECT_EQ(status, "2 appointments, private ones hidden");
    form->SelectRecord(secret);
    EXPECT_FALSE(week->Chosen());
    form->SetSearch("bir");
    EXPECT_EQ(status, "2 of 2 appointments, private ones hidden");
    form->SetSearch("BÎRT");
    EXPECT_EQ(status, "1 of 2 appointments, private ones hidden");
    // The cross ends the search, and what was chosen before it is chosen again.
    form->SetSearch({});
    week->Choose(1);
    form->SetSearch("BÎRT");
    EXPECT_FALSE(week->Chosen());
    for (auto* close : form->findChildren<QAbstractButton*>("stripClose"))
        if (close->isVisible()) close->click();
    EXPECT_EQ(status, "2 appointments, private ones hidden");
    EXPECT_EQ(week->Chosen(), 1U);
    form->SetSearch("BÎRT");
    bool ended = false;
    QObject::connect(form.get(), &SectionForm::SearchEnded, [&] { ended = true; });
    Press(Qt::Key_Escape);
    EXPECT_TRUE(ended);
    EXPECT_EQ(status, "2 appointments, private ones hidden");
    db.session.ShowPrivate = true;
    form->Refresh();
    form->SelectRecord(secret);
    EXPECT_TRUE(week->Chosen());
}

TEST_F(FormCalendar, OldOnesGoToAnArchiveOrForGood) {
    const auto series = AddFridays();
    Add("Old", -30, 600, 660);
    Add("New", 0, 600, 660);
    const auto rows = db.Rows();
    Visitor visitor;
    visitor.Meet("frmEnterDate", [](QWidget& dialog) { Click(dialog, "cmdCancel"); });
    Trigger("mnuArchive");
    // A series that still runs is named first, and Return goes no further.
    visitor.Meet("frmEnterDate", [](QWidget& dialog) {
        auto& date = Named<QLineEdit>(dialog, "line");
        date.selectAll();
        test::TypeText(date, "2026-11-22");
        Click(dialog, "cmdOK");
    });
    visitor.Meet("frmRunning", [](QWidget& box) {
        auto& list = Named<QTreeWidget>(box, "lstSeries");
        EXPECT_EQ(list.model()->index(0, 0).data(), "Market");
        for (const int column : {1, 2})
            EXPECT_GT(list.columnWidth(column),
                      list.fontMetrics().horizontalAdvance(list.model()->index(0, column).data().toString()));
        QTest::keyClick(&box, Qt::Key_Return);
    });
    Trigger("mnuArchive");
    EXPECT_EQ(db.Rows(), rows);
    visitor.Meet("frmEnterDate", [](QWidget& dialog) {
        EXPECT_EQ(Named<QLineEdit>(dialog, "line").text(), "22/11/2026") << "what was typed before";
        Click(dialog, "cmdCancel");
    });
    Trigger("mnuArchive");
    form->calDate_DateClick({kSaturday.serial + 2});
    visitor.Meet("frmEnterDate", [](QWidget& dialog) {
        EXPECT_EQ(Named<QLineEdit>(dialog, "line").text(), "23/11/2026") << "the date one has gone to";
        Click(dialog, "cmdCancel");
    });
    Trigger("mnuArchive");
    const auto until = [&](bool archive) {
        visitor.Meet("frmEnterDate", [archive](QWidget& dialog) {
            auto& date = Named<QLineEdit>(dialog, "line");
            date.selectAll();
            test::TypeText(date, "2026-11-20");
            if (archive) Click(dialog, "chkArchive");
            Click(dialog, "cmdOK");
        });
    };
    until(false);
    db.prompter.Expect(152, Answer::Ok).Expect(163, Answer::Yes);
    Trigger("mnuArchive");
    EXPECT_EQ(db.Count("SELECT fPK FROM tt WHERE fSec=12"), 2) << "the series begins on that day and stays";
    PressUndo();
    EXPECT_EQ(db.Rows(), rows);
    EXPECT_TRUE(Stored(series).Recurring());

    const auto file = db.folder.Path() / "old";
    until(true);
    db.prompter.Expect(152, Answer::Ok);
    db.prompter.files.push_back(std::nullopt);
    Trigger("mnuArchive");
    EXPECT_EQ(db.Rows(), rows) << "without a file nothing goes";
    until(true);
    db.prompter.Expect(152, Answer::Ok).Expect(0);
    db.prompter.files.push_back(db.folder.Path() / "nowhere" / "old.bma");
    Trigger("mnuArchive");
    EXPECT_EQ(db.Rows(), rows);
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(FormCalendar, WhatCannotBeStoredStaysAsItIs) {
    const auto key = Add("Dentist", 0, 600, 660);
    const auto rows = db.Rows();
    week->Choose(0);
    db.Set(key, "fSec", std::int32_t{15});
    db.prompter.Expect(31);
    Drag(0, {4, 600, 660, false});
    EXPECT_EQ(status, "0 appointments") << "the days show what stands in the file";
    db.Set(key, "fSec", std::int32_t{12});
    EXPECT_EQ(db.Rows(), rows);
    form->Refresh();
    week->Choose(0);
    db.Set(key, "fEtx", Bytes("xxxx"));
    db.prompter.Expect(16);
    Press(Qt::Key_Return);
    EXPECT_EQ(status, "0 appointments");
    EXPECT_EQ(db.Row("SELECT fEtx FROM tt WHERE fPK=" + std::to_string(key))->Field("fEtx"),
              Value(Bytes("xxxx")));
}

TEST_F(FormCalendar, DaysThatComeBackAreToldBefore) {
    // Daily from 6 November on but for 6 December, which a series on each 6th cannot leave out.
    const auto key = Add("Watch", -15, 480, 540, [](Appointment& series) {
        series.redoString = WriteRedoRule({.kind = RedoKind::Daily,
                                           .interval = 1,
                                           .first = DateToDays16({kSaturday.serial - 15}),
                                           .last = DateToDays16({kSaturday.serial + 300}),
                                           .excluded = {DateToDays16({kSaturday.serial + 15})}});
    });
    week->Choose(0);
    Visitor visitor;
    MeetReach(visitor, "cmdAll");
    visitor.Meet("frmAppointment", [&](QWidget& editor) {
        Click(editor, "Redo3");
        db.prompter.Expect(0, Answer::Cancel).Expect(0, Answer::Ok);
        Click(editor, "cmdOK");
        EXPECT_TRUE(editor.isVisible());
        EXPECT_EQ(db.prompter.shown.back().standard, Answer::Cancel);
        Click(editor, "cmdOK");
    });
    Press(Qt::Key_Return);
    EXPECT_EQ(ReadRedoRule(Stored(key).redoString)->kind, RedoKind::MonthDay);
}

TEST_F(FormCalendar, AStepOfTheStartStaysInItsDay) {
    const auto key = Add("Late", 0, 1410, 1430);
    week->Choose(0);
    Visitor visitor;
    visitor.Meet("frmAppointment", [](QWidget& editor) {
        QTest::keyClick(&Named(editor, "ctlHH0"), Qt::Key_Up);
        EXPECT_EQ(Named<QComboBox>(editor, "ctlHH0").currentText(), "23");
        EXPECT_EQ(Named<QComboBox>(editor, "ctlNN0").currentText(), "30");
        for (int step = 0; step < 9; ++step)
            QTest::keyClick(&Named(editor, "ctlNN0"), Qt::Key_Up);
        Click(editor, "cmdOK");
    });
    Press(Qt::Key_Return);
    EXPECT_EQ(MinuteOfDay(Stored(key).start), 1435);
    EXPECT_EQ(DayOf(Stored(key).start), kSaturday);
}

TEST_F(FormCalendar, WhatTheWorkdaysDoNotShowIsSaid) {
    Trigger("mnuViewWorkdays");
    Visitor visitor;
    visitor.Meet("frmAppointment", [](QWidget& editor) {
        test::TypeText(Named(editor, "ctlSubject"), "Walk");
        auto& date = Named<QLineEdit>(Named(editor, "ctlDate"), "line");
        date.selectAll();
        test::TypeText(date, "2027-01-31");
        Click(editor, "cmdOK");
    });
    Trigger("mnuNewAppointment");
    ASSERT_EQ(db.Count("SELECT fPK FROM tt WHERE fSec=12"), 1);
    QStringList said;
    for (const auto* line : form->findChildren<QLabel*>("stripText"))
        said << line->text();
    EXPECT_TRUE(said.contains("Stored on Sunday, 31 January 2027, which the workdays do not show."));
}

TEST_F(FormCalendar, AWeekendStaysTheDateBesideTheWorkdays) {
    const auto& dates = Named<QCalendarWidget>(*form, "calDate");
    form->calView_Click(1);
    EXPECT_EQ(kit::FromQDate(dates.selectedDate()), kSaturday);
    form->calDate_DateClick({kSaturday.serial + 8});
    EXPECT_EQ(Heading(), "23 – 27 November 2026");
    EXPECT_EQ(kit::FromQDate(dates.selectedDate()), Day{kSaturday.serial + 8});
    EXPECT_EQ(week->Marked().day, 4) << "the nearest of the days that are shown";
    form->calView_Click(0);
    EXPECT_EQ(Heading(), "Sunday, 29 November 2026");
    // What the hands then mark leads again.
    form->calView_Click(1);
    Press(Qt::Key_Left);
    EXPECT_EQ(kit::FromQDate(dates.selectedDate()), Day{kSaturday.serial + 5});
}

TEST_F(FormCalendar, HoursBeginWhereThePreferencesSayWhicheverViewComesFirst) {
    for (const auto first : {PeriodKind::Week, PeriodKind::MonthGrid}) {
        db.session.settings.calView = static_cast<std::uint8_t>(first);
        db.session.settings.DisplayFrom = {7.0 / 24};
        form.reset();
        db.session.calendarView.reset();
        Open();
        form->calView_Click(0);
        QCoreApplication::processEvents();
        const int above = week->AreaOf({0, 0, 1440, true}).bottom();
        const int top = week->AreaOf({0, 420, 450, false}).top();
        EXPECT_GE(top, above);
        EXPECT_LT(top, above + week->PixelsOfHour() / 2);
    }
}

TEST_F(FormCalendar, AnEndUnderTheOpenEditorStoresNothing) {
    Visitor visitor;
    std::vector<custody::Draft> drafts;
    visitor.Meet("frmAppointment", [&](QWidget& editor) {
        test::TypeText(Named(editor, "ctlSubject"), "half a thought");
        EXPECT_TRUE(form->Editing());
        drafts = form->Drafts();
        db.session.ending = true;
        db.session.DatabaseOpen = false;
        db.session.ProgramDb.reset();
        dynamic_cast<QDialog&>(editor).done(QDialog::Accepted);
    });
    Trigger("mnuNewAppointment");
    EXPECT_FALSE(form->Editing());
    form->repaint();
    form.reset();
    db.session.ending = false;
    db.Reopen();
    EXPECT_EQ(db.Count("SELECT fPK FROM tt WHERE fSec=12"), 0);
    Open();
    ASSERT_EQ(drafts.size(), 1U);
    visitor.Meet("frmAppointment", [](QWidget& editor) { Click(editor, "cmdOK"); });
    form->OpenDraft(drafts.front());
    EXPECT_EQ(status, "1 appointment") << "what was begun is finished";
}

TEST_F(FormCalendar, ADraftOfOneDayGoesBackIntoItsSeries) {
    AddFridays();
    const Texts whole = All();
    form->calDate_DateClick({kSaturday.serial + 6});
    week->Choose(0);
    Visitor visitor;
    std::vector<custody::Draft> drafts;
    MeetReach(visitor, "cmdThis");
    visitor.Meet("frmAppointment", [&](QWidget& editor) {
        Named<QLineEdit>(editor, "ctlSubject").clear();
        test::TypeText(Named(editor, "ctlSubject"), "Fair");
        drafts = form->Drafts();
        dynamic_cast<frmAppointment&>(editor).recordChanged = false;
        dynamic_cast<QDialog&>(editor).done(QDialog::Rejected);
    });
    Press(Qt::Key_Return);
    ASSERT_EQ(All(), whole);
    ASSERT_EQ(drafts.size(), 1U);
    visitor.Meet("frmAppointment", [](QWidget& editor) { Click(editor, "cmdOK"); });
    form->OpenDraft(drafts.front());
    EXPECT_EQ(All(), (Texts{whole[0], "6 480-540 Fair", whole[2], whole[3], whole[4]}));
    // Once the day has gone from the series there is nothing to take it out of.
    visitor.Meet("frmAppointment", [](QWidget& editor) { Click(editor, "cmdOK"); });
    form->OpenDraft(drafts.front());
    EXPECT_EQ(All().size(), 6U);
}

TEST(WeekRule, IsTheTerritorys) {
    EXPECT_EQ(FirstWeekOf(QLocale("de_DE")), FirstWeek::FourDays);
    EXPECT_EQ(FirstWeekOf(QLocale("en_US")), FirstWeek::WithNewYear);
    EXPECT_EQ(FirstWeekOf(QLocale("tr_TR")), FirstWeek::WithNewYear) << "weeks from Monday on do not tell it";
    EXPECT_EQ(FirstWeekOf(QLocale::c()), FirstWeek::FourDays);
}

}  // namespace
}  // namespace bmr::calendar
