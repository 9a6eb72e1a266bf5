#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/result.h"
#include "store/session.h"

namespace bmr::budget {

/// What there is to say of a row, in plain English, without any of the record's words.
struct RowFault {
    std::int32_t fPK = 0;
    std::string what;
};

struct RowCheck {
    std::vector<RowFault> faults;  ///< fT1 holds no amount; fF2 does not tell whether there is a note
    std::vector<RowFault> notes;   ///< the private bit of fR1 is not the flag: both are whole, and differ
};

/// The entries of a budget whose columns do not agree with their payload. A payload that does not decode is
/// left to others.
Result<RowCheck> CheckRows(store::Session& session, std::uint8_t section);

}  // namespace bmr::budget
