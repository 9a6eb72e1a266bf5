#pragma once

#include <string_view>

#include "base/bytes.h"
#include "base/random.h"

/// The private marker of a row (fT3), so that a list leaves private records out without opening them.
namespace bmr::address {

/// A marker of 11 to 25 random bytes: the lowest bit of the seventh tells whether the record is private.
Bytes AddressPrivateMarker(bool isPrivate, RandomSource& random);

/// The same of given numbers: `drawn` in [0, 1) and at least six random bytes.
Bytes PrivateMarkerOf(bool isPrivate, double drawn, std::string_view bytes);

/// What the deciphered column tells, its blanks included. One that is too short to tell counts as private.
bool IsPrivateMarker(std::string_view plain);

}  // namespace bmr::address
