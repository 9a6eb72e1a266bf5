#pragma once

#include <cstdint>

namespace bmr::store {

/// Section codes: the same number is a record's fSec. 0 is no section.
struct Section {
    static constexpr std::uint8_t None = 0;
    static constexpr std::uint8_t Address = 11;
    static constexpr std::uint8_t Calendar = 12;
    static constexpr std::uint8_t Diary = 13;
    static constexpr std::uint8_t Memo = 14;
    static constexpr std::uint8_t Todo = 15;
    static constexpr std::uint8_t Confidential = 16;
    static constexpr std::uint8_t Budget1 = 17;
    static constexpr std::uint8_t Budget2 = 18;
    static constexpr std::uint8_t Budget3 = 19;
};

/// fSec of the rows that hold a section's list of categories, with the section in fSub.
inline constexpr std::uint8_t kListClass = 10;

}  // namespace bmr::store
