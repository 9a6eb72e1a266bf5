#pragma once

#include <span>

#include "store/sections.h"

namespace bmr::tasks {

/// The task list, for those who serve all sections.
std::span<const store::SectionFacts> Sections();

}  // namespace bmr::tasks
