#include "kit/idleguard.h"

#include <QSignalSpy>

#include "support/forms.h"
#include "support/ports.h"

namespace bmr::kit {
namespace {

struct Idle : testing::Test {
    Idle() { timeOut.StartActivityHooks(); }

    test::FixedClock clock;
    shell::TimeOut timeOut{clock};
    std::vector<std::string> steps;
    IdleGuard guard{timeOut,
                    clock,
                    {[this] { steps.push_back("ending"); }, [this] { steps.push_back("clipboard"); },
                     [this] { steps.push_back("close"); }}};
};

TEST_F(Idle, ShowsTheCountdownWhenItChanges) {
    QSignalSpy panel(&guard, &IdleGuard::Panel);
    guard.timerTimeout_Tick();
    guard.timerTimeout_Tick();
    clock.monotonic = 61'000;
    guard.timerTimeout_Tick();
    ASSERT_EQ(panel.count(), 2);
    EXPECT_EQ(panel[0][0].toString(), "05:00");
    EXPECT_EQ(panel[1][0].toString(), "03:59");
    timeOut.IdleLimit = 0;
    clock.monotonic = 900'000;
    guard.timerTimeout_Tick();
    EXPECT_EQ(panel.count(), 2);
    EXPECT_TRUE(steps.empty());
}

TEST_F(Idle, EndsThroughModalDialogsAndClosesBeforeTheLoopsUnwind) {
    int left = 0;
    QTimer::singleShot(0, qApp, [&] {
        QDialog editor;
        QTimer::singleShot(0, &editor, [&] {
            QMessageBox box(QMessageBox::Question, "t", "Store record?", QMessageBox::Yes | QMessageBox::No,
                            &editor);
            QTimer::singleShot(0, &box, [&] {
                clock.monotonic = 299'999;
                guard.timerTimeout_Tick();
                EXPECT_TRUE(steps.empty());
                clock.monotonic = 300'000;
                guard.timerTimeout_Tick();
                EXPECT_EQ(steps, (std::vector<std::string>{"ending", "clipboard", "close"}));
                EXPECT_EQ(left, 0);
            });
            EXPECT_NE(box.exec(), QMessageBox::Yes);
            ++left;
        });
        EXPECT_NE(editor.exec(), QDialog::Accepted);
        ++left;
    });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_EQ(left, 2);
    guard.End();
    EXPECT_EQ(steps.size(), 3U) << "it ends once";
}

TEST_F(Idle, ALoopThatDoesNotUnwindIsLeftTheHardWay) {
    int last = 0;
    guard.lastResort = [&last] { ++last; };
    QTimer::singleShot(0, qApp, [this] { guard.End(); });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    clock.monotonic = 1'999;
    guard.timerTimeout_Tick();
    EXPECT_EQ(last, 0);
    clock.monotonic = 2'000;
    guard.timerTimeout_Tick();
    EXPECT_EQ(last, 1);
}

}  // namespace
}  // namespace bmr::kit
