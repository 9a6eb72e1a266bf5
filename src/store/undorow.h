#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "base/result.h"
#include "engine/db.h"
#include "store/undolog.h"

namespace bmr::store {

/// The row in hand, as it stands before it is edited or deleted.
std::unique_ptr<RowImage> ImageOf(const engine::Recordset& row);
/// Its fSec, and its fG1 unless that is Null.
std::int32_t SectionOf(const RowImage& image);
std::optional<std::int32_t> CategoryOf(const RowImage& image);
/// Its fEtx and its fT1, enciphered; empty for Null.
std::string_view PayloadOf(const RowImage& image);
std::string_view NameIn(const RowImage& image);

/// What tells whether a row was changed meanwhile, and where it lies. Neither the place among its neighbours
/// nor the change marks count: a neighbour's save may write them.
struct RowMark {
    std::uint64_t stamp = 0;
    std::optional<PlaceKey> stretch;  ///< in which its place is kept; none for a row without a place
    std::int32_t fR1 = 0;
    std::int32_t point = 0;  ///< of its stretch: fR2 in the alphabet, fR3 in a day

    bool SamePlace(const RowMark& other) const { return fR1 == other.fR1 && point == other.point; }
};
/// Of the row in hand, in AddNew or Edit as it will stand.
RowMark MarkOf(const engine::Recordset& row, std::uint8_t section);
RowMark MarkOf(const RowImage& image, std::uint8_t section);

/// The row of a key in a recordset of "tt", as it stands; null when there is none. An engine number where it
/// could not be looked for.
Result<std::unique_ptr<RowImage>> FindImage(engine::Recordset& table, std::int32_t fPK);

/// Where the row of an image stands; nothing for one without a place.
std::optional<RowPlace> PlaceOf(const RowImage& image, std::uint8_t section);

/// Sets every column of a row in AddNew or Edit to what the image holds.
void SetImage(engine::Recordset& row, const RowImage& image);

}  // namespace bmr::store
