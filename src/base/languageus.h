#pragma once

#include <string>

namespace bmr {

/// Every text that a message box shows, by number, in UTF-8. An unknown number gives the empty text.
std::string Msg(int number);

}  // namespace bmr
