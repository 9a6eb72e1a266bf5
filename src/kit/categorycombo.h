#pragma once

#include <QIcon>
#include <cstdint>

#include "store/categories.h"

class QComboBox;
class QPalette;

namespace bmr::kit {

/// Fills the combo with a section's entries, each with its number as item data; the first is shown. Tells
/// nobody.
void FillCategoryCombo(QComboBox& combo, const store::CategoryList& list);

/// Number of the shown entry; of the first one when none is shown.
std::int32_t SelectedCategory(const QComboBox& combo);

/// Shows the entry of that number, tells nobody. False, and the first entry, when there is none.
bool SelectCategory(QComboBox& combo, std::int32_t number);

/// A small square in the category's colour.
QIcon CategoryIcon(std::int32_t number, const QPalette& palette);

}  // namespace bmr::kit
