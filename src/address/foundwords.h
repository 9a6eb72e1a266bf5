#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "base/wiped.h"

namespace bmr::address {

/// A part of a UTF-8 text, in bytes.
struct FoundSpan {
    std::size_t begin = 0;
    std::size_t end = 0;
    bool operator==(const FoundSpan&) const = default;
};

/// Where a text holds one of the words, without regard to case and accents; telephone numbers by their
/// digits. In order, none inside another.
std::vector<FoundSpan> FindWords(std::string_view text, const std::vector<WipedText>& words);

}  // namespace bmr::address
