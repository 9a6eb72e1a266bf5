// What stands in this process's memory once the window has closed, locked or ended a database.
#ifdef __linux__
#include "support/memory.h"
#include "support/sanitizer.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPlainTextEdit>

#include "app/hardening.h"
#include "app/watch.h"
#include "calendar/appointment.h"
#include "confidential/confidential.h"
#include "forms.h"
#include "kit/recordlistview.h"
#include "kit/words.h"
#include "notes/memo.h"
#include "support/forms.h"
#include "support/guards.h"
#include "support/sitting.h"
#include "tasks/task.h"

namespace bmr::app {
namespace {

using store::Section;
using test::Marker;
using test::Named;

/// What the toolkit may keep of one text, whichever way it was shown. None was seen; this leaves room for
/// another version of it.
constexpr int kToolkitKeeps = 4;

WipedText Line(char which) {
    return Joined("d\xC3\xA9j\xC3\xA0 ", Marker::Text(which).view());
}
WipedText Lines(char which) {
    WipedText text;
    for (int i = 0; i < 30; ++i)
        text += Joined(Line(which), "\r\n");
    return text;
}

class WindowMemory : public testing::Test {
  protected:
    WindowMemory() : clipboard(*QApplication::clipboard(), sitting.random, sitting.clock) {
        OverwriteFreed();
        sitting.Make();
        notes::Memo memo = notes::ClearRecord(sitting.session, 0);
        memo.subject = Line('a');
        memo.body = Lines('b');
        EXPECT_EQ(notes::WriteRecord(sitting.session, memo), 0);
        tasks::Task task = tasks::ClearRecord(0);
        task.task = Line('c');
        task.note = Lines('d');
        EXPECT_EQ(tasks::WriteRecord(sitting.session, task).error, 0);
        calendar::Appointment walk =
            calendar::ClearRecord({calendar::MidnightOf(sitting.clock.Today()).count + 600}, 60);
        walk.subject = Line('u');
        walk.location = Line('v');
        walk.notes = Lines('w');
        EXPECT_EQ(calendar::WriteRecord(sitting.session, walk).error, 0);
        walkKey = walk.key;
        confidential::Record record;
        record.kind = 1;
        for (std::size_t i = 0; i < 4; ++i)
            record.n[i] = Line(static_cast<char>('e' + i));
        record.notes = Lines('i');
        EXPECT_EQ(confidential::WriteRecord(sitting.session, record), 0);
        sitting.Close();
        frame.emplace(
            frmMDI::Parts{sitting.session,
                          Forms({.copySecret = [this](const QString& secret) { clipboard.Copy(secret); }}),
                          {sitting.folder.Path() / "documents"}});
        watch.emplace(dynamic_cast<kit::GuardedApplication&>(*qApp), sitting.session, *frame, clipboard,
                      events, sitting.clock);
        sitting.prompter.Type(test::kPassphrase);
        frame->Start(sitting.file);
        frame->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&*frame));
    }
    ~WindowMemory() override { sitting.session.ending = true; }

