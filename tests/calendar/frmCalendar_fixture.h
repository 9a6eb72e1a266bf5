#pragma once

#include <QLabel>
#include <QTabBar>
#include <algorithm>
#include <functional>
#include <memory>

#include "calendar/appointment.h"
#include "calendar/frmCalendar.h"
#include "calendar/monthview.h"
#include "calendar/recurrence.h"
#include "calendar/weekview.h"
#include "kit/dateentry.h"
#include "store/undo.h"
#include "support/store.h"
#include "views_fixture.h"

namespace bmr::calendar {

using test::Click;
using test::Named;
using test::Visitor;
using Texts = std::vector<std::string>;

/// The calendar over a database of its own, driven as a person would. It is noon on Saturday, 21 November
/// 2026, and weeks begin on Monday.
struct FormCalendar : testing::Test {
    static constexpr Day kSaturday{46347};

    FormCalendar() {
        db.session.ShowPrivate = true;
        db.session.settings.calView = 2;
        Open();
    }
    void Open() {
        form.reset();
        form = std::make_unique<frmCalendar>(db.session, ports);
        QObject::connect(form.get(), &SectionForm::StatusChanged,
                         [this](const QString& words) { status = words; });
        QObject::connect(form.get(), &SectionForm::UndoWanted, [this] { TakeBack(); });
        form->resize(980, 640);
        form->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(form.get()));
        QCoreApplication::processEvents();
        week = &Named<WeekView>(*form, "calFrame");
        month = &Named<MonthView>(*form, "monFrame");
    }
    /// As the main window does it.
    void TakeBack() {
        const std::uint8_t section = form->StepSection(store::UndoWay::Undo).value();
        ASSERT_TRUE(store::MayTake(db.session, section, store::UndoWay::Undo));
        const auto outcome = store::TakeStep(db.session, section, store::UndoWay::Undo);
        EXPECT_EQ(outcome.error, 0);
        form->ShowTaken(section, outcome.keys, "Undone.");
    }
    static Minutes At(int day, int minute) { return {MidnightOf({kSaturday.serial + day}).count + minute}; }
    std::int32_t Add(const char* subject, int day, int from, int to,
                     const std::function<void(Appointment&)>& change = {}) {
        Appointment appointment = ClearRecord(At(day, from), to - from);
        appointment.subject = subject;
        if (change) change(appointment);
        EXPECT_EQ(WriteRecord(db.session, appointment).error, 0);
        form->Refresh();
        return appointment.key;
    }
    /// Every Friday from the day before today on.
    std::int32_t AddFridays() {
        return Add("Market", -1, 480, 540, [](Appointment& series) {
            series.redoString = WriteRedoRule({.kind = RedoKind::Weekly,
                                               .pattern = 1 << 6,
                                               .interval = 1,
                                               .first = DateToDays16({kSaturday.serial - 1}),
                                               .last = DateToDays16({kSaturday.serial + 300})});
        });
    }
    Appointment Stored(std::int32_t key) { return FetchRecord(db.session, key).value(); }
    /// What five weeks from Monday of this week on hold: "-1 480-540 Market".
    Texts All() {
        Texts all;
        const auto entries = EntriesInPeriod(db.session, {{kSaturday.serial - 5}, {kSaturday.serial + 29}},
                                             kit::FactsOf(QLocale()));
        for (const auto& entry : *entries)
            all.push_back(std::to_string(DayOf(entry.start).serial - kSaturday.serial) + " " +
                          std::to_string(MinuteOfDay(entry.start)) + "-" +
                          std::to_string(entry.end.count - entry.start.count + MinuteOfDay(entry.start)) +
                          " " + std::string(entry.subject));
        return all;
    }
    /// A drag by the mouse, by the upper left of a box of the week to that of a span.
    void Drag(std::size_t entry, const DaySpan& to, Qt::KeyboardModifiers keys = Qt::NoModifier) {
        constexpr QPoint kGrip(12, 12);
        Hand{*week->viewport(), keys}.Drag(week->BoxOf(entry).topLeft() + kGrip,
                                           week->AreaOf(to).topLeft() + kGrip);
        QCoreApplication::processEvents();
    }
    void Press(Qt::Key key) {
        QTest::keyClick(form->focusProxy(), key);
        QCoreApplication::processEvents();
    }
    void MeetReach(Visitor& visitor, const char* button) {
        visitor.Meet("frmReach", [button](QWidget& box) { Click(box, button); });
    }
    /// The button of the line that offers to take something back.
    void PressUndo() {
        for (auto* button : form->findChildren<QAbstractButton*>("stripAction"))
            if (button->isVisible()) return QTest::mouseClick(button, Qt::LeftButton);
        ADD_FAILURE() << "nothing is offered";
    }
    QString Heading() { return Named<QLabel>(*form, "lblPeriod").text(); }
    void Trigger(const char* action) {
        Named<QAction>(*form, action).trigger();
        QCoreApplication::processEvents();
    }

    test::TempStore db;
    FormPorts ports;
    QString status;
    std::unique_ptr<frmCalendar> form;
    WeekView* week = nullptr;
    MonthView* month = nullptr;
};

}  // namespace bmr::calendar
