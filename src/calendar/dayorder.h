#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "calendar/calendar.h"
#include "engine/db.h"
#include "store/sections.h"

/// The order of a day's rows, kept in fR1 so that they are read by time with nothing deciphered. The rows of
/// a day are those in the bucket of fR3, series included.
namespace bmr::calendar {

/// Gives the starts at some places of a day's order, which is told without the row in question. To read one
/// means to decipher it, so that few are asked for, and several at once.
using StartReader = std::function<std::vector<Minutes>(std::span<const std::size_t> places)>;

/// Place of a new start among the `count` others: behind all that are not later.
std::size_t PlaceOfNew(std::size_t count, const StartReader& others, Minutes start);
/// Place of the row that stood at `place` and began at `before`, now that it has another start: it goes
/// towards the new time, past all of the others that it must overtake and those of the same start, and stays
/// where its start is the same.
std::size_t PlaceOfMoved(std::size_t count, const StartReader& others, std::size_t place, Minutes before,
                         Minutes start);

/// `AppointmentOrderKey`: sets fR1 of a row in AddNew or Edit that begins at `start`, and rewrites the rows
/// of the day that get another slot, each with `AE Or 2`. `before`: the start that the row had on the same
/// day; without one it is new there. For the `fill` of `store::StoreRow`, whose step takes up what was
/// rewritten. 0 or the engine's number.
[[nodiscard]] int PlaceInDay(store::Session& session, engine::Recordset& row, Day day, Minutes start,
                             std::optional<Minutes> before = std::nullopt);

/// Gives places to many new rows of one day before they are added, `starts` in any order, one place for each;
/// the rows that stand there move. 0 or the engine's number.
[[nodiscard]] int PlaceManyInDay(store::Session& session, Day day, std::span<const Minutes> starts,
                                 std::vector<std::int32_t>& places);

/// How undo gives a row its place anew.
extern const store::DayOrder kDayOrder;

/// The start that a row's fT1 tells, deciphered but not trimmed; nothing where it is none.
std::optional<Minutes> StartOf(std::string_view plain);

/// Rows that break the promise, in reading order: the fPK of each that begins earlier than the row before it
/// on its day. For `bmr check`.
std::vector<std::int32_t> FindDisorder(store::Session& session);

}  // namespace bmr::calendar
