#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/result.h"
#include "base/serialdate.h"
#include "base/wiped.h"
#include "store/session.h"

/// The pane beside the day and week views: the open tasks. Ticking one and its editor are the task list's.
namespace bmr::calendar {

/// A row of `TodoList`, from plain columns alone.
struct PaneRow {
    std::int32_t fPK = 0;
    std::int32_t priority = 0;
    std::optional<Day> due;
    bool overdue = false;  ///< due before today
    std::string key;       ///< rows stand in ascending order of it

    bool operator==(const PaneRow&) const = default;
};

/// Dated tasks first, by day, then by priority: "0" and six digits of the due day, or "1999999", and the
/// priority.
std::string PaneKey(std::optional<Day> due, std::int32_t priority);
/// "3/15", month first; empty without a due date.
std::string PaneDate(std::optional<Day> due);

/// The open tasks in the pane's order. While private records are hidden every payload is tested, in one
/// batch; otherwise nothing is deciphered.
Result<std::vector<PaneRow>> ListPane(store::Session& session);
/// The words of a row, deciphered when the row is shown. Empty for a row that is gone.
WipedText PaneTask(store::Session& session, std::int32_t fPK);

}  // namespace bmr::calendar
