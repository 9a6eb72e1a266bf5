#pragma once

#include <string>

namespace bmr::store {
struct Session;
}

namespace bmr::custody {

/// One plain sentence (UTF-8) for an engine number: why a file could not be opened or written.
std::string ExplainOpenFailure(int number);
/// What is told when a change stands although the disk reported a failure behind it (UTF-8).
extern const char* const kStoredInDoubt;
/// Tells it, in a box, if something was stored so in the open database since it was told last.
void TellDoubt(store::Session& session);

/// `ExplainOpenFailure` in a box.
void TellOpenFailure(store::Session& session, int number);

}  // namespace bmr::custody
