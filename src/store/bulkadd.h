#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "base/bytes.h"
#include "store/session.h"

namespace bmr::store {

/// Many new records of one section that stands in alphabetical order, for imports. Each is asked for by its
/// number, once or more.
struct BulkRecords {
    std::size_t count = 0;
    std::function<const Bytes&(std::size_t index)> text;  ///< the name that orders it
    std::function<Bytes(std::size_t index)> payload;      ///< plain; it is wiped
    std::function<std::int32_t(std::size_t index)> fG1;
    bool placeNameless = true;  ///< false: a record without a name keeps 0 in fR1 and fR2
    /// More texts that are enciphered, plain; a column without them gets noise.
    std::function<Bytes(std::size_t index)> fT2 = {};
    std::function<Bytes(std::size_t index)> fT3 = {};
    std::int32_t fR5 = 0;
};

/// Stores them in one transaction, their places worked out once and their texts enciphered many at a time;
/// fR3 and fR4 get noise, and fT2 and fT3 where no text is given. Sets `keys`. 0 or the engine's number with
/// nothing stored.
[[nodiscard]] int AddInBulk(Session& session, std::uint8_t section, const BulkRecords& records,
                            std::vector<std::int32_t>& keys);

}  // namespace bmr::store
