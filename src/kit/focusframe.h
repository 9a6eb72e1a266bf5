#pragma once

class QFrame;
class QWidget;

namespace bmr::kit {

/// Draws a frame only while a field in it, or the frame itself, has the focus. For fields to read that stand
/// without one and have no cursor that could tell.
void ShowFocusBy(QFrame& frame, QWidget& field);

}  // namespace bmr::kit
