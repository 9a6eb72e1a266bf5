#pragma once

#include <cstdint>
#include <vector>

#include "base/result.h"
#include "base/serialdate.h"
#include "base/wiped.h"
#include "store/session.h"

namespace bmr::address {

/// Somebody's next birthday.
struct UpcomingBirthday {
    std::int32_t key = 0;
    WipedText name;
    Day day;      ///< when it is
    int age = 0;  ///< that they will have
};

/// The next birthday of someone, `today` or later. Who was born on 29 February has it on the 28th in other
/// years.
Day NextBirthday(Day born, Day today);

/// Those in the next `days` days, today included, by day and name. Private records only while they are shown.
Result<std::vector<UpcomingBirthday>> UpcomingBirthdays(store::Session& session, Day today,
                                                        std::int32_t days = 30);

}  // namespace bmr::address
