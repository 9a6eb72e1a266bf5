#include "app/watch.h"

#include <QClipboard>
#include <QLabel>

#include "custody/openfailure.h"
#include "store/startvariables.h"
#include "support/failing_disk.h"
#include "support/forms.h"
#include "support/sitting.h"

namespace bmr::app {
namespace {

struct WatchTest : testing::Test {
    WatchTest()
        : frame({sitting.session, {}, {sitting.folder.Path() / "documents"}}),
          clipboard(*QApplication::clipboard(), sitting.random, sitting.clock),
          watch(dynamic_cast<kit::GuardedApplication&>(*qApp), sitting.session, frame, clipboard, events,
                sitting.clock) {}
    ~WatchTest() override { sitting.session.ending = true; }

    void Start(std::int16_t idle = 5) {
        sitting.Make();
        sitting.session.settings.Idle = idle;
        sitting.Close();
        sitting.prompter.Type(test::kPassphrase);
        frame.Start(sitting.file);
        ASSERT_TRUE(sitting.session.DatabaseOpen);
        frame.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&frame));
    }
    QString Text(const char* label) { return test::Named<QLabel>(frame, label).text(); }

    test::Sitting sitting;
    frmMDI frame;
    kit::ClipboardGuard clipboard;
    kit::SessionEvents events;
    Watch watch;
};

TEST_F(WatchTest, EndsAtTheLimitThroughAnOpenEditorWithNothingStored) {
    Start();
    clipboard.Copy("secret");
    int unwound = 0;
    QTimer::singleShot(0, &frame, [&] {
        QDialog editor(&frame);
        QTimer::singleShot(0, &editor, [&] {
            watch.Idle().timerTimeout_Tick();
            EXPECT_EQ(Text("autoshutoff"), "closes in 05:00");
            sitting.clock.monotonic += 299'999;
            watch.Idle().timerTimeout_Tick();
            EXPECT_EQ(Text("autoshutoff"), "closes in 00:01");
            EXPECT_TRUE(sitting.session.DatabaseOpen);

            sitting.clock.monotonic += 1;
            watch.Idle().timerTimeout_Tick();
            EXPECT_EQ(unwound, 0);
            EXPECT_FALSE(sitting.session.DatabaseOpen) << "closed before the dialogs go";
            EXPECT_TRUE(sitting.session.cipher.Keystring.empty());
            EXPECT_TRUE(sitting.session.ending);
            EXPECT_EQ(QApplication::clipboard()->text(), "");
        });
        EXPECT_NE(editor.exec(), QDialog::Accepted);
        ++unwound;
    });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_EQ(unwound, 1);
}

TEST_F(WatchTest, TouchingTheWindowSetsTheCountBackAndTheSettingRules) {
    Start(1);
    sitting.clock.monotonic += 50'000;
    watch.Idle().timerTimeout_Tick();
    EXPECT_EQ(Text("autoshutoff"), "closes in 00:10");
    QTest::keyClick(frame.windowHandle(), Qt::Key_Down);
    sitting.clock.monotonic += 59'999;
    watch.Idle().timerTimeout_Tick();
    EXPECT_TRUE(sitting.session.DatabaseOpen);

    sitting.clock.monotonic += 1;
    QTimer::singleShot(0, &frame, [this] { watch.Idle().timerTimeout_Tick(); });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_FALSE(sitting.session.DatabaseOpen);
}

TEST_F(WatchTest, LimitZeroNeverEnds) {
    Start(0);
    EXPECT_EQ(Text("autoshutoff"), "");
    for (int i = 0; i < 2; ++i) {
        sitting.clock.monotonic += 24 * 3'600'000;
        watch.Idle().timerTimeout_Tick();
        EXPECT_FALSE(sitting.session.ending);
        EXPECT_EQ(Text("autoshutoff"), "");
        frame.CloseDatabase();
    }
}

TEST_F(WatchTest, StoredPreferencesRuleAtOnce) {
    Start(0);
    EXPECT_TRUE(clipboard.alsoForeign);
    sitting.session.settings.Idle = 2;
    sitting.registry.values["Guards/ClearForeign"] = "0";
    emit frame.PreferencesStored();
    EXPECT_FALSE(clipboard.alsoForeign);
    watch.Idle().timerTimeout_Tick();
    EXPECT_EQ(Text("autoshutoff"), "closes in 02:00");
}

TEST_F(WatchTest, SleepEndsTheProgram) {
    Start(0);
    QTimer::singleShot(0, &frame, [this] { emit events.Suspending(); });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_FALSE(sitting.session.DatabaseOpen);
    EXPECT_TRUE(sitting.session.cipher.Keystring.empty());
}

TEST_F(WatchTest, TheLockEndsTheProgramThroughAnOpenDialog) {
    Start(0);
    QTimer::singleShot(0, &frame, [this] {
        QDialog editor(&frame);
        QTimer::singleShot(0, &editor, [this] { emit events.Locked(); });
        EXPECT_NE(editor.exec(), QDialog::Accepted);
    });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_FALSE(sitting.session.DatabaseOpen);
}

TEST_F(WatchTest, AStoreBehindWhichTheDiskFailedIsToldSoonAndOnce) {
    Start(0);
    for (int call = 1; sitting.prompter.shown.empty() && call < 50; ++call) {
        sitting.session.settings.Idle = static_cast<std::int16_t>(call);
        int error = 0;
        {
            const test::FailingDisk disk(call);
            error = store::WriteSettings(sitting.session);
            if (!test::FailingDisk::Failed()) break;
        }
        if (error != 0) continue;
        sitting.prompter.Expect(0);
        EXPECT_TRUE(QTest::qWaitFor([this] { return !sitting.prompter.shown.empty(); }));
    }
    ASSERT_EQ(sitting.prompter.shown.size(), 1U) << "the last sync failed behind the end";
    EXPECT_EQ(sitting.prompter.shown[0].text, custody::kStoredInDoubt);
    QTest::qWait(1200);
    EXPECT_EQ(sitting.prompter.shown.size(), 1U);
}

TEST_F(WatchTest, TheStatusBarCountsForTheClipboardAndClosingEmptiesIt) {
    Start();
    const auto& label = test::Named<QLabel>(frame, "clipboard");
    EXPECT_FALSE(label.isVisible());
    clipboard.Copy("secret");
    EXPECT_TRUE(label.isVisible());
    EXPECT_TRUE(label.text().contains("30")) << label.text().toStdString();
    frame.CloseDatabase();
    EXPECT_FALSE(label.isVisible());
    EXPECT_EQ(QApplication::clipboard()->text(), "");
}

}  // namespace
}  // namespace bmr::app
