#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/result.h"
#include "store/session.h"

namespace bmr::calendar {

/// A row whose columns do not tell what its payload says.
struct RowFault {
    std::int32_t fPK = 0;
    std::string what;  ///< plain English, without any of the record's words
};

/// The appointments whose columns (fT1, fT2, fT3, fR2, fR3, fR4, fSub) do not agree with their payload and
/// their recurrence string, so that a view does not find them or shows them elsewhere, by key. A payload that
/// does not decode is left to others.
Result<std::vector<RowFault>> CheckRows(store::Session& session);

}  // namespace bmr::calendar
