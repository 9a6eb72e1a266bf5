#include "calendar/section.h"

#include "calendar/addwords.h"
#include "calendar/appointment.h"
#include "calendar/dayorder.h"

namespace bmr::calendar {
namespace {

constexpr auto kRules = store::RulesOf(kAppointmentFields);

/// All appointments: they have no categories, and nothing is left out at first.
std::string Clauses(store::Session&, const store::ListRequest&) {
    return {};
}

Result<std::vector<std::int32_t>> List(store::Session& session, const store::ListRequest&) {
    return ListRecords(session);
}

std::vector<store::ColumnValue> Columns(const store::PlainColumns& row) {
    const Day day{store::DayOfPoint(row.fR3)};
    const bool recurring = row.fSub >= kFirstSeriesSub;
    return {{"date", DateValue{static_cast<double>(day.serial)}, "Date", IsoDate(day)},
            {"recurring", recurring, "Recurs", recurring ? "x" : ""}};
}

constexpr store::SectionFacts kSections[] = {
    {.code = store::Section::Calendar,
     .command = "calendar",
     .title = "Calendar",
     .name = "Calendar",
     .one = "appointment",
     .many = "appointments",
     .purpose = "Appointments by day, week and month.",
     .icon = "x-office-calendar",
     .privateField = 1,
     .fields = kRules,
     .grouped = false,
     .days = &kDayOrder,
     .clauses = Clauses,
     .list = List,
     .add = AddFromWords,
     .options = kAddOptions,
     .columns = Columns,
     .hide = HideSeveral,
     .remove = DeleteSeveral},
};

}  // namespace

std::span<const store::SectionFacts> Sections() {
    return kSections;
}

}  // namespace bmr::calendar
