#include "shell/timeout.h"

#include <gtest/gtest.h>

#include "support/ports.h"

namespace bmr::shell {
namespace {

TEST(TimeOut, RunsDownFromTheLimitAndEndsOnTheMillisecond) {
    test::FixedClock clock;
    clock.monotonic = 1'000'000;
    TimeOut timeOut(clock);
    timeOut.StartActivityHooks();
    EXPECT_EQ(timeOut.TimerTimeout().panel, "05:00");
    clock.monotonic += 999;
    EXPECT_EQ(timeOut.TimerTimeout().panel, "05:00");
    clock.monotonic += 60'001;
    EXPECT_EQ(timeOut.TimerTimeout().panel, "03:59");
    clock.monotonic = 1'000'000 + 299'999;
    auto tick = timeOut.TimerTimeout();
    EXPECT_EQ(tick.panel, "00:01");
    EXPECT_FALSE(tick.expired);
    clock.monotonic += 1;
    EXPECT_TRUE(timeOut.TimerTimeout().expired);
    clock.monotonic += 3'600'000;  // a machine that slept
    tick = timeOut.TimerTimeout();
    EXPECT_TRUE(tick.expired);
    EXPECT_EQ(tick.panel, "00:00");
}

TEST(TimeOut, ActivitySetsTheCountBack) {
    test::FixedClock clock;
    TimeOut timeOut(clock);
    timeOut.Activity();
    clock.monotonic = 10'000;
    timeOut.Activity();  // no hooks yet: does not count
    EXPECT_EQ(timeOut.IdleMilliseconds(), 10'000);
    timeOut.StartActivityHooks();
    clock.monotonic = 290'000;
    timeOut.Activity();
    EXPECT_EQ(timeOut.TimerTimeout().panel, "05:00");

    clock.monotonic = 400'000;
    timeOut.ActivityPending = true;
    EXPECT_EQ(timeOut.IdleMilliseconds(), 0);
    clock.monotonic = 410'000;
    EXPECT_EQ(timeOut.IdleMilliseconds(), 10'000) << "a pending activity counts once";
    timeOut.StopActivityHooks();
    timeOut.Activity();
    EXPECT_EQ(timeOut.IdleMilliseconds(), 10'000);
}

TEST(TimeOut, LimitZeroNeverEndsAndSaysNothing) {
    test::FixedClock clock;
    TimeOut timeOut(clock);
    timeOut.StartActivityHooks();
    timeOut.IdleLimit = 0;
    clock.monotonic = 100LL * 24 * 3'600'000;
    const auto tick = timeOut.TimerTimeout();
    EXPECT_FALSE(tick.panel);
    EXPECT_FALSE(tick.expired);

    EXPECT_EQ(IdleLimitFrom(0), 0);
    EXPECT_EQ(IdleLimitFrom(15), 15);
    EXPECT_EQ(IdleLimitFrom(16), 15);
    EXPECT_EQ(IdleLimitFrom(-1), 5);
}

TEST(ClipboardTimer, IsOnFromTheStartAndStopsAfterItsTick) {
    test::FixedClock clock;
    ClipboardTimer timer(clock);
    EXPECT_TRUE(timer.Running());
    EXPECT_EQ(timer.Remaining(), 30'000);
    clock.monotonic = 29'999;
    EXPECT_FALSE(timer.Due());
    timer.RestartClipboardTimer();
    clock.monotonic = 59'998;
    EXPECT_FALSE(timer.Due());
    clock.monotonic = 59'999;
    EXPECT_TRUE(timer.Due());
    timer.Stop();
    EXPECT_FALSE(timer.Due());
    EXPECT_FALSE(timer.Running());
}

}  // namespace
}  // namespace bmr::shell
