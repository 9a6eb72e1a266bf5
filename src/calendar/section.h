#pragma once

#include <span>

#include "store/sections.h"

namespace bmr::calendar {

/// The calendar, for those who serve all sections. Its records are read and shown by the command line only.
std::span<const store::SectionFacts> Sections();

}  // namespace bmr::calendar
