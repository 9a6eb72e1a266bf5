#pragma once

namespace bmr::app {

/// No core dump, no debugger of the same user, and files that others cannot read: what lies in our memory and
/// what we write is nobody else's. First thing in `main`, before any secret. What the platform refuses is
/// passed over.
void HardenProcess();

/// From now on memory that the program gives back is overwritten at once, the toolkit's included, where the C
/// library can do that. Part of `HardenProcess`.
void OverwriteFreed();

/// Overwrites what `OverwriteFreed` passes over: the small blocks that the C library keeps at hand for this
/// thread, and the part of the stack that nobody stands on. For the moment at which a database has closed.
void SweepFreed();

}  // namespace bmr::app
