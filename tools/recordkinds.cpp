#include "recordkinds.h"

#include <algorithm>
#include <array>

#include "store/session.h"

namespace bmr::tools {
namespace {

using store::FieldTag;
using store::Section;

constexpr FieldRule kUser[] = {
    {0, FieldTag::Byte, "UserNumber"},
    {1, FieldTag::Text, "PwVerifier", Shape::Secret},
    {2, FieldTag::Text, "WrappedKey", Shape::Secret},
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

constexpr FieldRule kAddress[] = {
    {0, FieldTag::Byte, "UserNumber"},
    {1, FieldTag::Boolean, "Private"},
    {2, FieldTag::Byte, "Priority"},
    {3, FieldTag::Text, "Title"},
    {4, FieldTag::Text, "FirstName"},
    {5, FieldTag::Text, "MiddleName"},
    {6, FieldTag::Text, "LastName"},
    {7, FieldTag::Text, "Suffix"},
    {8, FieldTag::Text, "CompanyName"},
    {9, FieldTag::Text, "Department"},
    {10, FieldTag::Text, "JobTitle"},
    {11, FieldTag::Text, "BusinessAddressStreet"},
    {12, FieldTag::Text, "BusinessAddressCity"},
    {13, FieldTag::Text, "BusinessAddressState"},
    {14, FieldTag::Text, "BusinessAddressPostalCode"},
    {15, FieldTag::Text, "BusinessAddressCountry"},
    {16, FieldTag::Text, "HomeAddressStreet"},
    {17, FieldTag::Text, "HomeAddressCity"},
    {18, FieldTag::Text, "HomeAddressState"},
    {19, FieldTag::Text, "HomeAddressPostalCode"},
    {20, FieldTag::Text, "HomeAddressCountry"},
    {21, FieldTag::Text, "OtherAddressStreet"},
    {22, FieldTag::Text, "OtherAddressCity"},
    {23, FieldTag::Text, "OtherAddressState"},
    {24, FieldTag::Text, "OtherAddressPostalCode"},
    {25, FieldTag::Text, "OtherAddressCountry"},
    {26, FieldTag::Text, "Account"},
    {27, FieldTag::Text, "Anniversary"},
    {28, FieldTag::Text, "BillingInformation"},
    {29, FieldTag::Date, "Birthday"},
    {30, FieldTag::Text, "Children"},
    {31, FieldTag::Text, "Gender"},
    {32, FieldTag::Text, "GovernmentIDNumber"},
    {33, FieldTag::Text, "Profession"},
    {34, FieldTag::Text, "Spouse"},
    {35, FieldTag::Text, "User1"},
    {36, FieldTag::Text, "User2"},
    {37, FieldTag::Text, "User3"},
    {38, FieldTag::Text, "User4"},
    {39, FieldTag::Text, "OrganizationalIDNumber"},
    {40, FieldTag::Text, "CustomerID"},
    {41, FieldTag::Text, "Com1"},
    {42, FieldTag::Text, "Com2"},
    {43, FieldTag::Text, "Com3"},
    {44, FieldTag::Text, "Com4"},
    {45, FieldTag::Text, "Com5"},
    {46, FieldTag::Text, "Com6"},
    {47, FieldTag::Text, "Com7"},
    {48, FieldTag::Text, "Com8"},
    {49, FieldTag::Text, "Com9"},
    {50, FieldTag::Text, "ComLabel1"},
    {51, FieldTag::Text, "ComLabel2"},
    {52, FieldTag::Text, "ComLabel3"},
    {53, FieldTag::Text, "ComLabel4"},
    {54, FieldTag::Text, "ComLabel5"},
    {55, FieldTag::Text, "ComLabel6"},
    {56, FieldTag::Text, "ComLabel7"},
    {57, FieldTag::Text, "ComLabel8"},
    {58, FieldTag::Text, "ComLabel9"},
    {59, FieldTag::Text, "ComDisplay"},
    {60, FieldTag::Memo, "Notes"},
};

constexpr FieldRule kCalendar[] = {
    {0, FieldTag::Byte, "UserNumber"},
    {1, FieldTag::Boolean, "ctlPrivate"},
    {2, FieldTag::Int32, "ctlAppoStart", Shape::Minutes},
    {3, FieldTag::Int32, "ctlAppoEnd", Shape::Minutes},
    {4, FieldTag::Byte, "ctlAllday"},
    {5, FieldTag::Byte, "ctlAlarmYN"},
    {6, FieldTag::Int32, "ctlAlarmTime", Shape::Minutes},
    {7, FieldTag::Text, "ctlRedoString", Shape::Hex},
    {8, FieldTag::Text, "ctlSubject"},
    {9, FieldTag::Text, "ctlLocation"},
    {10, FieldTag::Memo, "ctlNotes"},
};

constexpr FieldRule kDiary[] = {
    {0, FieldTag::Memo, "text"},
    {1, FieldTag::Date, "date"},
};

constexpr FieldRule kMemo[] = {
    {0, FieldTag::Byte, "UserNumber"},  {1, FieldTag::Boolean, "Private"},
    {2, FieldTag::Date, "DateCreated"}, {3, FieldTag::Date, "DateLastModified"},
    {4, FieldTag::Text, "Subject"},     {5, FieldTag::Memo, "Memo"},
};

constexpr FieldRule kTodo[] = {
    {0, FieldTag::Text, "Description"},
    {1, FieldTag::Memo, "Memo"},
    {2, FieldTag::Boolean, "Private"},
    {3, FieldTag::Byte, "UserNumber"},
};

constexpr FieldRule kConfidential[] = {
    {0, FieldTag::Text, "n0"},
    {1, FieldTag::Text, "n1"},
    {2, FieldTag::Text, "n2"},
    {3, FieldTag::Text, "n3"},
    {4, FieldTag::Text, "n4"},
    {5, FieldTag::Memo, "notes"},
    {6, FieldTag::Date, "DateLastModified"},
    {7, FieldTag::Boolean, "Private"},
    {8, FieldTag::Byte, "UserName"},
};

constexpr FieldRule kBudget[] = {
    {0, FieldTag::Text, "Description"}, {1, FieldTag::Text, "BizPartner"}, {2, FieldTag::Memo, "Note"},
    {3, FieldTag::Boolean, "Private"},  {4, FieldTag::Byte, "UserNumber"},
};

constexpr std::uint8_t kSystemRow = 1;
/// Half-written records, private ones among them.
constexpr std::uint8_t kDrafts = 16;
constexpr std::uint8_t kUserLabelRow = 9;
constexpr std::uint8_t kCategoryRow = 10;

constexpr RecordKind kKinds[] = {
    {kSystemRow, 1, "", "Keystring", {}},
    {kSystemRow, 2, "", "Keystring copy", {}},
    {kSystemRow, 3, "", "System", {}},
    {2, 0, "", "User", kUser},
    {5, 1, "", "Settings", kSettings},
    {kUserLabelRow, 0, "", "User labels", {}},
    {kCategoryRow, 0, "", "Categories", {}},
    {Section::Address, 0, "address", "Address", kAddress},
    {Section::Calendar, 0, "calendar", "Calendar", kCalendar},
    {Section::Diary, 0, "diary", "Diary", kDiary},
    {Section::Memo, 0, "memo", "Memo", kMemo},
    {Section::Todo, 0, "todo", "Todo", kTodo},
    {Section::Confidential, 0, "confidential", "Confidential", kConfidential},
    {Section::Budget1, 0, "budget1", "Budget 1", kBudget},
    {Section::Budget2, 0, "budget2", "Budget 2", kBudget},
    {Section::Budget3, 0, "budget3", "Budget 3", kBudget},
};

}  // namespace

const RecordKind* KindOf(std::int32_t fSec, std::int32_t fSub) {
    const auto* found = std::find_if(std::begin(kKinds), std::end(kKinds), [&](const RecordKind& kind) {
        return kind.fSec == fSec && (kind.fSub == 0 || kind.fSub == fSub);
    });
    return found == std::end(kKinds) ? nullptr : found;
}

const RecordKind* SectionByName(std::string_view name) {
    const auto* found = std::find_if(std::begin(kKinds), std::end(kKinds), [&](const RecordKind& kind) {
        return !kind.name.empty() && kind.name == name;
    });
    return found == std::end(kKinds) ? nullptr : found;
}

std::optional<FieldRule> RuleOf(const RecordKind& kind, std::uint8_t number) {
    if (kind.fSec == kSystemRow && kind.fSub == 3 && number == kDrafts)
        return FieldRule{number, FieldTag::Text, "", Shape::Secret};
    if (kind.fSec == kSystemRow && kind.fSub == 3 && number < kDrafts)
        return FieldRule{number, FieldTag::Text, number == 2 ? "DatabaseVersion" : ""};
    if (kind.fSec == kCategoryRow)
        return FieldRule{number, number % 2 == 0 ? FieldTag::Text : FieldTag::Int16, ""};
    if (kind.fSec == kUserLabelRow && number < 4) return FieldRule{number, FieldTag::Text, ""};
    const auto found = std::find_if(kind.fields.begin(), kind.fields.end(),
                                    [&](const FieldRule& rule) { return rule.number == number; });
    if (found == kind.fields.end()) return std::nullopt;
    return *found;
}

}  // namespace bmr::tools
