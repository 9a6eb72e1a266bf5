#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/serialdate.h"

namespace bmr {

/// `day` by a short date pattern of the letters y M d, as in LocaleFacts: a single letter without leading
/// zero, two with one, "yy" the year without its century; text in single quotes stands as it is. UTF-8.
std::string FormatShortDate(Day day, std::string_view pattern);

/// The date that `text` tells in the order of `pattern`, whatever stands between the numbers; years below 100
/// count as 1930 to 2029. The form "2026-11-21" is understood under every pattern. Nothing for what is no
/// date.
std::optional<Day> ParseShortDate(std::string_view text, std::string_view pattern);

}  // namespace bmr
