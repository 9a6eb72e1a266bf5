#include "listtable.h"

#include <algorithm>
#include <unordered_map>

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

/// What names a record: the name that its section gives it, else its first words.
std::string Headline(const store::SectionFacts& section, const Json& record) {
    if (record.contains("fault")) return "(" + Text(record, "fault") + ")";
    // The first words of a record that has a name might be its body, or a password.
    if (const store::FieldRule* name = section.NameRule()) return Text(record, name->name);
    for (const store::FieldRule& rule : section.fields)
        if (rule.IsWords() && !Text(record, rule.name).empty()) return Text(record, rule.name);
    return {};
}

Cells HeaderOf(const store::SectionFacts& section) {
    Cells header = {"fPK"};
    if (section.columns)
        for (const store::ColumnValue& column : section.columns({}))
            if (!column.header.empty()) header.emplace_back(column.header);
    if (section.inText)
        for (const store::ColumnValue& told : section.inText({}))
            header.emplace_back(told.header);
    header.emplace_back("Priv");
    if (section.grouped) header.emplace_back(section.kindName ? "Kind" : "Category");
    header.emplace_back(section.kindName ? "Name" : section.title);
    if (section.code == store::Section::Address) header.emplace_back("Contact");
    return header;
}

Cells CellsOf(const store::SectionFacts& section, const Row& row, const Json& record,
              const std::string& headline) {
    const bool whole = !record.contains("fault");
    Cells cells = {record["fPK"].dump()};
    if (section.columns)
        for (const store::ColumnValue& column : section.columns(row))
            if (!column.header.empty()) cells.push_back(whole ? column.cell : "");
    if (section.inText)
        for (const store::ColumnValue& told : section.inText(row.listText))
            cells.push_back(whole ? told.cell : "");
    const store::FieldRule* flag = section.Rule(section.FlagField());
    const bool isPrivate = whole && flag && record.value(std::string(flag->name), Json()) == true;
    cells.emplace_back(isPrivate ? "P" : "");
    if (section.grouped) {
        cells.emplace_back();
        if (record.contains("kind"))
            cells.back() = record["kind"]["number"].dump() + " " + Text(record["kind"], "caption");
        else if (record.contains("category"))
            cells.back() = Text(record["category"], "name");
    }
    cells.push_back(headline);
    if (section.code == store::Section::Address) cells.push_back(Text(record, "contact"));
    return cells;
}

void PrintCells(std::ostream& out, const Cells& cells, const std::vector<std::size_t>& widths) {
    for (std::size_t i = 0; i < cells.size(); ++i) {
        out << cells[i];
        if (i + 1 < cells.size()) out << std::string(widths[i] - WidthOf(cells[i]) + 2, ' ');
    }
    out << '\n';
}

}  // namespace

void ListTable::Add(const Row& row, const Json& record) {
    Line line{row.fPK, Headline(section_, record), {}};
    line.cells = json_ ? Cells{DumpLine(record)} : CellsOf(section_, row, record, line.headline);
    if (!json_)
        for (std::string& cell : line.cells)
            cell = Printable(cell);
    lines_.push_back(std::move(line));
}

void ListTable::Print(std::ostream& out, const std::vector<std::int32_t>& keys) {
    std::unordered_map<std::int32_t, std::size_t> places;
    for (const std::int32_t key : keys)
        places.emplace(key, places.size());
    const auto placeOf = [&](const Line& line) {
        const auto found = places.find(line.fPK);
        return found == places.end() ? places.size() : found->second;
    };
    std::ranges::stable_sort(lines_, {}, [&](const Line& line) {
        return std::pair(placeOf(line), UpperCase(ToBytes(line.headline).value_or(line.headline)));
    });
    if (json_) {
        for (std::size_t i = 0; i < lines_.size(); ++i)
            out << (i == 0 ? "[\n" : ",\n") << lines_[i].cells[0];
        out << (lines_.empty() ? "[]\n" : "\n]\n");
        return;
    }
    const Cells header = HeaderOf(section_);
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
