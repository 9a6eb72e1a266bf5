#include "calendar/rowcheck.h"

#include <algorithm>

#include "base/buckets.h"
#include "calendar/appointment.h"
#include "calendar/months.h"
#include "store/record_get.h"

namespace bmr::calendar {
namespace {

/// fSub of a series that is not yearly begins here.
constexpr std::int32_t kFirstPlainSeries = 196;
constexpr std::size_t kNoise = 7;

/// Whether a column holds a point of the day's bucket. One beyond its end may be drawn, and is.
bool Tells(std::int32_t value, Day day, DateKind kind) {
    const SpreadRange bucket = PackDateAt(day, kind, 0.5);
    return bucket.low <= value && value <= bucket.high + (bucket.high < kMaxLong ? 1 : 0);
}

std::int32_t TypedNumber(std::string_view plain) {
    return NumberOf(store::DecodeField(plain));
}

struct Texts {
    Bytes start, steps, redo;
};

std::string FaultInTexts(const Appointment& appointment, const Texts& texts) {
    if (TypedNumber(texts.start) != appointment.start.count) return "fT1 does not tell the start";
    if (TypedNumber(texts.steps) != MinuteOfDay(appointment.start) / 6)
        return "fT2 does not tell the time of day";
    const bool agrees =
        appointment.Recurring() ? texts.redo == appointment.redoString : texts.redo.size() == kNoise;
    return agrees ? "" : "fT3 does not tell the recurrence";
}

std::string FaultInSeries(const RedoRule& rule, const engine::Cursor& row) {
    const std::int32_t fSub = row.Int(1);
    const auto told = MonthOfSubclass(fSub);
    std::optional<int> month;
    if (rule.kind == RedoKind::YearDay) month = MonthOf(DayOf(rule.first));
    if (rule.kind == RedoKind::YearWeekday) month = std::clamp<int>(rule.interval, 1, 12);
    if (told != month || (!month && fSub < kFirstPlainSeries))
        return "fSub does not tell the kind of the series";
    if (!Tells(row.Int(4), DayOf(rule.first), DateKind::First))
        return "fR4 does not tell the first day of the series";
    // A damaged end mode counts as a date.
    if (!Tells(row.Int(2), DayOf(rule.last), DateKind::Last))
        return "fR2 does not tell the last day of the series";
    return {};
}

std::string FaultOf(const Appointment& appointment, const Texts& texts, const engine::Cursor& row) {
    if (!Tells(row.Int(3), DayOf(appointment.start), DateKind::Start))
        return "fR3 does not tell the day of the start";
    if (std::string fault = FaultInTexts(appointment, texts); !fault.empty()) return fault;
    if ((row.Int(1) >= kFirstSeriesSub) != appointment.Recurring())
        return "fSub does not tell whether the appointment comes again";
    if (!appointment.Recurring()) return {};
    const auto rule = ReadRedoRule(appointment.redoString);
    return rule ? FaultInSeries(*rule, row) : "the recurrence string gives no occurrence";
}

}  // namespace

Result<std::vector<RowFault>> CheckRows(store::Session& session) {
    auto rows = session.ProgramDb->Select(
        "SELECT fPK, fSub, fR2, fR3, fR4, fEtx, fT1, fT2, fT3 FROM tt WHERE fSec=12 ORDER BY fPK");
    if (!rows) return rows.error();
    std::vector<RowFault> faults;
    const auto plain = [&](int column) {
        return Bytes(cry::DecipherField(session.cipher, rows->Bytes(column)));
    };
    while (rows->Next()) {
        Appointment appointment;
        if (store::DecodeFields(appointment, cry::DecipherField(session.cipher, rows->Bytes(5)),
                                kAppointmentFields)) {
            const Texts texts{plain(6), plain(7), plain(8)};
            if (std::string fault = FaultOf(appointment, texts, *rows); !fault.empty())
                faults.push_back({rows->Int(0), std::move(fault)});
        }
        store::WipeFields(appointment, kAppointmentFields);
    }
    if (rows->error() != 0) return Error{rows->error(), session.ProgramDb->LastError()};
    return faults;
}

}  // namespace bmr::calendar
