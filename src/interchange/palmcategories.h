#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "interchange/palmfile.h"
#include "store/categories.h"

namespace bmr::interchange {

/// The categories of a file and what they are in a section.
struct CategoryMerge {
    store::CategoryList table;         ///< the section's own, and the new ones behind them
    std::vector<std::int32_t> mapped;  ///< the section's number for each of the file's, 0 for none
    std::size_t added = 0;
    bool full = false;  ///< not all found a number (Msg 52) or a place: those are unfiled

    /// The section's category for the number in a record, which counts the file's list from 1; 0 and what is
    /// beyond the list are 0.
    std::int32_t MapPalmCategory(std::uint32_t palmCategory) const;
};

/// Finds for each of `found` the first of `own` with its long or its short name, ends trimmed, in the same
/// case; else a new one. `carried` are the numbers that may not be given away, beside those of the list.
CategoryMerge MergeCategories(const store::CategoryList& own, std::span<const PalmCategory> found,
                              std::span<const std::int32_t> carried);

}  // namespace bmr::interchange
