#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "calendar/calendar.h"
#include "engine/db.h"
#include "store/session.h"

/// The order of a day's rows, kept in fR1 so that they are read by time with nothing deciphered. The rows of
/// a day are those in the bucket of fR3, series included.
namespace bmr::calendar {

/// Place of a new start among starts in their order: behind all that are not later.
std::size_t PlaceOfNew(std::span<const Minutes> others, Minutes start);
/// Place of the row at `place` once it has another start: it goes towards the new time, past all rows that it
/// must overtake and those of the same start, and stays where its start is the same.
std::size_t PlaceOfMoved(std::span<const Minutes> all, std::size_t place, Minutes start);

/// `AppointmentOrderKey`: sets fR1 of a row in AddNew or Edit, whose day (fR3) and start are set already, and
/// rewrites the rows of the day that get another slot, each with `AE Or 2`. For the `fill` of
/// `store::StoreRow`, whose step takes up what was rewritten. 0 or the engine's number.
[[nodiscard]] int PlaceInDay(store::Session& session, engine::Recordset& row);

/// Rows that break the promise, in reading order: the fPK of each that stands before an earlier start of its
/// day. For `bmr check`.
std::vector<std::int32_t> FindDisorder(store::Session& session);

}  // namespace bmr::calendar
