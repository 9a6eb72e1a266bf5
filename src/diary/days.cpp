#include "diary/days.h"

#include <algorithm>
#include <array>

#include "base/shortdate.h"
#include "base/utf8.h"
#include "calendar/months.h"
#include "diary/page.h"
#include "store/privatefilter.h"
#include "store/record_get.h"
#include "store/words.h"

namespace bmr::diary {
namespace {

using store::Session;

constexpr std::uint8_t kText = 0;    ///< the payload's field
constexpr int kEarliestYear = 1903;  ///< of the table

Error Failed(Session& session, int number) {
    return Error{number, session.ProgramDb->LastError()};
}

/// The text of a payload as its field tells it.
std::string_view ToldText(std::string_view payload) {
    store::PayloadReader reader(payload);
    for (store::RawField field; reader.Next(field);)
        if (field.number == kText) return field.value;
    return {};
}

/// Spans in which the nearest page is looked for, in days: most often it is near.
constexpr std::array<std::int32_t, 3> kSpans = {31, 400, 70000};

/// Scripts that set no blanks between words: each character counts.
bool StandsAlone(char32_t c) {
    return (c >= 0x3040 && c < 0x3100) || (c >= 0x3400 && c < 0x4DC0) || (c >= 0x4E00 && c < 0xA000) ||
           (c >= 0xF900 && c < 0xFB00) || (c >= 0x20000 && c < 0x40000);
}

/// Letters and digits; what is neither in ASCII and in the blocks of punctuation.
bool IsOfWord(char32_t c) {
    if (c < 0x80) return (c >= '0' && c <= '9') || ((c | 0x20U) >= 'a' && (c | 0x20U) <= 'z');
    const bool punctuation = c < 0xC0 || c == 0xD7 || c == 0xF7 || (c >= 0x2000 && c < 0x2070) ||
                             (c >= 0x20A0 && c < 0x20D0) || (c >= 0x2190 && c < 0x2C00) ||
                             (c >= 0x1F000 && c < 0x20000) || (c >= 0x3000 && c < 0x3040) ||
                             (c >= 0xFF00 && c < 0xFF10);
    return !punctuation || c == 0xAA || c == 0xB5 || c == 0xBA;
}

bool IsBlank(char32_t c) {
    return c == ' ' || (c >= '\t' && c <= '\r') || c == 0xA0 || (c >= 0x2000 && c <= 0x200A) || c == 0x2028 ||
           c == 0x2029 || c == 0x202F || c == 0x3000;
}

/// The beginning of a text, not in the middle of a character.
std::string_view FirstCharacters(std::string_view text, std::size_t most) {
    std::size_t at = 0;
    for (std::size_t i = 0; i < most && at < text.size(); ++i)
        NextCharacter(text, at);
    return text.substr(0, at);
}

}  // namespace

Result<std::vector<Day>> MarkedDays(Session& session, Day first, Day last) {
    std::vector<Day> days;
    if (!session.ShowPrivate) return days;
    const KeyRange range = RangeOf(first, last);
    auto cursor = session.ProgramDb->Select("SELECT fR2 FROM tt WHERE fSec=13 And (fR2 Between ? And ?)",
                                            {range.low, range.high});
    if (!cursor) return cursor.error();
    while (cursor->Next())
        days.push_back(DayOfPage(cursor->Int(0)));
    if (cursor->error() != 0) return Failed(session, cursor->error());
    std::ranges::sort(days);
    days.erase(std::unique(days.begin(), days.end()), days.end());
    return days;
}

Result<std::optional<Day>> PreviousEntry(Session& session, Day day) {
    for (const std::int32_t span : kSpans) {
        auto days = MarkedDays(session, {day.serial - span}, {day.serial - 1});
        if (!days) return days.error();
        std::erase_if(*days, [day](Day each) { return each >= day; });
        if (!days->empty()) return std::optional(days->back());
    }
    return std::optional<Day>();
}

Result<std::optional<Day>> NextEntry(Session& session, Day day) {
    for (const std::int32_t span : kSpans) {
        auto days = MarkedDays(session, {day.serial + 1}, {day.serial + span});
        if (!days) return days.error();
        std::erase_if(*days, [day](Day each) { return each <= day; });
        if (!days->empty()) return std::optional(days->front());
    }
    return std::optional<Day>();
}

Result<std::vector<Day>> OnThisDay(Session& session, Day day) {
    std::vector<Day> days;
    if (!session.ShowPrivate) return days;
    for (int year = calendar::YearOf(day) - 1; year >= kEarliestYear; --year) {
        const Day then = calendar::RolledDate(year, calendar::MonthOf(day), calendar::DayOfMonth(day));
        if (calendar::MonthOf(then) != calendar::MonthOf(day) || !IsInTable(then)) continue;
        const KeyRange range = RangeOf(then, then);
        auto cursor = session.ProgramDb->Select("SELECT fPK FROM tt WHERE fSec=13 And (fR2 Between ? And ?)",
                                                {range.low, range.high});
        if (!cursor) return cursor.error();
        if (cursor->Next()) days.push_back(then);
        if (cursor->error() != 0) return Failed(session, cursor->error());
    }
    return days;
}

WipedText FirstLine(Session& session, Day day, std::size_t most) {
    const auto span = ReadSpan(session, day, day);
    if (!span) return {};
    std::string_view rest = span->pages.front().text;
    while (!rest.empty()) {
        const std::size_t end = std::min(rest.find_first_of("\r\n"), rest.size());
        const std::string_view line = TrimBlanks(rest.substr(0, end));
        if (!line.empty()) return FirstCharacters(line, most);
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return {};
}

Result<std::vector<Day>> Search(Session& session, std::string_view search) {
    std::vector<Day> days;
    const store::Needle needle(search);
    if (!session.ShowPrivate || needle.empty()) return days;
    const auto found =
        store::RecordsWhere(session, store::Section::Diary, "", "fEtx", [&](std::string_view payload) {
            const WipedText text = store::ReadWords(payload, kText);
            return needle.InTrue(text) || (!needle.AsksTrueText() && needle.InTold(ToldText(payload)));
        });
    if (!found) return found.error();
    auto cursor = session.ProgramDb->Select("SELECT fPK, fR2 FROM tt WHERE fSec=13");
    if (!cursor) return cursor.error();
    while (cursor->Next())
        if (found->contains(cursor->Int(0))) days.push_back(DayOfPage(cursor->Int(1)));
    if (cursor->error() != 0) return Failed(session, cursor->error());
    std::ranges::sort(days, std::greater());
    days.erase(std::unique(days.begin(), days.end()), days.end());
    return days;
}

std::size_t CountWords(std::string_view text) {
    std::size_t words = 0;
    bool inside = false;
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = NextCharacter(text, at);
        if (StandsAlone(c)) {
            ++words;
            inside = false;
        } else if (IsBlank(c)) {
            inside = false;
        } else if (!inside && IsOfWord(c)) {
            ++words;
            inside = true;
        }
    }
    return words;
}

Result<WipedText> ExportText(Session& session, Day first, Day last, std::string_view shortDate) {
    WipedText text;
    if (!session.ShowPrivate) return text;
    const auto days = MarkedDays(session, first, last);
    if (!days) return days.error();
    for (const Day day : *days) {
        const auto span = ReadSpan(session, day, day);
        if (!span) return span.error();
        const Page& page = span->pages.front();
        if (TrimBlanks(page.text).empty()) continue;
        if (!text.empty()) text += "\r\n\r\n";
        text += FormatShortDate(day, shortDate);
        text += "\r\n\r\n";
        text += page.text;
    }
    if (!text.empty()) text += "\r\n";
    return text;
}

}  // namespace bmr::diary
