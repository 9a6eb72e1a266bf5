#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/ports.h"
#include "base/result.h"
#include "tasks/task.h"

namespace bmr::tasks {

/// Which tasks are listed.
struct TaskFilter {
    bool showCompleted = false;
    std::int32_t category = store::Category::All;  ///< 9999 and -1: all
};

/// What is known of a row's private flag, which lies in the payload.
enum class Privacy : std::uint8_t { Unread, Public, Private };

/// A row of the list, from the plain columns alone: no deciphering. Text and flag come from `ReadTexts`
/// when the row is shown.
struct TaskRow {
    std::int32_t fPK = 0;
    std::int32_t category = 0;
    std::int32_t priority = Priority::Normal;
    Day dueDate;        ///< 0 without one
    Day completedDate;  ///< 0 without one
    bool hasDueDate = false;
    bool hasNote = false;
    bool completed = false;
    bool pastDue = false;  ///< the due date lay before the day on which the list was built
    Privacy privacy = Privacy::Unread;
    std::uint32_t place = 0;  ///< order in which the rows came, for rows that sort equal

    /// The icon: not completed, and due before today.
    bool Overdue() const { return pastDue && !completed; }
};

/// The conditions of the list beside its section.
std::string ClausesOf(store::Session& session, const TaskFilter& filter);
/// The statement of `showListitems`.
std::string TaskStatement(store::Session& session, const TaskFilter& filter, std::string_view columns = "*");

/// `showListitems`: the rows in standard order. While private records are hidden every payload is tested, in
/// one batch; otherwise nothing is deciphered.
Result<std::vector<TaskRow>> ListRecords(store::Session& session, const TaskFilter& filter);

/// Sets `privacy` of all rows, in one batch: the column "Priv" cannot be sorted without. 0 or an error
/// number.
[[nodiscard]] int ReadPrivateFlags(store::Session& session, const TaskFilter& filter,
                                   std::vector<TaskRow>& rows);

/// Brings a row up to its record after a store; its place in the list stays.
void UpdateRow(TaskRow& row, const Task& task, Day today);

struct SubItem {
    static constexpr int Task = 0, DueDate = 1, Priority = 2, Private = 3, Note = 4, Category = 5,
                         ExecDate = 6, SortKey = 7;
    static constexpr int Count = 8;
};

enum class Align : std::uint8_t { Left, Centre };

/// A column's header and its width at first, in the unit of PickerWidth (15 to a pixel).
struct Column {
    const char* header;
    int width;
    Align align;
};
extern const std::array<Column, SubItem::Count> kColumns;

/// The text of a sub-item, UTF-8. Not for the task itself, which is not in the row; "Priv" is empty while the
/// flag is unread.
std::string SubItemText(const TaskRow& row, int subItem, const store::CategoryList& categories,
                        const LocaleFacts& locale);

struct SortOrder {
    int subItem = SubItem::SortKey;
    bool descending = false;
    bool operator==(const SortOrder&) const = default;
};

/// What a click on the header of column `number` (1 is "Task") sorts by: "Task" restores the standard order,
/// and each sub-item has a direction of its own.
SortOrder SortOrderOfColumn(int number);

/// Sorts by the displayed text of the sub-item; rows of equal text keep the order in which they came.
void SortRows(std::vector<TaskRow>& rows, SortOrder order, const store::CategoryList& categories,
              const LocaleFacts& locale);

struct DeleteOutcome {
    int error = 0;
    bool rebuild = false;  ///< something was deleted
};

/// The deletes, with their questions. One task: Msg 18 without a selection.
DeleteOutcome DeleteItem(store::Session& session, std::optional<std::int32_t> key, std::string_view task);
/// All completed tasks, whatever category the screen shows.
DeleteOutcome DeleteCompleted(store::Session& session);
/// All tasks, whatever the screen shows; asks twice. Nothing with an empty list.
DeleteOutcome DeleteAll(store::Session& session, bool listIsEmpty);

}  // namespace bmr::tasks
