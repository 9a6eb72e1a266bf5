#include "kit/burst.h"

#include <QSignalSpy>

#include "support/forms.h"
#include "support/guards.h"
#include "support/random.h"

namespace bmr::kit {
namespace {

/// Sees the keys that reach a box before the sender's own filter does.
struct Watcher final : QObject {
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) ++paints;  // of the entry and of the box
        if (event->type() == QEvent::KeyPress) {
            ++presses;
            if (onPress) onPress();
        }
        return false;
    }
    int presses = 0;
    int paints = 0;
    std::function<void()> onPress;
};

struct Burst : testing::Test {
    void Open(KeyPort& keys) {
        dialog.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
        capture = new KeyCapture(keys, dialog);
        sender = new BurstSender(keys, *capture, random, *dialog.txtInput, *dialog.txtBurst);
        dialog.txtBurst->installEventFilter(&watcher);
    }
    void SendAndWait(int bursts = 1) {
        sender->SendNoise(bursts);
        ASSERT_TRUE(test::LiveUntil([this] { return !sender->Busy(); }));
        EXPECT_TRUE(dialog.txtBurst->text().isEmpty());
        EXPECT_FALSE(dialog.txtBurst->isEnabled());
    }
    /// A key of the user: it goes to the box that has the focus when it arrives.
    void Type(const QString& text, int key = Qt::Key_unknown, Qt::KeyboardModifiers held = {}) {
        QMetaObject::invokeMethod(
            &watcher,
            [=, this] {
                for (const auto type : {QEvent::ShortcutOverride, QEvent::KeyPress, QEvent::KeyRelease}) {
                    QKeyEvent event(type, key, held, 9999, 0, 0, text);
                    QCoreApplication::sendEvent(dialog.focusWidget(), &event);
                }
            },
            Qt::QueuedConnection);
    }

    test::FakeKeyPort fake;
    std::unique_ptr<KeyPort> post = MakePostKeyPort();
    test::SeededRandom random{3};
    Watcher watcher;
    test::GuardedDialog dialog;
    KeyCapture* capture = nullptr;
    BurstSender* sender = nullptr;
};

TEST_F(Burst, LeavesTextCaretAndSelectionAsTheyWere) {
    Open(*post);
    dialog.txtInput->setText("passphrase");
    dialog.txtInput->installEventFilter(&watcher);
    QApplication::setCursorFlashTime(0);
    struct Case {
        int start, length;
    };
    for (const Case c : {Case{2, 5}, Case{7, -5}, Case{4, 0}, Case{10, 0}}) {
        if (c.length)
            dialog.txtInput->setSelection(c.start, c.length);
        else
            dialog.txtInput->setCursorPosition(c.start);
        const int start = dialog.txtInput->selectionStart();
        const int caret = dialog.txtInput->cursorPosition();
        const QImage before = dialog.grab().toImage();
        test::Live(10);
        watcher.presses = watcher.paints = 0;
        watcher.onPress = [&] { EXPECT_EQ(watcher.paints, 0) << "the decoys can be seen"; };
        SendAndWait();
        EXPECT_EQ(dialog.grab().toImage(), before);
        EXPECT_GE(watcher.presses, 2);
        EXPECT_LE(watcher.presses, 18);  // 9 keys, each with a Shift
        EXPECT_EQ(dialog.txtInput->text(), "passphrase");
        EXPECT_EQ(dialog.txtInput->selectionStart(), start);
        EXPECT_EQ(dialog.txtInput->cursorPosition(), caret);
        EXPECT_TRUE(dialog.txtInput->hasFocus());
    }
}

TEST_F(Burst, KeysTypedMeanwhileArriveInOrderAfterwards) {
    Open(*post);
    QObject::connect(dialog.txtInput, &QLineEdit::textChanged, sender, [this] { sender->SendNoise(); });
    QSignalSpy returned(dialog.txtInput, &QLineEdit::returnPressed);
    QString typed;
    int left = 60;
    watcher.onPress = [&] {
        if (left == 0) return;
        const QChar c(u'a' + left % 26);
        --left;
        typed += c;
        Type(c);
        if (left == 0) Type("\r", Qt::Key_Return);
    };
    SendAndWait();
    EXPECT_EQ(left, 0);
    EXPECT_EQ(dialog.txtInput->text(), typed);
    EXPECT_EQ(returned.count(), 1);

    // A command acts on all that was typed before it.
    left = 1;
    dialog.txtInput->clear();
    watcher.onPress = [&] {
        if (std::exchange(left, 0) == 0) return;
        Type("x");
        Type("y");
        Type("", Qt::Key_A, Qt::ControlModifier);
    };
    SendAndWait();
    EXPECT_EQ(dialog.txtInput->selectedText(), "xy");
}

