#include "calendar/redowords.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <vector>

#include "base/bytes.h"
#include "calendar/calendar.h"
#include "calendar/nextdates.h"

namespace bmr::calendar {

namespace {

constexpr std::array<std::string_view, 7> kWeekdays = {"sun", "mon", "tue", "wed", "thu", "fri", "sat"};
constexpr std::array<std::string_view, 12> kMonths = {"jan", "feb", "mar", "apr", "may", "jun",
                                                      "jul", "aug", "sep", "oct", "nov", "dec"};
constexpr std::array<std::string_view, 5> kOrdinals = {"first", "second", "third", "fourth", "last"};
constexpr int kMostInterval = 255;
/// A rule that has no occurrence in so many days has none.
constexpr std::int32_t kFarthest = 366 * 9;
/// More than a series by months has within the limits of dates.
constexpr std::size_t kMostDays = 2000;

/// Words between blanks; a comma and the blanks around it belong to a word.
std::vector<std::string> WordsOf(std::string_view text) {
    std::vector<std::string> words;
    bool apart = true;
    for (const char c : text) {
        if (c == ' ') {
            apart = true;
            continue;
        }
        const bool listed = c == ',' || (!words.empty() && words.back().ends_with(','));
        if ((apart && !listed) || words.empty()) words.emplace_back();
        words.back() += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        apart = false;
    }
    return words;
}

std::optional<int> NumberIn(std::string_view text, int most) {
    int number = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size() || number < 1 || number > most)
        return std::nullopt;
    return number;
}

/// The place of a word, from 1: by its three letters or in full.
template <std::size_t Count>
std::optional<int> PlaceIn(const std::array<std::string_view, Count>& list, std::string_view word,
                           const std::array<std::string, Count>& full) {
    for (std::size_t i = 0; i < Count; ++i)
        if (word == list[i] || CompareNoCase(Bytes(word), full[i]) == 0) return static_cast<int>(i) + 1;
    return std::nullopt;
}

class RuleParser {
  public:
    RuleParser(std::string_view text, Day start, const LocaleFacts& locale)
        : words_(WordsOf(text)), locale_(locale), state_(NewRedoState(start, locale)) {}

    std::optional<RedoState> Parse() {
        if (!Unit()) return std::nullopt;
        if (at_ != words_.size()) return std::nullopt;
        state_.kind = static_cast<int>(KindOf(state_.frequency, state_.alternative));
        return state_;
    }
    /// The day of the month that the rule names; 0 where it is that of the start.
    int day() const { return day_; }

  private:
    bool Take(std::string_view word) {
        if (at_ == words_.size() || words_[at_] != word) return false;
        ++at_;
        return true;
    }
    std::string Next() { return at_ < words_.size() ? words_[at_++] : std::string(); }

    bool Unit() {
        int every = 1;
        bool counted = false;
        if (at_ < words_.size())
            if (const auto number = NumberIn(words_[at_], kMostInterval)) {
                every = *number;
                counted = true;
                ++at_;
            }
        state_.interval = state_.intervalAlt = every;
        const auto unit = [&](std::string_view one, std::string_view many) {
            return Take(one) || (counted && Take(many));
        };
        if (unit("day", "days")) return Set(2, 0);
        if (!counted && (Take("workday") || Take("weekday"))) return Set(2, 1);
        if (unit("week", "weeks")) return Set(1, 0) && Weekdays();
        if (unit("month", "months")) return Month();
        if (!counted && Take("year")) return Year();
        return false;
    }
    bool Set(int frequency, int alternative) {
        state_.frequency = frequency;
        state_.alternative = alternative;
        return true;
    }
    bool Weekdays() {
        if (!Take("on")) return at_ == words_.size();
        state_.days = {};
        std::string list = Next();
        while (!list.empty()) {
            const auto comma = std::min(list.find(','), list.size());
            const auto weekday = PlaceIn(kWeekdays, std::string_view(list).substr(0, comma), names_.weekdays);
            if (!weekday) return false;
            state_.days.at(static_cast<std::size_t>(SundayToLocalWeekday(*weekday, locale_) - 1)) = true;
            if (comma + 1 == list.size()) return false;
            list.erase(0, comma + 1);
        }
        return std::ranges::find(state_.days, true) != state_.days.end();
    }
    bool Month() {
        if (!Take("on")) return Set(3, 0);
        if (at_ < words_.size())
            if (const auto day = NumberIn(words_[at_], 31)) {
                ++at_;
                day_ = *day;
                return Set(3, 0);
            }
        return Set(3, 1) && NthWeekday();
    }
    bool Year() {
        if (!Take("on")) return Set(4, 0);
        if (!Set(4, 1) || !NthWeekday() || !Take("of")) return false;
        const auto month = PlaceIn(kMonths, Next(), names_.months);
        if (month) state_.month = *month;
        return month.has_value();
    }
    bool NthWeekday() {
        std::string nth = Next();
        if (nth == "forth") nth = "fourth";
        const auto* found = std::ranges::find(kOrdinals, nth);
        const auto weekday = PlaceIn(kWeekdays, Next(), names_.weekdays);
        if (found == kOrdinals.end() || !weekday) return false;
        state_.nth = static_cast<int>(found - kOrdinals.begin()) + 1;
        state_.weekday = SundayToLocalWeekday(*weekday, locale_);
        return true;
    }

