#pragma once

#include <string>
#include <string_view>

#include "base/ports.h"
#include "base/serialdate.h"

namespace bmr::address {

/// What a person typed as a birthday.
struct BirthdayText {
    DateValue date;         ///< 0 for none
    std::string problem;    ///< why it cannot be stored as a date; empty where it can
    bool isBeyond = false;  ///< it is a date, but none that a record holds: the notes may have it
};

/// A date in the locale's order, or as 1961-05-17. A record holds the days from 15 October 1903 to 14 April
/// 2069.
BirthdayText ReadBirthday(std::string_view typed, const LocaleFacts& locale);

}  // namespace bmr::address
