#include "calendar/recurrence.h"

#include <algorithm>

#include "calendar/months.h"

namespace bmr::calendar {
namespace {

constexpr std::size_t kShortest = 7;
/// The last day of a series without an end, in days since the epoch: beyond every day that can be entered.
constexpr std::int32_t kNoLastDay = 65536;
constexpr std::int32_t kWeek = 7;

std::uint8_t ByteAt(std::string_view text, std::size_t place) {
    return static_cast<std::uint8_t>(text[place]);
}

DayCount DayCountAt(std::string_view text, std::size_t place) {
    return {static_cast<std::int16_t>(ByteAt(text, place) | ByteAt(text, place + 1) << 8)};
}

void AppendDayCount(Bytes& text, DayCount days) {
    const auto bits = static_cast<std::uint16_t>(days.count);
    text += static_cast<char>(bits & 255);
    text += static_cast<char>(bits >> 8);
}

Day InMonth(std::int32_t monthNumber, int day) {
    return RolledDate(0, monthNumber + 1, day);
}

/// The least number of steps by which `distance` becomes a multiple of `interval`.
std::int32_t StepsToPhase(std::int32_t distance, std::int32_t interval) {
    return (interval - distance % interval) % interval;
}

/// The days of a rule in one period.
class Expansion {
  public:
    Expansion(const RedoRule& rule, Period period, const LocaleFacts& locale, std::vector<Day>& days)
        : rule_(rule),
          period_(period),
          first_(DayOf(rule.first)),
          last_{rule.endMode == RedoEnd::Never ? kEpoch.serial + kNoLastDay : DayOf(rule.last).serial},
          firstDay_(FirstDayOfWeek(locale)),
          days_(days) {}

    void Run() {
        if (last_ < period_.first || first_ > period_.last) return;
        switch (rule_.kind) {
            case RedoKind::None:
                break;
            case RedoKind::Weekly:
                return Weekly(rule_.pattern, rule_.interval);
            case RedoKind::Workdays:
                return Weekly(kMondayToFriday, 1);
            case RedoKind::Daily:
                return Daily();
            case RedoKind::MonthDay:
                return MonthDay();
            case RedoKind::MonthWeekday:
                return MonthWeekday();
            case RedoKind::YearDay:
                return YearDay();
            case RedoKind::YearWeekday:
                return YearWeekday();
        }
    }

  private:
    static constexpr std::uint8_t kMondayToFriday = 124;

    void AppendUnlessExcluded(Day day) {
        const std::int32_t count = day.serial - kEpoch.serial;
        const auto found =
            std::lower_bound(excluded_.begin(), excluded_.end(), count,
                             [](DayCount each, std::int32_t wanted) { return each.count < wanted; });
        if (found == excluded_.end() || found->count != count) days_.push_back(day);
    }

    /// Those of the period, sorted: a series of many years may have left out thousands.
    void TakeExcluded() {
        for (const DayCount each : rule_.excluded)
            if (const Day day = DayOf(each); day >= period_.first && day <= period_.last)
                excluded_.push_back(each);
        std::sort(excluded_.begin(), excluded_.end());
    }

    /// False once the days lie behind the period.
    bool AppendFrom(Day day, Day earliest) {
        if (day > period_.last) return false;
        if (day >= period_.first && day >= earliest && day <= last_) days_.push_back(day);
        return true;
    }

    void Weekly(std::uint8_t pattern, std::int32_t interval) {
        if (interval == 0 || (pattern & ~1U) == 0) return;
        TakeExcluded();
        const Day periodWeek = WeekStart(period_.first, firstDay_);
        const Day seriesWeek = WeekStart(first_, firstDay_);
        Day week = seriesWeek;
        if (first_ <= period_.first) {
            const std::int32_t weeks = (periodWeek.serial - seriesWeek.serial) / kWeek;
            week = {periodWeek.serial + StepsToPhase(weeks, interval) * kWeek};
        }
        const Day earliest = std::max(first_, period_.first);
        const Day latest = std::min(last_, period_.last);
        for (; week <= latest; week.serial += kWeek * interval)
            for (int i = 0; i < kWeek; ++i) {
                const Day day{week.serial + i};
                const int weekday = (firstDay_ - 1 + i) % kWeek + 1;
                if ((pattern >> weekday & 1) != 0 && day >= earliest && day <= latest)
                    AppendUnlessExcluded(day);
            }
    }

    void Daily() {
        const std::int32_t interval = rule_.interval;
        if (interval == 0) return;
        TakeExcluded();
        Day day = first_;
        if (first_ <= period_.first)
            day.serial = period_.first.serial + StepsToPhase(period_.first.serial - first_.serial, interval);
        const Day latest = std::min(last_, period_.last);
        for (; day <= latest; day.serial += interval)
            AppendUnlessExcluded(day);
    }

