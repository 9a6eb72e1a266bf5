#pragma once

#include <span>

#include "store/sections.h"

namespace bmr::budget {

/// The three budgets, for those who serve all sections.
std::span<const store::SectionFacts> Sections();

}  // namespace bmr::budget
