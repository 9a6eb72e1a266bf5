#include "calendar/section.h"

namespace bmr::calendar {
namespace {

using store::FieldRule;
using store::FieldTag;
using store::Kind;
using store::Section;

/// Never renumber: files in the field carry these.
constexpr FieldRule kFields[] = {
    {0, FieldTag::Byte, "UserNumber", Kind::Stamp},
    {1, FieldTag::Boolean, "ctlPrivate", Kind::Private},
    {2, FieldTag::Int32, "ctlAppoStart", Kind::Minutes},
    {3, FieldTag::Int32, "ctlAppoEnd", Kind::Minutes},
    {4, FieldTag::Byte, "ctlAllday"},
    {5, FieldTag::Byte, "ctlAlarmYN"},
    {6, FieldTag::Int32, "ctlAlarmTime", Kind::Minutes},
    {7, FieldTag::Text, "ctlRedoString", Kind::Hex},
    {8, FieldTag::Text, "ctlSubject", Kind::Words},
    {9, FieldTag::Text, "ctlLocation", Kind::Words},
    {10, FieldTag::Memo, "ctlNotes", Kind::Words},
};

constexpr store::SectionFacts kSections[] = {
    {.code = Section::Calendar,
     .command = "calendar",
     .title = "Calendar",
     .name = "Calendar",
     .one = "appointment",
     .many = "appointments",
     .purpose = "Appointments by day, week and month.",
     .icon = "x-office-calendar",
     .privateField = 1,
     .fields = kFields,
     .grouped = false},
};

}  // namespace

std::span<const store::SectionFacts> Sections() {
    return kSections;
}

}  // namespace bmr::calendar
