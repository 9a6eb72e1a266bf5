#include "calendar/taskpane.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/calendar.h"
#include "support/store.h"
#include "tasks/task.h"

namespace bmr::calendar {
namespace {

using testing::ElementsAre;

TEST(TaskPane, KeysAndDatesByTheKnownAnswers) {
    for (const auto& c : test::CalendarVectors("TaskPaneKey")) {
        const auto due = c.at("hasDueDate").get<bool>() ? std::optional(Day{c.at("due")}) : std::nullopt;
        EXPECT_EQ(PaneKey(due, c.at("priority")), c.at("out")) << c;
        EXPECT_EQ(PaneDate(due), c.at("date")) << c;
    }
}

TEST(TaskPane, ListsOpenTasksByDayAndPriorityAndNoHiddenOnes) {
    test::TempStore store;
    store.session.ShowPrivate = true;
    const Day today = store.session.ports.clock.Today();
    const auto add = [&store](const char* name, std::optional<int> due, int priority, bool isPrivate = false,
                              bool done = false) {
        tasks::Task task;
        task.task = name;
        task.hasDueDate = due.has_value();
        task.dueDate = {due.value_or(0)};
        task.priority = priority;
        task.isPrivate = isPrivate;
        task.completed = done;
        EXPECT_EQ(tasks::WriteRecord(store.session, task).error, 0);
    };
    add("undated", std::nullopt, 0);
    add("later, high", today.serial + 9, 0);
    add("Łódź", today.serial, 1);
    add("late", today.serial - 1, 2);
    add("later, low", today.serial + 9, 2);
    add("secret", today.serial - 9, 0, true);
    add("done", today.serial, 0, false, true);
    const auto words = [&store] {
        std::vector<std::string> texts;
        const auto rows = ListPane(store.session);
        EXPECT_TRUE(rows);
        for (const PaneRow& row : *rows)
            texts.push_back((row.overdue ? "!" : "") + PaneTask(store.session, row.fPK));
        return texts;
    };
    EXPECT_THAT(words(), ElementsAre("!secret", "!late", "Łódź", "later, high", "later, low", "undated"));
    store.session.ShowPrivate = false;
    EXPECT_THAT(words(), ElementsAre("!late", "Łódź", "later, high", "later, low", "undated"));
}

}  // namespace
}  // namespace bmr::calendar
