#include "calendar/seriessplit.h"

#include <algorithm>
#include <limits>

#include "calendar/months.h"

namespace bmr::calendar {
namespace {

constexpr std::int32_t kWeek = 7;
/// Days of the month up to which the six weeks of the month before commonly reach.
constexpr int kReachedDays = 12;
constexpr int kLastNth = 5;
constexpr std::uint8_t kDaysOfWeek = 0xFE;

constexpr const char* kForeign = "The rule of this series is not one of this program's editor.";
constexpr const char* kNoDay =
    "The series has no date of its own on this day: only the six weeks of a month show it there.";
constexpr const char* kReached =
    "A monthly series on this day of the month cannot begin anew here: the weeks shown around a month would "
    "show it before its start, too. Change it as a whole, or give it an end in the editor.";
constexpr const char* kFull = "No more days can be left out of this series.";
constexpr const char* kWeekend = "A series on workdays has no Saturday and no Sunday.";
constexpr const char* kBeyond = "The day lies outside the range of the calendar.";

/// The last day that a recurrence string can hold.
constexpr Day kLastStorable{kEpoch.serial + std::numeric_limits<std::int16_t>::max()};

Day LastOf(const RedoRule& rule) {
    return rule.endMode == RedoEnd::Never ? kLastStorable : DayOf(rule.last);
}

/// The days of the series in a month, ascending.
std::vector<Day> DaysInMonth(const RedoRule& rule, std::int32_t month, const LocaleFacts& locale) {
    const Day first = RolledDate(0, month + 1, 1);
    std::vector<Day> days;
    ExpandRule(rule, {first, MonthLast(first)}, locale, days);
    return days;
}

/// How many days the series has from `day` on.
std::size_t CountFrom(const RedoRule& rule, Day day, const LocaleFacts& locale) {
    std::size_t count = 0;
    for (std::int32_t month = MonthNumber(day); month <= MonthNumber(LastOf(rule)); ++month)
        for (const Day each : DaysInMonth(rule, month, locale))
            if (each >= day) ++count;
    return count;
}

/// A rule that an editor could have written. Any other may show its days by the period alone.
bool IsPlain(const RedoRule& rule) {
    const bool nth = (rule.pattern & 7) != 0 && (rule.pattern >> 3 & 7) >= 1 && rule.pattern >> 3 <= kLastNth;
    const bool isMonth = rule.interval >= 1 && rule.interval <= 12;
    if (LastOf(rule) < DayOf(rule.first)) return false;
    switch (rule.kind) {
        case RedoKind::None:
            return false;
        case RedoKind::Weekly:
            return rule.interval > 0 && (rule.pattern & kDaysOfWeek) != 0;
        case RedoKind::Workdays:
            return true;
        case RedoKind::Daily:
        case RedoKind::MonthDay:
            return rule.interval > 0;
        case RedoKind::MonthWeekday:
            return rule.interval > 0 && nth;
        case RedoKind::YearDay:
            return isMonth && rule.pattern >= 1 && rule.pattern <= 31;
        case RedoKind::YearWeekday:
            return isMonth && nth;
    }
    return false;
}

/// The excluded days from `first` to `last`, ascending, each once.
std::vector<DayCount> ExcludedIn(const RedoRule& rule, Day first, Day last) {
    std::vector<DayCount> days;
    for (const DayCount each : rule.excluded)
        if (DayOf(each) >= first && DayOf(each) <= last) days.push_back(each);
    std::ranges::sort(days);
    days.erase(std::unique(days.begin(), days.end()), days.end());
    return days;
}

void Exclude(RedoRule& rule, Day day) {
    rule.excluded.push_back(DateToDays16(day));
    rule.excluded = ExcludedIn(rule, DayOf(rule.first), LastOf(rule));
}

/// The part of a rule up to `last`, on which it has a day.
RedoRule EndingOn(RedoRule rule, Day last) {
    if (rule.endMode != RedoEnd::Count) rule.endMode = RedoEnd::Date;
    rule.last = DateToDays16(last);
    rule.excluded = ExcludedIn(rule, DayOf(rule.first), last);
    return rule;
}

/// The part of a rule from `first` on, on which it has a day.
RedoRule BeginningOn(RedoRule rule, Day first) {
    rule.first = DateToDays16(first);
    rule.last = std::max(rule.last, rule.first);
    rule.excluded = ExcludedIn(rule, first, LastOf(rule));
    return rule;
}

/// The periods that views show around the days of a cut.
std::vector<Period> ViewsAround(Day first, Day last, const LocaleFacts& locale) {
    std::vector<Period> views;
    const auto add = [&](Day day, PeriodKind kind) {
        const Period view = PeriodBounds(day, kind, locale);
        if (views.empty() || views.back() != view) views.push_back(view);
    };
    for (const PeriodKind kind : {PeriodKind::Day, PeriodKind::WorkWeek, PeriodKind::Week})
        for (Day day = first; day <= last; ++day.serial)
            add(day, kind);
    for (std::int32_t month = MonthNumber(first) - 1; month <= MonthNumber(last) + 1; ++month)
        add(RolledDate(0, month + 1, 1), PeriodKind::MonthGrid);
    return views;
}

/// Whether each view shows of the parts what it showed of the whole. `removed`: the day that none shows any
/// more.
bool ShowTheSame(const RedoRule& rule, const SeriesParts& parts, std::optional<Day> removed, Day around,
                 const LocaleFacts& locale) {
    const Day first = parts.before ? DayOf(parts.before->last) : around;
    const Day last = parts.after ? DayOf(parts.after->first) : around;
    std::vector<Day> whole;
    std::vector<Day> cut;
    for (const Period& view : ViewsAround(std::min(first, around), std::max(last, around), locale)) {
        whole.clear();
        cut.clear();
        ExpandRule(rule, view, locale, whole);
        if (removed) std::erase(whole, *removed);
        if (parts.before) ExpandRule(*parts.before, view, locale, cut);
        if (parts.after) ExpandRule(*parts.after, view, locale, cut);
        std::ranges::sort(cut);
        if (whole != cut) return false;
    }
    return true;
}

/// What forbids to touch a day of the series alone.
std::string WhyUntouched(const RedoRule& rule, Day day, const LocaleFacts& locale) {
    if (!IsPlain(rule)) return kForeign;
    return IsOfSeries(rule, day, locale) ? "" : kNoDay;
}

std::uint8_t NthPattern(Day day, bool last) {
    const int nth = last ? kLastNth : WeekOfMonth(day);
    return static_cast<std::uint8_t>(Weekday(day) + 8 * nth);
}

bool IsLastOfItsWeekday(Day day) {
    return MonthOf({day.serial + kWeek}) != MonthOf(day);
}

/// One weekday of a weekly series becomes another, and all weeks move.
class WeekMove {
  public:
    WeekMove(const RedoRule& rule, Day from, Day to, const LocaleFacts& locale)
        : rule_(rule),
          locale_(locale),
          firstDay_(FirstDayOfWeek(locale)),
          fromWeekday_(Weekday(from)),
          weeks_(WeekStart(to, firstDay_).serial - WeekStart(from, firstDay_).serial),
          shift_(to.serial - from.serial) {}

