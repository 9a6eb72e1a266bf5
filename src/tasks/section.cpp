#include "tasks/section.h"

#include <algorithm>
#include <array>

#include "calendar/calendar.h"
#include "tasks/tasklist.h"

namespace bmr::tasks {
namespace {

constexpr auto kRules = store::RulesOf(kTaskFields);
constexpr std::array<std::string_view, 3> kPriorities = {"high", "normal", "low"};

TaskFilter FilterOf(const store::ListRequest& request) {
    return {.showCompleted = request.all, .category = request.group};
}

std::string Clauses(store::Session& session, const store::ListRequest& request) {
    return ClausesOf(session, FilterOf(request));
}

Result<std::vector<std::int32_t>> List(store::Session& session, const store::ListRequest& request) {
    const auto rows = ListRecords(session, FilterOf(request));
    if (!rows) return rows.error();
    std::vector<std::int32_t> keys;
    keys.reserve(rows->size());
    for (const TaskRow& row : *rows)
        keys.push_back(row.fPK);
    return keys;
}

/// What stands in columns of its own.
bool SetColumn(Task& task, std::string_view name, std::string_view value, std::string& problem) {
    if (name == "dueDate") {
        const auto day = ParseIsoDate(value);
        const auto box = day ? calendar::DateLimitBox(*day, LocaleFacts{}) : std::nullopt;
        if (!day) problem = "dueDate is no date of the form YYYY-MM-DD.";
        if (box) problem = box->text;
        task.hasDueDate = true;
        task.dueDate = day.value_or(Day{});
        return true;
    }
    if (name != "priority") return false;
    const auto* found = std::ranges::find(kPriorities, value);
    if (found == kPriorities.end()) problem = "priority is high, normal or low.";
    task.priority = static_cast<std::int32_t>(found - kPriorities.begin());
    return true;
}

Result<std::int32_t> Add(store::Session& session, const store::NewRecord& given) {
    Task task = ClearRecord(given.group);
    task.isPrivate = given.isPrivate;
    auto problem = store::SetFields(store::SlotsOf(task, kTaskFields), given,
                                    [&task](std::string_view name, std::string_view value, std::string& why) {
                                        return SetColumn(task, name, value, why);
                                    });
    if (problem.empty() && TrimBlanks(task.task).empty()) problem = "Description is required.";
    if (!problem.empty()) return Error{0, std::move(problem)};
    if (const int error = WriteRecord(session, task).error) return Error{error, {}};
    return task.key;
}

std::vector<store::ColumnValue> Columns(const store::PlainColumns& row) {
    static constexpr std::array<const char*, 3> kMarks = {"X X X", "X X", "X"};
    const auto date = [](bool set, std::int32_t value, DateKind kind) -> Value {
        if (!set) return Null{};
        return DateValue{static_cast<double>(UnpackDate(value, kind).serial)};
    };
    const std::int32_t priority = UnpackPriority(row.fR1);
    const bool known = priority >= Priority::High && priority <= Priority::Low;
    return {{"completed", row.fF3, "Done", row.fF3 ? "x" : ""},
            {"dueDate", date(row.fF1, row.fR3, kDueKind), "Due Date",
             row.fF1 ? IsoDate(UnpackDate(row.fR3, kDueKind)) : ""},
            {"priority", priority, "Prty", known ? kMarks[static_cast<std::size_t>(priority)] : ""},
            {"completedDate", date(row.fF3, row.fR2, kCompletedKind)},
            {"hasNote", row.fF2, "Note", row.fF2 ? "N" : ""}};
}

constexpr store::FieldOption kOptions[] = {{"--task", "Description", "the task in one line"},
                                           {"--note", "Memo", "a note of any length"},
                                           {"--due", "dueDate", "due date, YYYY-MM-DD"},
                                           {"--priority", "priority", "high, normal (as without it) or low"}};

constexpr store::SectionFacts kSections[] = {
    {.code = store::Section::Todo,
     .command = "todo",
     .title = "Todo",
     .name = "Tasks",
     .one = "task",
     .many = "tasks",
     .purpose = "What is to be done, by when.",
     .icon = "view-pim-tasks",
     .lastCategory = 3,
     .privateField = 2,
     .fields = kRules,
     .clauses = Clauses,
     .list = List,
     .add = Add,
     .options = kOptions,
     .columns = Columns,
     .move = MoveSeveral,
     .hide = HideSeveral,
     .remove = DeleteSeveral},
};

}  // namespace

std::span<const store::SectionFacts> Sections() {
    return kSections;
}

}  // namespace bmr::tasks