TEST_F(Burst, KeysThatAreDownOrMissingAreDrawnAnew) {
    for (unsigned scan = 'A'; scan <= 'X'; ++scan)
        fake.down.insert(scan);
    for (int key = '0'; key <= '9'; ++key)
        fake.missing.insert(key);
    Open(fake);
    SendAndWait(20);
    EXPECT_GT(fake.sent.size(), 80U);
    for (const auto& key : fake.sent)
        EXPECT_TRUE(key.scan == KeyPort::kShift ||
                    !(fake.down.count(key.scan) || (key.scan >= '0' && key.scan <= '9')));
}

TEST_F(Burst, OneFlushHoldsShiftAndKeyAndAHeldShiftServes) {
    Open(fake);
    SendAndWait(6);
    bool shifted = false;
    std::size_t from = 0;
    for (const std::size_t to : fake.flushes) {
        std::vector<std::pair<unsigned, bool>> keys;
        for (; from < to; ++from)
            keys.emplace_back(fake.sent[from].scan, fake.sent[from].down);
        const unsigned shift = KeyPort::kShift;
        ASSERT_TRUE(keys.size() == 2 || keys.size() == 4);
        const unsigned key = keys[keys.size() == 4 ? 1 : 0].first;
        std::vector<std::pair<unsigned, bool>> expected{{key, true}, {key, false}};
        if (keys.size() == 4) expected = {{shift, true}, {key, true}, {key, false}, {shift, false}};
        EXPECT_EQ(keys, expected);
        shifted |= keys.size() == 4;
    }
    EXPECT_TRUE(shifted);

    fake.sent.clear();
    fake.shiftHeld = true;
    SendAndWait(6);
    for (const auto& key : fake.sent)
        EXPECT_NE(key.scan, KeyPort::kShift + 0U);
}

TEST_F(Burst, NothingIsSentWithoutTheKeyboardOrIntoACommand) {
    fake.grants = false;
    Open(fake);
    SendAndWait(3);
    EXPECT_TRUE(fake.sent.empty());

    fake.grants = true;
    fake.looks = 0;
    fake.commandAfter = 1;
    SendAndWait(1);
    EXPECT_EQ(fake.flushes.size(), 1U) << "the burst ends where a command begins";
    EXPECT_TRUE(dialog.txtInput->hasFocus());
}

TEST_F(Burst, LostDecoysDoNotHoldUpTheRest) {
    fake.delivers = fake.fences = false;
    Open(fake);
    SendAndWait();
    EXPECT_GE(fake.flushes.size(), 2U);
    // A key of the user with the code of a lost decoy is the user's.
    QCoreApplication::postEvent(dialog.txtInput, new QKeyEvent(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier,
                                                               fake.sent.front().scan, 0, 0, "a"));
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(dialog.txtInput->text(), "a");
}

TEST_F(Burst, TheKeyboardIsKeptToTheEndOfABurstAndGivenBackThen) {
    Open(fake);
    EXPECT_TRUE(fake.grabbed);
    QWidget other;
    watcher.onPress = [&] {
        if (other.isVisible()) return;
        other.show();
        other.activateWindow();
    };
    SendAndWait(4);  // the port itself fails the test on a key without the grab
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    EXPECT_FALSE(dialog.isActiveWindow());
    EXPECT_FALSE(fake.grabbed);
    const std::size_t before = fake.sent.size();
    SendAndWait(2);
    EXPECT_EQ(fake.sent.size(), before) << "no decoys while another window is in front";
}

TEST_F(Burst, FiveBurstsBeforeTheFormGoes) {
    Open(fake);
    QObject::connect(dialog.txtInput, &QLineEdit::returnPressed, sender, [this] {
        sender->CloseAfterNoise([this] { dialog.hide(); });
        fake.sent.clear();
        fake.flushes.clear();
        random = test::SeededRandom(3);
    });
    QTest::keyClick(dialog.txtInput, Qt::Key_Return);
    EXPECT_TRUE(dialog.isVisible());
    ASSERT_TRUE(test::LiveUntil([this] { return !dialog.isVisible(); }));
    test::SeededRandom same(3);
    std::size_t keys = 0;
    for (int i = 0; i < 5; ++i)
        keys += static_cast<std::size_t>(shell::DrawBurst(same).count);
    EXPECT_EQ(fake.flushes.size(), keys);
    EXPECT_FALSE(fake.grabbed);
}

}  // namespace
}  // namespace bmr::kit
