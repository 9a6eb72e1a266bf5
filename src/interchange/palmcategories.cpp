#include "interchange/palmcategories.h"

#include "base/bytes.h"

namespace bmr::interchange {

namespace {

/// The number of the first entry of that name; 0 for none, and for the empty name.
std::int32_t NumberOfName(const store::CategoryList& list, std::string_view longName,
                          std::string_view shortName) {
    for (const store::CategoryEntry& entry : list) {
        const std::string_view name = TrimBlanks(entry.text);
        if (!name.empty() && (name == longName || name == shortName)) return entry.number;
    }
    return 0;
}

std::int32_t FreeNumber(const store::CategoryList& table, std::span<const std::int32_t> carried) {
    std::vector<std::int32_t> numbers(carried.begin(), carried.end());
    for (const store::CategoryEntry& entry : table)
        numbers.push_back(entry.number);
    numbers.push_back(0);  // the place of the new one, which is not looked at
    return store::FreeCategoryNumber(numbers);
}

}  // namespace

std::int32_t CategoryMerge::MapPalmCategory(std::uint32_t palmCategory) const {
    return palmCategory == 0 || palmCategory > mapped.size() ? 0 : mapped[palmCategory - 1];
}

CategoryMerge MergeCategories(const store::CategoryList& own, std::span<const PalmCategory> found,
                              std::span<const std::int32_t> carried) {
    CategoryMerge merge;
    merge.table = own;
    for (const PalmCategory& category : found) {
        const std::string_view name = TrimBlanks(category.longName);
        std::int32_t number = NumberOfName(merge.table, name, TrimBlanks(category.shortName));
        if (number == 0 && !name.empty()) {
            if (merge.table.size() < store::kMostCategories) number = FreeNumber(merge.table, carried);
            if (number == 0) {
                merge.full = true;
            } else {
                merge.table.push_back({Bytes(name), number});
                ++merge.added;
            }
        }
        merge.mapped.push_back(number);
    }
    return merge;
}

}  // namespace bmr::interchange
