#pragma once

class QWidget;

namespace bmr::kit {

/// Moves the focus of a window to the next control, or to the one before. All controls are one ring, in the
/// order in which they are laid out, which is that of the eye. For a window's own `focusNextPrevChild`: Qt's
/// chain runs in the order of making, and stops at whatever hands its focus on, in one direction only. False
/// where nothing takes the focus.
bool StepFocus(QWidget& window, bool next);

}  // namespace bmr::kit
