#pragma once

#include <array>
#include <cstdint>

#include "base/bytes.h"
#include "base/serialdate.h"

namespace bmr::store {

/// The preferences of a database, kept in the row fSec 5, fSub 1. Members stand in the order of storing and
/// have the defaults of a new database.
struct Settings {
    std::int16_t Idle = 5;                     ///< minutes; 0 never
    std::array<std::uint8_t, 3> BudgetShow{};  ///< 0: all four boxes on; else bit i is box i
    std::uint8_t StartSection = 0;
    std::uint8_t StartScreen = 0;  ///< 0 start screen, 1 go to StartSection, 2 last section used
    std::uint8_t TodoShowCompleted = 0;
    std::uint8_t BudgetPrimary = 0;
    std::uint8_t DiaryShow = 1;
    std::uint8_t CatShow = 0;  ///< 0 last used, else the first entry
    std::uint8_t calView = 0;
    std::int32_t AppDuration = 30;  ///< minutes
    DateValue WorkdayStart{1.0 / 3};
    DateValue WorkdayEnd{17.0 / 24};
    DateValue DisplayFrom{0.3125};
    /// Address book, (reserved), memo pad, task list, (reserved); -1 all.
    std::array<std::int16_t, 5> LastCategory{-1, -1, -1, -1, -1};
    std::array<std::int16_t, 3> BudgetCategory{-1, -1, -1};
    // The last field of the row, ShowPrivate, is a state of the session (default true, stored as -1 and 0).
};

/// The labels of the four user-defined address fields of a user.
using UserLabels = std::array<Bytes, 4>;
inline UserLabels BuiltInUserLabels() {
    return {"User1", "User2", "User3", "User4"};
}

}  // namespace bmr::store
