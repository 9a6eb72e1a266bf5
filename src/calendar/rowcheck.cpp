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

/// Whether a column holds a point of the day's bucket. One beyond its end may be drawn, and is, by others;
/// the ends of days before the table begins are their lows.
bool Tells(std::int32_t value, Day day, DateKind kind) {
    const SpreadRange bucket = PackDateAt(day, kind, 0.5);
    const std::int32_t low = bucket.low - (bucket.low < 0 ? 1 : 0);
    return low <= value && value <= bucket.high + (bucket.high < kMaxLong ? 1 : 0);
}

std::int32_t TypedNumber(std::string_view plain) {
    return NumberOf(store::DecodeField(plain));
}

/// The plain columns of a row, and what stands in its texts.
struct CheckedRow {
    std::int32_t fPK, fSub, fR2, fR3, fR4;
    Appointment appointment = {};
    Bytes start = {}, steps = {};
};

std::string FaultInTexts(const CheckedRow& row, std::string_view redo) {
    const Appointment& appointment = row.appointment;
    if (TypedNumber(row.start) != appointment.start.count) return "fT1 does not tell the start";
    if (TypedNumber(row.steps) != MinuteOfDay(appointment.start) / 6)
        return "fT2 does not tell the time of day";
    const bool agrees = appointment.Recurring() ? redo == appointment.redoString : redo.size() == kNoise;
    return agrees ? "" : "fT3 does not tell the recurrence";
}

std::string FaultInSeries(const RedoRule& rule, const CheckedRow& row) {
    const auto told = MonthOfSubclass(row.fSub);
    std::optional<int> month;
    if (rule.kind == RedoKind::YearDay) month = MonthOf(DayOf(rule.first));
    if (rule.kind == RedoKind::YearWeekday) month = std::clamp<int>(rule.interval, 1, 12);
    if (told != month || (!month && row.fSub < kFirstPlainSeries))
        return "fSub does not tell the kind of the series";
    if (!Tells(row.fR4, DayOf(rule.first), DateKind::First))
        return "fR4 does not tell the first day of the series";
    // A damaged end mode counts as a date.
    if (!Tells(row.fR2, DayOf(rule.last), DateKind::Last))
        return "fR2 does not tell the last day of the series";
    return {};
}

std::string FaultOf(const CheckedRow& row, std::string_view redo) {
    const Appointment& appointment = row.appointment;
    if (!Tells(row.fR3, DayOf(appointment.start), DateKind::Start))
        return "fR3 does not tell the day of the start";
    if (std::string fault = FaultInTexts(row, redo); !fault.empty()) return fault;
    if ((row.fSub >= kFirstSeriesSub) != appointment.Recurring())
        return "fSub does not tell whether the appointment comes again";
    if (!appointment.Recurring()) return {};
    const auto rule = ReadRedoRule(appointment.redoString);
    return rule ? FaultInSeries(*rule, row) : "the recurrence string gives no occurrence";
}

/// Rows that wait to be deciphered together, which is far cheaper than one by one.
class Checker {
  public:
    Checker(store::Session& session, std::vector<RowFault>& faults) : session_(session), faults_(faults) {}

    void Add(const engine::Cursor& cursor) {
        rows_.push_back({cursor.Int(0), cursor.Int(1), cursor.Int(2), cursor.Int(3), cursor.Int(4)});
        for (std::size_t i = 0; i < kTexts; ++i)
            ciphered_.emplace_back(cursor.Bytes(5 + static_cast<int>(i)));
        if (rows_.size() == kChunk) Check();
    }
    void Check() {
        const std::vector<std::string_view> views(ciphered_.begin(), ciphered_.end());
        cry::DecipherBatch(session_.cipher, views, [this](std::size_t index, std::string_view plain) {
            Take(rows_[index / kTexts], index % kTexts, plain);
        });
        rows_.clear();
        ciphered_.clear();
    }

  private:
    static constexpr std::size_t kTexts = 4;  ///< fEtx, fT1, fT2, fT3
    static constexpr std::size_t kChunk = 2048;

    void Take(CheckedRow& row, std::size_t text, std::string_view plain) {
        if (text == 0) {
            row.appointment.readable = store::DecodeFields(row.appointment, plain, kAppointmentFields);
        } else if (text < 3) {
            (text == 1 ? row.start : row.steps) = plain;
        } else {
            if (row.appointment.readable)
                if (std::string fault = FaultOf(row, plain); !fault.empty())
                    faults_.push_back({row.fPK, std::move(fault)});
            WipeRecord(row.appointment);
        }
    }

    store::Session& session_;
    std::vector<RowFault>& faults_;
    std::vector<CheckedRow> rows_;
    std::vector<Bytes> ciphered_;
};

}  // namespace

Result<std::vector<RowFault>> CheckRows(store::Session& session) {
    auto rows = session.ProgramDb->Select(
        "SELECT fPK, fSub, fR2, fR3, fR4, fEtx, fT1, fT2, fT3 FROM tt WHERE fSec=12 ORDER BY fPK");
    if (!rows) return rows.error();
    std::vector<RowFault> faults;
    Checker checker(session, faults);
    while (rows->Next())
        checker.Add(*rows);
    if (rows->error() != 0) return Error{rows->error(), session.ProgramDb->LastError()};
    checker.Check();
    return faults;
}

}  // namespace bmr::calendar
