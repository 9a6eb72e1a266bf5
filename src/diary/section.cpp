#include "diary/section.h"

#include "base/errors.h"
#include "calendar/calendar.h"
#include "diary/page.h"
#include "store/words.h"

namespace bmr::diary {
namespace {

using store::Session;

constexpr auto kRules = store::RulesOf(kPageFields);
constexpr Day kFirstDay{1384};
constexpr Day kLastDay{61832};

std::string Clauses(Session&, const store::ListRequest& request) {
    if (!request.from && !request.to) return {};
    const KeyRange range = RangeOf(request.from.value_or(kFirstDay), request.to.value_or(kLastDay));
    return " And (fR2 Between " + std::to_string(range.low) + " And " + std::to_string(range.high) + ")";
}

/// The order of all pages; which of them a list has, its clauses tell.
Result<std::vector<std::int32_t>> List(Session& session, const store::ListRequest&) {
    return ListRecords(session);
}

Result<std::int32_t> Add(Session& session, const store::NewRecord& given) {
    Page page;
    page.day = session.ports.clock.Today();
    std::string problem = store::SetFields(
        store::SlotsOf(page, kPageFields), given,
        [&page](std::string_view name, std::string_view value, std::string& why) {
            if (name != "date") return false;
            const auto day = ParseIsoDate(value);
            if (!day) why = "date is no date of the form YYYY-MM-DD.";
            const auto box = day ? calendar::DateLimitBox(*day, LocaleFacts{}) : std::nullopt;
            if (box) why = box->text;
            page.day = day.value_or(Day{});
            return true;
        });
    if (problem.empty() && TrimBlanks(page.text).empty()) problem = "text is required.";
    if (!problem.empty()) return Error{0, std::move(problem)};
    const auto outcome = AppendText(session, page.day, page.text);
    if (outcome.error == MessageNumber::InputError)
        return Error{0, "The page of " + IsoDate(page.day) + " has no room for the text."};
    if (outcome.error != 0) return Error{outcome.error, {}};
    return outcome.fPK;
}

std::vector<store::ColumnValue> Columns(const store::PlainColumns& row) {
    const Day day = DayOfPage(row.fR2);
    return {{"date", DateValue{static_cast<double>(day.serial)}, "Date", IsoDate(day)}};
}

constexpr store::FieldOption kOptions[] = {
    {"--date", "date", "the day, YYYY-MM-DD (today)"},
    {"--text", "text", "what is written behind what the day has, with a blank line between"}};

constexpr store::SectionFacts kSections[] = {
    // No diary record has the flag, so all of them are private.
    {.code = store::Section::Diary,
     .command = "diary",
     .title = "Diary",
     .name = "Diary",
     .one = "diary entry",
     .many = "diary entries",
     .purpose = "A page for each day.",
     .icon = "view-pim-journal",
     .privateField = 13,
     .fields = kRules,
     .grouped = false,
     .spans = true,
     .clauses = Clauses,
     .list = List,
     .add = Add,
     .options = kOptions,
     .columns = Columns,
     .remove = DeleteSeveral},
};

}  // namespace

std::span<const store::SectionFacts> Sections() {
    return kSections;
}

}  // namespace bmr::diary
