#pragma once

#include <string>
#include <vector>

#include "tasks/tasklist.h"

namespace bmr::tasks {

/// Leaves the rows that hold `search` (UTF-8, any case) in what the list shows of them: the task, its
/// category or one of its dates. Task texts are deciphered in batches. 0 or an error number.
[[nodiscard]] int KeepMatching(store::Session& session, const TaskFilter& filter, const std::string& search,
                               const store::CategoryList& categories, const LocaleFacts& locale,
                               std::vector<TaskRow>& rows);

}  // namespace bmr::tasks
