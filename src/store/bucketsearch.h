#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

#include "base/bytes.h"

namespace bmr::store {

/// Deciphers the texts of some of a bucket's rows, which are named by their places in it, front to back.
using TextsOfPlaces = std::function<std::vector<Bytes>(std::span<const std::size_t> places)>;

/// The number of rows at the front of a bucket of `rows` rows whose text is not above `text` (new rows go
/// behind their equals). Deciphers at most 2 + log2(rows) texts whatever they are, and fewer where letters
/// are spread as in most lists: the search guesses by the letters (Perl, Itai and Avni: Interpolation search,
/// CACM 21, 1978), falls back to halving when a guess could cost more than the limit, and takes several texts
/// at once near the end, as ciphers of several keys are set up in hardly more time than one.
std::size_t FindBucketPlace(std::size_t rows, std::string_view text, const TextsOfPlaces& textsOf);

}  // namespace bmr::store
