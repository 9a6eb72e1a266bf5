#pragma once

#include <QIcon>
#include <QString>
#include <cstdint>
#include <optional>

#include "kit/theme.h"

namespace bmr::kit {

/// An icon of our own set by its freedesktop name ("document-new"), drawn in the ink of the palette of the
/// moment. With `ink` in that ink instead. A name that is not in the set gives a null icon.
QIcon Icon(const QString& name, std::optional<Ink> ink = std::nullopt);

/// The icon of a section by its code 11 to 19.
QIcon SectionIcon(std::uint8_t section);

/// The program's own icon, in colours.
QIcon ProgramIcon();

}  // namespace bmr::kit
