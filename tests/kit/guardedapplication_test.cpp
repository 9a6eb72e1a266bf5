#include "kit/guardedapplication.h"

#include <QtTest/qtestspontaneevent.h>
#include <QAccessible>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QWheelEvent>
#include <QWindow>

#include "kit/keycapture.h"
#include "support/forms.h"
#include "support/guards.h"

namespace bmr::kit {
namespace {

/// Stands where the bridge to the accessibility bus stands: behind `notify`, before all receivers.
struct Listener final : QObject {
    Listener() { qApp->installEventFilter(this); }
    ~Listener() override { qApp->removeEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->spontaneous() &&
            (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease))
            heard += static_cast<QKeyEvent*>(event)->text();
        return false;
    }
    QString heard;
};

GuardedApplication& App() {
    return dynamic_cast<GuardedApplication&>(*qApp);
}

TEST(GuardedApplication, TypingInAGuardedDialogIsHeardByNobodyElse) {
    test::FakeKeyPort port;
    test::GuardedDialog dialog;
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    Listener listener;
    QTest::keyClick(dialog.windowHandle(), Qt::Key_A);
    EXPECT_FALSE(listener.heard.isEmpty()) << "without a guard the listener hears";
    const KeyCapture capture(port, dialog);
    listener.heard.clear();
    for (const char key : {'S', 'e', '1', '?', ' '})
        QTest::keyClick(dialog.windowHandle(), key);
    EXPECT_EQ(dialog.txtInput->text(), "aSe1? ");
    EXPECT_EQ(listener.heard, "");

    QTest::keyClick(dialog.windowHandle(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(dialog.txtInput->selectedText(), "aSe1? ") << "commands work and insert nothing";
    QTest::keyClick(dialog.windowHandle(), Qt::Key_Backspace);
    EXPECT_EQ(dialog.txtInput->text(), "");
}

TEST(GuardedApplication, CountsWhatHandsDoAndNothingElse) {
    test::GuardedDialog dialog;
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    int seen = 0;
    App().SetOnActivity([&seen] { ++seen; });
    QTest::keyClick(dialog.windowHandle(), Qt::Key_A);
    EXPECT_EQ(seen, 2);
    GuardedApplication::SetGuarded(*dialog.windowHandle());
    QTest::keyClick(dialog.windowHandle(), Qt::Key_A);
    EXPECT_EQ(seen, 4) << "typing that is taken counts too";
    QTest::mouseMove(dialog.windowHandle(), QPoint(5, 5));
    QTest::mouseClick(dialog.windowHandle(), Qt::LeftButton, {}, QPoint(5, 5));
    QTest::qWait(0);
    EXPECT_GE(seen, 7);
    int before = seen;
    QWheelEvent wheel({5, 5}, {5, 5}, {}, {0, 120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&wheel);
    App().notify(dialog.windowHandle(), &wheel);
    EXPECT_GT(seen, before) << "who reads a long text turns nothing but the wheel";
    before = seen;
    QCoreApplication::postEvent(dialog.txtInput, new QKeyEvent(QEvent::KeyPress, Qt::Key_A, {}, "a"));
    dialog.update();
    QTest::qWait(20);
    EXPECT_EQ(seen, before);
    App().SetOnActivity({});
}

TEST(GuardedApplication, MaskedTextIsNotAnnounced) {
    QLineEdit edit;
    QAccessibleTextInsertEvent inserted(&edit, 0, "x");
    QAccessibleValueChangeEvent value(&edit, "x");
    QAccessibleEvent focus(&edit, QAccessible::Focus);
    EXPECT_FALSE(TellsMaskedText(inserted));
    edit.setEchoMode(QLineEdit::Password);
    EXPECT_TRUE(TellsMaskedText(inserted));
    EXPECT_TRUE(TellsMaskedText(value));
    EXPECT_FALSE(TellsMaskedText(focus));
    edit.setEchoMode(QLineEdit::NoEcho);
    EXPECT_TRUE(TellsMaskedText(inserted));
}

TEST(KeyCapture, LivesWhileTheDialogIsInFrontAndLetsCommandsOut) {
    test::FakeKeyPort port;
    test::GuardedDialog dialog;
    const KeyCapture capture(port, dialog);
    EXPECT_FALSE(port.grabbed);
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    EXPECT_TRUE(port.grabbed);

    QTest::keyPress(dialog.windowHandle(), Qt::Key_Alt, Qt::AltModifier);
    EXPECT_FALSE(port.grabbed) << "the user must be able to change windows";
    QTest::keyRelease(dialog.windowHandle(), Qt::Key_Alt);
    EXPECT_TRUE(port.grabbed);

    port.grabbed = false;  // what a pop-up does
    EXPECT_TRUE(QTest::qWaitFor([&] { return port.grabbed; }, 3 * KeyCapture::kTick));

    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    EXPECT_FALSE(port.grabbed);
    QTest::qWait(2 * KeyCapture::kTick);
    EXPECT_FALSE(port.grabbed);
    other.hide();
    dialog.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    EXPECT_TRUE(port.grabbed);
    dialog.hide();
    EXPECT_FALSE(port.grabbed);
}

}  // namespace
}  // namespace bmr::kit
