#include "interchange/palmrepeat.h"

#include <algorithm>
#include <optional>

#include "calendar/series.h"

namespace bmr::interchange {

namespace {

using calendar::RedoKind;
using calendar::RedoRule;

constexpr std::uint32_t kSecondsOfDay = 86400;
constexpr Day kPalmEpoch{25569};  ///< 1 January 1970
constexpr std::uint32_t kMostInterval = 255;
constexpr std::uint32_t kMonthsOfYear = 12;
constexpr std::uint32_t kMostYears = kMostInterval / kMonthsOfYear;
constexpr std::uint32_t kLastWeek = 5;
constexpr std::uint32_t kSaturday = 6;
/// As many as the string has room for in its field.
constexpr std::size_t kMostExcluded = 32000;
constexpr int kDaysOfMonth = 31;

unsigned DayOfMonth(Day day) {
    return static_cast<unsigned>(YearMonthDay(day).day());
}
unsigned MonthOf(Day day) {
    return static_cast<unsigned>(YearMonthDay(day).month());
}

/// A rule being made, and why it is none in the end.
struct Draft {
    RedoRule rule;
    std::string refusal;
    Day horizon;  ///< the first occurrence lies no later

    void Refuse(std::string why) { refusal = std::move(why); }
};

void MapWeekly(const PalmRepeat& repeat, Day start, const LocaleFacts& locale, Draft& draft,
               PalmSeries& series) {
    unsigned mask = repeat.mask & 0x7FU;
    if (mask == 0) {
        mask = 1U << (Weekday(start) - 1);
        series.remarks.emplace_back("repeats weekly on no weekday: that of its start was taken");
    }
    draft.rule.kind = RedoKind::Weekly;
    draft.rule.pattern = static_cast<std::uint8_t>(mask << 1);
    draft.horizon = {start.serial + 7 * static_cast<std::int32_t>(repeat.interval + 1)};
    const bool oneDay = (mask & (mask - 1)) == 0;
    if (repeat.interval > 1 && !oneDay && repeat.firstDay <= kSaturday &&
        static_cast<int>(repeat.firstDay) + 1 != calendar::FirstDayOfWeek(locale))
        series.remarks.emplace_back("repeats in weeks that begin on another day than yours");
}

void MapByWeekday(const PalmRepeat& repeat, Day start, Draft& draft) {
    const std::uint32_t weekday = repeat.longs.at(0);
    const std::uint32_t week = repeat.longs.at(1);
    if (weekday > kSaturday || week > kLastWeek)
        return draft.Refuse("repeats on a weekday of the month that is none");
    draft.rule.kind = RedoKind::MonthWeekday;
    draft.rule.pattern = static_cast<std::uint8_t>(weekday + 1 + 8 * (std::min(week, 4U) + 1));
    draft.horizon = {start.serial + kDaysOfMonth * static_cast<std::int32_t>(repeat.interval + 1)};
}

void MapYearly(const PalmRepeat& repeat, Day start, Draft& draft) {
    draft.rule.pattern = static_cast<std::uint8_t>(DayOfMonth(start));
    if (repeat.interval == 1) {
        draft.rule.kind = RedoKind::YearDay;
        draft.rule.interval = static_cast<std::uint8_t>(MonthOf(start));
    } else if (repeat.interval <= kMostYears) {
        draft.rule.kind = RedoKind::MonthDay;
        draft.rule.interval = static_cast<std::uint8_t>(repeat.interval * kMonthsOfYear);
    } else {
        draft.Refuse("repeats every " + std::to_string(repeat.interval) + " years, which is too far apart");
    }
}

/// Kind, pattern and interval.
void MapRule(const PalmRepeat& repeat, Day start, const LocaleFacts& locale, Draft& draft,
             PalmSeries& series) {
    if (repeat.interval == 0) return draft.Refuse("repeats every 0 times");
    const auto kind = static_cast<PalmRepeatKind>(repeat.kind);
    if (repeat.interval > kMostInterval && kind != PalmRepeatKind::Yearly)
        return draft.Refuse("repeats at an interval of " + std::to_string(repeat.interval) +
                            ", more than 255");
    draft.rule.interval = static_cast<std::uint8_t>(std::min(repeat.interval, kMostInterval));
    draft.horizon = start;
    switch (kind) {
        case PalmRepeatKind::Daily:
            draft.rule.kind = RedoKind::Daily;
            return;
        case PalmRepeatKind::Weekly:
            return MapWeekly(repeat, start, locale, draft, series);
        case PalmRepeatKind::MonthlyByWeekday:
            return MapByWeekday(repeat, start, draft);
        case PalmRepeatKind::MonthlyByDate:
            draft.rule.kind = RedoKind::MonthDay;
            draft.rule.pattern = static_cast<std::uint8_t>(DayOfMonth(start));
            if (DayOfMonth(start) > 28)
                series.remarks.emplace_back(
                    "repeats on a day that short months lack: there it comes some days later, and may stay "
                    "there");
            return;
        case PalmRepeatKind::Yearly:
            if (MonthOf(start) == 2 && DayOfMonth(start) == 29)
                series.remarks.emplace_back("repeats on 29 February: in other years it comes on 1 March");
            return MapYearly(repeat, start, draft);
        case PalmRepeatKind::None:
            break;
    }
    draft.Refuse("repeats in a way that is not known (" + std::to_string(repeat.kind) + ")");
}

std::optional<Day> FirstOccurrence(const Draft& draft, Day start, const LocaleFacts& locale) {
    if (draft.horizon == start) return start;
    std::vector<Day> days;
    calendar::ExpandRule(draft.rule, {start, draft.horizon}, locale, days);
    const auto first = std::ranges::min_element(days);
    return first == days.end() ? std::nullopt : std::optional(*first);
}

void MapExceptions(const PalmRepeat& repeat, Day last, Draft& draft, PalmSeries& series) {
    std::vector<Day> days;
    for (const std::uint32_t seconds : repeat.exceptions) {
        const Day day = PalmDay(seconds);
        if (day >= series.start && day <= last) days.push_back(day);
    }
    std::ranges::sort(days);
    days.erase(std::unique(days.begin(), days.end()), days.end());
    if (days.size() > kMostExcluded) {
        days.resize(kMostExcluded);
        series.remarks.emplace_back("has more exceptions than can be kept");
    }
    for (const Day day : days)
        draft.rule.excluded.push_back(calendar::DateToDays16(day));
    if (days.empty() || draft.rule.HeedsExcluded()) return;
    std::string listed;
    for (const Day day : days)
        listed += (listed.empty() ? "" : ", ") + IsoDate(day);
    series.remarks.push_back("occurs on days on which it was taken out: " + listed);
}

}  // namespace

calendar::Minutes PalmMinutes(std::uint32_t seconds) {
    return {static_cast<std::int32_t>(seconds / 60) + calendar::MidnightOf(kPalmEpoch).count};
}

Day PalmDay(std::uint32_t seconds) {
    return {kPalmEpoch.serial + static_cast<std::int32_t>(seconds / kSecondsOfDay)};
}

PalmSeries MapPalmRepeat(const PalmRepeat& repeat, Day start, const LocaleFacts& locale,
                         RandomSource& random) {
    PalmSeries series;
    series.start = start;
    if (repeat.classWord == 0) return series;
    Draft draft;
    const auto refuse = [&](const std::string& why) {
        series.remarks = {why + ": it came in once, on " + IsoDate(start)};
        series.redoString.clear();
        series.start = start;
        return series;
    };
    MapRule(repeat, start, locale, draft, series);
    if (!draft.refusal.empty()) return refuse(draft.refusal);

    const bool ends = repeat.end != 0;
    const Day last = ends ? std::min(PalmDay(repeat.end), kLastDay) : kLastDay;
    if (ends && PalmDay(repeat.end) > kLastDay)
        series.remarks.push_back("ends on " + IsoDate(PalmDay(repeat.end)) + ": it was cut at " +
                                 IsoDate(kLastDay));
    draft.rule.first = calendar::DateToDays16(start);
    draft.rule.endMode = ends ? calendar::RedoEnd::Date : calendar::RedoEnd::Never;
    draft.rule.last = calendar::DateToDays16(last);
    const auto first = last < start ? std::nullopt : FirstOccurrence(draft, start, locale);
    if (!first || *first > last) return refuse("ends before it begins");
    if (*first != start)
        series.remarks.push_back("begins on a day on which it does not occur: it was moved to " +
                                 IsoDate(*first));
    series.start = *first;
    draft.rule.first = calendar::DateToDays16(*first);
    if (!ends) draft.rule.last = calendar::DateToDays16(calendar::NoEndLastDay(*first, random));
    MapExceptions(repeat, last, draft, series);
    series.redoString = calendar::WriteRedoRule(draft.rule);
    return series;
}

}  // namespace bmr::interchange
