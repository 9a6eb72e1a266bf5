#include "calendar/serieschange.h"

#include <algorithm>
#include <limits>
#include <tuple>
#include <utility>

#include "base/errors.h"
#include "calendar/reminder.h"
#include "calendar/seriessplit.h"
#include "store/undostep.h"

namespace bmr::calendar {
namespace {

using store::Section;
using store::Session;
using store::StepWords;
using store::StoreOutcome;

constexpr const char* kWholeOnAnotherDay = "The whole series keeps its days: only its time can be dragged.";
constexpr const char* kLaterOnAnotherDay = " From this day on it can go to another one.";

Minutes Later(Minutes from, std::int64_t by) {
    using Limits = std::numeric_limits<std::int32_t>;
    return {
        static_cast<std::int32_t>(std::clamp<std::int64_t>(from.count + by, Limits::min(), Limits::max()))};
}

std::int64_t Between(Minutes from, Minutes to) {
    return std::int64_t{to.count} - from.count;
}

/// Start and end become those of the span, and the reminder keeps its lead time.
void SetSpan(Appointment& appointment, const TimeSpan& span) {
    appointment.alarmTime = Later(span.start, Between(appointment.start, appointment.alarmTime));
    appointment.start = span.start;
    appointment.end = span.end;
    appointment.allDay = span.allDay ? 1 : 0;
}

Minutes OnDay(Minutes minutes, Day day) {
    return Later(MidnightOf(day), MinuteOfDay(minutes));
}

void SetRule(Appointment& appointment, const RedoRule& rule) {
    appointment.redoString = WriteRedoRule(rule);
}

/// A series like `series` with another rule, its row on the first day of it.
Appointment SeriesOf(const Appointment& series, const RedoRule& rule) {
    Appointment part = series;
    SetRule(part, rule);
    SetSpan(part, SpanOf(series, OnDay(series.start, DayOf(rule.first))));
    return part;
}

Appointment SingleOf(const Appointment& series, const TimeSpan& span) {
    Appointment single = series;
    single.redoString = WipedText();
    SetSpan(single, span);
    return single;
}

Appointment AsNew(Appointment appointment) {
    appointment.key = store::kNewRecord;
    return appointment;
}

/// All that a person can change.
auto Told(const Appointment& each) {
    return std::tie(each.isPrivate, each.start, each.end, each.allDay, each.alarm, each.alarmTime,
                    each.redoString, each.subject, each.location, each.notes);
}

bool SameStart(const TimeSpan& one, const TimeSpan& other) {
    return std::tie(one.start, one.end, one.allDay) == std::tie(other.start, other.end, other.allDay);
}

/// What a step is called.
StepWords WordsOf(const char* noun, const char* done, bool recurring, Reach reach) {
    if (!recurring) return {noun, done};
    const std::string what = noun;
    const std::string came = done;
    switch (reach) {
        case Reach::This:
            return {what + " of one day of a series", "One day of the series was " + came + ".", true};
        case Reach::ThisAndLater:
            return {what + " of a series from one day on", "The series was " + came + " from that day on.",
                    true};
        case Reach::All:
            break;
    }
    return {what + " of a series", "The series was " + came + ".", true};
}

/// What becomes of the row of a series, and what is added beside it.
struct Plan {
    std::optional<Appointment> row;  ///< none: it goes
    std::vector<Appointment> added;
    /// Which of them is what the person changed: an index into `added`, or the row.
    std::optional<std::size_t> changed;

