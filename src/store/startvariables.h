#pragma once

#include <cstdint>

#include "base/serialdate.h"
#include "store/settings.h"

namespace bmr::store {

struct Session;

/// Loads the settings and `ShowPrivate` of the open database into the session; a row that is not there is
/// made with the defaults, unless the database is open for reading. A field that the row lacks keeps its
/// present value. A row that does not decode leaves the defaults in force, private records hidden and the row
/// as it is, until the user stores
/// (`SettingsUnread`). 0, or an error number.
[[nodiscard]] int ReadSettings(Session& session);
[[nodiscard]] int WriteSettings(Session& session);
/// The store that nobody asked for, at the close: leaves alone a row that did not decode.
[[nodiscard]] int WriteSettingsAtClose(Session& session);
[[nodiscard]] int DefaultSettings(Session& session);

/// The labels of a user (row fSec 9, fSub = user number).
UserLabels ReadUserLabels(Session& session, std::uint8_t user);
[[nodiscard]] int WriteUserLabels(Session& session, std::uint8_t user, const UserLabels& labels);

/// A time of day as minutes since midnight, rounded to the second first: 08:00 must never show as 07:59.
int MinuteOfDay(DateValue time);

}  // namespace bmr::store
