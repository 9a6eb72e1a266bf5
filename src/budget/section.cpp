#include "budget/section.h"

namespace bmr::budget {
namespace {

using store::FieldRule;
using store::FieldTag;
using store::Kind;
using store::Section;

/// Never renumber: files in the field carry these.
constexpr FieldRule kFields[] = {
    {0, FieldTag::Text, "Description", Kind::Words}, {1, FieldTag::Text, "BizPartner", Kind::Words},
    {2, FieldTag::Memo, "Note", Kind::Words},        {3, FieldTag::Boolean, "Private", Kind::Private},
    {4, FieldTag::Byte, "UserNumber", Kind::Stamp},
};

constexpr store::SectionFacts kSections[] = {
    // The field that is asked for the flag is a byte, so all records of the budgets are private to readers of
    // it.
    {.code = Section::Budget1,
     .command = "budget1",
     .title = "Budget 1",
     .name = "Budget 1",
     .one = "entry",
     .many = "entries",
     .purpose = "Income, expenses and what is left.",
     .icon = "view-bank-account-1",
     .privateField = 4,
     .fields = kFields},
    {.code = Section::Budget2,
     .command = "budget2",
     .title = "Budget 2",
     .name = "Budget 2",
     .one = "entry",
     .many = "entries",
     .purpose = "Income, expenses and what is left.",
     .icon = "view-bank-account-2",
     .privateField = 4,
     .fields = kFields},
    {.code = Section::Budget3,
     .command = "budget3",
     .title = "Budget 3",
     .name = "Budget 3",
     .one = "entry",
     .many = "entries",
     .purpose = "Income, expenses and what is left.",
     .icon = "view-bank-account-3",
     .privateField = 4,
     .fields = kFields},
};

}  // namespace

std::span<const store::SectionFacts> Sections() {
    return kSections;
}

}  // namespace bmr::budget
