#include "diary/section.h"

namespace bmr::diary {
namespace {

using store::FieldRule;
using store::FieldTag;
using store::Kind;
using store::Section;

/// Never renumber: files in the field carry these.
constexpr FieldRule kFields[] = {
    {0, FieldTag::Memo, "text", Kind::Words},
    {1, FieldTag::Date, "date"},
};

constexpr store::SectionFacts kSections[] = {
    // No diary record has the flag, so all of them are private.
    {.code = Section::Diary,
     .command = "diary",
     .title = "Diary",
     .name = "Diary",
     .one = "diary entry",
     .many = "diary entries",
     .purpose = "A page for each day.",
     .icon = "view-pim-journal",
     .privateField = 13,
     .fields = kFields,
     .grouped = false},
};

}  // namespace

std::span<const store::SectionFacts> Sections() {
    return kSections;
}

}  // namespace bmr::diary
