#include "calendar/localenames.h"

#include <QLocale>

namespace bmr::calendar {

CalendarNames NamesOf(const QLocale& locale) {
    constexpr int kSunday = 7;  // to Qt the last day of the week
    CalendarNames names;
    for (int month = 1; month <= 12; ++month)
        names.months.at(static_cast<std::size_t>(month - 1)) =
            locale.standaloneMonthName(month).toStdString();
    for (int day = 0; day < 7; ++day) {
        const auto at = static_cast<std::size_t>(day);
        const int weekday = day == 0 ? kSunday : day;
        names.weekdays.at(at) = locale.standaloneDayName(weekday).toStdString();
        names.shortWeekdays.at(at) = locale.standaloneDayName(weekday, QLocale::ShortFormat).toStdString();
    }
    return names;
}

}  // namespace bmr::calendar
