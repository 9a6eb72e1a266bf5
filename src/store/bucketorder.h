#pragma once

#include <cmath>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace bmr::store {

inline constexpr std::int32_t kSortBuckets = 42;

/// The computed column X of the lists, of a value of fR2: the bucket in which a row stands.
inline std::int32_t BucketOfKey(std::int32_t key) {
    return static_cast<std::int32_t>(
        std::floor(key / (std::pow(2.0, 32) / kSortBuckets) + kSortBuckets / 2.0));
}

/// One row of an alphabetical bucket: key and position (fR1).
struct BucketRow {
    std::int32_t fPK = 0;
    std::int32_t position = 0;
};

/// Each bucket's rows in order, remembered between two saves: reading a bucket of a large section costs more
/// than the save itself. Valid only as long as nothing has written to the file but what tells of it here: the
/// engine's count of changes (`Database::ChangeCount`) shows whether something has.
struct BucketOrder {
    std::map<std::pair<std::uint8_t, std::int32_t>, std::vector<BucketRow>>
        buckets;  ///< by section and low bound
    std::int64_t changes = -1;
    BucketRow* added = nullptr;  ///< a row that has its place before it is written, until its key is known

    void Clear() {
        buckets.clear();
        changes = -1;
        added = nullptr;
    }
    /// The row that has just been added has got this key.
    void Name(std::int32_t fPK) {
        if (added != nullptr) added->fPK = fPK;
        added = nullptr;
    }
    /// The file was written to between the two counts, and every remembered place still holds, or is put
    /// right by the caller before the next save.
    void Passed(std::int64_t before, std::int64_t now) {
        if (changes == before) changes = now;
    }
    /// The row is in no bucket any more.
    void Forget(std::int32_t fPK) {
        for (auto& [key, rows] : buckets)
            std::erase_if(rows, [fPK](const BucketRow& row) { return row.fPK == fPK; });
    }
};

}  // namespace bmr::store
