#include "weekstart.h"

#include <clocale>  // tells whether the library is one with _NL_TIME_FIRST_WEEKDAY
#include <cstdint>

#ifdef _WIN32
#define NOMINMAX
#include <windows.h>
#elif defined(__GLIBC__)
#include <langinfo.h>
#endif

namespace bmr::tools {
namespace {

constexpr int kSunday = 1;

[[maybe_unused]] int Wrapped(int weekday) {
    return (weekday % 7 + 7) % 7 + 1;
}

}  // namespace

#ifdef _WIN32
int WeekStartOfLocale() {
    DWORD fromMonday = 0;
    const int size =
        GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_IFIRSTDAYOFWEEK | LOCALE_RETURN_NUMBER,
                        reinterpret_cast<wchar_t*>(&fromMonday), sizeof fromMonday / sizeof(wchar_t));
    return size == 0 ? kSunday : Wrapped(static_cast<int>(fromMonday) + 1);
}
#elif defined(__GLIBC__)
int WeekStartOfLocale() {
    // Not setlocale: what programs read and print must not follow the locale.
    const locale_t locale = newlocale(LC_TIME_MASK, "", nullptr);
    if (locale == nullptr) return kSunday;
    // The number of a weekday counts from a day that the locale names as a date.
    constexpr std::intptr_t kFromMonday = 19971201;
    const int day = *nl_langinfo_l(_NL_TIME_FIRST_WEEKDAY, locale);
    const auto from = reinterpret_cast<std::intptr_t>(nl_langinfo_l(_NL_TIME_WEEK_1STDAY, locale));
    freelocale(locale);
    return Wrapped(day - 1 + (static_cast<std::int32_t>(from) == kFromMonday ? 1 : 0));
}
#else
int WeekStartOfLocale() {
    return kSunday;
}
#endif

}  // namespace bmr::tools
