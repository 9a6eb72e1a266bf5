#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/series.h"

/// What the controls of a recurrence make of its state, each one event. Behind each the last day and the
/// number of occurrences are worked out anew, but while the form is filled. Weekdays are in the locale's
/// order.
namespace bmr::calendar {

/// `Redo`: 0 none, 1 weekly, 2 daily, 3 monthly, 4 yearly.
void ChooseFrequency(RedoState& state, int frequency, const LocaleFacts& locale, const SeriesVoice& voice);
/// `RedoAlt`: 1 for workdays and n-th weekdays.
void ChooseAlternative(RedoState& state, int alternative, const LocaleFacts& locale,
                       const SeriesVoice& voice);
/// `RedoEnd`. What had no end so far begins with five occurrences.
void ChooseEndMode(RedoState& state, int mode, const LocaleFacts& locale, const SeriesVoice& voice);
/// `occ`
void SetCount(RedoState& state, std::int32_t count, const LocaleFacts& locale, const SeriesVoice& voice);
/// `ctlDateEndRedo`
void SetEndDate(RedoState& state, Day end, const LocaleFacts& locale, const SeriesVoice& voice);
/// `QQ`: 0 weeks, 1 days, 2 months, 3 months of the n-th weekday. The last three choose their alternative.
void SetInterval(RedoState& state, int box, std::int32_t interval, const LocaleFacts& locale,
                 const SeriesVoice& voice);
/// `RedoWD`, from 0. False, with nothing changed, when no day would be left (Msg 10).
[[nodiscard]] bool SetWeekday(RedoState& state, std::size_t index, bool chosen, const LocaleFacts& locale,
                              const SeriesVoice& voice);
/// `ctlDateStartRedo`. In months and years n-th weekday, month and the appointment's date follow; a lone
/// weekday that was that of the start goes with it.
void SetStart(RedoState& state, Day start, const LocaleFacts& locale, const SeriesVoice& voice);
/// `ctlDate`: the series begins there too. Without a recurrence a later one will.
void SetDate(RedoState& state, Day date, const LocaleFacts& locale, const SeriesVoice& voice);
/// `cboRedoWhen`, `cboRedoWeekday`, `cboRedoMonth`; all from 1. They choose their alternative.
void SetNth(RedoState& state, int nth, const LocaleFacts& locale, const SeriesVoice& voice);
void SetNthWeekday(RedoState& state, int weekday, const LocaleFacts& locale, const SeriesVoice& voice);
void SetMonth(RedoState& state, int month, const LocaleFacts& locale, const SeriesVoice& voice);

/// What a number box holds after typing, and the messages that this makes, in order.
struct TypedNumber {
    std::string text;
    std::vector<int> messages = {};
};
/// `occ` and `QQ`: what is no digit becomes a 1 (Msg 12); what makes the number more than 255 is taken back
/// (Msg 13). A number that was greater already may be shortened.
TypedNumber JudgeNumber(std::string_view before, std::string_view typed);
/// Nothing but digits; 0 for an empty text, the greatest for one that does not fit.
std::int32_t NumberTyped(std::string_view text);

}  // namespace bmr::calendar
