#include "listtable.h"

#include <algorithm>

#include "base/buckets.h"
#include "confidential/kinds.h"
#include "store/indices.h"
#include "tasks/task.h"
#include "terminal.h"

namespace bmr::tools {
namespace {

using Cells = std::vector<std::string>;

/// Characters of UTF-8, each one column wide.
std::size_t WidthOf(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned>(c) & 0xC0U) != 0x80; }));
}

std::string Text(const Json& record, std::string_view name) {
    const auto found = record.find(std::string(name));
    return found != record.end() && found->is_string() ? found->get<std::string>() : std::string();
}

bool Flag(const Json& record, const char* name) {
    const auto found = record.find(name);
    return found != record.end() && found->is_boolean() && found->get<bool>();
}

std::string CategoryText(const Json& record) {
    if (record.contains("kind"))
        return record["kind"]["number"].dump() + " " + Text(record["kind"], "caption");
    return record.contains("category") ? record["category"]["name"].get<std::string>() : std::string();
}

std::string FaultText(const Json& record) {
    return "(" + Text(record, "fault") + ")";
}

/// What names a record of any section: an address what it is filed as, the others their first text.
std::string Headline(const RecordKind& kind, const Row& row, const Json& record) {
    if (record.contains("fault")) return FaultText(record);
    if (kind.fSec == store::Section::Address) return ToUtf8(TrimBlanks(row.listText));
    // The first text that is not empty might be a memo's body or a password.
    if (kind.fSec == store::Section::Memo) return Text(record, "Subject");
    if (kind.fSec == store::Section::Confidential) return Text(record, "n0");
    for (const FieldRule& rule : kind.fields) {
        const bool text = rule.tag == store::FieldTag::Text || rule.tag == store::FieldTag::Memo;
        if (text && rule.shape == Shape::Plain && !Text(record, rule.name).empty())
            return Text(record, rule.name);
    }
    return {};
}

Cells TaskCells(const Json& record) {
    constexpr const char* kMarks[] = {"X X X", "X X", "X"};
    if (record.contains("fault")) return {record["fPK"].dump(), "", "", "", "", "", "", FaultText(record)};
    const int priority = record["priority"].get<int>();
    return {record["fPK"].dump(),
            Flag(record, "completed") ? "x" : "",
            Text(record, "dueDate"),
            priority >= 0 && priority < 3 ? kMarks[priority] : "",
            Flag(record, "Private") ? "P" : "",
            Flag(record, "hasNote") ? "N" : "",
            CategoryText(record),
            Text(record, "Description")};
}

Cells HeaderOf(const RecordKind& kind) {
    if (kind.fSec == store::Section::Todo)
        return {"fPK", "Done", "Due Date", "Prty", "Priv", "Note", "Category", "Task"};
    if (kind.fSec == store::Section::Confidential) return {"fPK", "Priv", "Kind", "Name"};
    return {"fPK", "Priv", "Category", std::string(kind.title)};
}

void PrintCells(std::ostream& out, const Cells& cells, const std::vector<std::size_t>& widths) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
        out << cells[i];
        if (i + 1 < cells.size()) out << std::string(widths[i] - WidthOf(cells[i]) + 2, ' ');
    }
    out << '\n';
}

/// The order of the window's list.
std::string TaskSortKey(const Row& row, Day today) {
    tasks::Task task;
    task.completed = row.fF3;
    task.hasDueDate = row.fF1;
    task.dueDate = UnpackDate(row.fR3, DateKind::First);
    task.priority = tasks::UnpackPriority(row.fR1);
    return tasks::SortKey(task, today);
}

std::string Digits(std::int64_t number) {
    const std::string digits = std::to_string(number);
    return std::string(12 - digits.size(), '0') + digits;
}

/// The same for the sections that stand in alphabetical order by their keys; the kinds of confidential
/// records come in the order of the screen.
std::string AlphabeticalSortKey(const Row& row) {
    const auto kinds = confidential::ConfidentialKinds();
    std::int64_t place = 0;
    if (row.fSec == store::Section::Confidential)
        place = std::find_if(kinds.begin(), kinds.end(),
                             [&](const auto& kind) { return kind.number == row.fG1.value_or(0); }) -
                kinds.begin();
    return Digits(place) + Digits(store::BucketOfKey(row.fR2)) + Digits(std::int64_t{row.fR1} + (1LL << 31));
}

}  // namespace

void ListTable::Add(const Row& row, const Json& record) {
    const bool task = kind_.fSec == store::Section::Todo;
    Line line;
    const std::string headline = task ? std::string() : Headline(kind_, row, record);
    const bool byKeys = kind_.fSec == store::Section::Memo || kind_.fSec == store::Section::Confidential;
    line.sortKey = task     ? TaskSortKey(row, today_)
                   : byKeys ? AlphabeticalSortKey(row)
                            : UpperCase(ToBytes(headline).value_or(headline));
    if (json_) {
        line.cells = {DumpLine(record)};
    } else {
        line.cells = task ? TaskCells(record)
                          : Cells{record["fPK"].dump(), Flag(record, "Private") ? "P" : "",
                                  CategoryText(record), headline};
        for (std::string& cell : line.cells)
            cell = Printable(cell);
    }
    lines_.push_back(std::move(line));
}

void ListTable::Print(std::ostream& out) {
    std::stable_sort(lines_.begin(), lines_.end(),
                     [](const Line& a, const Line& b) { return a.sortKey < b.sortKey; });
    if (json_) {
        for (std::size_t i = 0; i < lines_.size(); ++i)
            out << (i == 0 ? "[\n" : ",\n") << lines_[i].cells[0];
        out << (lines_.empty() ? "[]\n" : "\n]\n");
        return;
    }
    const Cells header = HeaderOf(kind_);
    std::vector<std::size_t> widths(header.size());
    for (std::size_t i = 0; i < header.size(); ++i) {
        widths[i] = WidthOf(header[i]);
        for (const Line& line : lines_)
            widths[i] = std::max(widths[i], WidthOf(line.cells[i]));
    }
    PrintCells(out, header, widths);
    for (const Line& line : lines_)
        PrintCells(out, line.cells, widths);
}

}  // namespace bmr::tools
