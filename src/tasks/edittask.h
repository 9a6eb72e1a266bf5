#pragma once

#include <QWidget>

#include "kit/editround.h"
#include "tasks/task.h"

namespace bmr::tasks {

/// One round of the task editor over `parent`; `another` when it was left for a new task that is to follow.
kit::EditEnd EditAndStore(store::Session& session, kit::EditRound& round, Task& task, bool& another,
                          const custody::Draft* draft, QWidget* parent);

/// The editor of a task in the round of another section's form. True when something was stored.
bool EditTask(store::Session& session, kit::EditRound& round, std::int32_t key, QWidget* parent);

}  // namespace bmr::tasks
