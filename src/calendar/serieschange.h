#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "calendar/appointment.h"
#include "calendar/timespan.h"

/// Changes from the grid: one appointment, or an occurrence of a series alone, with all later ones, or with
/// the whole series. Each is one transaction and one step that can be taken back; on an error nothing is
/// changed. Where only one appointment is in question, `occurrence` is its start and the reach means nothing.
namespace bmr::calendar {

/// How far a change of one occurrence reaches.
enum class Reach : std::uint8_t { This, ThisAndLater, All };

enum class SeriesVerb : std::uint8_t { Edit, Move, Resize, Delete, Copy };

/// What the box that asks for the reach may offer.
struct ReachOffer {
    bool thisOne = false;
    bool thisAndLater = false;
    bool all = false;
    std::string why = {};  ///< in words, for what is not offered

    bool Offers(Reach reach) const {
        return reach == Reach::This ? thisOne : reach == Reach::ThisAndLater ? thisAndLater : all;
    }
};

/// What can be done to the occurrence of `series` that begins at `occurrence`; `to` is where a drag would put
/// its start. A copy is always a single appointment, and so is what can be done to one.
ReachOffer ReachesFor(const Appointment& series, Minutes occurrence, SeriesVerb verb,
                      std::optional<Minutes> to, const LocaleFacts& locale);

/// The start, end and all-day of one occurrence as it stands.
TimeSpan SpanOf(const Appointment& appointment, Minutes occurrence);

/// A drag of the whole box or of its edge: the occurrence goes to `to`. `All` changes the time of day and
/// the length of the row; its day, its string and its excluded days stay. `This` makes a single appointment
/// of it, `ThisAndLater` a series from there on. The reminder keeps its lead time. Nothing is written where
/// it stands so already.
///
/// These and those below give the key of what was stored: the single appointment, the later series or the
/// row. `NoRecord` where the row is gone, `UpdateImpossible` where it does not decode or the reach is not
/// offered, `InputError` for a day that lies outside the limits.
store::StoreOutcome MoveOccurrence(store::Session& session, std::int32_t key, Minutes occurrence,
                                   const TimeSpan& to, Reach reach, const LocaleFacts& locale);

/// A single appointment at `to` that is like the occurrence; the series stays.
store::StoreOutcome CopyOccurrence(store::Session& session, std::int32_t key, Minutes occurrence,
                                   const TimeSpan& to);

/// A series whose last occurrence goes is gone as a row.
store::StoreOutcome DeleteOccurrence(store::Session& session, std::int32_t key, Minutes occurrence,
                                     Reach reach, const LocaleFacts& locale);

/// What the editor is opened with: a new single appointment at the occurrence, the series from there on (a
/// new row too, unless it is the first one), or the row. Nothing, with `error` set as above, where there is
/// no such thing.
std::optional<Appointment> ForEditing(store::Session& session, std::int32_t key, Minutes occurrence,
                                      Reach reach, const LocaleFacts& locale, int* error = nullptr);

/// Stores what the editor made of `ForEditing`, and sets its key: the series of `key` ends before the
/// occurrence or leaves it out. Nothing is written where it is what `ForEditing` gives. `again`: days that
/// the edited series is to leave out. Where the row has vanished, what was edited is added anew.
store::StoreOutcome StoreOccurrence(store::Session& session, Appointment& edited, std::int32_t key,
                                    Minutes occurrence, Reach reach, const LocaleFacts& locale,
                                    std::span<const Day> again = {});

/// The days that the recurrence string `stored` leaves out and on which `edited` comes again, ascending.
std::vector<Day> DroppedDays(std::string_view stored, std::string_view edited, const LocaleFacts& locale);
/// Those of the days that the series `edited` can leave out: what to give as `again`.
std::vector<Day> DaysToLeaveOut(std::string_view edited, std::span<const Day> days,
                                const LocaleFacts& locale);

}  // namespace bmr::calendar
