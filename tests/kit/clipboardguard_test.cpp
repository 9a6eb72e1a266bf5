#include "kit/clipboardguard.h"

#include <QLineEdit>
#include <QSignalSpy>
#include <algorithm>
#include <functional>

#include "support/forms.h"
#include "support/ports.h"
#include "support/random.h"

namespace bmr::kit {
namespace {

struct Clip : testing::Test {
    test::FixedClock clock;
    test::SeededRandom random;
    QClipboard& clipboard = *QApplication::clipboard();
    ClipboardGuard guard{clipboard, random, clock};
};

TEST_F(Clip, CountsDownFromTheLastCopyAndThenTheClipboardIsEmpty) {
    QSignalSpy countdown(&guard, &ClipboardGuard::Countdown);
    guard.Copy("s\u00E9cret");
    EXPECT_EQ(clipboard.text(), "s\u00E9cret");
    EXPECT_EQ(clipboard.mimeData()->data("x-kde-passwordManagerHint"), "secret");
    EXPECT_EQ(countdown.last()[0].toInt(), 30);
    clock.monotonic = 29'000;
    EXPECT_EQ(guard.SecondsLeft(), 1);
    guard.Copy("again");
    EXPECT_EQ(guard.SecondsLeft(), 30);

    std::vector<QString> seen;
    QObject::connect(&clipboard, &QClipboard::dataChanged, &guard, [&] { seen.push_back(clipboard.text()); });
    guard.ClearClipboard();
    EXPECT_EQ(clipboard.text(), "");
    EXPECT_EQ(countdown.last()[0].toInt(), -1);
    EXPECT_EQ(guard.SecondsLeft(), -1);
    ASSERT_FALSE(seen.empty());
    EXPECT_FALSE(seen.front().isEmpty()) << "overwritten before it is dropped";
    EXPECT_NE(seen.front(), "again");
    EXPECT_EQ(seen.back(), "");
}

/// Lets a test look in the moment before the clipboard is overwritten.
struct WatchedRandom final : RandomSource {
    void Fill(std::span<std::uint8_t> out) override {
        drawn = out.size();
        if (atFill) atFill();
        std::ranges::fill(out, std::uint8_t{'#'});
    }
    double Uniform() override { return 0; }
    std::function<void()> atFill;
    std::size_t drawn = 0;
};

TEST(ClipboardGuard, WipesOurSecretWhereItLiesBeforeItTriesTheRest) {
    test::FixedClock clock;
    WatchedRandom random;
    QClipboard& clipboard = *QApplication::clipboard();
    ClipboardGuard guard(clipboard, random, clock);
    guard.Copy("pass word");
    bool looked = false;
    random.atFill = [&] {
        looked = true;
        ASSERT_TRUE(qobject_cast<const SecretMime*>(clipboard.mimeData()))
            << "nothing has overwritten it yet";
        EXPECT_EQ(clipboard.text(), "") << "a platform that refuses the rest has nothing to paste";
    };
    guard.ClearClipboard();
    EXPECT_TRUE(looked);
    EXPECT_EQ(random.drawn, 9U) << "as long as the secret was";
}

TEST_F(Clip, ForeignTextGoesOnlyWhenTheUserWantsIt) {
    clipboard.setText("foreign");
    guard.alsoForeign = false;
    guard.ClearClipboard();
    EXPECT_EQ(clipboard.text(), "foreign");
    guard.alsoForeign = true;
    guard.ClearClipboard();
    EXPECT_EQ(clipboard.text(), "");
}

TEST(SecretMime, AWipedTextPastesAsNothing) {
    SecretMime mime("pass");
    EXPECT_EQ(mime.text(), "pass");
    EXPECT_EQ(mime.Length(), 4);
    EXPECT_EQ(mime.data("text/plain;charset=utf-8"), "pass");
    mime.Wipe();
    EXPECT_EQ(mime.text(), "");
    EXPECT_EQ(mime.data("text/plain;charset=utf-8"), "");
}

}  // namespace
}  // namespace bmr::kit
