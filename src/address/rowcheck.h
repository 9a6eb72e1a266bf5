#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/result.h"
#include "store/session.h"

namespace bmr::address {

/// A row whose columns do not tell what its payload says.
struct RowFault {
    std::int32_t fPK = 0;
    std::string what;  ///< plain English, without any of the record's words
};

struct CheckedRows {
    std::vector<RowFault> faults;  ///< by key
    std::size_t nameless = 0;      ///< rows that no list shows
};

/// The addresses whose columns (fT1, fT2, fT3) do not agree with their payload, so that the list shows
/// something else, or what is private. A payload that does not decode is left to others.
Result<CheckedRows> CheckRows(store::Session& session);

}  // namespace bmr::address
