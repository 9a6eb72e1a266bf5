#include "calendar/redoevents.h"

#include <algorithm>
#include <limits>

#include "calendar/months.h"

namespace bmr::calendar {
namespace {

constexpr std::int32_t kMostCountKept = 10;
constexpr std::int32_t kFirstCount = 5;
constexpr std::int32_t kMostTyped = 255;
constexpr int kWeeksBox = 0;
constexpr int kAlternativeBox = 3;

/// A voice that tells of the limit once: the derivation comes by it more than once.
SeriesVoice Once(const SeriesVoice& voice, bool& told) {
    SeriesVoice once = voice;
    once.limitTaken = [&voice, &told] {
        if (!told && voice.limitTaken) voice.limitTaken();
        told = true;
    };
    return once;
}

void Recalc(RedoState& state, const LocaleFacts& locale, const SeriesVoice& voice) {
    bool told = false;
    RecalcRedoEnd(state, locale, Once(voice, told));
    // The derivation puts the last day on an occurrence; without an end that is no day to be shown.
    if (!state.filling && state.endMode == RedoEnd::Never) state.end = std::max(kNoEndShown, state.start);
}

bool InMonths(const RedoState& state) {
    return state.frequency >= 3;
}

void Choose(RedoState& state, int frequency, int alternative) {
    state.frequency = frequency;
    state.alternative = alternative;
    state.kind = static_cast<int>(KindOf(frequency, alternative));
}

void MoveStart(RedoState& state, Day start, const LocaleFacts& locale) {
    const int firstDay = FirstDayOfWeek(locale);
    const auto indexOf = [&](Day day) { return static_cast<std::size_t>(WeekdayFrom(day, firstDay) - 1); };
    WeekDays lone{};
    lone[indexOf(state.start)] = true;
    if (state.days == lone) {
        state.days = {};
        state.days[indexOf(start)] = true;
    }
    state.start = start;
    if (!InMonths(state)) return;
    state.date = start;
    state.nth = WeekOfMonth(start);
    state.weekday = WeekdayFrom(start, firstDay);
    state.month = MonthOf(start);
}

}  // namespace

void ChooseFrequency(RedoState& state, int frequency, const LocaleFacts& locale, const SeriesVoice& voice) {
    Choose(state, frequency, state.alternative);
    Recalc(state, locale, voice);
}

void ChooseAlternative(RedoState& state, int alternative, const LocaleFacts& locale,
                       const SeriesVoice& voice) {
    Choose(state, state.frequency, alternative);
    Recalc(state, locale, voice);
}

void ChooseEndMode(RedoState& state, int mode, const LocaleFacts& locale, const SeriesVoice& voice) {
    bool told = false;
    const SeriesVoice once = Once(voice, told);
    // A stored series without an end has a random last day, which is nobody's choice either.
    const bool open = state.endMode == RedoEnd::Never || state.end == kNoEndShown;
    state.endMode = mode;
    if (mode == RedoEnd::Never) state.end = kNoEndShown;
    if (mode == RedoEnd::Count && state.count > kMostCountKept) state.count = kFirstCount;
    if (mode == RedoEnd::Date && open) {
        state.count = kFirstCount;
        SeriesFromCount(state, locale, once);
    }
    Recalc(state, locale, once);
}

void SetCount(RedoState& state, std::int32_t count, const LocaleFacts& locale, const SeriesVoice& voice) {
    state.endMode = RedoEnd::Count;
    state.count = count;
    Recalc(state, locale, voice);
}

void SetEndDate(RedoState& state, Day end, const LocaleFacts& locale, const SeriesVoice& voice) {
    state.endMode = RedoEnd::Date;
    state.end = end;
    Recalc(state, locale, voice);
}

void SetInterval(RedoState& state, int box, std::int32_t interval, const LocaleFacts& locale,
                 const SeriesVoice& voice) {
    (box == kAlternativeBox ? state.intervalAlt : state.interval) = std::max(interval, 1);
    if (box != kWeeksBox) Choose(state, state.frequency, box == kAlternativeBox ? 1 : 0);
    Recalc(state, locale, voice);
}

bool SetWeekday(RedoState& state, std::size_t index, bool chosen, const LocaleFacts& locale,
                const SeriesVoice& voice) {
    WeekDays days = state.days;
    days.at(index) = chosen;
    if (std::ranges::find(days, true) == days.end()) return false;
    state.days = days;
    Recalc(state, locale, voice);
    return true;
}

void SetStart(RedoState& state, Day start, const LocaleFacts& locale, const SeriesVoice& voice) {
    MoveStart(state, start, locale);
    Recalc(state, locale, voice);
}

void SetDate(RedoState& state, Day date, const LocaleFacts& locale, const SeriesVoice& voice) {
    if (state.frequency == 0) {
        state = NewRedoState(date, locale);
        return;
    }
    state.date = date;
    SetStart(state, date, locale, voice);
}

void SetNth(RedoState& state, int nth, const LocaleFacts& locale, const SeriesVoice& voice) {
    Choose(state, state.frequency, 1);
    state.nth = nth;
    Recalc(state, locale, voice);
}

void SetNthWeekday(RedoState& state, int weekday, const LocaleFacts& locale, const SeriesVoice& voice) {
    Choose(state, state.frequency, 1);
    state.weekday = weekday;
    Recalc(state, locale, voice);
}

void SetMonth(RedoState& state, int month, const LocaleFacts& locale, const SeriesVoice& voice) {
    Choose(state, state.frequency, 1);
    state.month = month;
    Recalc(state, locale, voice);
}

std::int32_t NumberTyped(std::string_view text) {
    std::int64_t number = 0;
    for (const char c : text)
        number = std::min<std::int64_t>(number * 10 + (c - '0'), std::numeric_limits<std::int32_t>::max());
    return static_cast<std::int32_t>(number);
}

TypedNumber JudgeNumber(std::string_view before, std::string_view typed) {
    TypedNumber result{std::string(typed)};
    // A letter beyond ASCII is one key as well.
    std::erase_if(result.text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; });
    for (char& c : result.text)
        if (c < '0' || c > '9') {
            c = '1';
            result.messages = {12};
        }
    const std::int32_t number = NumberTyped(result.text);
    if (number > kMostTyped && number > NumberTyped(before)) {
        result.messages.push_back(13);
        result.text = before;
    }
    return result;
}

}  // namespace bmr::calendar
