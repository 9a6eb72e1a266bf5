#pragma once

#include <span>

#include "store/sections.h"

namespace bmr::confidential {

/// The confidential section, for those who serve all sections.
std::span<const store::SectionFacts> Sections();

}  // namespace bmr::confidential
