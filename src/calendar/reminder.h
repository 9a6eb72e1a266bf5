#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "calendar/calendar.h"

/// The reminder of an appointment: how long before the start. It is stored and shown, and never fires.
namespace bmr::calendar {

/// The lead times of the list, in minutes.
inline constexpr std::array<std::int32_t, 11> kLeadTimes = {0, 5, 10, 15, 30, 60, 120, 180, 360, 720, 1440};

/// "5 Min", "1 Hour", "1 Day"; "25 min" for one that is not in the list.
std::string LeadText(std::int32_t minutes);

/// `ctlAlarmTime`: the start less the lead time, the start itself without a reminder.
Minutes AlarmTime(Minutes start, bool on, std::int32_t lead);
/// The lead time of a stored reminder, in minutes; negative when it lies behind the start.
std::int32_t LeadOf(Minutes start, Minutes alarm);

/// The list for an appointment of this lead time: one that is none of the told is kept as a last entry.
std::vector<std::int32_t> LeadChoices(std::optional<std::int32_t> stored);

}  // namespace bmr::calendar
