#include "tasks/task.h"

#include <algorithm>
#include <cstdio>
#include <span>

#include "store/record_put.h"
#include "store/undostep.h"

namespace bmr::tasks {
namespace {

using engine::Recordset;
using store::FieldTag;
using store::RowChange;
using store::Session;

constexpr std::int32_t kPriorities = 3;

Day DateColumn(const engine::Recordset& row, const char* column, DateKind kind, bool set) {
    return set ? UnpackDate(NumberOf(row.Field(column)), kind) : Day{};
}

/// fEtx and fT1 of a record.
int FillTexts(Session& session, Task& task, engine::Recordset& row) {
    task.userNumber = session.user.UserNumber;
    const auto record = store::EncodeFields(task, kTaskFields, store::Blanks::Store, session.ports.random);
    const std::string_view texts[] = {record.payload, record.column};
    const auto ciphered = cry::EncipherBatch(session.cipher, texts);
    if (ciphered.front().empty()) return engine::EngineNumber::Failed;
    row.SetField("fEtx", ciphered.front());
    row.SetField("fT1", ciphered.back());
    return 0;
}

/// All columns but the texts.
void FillNumbers(Session& session, const Task& task, engine::Recordset& row) {
    RandomSource& random = session.ports.random;
    row.SetField("fG1", task.category);
    row.SetField("fR1", PackPriority(task.priority, random));
    row.SetField("fR2", PackDate(task.completed ? task.completedDate : Day{}, kCompletedKind, random).value);
    row.SetField("fR3", PackDate(task.hasDueDate ? task.dueDate : Day{}, kDueKind, random).value);
    row.SetField("fF1", task.hasDueDate);
    row.SetField("fF2", task.hasNote);
    row.SetField("fF3", task.completed);
    store::FillColumns(row, {.t2 = true, .t3 = true, .r4 = true}, random);
}

int FillRow(Session& session, Task& task, engine::Recordset& row, bool added) {
    if (task.readable || added)
        if (const int error = FillTexts(session, task, row)) return error;
    FillNumbers(session, task, row);
    return 0;
}

/// fEtx and fT1 of some tasks, one behind the other.
std::vector<Bytes> Encipher(Session& session, std::span<Task> tasks) {
    std::vector<store::EncodedRecord> records;
    records.reserve(tasks.size());
    std::vector<std::string_view> plain;
    for (Task& task : tasks) {
        task.userNumber = session.user.UserNumber;
        const auto& record = records.emplace_back(
            store::EncodeFields(task, kTaskFields, store::Blanks::Store, session.ports.random));
        plain.emplace_back(record.payload);
        plain.emplace_back(record.column);
    }
    return cry::EncipherBatch(session.cipher, plain);
}

int Write(Session& session, Task& task) {
    return WriteRecord(session, task).error;
}

void Wipe(Task& task) {
    store::WipeFields(task, kTaskFields);
}

constexpr store::RecordVerbs<Task> kVerbs{store::Section::Todo, FetchRecord, Write, Wipe, true};

Result<RowChange> Stored(Session& session, Task& task) {
    if (const int error = Write(session, task)) return Error{error, {}};
    return RowChange::Changed;
}

}  // namespace

Task ClearRecord(std::int32_t comboCategory) {
    Task task;
    task.category = store::RealCategory(comboCategory);
    return task;
}

Task ReadRecord(Session& session, const engine::Recordset& row) {
    Task task;
    task.key = NumberOf(row.Field("fPK"));
    task.category = NumberOf(row.Field("fG1"));
    task.priority = UnpackPriority(NumberOf(row.Field("fR1")));
    task.hasDueDate = NumberOf(row.Field("fF1")) != 0;
    task.hasNote = NumberOf(row.Field("fF2")) != 0;
    task.completed = NumberOf(row.Field("fF3")) != 0;
    task.dueDate = DateColumn(row, "fR3", kDueKind, task.hasDueDate);
    task.completedDate = DateColumn(row, "fR2", kCompletedKind, task.completed);
    task.readable =
        store::DecodeFields(task, cry::DecipherField(session.cipher, TextOf(row.Field("fEtx"))), kTaskFields);
    return task;
}

Task ReadTexts(Session& session, std::int32_t key) {
    Task task;
    task.isPrivate = true;
    task.readable = false;
    if (!session.ProgramDb) return task;  // a list may outlive its database for a moment
    auto row = session.ProgramDb->Select("SELECT fEtx FROM tt WHERE fPK=?", {key});
    if (row && row->Next())
        task.readable =
            store::DecodeFields(task, cry::DecipherField(session.cipher, row->Bytes(0)), kTaskFields);
    return task;
}

std::optional<Task> FetchRecord(Session& session, std::int32_t key, int* error) {
    const auto row = store::FetchRow(session, store::Section::Todo, key);
    if (error) *error = row ? 0 : row.error().number;
    if (!row || !*row) return std::nullopt;
    return ReadRecord(session, **row);
}

Task RecordToEdit(Session& session, std::optional<std::int32_t> key, std::int32_t comboCategory, int* error) {
    if (key)
        if (auto task = FetchRecord(session, *key, error)) return *std::move(task);
    return ClearRecord(comboCategory);
}

store::StoreOutcome WriteRecord(Session& session, Task& task) {
    if (task.readable) task.hasNote = !task.note.empty();
    const auto outcome = store::StoreRow(
        session, store::Section::Todo, task.key,
        [&](engine::Recordset& row, bool added) { return FillRow(session, task, row, added); });
    if (outcome.error != 0) return outcome;
    task.key = outcome.fPK;
    session.CalendarDirty = true;
    return outcome;
}

int AddRecords(Session& session, std::vector<Task>& tasks) {
    constexpr std::size_t kChunk = 256;
    // Without keys the cipher gives nothing, and nothing is no record.
    if (session.cipher.Keystring.empty()) return engine::EngineNumber::Failed;
    store::UndoStep step(session, store::Section::Todo, {"import", "imported"});
    engine::Transaction transaction(*session.ProgramDb);
    if (transaction.error() != 0) return transaction.error();
    auto table = session.ProgramDb->OpenRecordset("tt");
    if (!table) return table.error().number;
    Recordset& row = **table;
    std::vector<std::int32_t> keys;
    std::vector<Bytes> ciphered;
    for (std::size_t i = 0; i < tasks.size(); ++i) {
        if (i % kChunk == 0)
            ciphered = Encipher(session, std::span(tasks).subspan(i, std::min(kChunk, tasks.size() - i)));
        tasks[i].hasNote = !tasks[i].note.empty();
        row.AddNew();
        row.SetField("fSec", std::int32_t{store::Section::Todo});
        row.SetField("AE", 1);
        row.SetField("fEtx", std::move(ciphered[i % kChunk * 2]));
        row.SetField("fT1", std::move(ciphered[i % kChunk * 2 + 1]));
        FillNumbers(session, tasks[i], row);
        const auto after = step.Mark(row);
        if (const int error = row.Update()) return error;
        keys.push_back(NumberOf(row.Field("fPK")));
        step.Record(keys.back(), nullptr, after);
    }
    if (const int error = transaction.Commit()) return error;
    step.Keep();
    for (std::size_t i = 0; i < keys.size(); ++i)
        tasks[i].key = keys[i];
    session.CalendarDirty = true;
    return 0;
}

std::string SortKey(const Task& task, Day today) {
    std::string key = task.completed ? "1" : "0";
    key += IsPastDue(task.hasDueDate, task.dueDate, today) ? "0" : "1";
    if (task.hasDueDate) {
        char day[16];
        std::snprintf(day, sizeof day, "0%06d", task.dueDate.serial);
        key += day;
    } else {
        key += "1999999";
    }
    return key + std::to_string(task.priority);
}

std::int32_t PackPriority(std::int32_t priority, RandomSource& random) {
    return SpreadIndex(priority, kPriorities, 0, kMaxLong, random).value;
}

std::int32_t UnpackPriority(std::int32_t fR1) {
    return SlotOf(fR1, kPriorities, 0, kMaxLong);
}

EditorValues RecordToEditor(const Task& task, const store::CategoryList& categories) {
    EditorValues values;
    values.task = task.task;
    values.note = task.note;
    if (task.priority >= Priority::High && task.priority <= Priority::Low) values.priority = task.priority;
    values.isPrivate = task.isPrivate;
    if (task.hasDueDate) values.due = task.dueDate;
    if (task.completed) values.completed = task.completedDate;
    const bool known = std::any_of(categories.begin(), categories.end(),
                                   [&task](const auto& entry) { return entry.number == task.category; });
    values.category = known ? task.category : store::Category::Unfiled;
    return values;
}

void EditorToRecord(const EditorValues& values, Task& task) {
    task.task = values.task;
    task.note = values.note;
    task.priority = values.priority.value_or(Priority::Normal);
    task.isPrivate = values.isPrivate;
    task.hasDueDate = values.due.has_value();
    task.dueDate = values.due.value_or(Day{});
    task.hasNote = !values.note.empty();
    task.completed = values.completed.has_value();
    task.completedDate = values.completed.value_or(Day{});
    task.category = store::RealCategory(values.category);
    task.readable = true;
}

TickOutcome SetCompleted(Session& session, std::int32_t key, bool checked) {
    TickOutcome outcome;
    outcome.record = FetchRecord(session, key, &outcome.error);
    outcome.rebuild = !outcome.record;
    if (!outcome.record || outcome.record->completed == checked) return outcome;
    outcome.record->completed = checked;
    outcome.record->completedDate = checked ? session.ports.clock.Today() : Day{};
    outcome.error = WriteRecord(session, *outcome.record).error;
    outcome.rebuild = !checked || outcome.error != 0;
    return outcome;
}

store::SeveralOutcome CompleteSeveral(Session& session, store::Keys keys) {
    return store::ForSeveral(
        session, kVerbs, keys, {"completion", "completed"},
        [&](Task& task) {
            if (task.completed) return Result<RowChange>(RowChange::Same);
            task.completed = true;
            task.completedDate = session.ports.clock.Today();
            return Stored(session, task);
        },
        true);
}

store::SeveralOutcome SetPriority(Session& session, store::Keys keys, std::int32_t priority) {
    return store::SetInSeveral(session, kVerbs, keys, {}, &Task::priority, priority);
}

store::SeveralOutcome MoveSeveral(Session& session, store::Keys keys, std::int32_t category) {
    return store::MoveSeveral(session, kVerbs, keys, &Task::category, category);
}

store::SeveralOutcome HideSeveral(Session& session, store::Keys keys, bool isPrivate) {
    return store::HideSeveral(session, kVerbs, keys, isPrivate);
}

store::SeveralOutcome DeleteSeveral(Session& session, store::Keys keys) {
    return store::DeleteSeveral(session, kVerbs, keys);
}

store::SeveralOutcome SetDueDate(Session& session, store::Keys keys, std::optional<Day> due) {
    bool kept = false;
    const auto outcome = store::ForSeveral(
        session, kVerbs, keys, {},
        [&](Task& task) {
            kept = kept || task.completed;
            const bool same = task.hasDueDate == due.has_value() && task.dueDate == due.value_or(Day{});
            if (task.completed || same) return Result<RowChange>(RowChange::Same);
            task.hasDueDate = due.has_value();
            task.dueDate = due.value_or(Day{});
            return Stored(session, task);
        },
        true);
    if (kept && outcome.error == 0) session.ports.prompter.Ask(MessageBox(23));
    return outcome;
}

}  // namespace bmr::tasks
