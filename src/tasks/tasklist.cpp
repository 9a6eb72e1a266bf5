#include "tasks/tasklist.h"

#include <algorithm>
#include <unordered_map>

#include "base/buckets.h"
#include "base/languageus.h"
#include "base/shortdate.h"
#include "store/categories.h"
#include "store/privatefilter.h"
#include "store/undo.h"

namespace bmr::tasks {
namespace {

using store::Session;

constexpr std::string_view kPlainColumns = "fPK, fG1, fR1, fR2, fR3, fF1, fF2, fF3";
constexpr int kPayloadColumn = 8;

TaskRow PlainRow(const engine::Cursor& cursor, Day today) {
    TaskRow row;
    row.fPK = cursor.Int(0);
    row.category = cursor.Int(1);
    row.priority = UnpackPriority(cursor.Int(2));
    row.hasDueDate = cursor.Int(5) != 0;
    row.hasNote = cursor.Int(6) != 0;
    row.completed = cursor.Int(7) != 0;
    if (row.completed) row.completedDate = UnpackDate(cursor.Int(3), kCompletedKind);
    if (row.hasDueDate) row.dueDate = UnpackDate(cursor.Int(4), kDueKind);
    row.pastDue = IsPastDue(row.hasDueDate, row.dueDate, today);
    return row;
}

/// Drops the rows from `first` on that turn out private.
void DropPrivate(Session& session, store::PrivateBatch& batch, std::vector<TaskRow>& rows,
                 std::size_t first) {
    std::size_t kept = first;
    batch.Test(session, store::Section::Todo, [&](std::size_t index, bool isPrivate) {
        if (isPrivate) return;
        rows[kept] = rows[first + index];
        rows[kept].privacy = Privacy::Public;
        ++kept;
    });
    rows.resize(kept);
}

int ReadRows(Session& session, const TaskFilter& filter, std::vector<TaskRow>& rows) {
    const bool testAll = !session.ShowPrivate;
    const Day today = session.ports.clock.Today();
    std::string columns(kPlainColumns);
    if (testAll) columns += ", fEtx";
    auto cursor = session.ProgramDb->Select(TaskStatement(session, filter, columns));
    if (!cursor) return cursor.error().number;
    store::PrivateBatch batch;
    std::size_t tested = 0;
    std::uint32_t place = 0;
    while (cursor->Next()) {
        rows.push_back(PlainRow(*cursor, today));
        rows.back().place = place++;
        if (!testAll) continue;
        batch.Add(cursor->Bytes(kPayloadColumn));
        if (!batch.Full()) continue;
        DropPrivate(session, batch, rows, tested);
        tested = rows.size();
    }
    if (testAll) DropPrivate(session, batch, rows, tested);
    return cursor->error();
}

/// The sort key text as a number of the same order; the places of rows fit below it.
std::uint64_t StandardKey(const TaskRow& row) {
    constexpr std::uint64_t kUndated = 1999999;
    const std::uint64_t day = row.hasDueDate ? static_cast<std::uint64_t>(row.dueDate.serial) : kUndated;
    // A damaged priority may be negative; its minus sign sorts before the digits, -1 before -2.
    const std::int32_t priority = row.priority < 0 ? -row.priority : row.priority + 4;
    return (row.completed ? std::uint64_t{1} << 61 : 0) | (row.pastDue ? 0 : std::uint64_t{1} << 60) |
           day << 36 | static_cast<std::uint64_t>(priority & 15) << 32;
}

/// Ranks of texts in ascending order, equal texts sharing a rank, by a number that stands for the text.
class Ranks {
  public:
    template <class Before>
    Ranks(std::vector<std::pair<std::string, std::int32_t>> texts, Before before) {
        std::sort(texts.begin(), texts.end(),
                  [&before](const auto& a, const auto& b) { return before(a.first, b.first); });
        std::uint32_t rank = 0;
        for (std::size_t i = 0; i < texts.size(); ++i) {
            if (i > 0 && before(texts[i - 1].first, texts[i].first)) ++rank;
            ranks_[texts[i].second] = rank;
        }
    }
    std::uint32_t Of(std::int32_t number) const { return ranks_.at(number); }

