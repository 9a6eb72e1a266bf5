#include "store/sections.h"

#include <algorithm>

#include "base/buckets.h"
#include "store/words.h"

namespace bmr::store {
namespace {

/// Line ends as the editors make them.
Words WithOurLines(std::string_view text) {
    Words lines;
    lines.reserve(2 * text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\n' && (i == 0 || text[i - 1] != '\r')) lines += '\r';
        lines += text[i];
    }
    return lines;
}

std::string SetWords(const FieldRule& rule, std::string_view value, bool manyLines, Words& text) {
    const std::string name(rule.name);
    if (!manyLines && value.find_first_of("\r\n") != std::string_view::npos)
        return name + " must be one line.";
    text = WithOurLines(value);
    const WordsLength length = MeasureWords(text);
    if (!length.TooLong()) return {};
    return name + " has " + std::to_string(length.length) + (length.inBytes ? " bytes; " : " characters; ") +
           std::to_string(length.most) + " fit.";
}

std::string SetDate(std::string_view value, DateValue& date) {
    const auto day = ParseIsoDate(std::string(value));
    if (!day) return "\"" + std::string(value) + "\" is no date of the form YYYY-MM-DD.";
    // A payload holds the days of its table and takes the next one for any other.
    if (UnpackDate(PackDateAt(*day, DateKind::Start, 0.5).value, DateKind::Start) != *day)
        return std::string(value) + " is beyond the dates that the file holds.";
    date = {static_cast<double>(day->serial)};
    return {};
}

}  // namespace

const FieldRule* SectionFacts::NameRule() const {
    const auto rule = std::ranges::find_if(fields, &FieldRule::IsColumn);
    return rule == fields.end() ? nullptr : &*rule;
}

const FieldRule* SectionFacts::Rule(std::uint8_t number) const {
    const auto rule = std::ranges::find(fields, number, &FieldRule::number);
    return rule == fields.end() || rule->kind == Kind::ColumnName ? nullptr : &*rule;
}

const SectionFacts* FactsOf(std::int32_t code) {
    const auto all = Sections();
    const auto found =
        std::ranges::find_if(all, [code](const SectionFacts* facts) { return facts->code == code; });
    return found == all.end() ? nullptr : *found;
}

std::string SetField(std::span<const FieldSlot> slots, std::string_view name, std::string_view value,
                     bool manyLines) {
    const auto slot =
        std::ranges::find_if(slots, [name](const FieldSlot& each) { return each.rule.name == name; });
    if (slot == slots.end() || slot->rule.kind == Kind::Stamp || slot->rule.kind == Kind::Private)
        return "There is no field \"" + std::string(name) + "\" to be set.";
    const FieldRule& rule = slot->rule;
    if (rule.IsWords())
        return SetWords(rule, value, manyLines || rule.tag == FieldTag::Memo,
                        *std::get<std::string*>(slot->member));
    if (auto* const* date = std::get_if<DateValue*>(&slot->member)) return SetDate(value, **date);
    return std::string(name) + " cannot be set from words.";
}

std::string SetFields(
    std::span<const FieldSlot> slots, const NewRecord& given,
    const std::function<bool(std::string_view name, std::string_view value, std::string& problem)>& apart) {
    for (const auto& [name, value] : given.fields) {
        std::string problem;
        if (!apart || !apart(name, value, problem)) problem = SetField(slots, name, value);
        if (!problem.empty()) return problem;
    }
    return {};
}

}  // namespace bmr::store
