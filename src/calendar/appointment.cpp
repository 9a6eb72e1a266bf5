#include "calendar/appointment.h"

#include <algorithm>
#include <map>

#include "base/errors.h"
#include "base/languageus.h"
#include "calendar/dayorder.h"
#include "calendar/months.h"
#include "store/privatefilter.h"
#include "store/undostep.h"

namespace bmr::calendar {
namespace {

using store::Section;
using store::Session;

constexpr std::int32_t kStepMinutes = 6;  ///< of the time of day in fT2
constexpr std::int32_t kRandomString = 7;
/// First days and lengths of the tables in which a single appointment gets days of nothing.
constexpr std::int32_t kFirstBase = 32626;
constexpr std::int32_t kFirstSlots = 29207;
constexpr std::int32_t kLastBase = 35509;
constexpr std::int32_t kLastSlots = 26324;
constexpr std::int32_t kYearlySubs = 4;  ///< for each month
constexpr std::int32_t kOtherSeries = 196;
constexpr std::int32_t kOtherSubs = 60;
constexpr std::size_t kTexts = 4;
constexpr std::array<const char*, kTexts> kTextColumns{"fEtx", "fT1", "fT2", "fT3"};

std::int32_t Below(std::int32_t count, RandomSource& random) {
    return static_cast<std::int32_t>(random.Uniform() * count);
}

/// The plain texts of a row, in the order of `kTextColumns`.
std::array<WipedText, kTexts> TextsOf(Session& session, Appointment& appointment) {
    RandomSource& random = session.ports.random;
    appointment.userNumber = session.user.UserNumber;
    if (appointment.alarm == 0) appointment.alarmTime = appointment.start;
    const std::int32_t steps = MinuteOfDay(appointment.start) / kStepMinutes;
    return {
        store::EncodeFields(appointment, kAppointmentFields, store::Blanks::LeaveOut, random).payload,
        store::EncodeField(appointment.start.count, store::FieldTag::Int32, random),
        store::EncodeField(steps, store::FieldTag::Int16, random),
        appointment.Recurring() ? appointment.redoString : WipedText(cry::RandomBytes(random, kRandomString)),
    };
}

/// First and last day of the series; random ones for a single appointment, so that the file does not tell it
/// apart.
Period SeriesBounds(const Appointment& appointment, RandomSource& random) {
    if (const auto rule = ReadRedoRule(appointment.redoString))
        return {DayOf(rule->first), DayOf(rule->last)};
    return {{kFirstBase + Below(kFirstSlots, random)}, {kLastBase + Below(kLastSlots, random)}};
}

/// A random point of a day, drawn inside its bucket: a draw may land on the edge of the next one, which is
/// another day to every view, and series are looked for between their first and last points, without these.
std::int32_t PointOf(Day day, DateKind kind, RandomSource& random) {
    const SpreadRange drawn = PackDate(day, kind, random);
    return std::clamp(drawn.value, drawn.low + 1, drawn.high - 1);
}

/// All columns but the texts and the place in the day.
void FillNumbers(Session& session, const Appointment& appointment, engine::Recordset& row) {
    RandomSource& random = session.ports.random;
    const Period series = SeriesBounds(appointment, random);
    row.SetField("fR3", PointOf(DayOf(appointment.start), DateKind::Start, random));
    row.SetField("fR4", PointOf(series.first, DateKind::First, random));
    row.SetField("fSub", SubclassOf(appointment.redoString, random));
    row.SetField("fR2", PointOf(series.last, DateKind::Last, random));
}

/// The start that a row has had so far, if that is on the same day.
std::optional<Minutes> StartBefore(Session& session, const engine::Recordset& row, Day day) {
    const std::int32_t own = PackDateAt(day, DateKind::Start, 0.5).value;
    if (store::DayOfPoint(NumberOf(row.Field("fR3"))) != store::DayOfPoint(own)) return std::nullopt;
    return StartOf(cry::DecipherField(session.cipher, TextOf(row.Field("fT1"))));
}

int FillRow(Session& session, Appointment& appointment, engine::Recordset& row, bool added) {
    if (!added && !appointment.readable) return MessageNumber::UpdateImpossible;
    const Day day = DayOf(appointment.start);
    const auto before = added ? std::nullopt : StartBefore(session, row, day);
    const auto texts = TextsOf(session, appointment);
    const std::vector<std::string_view> plain(texts.begin(), texts.end());
    const auto ciphered = cry::EncipherBatch(session.cipher, plain);
    if (ciphered.front().empty()) return engine::EngineNumber::Failed;
    for (std::size_t i = 0; i < kTexts; ++i)
        row.SetField(kTextColumns[i], ciphered[i]);
    FillNumbers(session, appointment, row);
    return PlaceInDay(session, row, day, appointment.start, before);
}

int Write(Session& session, Appointment& appointment) {
    return WriteRecord(session, appointment).error;
}

constexpr store::RecordVerbs<Appointment> kVerbs{Section::Calendar, FetchRecord, Write, WipeRecord};

/// The places of new appointments, each day worked out once.
int PlaceAll(Session& session, const std::vector<Appointment>& appointments,
             std::vector<std::int32_t>& places) {
    std::map<std::int32_t, std::vector<std::size_t>> byDay;
    for (std::size_t i = 0; i < appointments.size(); ++i) {
        const std::int32_t point = PackDateAt(DayOf(appointments[i].start), DateKind::Start, 0.5).value;
        byDay[store::DayOfPoint(point)].push_back(i);
    }
    places.assign(appointments.size(), 0);
    for (const auto& [day, numbers] : byDay) {
        std::vector<Minutes> starts;
        for (const std::size_t i : numbers)
            starts.push_back(appointments[i].start);
        std::vector<std::int32_t> found;
        if (const int error = PlaceManyInDay(session, {day}, starts, found)) return error;
        for (std::size_t i = 0; i < numbers.size(); ++i)
            places[numbers[i]] = found[i];
    }
    return 0;
}

/// The ciphered texts of some appointments, one behind the other.
std::vector<Bytes> Encipher(Session& session, std::span<Appointment> appointments) {
    std::vector<std::array<WipedText, kTexts>> texts;
    texts.reserve(appointments.size());
    std::vector<std::string_view> plain;
    for (Appointment& appointment : appointments)
        for (const WipedText& text : texts.emplace_back(TextsOf(session, appointment)))
            plain.emplace_back(text);
    return cry::EncipherBatch(session.cipher, plain);
}

}  // namespace

Appointment ClearRecord(Minutes start, std::int32_t length) {
    Appointment appointment;
    appointment.start = appointment.alarmTime = start;
    appointment.end = {start.count + length};
    return appointment;
}

Appointment ReadRecord(Session& session, const engine::Recordset& row) {
    Appointment appointment;
    appointment.key = NumberOf(row.Field("fPK"), store::kNewRecord);
    appointment.readable = store::DecodeFields(
        appointment, cry::DecipherField(session.cipher, TextOf(row.Field("fEtx"))), kAppointmentFields);
    return appointment;
}

std::optional<Appointment> FetchRecord(Session& session, std::int32_t key, int* error) {
    const auto row = store::FetchRow(session, Section::Calendar, key);
    if (error) *error = row ? 0 : row.error().number;
    if (!row || !*row) return std::nullopt;
    return ReadRecord(session, **row);
}

store::StoreOutcome WriteRecord(Session& session, Appointment& appointment) {
    const auto outcome = store::StoreRow(
        session, Section::Calendar, appointment.key,
        [&](engine::Recordset& row, bool added) { return FillRow(session, appointment, row, added); });
    if (outcome.error != 0) return outcome;
    appointment.key = outcome.fPK;
    session.CalendarDirty = true;
    return outcome;
}

int AddRecords(Session& session, std::vector<Appointment>& appointments) {
    constexpr std::size_t kChunk = 256;
    // Without keys the cipher gives nothing, and nothing is no record.
    if (session.cipher.Keystring.empty()) return engine::EngineNumber::Failed;
    store::UndoStep step(session, Section::Calendar, {"import", "imported"});
    engine::Transaction transaction(*session.ProgramDb);
    if (transaction.error() != 0) return transaction.error();
    std::vector<std::int32_t> places;
    if (const int error = PlaceAll(session, appointments, places)) return error;
    auto table = session.ProgramDb->OpenRecordset("tt");
    if (!table) return table.error().number;
    engine::Recordset& row = **table;
    std::vector<std::int32_t> keys;
    std::vector<Bytes> ciphered;
    for (std::size_t i = 0; i < appointments.size(); ++i) {
        if (i % kChunk == 0)
            ciphered = Encipher(
                session, std::span(appointments).subspan(i, std::min(kChunk, appointments.size() - i)));
        row.AddNew();
        row.SetField("fSec", std::int32_t{Section::Calendar});
        row.SetField("AE", 1);
        for (std::size_t text = 0; text < kTexts; ++text)
            row.SetField(kTextColumns[text], std::move(ciphered[i % kChunk * kTexts + text]));
        FillNumbers(session, appointments[i], row);
        row.SetField("fR1", places[i]);
        const auto after = step.Mark(row);
        if (const int error = row.Update()) return error;
        keys.push_back(NumberOf(row.Field("fPK")));
        step.Record(keys.back(), nullptr, after);
    }
    if (const int error = transaction.Commit()) return error;
    step.Keep();
    for (std::size_t i = 0; i < keys.size(); ++i)
        appointments[i].key = keys[i];
    session.CalendarDirty = true;
    return 0;
}

Result<std::vector<std::int32_t>> ListRecords(Session& session) {
    struct Place {
        std::int32_t day, fR1, fPK;
        auto operator<=>(const Place&) const = default;
    };
    store::ListFilter filter;
    if (const int error = filter.Load(session, Section::Calendar, 0, "", {}))
        return Error{error, session.ProgramDb->LastError()};
    auto cursor = session.ProgramDb->Select("SELECT fPK, fR3, fR1 FROM tt WHERE fSec=12" +
                                            std::string(store::kOwnerAccess));
    if (!cursor) return cursor.error();
    std::vector<Place> places;
    while (cursor->Next())
        if (filter.Shows(cursor->Int(0)))
            places.push_back({store::DayOfPoint(cursor->Int(1)), cursor->Int(2), cursor->Int(0)});
    if (cursor->error() != 0) return Error{cursor->error(), session.ProgramDb->LastError()};
    std::ranges::sort(places);
    std::vector<std::int32_t> keys;
    for (const Place& place : places)
        keys.push_back(place.fPK);
    return keys;
}

void WipeRecord(Appointment& appointment) {
    store::WipeFields(appointment, kAppointmentFields);
}

WipedText DeleteText(std::string_view subject) {
    return subject.empty() ? WipedText(Msg(7)) : Joined(Msg(7), "\r\n\r\n   ", subject);
}

store::SeveralOutcome DeleteSeveral(Session& session, store::Keys keys) {
    return store::DeleteSeveral(session, kVerbs, keys);
}

store::SeveralOutcome HideSeveral(Session& session, store::Keys keys, bool isPrivate) {
    return store::HideSeveral(session, kVerbs, keys, isPrivate);
}

std::int32_t SubclassOf(std::string_view redoString, RandomSource& random) {
    if (redoString.empty()) return Below(kFirstSeriesSub, random);
    const auto rule = ReadRedoRule(redoString);
    int month = 0;
    if (rule && rule->kind == RedoKind::YearDay) month = MonthOf(DayOf(rule->first));
    if (rule && rule->kind == RedoKind::YearWeekday) month = std::clamp<int>(rule->interval, 1, 12);
    if (month == 0) return kOtherSeries + Below(kOtherSubs, random);
    return kFirstSeriesSub + kYearlySubs * (month - 1) + Below(kYearlySubs, random);
}

std::optional<int> MonthOfSubclass(std::int32_t fSub) {
    if (fSub < kFirstSeriesSub || fSub >= kOtherSeries) return std::nullopt;
    return (fSub - kFirstSeriesSub) / kYearlySubs + 1;
}

}  // namespace bmr::calendar
