#pragma once

#include <span>

#include "store/sections.h"

namespace bmr::diary {

/// The diary, for those who serve all sections.
std::span<const store::SectionFacts> Sections();

}  // namespace bmr::diary
