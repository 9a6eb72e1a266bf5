#pragma once

#include <cstdint>

#include "store/fieldtable.h"

namespace bmr::store {

/// How a section's records stand in the file in the alphabetical order of a name, so that their list is read
/// in order with nothing deciphered. fT1 holds the name, fR2 and fR1 its place, fG1 the group.
struct NamedOrder {
    std::uint8_t section = 0;
    std::uint8_t nameField = 0;  ///< the field that is the name
    Blanks blanks = Blanks::Store;
    bool placeNameless = true;     ///< false: a new record without a name gets no place
    bool fixedGroup = false;       ///< the group is written when the record is made and never again
    bool alwaysWriteName = false;  ///< fT1 is enciphered anew at each store, not only with another name
};

}  // namespace bmr::store
