#pragma once

class QCalendarWidget;

namespace bmr::kit {

/// Gives a calendar to pick from the colours of its palette and the locale's week; Qt's own red of weekends
/// and its bar on top are fixed. Again after a change of the palette.
void DressCalendar(QCalendarWidget& calendar);

}  // namespace bmr::kit
