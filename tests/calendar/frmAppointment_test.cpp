#include "calendar/frmAppointment.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QToolButton>

#include "calendar/months.h"
#include "calendar/redowords.h"
#include "kit/dateedit.h"
#include "kit/dateentry.h"
#include "support/forms.h"
#include "support/store.h"

namespace bmr::calendar {
namespace {

using test::Click;
using test::Named;

Day On(const char* date) {
    return ParseIsoDate(date).value();
}

QString Short(const char* date) {
    return kit::ShortDate(DateValue{static_cast<double>(On(date).serial)});
}

struct FormAppointment : testing::Test {
    void Show(const Appointment& appointment, const Opening& opening = {}) {
        form = std::make_unique<frmAppointment>(db.session, appointment, opening);
        form->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    }
    void ShowNew() {
        const TimeSpan span = NewSpan({MidnightOf(day).count + 540}, 60);
        Show(ClearRecord(span.start, span.Length()), {.span = span});
    }
    /// A stored appointment of an hour at nine, a series where `words` tell one.
    Appointment Stored(const char* words = "", std::initializer_list<const char*> excluded = {}) const {
        Appointment appointment = ClearRecord({MidnightOf(day).count + 540}, 60);
        appointment.key = 7;
        appointment.subject = "Choir";
        if (*words == '\0') return appointment;
        RedoRule rule = ReadRedoRule(BuildRedoString(*ParseRule(words, day, locale), locale)).value();
        rule.last = DateToDays16(On("2065-05-05"));
        for (const char* each : excluded)
            rule.excluded.push_back(DateToDays16(On(each)));
        appointment.redoString = WriteRedoRule(rule);
        return appointment;
    }
    void Type(QWidget& field, const QString& text, bool leave = true) {
        field.setFocus();
        auto* line = qobject_cast<QLineEdit*>(&field);
        if (auto* box = qobject_cast<QComboBox*>(&field)) line = box->lineEdit();
        line->selectAll();
        test::TypeText(field, text);
        if (leave) QTest::keyClick(&field, Qt::Key_Tab);
    }
    void Type(const char* name, const QString& text) { Type(Named(*form, name), text); }
    void TypeDate(const char* name, const QString& text) {
        Type(Named<QLineEdit>(Named(*form, name), "line"), text);
    }
    Day DateIn(const char* name) const { return *Named<kit::DateEdit>(*form, name).Date(); }
    QString Text(const char* name) const { return Named<QLineEdit>(*form, name).text(); }
    QString Words(const char* name) const {
        return Named<QLabel>(*form, name).text().replace(QChar::Nbsp, ' ');
    }
    void Choose(const char* list, const QString& text) { Named<QComboBox>(*form, list).setCurrentText(text); }
    /// "09:00-10:00 01:00" as the boxes tell it.
    std::string Times() const {
        const auto start = [this](const char* name) { return Named<QComboBox>(*form, name).currentText(); };
        return (start("ctlHH0") + ":" + start("ctlNN0") + "-" + Text("ctlHH1") + ":" + Text("ctlNN1") + " " +
                Text("ctlHH2") + ":" + Text("ctlNN2"))
            .toStdString();
    }
    RedoState Redo() {
        const Appointment taken = form->Taken();
        return ParseRedoString(taken.redoString, DayOf(taken.start), locale);
    }
    bool Saved() {
        Click(*form, "cmdOK");
        return !form->isVisible();
    }

