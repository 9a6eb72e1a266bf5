// Tab and Shift+Tab through the window with each section and through each editor: one ring, the same both
// ways.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

#include "app/frmMDI.h"
#include "calendar/appointment.h"
#include "calendar/frmCalendar.h"
#include "confidential/frmClassified.h"
#include "custody/lifecycle.h"
#include "kit/recordlistview.h"
#include "notes/frmNotepad.h"
#include "support/forms.h"
#include "support/sitting.h"
#include "tasks/frmTodo.h"
#include "tasks/tasklist.h"

namespace bmr::app {
namespace {

using store::Section;
using test::Named;

/// What Tab meets until it is where it began, by the names of the controls.
QStringList Ring(QWidget& window, Qt::Key key) {
    constexpr int kMore = 60;
    const QWidget* first = window.focusWidget();
    QStringList met;
    do {
        met << window.focusWidget()->objectName();
        QTest::keyClick(window.focusWidget(), key,
                        key == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
    } while (window.focusWidget() != first && met.size() < kMore);
    return met;
}

/// Begins at the control `order` names first.
void ExpectRing(QWidget& window, QStringList order) {
    QCoreApplication::processEvents();  // what was just laid out comes up
    Named(window, order.front().toUtf8().constData()).setFocus();
    EXPECT_EQ(Ring(window, Qt::Key_Tab).join(' ').toStdString(), order.join(' ').toStdString());
    std::reverse(order.begin() + 1, order.end());
    EXPECT_EQ(Ring(window, Qt::Key_Backtab).join(' ').toStdString(), order.join(' ').toStdString());
}

class TabRing : public testing::Test {
  protected:
    TabRing() {
        sitting.Make();
        tasks::Task task = tasks::ClearRecord(0);
        task.task = "ask";
        task.note = "by letter";
        EXPECT_EQ(tasks::WriteRecord(sitting.session, task).error, 0);
        notes::Memo memo = notes::ClearRecord(sitting.session, 0);
        memo.subject = "Moss";
        EXPECT_EQ(notes::WriteRecord(sitting.session, memo), 0);
        confidential::Record record;
        record.kind = 4;
        record.n[0] = "harbour";
        EXPECT_EQ(confidential::WriteRecord(sitting.session, record), 0);
        sitting.Close();
        SectionTable table;
        table[Section::Calendar] = [](store::Session& s, QWidget* p) {
            return new calendar::frmCalendar(s, {}, p);
        };
        table[Section::Todo] = [](store::Session& s, QWidget* p) { return new tasks::frmTodo(s, p); };
        table[Section::Memo] = [](store::Session& s, QWidget* p) { return new notes::frmNotepad(s, p); };
        table[Section::Confidential] = [](store::Session& s, QWidget* p) {
            return new confidential::frmClassified(
                s, [](const QString&) {}, p);
        };
        frame = std::make_unique<frmMDI>(
            frmMDI::Parts{sitting.session, std::move(table), {sitting.folder.Path() / "documents"}});
        sitting.prompter.Type(test::kPassphrase);
        frame->Start(sitting.file);
        frame->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(frame.get()));
    }
    ~TabRing() override { sitting.session.ending = true; }
    void Trigger(const char* action) { Named<QAction>(*frame, action).trigger(); }

    test::Sitting sitting;
    std::unique_ptr<frmMDI> frame;
    test::Visitor visitor;
};

TEST_F(TabRing, GoesThroughTheWindowWithEachSection) {
    frame->optSection_Click(Section::Todo);
    ExpectRing(*frame,
               {"txtSearch", "optSection15", "cmdFold", "cboCategories", "cmdEditCat", "ShowCompleted",
                "TodoList", "txtNote", "txtQuickAdd", "cmdAdd", "cmdEdit", "cmdDelete", "cmdShowPrivate"});
    sitting.prompter.Expect(29, Answer::Ok);
    Trigger("mnuTodoDeleteSelected");
    ExpectRing(*frame, {"txtSearch", "optSection15", "cmdFold", "cboCategories", "cmdEditCat",
                        "ShowCompleted", "empty_mnuTodoNew", "empty_showCompleted", "stripAction",
                        "stripClose", "txtQuickAdd", "cmdAdd", "cmdShowPrivate"});
    frame->optSection_Click(Section::Calendar);
    ExpectRing(*frame, {"txtSearch", "optSection12", "cmdFold", "cmdPrevious", "cmdToday", "cmdNext",
                        "cmdWeek", "calView", "qt_calendar_calendarview", "calFrame", "cmdShowPrivate"});
    frame->optSection_Click(Section::Memo);
    ExpectRing(*frame, {"txtSearch", "optSection14", "cmdFold", "cboCategories", "cmdEditCat", "listSelect",
                        "cmdAdd", "cmdEdit", "cmdDelete", "txtInput", "cmdShowPrivate"});
    frame->optSection_Click(Section::Confidential);
    Named<QAbstractButton>(*frame, "cat4").click();
    ExpectRing(*frame, {"txtSearch", "optSection16", "cmdFold", "cat4", "ListSelect", "cmdAdd", "cmdEdit",
                        "cmdDelete", "txtCtl0", "copy0", "txtCtl1", "txtCtl2", "txtCtl3", "chkPlainPW",
                        "txtNotes", "cmdShowPrivate"});
    auto& list = Named(*frame, "ListSelect");
    list.setFocus();
    QTest::keyClick(&list, Qt::Key_Left);
    EXPECT_EQ(frame->focusWidget()->objectName(), "cat4");
    QTest::keyClick(frame->focusWidget(), Qt::Key_Right);
    EXPECT_EQ(frame->focusWidget(), &list);
}

TEST_F(TabRing, GoesThroughEachEditor) {
    frame->optSection_Click(Section::Todo);
    visitor.Meet("frmEditTodo", [](QWidget& editor) {
        ExpectRing(editor, {"ctlTask", "ctlPri1", "cboCategory", "cmdEditCat", "ctlPrivate", "box", "box",
                            "ctlNote", "cmdOK", "cmdSaveNew", "cmdEsc"});
        dynamic_cast<QDialog&>(editor).reject();
    });
    Trigger("mnuTodoNew");
    frame->optSection_Click(Section::Memo);
    sitting.prompter.inputs = {"Garden"};
    sitting.prompter.Expect(20, Answer::Yes);
    visitor.Meet("frmEditNotepad", [](QWidget& editor) {
        ExpectRing(editor,
                   {"ctlSubject", "ctlNote", "cboCategory", "cmdEditCat", "ctlPrivate", "cmdOK", "cmdEsc"});
        dynamic_cast<QDialog&>(editor).reject();
    });
    Trigger("mnuMemoAdd");
    frame->optSection_Click(Section::Confidential);
    Named<QAbstractButton>(*frame, "cat4").click();
    visitor.Meet("frmEditConfidential", [](QWidget& editor) {
        ExpectRing(editor, {"txtCtl0", "txtCtl1", "txtCtl2", "txtCtl3", "dice3", "txtNotes", "ctlPrivate",
                            "cmdOK", "cmdEsc"});
        dynamic_cast<QDialog&>(editor).reject();
    });
    Trigger("mnuConfidentialEdit");
}

TEST_F(TabRing, ReturnInALineOfAnEditorSaves) {
    frame->optSection_Click(Section::Todo);
    visitor.Meet("frmEditTodo", [](QWidget& editor) {
        auto& line = Named<QLineEdit>(editor, "ctlTask");
        test::TypeText(line, "book");
        Named(editor, "cmdEsc").setFocus();
        line.setFocus();
        QTest::keyClick(&line, Qt::Key_Return);
        EXPECT_TRUE(editor.isHidden());
    });
    Trigger("mnuTodoNew");
    EXPECT_EQ(Named<kit::RecordListView>(*frame, "TodoList").model()->rowCount(), 2);
}

}  // namespace
}  // namespace bmr::app
