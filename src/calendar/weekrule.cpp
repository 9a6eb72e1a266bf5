#include "calendar/weekrule.h"

#include <algorithm>
#include <array>

namespace bmr::calendar {

FirstWeek FirstWeekOf(const QLocale& locale) {
    using enum QLocale::Country;  // the enumeration whose newer name is an alias
    // Four days or more of the first week lie in the year; everywhere else it is that of 1 January.
    constexpr std::array kFourDays = {
        Andorra,
        Austria,
        AlandIslands,
        Belgium,
        Bulgaria,
        Switzerland,
        Czechia,
        Germany,
        Denmark,
        Spain,
        Finland,
        FaroeIslands,
        France,
        UnitedKingdom,
        FrenchGuiana,
        Guernsey,
        Gibraltar,
        Guadeloupe,
        Greece,
        Hungary,
        Ireland,
        IsleOfMan,
        Iceland,
        Italy,
        Jersey,
        Liechtenstein,
        Lithuania,
        Luxembourg,
        Monaco,
        Martinique,
        Netherlands,
        Norway,
        Poland,
        Portugal,
        Reunion,
        Russia,
        Sweden,
        Slovakia,
        SanMarino,
        Estonia,
        VaticanCity,
        Antarctica,
        SvalbardAndJanMayen,
    };
    if (locale.territory() == AnyTerritory || locale.language() == QLocale::C)
        return locale.firstDayOfWeek() == Qt::Monday ? FirstWeek::FourDays : FirstWeek::WithNewYear;
    return std::ranges::find(kFourDays, locale.territory()) != kFourDays.end() ? FirstWeek::FourDays
                                                                               : FirstWeek::WithNewYear;
}

}  // namespace bmr::calendar
