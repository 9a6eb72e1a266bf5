#pragma once

#include <span>

#include "store/sections.h"

namespace bmr::budget {

/// The three budgets, for those who serve all sections. Their records are read and shown by the command line
/// only.
std::span<const store::SectionFacts> Sections();

}  // namespace bmr::budget
