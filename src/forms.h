#pragma once

#include "kit/sectionform.h"

namespace bmr {

/// The screens of all sections; which there are stands in src/CMakeLists.txt.
SectionTable Forms(const FormPorts& ports);

}  // namespace bmr
