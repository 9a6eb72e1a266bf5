#include "shell/timeout.h"

#include <algorithm>
#include <cstdio>

namespace bmr::shell {

std::int16_t IdleLimitFrom(std::int32_t minutes) {
    if (minutes < 0) return kStandardIdle;
    return static_cast<std::int16_t>(std::min(minutes, kHighestIdle));
}

void TimeOut::StartActivityHooks() {
    hooked_ = true;
    LastActivity = clock_.MonotonicMs();
}

std::int64_t TimeOut::IdleMilliseconds() {
    const std::int64_t now = clock_.MonotonicMs();
    if (ActivityPending) {
        LastActivity = now;
        ActivityPending = false;
    }
    return now - LastActivity;
}

TimeOut::Tick TimeOut::TimerTimeout() {
    if (IdleLimit <= 0) return {};
    const std::int64_t idle = IdleMilliseconds();
    const std::int64_t limit = std::int64_t{IdleLimit} * 60;
    return {CountdownText(limit - idle / 1000), idle >= limit * 1000};
}

std::string CountdownText(std::int64_t seconds) {
    const long long left = std::max<std::int64_t>(seconds, 0);
    char text[32];
    std::snprintf(text, sizeof text, "%02lld:%02lld", left / 60, left % 60);
    return text;
}

std::int64_t ClipboardTimer::Remaining() const {
    if (!running_) return 0;
    return std::clamp<std::int64_t>(kInterval - (clock_.MonotonicMs() - startedAt_), 0, kInterval);
}

}  // namespace bmr::shell
