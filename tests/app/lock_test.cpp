// Locking: the database closes as at the end of the program, and its passphrase opens it again.
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

#include "app/watch.h"
#include "custody/drafts.h"
#include "custody/passphrase.h"
#include "forms.h"
#include "kit/frmEditCategories.h"
#include "kit/frmInputbox.h"
#include "notes/memo.h"
#include "store/categories.h"
#include "support/forms.h"
#include "support/guards.h"
#include "support/sitting.h"

namespace bmr::app {
namespace {

using store::Section;
using test::Named;

class Locking : public testing::Test {
  protected:
    Locking() : clipboard(*QApplication::clipboard(), sitting.random, sitting.clock) {
        sitting.Make();
        notes::Memo memo = notes::ClearRecord(sitting.session, 0);
        memo.subject = "Roof";
        memo.body = "Ask for two offers.";
        EXPECT_EQ(notes::WriteRecord(sitting.session, memo), 0);
        sitting.Close();
        frame.emplace(frmMDI::Parts{sitting.session, Forms({}), {sitting.folder.Path() / "documents"}});
        watch.emplace(dynamic_cast<kit::GuardedApplication&>(*qApp), sitting.session, *frame, clipboard,
                      events, sitting.clock);
        sitting.prompter.Type(test::kPassphrase);
        frame->Start(sitting.file);
        frame->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&*frame));
        frame->optSection_Click(Section::Memo);
        QObject::connect(&*frame, &frmMDI::DatabaseClosed, [this] { ++closed; });
    }
    ~Locking() override { sitting.session.ending = true; }

    bool IsOpenAgain() {
        return test::LiveUntil([this] { return closed == 1 && sitting.session.DatabaseOpen; });
    }
    static void PressLock(QWidget& window) {
        QTest::keyClick(window.windowHandle(), Qt::Key_L, Qt::ControlModifier);
    }

    test::Sitting sitting;
    kit::ClipboardGuard clipboard;
    kit::SessionEvents events;
    std::optional<frmMDI> frame;
    std::optional<Watch> watch;
    test::Visitor visitor;
    int closed = 0;
};

TEST_F(Locking, AsksForThePassphraseOfTheSameFile) {
    sitting.prompter.onSecret = [this] {
        EXPECT_FALSE(sitting.session.DatabaseOpen);
        EXPECT_TRUE(sitting.session.cipher.Keystring.empty());
        EXPECT_EQ(frame->Form(), nullptr) << "nothing of it is shown behind the prompt";
    };
    sitting.prompter.Type(test::kPassphrase);
    PressLock(*frame);
    ASSERT_TRUE(IsOpenAgain());
    EXPECT_EQ(sitting.session.DatabasePath, sitting.file);
    EXPECT_FALSE(sitting.session.ending);
    sitting.prompter.onSecret = {};
    frame->optSection_Click(Section::Memo);
    EXPECT_NE(frame->Form(), nullptr) << "the program goes on";
    frame->CloseDatabase();
}

TEST_F(Locking, LeavesNoDatabaseOpenAfterACancel) {
    sitting.prompter.Type(std::nullopt);
    Named<QAction>(*frame, "mnuFileLock").trigger();
    ASSERT_TRUE(test::LiveUntil([this] { return sitting.prompter.secrets.empty(); }));
    EXPECT_EQ(Named<QLabel>(*frame, "status").text(), "   No database open");
    EXPECT_TRUE(sitting.session.DatabasePath.empty());
    EXPECT_FALSE(Named<QAction>(*frame, "mnuFileLock").isEnabled());
    PressLock(*frame);  // does nothing
    test::Live(30);
    EXPECT_EQ(closed, 1);
    ASSERT_EQ(frame->focusWidget()->objectName(), "cmdSplashUnlock") << "the way back is the first";
    sitting.prompter.Type(test::kPassphrase);
    QTest::keyClick(frame->focusWidget(), Qt::Key_Return);
    ASSERT_TRUE(sitting.session.DatabaseOpen);
    EXPECT_EQ(sitting.session.DatabasePath, sitting.file);
    Named<QAction>(*frame, "mnuFileCloseDB").trigger();
    EXPECT_EQ(frame->findChild<QWidget*>("cmdSplashUnlock"), nullptr) << "closed, not locked";
}