    std::vector<std::string> words_;
    std::size_t at_ = 0;
    const LocaleFacts& locale_;
    RedoState state_;
    int day_ = 0;
    CalendarNames names_;
};

/// The first day from `start` on that is day `day` of a month which has one.
Day NextDayOfMonth(Day start, int day) {
    for (;; ++start.serial)
        if (YearMonthDay(start).day() == std::chrono::day(static_cast<unsigned>(day))) return start;
}

/// The first occurrence of a rule that does not pass over any week or month.
std::optional<Day> FirstOf(RedoState state, const LocaleFacts& locale) {
    state.interval = state.intervalAlt = 1;
    const auto rule = ReadRedoRule(BuildRedoString(state, locale));
    std::vector<Day> days;
    if (rule) ExpandRule(*rule, {state.start, {state.start.serial + kFarthest}}, locale, days);
    const auto first = std::ranges::min_element(days);
    return first == days.end() ? std::nullopt : std::optional(*first);
}

std::string Every(std::int32_t count, const std::string& unit) {
    return count <= 1 ? "every " + unit : "every " + std::to_string(count) + " " + unit + "s";
}

/// "Monday, Tuesday and Thursday".
std::string DaysInWords(const WeekDays& days, const CalendarNames& names, const LocaleFacts& locale) {
    std::vector<std::string> chosen;
    for (int i = 0; i < 7; ++i)
        if (days.at(static_cast<std::size_t>(i)))
            chosen.push_back(
                names.weekdays.at(static_cast<std::size_t>(LocalToSundayWeekday(i + 1, locale) - 1)));
    std::string text;
    for (std::size_t i = 0; i < chosen.size(); ++i)
        text += (i == 0 ? "" : i + 1 == chosen.size() ? " and " : ", ") + chosen[i];
    return text;
}

std::string NthInWords(const RedoState& state, const CalendarNames& names, const LocaleFacts& locale) {
    const auto nth = static_cast<std::size_t>(std::clamp(state.nth, 1, 5) - 1);
    const auto weekday = static_cast<std::size_t>(LocalToSundayWeekday(state.weekday, locale) - 1);
    return "the " + std::string(kOrdinals.at(nth)) + " " + names.weekdays.at(weekday);
}

const std::string& MonthName(int month, const CalendarNames& names) {
    return names.months.at(static_cast<std::size_t>(std::clamp(month, 1, 12) - 1));
}

std::string Rule(const RedoState& state, const CalendarNames& names, const LocaleFacts& locale) {
    const auto start = YearMonthDay(state.start);
    const std::string day = std::to_string(static_cast<unsigned>(start.day()));
    switch (static_cast<RedoKind>(state.kind)) {
        case RedoKind::None:
            break;
        case RedoKind::Weekly:
            return Every(state.interval, "week") + " on " + DaysInWords(state.days, names, locale);
        case RedoKind::Daily:
            return Every(state.interval, "day");
        case RedoKind::Workdays:
            return "every workday, Monday to Friday";
        case RedoKind::MonthDay:
            return Every(state.interval, "month") + " on day " + day;
        case RedoKind::MonthWeekday:
            return Every(state.intervalAlt, "month") + " on " + NthInWords(state, names, locale);
        case RedoKind::YearDay:
            return "every year on " + day + " " +
                   MonthName(static_cast<int>(static_cast<unsigned>(start.month())), names);
        case RedoKind::YearWeekday:
            return "every year on " + NthInWords(state, names, locale) + " of " +
                   MonthName(state.month, names);
    }
    return {};
}

/// "5 times". By months and years the count goes by those alone, and a day that some of them lack comes less
/// often.
std::string TimesInWords(const RedoState& state, const LocaleFacts& locale) {
    const std::string times = state.count == 1 ? "once" : std::to_string(state.count) + " times";
    const auto rule = ReadRedoRule(BuildRedoString(state, locale));
    if (!rule || (state.frequency != 3 && state.frequency != 4)) return times;
    const std::size_t shown = NextDates(*rule, state.start, kMostDays, locale).size();
    if (state.count >= 0 && shown == static_cast<std::size_t>(state.count)) return times;
    return times + " by the count of " + (state.frequency == 3 ? "months" : "years") + ", shown on " +
           (shown == 0   ? "no day"
            : shown == 1 ? "one day"
                         : std::to_string(shown) + " days");
}

}  // namespace

Result<RedoState> ParseRule(std::string_view words, Day start, const LocaleFacts& locale) {
    RuleParser parser(words, start, locale);
    auto state = parser.Parse();
    if (!state)
        return Error{
            0, "\"" + std::string(words) + "\" is no rule. Rules are: " + std::string(kRuleForms) + "."};
    if (parser.day() != 0) state->start = NextDayOfMonth(start, parser.day());
    const auto first = FirstOf(*state, locale);
    if (!first) return Error{0, "\"" + std::string(words) + "\" never comes."};
    state->start = state->date = *first;
    return *std::move(state);
}

std::string RuleSentence(const RedoState& state, const CalendarNames& names, const LocaleFacts& locale) {
    const std::string rule = Rule(state, names, locale);
    if (rule.empty() || state.endMode == RedoEnd::Never) return rule;
    return rule + " until " + LongDate(state.end, names) + ", " + TimesInWords(state, locale);
}

}  // namespace bmr::calendar