    QWidget& Form() { return *frame->Form(); }
    void Search() {
        frame->Form()->SetSearch(kit::ShowWords(Marker::Text('s').view().substr(0, 6)));
        test::Live(20);
        frame->Form()->SetSearch({});
    }
    /// Opens the editor of what is selected, lets `work` at it and stores.
    void Edit(const char* action, const char* editor, const std::function<void(QWidget&)>& work) {
        visitor.Meet(editor, [work](QWidget& form) {
            work(form);
            test::Click(form, "cmdOK");
        });
        Named<QAction>(Form(), action).trigger();
    }
    void Work() {
        frame->optSection_Click(Section::Memo);
        test::Live(20);
        Search();
        Edit("mnuMemoEdit", "frmEditNotepad", [](QWidget& form) {
            test::TypeText(Named(form, "ctlNote"), "x");
            QTest::keyClick(&Named(form, "ctlNote"), Qt::Key_Z, Qt::ControlModifier);
            test::TypeText(Named(form, "ctlSubject"), kit::ShowWords(Line('j')));
        });
        sitting.prompter.Expect(27, Answer::Cancel);
        Named<QAction>(Form(), "mnuMemoDeleteSelected").trigger();
        EXPECT_GT(sitting.prompter.shown.back().text.size(), Marker::kSize);
        sitting.prompter.shown.clear();

        frame->optSection_Click(Section::Todo);
        test::Live(20);
        Search();
        Named<kit::RecordListView>(Form(), "TodoList").SelectFirst();
        Edit("mnuTodoEdit", "frmEditTodo",
             [](QWidget& form) { Named<QPlainTextEdit>(form, "ctlNote").appendPlainText("y"); });
        Named<QLineEdit>(Form(), "txtQuickAdd").setText(kit::ShowWords(Line('k')));

        WorkInCalendar();

        frame->optSection_Click(Section::Confidential);
        QTest::keyClick(&Named(Form(), "cat1"), Qt::Key_Return);
        test::Live(20);
        Search();
        Named<QCheckBox>(Form(), "chkPlainPW").click();
        test::Live(20);
        Named<QAction>(Form(), "mnuConfidentialCopy").trigger();
    }
    void WorkInCalendar() {
        frame->optSection_Click(Section::Calendar);
        test::Live(20);  // the tasks come, too
        Search();
        for (const char* view : {"mnuViewMonth", "mnuViewWeek"}) {
            Named<QAction>(Form(), view).trigger();
            test::Live(20);
        }
        frame->Form()->SelectRecord(walkKey);
        Edit("mnuAppoOpen", "frmAppointment",
             [](QWidget& form) { test::TypeText(Named(form, "ctlLocation"), kit::ShowWords(Line('x'))); });
        sitting.prompter.Expect(7, Answer::Cancel);
        Named<QAction>(Form(), "mnuAppoDelete").trigger();
        EXPECT_GT(sitting.prompter.shown.back().text.size(), Marker::kSize);
        sitting.prompter.shown.clear();
    }
    static void ExpectNothing(const char* when) {
        const Secret known = Marker::Text('!');
        const test::Findings found = test::MemorySearch::Run();
        EXPECT_EQ(found.bytes, 1) << when << "\n" << found.where;
        EXPECT_LE(found.letters, kToolkitKeeps) << when << "\n" << found.where;
    }

    test::Sitting sitting;
    std::int32_t walkKey = 0;
    kit::ClipboardGuard clipboard;
    kit::SessionEvents events;
    std::optional<frmMDI> frame;
    std::optional<Watch> watch;
    test::Visitor visitor;
};

TEST_F(WindowMemory, HoldsNothingOnceTheDatabaseIsClosed) {
    if (test::kSanitized) GTEST_SKIP() << "the checker keeps freed memory";
    Work();
    EXPECT_GT(test::MemorySearch::Run().letters, 0) << "the search sees what is shown";
    Named<QAction>(*frame, "mnuFileCloseDB").trigger();
    test::Live(20);
    ExpectNothing("closed");
}

TEST_F(WindowMemory, HoldsNothingWhileItIsLockedOutOfAnEditor) {
    if (test::kSanitized) GTEST_SKIP() << "the checker keeps freed memory";
    Work();
    frame->optSection_Click(Section::Memo);
    visitor.Meet("frmEditNotepad", [this](QWidget& form) {
        test::TypeText(Named(form, "ctlNote"), kit::ShowWords(Line('l')));
        frame->LockNow();
    });
    bool asked = false;
    sitting.prompter.onSecret = [&asked] {
        asked = true;
        ExpectNothing("at the prompt of the lock");
    };
    sitting.prompter.Type(std::nullopt);
    QTimer::singleShot(0, &*frame, [this] { Named<QAction>(Form(), "mnuMemoEdit").trigger(); });
    ASSERT_TRUE(test::LiveUntil([&asked] { return asked; }));
}

TEST_F(WindowMemory, HoldsNothingAtTheIdleEnd) {
    if (test::kSanitized) GTEST_SKIP() << "the checker keeps freed memory";
    Work();
    frame->optSection_Click(Section::Memo);
    visitor.Meet("frmEditNotepad", [this](QWidget& form) {
        test::TypeText(Named(form, "ctlNote"), kit::ShowWords(Line('m')));
        sitting.clock.monotonic += 5 * 60'000;
        watch->Idle().timerTimeout_Tick();
    });
    QTimer::singleShot(0, &*frame, [this] { Named<QAction>(Form(), "mnuMemoEdit").trigger(); });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    ExpectNothing("ended");
}

}  // namespace
}  // namespace bmr::app
#endif
