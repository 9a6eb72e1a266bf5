#include "tasks/tasksearch.h"

#include <algorithm>
#include <unordered_map>

#include "store/privatefilter.h"

namespace bmr::tasks {

namespace {

/// Looks for a text without regard to case.
class Needle {
  public:
    explicit Needle(const std::string& utf8)
        : bytes_(LowerCase(ToBytes(utf8).value_or(""))), usable_(!bytes_.empty()) {}
    /// False when it has characters that no record can hold.
    bool Usable() const { return usable_; }
    bool In(std::string_view text) const { return LowerCase(text).find(bytes_) != std::string::npos; }

  private:
    Bytes bytes_;
    bool usable_;
};

/// What of a row lies in plain columns.
bool PlainMatch(const TaskRow& row, const Needle& needle, const store::CategoryList& categories,
                const LocaleFacts& locale) {
    if (needle.In(store::CategoryName(categories, row.category))) return true;
    return needle.In(SubItemText(row, SubItem::DueDate, categories, locale)) ||
           needle.In(SubItemText(row, SubItem::ExecDate, categories, locale));
}

bool TaskMatches(std::string_view payload, const Needle& needle) {
    Task task;
    ReadPayload(task, payload);
    const bool found = task.readable && needle.In(task.task);
    WipeMemory(task.task.data(), task.task.size());
    WipeMemory(task.note.data(), task.note.size());
    return found;
}

}  // namespace

int KeepMatching(store::Session& session, const TaskFilter& filter, const std::string& search,
                 const store::CategoryList& categories, const LocaleFacts& locale,
                 std::vector<TaskRow>& rows) {
    const Needle needle(search);
    if (!needle.Usable()) {
        rows.clear();
        return 0;
    }
    std::vector<bool> keep(rows.size());
    std::unordered_map<std::int32_t, std::size_t> open;  // rows whose task text must tell
    for (std::size_t i = 0; i < rows.size(); ++i) {
        keep[i] = PlainMatch(rows[i], needle, categories, locale);
        if (!keep[i]) open.emplace(rows[i].fPK, i);
    }
    auto cursor = session.ProgramDb->Select(TaskStatement(filter, "fPK, fEtx"));
    if (!cursor) return cursor.error().number;
    std::vector<std::size_t> waiting;
    store::PrivateBatch batch;
    const auto test = [&] {
        batch.Decipher(session, [&](std::size_t index, std::string_view plain) {
            keep[waiting[index]] = TaskMatches(plain, needle);
        });
        waiting.clear();
    };
    while (cursor->Next()) {
        const auto row = open.find(cursor->Int(0));
        if (row == open.end()) continue;
        waiting.push_back(row->second);
        batch.Add(cursor->Bytes(1));
        if (batch.Full()) test();
    }
    test();
    std::size_t at = 0;
    std::erase_if(rows, [&](const TaskRow&) { return !keep[at++]; });
    return cursor->error();
}

}  // namespace bmr::tasks
