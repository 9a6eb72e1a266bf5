#pragma once

class QDialog;

namespace bmr::kit {

/// Shows a dialog in the middle of the window behind it, kept on the screen. At the start that window has not
/// got its place yet: the dialog follows it there. Nothing for a dialog without a parent.
void KeepOverParent(QDialog& dialog);

}  // namespace bmr::kit
