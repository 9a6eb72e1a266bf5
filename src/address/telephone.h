#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include "base/wiped.h"

/// Telephone numbers by their digits alone, however they are written.
namespace bmr::address {

/// The digits of a number, without what a caller from abroad leaves out: "(0)" behind a country's code, and
/// the zeros in front.
WipedText DigitsOf(std::string_view number);

/// Whether what a person typed is a number to look for: digits and what stands between them, three or more.
bool LooksLikeNumber(std::string_view typed);

/// Where `number` holds the digits of `typed`, in bytes from the first to behind the last of them; nothing
/// where it does not, or `typed` is no number to look for.
std::optional<std::pair<std::size_t, std::size_t>> FindNumber(std::string_view number,
                                                              std::string_view typed);

/// Whether two numbers are one: equal digits, or one the end of the other behind a country's code. At least
/// five digits.
bool SameNumber(std::string_view a, std::string_view b);

}  // namespace bmr::address
