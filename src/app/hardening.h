#pragma once

namespace bmr::app {

/// No core dump, no debugger of the same user, and files that others cannot read: what lies in our memory and
/// what we write is nobody else's. First thing in `main`, before any secret. What the platform refuses is
/// passed over.
void HardenProcess();

}  // namespace bmr::app
