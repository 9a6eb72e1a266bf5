#pragma once

namespace bmr::store {

struct Session;

/// Adds the system record (1,3) where there is none; one that stands is left alone. 0 or the engine's number.
[[nodiscard]] int WriteMissingSystemRecord(Session& session);

}  // namespace bmr::store
