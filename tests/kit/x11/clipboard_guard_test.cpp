#include <QAction>
#include <QContextMenuEvent>
#include <QElapsedTimer>
#include <QLineEdit>
#include <future>

#include "kit/clipboardguard.h"
#include "kit/fieldmenu.h"
#include "kit/x11/xclient.h"
#include "support/forms.h"
#include "support/guards.h"
#include "support/ports.h"
#include "support/random.h"

namespace bmr::kit {
namespace {

using namespace test;

struct ClipboardLife : testing::Test {
    std::optional<std::string> Paste(const std::string& selection,
                                     const std::string& target = "UTF8_STRING") {
        auto pasted = std::async(std::launch::async, [&] { return other.Read(selection, target); });
        // The owner answers from the event loop.
        EXPECT_TRUE(LiveUntil(
            [&] { return pasted.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }, 5000));
        return pasted.get();
    }

    FixedClock clock;
    SeededRandom random;
    ClipboardClient other;
    ClipboardGuard guard{*QApplication::clipboard(), random, clock};
};

TEST_F(ClipboardLife, WhatAFieldCopiesCanBePastedOnceAndIsGoneAfterTheTick) {
    GuardedDialog dialog;
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    dialog.txtInput->setText("s3cret");
    dialog.txtInput->selectAll();
    QTest::keyClick(dialog.txtInput, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(guard.SecondsLeft(), 30) << "the field's own copying arms the guard";
    EXPECT_EQ(Paste("CLIPBOARD"), "s3cret");
    EXPECT_EQ(Paste("CLIPBOARD", "x-kde-passwordManagerHint"), "secret");

    guard.ClearClipboard();
    Live(50);
    EXPECT_FALSE(other.HasOwner("CLIPBOARD"));
    EXPECT_FALSE(other.HasOwner("PRIMARY"));
    EXPECT_EQ(Paste("CLIPBOARD"), std::nullopt);
}

TEST_F(ClipboardLife, WhatTheMenuOfAFieldCopiesIsGuardedToo) {
    GuardedDialog dialog;
    GiveFieldMenu(*dialog.txtInput);
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    dialog.txtInput->setText("s3 cret");
    dialog.txtInput->selectAll();
    guard.ClearClipboard();
    QTimer::singleShot(50, [] {
        auto* menu = QApplication::activePopupWidget();
        ASSERT_TRUE(menu);
        Named<QAction>(*menu, "mnuCopyNoSpaces").trigger();
        menu->close();
    });
    QContextMenuEvent click(QContextMenuEvent::Mouse, QPoint(3, 3), dialog.mapToGlobal(QPoint(3, 3)));
    QCoreApplication::sendEvent(dialog.txtInput, &click);
    EXPECT_EQ(guard.SecondsLeft(), 30);
    EXPECT_EQ(Paste("CLIPBOARD"), "s3cret");
    guard.ClearClipboard();
    EXPECT_EQ(Paste("CLIPBOARD"), std::nullopt);
}

TEST_F(ClipboardLife, TextSelectedInAGuardedDialogIsOfferedToNobody) {
    GuardedDialog dialog;
    dialog.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    dialog.txtInput->setText("s3cret");
    const auto select = [&] {
        QTest::mouseDClick(dialog.txtInput, Qt::LeftButton, {}, QPoint(20, 10));
        QTest::mouseRelease(dialog.txtInput, Qt::LeftButton, {}, QPoint(20, 10));
    };
    select();
    EXPECT_EQ(dialog.txtInput->selectedText(), "s3cret");
    EXPECT_EQ(Paste("PRIMARY"), "s3cret") << "the test selects as a hand does";
    EXPECT_EQ(guard.SecondsLeft(), 30);

    guard.ClearClipboard();
    EXPECT_FALSE(other.HasOwner("PRIMARY"));
    dialog.txtInput->deselect();
    ClipboardGuard::GuardSelectionIn(dialog);
    select();
    EXPECT_EQ(dialog.txtInput->selectedText(), "s3cret");
    Live(50);
    EXPECT_FALSE(other.HasOwner("PRIMARY"));
}

TEST_F(ClipboardLife, AForeignOwnerThatHangsHoldsUpNothing) {
    other.OwnAndHang("CLIPBOARD");
    Live(50);
    guard.alsoForeign = false;
    guard.ClearClipboard();
    EXPECT_TRUE(other.HasOwner("CLIPBOARD"));
    guard.alsoForeign = true;
    QElapsedTimer time;
    time.start();
    guard.ClearClipboard();
    Live(50);
    EXPECT_LT(time.elapsed(), 1000);
    EXPECT_FALSE(other.HasOwner("CLIPBOARD"));
}

TEST_F(ClipboardLife, OnlyWhatMayBeTextIsTakenFromOthers) {
    struct Case {
        const char* kind;
        bool stays;
    };
    for (const Case c : {Case{"image/png", true}, Case{"UTF8_STRING", false}}) {
        ClipboardClient owner;
        owner.OwnAndOffer(c.kind);
        Live(100);
        guard.ClearClipboard();
        Live(50);
        EXPECT_EQ(other.HasOwner("CLIPBOARD"), c.stays) << c.kind;
    }
}

}  // namespace
}  // namespace bmr::kit