  private:
    std::unordered_map<std::int32_t, std::uint32_t> ranks_;
};

/// What the text of a sub-item depends on: rows with the same number show the same text.
std::int32_t NumberBehind(const TaskRow& row, int subItem) {
    switch (subItem) {
        case SubItem::DueDate:
            return row.dueDate.serial;
        case SubItem::Priority:
            return row.priority;
        case SubItem::Private:
            return row.privacy == Privacy::Private ? 1 : 0;
        case SubItem::Note:
            return row.hasNote ? 1 : 0;
        case SubItem::Category:
            return row.category;
        case SubItem::ExecDate:
            return row.completedDate.serial;
        default:
            return 0;
    }
}

Ranks RankTexts(const std::vector<TaskRow>& rows, int subItem, const store::CategoryList& categories,
                const LocaleFacts& locale) {
    std::unordered_map<std::int32_t, const TaskRow*> seen;
    for (const TaskRow& row : rows)
        seen.emplace(NumberBehind(row, subItem), &row);
    std::vector<std::pair<std::string, std::int32_t>> texts;
    texts.reserve(seen.size());
    for (const auto& [number, row] : seen)
        texts.emplace_back(subItem == SubItem::Category ? store::CategoryName(categories, number)
                                                        : SubItemText(*row, subItem, categories, locale),
                           number);
    return {std::move(texts),
            [](const std::string& a, const std::string& b) { return CompareNoCase(a, b) < 0; }};
}

/// A short date, empty for what is no date.
std::string DateText(Day day, const LocaleFacts& locale) {
    return day.serial > 1 ? FormatShortDate(day, locale.shortDate) : std::string();
}

/// Asks the question of a delete.
bool Confirmed(Session& session, int number, WipedText text) {
    return session.ports.prompter.Ask(ConfirmDelete(number, std::move(text))) == Answer::Ok;
}

/// What a question about the deletion of these rows adds when it cannot be taken back.
std::string WayBack(Session& session, const char* clauses) {
    return store::TooLargeToUndo(session, store::Section::Todo, clauses) ? store::kCannotBeUndone : "";
}

DeleteOutcome Deleted(Session& session, int error) {
    if (error == 0) session.CalendarDirty = true;
    return {.error = error, .rebuild = error == 0};
}

}  // namespace

const std::array<Column, SubItem::Count> kColumns = {{{"Task", 4200, Align::Left},
                                                      {"Due Date", 1200, Align::Centre},
                                                      {"Prty", 690, Align::Centre},
                                                      {"Priv", 600, Align::Centre},
                                                      {"Note", 600, Align::Centre},
                                                      {"Category", 1800, Align::Left},
                                                      {"Exec Date", 1200, Align::Left},
                                                      {"-", 0, Align::Left}}};

std::string ClausesOf(Session& session, const TaskFilter& filter) {
    return (filter.showCompleted ? "" : " And fF3 = False") +
           store::CategoryClause(session, store::Section::Todo, filter.category);
}

std::string TaskStatement(Session& session, const TaskFilter& filter, std::string_view columns) {
    return "SELECT " + std::string(columns) + " FROM tt WHERE fSec=15" + ClausesOf(session, filter) +
           store::kOwnerAccess;
}

Result<std::vector<TaskRow>> ListRecords(Session& session, const TaskFilter& filter) {
    std::vector<TaskRow> rows;
    if (const int error = ReadRows(session, filter, rows))
        return Error{error, session.ProgramDb->LastError()};
    SortRows(rows, {}, {}, {});
    return rows;
}

int ReadPrivateFlags(Session& session, const TaskFilter& filter, std::vector<TaskRow>& rows) {
    const auto found = store::PrivateRecords(session, store::Section::Todo, ClausesOf(session, filter));
    if (!found) return found.error().number;
    for (TaskRow& row : rows)
        row.privacy = found->contains(row.fPK) ? Privacy::Private : Privacy::Public;
    return 0;
}

void UpdateRow(TaskRow& row, const Task& task, Day today) {
    row.category = task.category;
    row.priority = task.priority;
    row.hasDueDate = task.hasDueDate;
    row.dueDate = task.dueDate;
    row.completed = task.completed;
    row.completedDate = task.completedDate;
    row.hasNote = task.hasNote;
    row.pastDue = IsPastDue(task.hasDueDate, task.dueDate, today);
    row.privacy = task.isPrivate ? Privacy::Private : Privacy::Public;
}

std::string SubItemText(const TaskRow& row, int subItem, const store::CategoryList& categories,
                        const LocaleFacts& locale) {
    static constexpr std::array<const char*, 3> kPriorityMarks = {"X X X", "X X", "X"};
    switch (subItem) {
        case SubItem::DueDate:
            return DateText(row.dueDate, locale);
        case SubItem::Priority:
            return row.priority >= Priority::High && row.priority <= Priority::Low
                       ? kPriorityMarks[static_cast<std::size_t>(row.priority)]
                       : "";
        case SubItem::Private:
            return row.privacy == Privacy::Private ? "P" : "";
        case SubItem::Note:
            return row.hasNote ? "  N" : "";
        case SubItem::Category:
            return ToUtf8(store::CategoryName(categories, row.category));
        case SubItem::ExecDate:
            return DateText(row.completedDate, locale);
        default:
            return "";
    }
}

SortOrder SortOrderOfColumn(int number) {
    static constexpr std::array<bool, SubItem::Count> kDescending = {false, false, true, true,
                                                                     true,  false, true, false};
    const int subItem = number >= 2 ? number - 1 : SubItem::SortKey;
    return {subItem, kDescending.at(static_cast<std::size_t>(subItem))};
}

void SortRows(std::vector<TaskRow>& rows, SortOrder order, const store::CategoryList& categories,
              const LocaleFacts& locale) {
    struct Keyed {
        std::uint64_t key;
        std::uint32_t index;
    };
    std::vector<Keyed> keyed;
    keyed.reserve(rows.size());
    const auto add = [&](std::uint64_t high) {
        const auto index = static_cast<std::uint32_t>(keyed.size());
        keyed.push_back({high | rows[index].place, index});
    };
    if (order.subItem == SubItem::SortKey || order.subItem == SubItem::Task) {
        for (const TaskRow& row : rows)
            add(StandardKey(row));
    } else {
        const Ranks ranks = RankTexts(rows, order.subItem, categories, locale);
        for (const TaskRow& row : rows) {
            const std::uint32_t rank = ranks.Of(NumberBehind(row, order.subItem));
            add(static_cast<std::uint64_t>(order.descending ? ~rank : rank) << 32);
        }
    }
    std::sort(keyed.begin(), keyed.end(), [](const Keyed& a, const Keyed& b) { return a.key < b.key; });
    std::vector<TaskRow> sorted;
    sorted.reserve(rows.size());
    for (const Keyed& entry : keyed)
        sorted.push_back(rows[entry.index]);
    rows = std::move(sorted);
}

DeleteOutcome DeleteItem(Session& session, std::optional<std::int32_t> key, std::string_view task) {
    if (!key) {
        session.ports.prompter.Ask(MessageBox(18));
        return {};
    }
    if (!Confirmed(session, 29, Joined(Msg(29), " \r\n\r\n   ", task))) return {};
    return Deleted(session, store::DeleteRow(session, *key));
}

DeleteOutcome DeleteCompleted(Session& session) {
    constexpr const char* kCompleted = " And fF3=True";
    if (!Confirmed(session, 82, Msg(82) + WayBack(session, kCompleted))) return {};
    return Deleted(session, store::DeleteRows(session, store::Section::Todo, kCompleted));
}

DeleteOutcome DeleteAll(Session& session, bool listIsEmpty) {
    if (listIsEmpty || !Confirmed(session, 80, Msg(80)) ||
        !Confirmed(session, 81, Msg(81) + WayBack(session, "")))
        return {};
    return Deleted(session, store::DeleteRows(session, store::Section::Todo));
}

}  // namespace bmr::tasks