    void Add(Appointment appointment) { added.push_back(AsNew(std::move(appointment))); }
    void AddChanged(Appointment appointment) {
        changed = added.size();
        Add(std::move(appointment));
    }
};

/// One step and one transaction around several stores. `act` gives the outcome of what was changed.
template <class Act>
StoreOutcome InOneStep(Session& session, StepWords words, const Act& act) {
    const bool dirty = session.CalendarDirty;
    store::UndoStep step(session, Section::Calendar, std::move(words));
    engine::Transaction all(*session.ProgramDb);
    StoreOutcome outcome{.error = all.error()};
    if (outcome.error == 0) outcome = act();
    if (outcome.error == 0) outcome.error = all.Commit();
    if (outcome.error != 0) {
        session.CalendarDirty = dirty;
        session.bucketOrder.Clear();  // it knows of rows that are being rolled back
        return {.error = outcome.error};
    }
    step.Keep();
    session.CalendarDirty = true;
    return outcome;
}

StoreOutcome Carry(Session& session, std::int32_t key, Plan& plan, StepWords words) {
    return InOneStep(session, std::move(words), [&]() -> StoreOutcome {
        StoreOutcome changed{.fPK = key};
        if (plan.row) {
            changed = WriteRecord(session, *plan.row);
            if (changed.error != 0) return changed;
        } else if (const int error = store::DeleteRow(session, key)) {
            return {.error = error};
        }
        for (std::size_t i = 0; i < plan.added.size(); ++i) {
            const StoreOutcome outcome = WriteRecord(session, plan.added[i]);
            if (outcome.error != 0) return outcome;
            if (plan.changed == i) changed = outcome;
        }
        return changed;
    });
}

/// The row, or why there is none to be changed.
Result<Appointment> Fetch(Session& session, std::int32_t key) {
    int error = 0;
    auto row = FetchRecord(session, key, &error);
    if (error != 0) return Error{error, {}};
    if (!row) return Error{MessageNumber::NoRecord, {}};
    if (!row->readable) return Error{MessageNumber::UpdateImpossible, {}};
    // Damaged or foreign bytes that mean no recurrence: the row is shown as a single appointment, and is one.
    if (!ReadRedoRule(row->redoString)) row->redoString = WipedText();
    return std::move(*row);
}

/// A series, its rule and one of its days.
struct Found {
    Appointment series;
    RedoRule rule;
    Day day;
};

Found Taken(Appointment series, Minutes occurrence) {
    RedoRule rule = *ReadRedoRule(series.redoString);
    return {std::move(series), std::move(rule), DayOf(occurrence)};
}

/// The row without the one day; `single` is what stands in its place.
Plan PlanThis(const Found& found, std::optional<Appointment> single, const LocaleFacts& locale) {
    const SeriesParts parts = WithoutDay(found.rule, found.day, locale);
    Plan plan;
    if (parts.before) {
        plan.row = found.series;
        SetRule(*plan.row, *parts.before);
        if (parts.after) plan.Add(SeriesOf(found.series, *parts.after));
    } else if (parts.after) {
        plan.row = SeriesOf(found.series, *parts.after);
    }
    if (!single) return plan;
    if (plan.row) {
        plan.AddChanged(std::move(*single));
    } else {
        plan.row = std::move(*single);
        plan.row->key = found.series.key;
    }
    return plan;
}

/// The row up to the day `until`; `later` is what goes on from there.
Plan PlanLater(const Found& found, Day until, std::optional<Appointment> later, const LocaleFacts& locale) {
    Plan plan;
    if (const auto before = CutBefore(found.rule, until, locale).before) {
        plan.row = found.series;
        SetRule(*plan.row, *before);
        if (later) plan.AddChanged(std::move(*later));
    } else if (later) {
        plan.row = std::move(*later);
        plan.row->key = found.series.key;
    }
    return plan;
}

/// The series from the day on, as it is.
Appointment FromDayOn(const Found& found, const LocaleFacts& locale) {
    if (!LastBefore(found.rule, found.day, locale)) return found.series;
    return AsNew(SeriesOf(found.series, *CutBefore(found.rule, found.day, locale).after));
}

/// The series from the day on, dragged to `to`, and where the other ends.
std::pair<Appointment, Day> Dragged(const Found& found, const TimeSpan& to, const LocaleFacts& locale) {
    const Day day = DayOf(to.start);
    // Workdays keep their days, so that the new one would meet the old where it begins earlier.
    const Day until = found.rule.kind == RedoKind::Workdays ? std::min(day, found.day) : found.day;
    const auto after = CutBefore(found.rule, until, locale).after;
    const RedoRule rule = MovedTo(after.value_or(found.rule), found.day, day, locale);
    Appointment dragged = found.series;
    SetRule(dragged, rule);
    TimeSpan span = to;
    if (day != DayOf(rule.first)) MoveToDay(span, DayOf(rule.first));
    SetSpan(dragged, span);
    return {std::move(dragged), until};
}

/// A row whose time of day and length become others, on its own day.
Appointment Retimed(const Appointment& series, const TimeSpan& to) {
    Appointment row = series;
    TimeSpan span = to;
    MoveToDay(span, DayOf(series.start));
    SetSpan(row, span);
    return row;
}

bool IsOffered(const Found& found, SeriesVerb verb, Minutes occurrence, std::optional<Minutes> to,
               Reach reach, const LocaleFacts& locale) {
    return ReachesFor(found.series, occurrence, verb, to, locale).Offers(reach);
}

/// An edited series that leaves out more days: its rule, cut where its kind heeds no excluded days.
std::vector<RedoRule> LeavingOut(const RedoRule& rule, std::span<const Day> days, const LocaleFacts& locale) {
    std::vector<RedoRule> parts{rule};
    for (const Day day : days)
        for (std::size_t i = 0; i < parts.size(); ++i) {
            if (!WhyNotWithout(parts[i], day, locale).empty()) continue;
            SeriesParts left = WithoutDay(parts[i], day, locale);
            const bool nothing = !left.before && !left.after;
            if (nothing && parts.size() == 1) break;  // the person has just stored it: something stays
            parts.erase(parts.begin() + static_cast<std::ptrdiff_t>(i));
            for (auto* part : {&left.after, &left.before})
                if (*part) parts.insert(parts.begin() + static_cast<std::ptrdiff_t>(i), std::move(**part));
            break;
        }
    return parts;
}

/// Has the edited series leave out the days; what is cut off behind them is added to the plan.
void LeaveOut(Appointment& edited, std::span<const Day> days, Plan& plan, const LocaleFacts& locale) {
    const auto rule = ReadRedoRule(edited.redoString);
    if (!rule || days.empty()) return;
    const std::vector<RedoRule> parts = LeavingOut(*rule, days, locale);
    for (std::size_t i = 1; i < parts.size(); ++i)
        plan.Add(SeriesOf(edited, parts[i]));
    // Only a series that begins later stands on another day.
    const std::int32_t key = edited.key;
    if (parts.front().first != rule->first)
        edited = SeriesOf(edited, parts.front());
    else
        SetRule(edited, parts.front());
    edited.key = key;
}

}  // namespace

ReachOffer ReachesFor(const Appointment& series, Minutes occurrence, SeriesVerb verb,
                      std::optional<Minutes> to, const LocaleFacts& locale) {
    const auto rule = ReadRedoRule(series.redoString);
    if (!rule || verb == SeriesVerb::Copy) return {.thisOne = true};
    const Day day = DayOf(occurrence);
    const Day target = to ? DayOf(*to) : day;
    ReachOffer offer{.all = true};
    const auto tell = [&offer](const std::string& why) {
        if (offer.why.find(why) == std::string::npos) offer.why += (offer.why.empty() ? "" : " ") + why;
        return why.empty();
    };
    offer.thisOne = tell(WhyNotWithout(*rule, day, locale));
    offer.thisAndLater = tell(WhyUncut(*rule, day, locale));
    if (offer.thisAndLater) offer.thisAndLater = tell(WhyUnmoved(*rule, day, target, locale));
    if (target != day)
        offer.all = tell(std::string(kWholeOnAnotherDay) + (offer.thisAndLater ? kLaterOnAnotherDay : ""));
    return offer;
}

TimeSpan SpanOf(const Appointment& appointment, Minutes occurrence) {
    const bool allDay = appointment.allDay != 0;
    const Minutes start = allDay ? MidnightOf(DayOf(occurrence)) : occurrence;
    TimeSpan span = DrawnSpan(start, Later(start, Between(appointment.start, appointment.end)));
    span.allDay = allDay;
    return span;
}

StoreOutcome MoveOccurrence(Session& session, std::int32_t key, Minutes occurrence, const TimeSpan& to,
                            Reach reach, const LocaleFacts& locale) {
    auto fetched = Fetch(session, key);
    if (!fetched) return {.error = fetched.error().number};
    const TimeSpan span = StoredSpan(to, false, {});
    if (SameStart(span, SpanOf(*fetched, occurrence))) return {.fPK = key};
    if (DateLimitBox(DayOf(span.start), locale)) return {.error = MessageNumber::InputError};
    const bool recurring = fetched->Recurring();
    const StepWords words = WordsOf("move", "moved", recurring, reach);
    Plan plan;
    if (!recurring) {
        plan.row = SingleOf(*fetched, span);
        return Carry(session, key, plan, words);
    }
    const Found found = Taken(std::move(*fetched), occurrence);
    if (!IsOffered(found, SeriesVerb::Move, occurrence, span.start, reach, locale))
        return {.error = MessageNumber::UpdateImpossible};
    if (reach == Reach::This) {
        plan = PlanThis(found, SingleOf(found.series, span), locale);
    } else if (reach == Reach::ThisAndLater) {
        auto [later, until] = Dragged(found, span, locale);
        plan = PlanLater(found, until, std::move(later), locale);
    } else {
        plan.row = Retimed(found.series, span);
    }
    return Carry(session, key, plan, words);
}

StoreOutcome CopyOccurrence(Session& session, std::int32_t key, Minutes, const TimeSpan& to) {
    const auto fetched = Fetch(session, key);
    if (!fetched) return {.error = fetched.error().number};
    const TimeSpan span = StoredSpan(to, false, {});
    if (DateLimitBox(DayOf(span.start), {})) return {.error = MessageNumber::InputError};
    Appointment copy = AsNew(SingleOf(*fetched, span));
    return InOneStep(session, {"copy", "copied"}, [&] { return WriteRecord(session, copy); });
}

StoreOutcome DeleteOccurrence(Session& session, std::int32_t key, Minutes occurrence, Reach reach,
                              const LocaleFacts& locale) {
    int error = 0;
    auto row = FetchRecord(session, key, &error);
    if (error != 0) return {.error = error};
    if (!row) return {.error = MessageNumber::NoRecord};
    const bool recurring = row->readable && ReadRedoRule(row->redoString).has_value();
    Plan plan;
    if (recurring && reach != Reach::All) {
        const Found found = Taken(std::move(*row), occurrence);
        if (!IsOffered(found, SeriesVerb::Delete, occurrence, {}, reach, locale))
            return {.error = MessageNumber::UpdateImpossible};
        plan = reach == Reach::This ? PlanThis(found, {}, locale) : PlanLater(found, found.day, {}, locale);
    }
    return Carry(session, key, plan, WordsOf("delete", "deleted", recurring, reach));
}

std::optional<Appointment> ForEditing(Session& session, std::int32_t key, Minutes occurrence, Reach reach,
                                      const LocaleFacts& locale, int* error) {
    auto fetched = Fetch(session, key);
    if (error) *error = fetched ? 0 : fetched.error().number;
    if (!fetched) return std::nullopt;
    if (!fetched->Recurring() || reach == Reach::All) return std::move(*fetched);
    const Found found = Taken(std::move(*fetched), occurrence);
    if (!IsOffered(found, SeriesVerb::Edit, occurrence, {}, reach, locale)) {
        if (error) *error = MessageNumber::UpdateImpossible;
        return std::nullopt;
    }
    if (reach == Reach::ThisAndLater) return FromDayOn(found, locale);
    return AsNew(SingleOf(found.series, SpanOf(found.series, occurrence)));
}

StoreOutcome StoreOccurrence(Session& session, Appointment& edited, std::int32_t key, Minutes occurrence,
                             Reach reach, const LocaleFacts& locale, std::span<const Day> again) {
    int error = 0;
    const auto given = ForEditing(session, key, occurrence, reach, locale, &error);
    if (error == MessageNumber::NoRecord) return WriteRecord(session, edited);
    if (!given) return {.error = error};
    if (again.empty() && Told(*given) == Told(edited)) return {.fPK = key};
    auto fetched = Fetch(session, key);
    if (!fetched) return {.error = fetched.error().number};

    Plan others;
    Appointment stored = edited;
    LeaveOut(stored, again, others, locale);
    Plan plan;
    const bool recurring = fetched->Recurring();
    // The series from its first day on is all of it.
    if (!recurring || reach == Reach::All || given->key == key) {
        plan.row = std::move(stored);
        plan.row->key = key;
    } else {
        const Found found = Taken(std::move(*fetched), occurrence);
        plan = reach == Reach::This ? PlanThis(found, std::move(stored), locale)
                                    : PlanLater(found, found.day, std::move(stored), locale);
    }
    for (Appointment& each : others.added)
        plan.added.push_back(std::move(each));
    const StoreOutcome outcome =
        Carry(session, key, plan, WordsOf("change", "changed", recurring || edited.Recurring(), reach));
    if (outcome.error != 0) return outcome;
    edited = plan.changed ? plan.added[*plan.changed] : *plan.row;
    return outcome;
}

std::vector<Day> DroppedDays(std::string_view stored, std::string_view edited, const LocaleFacts& locale) {
    const auto before = ReadRedoRule(stored);
    const auto after = ReadRedoRule(edited);
    std::vector<Day> dropped;
    if (!before || !after || !before->HeedsExcluded()) return dropped;
    for (const DayCount each : before->excluded)
        if (IsOfSeries(*after, DayOf(each), locale)) dropped.push_back(DayOf(each));
    std::ranges::sort(dropped);
    dropped.erase(std::unique(dropped.begin(), dropped.end()), dropped.end());
    return dropped;
}

std::vector<Day> DaysToLeaveOut(std::string_view edited, std::span<const Day> days,
                                const LocaleFacts& locale) {
    std::vector<Day> able;
    if (const auto rule = ReadRedoRule(edited))
        for (const Day day : days)
            if (WhyNotWithout(*rule, day, locale).empty()) able.push_back(day);
    return able;
}

}  // namespace bmr::calendar
