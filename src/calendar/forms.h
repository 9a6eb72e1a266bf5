#pragma once

#include "kit/sectionform.h"

namespace bmr::calendar {

/// Adds the section's screen to those of the program.
void AddForms(SectionTable& table, const FormPorts& ports);

}  // namespace bmr::calendar
