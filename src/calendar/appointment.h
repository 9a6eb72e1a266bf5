#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "base/buckets.h"
#include "calendar/recurrence.h"
#include "store/fieldtable.h"
#include "store/section_store.h"
#include "store/severalrows.h"

namespace bmr::calendar {

/// One appointment, single or a series. Flags that the file keeps as bytes are set when they are not 0.
struct Appointment {
    std::int32_t key = store::kNewRecord;
    std::uint8_t userNumber = 0;
    bool isPrivate = false;
    Minutes start;
    Minutes end;  ///< at or after the start; foreign rows may lie otherwise
    std::uint8_t allDay = 0;
    std::uint8_t alarm = 0;
    Minutes alarmTime;     ///< of the reminder; the start without one
    WipedText redoString;  ///< recurrence string, bytes; empty for a single appointment
    WipedText subject;
    WipedText location;
    WipedText notes;
    bool readable = true;  ///< false when the payload did not decode whole: a store would end the rest
    store::CarriedFields carried;

    bool Recurring() const { return !redoString.empty(); }
};

/// The place of a member that counts minutes.
template <Minutes Appointment::*Pointer>
inline constexpr auto kMinutesAt = +[](Appointment& appointment) -> store::Member {
    return &(appointment.*Pointer).count;
};

inline constexpr std::array<store::Field<Appointment>, 11> kAppointmentFields{{
    {{0, store::FieldTag::Byte, "UserNumber", store::Kind::Stamp}, store::At<&Appointment::userNumber>},
    {{1, store::FieldTag::Boolean, "ctlPrivate", store::Kind::Private}, store::At<&Appointment::isPrivate>},
    {{2, store::FieldTag::Int32, "ctlAppoStart", store::Kind::Minutes},
     kMinutesAt<&Appointment::start>,
     true},
    {{3, store::FieldTag::Int32, "ctlAppoEnd", store::Kind::Minutes}, kMinutesAt<&Appointment::end>, true},
    {{4, store::FieldTag::Byte, "ctlAllday"}, store::At<&Appointment::allDay>},
    {{5, store::FieldTag::Byte, "ctlAlarmYN"}, store::At<&Appointment::alarm>},
    {{6, store::FieldTag::Int32, "ctlAlarmTime", store::Kind::Minutes}, kMinutesAt<&Appointment::alarmTime>},
    {{7, store::FieldTag::Text, "ctlRedoString", store::Kind::Hex}, store::At<&Appointment::redoString>},
    {{8, store::FieldTag::Text, "ctlSubject", store::Kind::Words}, store::At<&Appointment::subject>},
    {{9, store::FieldTag::Text, "ctlLocation", store::Kind::Words}, store::At<&Appointment::location>},
    {{10, store::FieldTag::Memo, "ctlNotes", store::Kind::Words}, store::At<&Appointment::notes>},
}};

/// A new single appointment, public, without a reminder. `length` in minutes.
Appointment ClearRecord(Minutes start, std::int32_t length);

/// The appointment of a row, or as much of it as decodes; without a flag it counts as private.
Appointment ReadRecord(store::Session& session, const engine::Recordset& row);

/// The appointment of a key; nothing when it is gone, belongs to another section, or could not be looked for,
/// which `error` tells apart (the engine's number, else 0).
std::optional<Appointment> FetchRecord(store::Session& session, std::int32_t key, int* error = nullptr);

/// Stores the appointment and sets its key, its user and, without a reminder, the reminder's time: payload,
/// the columns that tell day, series and class, and its place among the rows of its day, for which neighbours
/// are rewritten. One transaction, and one step to be taken back. What does not decode keeps its row as it
/// is: `UpdateImpossible`, as for a key of another section; otherwise the engine's number. A row that has
/// vanished is added anew.
store::StoreOutcome WriteRecord(store::Session& session, Appointment& appointment);

/// Stores many new appointments in one transaction, the order of each day worked out once. For imports and
/// archives. 0 or the engine's number; sets the keys.
[[nodiscard]] int AddRecords(store::Session& session, std::vector<Appointment>& appointments);

/// The keys of all appointments by the day of their start and their order in it, without private ones while
/// `ShowPrivate` is false. A series stands at its own start.
Result<std::vector<std::int32_t>> ListRecords(store::Session& session);

/// Overwrites every text.
void WipeRecord(Appointment& appointment);

/// The text of the box that confirms a delete.
WipedText DeleteText(std::string_view subject);

/// Delete and private flag of several.
store::SeveralOutcome DeleteSeveral(store::Session& session, store::Keys keys);
store::SeveralOutcome HideSeveral(store::Session& session, store::Keys keys, bool isPrivate);

/// fSub from here on is a series; below it a single appointment.
inline constexpr std::int32_t kFirstSeriesSub = 148;

/// fSub: what a row is, with random padding. The month is told for a yearly series alone.
std::int32_t SubclassOf(std::string_view redoString, RandomSource& random);

/// The month that fSub of a yearly series tells, 1 to 12; nothing for any other row.
std::optional<int> MonthOfSubclass(std::int32_t fSub);

}  // namespace bmr::calendar
