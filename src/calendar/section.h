#pragma once

#include <span>

#include "store/sections.h"

namespace bmr::calendar {

/// The calendar, for those who serve all sections.
std::span<const store::SectionFacts> Sections();

}  // namespace bmr::calendar
