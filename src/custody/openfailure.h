#pragma once

#include <string>

namespace bmr::store {
struct Session;
}

namespace bmr::custody {

/// One plain sentence (UTF-8) for an engine number: why a file could not be opened or written.
std::string ExplainOpenFailure(int number);
/// The same in a box.
void TellOpenFailure(store::Session& session, int number);

}  // namespace bmr::custody
