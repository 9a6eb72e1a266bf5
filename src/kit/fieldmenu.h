#pragma once

#include <QLineEdit>
#include <functional>

#include "base/ports.h"

namespace bmr::kit {

/// What a field's content can be used for outside the program, besides being copied.
struct FieldUse {
    bool web = false;
    bool mail = false;
    bool dial = false;
    std::function<QString()> person = {};  ///< whose number it is
};

/// Gives a field our own pop-up menu in place of the toolkit's: Cut, Copy, Copy (no spaces), Paste, Select
/// All, and what `use` names. Web, mail and dial take the selected text, or all when nothing is selected.
/// Both ports must outlive the field.
void GiveFieldMenu(QLineEdit& field, Prompter& prompter, Desktop& desktop, FieldUse use = {});

}  // namespace bmr::kit
