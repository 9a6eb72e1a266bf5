#pragma once

namespace bmr::tools {

/// The day on which the user's locale begins a week, 1 = Sunday to 7; Sunday where it says nothing.
int WeekStartOfLocale();

}  // namespace bmr::tools
