#pragma once

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

namespace bmr::store {

/// One row of an alphabetical bucket: key and position (fR1).
struct BucketRow {
    std::int32_t fPK = 0;
    std::int32_t position = 0;
};

/// Each bucket's rows in order, remembered between two saves: reading a bucket of a large section costs more
/// than the save itself. Valid only as long as nothing else has written to the file, which the engine's count
/// of changes tells.
struct BucketOrder {
    std::map<std::pair<std::uint8_t, std::int32_t>, std::vector<BucketRow>>
        buckets;  ///< by section and low bound
    std::int64_t changes = -1;
    void Clear() {
        buckets.clear();
        changes = -1;
    }
};

}  // namespace bmr::store
