#pragma once

#include <span>

#include "store/sections.h"

namespace bmr::notes {

/// The memo pad, for those who serve all sections.
std::span<const store::SectionFacts> Sections();

}  // namespace bmr::notes