TEST_F(Locking, EndsTheProgramAfterThreeFailures) {
    int ended = 0;
    QObject::connect(&*frame, &frmMDI::Ended, [&ended] { ++ended; });
    for (int i = 1; i <= custody::kMostAttempts; ++i)
        sitting.prompter.Type("not the one")
            .Expect(85, i < custody::kMostAttempts ? Answer::Retry : Answer::Cancel);
    frame->LockNow();
    EXPECT_GT(ended, 0);
    EXPECT_EQ(sitting.prompter.pauses, custody::kMostAttempts);
}

TEST_F(Locking, GoesThroughEveryDialogAndKeepsWhatStoodThere) {
    visitor.Meet("frmEditNotepad", [](QWidget& editor) {
        Named<QPlainTextEdit>(editor, "ctlNote").setPlainText("Ask for three");
        QDialog over(&editor);
        over.setObjectName("dialogOverIt");
        EXPECT_EQ(over.exec(), QDialog::Rejected);
    });
    visitor.Meet("dialogOverIt", [](QWidget& over) { PressLock(over); });
    sitting.prompter.Type(test::kPassphrase).Expect(0, Answer::Yes);
    QTimer::singleShot(0, &*frame, [this] { Named<QAction>(*frame->Form(), "mnuMemoEdit").trigger(); });
    visitor.Meet("frmEditNotepad", [](QWidget& editor) {
        EXPECT_EQ(Named<QPlainTextEdit>(editor, "ctlNote").toPlainText(), "Ask for three");
        test::Click(editor, "cmdOK");
    });
    ASSERT_TRUE(IsOpenAgain());
    ASSERT_TRUE(test::LiveUntil([this] { return custody::LoadDrafts(sitting.session).empty(); }));
    const auto memos = notes::ListRecords(sitting.session, store::Category::All);
    ASSERT_TRUE(memos);
    EXPECT_EQ(notes::FetchRecord(sitting.session, memos->front())->body, "Ask for three");
    frame->CloseDatabase();
}

TEST_F(Locking, KeepsTheSubjectThatWasBegunAndTellsOfLostCategories) {
    sitting.prompter.onInput = [this] {
        kit::frmInputbox box("Memo", "Enter subject:", "Gutter");
        box.setModal(true);  // as the program shows it
        box.show();
        frame->LockNow();
    };
    sitting.prompter.inputs = {""};
    sitting.prompter.Type(test::kPassphrase).Expect(0, Answer::Yes);
    QTimer::singleShot(0, &*frame, [this] { Named<QAction>(*frame->Form(), "mnuMemoAdd").trigger(); });
    visitor.Meet("frmEditNotepad", [](QWidget& editor) {
        EXPECT_EQ(Named<QLineEdit>(editor, "ctlSubject").text(), "Gutter");
        test::Click(editor, "cmdOK");
    });
    ASSERT_TRUE(IsOpenAgain());
    ASSERT_TRUE(test::LiveUntil([this] { return custody::LoadDrafts(sitting.session).empty(); }));

    closed = 0;
    visitor.Meet("frmEditCategories", [](QWidget& form) {
        dynamic_cast<kit::frmEditCategories&>(form).CategoriesChanged = true;
        PressLock(form);
    });
    sitting.prompter.Expect(0, Answer::Ok).Type(test::kPassphrase);
    QTimer::singleShot(0, &*frame, [this] { test::Click(*frame, "cmdEditCat"); });
    ASSERT_TRUE(IsOpenAgain());
    EXPECT_EQ(sitting.prompter.shown.back().text, "Changes of categories that were not saved are lost.");
    frame->CloseDatabase();
}

TEST_F(Locking, GoesThroughADialogThatHoldsTheFile) {
    visitor.Meet("frmOptions", [this](QWidget& form) {
        PressLock(form);
        QCoreApplication::processEvents();
        EXPECT_TRUE(sitting.session.DatabaseOpen) << "the code behind the dialog still works on it";
    });
    sitting.prompter.Type(test::kPassphrase);
    QTimer::singleShot(0, &*frame, [this] { Named<QAction>(*frame, "mnuToolsPreferences").trigger(); });
    ASSERT_TRUE(IsOpenAgain());
    frame->CloseDatabase();
}

TEST_F(Locking, AnIdleEndOnTheWayEndsTheProgram) {
    visitor.Meet("frmEditNotepad", [this](QWidget&) {
        frame->LockNow();
        watch->Idle().End();
    });
    QTimer::singleShot(0, &*frame, [this] { Named<QAction>(*frame->Form(), "mnuMemoEdit").trigger(); });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    test::Live(30);
    EXPECT_TRUE(sitting.session.ending);
    EXPECT_EQ(sitting.prompter.requests.size(), 2U) << "made and opened; nothing was asked since";
}

}  // namespace
}  // namespace bmr::app
