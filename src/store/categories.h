#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/bytes.h"

namespace bmr::store {

struct Session;

/// Fixed category numbers, never stored in a list.
struct Category {
    static constexpr std::int32_t All = -1;
    static constexpr std::int32_t Unfiled = 0;
    static constexpr std::int32_t Edit = 9999;
    static constexpr std::int32_t Highest = 9998;
};

/// An entry of a category list control: its text (with the indent of its place) and its number.
struct CategoryEntry {
    Bytes text;
    std::int32_t number = 0;
    bool operator==(const CategoryEntry&) const = default;
};
using CategoryList = std::vector<CategoryEntry>;

/// The entries of a section's combo: "All", the names in alphabetical order without regard to case,
/// "Unfiled", "Edit categories", as the flags ask. A list that cannot be read gives the fixed entries only.
CategoryList FillCategories(Session& session, std::uint8_t section, bool withAll, bool withUnfiled,
                            bool withEdit);

/// Inserts before the first entry that is equal or above; gives the place.
std::size_t InsertCategory(CategoryList& list, CategoryEntry entry);

/// Writes the list's row in its present order. At most 128 entries fit. 0 or an error number.
[[nodiscard]] int StoreCategories(Session& session, const CategoryList& list, std::uint8_t section);

/// The category of a row (fG1); 0 for Null or a row that is not there.
std::int32_t RecordCategory(Session& session, std::int32_t fPK);

/// The category that a new record gets under a combo's entry: "All", "Edit categories" and what no 16-bit
/// number can hold count as unfiled.
inline std::int32_t RealCategory(std::int32_t number) {
    return number > 0 && number <= Category::Highest ? number : Category::Unfiled;
}

/// " And fG1 = n", or nothing for all categories (-1 and 9999).
std::string CategoryClause(std::int32_t category);

/// The lowest number 1 to 9998 that no entry has; 0 when all are taken.
std::int32_t LowestFreeNumber(const CategoryList& list);

/// The lowest free number against the numbers of an import, all but the last entry; refuses everything, as
/// required, once an entry is 0, -1 or 9999. 0 when none is free (the caller shows Msg 52).
std::int32_t FreeCategoryNumber(const std::vector<std::int32_t>& numbers);

/// The name of `number`, ends trimmed, "Unfiled" when it has no entry.
Bytes CategoryName(const CategoryList& list, std::int32_t number);

/// Most categories that a list can hold: a field number is one byte, and each takes two.
inline constexpr std::size_t kMostCategories = 128;

}  // namespace bmr::store
