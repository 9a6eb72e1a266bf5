#include "calendar/series.h"

#include <algorithm>
#include <cstddef>

#include "calendar/months.h"

namespace bmr::calendar {
namespace {

constexpr std::int32_t kWeek = 7;
constexpr std::uint8_t kMondayToFriday = 124;
constexpr std::size_t kPlainLength = 7;  ///< of a string without excluded days
constexpr std::size_t kLastDayAt = 5;
/// The last day of the range, and the days before it in which a series without an end may stop.
constexpr std::int32_t kLastRangeDay = 26323;
constexpr std::int32_t kLastTenYears = 3650;

/// A day far ahead as a number that still fits; limits are taken by the caller.
Day DayAt(std::int64_t serial) {
    constexpr std::int64_t kFar = 1'000'000;
    return {static_cast<std::int32_t>(std::clamp(serial, -kFar, kFar))};
}

std::int32_t AtLeastOne(std::int32_t number) {
    return std::max(number, 1);
}

std::uint8_t ByteOf(std::int32_t number) {
    return static_cast<std::uint8_t>(std::clamp(number, 1, 255));
}

Day Stepped(Day day, std::int64_t units, SeriesUnit unit) {
    constexpr std::int64_t kFar = 30'000;
    const std::int64_t months = unit == SeriesUnit::Months ? units : units * 12;
    return PlusMonths(day, static_cast<std::int32_t>(std::clamp(months, -kFar, kFar)));
}

std::int32_t ChosenDays(const WeekDays& days) {
    return static_cast<std::int32_t>(std::count(days.begin(), days.end(), true));
}

/// From 0 for the first day of the locale's week.
int IndexOf(Day day, const LocaleFacts& locale) {
    return WeekdayFrom(day, FirstDayOfWeek(locale)) - 1;
}

bool IsChosen(const WeekDays& days, int index) {
    return days[static_cast<std::size_t>(index % kWeek)];
}

void MoveToChosen(Day& start, const WeekDays& days, const LocaleFacts& locale) {
    int index = IndexOf(start, locale);
    while (!IsChosen(days, index)) {
        ++start.serial;
        ++index;
    }
}

WeekDays DaysOfPattern(std::uint8_t pattern, const LocaleFacts& locale) {
    WeekDays days{};
    for (int weekday = 1; weekday <= kWeek; ++weekday)
        days[static_cast<std::size_t>(SundayToLocalWeekday(weekday, locale) - 1)] =
            (pattern >> weekday & 1) != 0;
    return days;
}

std::uint8_t PatternOfDays(const WeekDays& days, const LocaleFacts& locale) {
    int pattern = 0;
    for (int index = 0; index < kWeek; ++index)
        if (IsChosen(days, index)) pattern |= 1 << LocalToSundayWeekday(index + 1, locale);
    return static_cast<std::uint8_t>(pattern);
}

std::int32_t CountYears(Day start, Day end) {
    const bool early = end < RolledDate(YearOf(end), MonthOf(start), DayOfMonth(start));
    return YearOf(end) - YearOf(start) + 1 - (early ? 1 : 0);
}

/// One derivation of the last day and of the number, for the kind of a state.
class Derivation {
  public:
    Derivation(RedoState& state, const LocaleFacts& locale, const SeriesVoice& voice)
        : state_(state), locale_(locale), voice_(voice) {}

    /// The last day from `count`, and the number that this day makes. A count below 1 acts as 1.
    std::int32_t EndFromCount(std::int32_t count) {
        count = AtLeastOne(count);
        const std::int64_t steps = std::int64_t{count} - 1;
        Day end = state_.start;
        switch (Kind()) {
            case RedoKind::None:
                count = 1;
                break;
            case RedoKind::Weekly:
            case RedoKind::Workdays:
                end = WeeklyEndDate(state_.start, count, Interval(), Days(), locale_);
                break;
            case RedoKind::Daily:
                end = DayAt(state_.start.serial + steps * Interval());
                break;
            case RedoKind::MonthDay:
                end = Stepped(state_.start, steps * Interval(), SeriesUnit::Months);
                break;
            case RedoKind::YearDay:
                end = Stepped(state_.start, steps, SeriesUnit::Years);
                break;
            case RedoKind::MonthWeekday:
            case RedoKind::YearWeekday:
                FixStart();
                end = Nth(count, {});
                break;
        }
        state_.end = std::max(Limited(end), state_.start);
        return Kind() == RedoKind::MonthDay ? count : CountFromEnd();
    }

