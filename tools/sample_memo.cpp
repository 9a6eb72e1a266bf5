#include <vector>

#include "notes/memo.h"
#include "sample.h"
#include "store/categories.h"

namespace bmr::tools {
namespace {

using Words = std::span<const std::string_view>;

constexpr std::string_view kDishes[] = {"Lentil soup", "Apfelstrudel",    "Crème brûlée", "Sourdough bread",
                                        "Paella",      "Plum jam",        "Onion tart",   "Dal",
                                        "Focaccia",    "Rhubarb crumble", "Gazpacho",     "Käsespätzle"};
constexpr std::string_view kPlaces[] = {"Lisbon", "Göteborg", "the Harz", "Kyoto",   "Marseille", "Oaxaca",
                                        "Porto",  "Zürich",   "Accra",    "Bologna", "Skye",      "Évora"};
constexpr std::string_view kTopics[] = {"garden beds",   "heating",      "choir",         "roof",
                                        "school board",  "allotment",    "winter tyres",  "insurance",
                                        "family tree",   "bicycle",      "piano lessons", "annual budget",
                                        "neighbourhood", "summer house", "first aid",     "wine cellar"};
constexpr std::string_view kAuthors[] = {"Aylin", "Björn",  "Chiara", "Élodie",
                                         "Greta", "Jürgen", "Noémie", "Søren"};

constexpr std::string_view kRecipes[] = {"", " (by the old book)", " for eight", ", second try",
                                         " without nuts"};
constexpr std::string_view kTravel[] = {"Packing list for ", "Hotels in ", "What to see in ", "Trains to ",
                                        "Friends in "};
constexpr std::string_view kNotes[] = {"Ideas: ", "Minutes, ",     "Measurements, ", "Questions about the ",
                                       "Costs: ", "Plan for the ", "Notes on the ",  "Who knows about the "};
constexpr std::string_view kReading[] = {"Books lent to ", "Films that ", "Presents for ", "Addresses from ",
                                         "Quotations of "};

struct Theme {
    std::string_view category;
    Words heads;
    Words tails;
};
constexpr Theme kThemes[] = {{"Recipes", kDishes, kRecipes},
                             {"Travel", kTravel, kPlaces},
                             {"Projects", kNotes, kTopics},
                             {"People", kReading, kAuthors}};

int StoreThemes(SampleContext& context) {
    store::CategoryList list;
    std::int32_t number = 0;
    for (const Theme& theme : kThemes)
        store::InsertCategory(list, {Page(theme.category), ++number});
    return store::StoreCategories(context.session, list, store::Section::Memo);
}

/// Most are short, one in twenty is a page or two.
std::string SampleBody(SampleContext& context) {
    std::string body = SampleNote(context);
    for (std::int32_t left = Chance(context, 5) ? Between(context, 10, 40) : Between(context, 0, 3); left > 0;
         --left)
        body += "\r\n" + SampleNote(context);
    return AnyScript(context, std::move(body));
}

notes::Memo SampleMemo(SampleContext& context) {
    const auto number = DrawBelow(context.random, static_cast<std::int32_t>(std::size(kThemes)));
    const Theme& theme = kThemes[number];
    notes::Memo memo = notes::ClearRecord(context.session, Chance(context, 15) ? 0 : number + 1);
    std::string subject(Pick(context, theme.heads));
    subject += Pick(context, theme.tails);
    if (Chance(context, 40)) subject += " " + std::to_string(Between(context, 1996, 2026));
    if (Chance(context, 20)) subject += ", " + std::to_string(Between(context, 2, 9));
    memo.subject = AnyScript(context, subject);
    memo.body = SampleBody(context);
    memo.isPrivate = Chance(context, 10);
    const std::int32_t made = context.today.serial - Between(context, 0, 2000);
    memo.dateCreated = {static_cast<double>(made)};
    memo.dateLastModified = {static_cast<double>(Between(context, made, context.today.serial))};
    return memo;
}

}  // namespace

int FillMemos(SampleContext& context, std::int32_t records) {
    if (const int error = StoreThemes(context)) return error;
    std::vector<notes::Memo> memos;
    memos.reserve(static_cast<std::size_t>(records));
    for (std::int32_t i = 0; i < records; ++i)
        memos.push_back(SampleMemo(context));
    return notes::AddRecords(context.session, memos);
}

}  // namespace bmr::tools