    /// Months in phase before the first day count too, and the next month is told from the rolled date: the
    /// 31st skips the month into which it overflowed.
    void MonthDay() {
        const std::int32_t interval = rule_.interval;
        if (interval == 0) return;
        const std::int32_t periodMonth = MonthNumber(period_.first);
        const int dayOfMonth = DayOfMonth(first_);
        std::int32_t month = periodMonth + StepsToPhase(periodMonth - MonthNumber(first_), interval);
        for (;;) {
            const Day day = InMonth(month, dayOfMonth);
            if (!AppendFrom(day, period_.first)) return;
            month = MonthNumber(day) + interval;
        }
    }

    void MonthWeekday() {
        const std::int32_t interval = rule_.interval;
        if (interval == 0) return;
        const bool fromPeriod = first_ <= period_.first || first_ >= period_.last;
        const Day base = fromPeriod ? period_.first : first_;
        std::int32_t month = MonthNumber(base);
        month += StepsToPhase(month - MonthNumber(first_), interval);
        int dayOfMonth = fromPeriod ? 1 : DayOfMonth(first_);
        for (;;) {
            const Day day = NthWeekdayOfMonth(Nth(), PatternWeekday(), InMonth(month, dayOfMonth));
            if (!AppendFrom(day, first_)) return;
            month = MonthNumber(day) + interval;
            dayOfMonth = 1;
        }
    }

    /// Steps as many years as the month has as a number. In a period of up to a year that never shows.
    void YearDay() {
        const int month = rule_.interval;
        if (month == 0) return;
        int year = YearOf(period_.first);
        const Day candidate = RolledDate(year, month, rule_.pattern);
        if (candidate < period_.first)
            ++year;
        else if (candidate > period_.last)
            --year;
        while (AppendFrom(RolledDate(year, month, rule_.pattern), period_.first))
            year += month;
    }

    void YearWeekday() {
        const int month = rule_.interval;
        if (month == 0) return;
        const bool fromSeries = period_.first < first_ && first_ < period_.last;
        int year = YearOf(fromSeries ? first_ : period_.first);
        for (;;) {
            const Day day = NthWeekdayOfMonth(Nth(), PatternWeekday(), RolledDate(year, month, 1));
            if (!AppendFrom(day, period_.first)) return;
            year = YearOf(day) + 1;
        }
    }

    int PatternWeekday() const { return rule_.pattern & 7; }
    int Nth() const { return rule_.pattern >> 3 & 7; }

    const RedoRule& rule_;
    Period period_;
    Day first_;
    Day last_;
    int firstDay_;
    std::vector<Day>& days_;
    std::vector<DayCount> excluded_;  ///< of the period, sorted
};

}  // namespace

std::optional<RedoRule> ReadRedoRule(std::string_view redoString) {
    if (redoString.size() < kShortest || redoString.size() % 2 == 0) return std::nullopt;
    std::uint8_t type = ByteAt(redoString, 0);
    if (type > 127) type = static_cast<std::uint8_t>(255 - type);
    RedoRule rule;
    rule.kind = static_cast<RedoKind>(type & 7);
    if (rule.kind == RedoKind::None) return std::nullopt;
    rule.endMode = type >> 3 & 3;
    rule.pattern = ByteAt(redoString, 1);
    rule.interval = ByteAt(redoString, 2);
    rule.first = DayCountAt(redoString, 3);
    rule.last = DayCountAt(redoString, 5);
    for (std::size_t place = kShortest; place < redoString.size(); place += 2)
        rule.excluded.push_back(DayCountAt(redoString, place));
    return rule;
}

Bytes WriteRedoRule(const RedoRule& rule) {
    Bytes text;
    text += static_cast<char>(static_cast<std::uint8_t>(rule.kind) + 8 * rule.endMode);
    text += static_cast<char>(rule.pattern);
    text += static_cast<char>(rule.interval);
    AppendDayCount(text, rule.first);
    AppendDayCount(text, rule.last);
    for (const DayCount day : rule.excluded)
        AppendDayCount(text, day);
    return text;
}

void ExpandRule(const RedoRule& rule, Period period, const LocaleFacts& locale, std::vector<Day>& days) {
    Expansion(rule, period, locale, days).Run();
}

void ExpandRecurrence(Minutes periodStart, Minutes periodEnd, std::int32_t timeOfDay,
                      std::string_view redoString, const LocaleFacts& locale, std::vector<Minutes>& minutes) {
    const auto rule = ReadRedoRule(redoString);
    if (!rule) return;
    std::vector<Day> days;
    ExpandRule(*rule, {DayOf(periodStart), DayOf(periodEnd)}, locale, days);
    for (const Day day : days)
        minutes.push_back({(day.serial - kEpoch.serial) * kMinutesOfDay + timeOfDay});
}

Day NthWeekdayOfMonth(int nth, int weekday, Day date) {
    if (weekday == 0) weekday = Weekday(date);
    if (nth == 0) nth = WeekOfMonth(date);
    const Day first = MonthFirst(date);
    const int day = (weekday + kWeek - Weekday(first)) % kWeek + (nth - 1) * kWeek;
    Day found{first.serial + day};
    if (found > MonthLast(date)) found.serial -= kWeek;
    return found;
}

}  // namespace bmr::calendar
