#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/result.h"
#include "store/session.h"

namespace bmr::diary {

/// What is wrong with a row, in plain English, without any of the record's words.
struct RowFault {
    std::int32_t fPK = 0;
    std::string what;
};

/// The pages whose columns (fR2, fT1) do not tell the day that their payload says, and those that share
/// their day with a later one. A payload that does not decode is left to others.
Result<std::vector<RowFault>> CheckRows(store::Session& session);

}  // namespace bmr::diary
