#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "address/record.h"
#include "address/vcardreader.h"
#include "base/wiped.h"

/// A record as a vCard, and back.
namespace bmr::address {

/// What a card says, as a record that is not stored yet.
struct CardRecord {
    Record record;
    std::vector<WipedText> categories;  ///< by name; whether there are such categories is for others to say
    std::vector<std::string> leftOut;   ///< the properties that nothing is kept of: "PHOTO"
    std::string problem;                ///< why no record can be made of it; empty for one that can
};

/// Every property has a field, or goes to the notes under its name; pictures and the like are left out, and
/// so are those that say nothing of a person. A value beyond the nine numbers or the three addresses goes to
/// the notes too.
CardRecord RecordOfCard(const VCard& card);

/// Appends the record as a card of version 4.0 in UTF-8, with properties of our own ("X-BMR-...") for what
/// that version does not know. `RecordOfCard` gives the same record.
void AppendVCard(WipedText& out, const Record& record, std::string_view category);

}  // namespace bmr::address
