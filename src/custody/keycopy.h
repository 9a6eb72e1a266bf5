#pragma once

#include "base/result.h"
#include "engine/db.h"

namespace bmr::store {
struct Session;
}

namespace bmr::custody {

/// The format version that another open file's system record tells under this session's keys; 0 when it has
/// none or the keys do not decode it, so that its records are not ours to join.
Result<int> VersionUnderOurKeys(store::Session& session, engine::Database& other);

/// Puts copies of the two keystring rows, the system record and every user into another open file, in place
/// of those that it has: it then opens by itself with the passphrase of this one, and what stands in it under
/// the same keys stays readable. One transaction; 0 or the engine's number. REQUIRES: an open database.
[[nodiscard]] int CopyKeys(store::Session& session, engine::Database& other);

}  // namespace bmr::custody
