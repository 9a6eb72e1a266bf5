#pragma once

#include <cstdint>
#include <string>
#include <unordered_set>

#include "base/result.h"
#include "store/session.h"

namespace bmr::store {

/// The keys of a section's records that are private or cannot be read, among the rows that meet `clauses` ("
/// And fG1 = 3", or ""). Opens every payload, in batches.
Result<std::unordered_set<std::int32_t>> PrivateRecords(Session& session, std::uint8_t section,
                                                        const std::string& clauses);

}  // namespace bmr::store