    RedoRule Run(Day from, Day to) const {
        RedoRule moved = rule_;
        moved.pattern =
            static_cast<std::uint8_t>((rule_.pattern & ~(1U << static_cast<unsigned>(Weekday(from)))) |
                                      1U << static_cast<unsigned>(Weekday(to)));
        moved.excluded.clear();
        const std::vector<Day> firstWeek = MovedWeek(from);
        moved.first = DateToDays16(firstWeek.front());
        for (const DayCount each : rule_.excluded)
            if (IsMovedAway(DayOf(each))) moved.excluded.push_back(DateToDays16(Moved(DayOf(each))));
        if (moved.endMode != RedoEnd::Never) {
            const auto last = LastBefore(rule_, {DayOf(rule_.last).serial + 1}, locale_);
            const std::vector<Day> lastWeek = MovedWeek(last.value_or(from));
            moved.last = DateToDays16(lastWeek.back());
            ExcludeStrangers(moved, lastWeek);
        }
        ExcludeStrangers(moved, firstWeek);
        moved.excluded = ExcludedIn(moved, DayOf(moved.first), LastOf(moved));
        return moved;
    }

  private:
    Day Moved(Day day) const { return {day.serial + (Weekday(day) == fromWeekday_ ? shift_ : weeks_)}; }

