#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/bytes.h"
#include "base/result.h"

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
/// "Unfiled", "Edit categories", as the flags ask. A list that cannot be read gives the fixed entries only
/// (`CategoriesUnread`).
CategoryList FillCategories(Session& session, std::uint8_t section, bool withAll, bool withUnfiled,
                            bool withEdit);

/// Whether the section has a list that does not decode. It is left as it is until the user begins another:
/// nobody stores one unasked.
bool CategoriesUnread(Session& session, std::uint8_t section);

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

/// The condition of a list of one category, " And fG1 = n"; nothing for all (-1 and 9999). Unfiled is what
/// carries no number of the section's list, so that a record whose category is gone stands there; while the
/// list cannot be read, what carries none at all.
std::string CategoryClause(Session& session, std::uint8_t section, std::int32_t category);

/// The real numbers (1 to 9998) that are carried: by the entries of `list`, by the section's records, whose
/// category may be gone, and by the steps that can be taken back. In ascending order. None of them may be given to another category.
Result<std::vector<std::int32_t>> CarriedNumbers(Session& session, std::uint8_t section,
                                                 const CategoryList& list);

/// The number of a new category: the lowest that is not carried; 0 when all are.
Result<std::int32_t> NewCategoryNumber(Session& session, std::uint8_t section, const CategoryList& list);

/// The lowest free number against the numbers of an import, all but the last entry; refuses everything, as
/// required, once an entry is 0, -1 or 9999. 0 when none is free (the caller shows Msg 52). The caller puts
/// the `CarriedNumbers` before the last entry, and asks for none while the list cannot be read.
std::int32_t FreeCategoryNumber(const std::vector<std::int32_t>& numbers);

/// The name of `number`, ends trimmed, "Unfiled" when it has no entry.
Bytes CategoryName(const CategoryList& list, std::int32_t number);

/// Most categories that a list can hold: a field number is one byte, and each takes two.
inline constexpr std::size_t kMostCategories = 128;

}  // namespace bmr::store
