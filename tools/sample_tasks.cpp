#include <algorithm>
#include <array>

#include "sample.h"
#include "store/categories.h"
#include "tasks/task.h"

namespace bmr::tools {
namespace {

using Words = std::span<const std::string_view>;

constexpr std::string_view kRooms[] = {"kitchen", "cellar",   "attic",    "bathroom", "hall",
                                       "garage",  "workshop", "bedroom",  "balcony",  "study",
                                       "shed",    "pantry",   "staircase"};
constexpr std::string_view kThings[] = {"tap",      "door bell", "window",  "bicycle",         "lamp",
                                        "radiator", "gutter",    "lock",    "washing machine", "shelf",
                                        "heater",   "printer",   "mailbox", "garden gate",     "smoke alarm"};
constexpr std::string_view kPlants[] = {"apple tree", "roses",  "hedge",   "raspberries", "lavender",
                                        "tomatoes",   "beans",  "lawn",    "compost",     "plum tree",
                                        "vine",       "tulips", "rhubarb", "herbs"};
constexpr std::string_view kGoods[] = {
    "stamps",        "screws 4 × 40",   "printer paper", "bread flour",      "light bulbs",  "cat food",
    "batteries AA",  "a birthday card", "wood glue",     "coffee",           "envelopes C5", "white paint",
    "running shoes", "a new umbrella",  "crème fraîche", "rosé for Saturday"};
constexpr std::string_view kShops[] = {"hardware shop", "pharmacy",    "bookshop", "post office",
                                       "market hall",   "dry cleaner", "bakery",   "stationer"};
constexpr std::string_view kDocuments[] = {"tax return",          "insurance form",   "rental contract",
                                           "travel expenses",     "annual report",    "invoice of October",
                                           "meeting minutes",     "budget draft",     "project plan",
                                           "safety instructions", "quarterly figures"};
constexpr std::string_view kPeople[] = {
    "Aylin", "Björn", "Chiara", "Dragan", "Élodie", "Farid", "Greta",   "Henrik",   "Ines",  "Jürgen",
    "Keiko", "Lucía", "Marta",  "Noémie", "Okoye",  "Pavel", "Quentin", "Rosalind", "Søren", "Theodora"};
constexpr std::string_view kDoctors[] = {"Dr. Okafor", "Dr. Weiß", "Dr. Lindqvist", "Dr. Almeida",
                                         "Dr. Hobbs"};

struct Slot {
    std::string_view name;
    Words words;
};
constexpr Slot kSlots[] = {{"room", kRooms},    {"thing", kThings},  {"plant", kPlants},
                           {"goods", kGoods},   {"shop", kShops},    {"document", kDocuments},
                           {"person", kPeople}, {"doctor", kDoctors}};

constexpr std::string_view kHome[] = {"Clean the {room}",
                                      "Repair the {thing} in the {room}",
                                      "Replace the {thing}",
                                      "Paint the {room}",
                                      "Clear out the {room}",
                                      "Have the {thing} serviced",
                                      "Measure the {room} for shelves",
                                      "Descale the {thing}"};
constexpr std::string_view kOffice[] = {"Send the {document} to {person}",
                                        "Call {person} about the {document}",
                                        "Finish the {document}",
                                        "Review the {document} with {person}",
                                        "File the {document}",
                                        "Answer {person}'s questions on the {document}",
                                        "Print the {document} for the meeting"};
constexpr std::string_view kGarden[] = {
    "Prune the {plant}",    "Water the {plant}",       "Cover the {plant} before the frost",
    "Order seeds: {plant}", "Weed around the {plant}", "Ask {person} about the {plant}"};
constexpr std::string_view kErrands[] = {"Buy {goods}", "Buy {goods} at the {shop}",
                                         "Collect the parcel at the {shop}", "Return {goods} to the {shop}",
                                         "Ask at the {shop} for {goods}"};
constexpr std::string_view kFamily[] = {"Birthday present for {person}",
                                        "Visit {person}",
                                        "Call {person} back",
                                        "Return the book to {person}",
                                        "Plan the weekend with {person}",
                                        "Photos for {person}: choose and order"};
constexpr std::string_view kHealth[] = {"Appointment with {doctor}", "Fetch the prescription from {doctor}",
                                        "Send {doctor} the insurance form",
                                        "Book the yearly check with {doctor}"};

struct Theme {
    std::string_view category;
    Words patterns;
};
constexpr Theme kThemes[] = {{"Home", kHome},       {"Office", kOffice}, {"Garden", kGarden},
                             {"Errands", kErrands}, {"Family", kFamily}, {"Health", kHealth}};

/// A pattern with a word for each name in braces.
std::string Compose(SampleContext& context, std::string_view pattern) {
    std::string text;
    while (!pattern.empty()) {
        const auto open = pattern.find('{');
        text += pattern.substr(0, open);
        if (open == std::string_view::npos) break;
        const auto close = pattern.find('}', open);
        const auto name = pattern.substr(open + 1, close - open - 1);
        const auto* slot =
            std::find_if(std::begin(kSlots), std::end(kSlots), [&](const Slot& s) { return s.name == name; });
        text += Pick(context, slot->words);
        pattern.remove_prefix(close + 1);
    }
    return text;
}

/// Numbers from 1 in the order of the themes.
int StoreThemes(SampleContext& context) {
    store::CategoryList list;
    std::int32_t number = 0;
    for (const Theme& theme : kThemes)
        store::InsertCategory(list, {Page(theme.category), ++number});
    return store::StoreCategories(context.session, list, store::Section::Todo);
}

/// Most tasks of the past are done, most of the future are not; some never had a date.
void Schedule(SampleContext& context, tasks::Task& task) {
    const std::int32_t days = Between(context, -300, 90);
    task.hasDueDate = Chance(context, 65);
    task.completed = Chance(context, days < 0 ? 55 : 8);
    if (task.hasDueDate) task.dueDate = {context.today.serial + days};
    if (task.completed)
        task.completedDate = {context.today.serial + std::min(0, days + Between(context, -5, 20))};
}

tasks::Task SampleTask(SampleContext& context) {
    tasks::Task task;
    const auto theme = DrawBelow(context.random, static_cast<std::int32_t>(std::size(kThemes)));
    const Theme& chosen = kThemes[theme];
    task.task = AnyScript(context, Compose(context, Pick(context, chosen.patterns)));
    if (Chance(context, 35)) task.note = AnyScript(context, SampleNote(context));
    task.isPrivate = Chance(context, 12);
    task.priority = Chance(context, 60)   ? tasks::Priority::Normal
                    : Chance(context, 50) ? tasks::Priority::High
                                          : tasks::Priority::Low;
    task.category = Chance(context, 10) ? store::Category::Unfiled : theme + 1;
    Schedule(context, task);
    return task;
}

}  // namespace

int FillTasks(SampleContext& context, std::int32_t records) {
    if (const int error = StoreThemes(context)) return error;
    for (std::int32_t i = 0; i < records; ++i) {
        tasks::Task task = SampleTask(context);
        if (const auto outcome = tasks::WriteRecord(context.session, task); outcome.error != 0)
            return outcome.error;
    }
    return 0;
}

}  // namespace bmr::tools
