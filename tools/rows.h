#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/bytes.h"
#include "store/sections.h"

namespace bmr::tools {

/// The columns of `tt` that are read in clear, and texts.
struct Row : store::PlainColumns {
    Bytes fEtx;
    Bytes fT1;
    Bytes fT2;  ///< of an address
    /// fT1 deciphered, where it was asked for, and fT2 of an address.
    Bytes listText;
    Bytes contact;
};

/// Whether the payload of such a row stands under the field cipher; keystrings and users have their own.
bool IsFieldCiphered(const Row& row);

enum class ListTexts { Leave, Decipher };

/// Reads all rows that meet `condition` ("" for all; "fSec=15"), by class and key, deciphering many at a
/// time. `each` gets the row and its plain payload, empty where it does not decipher or is under another
/// cipher. 0 or the engine's number.
[[nodiscard]] int ForEachRow(store::Session& session, const std::string& condition, ListTexts listTexts,
                             const std::function<void(const Row& row, std::string_view payload)>& each);

/// Whether the row stays out of sight: private records do unless the settings or `showPrivate` show them, and
/// so does what cannot be read, since it might be private. Rows of the system are never hidden, nor are those
/// of unknown classes, of which nothing but their number is ever shown.
bool IsHidden(const store::Session& session, bool showPrivate, const Row& row, std::string_view payload);

/// The row of a key, unless it is hidden.
Result<Row> FindRow(store::Session& session, std::int32_t fPK, bool showPrivate);

}  // namespace bmr::tools
