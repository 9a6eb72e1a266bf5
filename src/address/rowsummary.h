#pragma once

#include <cstdint>
#include <vector>

#include "base/result.h"
#include "base/wiped.h"
#include "store/severalrows.h"

namespace bmr::address {

/// What a list shows of a row, its payload left closed.
struct RowSummary {
    std::int32_t fPK = 0;
    WipedText fileAs;   ///< UTF-8
    WipedText contact;  ///< UTF-8
    bool isPrivate = true;
    std::int32_t category = 0;  ///< 0 for Null
    std::int32_t changes = 1;   ///< AE; 1 for Null
    /// To be left out of the list: nothing to show, or the one character of code 0.
    bool Nameless() const { return fileAs.empty() || (fileAs.size() == 1 && fileAs[0] == '\0'); }
};

/// `AddressRowSummary` of the row in hand. The payload is opened only where code page 1252 does not hold the
/// name or the contact, which a mark in the column tells.
RowSummary AddressRowSummary(store::Session& session, const engine::Recordset& row);

/// Those of many keys, deciphered together; a key without a row of the address book is left out.
Result<std::vector<RowSummary>> ReadSummaries(store::Session& session, store::Keys keys);

}  // namespace bmr::address
