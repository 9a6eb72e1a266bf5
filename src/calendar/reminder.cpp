#include "calendar/reminder.h"

#include <algorithm>
#include <limits>

namespace bmr::calendar {
namespace {

std::int32_t Difference(std::int32_t a, std::int32_t b) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(std::int64_t{a} - b, Limits::min(), Limits::max()));
}

}  // namespace

std::string LeadText(std::int32_t minutes) {
    static constexpr std::array<const char*, kLeadTimes.size()> kTexts = {
        "0 Min",   "5 Min",   "10 Min",  "15 Min",   "30 Min", "1 Hour",
        "2 hours", "3 hours", "6 hours", "12 hours", "1 Day"};
    const auto* found = std::ranges::find(kLeadTimes, minutes);
    if (found == kLeadTimes.end()) return std::to_string(minutes) + " min";
    return kTexts.at(static_cast<std::size_t>(found - kLeadTimes.begin()));
}

Minutes AlarmTime(Minutes start, bool on, std::int32_t lead) {
    return {Difference(start.count, on ? lead : 0)};
}

std::int32_t LeadOf(Minutes start, Minutes alarm) {
    return Difference(start.count, alarm.count);
}

std::vector<std::int32_t> LeadChoices(std::optional<std::int32_t> stored) {
    std::vector<std::int32_t> choices(kLeadTimes.begin(), kLeadTimes.end());
    if (stored && std::ranges::find(choices, *stored) == choices.end()) choices.push_back(*stored);
    return choices;
}

}  // namespace bmr::calendar