    test::TempStore db;
    const LocaleFacts locale = kit::FactsOf(QLocale());
    const Day day = On("2027-01-05");  // a Tuesday
    std::unique_ptr<frmAppointment> form;
};

TEST_F(FormAppointment, WhatNobodyChangedIsNotStored) {
    std::vector<Appointment> cases{Stored(), Stored("2 weeks on mon,thu", {"2027-01-21"}),
                                   Stored("month on 31"), Stored("year on second tue of may")};
    Appointment foreign = Stored();
    foreign.end = {foreign.start.count + 1700};
    foreign.alarm = 255;
    foreign.alarmTime = {foreign.start.count - 25};
    foreign.allDay = 1;
    foreign.notes = "one\ntwo";
    cases.push_back(foreign);
    foreign.allDay = 0;
    foreign.redoString = "damaged!";
    cases.push_back(foreign);
    for (const Appointment& each : cases) {
        Show(each);
        Named<QLineEdit>(*form, "ctlHH1").setFocus();
        Click(*form, "Redo4");
        Click(*form, each.redoString.empty() || each.redoString.size() % 2 == 0 ? "Redo0" : "Redo3");
        form->recordChanged = false;
        EXPECT_TRUE(Saved());
        EXPECT_FALSE(form->recordChanged);
        Show(each);
        QTest::keyClick(form.get(), Qt::Key_Escape);
        EXPECT_FALSE(form->isVisible()) << "nothing changed, nothing asked";
    }
    Show(cases[1]);
    Type("ctlSubject", "Choir and tea");
    QTest::keyClick(form.get(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(form->recordChanged);
    EXPECT_EQ(form->Taken().redoString, cases[1].redoString) << "the series was not touched";
    EXPECT_EQ(form->Taken().subject, "Choir and tea");
    ShowNew();
    EXPECT_TRUE(Saved());
    EXPECT_TRUE(form->recordChanged) << "a new one is stored as it stands";
}

TEST_F(FormAppointment, BoxesSlidersAndDurationAgree) {
    ShowNew();
    EXPECT_EQ(Times(), "09:00-10:00 01:00");
    Named<QSlider>(*form, "SliderHH0").setValue(14);
    EXPECT_EQ(Times(), "14:00-15:00 01:00");
    Named<QSlider>(*form, "SliderNN1").setValue(6);
    EXPECT_EQ(Times(), "14:00-15:30 01:30");
    Named<QSlider>(*form, "SliderHH0").setValue(23);
    EXPECT_EQ(Times(), "23:00-24:00 01:00");
    const auto told = [this] {
        auto& line = Named<QLabel>(*form, "lblTimesError");
        return line.isVisible() ? line.text().toStdString() : "";
    };
    Type("ctlHH0", "99");
    EXPECT_EQ(Times(), "23:00-24:00 01:00");
    EXPECT_EQ(told(), "Hours go to 23.");
    Type("ctlHH0", "8");
    EXPECT_EQ(told(), "");
    EXPECT_EQ(Times(), "08:00-24:00 16:00") << "typing a start leaves the end";
    Type("ctlHH1", "12");
    Type("ctlNN1", "59");
    EXPECT_EQ(Times(), "08:00-12:55 04:55");
    EXPECT_EQ(Named<QSlider>(*form, "SliderNN1").value(), 11);
    EXPECT_EQ(told(), "Minutes go in steps of five.");
    Type("ctlHH2", "17");
    EXPECT_EQ(told(), "An end after midnight cannot be typed: it is cut at 24:00.");
    Type("ctlHH1", "7");
    EXPECT_EQ(Times(), "08:00-08:00 00:00");
    EXPECT_EQ(told(), "The end lay before the start: it is the start now.");
    Named<QSlider>(*form, "SliderNN1").setValue(1);
    EXPECT_EQ(told(), "") << "it goes with the next change";
    Type("ctlHH1", "8");
    Type("ctlNN1", "0");
    Type("ctlHH2", "2x");
    EXPECT_EQ(Times(), "08:00-10:00 02:00") << "what is no digit is refused";
    Type("ctlHH2", "");
    EXPECT_EQ(Times(), "08:00-10:00 02:00");
    auto& quick = Named<QComboBox>(*form, "ctlHH0");
    EXPECT_EQ(quick.count(), 11);
    emit quick.activated(quick.findText("12:00"));
    EXPECT_EQ(Times(), "12:00-14:00 02:00");
    EXPECT_EQ(quick.itemData(quick.findText("20:00")), 1200);
    QTest::keyClick(&Named(*form, "ctlNN2"), Qt::Key_Down);
    QTest::keyClick(&Named(*form, "ctlNN0"), Qt::Key_Up);
    QTest::keyClick(&quick, Qt::Key_Up);
    EXPECT_EQ(Times(), "13:05-15:00 01:55") << "the arrow keys step, and the start takes the end along";
    const Appointment taken = form->Taken();
    EXPECT_EQ(taken.start.count, MidnightOf(day).count + 785);
    EXPECT_EQ(taken.end.count - taken.start.count, 115);
}

TEST_F(FormAppointment, TheDurationStepsWhileItsButtonIsHeld) {
    ShowNew();
    Click(*form, "cmdDurationUp");
    EXPECT_EQ(Times(), "09:00-10:05 01:05") << "a short click is one step";
    auto& down = Named<QToolButton>(*form, "cmdDurationDown");
    auto& timer = *form->findChild<QTimer*>("tmrDuration");
    QTest::mousePress(&down, Qt::LeftButton);
    EXPECT_EQ(timer.interval(), kDurationFirstStep);
    EXPECT_EQ(Times(), "09:00-10:05 01:05");
    ASSERT_TRUE(QTest::qWaitFor([&] { return Text("ctlHH2") == "00" && Text("ctlNN2").toInt() <= 50; }));
    EXPECT_EQ(timer.interval(), kDurationNextStep);
    QTest::mouseRelease(&down, Qt::LeftButton);
    const std::string after = Times();
    EXPECT_FALSE(timer.isActive());
    QTest::qWait(2 * kDurationNextStep);
    EXPECT_EQ(Times(), after);
}

TEST_F(FormAppointment, AllDayKeepsTheTimesAndAnEndOnAnotherDayStays) {
    Appointment overnight = Stored();
    overnight.end = {overnight.start.count + 1500};
    Show(overnight);
    EXPECT_EQ(Times(), "09:00-10:00 25:00");
    EXPECT_TRUE(Words("ctlDateEnd").contains(Short("2027-01-06")));
    Click(*form, "ctlAllday");
    EXPECT_EQ(Times(), "00:00-24:00 24:00");
    EXPECT_FALSE(Named(*form, "ctlHH0").isEnabled());
    EXPECT_NE(form->Taken().allDay, 0);
    TypeDate("ctlDate", "2027-01-08");
    EXPECT_EQ(Words("lblWeekday"), "Friday");
    Click(*form, "ctlAllday");
    EXPECT_EQ(form->Taken().end.count - overnight.end.count, 3 * kMinutesOfDay);
    EXPECT_TRUE(Words("ctlDateEnd").contains(Short("2027-01-09")));
    Type("ctlHH1", "11");
    EXPECT_EQ(Times(), "09:00-11:00 02:00") << "once touched, the end is on the start's day";
    EXPECT_EQ(Words("ctlDateEnd"), "");
    Type("ctlHH0", "0");
    Type("ctlHH1", "24");
    EXPECT_NE(form->Taken().allDay, 0) << "a whole day, box or no box";
}

TEST_F(FormAppointment, TheReminderKeepsALeadTimeOfItsOwn) {
    Appointment stored = Stored();
    stored.alarm = 1;
    stored.alarmTime = {stored.start.count - 25};
    Show(stored);
    auto& list = Named<QComboBox>(*form, "ctlAlarmAnticipate");
    EXPECT_EQ(list.currentText(), "25 min");
    TypeDate("ctlDate", "+1");
    EXPECT_EQ(form->Taken().alarmTime.count, form->Taken().start.count - 25);
    Choose("ctlAlarmAnticipate", "1 Day");
    EXPECT_EQ(form->Taken().alarmTime.count, form->Taken().start.count - 1440);
    Click(*form, "ctlAlarmYN");
    EXPECT_FALSE(list.isEnabled());
    EXPECT_EQ(form->Taken().alarm, 0);
    EXPECT_EQ(form->Taken().alarmTime, form->Taken().start);
}

TEST_F(FormAppointment, EachFrequencyHasItsFrames) {
    ShowNew();
    const QSize size = form->size();
    const char* frames[] = {"RedoFrW",  "RedoAltFrame", "RedoEndFrame", "RedoFrD0", "RedoFrD1",
                            "RedoFrM0", "RedoFrM1",     "RedoFrY0",     "RedoFrY1"};
    const char* expected[] = {"", "RedoFrW RedoEndFrame ", "RedoAltFrame RedoEndFrame RedoFrD0 RedoFrD1 ",
                              "RedoAltFrame RedoEndFrame RedoFrM0 RedoFrM1 ",
                              "RedoAltFrame RedoEndFrame RedoFrY0 RedoFrY1 "};
    const char* sentences[] = {"", "Every week on Tuesday.", "Every day.", "Every month on day 5.",
                               "Every year on 5 January."};
    for (int i = 4; i >= 0; --i) {
        const std::string option = "Redo" + std::to_string(i);
        Click(*form, option.c_str());
        std::string shown;
        for (const char* frame : frames)
            if (Named(*form, frame).isVisible()) shown += std::string(frame) + " ";
        EXPECT_EQ(shown, expected[i]);
        EXPECT_EQ(Words("lblSentence").toStdString(), sentences[i]);
        QTest::qWait(0);
        EXPECT_EQ(form->size(), size) << "the window does not jump";
    }
    Click(*form, "Redo3");
    EXPECT_EQ(Words("lblNext"), "Tue " + Short("2027-01-05") + "\nFri " + Short("2027-02-05") + "\nFri " +
                                    Short("2027-03-05") + "\nMon " + Short("2027-04-05") + "\nWed " +
                                    Short("2027-05-05"));
    Choose("cboRedoWhen", "last");
    EXPECT_TRUE(Named<QRadioButton>(*form, "RedoAlt1").isChecked());
    EXPECT_EQ(DateIn("ctlDate"), On("2027-01-26"));
    EXPECT_EQ(DateIn("ctlDateStartRedo"), On("2027-01-26"));
    Click(*form, "Redo2");
    EXPECT_EQ(Redo().kind, static_cast<int>(RedoKind::Workdays));
    Click(*form, "lblRedoD0");
    EXPECT_EQ(Redo().kind, static_cast<int>(RedoKind::Daily)) << "the words beside an option choose it";
    Click(*form, "Redo3");
    TypeDate("ctlDateStartRedo", "2027-03-31");
    EXPECT_EQ(DateIn("ctlDate"), On("2027-03-31"));
    EXPECT_EQ(Words("lblRedoM0"), "Day 31 every");
    EXPECT_EQ(Words("lblGrid"), "The month view of April 2027 also shows 1 May 2027.");
    Click(*form, "Redo4");
    EXPECT_EQ(Words("lblRedoY0"), "Every March 31");
    Choose("cboRedoMonth", "May");
    EXPECT_EQ(Redo().month, 5);
    EXPECT_EQ(DayOf(form->Taken().start), On("2027-05-26")) << "the fifth Wednesday is the last one";
}

TEST_F(FormAppointment, NumberAndLastDayFollowEachOther) {
    ShowNew();
    Click(*form, "Redo2");
    EXPECT_FALSE(Named(*form, "occ").isEnabled());
    EXPECT_FALSE(Named(*form, "ctlDateEndRedo").isEnabled());
    EXPECT_EQ(DateIn("ctlDateEndRedo"), kNoEndShown);
    Click(*form, "RedoEnd2");
    EXPECT_EQ(Text("occ"), "5");
    Type("occ", "12");
    EXPECT_TRUE(Named<QRadioButton>(*form, "RedoEnd1").isChecked());
    EXPECT_EQ(DateIn("ctlDateEndRedo"), On("2027-01-16"));
    Type("QQ1", "3");
    EXPECT_EQ(DateIn("ctlDateEndRedo"), On("2027-02-07"));
    TypeDate("ctlDateEndRedo", "2027-01-12");
    EXPECT_TRUE(Named<QRadioButton>(*form, "RedoEnd2").isChecked());
    EXPECT_EQ(Text("occ"), "3");
    EXPECT_EQ(DateIn("ctlDateEndRedo"), On("2027-01-11")) << "the last day is an occurrence";

    db.prompter.Expect(12).Expect(13);
    Type("occ", "x");
    EXPECT_EQ(Text("occ"), "1");
    Type("QQ1", "256");
    EXPECT_EQ(Text("QQ1"), "25");
    Type("QQ1", "0");
    EXPECT_EQ(Text("QQ1"), "1");
    Type("QQ1", "");
    EXPECT_EQ(Text("QQ1"), "1");
    EXPECT_TRUE(db.prompter.answers.empty());
}

TEST_F(FormAppointment, DatesBeyondTheLimitsBecomeThem) {
    ShowNew();
    db.prompter.Expect(149).Expect(150);
    TypeDate("ctlDate", "1899-12-31");
    EXPECT_EQ(DayOf(form->Taken().start), kLowerLimit);
    TypeDate("ctlDate", "2099-01-01");
    EXPECT_EQ(DayOf(form->Taken().start), kUpperLimit);
    TypeDate("ctlDate", "2027-01-05");
    Click(*form, "Redo4");
    Click(*form, "RedoEnd2");
    db.prompter.Expect(150);
    TypeDate("ctlDateEndRedo", "2099-01-01");
    EXPECT_EQ(Redo().end, On("2069-01-05")) << "told once";
    db.prompter.Expect(150);
    Type("occ", "200");
    EXPECT_EQ(Text("occ"), "43");

    TypeDate("ctlDateStartRedo", "whenever");
    Click(*form, "cmdOK");
    EXPECT_TRUE(form->isVisible()) << "what is no date is not stored as the one before";
    EXPECT_TRUE(Words("lblDateStartRedoError").contains("whenever"));
    EXPECT_FALSE(Words("lblSentence").contains("year")) << "no series stands as if it were the one typed";
    EXPECT_EQ(Words("lblNext"), "");
    EXPECT_NE(Words("lblWeekday"), "");
    TypeDate("ctlDate", "31.31.2027");
    EXPECT_EQ(Words("lblWeekday"), "");
    TypeDate("ctlDate", "2027-01-05");
    EXPECT_EQ(Words("lblWeekday"), "Tuesday");
    TypeDate("ctlDateStartRedo", "2027-01-05");
    EXPECT_TRUE(Words("lblSentence").startsWith("Every year on 5 January"));
    EXPECT_FALSE(Named(*form, "lblDateStartRedoError").isVisible());
}

TEST_F(FormAppointment, WeekdaysAreNeverAllOff) {
    ShowNew();
    Click(*form, "Redo1");
    db.prompter.Expect(10);
    Click(*form, "RedoWD1");
    EXPECT_TRUE(Named<QCheckBox>(*form, "RedoWD1").isChecked());
    Click(*form, "RedoWD3");
    Click(*form, "RedoWD1");
    EXPECT_EQ(Words("lblSentence"), "Every week on Thursday.");

    Appointment none = Stored("week on mon");
    none.redoString[1] = '\0';
    Show(none);
    Type("ctlSubject", "Tea");
    db.prompter.Expect(10);
    EXPECT_FALSE(Saved());
    Click(*form, "RedoWD0");
    EXPECT_TRUE(Saved());
    EXPECT_EQ(form->Taken().redoString[1], 1 << 2);
}

TEST_F(FormAppointment, AStartWithoutSuchAWeekdayIsAskedAbout) {
    for (const auto& [answer, date] : {std::pair(Answer::Yes, "2027-02-01"), {Answer::No, "2027-01-04"}}) {
        ShowNew();
        Click(*form, "Redo3");
        db.prompter.Expect(151, answer);
        Choose("cboRedoWeekday", "Monday");
        EXPECT_EQ(DateIn("ctlDate"), On(date)) << "the first Monday of January 2027 is the fourth";
        EXPECT_EQ(Redo().start, On(date));
    }
}

TEST_F(FormAppointment, DaysThatWouldComeBackAreToldFirst) {
    const Appointment stored = Stored("week on tue", {"2027-01-12", "2027-01-26", "2027-02-01"});
    const auto change = [&](Answer answer) {
        Show(stored);
        TypeDate("ctlDateStartRedo", "2027-01-19");
        db.prompter.Expect(0, answer);
        return Saved();
    };
    EXPECT_TRUE(change(Answer::Yes));
    EXPECT_EQ(form->ExcludeAgain(), std::vector{On("2027-01-26")});
    const Box& box = db.prompter.shown.back();
    EXPECT_EQ(box.standard, Answer::Yes);
    EXPECT_EQ(box.words[0], "Exclude them again");
    const QString words = QString::fromStdString(box.text);
    EXPECT_TRUE(words.contains("leaves out 26 January 2027.") && words.contains("on that day again."));
    EXPECT_FALSE(words.contains("12 January")) << "the changed series begins behind it";
    EXPECT_TRUE(change(Answer::No));
    EXPECT_TRUE(form->ExcludeAgain().empty());
    EXPECT_EQ(form->Taken().redoString.size(), 7U);
    EXPECT_FALSE(change(Answer::Cancel));
    Click(*form, "Redo0");
    EXPECT_TRUE(Saved()) << "where no series is left, nothing comes back";
    EXPECT_TRUE(form->Taken().redoString.empty());
}

TEST_F(FormAppointment, ADraftKeepsEveryControl) {
    Show(Stored());
    EXPECT_FALSE(form->HalfWritten());
    Type("ctlSubject", "Committee \u0142");
    Type("ctlLocation", "Room 3");
    Click(*form, "ctlPrivate");
    Type("ctlHH1", "12");
    Click(*form, "ctlAllday");
    Click(*form, "ctlAlarmYN");
    Choose("ctlAlarmAnticipate", "2 hours");
    Click(*form, "Redo1");
    Click(*form, "RedoWD6");
    Click(*form, "Redo4");
    Type("QQ2", "4");
    Choose("cboRedoMonth", "May");
    Choose("cboRedoWhen", "last");
    Click(*form, "RedoEnd1");
    Type("occ", "9");
    const Appointment before = form->Taken();
    const custody::Draft draft = form->HalfWritten().value();
    EXPECT_TRUE(draft.isPrivate);
    EXPECT_EQ(draft.key, 7);

    Show(Stored());
    form->Fill(draft);
    EXPECT_TRUE(form->recordChanged);
    const Appointment after = form->Taken();
    EXPECT_EQ(after.subject, before.subject);
    EXPECT_EQ(after.location, before.location);
    EXPECT_TRUE(after.isPrivate);
    EXPECT_EQ(after.start, before.start);
    EXPECT_EQ(DayOf(after.start), On("2027-05-25")) << "the last Tuesday of May";
    EXPECT_EQ(after.alarmTime.count, after.start.count - 120);
    EXPECT_EQ(after.redoString, before.redoString);
    EXPECT_EQ(Redo().count, 9);
    EXPECT_EQ(Text("QQ0"), "4");
    EXPECT_EQ(Text("QQ2"), "4");
    Click(*form, "ctlAllday");
    EXPECT_EQ(Times(), "09:00-12:00 03:00") << "the kept times came along";
    Click(*form, "Redo1");
    EXPECT_TRUE(Named<QCheckBox>(*form, "RedoWD6").isChecked());
}

TEST_F(FormAppointment, EscapeAsksOnlyAboutWhatWasChanged) {
    const TimeSpan span = AllDaySpan(day, 30);
    Show(ClearRecord(span.start, 1440), {.span = span, .letters = "T"});
    test::TypeText(*form->focusWidget(), "ea");
    EXPECT_EQ(Text("ctlSubject"), "Tea") << "typing goes on behind the first letters";
    EXPECT_TRUE(Named<QCheckBox>(*form, "ctlAllday").isChecked());
    db.prompter.Expect(20, Answer::No);
    QTest::keyClick(form.get(), Qt::Key_Escape);
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(db.prompter.shown.back().standard, Answer::No);
    EXPECT_EQ(db.prompter.shown.back().words[1], "Keep editing");
    db.prompter.Expect(20, Answer::Yes);
    QTest::keyClick(form.get(), Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible());
    EXPECT_FALSE(form->recordChanged);

    Show(Stored());
    Type(Named(*form, "ctlHH1"), "12", false);
    db.prompter.Expect(20, Answer::Yes);
    QTest::keyClick(form.get(), Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible()) << "a time that is being typed is a change too";
    Show(Stored());
    Type(Named(*form, "ctlHH1"), "7", false);
    QTest::keyClick(form.get(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(form->isVisible()) << "an end that became the start is seen before it is stored";
    QTest::keyClick(form.get(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_FALSE(form->isVisible());
    Show(Stored());
    Type("ctlHH1", "12");
    Type("ctlHH1", "10");
    QTest::keyClick(form.get(), Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible()) << "what was put back is none";
}

TEST_F(FormAppointment, KeyboardReachesEverythingInTheOrderOfTheEye) {
    ShowNew();
    Click(*form, "Redo3");
    Click(*form, "RedoEnd1");
    Named(*form, "ctlSubject").setFocus();
    QStringList seen;
    for (int i = 0; i < 40 && !seen.contains("cmdEsc"); ++i) {
        seen << form->focusWidget()->objectName();
        QTest::keyClick(form->focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(seen.join(' ').toStdString(),
              "ctlSubject ctlLocation line drop ctlAllday ctlHH0 ctlNN0 ctlHH1 ctlNN1 ctlHH2 ctlNN2 "
              "cmdDurationUp cmdDurationDown ctlAlarmYN ctlPrivate ctlNotes Redo3 RedoAlt0 QQ2 cboRedoWhen "
              "cboRedoWeekday QQ3 line drop RedoEnd1 occ line drop cmdOK cmdEsc");
    for (const auto& [key, name] : {std::pair{Qt::Key_D, "line"},
                                    {Qt::Key_T, "ctlHH0"},
                                    {Qt::Key_W, "Redo1"},
                                    {Qt::Key_N, "ctlNotes"},
                                    {Qt::Key_F, "occ"},
                                    {Qt::Key_B, "line"}}) {
        QTest::keyClick(form->windowHandle(), key, Qt::AltModifier);
        EXPECT_EQ(form->focusWidget()->objectName(), name);
    }
    EXPECT_TRUE(Named<QRadioButton>(*form, "RedoEnd2").isChecked());
    for (const QWidget* control : form->findChildren<QWidget*>(QRegularExpression(
             "^(ctl[HNSLA]|cbo|cmdDuration[UD]|Slider|Redo[0-4A]|RedoWD|QQ|occ|line|drop)"))) {
        const auto* button = qobject_cast<const QAbstractButton*>(control);
        EXPECT_FALSE(control->accessibleName().isEmpty() && (!button || button->text().isEmpty()) &&
                     !qobject_cast<const QLabel*>(control) && control->objectName() != "RedoAltFrame")
            << control->objectName().toStdString() << " has no name for a screen reader";
    }
}

}  // namespace
}  // namespace bmr::calendar
