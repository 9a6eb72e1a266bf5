#include <QMenu>
#include <QWindow>
#include <algorithm>
#include <random>

#include "crypto/systemrandom.h"
#include "kit/frmPW.h"
#include "kit/guards.h"
#include "kit/keycapture.h"
#include "kit/secretedit.h"
#include "kit/x11/xclient.h"
#include "support/forms.h"
#include "support/guards.h"
#include "support/ports.h"

namespace bmr::kit {
namespace {

using namespace test;

struct PromptGuard : testing::Test {
    PromptGuard() : port(MakeKeyPort()), clip(*QApplication::clipboard(), random, clock) {}

    void Open(bool guarded = true) {
        prompt =
            std::make_unique<frmPW>(PassphraseRequest{"Database", "Passphrase", false, false, false}, boxes);
        if (guarded) guards.GuardPrompt(*prompt);
        prompt->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(prompt.get()));
        Live(250);  // one look of the capture: the window manager has settled
    }
    xcb_window_t Window() const { return static_cast<xcb_window_t>(prompt->winId()); }
    std::string Content() const { return std::string(prompt->InputBox()->Content()); }

    /// Runs `hands` while the program lives on, then waits until all has been worked off.
    void While(const std::function<void()>& hands) {
        std::atomic<bool> done = false;
        std::thread thread([&] {
            hands();
            done = true;
        });
        EXPECT_TRUE(LiveUntil([&] { return done.load(); }, 60000));
        thread.join();
        Live(100);
    }
    /// The key codes of what a typist would press for it.
    std::vector<std::uint8_t> Codes(const std::string& text) const {
        std::vector<std::uint8_t> codes;
        for (const char c : text)
            codes.push_back(typist.CodeOf(static_cast<xcb_keysym_t>(c)));
        return codes;
    }