    /// The number of occurrences up to the last day.
    std::int32_t CountFromEnd() {
        switch (Kind()) {
            case RedoKind::None:
                break;
            case RedoKind::Weekly:
            case RedoKind::Workdays:
                return WeeklyCount(state_.start, state_.end, Days(), Interval(), locale_);
            case RedoKind::Daily:
                return (state_.end.serial - state_.start.serial) / Interval() + 1;
            case RedoKind::MonthDay: {
                const std::int32_t months = MonthNumber(state_.end) - MonthNumber(state_.start) + 1;
                const bool early = DayOfMonth(state_.start) > DayOfMonth(state_.end);
                return (months - (early ? 1 : 0)) / Interval();
            }
            case RedoKind::YearDay:
                return CountYears(state_.start, state_.end);
            case RedoKind::MonthWeekday:
            case RedoKind::YearWeekday:
                return CountNthOccurrences(state_.start, state_.nth, state_.weekday, state_.end, Unit(),
                                           Interval(), locale_);
        }
        return 1;
    }

    /// On the limit, and so told, where the day lies on or above it.
    Day Limited(Day day) {
        if (day < kUpperLimit) return day;
        if (voice_.limitTaken) voice_.limitTaken();
        return kUpperLimit;
    }

    /// A series on n-th weekdays begins on one, and the appointment with it.
    void FixStart() {
        if (Kind() != RedoKind::MonthWeekday && Kind() != RedoKind::YearWeekday) return;
        Day first = FirstFrom(state_.start);
        // The next month, where that is chosen, is none of a yearly series.
        if (IsInOtherMonth(first)) first = FirstFrom(first);
        if (first != state_.start && first < kUpperLimit) state_.start = state_.date = first;
    }

  private:
    RedoKind Kind() const { return static_cast<RedoKind>(state_.kind); }
    bool IsInOtherMonth(Day day) const {
        return Kind() == RedoKind::YearWeekday && state_.month >= 1 && state_.month <= 12 &&
               state_.month != MonthOf(day);
    }
    Day FirstFrom(Day start) const {
        // No day of another month lies before the start, whose day of the month tells nothing there.
        if (IsInOtherMonth(start))
            start = RolledDate(YearOf(start) + (state_.month < MonthOf(start) ? 1 : 0), state_.month, 1);
        return NthFrom(start, 1, voice_);
    }
    Day Nth(std::int32_t count, const SeriesVoice& voice) const {
        return NthFrom(state_.start, count, voice);
    }
    Day NthFrom(Day start, std::int32_t count, const SeriesVoice& voice) const {
        return NthOccurrenceDate(start, state_.nth, state_.weekday, count, Unit(), Interval(),
                                 Kind() == RedoKind::YearWeekday ? state_.month : 0, locale_, voice);
    }
    SeriesUnit Unit() const {
        return Kind() == RedoKind::YearWeekday ? SeriesUnit::Years : SeriesUnit::Months;
    }
    std::int32_t Interval() const {
        switch (Kind()) {
            case RedoKind::Weekly:
            case RedoKind::Daily:
            case RedoKind::MonthDay:
                return AtLeastOne(state_.interval);
            case RedoKind::MonthWeekday:
                return AtLeastOne(state_.intervalAlt);
            default:
                return 1;
        }
    }
    WeekDays Days() const {
        return Kind() == RedoKind::Weekly ? state_.days : DaysOfPattern(kMondayToFriday, locale_);
    }