    std::vector<Day> DaysOfWeek(const RedoRule& rule, Day day) const {
        const Day week = WeekStart(day, firstDay_);
        std::vector<Day> days;
        ExpandRule(rule, {week, {week.serial + kWeek - 1}}, locale_, days);
        return days;
    }
    /// Where the days of the week of `day` go, ascending.
    std::vector<Day> MovedWeek(Day day) const {
        std::vector<Day> days = DaysOfWeek(rule_, day);
        for (Day& each : days)
            each = Moved(each);
        std::ranges::sort(days);
        return days;
    }
    /// Whether no other day of the series comes to the place of an excluded one.
    bool IsMovedAway(Day excluded) const {
        return std::ranges::count(MovedWeek(excluded), Moved(excluded)) == 0;
    }
    /// A week in which the series begins or ends may have fewer days than its weekdays tell.
    void ExcludeStrangers(RedoRule& moved, const std::vector<Day>& wanted) const {
        for (const Day each : DaysOfWeek(moved, wanted.front()))
            if (std::ranges::count(wanted, each) == 0) moved.excluded.push_back(DateToDays16(each));
    }

    const RedoRule& rule_;
    const LocaleFacts& locale_;
    int firstDay_;
    int fromWeekday_;
    std::int32_t weeks_;  ///< in days
    std::int32_t shift_;
};

/// The rule of the kinds that have no weeks, with its pattern told by `to`.
RedoRule OnDayOf(RedoRule rule, Day from, Day to) {
    const bool last = (rule.pattern >> 3 & 7) == kLastNth && IsLastOfItsWeekday(to);
    if (rule.kind == RedoKind::MonthDay || rule.kind == RedoKind::YearDay)
        rule.pattern = static_cast<std::uint8_t>(DayOfMonth(to));
    if (rule.kind == RedoKind::MonthWeekday || rule.kind == RedoKind::YearWeekday)
        rule.pattern = NthPattern(to, last);
    if (rule.kind == RedoKind::YearDay || rule.kind == RedoKind::YearWeekday)
        rule.interval = static_cast<std::uint8_t>(MonthOf(to));
    rule.first = DateToDays16(to);
    std::vector<DayCount> excluded;
    if (rule.kind == RedoKind::Daily)
        for (const DayCount each : rule.excluded)
            excluded.push_back(DateToDays16({DayOf(each).serial + to.serial - from.serial}));
    rule.excluded = std::move(excluded);
    return rule;
}

/// The day of occurrence number `count`; where the range ends before, the last one in it.
Day NthDay(RedoRule rule, std::size_t count, const LocaleFacts& locale) {
    rule.endMode = RedoEnd::Never;
    Day found = DayOf(rule.first);
    for (std::int32_t month = MonthNumber(found); month <= MonthNumber(kUpperLimit) && count > 0; ++month)
        for (const Day day : DaysInMonth(rule, month, locale)) {
            if (count == 0 || day >= kUpperLimit) break;
            found = day;
            --count;
        }
    return found;
}

}  // namespace

bool IsOfSeries(const RedoRule& rule, Day day, const LocaleFacts& locale) {
    return std::ranges::count(DaysInMonth(rule, MonthNumber(day), locale), day) > 0;
}

std::optional<Day> LastBefore(const RedoRule& rule, Day day, const LocaleFacts& locale) {
    const std::int32_t first = MonthNumber(DayOf(rule.first));
    for (std::int32_t month = std::min(MonthNumber(day), MonthNumber(LastOf(rule))); month >= first;
         --month) {
        const std::vector<Day> days = DaysInMonth(rule, month, locale);
        const auto behind = std::ranges::lower_bound(days, day);
        if (behind != days.begin()) return *(behind - 1);
    }
    return std::nullopt;
}

std::optional<Day> FirstFrom(const RedoRule& rule, Day day, const LocaleFacts& locale) {
    const std::int32_t last = MonthNumber(LastOf(rule));
    for (std::int32_t month = std::max(MonthNumber(day), MonthNumber(DayOf(rule.first))); month <= last;
         ++month) {
        const std::vector<Day> days = DaysInMonth(rule, month, locale);
        const auto found = std::ranges::lower_bound(days, day);
        if (found != days.end()) return *found;
    }
    return std::nullopt;
}

SeriesParts CutBefore(const RedoRule& rule, Day day, const LocaleFacts& locale) {
    SeriesParts parts;
    if (const auto last = LastBefore(rule, day, locale)) parts.before = EndingOn(rule, *last);
    if (const auto first = FirstFrom(rule, day, locale)) parts.after = BeginningOn(rule, *first);
    return parts;
}

SeriesParts WithoutDay(const RedoRule& rule, Day day, const LocaleFacts& locale) {
    if (!rule.HeedsExcluded())
        return {CutBefore(rule, day, locale).before, CutBefore(rule, {day.serial + 1}, locale).after};
    SeriesParts parts;
    RedoRule left = rule;
    Exclude(left, day);
    if (FirstFrom(left, DayOf(left.first), locale)) parts.before = std::move(left);
    return parts;
}

std::string WhyUncut(const RedoRule& rule, Day day, const LocaleFacts& locale) {
    if (std::string why = WhyUntouched(rule, day, locale); !why.empty()) return why;
    const SeriesParts parts = CutBefore(rule, day, locale);
    // On its first day nothing is cut.
    if (rule.kind != RedoKind::MonthDay || !parts.before) return {};
    if (DayOfMonth(day) <= kReachedDays || !ShowTheSame(rule, parts, {}, day, locale)) return kReached;
    return {};
}

std::string WhyNotWithout(const RedoRule& rule, Day day, const LocaleFacts& locale) {
    if (std::string why = WhyUntouched(rule, day, locale); !why.empty()) return why;
    if (rule.HeedsExcluded()) return rule.excluded.size() < kMostExcluded ? "" : kFull;
    if (rule.kind != RedoKind::MonthDay) return {};
    const SeriesParts parts = WithoutDay(rule, day, locale);
    if (!parts.before && !parts.after) return {};
    if (DayOfMonth(day) <= kReachedDays || !ShowTheSame(rule, parts, day, day, locale)) return kReached;
    return {};
}

RedoRule MovedTo(const RedoRule& rule, Day from, Day to, const LocaleFacts& locale) {
    if (from == to) return rule;
    if (rule.kind == RedoKind::Weekly) return WeekMove(rule, from, to, locale).Run(from, to);
    if (rule.kind == RedoKind::Workdays) {
        RedoRule moved = rule;
        std::erase(moved.excluded, DateToDays16(to));
        return BeginningOn(std::move(moved), to);
    }
    RedoRule moved = OnDayOf(rule, from, to);
    if (rule.endMode == RedoEnd::Never)
        moved.last = std::max(moved.last, moved.first);
    else if (rule.kind == RedoKind::Daily)
        moved.last = DateToDays16({DayOf(rule.last).serial + to.serial - from.serial});
    else
        moved.last = DateToDays16(NthDay(moved, CountFrom(rule, from, locale), locale));
    return moved;
}

std::string WhyUnmoved(const RedoRule& rule, Day from, Day to, const LocaleFacts& locale) {
    if (DateLimitBox(to, locale)) return kBeyond;
    if (from == to) return {};
    const int weekday = Weekday(to);
    if (rule.kind == RedoKind::Workdays && (weekday == 1 || weekday == kWeek)) return kWeekend;
    if (rule.kind != RedoKind::MonthDay || !LastBefore(rule, from, locale)) return {};
    const RedoRule moved = MovedTo(BeginningOn(rule, from), from, to, locale);
    for (const Period& view : ViewsAround(to, to, locale)) {
        std::vector<Day> days;
        ExpandRule(moved, view, locale, days);
        if (std::ranges::any_of(days, [to](Day day) { return day < to; })) return kReached;
    }
    return {};
}

}  // namespace bmr::calendar
