#pragma once

#include <QLocale>

#include "calendar/periods.h"

namespace bmr::calendar {

/// Which week is a locale's first of a year. Qt does not tell it; it goes by the territory, as the tables
/// that Qt's own locales are made of have it, and where there is none by the standard for weeks from Monday
/// on.
FirstWeek FirstWeekOf(const QLocale& locale);

}  // namespace bmr::calendar