    RedoState& state_;
    const LocaleFacts& locale_;
    SeriesVoice voice_;
};

/// The number alone, with nothing moved.
std::int32_t CountOf(RedoState state, const LocaleFacts& locale) {
    return AtLeastOne(Derivation(state, locale, {}).CountFromEnd());
}

}  // namespace

Day FirstNthWeekday(int nth, int weekday, Day& date, const SeriesVoice& voice) {
    if (weekday == 0) weekday = Weekday(date);
    if (nth == 0) nth = WeekOfMonth(date);
    for (;;) {
        const Day found = NthWeekdayOfMonth(nth, weekday, date);
        if (found >= date || !voice.beginNextMonth || !voice.beginNextMonth()) return found;
        date = PlusMonths(MonthFirst(date), 1);
    }
}

Day NthOccurrenceDate(Day start, int nth, int localWeekday, std::int32_t count, SeriesUnit unit,
                      std::int32_t interval, int month, const LocaleFacts& locale, const SeriesVoice& voice) {
    const int weekday = LocalToSundayWeekday(localWeekday, locale);
    const std::int64_t steps = (std::int64_t{count} - 1) * AtLeastOne(interval);
    Day date = Stepped(start, steps, unit);
    if (unit == SeriesUnit::Years) {
        if (month == 0) month = MonthOf(date);
        if (month < MonthOf(date)) date = Stepped(date, 1, unit);
        date = RolledDate(YearOf(date), month, DayOfMonth(date));
    }
    const Day found = FirstNthWeekday(nth, weekday, date, voice);
    return MonthNumber(found) == MonthNumber(date) ? found : Stepped(found, 1, unit);
}

std::int32_t CountNthOccurrences(Day start, int nth, int localWeekday, Day end, SeriesUnit unit,
                                 std::int32_t interval, const LocaleFacts& locale) {
    const bool inMonths = unit == SeriesUnit::Months;
    const std::int32_t units = inMonths ? MonthNumber(end) - MonthNumber(start) : YearOf(end) - YearOf(start);
    const std::int32_t count = units / AtLeastOne(interval) + 1;
    const Day last = NthOccurrenceDate(start, nth, localWeekday, count, unit, interval, 0, locale);
    if (last <= end) return count;
    return inMonths || MonthOf(last) != MonthOf(end) ? count - 1 : count;
}

std::int32_t WeeklyCount(Day& start, Day end, const WeekDays& days, std::int32_t interval,
                         const LocaleFacts& locale) {
    const std::int32_t chosen = ChosenDays(days);
    if (chosen == 0) return 0;
    MoveToChosen(start, days, locale);
    const std::int32_t cycle = AtLeastOne(interval) * kWeek;
    const std::int32_t length = end.serial - start.serial + 1;
    std::int32_t count = (length >= 0 ? length / cycle : -((cycle - 1 - length) / cycle)) * chosen;
    if (length % cycle <= 0) return count;
    const int first = IndexOf(start, locale);
    int last = IndexOf(end, locale);
    if (last < first) last += kWeek;
    for (int index = first; index <= last; ++index)
        if (IsChosen(days, index)) ++count;
    return count;
}

Day WeeklyEndDate(Day& start, std::int32_t count, std::int32_t interval, const WeekDays& days,
                  const LocaleFacts& locale) {
    const std::int32_t chosen = ChosenDays(days);
    if (chosen == 0) return start;
    MoveToChosen(start, days, locale);
    const std::int64_t step = AtLeastOne(interval);
    std::int64_t left = AtLeastOne(count);
    std::int64_t walked = 0;
    const auto walkFrom = [&](int index) {
        for (; index < kWeek && left > 0; ++index, ++walked)
            if (IsChosen(days, index)) --left;
    };
    walkFrom(IndexOf(start, locale));
    if (left > 0) {
        walked += left / chosen * step * kWeek;
        left %= chosen;
        if (left > 0) {
            walked += (step - 1) * kWeek;
            walkFrom(0);
        } else {
            for (int index = kWeek - 1; !IsChosen(days, index); --index)
                --walked;
        }
    }
    return DayAt(start.serial + walked - 1);
}

RedoKind KindOf(int frequency, int alternative) {
    switch (frequency) {
        case 1:
            return RedoKind::Weekly;
        case 2:
        case 3:
        case 4:
            return static_cast<RedoKind>(2 * (frequency - 1) + (alternative == 1 ? 1 : 0));
        default:
            return RedoKind::None;
    }
}

RedoState NewRedoState(Day date, const LocaleFacts& locale) {
    RedoState state;
    state.start = state.date = date;
    state.end = kNoEndShown;
    state.days[static_cast<std::size_t>(IndexOf(date, locale))] = true;
    state.weekday = WeekdayFrom(date, FirstDayOfWeek(locale));
    state.nth = WeekOfMonth(date);
    state.month = MonthOf(date);
    return state;
}

Bytes BuildRedoString(const RedoState& state, const LocaleFacts& locale) {
    if (state.frequency == 0) return {};
    RedoRule rule;
    rule.kind = static_cast<RedoKind>(state.kind);
    rule.endMode = static_cast<std::uint8_t>(state.endMode);
    rule.first = DateToDays16(state.start);
    rule.last = DateToDays16(state.end);
    const auto onNth = static_cast<std::uint8_t>(LocalToSundayWeekday(state.weekday, locale) + 8 * state.nth);
    switch (rule.kind) {
        case RedoKind::None:
            break;
        case RedoKind::Weekly:
            rule.pattern = PatternOfDays(state.days, locale);
            rule.interval = ByteOf(state.interval);
            break;
        case RedoKind::Daily:
            rule.interval = ByteOf(state.interval);
            break;
        case RedoKind::Workdays:
            rule.pattern = kMondayToFriday;
            break;
        case RedoKind::MonthDay:
            rule.pattern = ByteOf(DayOfMonth(state.start));
            rule.interval = ByteOf(state.interval);
            break;
        case RedoKind::MonthWeekday:
            rule.pattern = onNth;
            rule.interval = ByteOf(state.intervalAlt);
            break;
        case RedoKind::YearDay:
            rule.pattern = ByteOf(DayOfMonth(state.start));
            rule.interval = ByteOf(MonthOf(state.start));
            break;
        case RedoKind::YearWeekday:
            rule.pattern = onNth;
            rule.interval = ByteOf(state.month);
            break;
    }
    return WriteRedoRule(rule);
}

RedoState ParseRedoString(std::string_view redoString, Day date, const LocaleFacts& locale) {
    RedoState state = NewRedoState(date, locale);
    const auto rule = ReadRedoRule(redoString);
    if (!rule) return state;
    const int kind = static_cast<int>(rule->kind);
    state.kind = kind;
    state.frequency = kind == 1 ? 1 : kind / 2 + 1;
    state.alternative = kind == 1 ? 0 : kind % 2;
    state.endMode = rule->endMode;
    state.start = DayOf(rule->first);
    state.end = DayOf(rule->last);
    switch (rule->kind) {
        case RedoKind::None:
        case RedoKind::YearDay:
            break;
        case RedoKind::Weekly:
            state.interval = rule->interval;
            state.days = DaysOfPattern(rule->pattern, locale);
            break;
        case RedoKind::Daily:
            state.interval = AtLeastOne(rule->interval);
            break;
        case RedoKind::Workdays:
            state.days = DaysOfPattern(kMondayToFriday, locale);
            break;
        case RedoKind::MonthDay:
            state.interval = rule->interval;
            break;
        case RedoKind::MonthWeekday:
            state.intervalAlt = rule->interval;
            break;
        case RedoKind::YearWeekday:
            state.month = rule->interval;
            break;
    }
    if (rule->kind == RedoKind::MonthWeekday || rule->kind == RedoKind::YearWeekday) {
        state.nth = rule->pattern >> 3 & 7;
        state.weekday = SundayToLocalWeekday(rule->pattern & 7, locale);
    }
    state.count = CountOf(state, locale);
    return state;
}

void SeriesFromCount(RedoState& state, const LocaleFacts& locale, const SeriesVoice& voice) {
    if (state.filling) return;
    Derivation derivation(state, locale, voice);
    const std::int32_t derived = derivation.EndFromCount(state.count);
    if (derived != state.count) {
        derivation.EndFromCount(derived);
        state.count = AtLeastOne(derived);
    }
    if (state.alternative == 1) state.date = state.start;
}

void CountFromEndDate(RedoState& state, const LocaleFacts& locale, const SeriesVoice& voice) {
    if (state.filling) {
        state.count = CountOf(state, locale);
        return;
    }
    Derivation derivation(state, locale, voice);
    // First, or a start that moves to the next month would carry the last day behind the one that was given.
    derivation.FixStart();
    state.end = std::max(derivation.Limited(state.end), state.start);
    state.count = AtLeastOne(derivation.CountFromEnd());
    derivation.EndFromCount(state.count);
}

void RecalcRedoEnd(RedoState& state, const LocaleFacts& locale, const SeriesVoice& voice) {
    if (state.filling) return;
    if (state.endMode == RedoEnd::Count)
        SeriesFromCount(state, locale, voice);
    else
        CountFromEndDate(state, locale, voice);
}

Day NoEndLastDay(Day start, RandomSource& random) {
    const auto back = static_cast<std::int32_t>(random.Uniform() * kLastTenYears);
    return std::max(start, Day{kEpoch.serial + kLastRangeDay - back});
}

Bytes StringToStore(RedoState& state, std::string_view stored, const LocaleFacts& locale,
                    RandomSource& random) {
    if (state.frequency == 0) return {};
    const bool endless = state.endMode == RedoEnd::Never;
    if (endless) state.end = NoEndLastDay(state.start, random);
    Bytes built = BuildRedoString(state, locale);
    const auto rule = ReadRedoRule(stored);
    if (!rule) return built;
    // What the stored one would be if it were built now: a foreign one may say the same in other bytes.
    const Bytes before = BuildRedoString(ParseRedoString(stored, state.date, locale), locale);
    const std::size_t compared = endless ? kLastDayAt : kPlainLength;
    if (before.compare(0, compared, built, 0, compared) != 0) return built;
    if (endless) state.end = DayOf(rule->last);
    return Bytes(stored);
}

}  // namespace bmr::calendar
