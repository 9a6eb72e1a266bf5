#pragma once

#include <cstddef>
#include <functional>

namespace bmr::test {

/// Called for each block that C++ code of this program gives back while it is set; from any thread.
using SeesFreed = bool (*)(const char* block, std::size_t size);

/// How many blocks `work` gives back that `sees` finds something in.
int CountFreed(SeesFreed sees, const std::function<void()>& work);

}  // namespace bmr::test
