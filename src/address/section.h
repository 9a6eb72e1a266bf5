#pragma once

#include <span>

#include "store/sections.h"

namespace bmr::address {

/// The address book, for those who serve all sections.
std::span<const store::SectionFacts> Sections();

}  // namespace bmr::address
