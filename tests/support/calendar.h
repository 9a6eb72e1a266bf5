#pragma once

#include "base/ports.h"
#include "support/data.h"

namespace bmr::test {

/// The known answers of one routine of the calendar.
inline nlohmann::json CalendarVectors(const char* name) {
    static const nlohmann::json vectors = LoadVectors("logic.json");
    return vectors.at("groups").at(name);
}

/// A locale whose week begins on a Sunday-based weekday.
inline LocaleFacts WeekFrom(int firstDay) {
    LocaleFacts facts;
    facts.firstDayOfWeek = firstDay;
    return facts;
}

}  // namespace bmr::test
