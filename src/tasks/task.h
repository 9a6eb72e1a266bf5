#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "base/buckets.h"
#include "base/bytes.h"
#include "base/serialdate.h"
#include "store/categories.h"
#include "store/fieldtable.h"
#include "store/section_store.h"
#include "store/severalrows.h"

/// The to-do section without a screen: its record, its list and its rules.
namespace bmr::tasks {

/// Tasks keep their due date (fR3) in the second and the date of completion (fR2) in the third date table.
inline constexpr DateKind kDueKind = DateKind::First;
inline constexpr DateKind kCompletedKind = DateKind::Last;

struct Priority {
    static constexpr std::int32_t High = 0;
    static constexpr std::int32_t Normal = 1;
    static constexpr std::int32_t Low = 2;
};

/// One task, as screen and editor hold it. The defaults are those of an empty new record.
struct Task {
    std::int32_t key = store::kNewRecord;
    WipedText task;
    WipedText note;
    bool isPrivate = false;
    std::uint8_t userNumber = 0;
    bool hasNote = false;
    std::int32_t priority = Priority::Normal;
    bool hasDueDate = false;
    Day dueDate;
    bool completed = false;
    Day completedDate;
    std::int32_t category = store::Category::Unfiled;
    /// False when the payload did not decode: a store then leaves it and the task text as they are in the
    /// file.
    bool readable = true;
    store::CarriedFields carried;
};

inline constexpr std::array<store::Field<Task>, 4> kTaskFields{{
    {{0, store::FieldTag::Text, "Description", store::Kind::Name}, store::At<&Task::task>, true},
    {{1, store::FieldTag::Memo, "Memo", store::Kind::Words}, store::At<&Task::note>},
    {{2, store::FieldTag::Boolean, "Private", store::Kind::Private}, store::At<&Task::isPrivate>, true},
    {{3, store::FieldTag::Byte, "UserNumber", store::Kind::Stamp}, store::At<&Task::userNumber>},
}};

/// An empty new record under the category that the combo stands on.
Task ClearRecord(std::int32_t comboCategory);

/// The record of a row of `SELECT *`. Deciphers the payload, and nothing else.
Task ReadRecord(store::Session& session, const engine::Recordset& row);
/// What lies in the payload of a row's record, and nothing of its columns: for lists. Unreadable without a
/// row.
Task ReadTexts(store::Session& session, std::int32_t key);

/// The record of a list row's key; nothing when the row is gone, was never a task, or could not be looked
/// for, which `error` tells apart (the engine's number, else 0).
std::optional<Task> FetchRecord(store::Session& session, std::int32_t key, int* error = nullptr);
/// The record to edit: the selected one, or an empty new one when it is gone or nothing is selected.
Task RecordToEdit(store::Session& session, std::optional<std::int32_t> key, std::int32_t comboCategory,
                  int* error = nullptr);

/// `writeRecord`: adds or edits the row, keeps `hasNote` by the note and sets the record's key.
/// `UpdateImpossible` when the key is now another section's. The calendar's task pane is to be redrawn
/// afterwards.
store::StoreOutcome WriteRecord(store::Session& session, Task& task);

/// Stores many new tasks in one transaction, their texts enciphered many at a time. For imports. 0 or the
/// engine's number; sets the keys.
[[nodiscard]] int AddRecords(store::Session& session, std::vector<Task>& tasks);

/// Due, and that before today. Today is not overdue.
inline bool IsPastDue(bool hasDueDate, Day dueDate, Day today) {
    return hasDueDate && dueDate < today;
}

/// One ascending text sort by it gives the standard order: open before completed, overdue first, by due date
/// with the undated last, then by priority.
std::string SortKey(const Task& task, Day today);

/// `fR1` of a priority, and back. A value at the very top of its slot can read back as the next number, 3
/// included: nothing guards against that.
std::int32_t PackPriority(std::int32_t priority, RandomSource& random);
std::int32_t UnpackPriority(std::int32_t fR1);

/// What the editor's controls hold.
struct EditorValues {
    WipedText task;
    WipedText note;
    std::optional<std::int32_t> priority;  ///< the option that is on, if any
    bool isPrivate = false;
    std::optional<Day> due;
    std::optional<Day> completed;
    std::int32_t category = store::Category::Unfiled;  ///< the number of the combo's entry
    bool operator==(const EditorValues&) const = default;
};

/// A category that the list no longer has shows as unfiled.
EditorValues RecordToEditor(const Task& task, const store::CategoryList& categories);
void EditorToRecord(const EditorValues& values, Task& task);

/// A click on a row's check box, and `mnuCompleted` with `checked` true.
struct TickOutcome {
    int error = 0;
    std::optional<Task> record;  ///< as it stands now; nothing when the row is gone
    bool rebuild = false;        ///< the list is to be built anew; otherwise the row stays where it is
};
TickOutcome SetCompleted(store::Session& session, std::int32_t key, bool checked);

/// `mnuCompleted` on several tasks: sets, and never takes back.
store::SeveralOutcome CompleteSeveral(store::Session& session, store::Keys keys);

/// `mnuTodoPriority`: loads, sets, stores, those that it changes.
store::SeveralOutcome SetPriority(store::Session& session, store::Keys keys, std::int32_t priority);

/// Sets the due date, or takes it away. Completed tasks keep theirs, and Msg 23 says so.
store::SeveralOutcome SetDueDate(store::Session& session, store::Keys keys, std::optional<Day> due);

/// The same with other sections' verbs: category, flag, delete.
store::SeveralOutcome MoveSeveral(store::Session& session, store::Keys keys, std::int32_t category);
store::SeveralOutcome HideSeveral(store::Session& session, store::Keys keys, bool isPrivate);
store::SeveralOutcome DeleteSeveral(store::Session& session, store::Keys keys);

}  // namespace bmr::tasks
