#pragma once

#include <string_view>

#include "commands.h"
#include "rows.h"

namespace bmr::tools {

/// Prints an address as its card: JSON with `head` and `body`, or both as text. Throws Failure for another
/// record.
void PrintCard(store::Session& session, const Options& options, const Row& row, std::string_view payload);

}  // namespace bmr::tools
