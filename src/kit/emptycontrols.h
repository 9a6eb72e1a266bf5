#pragma once

class QWidget;

namespace bmr::kit {

/// Empties every field and label of a form that goes, and of the dialogs over it, and what its lists have
/// read, without a word to anybody: it is not to lie in memory until the toolkit needs that for something
/// else.
void EmptyControls(QWidget& form);

}  // namespace bmr::kit