    FixedClock clock;
    cry::SystemRandom random;
    ScriptedPrompter boxes;
    std::unique_ptr<KeyPort> port;
    ClipboardGuard clip;
    Guards guards{*port, random, clip};
    Typist typist;
    std::unique_ptr<frmPW> prompt;
};

bool Contains(const std::vector<std::uint8_t>& heard, const std::vector<std::uint8_t>& run) {
    return std::search(heard.begin(), heard.end(), run.begin(), run.end()) != heard.end();
}

/// Whether `part` stands in `heard` in order, with anything between.
bool IsMixedInto(const std::vector<std::uint8_t>& part, const std::vector<std::uint8_t>& heard) {
    auto at = heard.begin();
    for (const auto code : part) {
        at = std::find(at, heard.end(), code);
        if (at == heard.end()) return false;
        ++at;
    }
    return true;
}

TEST_F(PromptGuard, ANeighbourThatListensAtTheWindowHearsNothing) {
    EXPECT_NE(port->Describe().find("X11"), std::string::npos);
    Open(false);
    {
        WindowSnooper snooper(Window());
        While([&] { typist.Type("abc", 40); });
        EXPECT_EQ(snooper.Heard(), Codes("abc")) << "an unguarded window is an open book";
    }
    Open();
    WindowSnooper snooper(Window());
    While([&] { typist.Type("abcdef", 50); });
    EXPECT_EQ(Content(), "abcdef");
    EXPECT_TRUE(snooper.Heard().empty());

    // A menu takes the keyboard and drops it; the next look takes it back.
    QTimer::singleShot(100, prompt.get(), [] { QApplication::activePopupWidget()->close(); });
    QContextMenuEvent rightClick(QContextMenuEvent::Mouse, QPoint(5, 5),
                                 prompt->InputBox()->mapToGlobal(QPoint(5, 5)));
    QCoreApplication::sendEvent(prompt->InputBox(), &rightClick);
    Live(2 * KeyCapture::kTick);
    snooper.Forget();
    While([&] { typist.Type("gh", 50); });
    EXPECT_EQ(Content(), "abcdefgh");
    EXPECT_TRUE(snooper.Heard().empty());
}

TEST_F(PromptGuard, RawListenersGetTheTextOnlyAmongDecoys) {
    const std::string secret = "brindlemere pass 42";
    Open();
    Recorder recorder;
    RawListener raw;
    KeymapPoller poller;
    While([&] { typist.Type(secret, 60); });
    EXPECT_EQ(Content(), secret);
    const auto typed = Codes(secret);
    for (Listener* listener : {static_cast<Listener*>(&recorder), static_cast<Listener*>(&raw)}) {
        const auto heard = listener->Heard();
        EXPECT_TRUE(IsMixedInto(typed, heard)) << "the listener does not listen";
        EXPECT_GE(heard.size(), typed.size() * 3) << "at least two decoys for each key";
        for (std::size_t from = 0; from + 3 <= typed.size(); ++from)
            EXPECT_FALSE(Contains(heard, {typed.begin() + static_cast<long>(from),
                                          typed.begin() + static_cast<long>(from) + 3}))
                << "three keys of the passphrase in a row";
    }
    // Who polls sees the hands and hardly a decoy: told in the threat model, and true.
    EXPECT_FALSE(poller.Heard().empty());
}

/// The same hands for each seed, on whatever screen is free.
struct FastHands : PromptGuard, testing::WithParamInterface<unsigned> {};

TEST_P(FastHands, LoseNoKey) {
    Open();
    std::mt19937 engine(GetParam());
    std::string typed;
    While([&] {
        for (int i = 0; i < 40; ++i) {
            char c = static_cast<char>('a' + engine() % 26);
            if (engine() % 4 == 0) c = static_cast<char>(c - 32);
            typed += c;
            typist.Tap(c, 3 + static_cast<int>(engine() % 12));
            // Up to half a hundred keys a second, 20 in the mean.
            std::this_thread::sleep_for(std::chrono::milliseconds(5 + engine() % 75));
        }
        typist.Sync();
    });
    EXPECT_TRUE(LiveUntil([&] { return Content().size() >= typed.size(); }));
    EXPECT_EQ(Content(), typed);
}
INSTANTIATE_TEST_SUITE_P(Seeds, FastHands, testing::Range(1U, 6U));

TEST_F(PromptGuard, HeldShiftAndKeysThatOverlapComeThrough) {
    Open();
    While([&] {
        typist.Press(kKeyShift, true);
        for (const char c : {'a', 'b', 'c', 'd'})
            typist.Tap(c, 30);
        typist.Press(kKeyShift, false);
        typist.Press('x', true);
        std::this_thread::sleep_for(std::chrono::milliseconds(40));
        typist.Press('y', true);
        std::this_thread::sleep_for(std::chrono::milliseconds(40));
        typist.Press('x', false);
        typist.Press('z', true);
        typist.Press('y', false);
        typist.Press('z', false);
        typist.Sync();
    });
    EXPECT_EQ(Content(), "ABCDxyz");
}

TEST_F(PromptGuard, AnAccentBegunInABurstFindsItsLetter) {
    constexpr xcb_keysym_t kDeadAcute = 0xFE51;
    const std::uint8_t code = typist.CodeOf('`');
    std::array<xcb_keysym_t, 2> keysyms{kDeadAcute, kDeadAcute};
    xcb_change_keyboard_mapping(typist.connection(), 1, code, 2, keysyms.data());
    typist.Sync();
    Live(300);
    Open();
    std::string expected;
    While([&] {
        for (int i = 0; i < 12; ++i) {
            typist.Tap('x', 1);
            std::this_thread::sleep_for(std::chrono::milliseconds(i % 4));
            typist.Press(kDeadAcute, true);
            typist.Press(kDeadAcute, false);
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
            typist.Tap('e', 1);
            std::this_thread::sleep_for(std::chrono::milliseconds(60));
            expected += "x\xE9";
        }
        typist.Sync();
    });
    EXPECT_TRUE(LiveUntil([&] { return Content().size() >= expected.size(); }));
    EXPECT_EQ(Content(), expected);
    keysyms = {'`', '~'};
    xcb_change_keyboard_mapping(typist.connection(), 1, code, 2, keysyms.data());
    typist.Sync();
}

TEST_F(PromptGuard, AWindowThatStealsTheFocusInABurstReceivesNothing) {
    Open();
    FocusThief thief;
    Recorder recorder;
    std::mt19937 engine(11);
    int stolen = 0;
    for (int round = 0; round < 40; ++round) {
        emit prompt->NoiseWanted();
        Live(static_cast<int>(engine() % 4));
        thief.Steal();
        stolen += LiveUntil([&] { return !prompt->isActiveWindow(); }, 500) ? 1 : 0;
        Live(5);
        thief.GiveTo(Window());
        ASSERT_TRUE(LiveUntil([&] { return prompt->isActiveWindow(); }, 2000));
    }
    EXPECT_EQ(stolen, 40);
    EXPECT_GT(recorder.Heard().size(), 40U) << "there were no decoys to steal";
    EXPECT_TRUE(thief.Heard().empty());

    // The thief can hear: what is typed while it has the focus is its own.
    thief.Steal();
    ASSERT_TRUE(LiveUntil([&] { return !prompt->isActiveWindow(); }));
    Live(2 * KeyCapture::kTick);
    While([&] { typist.Type("no", 30); });
    EXPECT_EQ(thief.Heard(), Codes("no"));
    EXPECT_EQ(Content(), "");
}

TEST_F(PromptGuard, TheUserCanChangeWindowsByKeyboard) {
    QWidget other;
    other.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    Open();
    While([&] {
        typist.Press(kKeyAlt, true);
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        typist.Press(kKeyTab, true);
        typist.Press(kKeyTab, false);
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        typist.Press(kKeyAlt, false);
        typist.Sync();
    });
    EXPECT_TRUE(LiveUntil([&] { return !prompt->isActiveWindow(); }, 3000));
}

TEST_F(PromptGuard, FiveBurstsFollowTheReturnKeyAndThePromptGoes) {
    Open();
    While([&] { typist.Type("ab", 60); });
    Recorder recorder;
    Live(20);
    const QPoint before = prompt->pos();
    While([&] {
        typist.Press(kKeyReturn, true);
        typist.Press(kKeyReturn, false);
    });
    EXPECT_TRUE(LiveUntil([&] { return !prompt->isVisible(); }, 2000));
    EXPECT_GE(recorder.Heard().size(), 11U);  // Return, and two keys or more in each burst
    EXPECT_EQ(prompt->TakeTypedSecret().view(), "ab");
    EXPECT_EQ(prompt->pos(), before);
}

}  // namespace
}  // namespace bmr::kit
