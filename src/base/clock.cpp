#include "base/clock.h"

#include <chrono>
#include <ctime>

namespace bmr {

DateValue SystemClock::Now() const {
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    std::tm local{};
#ifdef _WIN32
    localtime_s(&local, &seconds);
#else
    localtime_r(&seconds, &local);
#endif
    using namespace std::chrono;
    const Day day =
        DayFrom(year_month_day(year(local.tm_year + 1900), month(static_cast<unsigned>(local.tm_mon + 1)),
                               std::chrono::day(static_cast<unsigned>(local.tm_mday))));
    const int second = local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec;
    return {day.serial + second / 86400.0};
}

std::int64_t SystemClock::MonotonicMs() const {
#ifdef CLOCK_BOOTTIME
    // Unlike the monotonic clock this one counts the time that a laptop slept.
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return static_cast<std::int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
#else
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
#endif
}

}  // namespace bmr
