#pragma once

#include "calendar/periods.h"

class QLocale;

namespace bmr::calendar {

/// Months and weekdays as a locale calls them.
CalendarNames NamesOf(const QLocale& locale);

}  // namespace bmr::calendar
