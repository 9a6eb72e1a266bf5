#include "calendar/taskpane.h"

#include <algorithm>
#include <cstdio>

#include "base/shortdate.h"
#include "store/privatefilter.h"
#include "tasks/tasklist.h"

namespace bmr::calendar {

std::string PaneKey(std::optional<Day> due, std::int32_t priority) {
    std::string key = "1999999";
    if (due) {
        char day[16];
        std::snprintf(day, sizeof day, "0%06d", due->serial);
        key = day;
    }
    return key + std::to_string(priority);
}

std::string PaneDate(std::optional<Day> due) {
    return due ? FormatShortDate(*due, "M/d") : std::string();
}

Result<std::vector<PaneRow>> ListPane(store::Session& session) {
    const auto tasks = tasks::ListRecords(session, {});
    if (!tasks) return tasks.error();
    std::vector<PaneRow> rows;
    rows.reserve(tasks->size());
    for (const tasks::TaskRow& task : *tasks) {
        const auto due = task.hasDueDate ? std::optional(task.dueDate) : std::nullopt;
        rows.push_back({task.fPK, task.priority, due, task.Overdue(), PaneKey(due, task.priority)});
    }
    std::ranges::stable_sort(rows, {}, &PaneRow::key);
    return rows;
}

WipedText PaneTask(store::Session& session, std::int32_t fPK) {
    return store::NameOf(session, tasks::kTaskFields.front().rule.number, fPK);
}

}  // namespace bmr::calendar
