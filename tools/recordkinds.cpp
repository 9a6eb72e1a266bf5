#include "recordkinds.h"

#include <algorithm>
#include <array>

#include "sitting.h"

namespace bmr::tools {
namespace {

using store::FieldRule;
using store::FieldTag;
using store::Kind;

constexpr FieldRule kUser[] = {
    {0, FieldTag::Byte, "UserNumber"},
    {1, FieldTag::Text, "PwVerifier", Kind::Secret},
    {2, FieldTag::Text, "WrappedKey", Kind::Secret},
    {3, FieldTag::Boolean, "UserFlag1"},
    {4, FieldTag::Boolean, "UserFlag2"},
    {5, FieldTag::Int32, "UserValue"},
    {6, FieldTag::Text, "UserName"},
};

constexpr FieldRule kSettings[] = {
    {0, FieldTag::Int16, "Idle"},
    {1, FieldTag::Byte, "BudgetShow(0)"},
    {2, FieldTag::Byte, "BudgetShow(1)"},
    {3, FieldTag::Byte, "BudgetShow(2)"},
    {4, FieldTag::Byte, "StartSection"},
    {5, FieldTag::Byte, "StartScreen"},
    {6, FieldTag::Byte, "TodoShowCompleted"},
    {7, FieldTag::Byte, "BudgetPrimary"},
    {8, FieldTag::Byte, "DiaryShow"},
    {9, FieldTag::Byte, "CatShow"},
    {10, FieldTag::Byte, "calView"},
    {11, FieldTag::Int32, "AppDuration"},
    {12, FieldTag::TimeOfDay, "WorkdayStart"},
    {13, FieldTag::TimeOfDay, "WorkdayEnd"},
    {14, FieldTag::TimeOfDay, "DisplayFrom"},
    {15, FieldTag::Int16, "LastCategory(0)"},
    {16, FieldTag::Int16, "LastCategory(1)"},
    {17, FieldTag::Int16, "LastCategory(2)"},
    {18, FieldTag::Int16, "LastCategory(3)"},
    {19, FieldTag::Int16, "LastCategory(4)"},
    {20, FieldTag::Int16, "BudgetCategory(0)"},
    {21, FieldTag::Int16, "BudgetCategory(1)"},
    {22, FieldTag::Int16, "BudgetCategory(2)"},
    {23, FieldTag::Int16, "ShowPrivate"},
};

constexpr std::uint8_t kSystemRow = 1;
/// Half-written records, private ones among them.
constexpr std::uint8_t kDrafts = 16;
constexpr std::uint8_t kUserLabelRow = 9;
constexpr std::uint8_t kCategoryRow = 10;

constexpr RecordKind kSystemKinds[] = {
    {kSystemRow, 1, "Keystring", {}},    {kSystemRow, 2, "Keystring copy", {}},
    {kSystemRow, 3, "System", {}},       {2, 0, "User", kUser},
    {5, 1, "Settings", kSettings},       {kUserLabelRow, 0, "User labels", {}},
    {kCategoryRow, 0, "Categories", {}},
};

}  // namespace

std::optional<RecordKind> KindOf(std::int32_t fSec, std::int32_t fSub) {
    if (const auto* facts = store::FactsOf(fSec))
        return RecordKind{facts->code, 0, facts->title, facts->fields, facts};
    const auto* found = std::ranges::find_if(kSystemKinds, [&](const RecordKind& kind) {
        return kind.fSec == fSec && (kind.fSub == 0 || kind.fSub == fSub);
    });
    if (found == std::end(kSystemKinds)) return std::nullopt;
    return *found;
}

std::string TitleOf(std::int32_t fSec, std::int32_t fSub) {
    const auto kind = KindOf(fSec, fSub);
    return kind ? std::string(kind->title) : "class " + std::to_string(fSec);
}

const store::SectionFacts& SectionByName(std::string_view name) {
    std::string names;
    for (const store::SectionFacts* facts : store::Sections()) {
        if (facts->command == name) return *facts;
        names += (names.empty() ? "" : ", ") + std::string(facts->command);
    }
    throw Failure("There is no section \"" + std::string(name) + "\". The sections are " + names + ".");
}

void RefuseKinds(const store::SectionFacts& section) {
    if (!section.kindName) throw Failure("--kind is for confidential records.");
}

void RefuseCategories(const store::SectionFacts& section) {
    if (section.kindName)
        throw Failure(std::string(section.title) + " records have kinds in place of categories: use --kind.");
    if (!section.grouped) throw Failure(std::string(section.title) + " records have no categories.");
}

void RefuseWeeks(const store::SectionFacts& section) {
    if (section.code != store::Section::Calendar)
        throw Failure((section.spans ? "--week and --rows are for calendar, not for "
                                     : "--week, --from, --to and --rows are for calendar, not for ") +
                      std::string(section.command) + ".");
}

std::optional<FieldRule> RuleOf(const RecordKind& kind, std::uint8_t number) {
    if (kind.fSec == kSystemRow && kind.fSub == 3 && number == kDrafts)
        return FieldRule{number, FieldTag::Text, "", Kind::Secret};
    if (kind.fSec == kSystemRow && kind.fSub == 3 && number < kDrafts)
        return FieldRule{number, FieldTag::Text, number == 2 ? "DatabaseVersion" : ""};
    if (kind.fSec == kCategoryRow)
        return FieldRule{number, number % 2 == 0 ? FieldTag::Text : FieldTag::Int16, ""};
    if (kind.fSec == kUserLabelRow && number < 4) return FieldRule{number, FieldTag::Text, ""};
    if (kind.section) {
        const FieldRule* rule = kind.section->Rule(number);
        return rule ? std::optional(*rule) : std::nullopt;
    }
    const auto found = std::ranges::find(kind.fields, number, &FieldRule::number);
    if (found == kind.fields.end()) return std::nullopt;
    return *found;
}

}  // namespace bmr::tools
