#include "calendar/occurrences.h"

#include <algorithm>
#include <limits>

#include "base/utf8.h"
#include "calendar/appointment.h"
#include "calendar/dayorder.h"
#include "store/privatefilter.h"

namespace bmr::calendar {
namespace {

using store::Section;
using store::Session;

/// A row that may fall into the period, and what came of it.
struct Candidate {
    std::int32_t pk = 0;
    bool recurring = false;
    Bytes payload = {};  ///< enciphered; only where it is asked for
    bool occurs = false;
    bool shown = true;
};

/// An occurrence and the candidate that it is of.
struct Found {
    std::size_t candidate = 0;
    Minutes minutes;
};

class Search {
  public:
    Search(Session& session, Period period, const LocaleFacts& locale, bool payloads)
        : session_(session), period_(period), locale_(locale), payloads_(payloads) {}

    std::vector<Candidate> candidates;
    std::vector<Found> found;  ///< in order

    int Run() {
        if (const int error = ReadSeries()) return error;
        if (const int error = ReadSingles()) return error;
        Expand();
        std::ranges::stable_sort(found, {}, &Found::minutes);
        return 0;
    }

    /// Each payload of what occurs, deciphered, in no told order of the occurrences.
    template <class Each>
    void ForEachPayload(const Each& each) {
        std::vector<Candidate*> asked;
        std::vector<std::string_view> texts;
        for (Candidate& candidate : candidates)
            if (candidate.occurs) {
                asked.push_back(&candidate);
                texts.emplace_back(candidate.payload);
            }
        cry::DecipherBatch(session_.cipher, texts, [&](std::size_t i, std::string_view plain) {
            each(*asked[i], static_cast<std::size_t>(asked[i] - candidates.data()), plain);
        });
    }

  private:
    std::string Columns(const char* columns) const {
        return std::string(columns) + (payloads_ ? ", fEtx" : "");
    }

    int ReadSeries() {
        const std::int32_t behind = PackDateAt(period_.last, DateKind::First, 0.5).high;
        const std::int32_t before = PackDateAt(period_.first, DateKind::Last, 0.5).low;
        auto cursor =
            session_.ProgramDb->Select(SeriesStatement(Columns("fPK, fT1, fT3"), "?", "?"), {behind, before});
        if (!cursor) return cursor.error().number;
        while (cursor->Next()) {
            candidates.push_back({.pk = cursor->Int(0), .recurring = true});
            if (payloads_) candidates.back().payload = cursor->Bytes(3);
            texts_.emplace_back(cursor->Bytes(1));
            texts_.emplace_back(cursor->Bytes(2));
        }
        series_ = candidates.size();
        return cursor->error();
    }

    int ReadSingles() {
        const std::int32_t low = PackDateAt(period_.first, DateKind::Start, 0.5).low;
        const std::int32_t high = PackDateAt(period_.last, DateKind::Start, 0.5).high;
        auto cursor =
            session_.ProgramDb->Select(SinglesStatement(Columns("fPK, fT1"), "?", "?"), {low, high});
        if (!cursor) return cursor.error().number;
        while (cursor->Next()) {
            candidates.push_back({.pk = cursor->Int(0)});
            if (payloads_) candidates.back().payload = cursor->Bytes(2);
            texts_.emplace_back(cursor->Bytes(1));
        }
        return cursor->error();
    }

    /// Series stand before single appointments, so that they do so at the same minute too.
    void Expand() {
        std::optional<Minutes> start;
        const std::vector<std::string_view> views(texts_.begin(), texts_.end());
        std::vector<Minutes> minutes;
        const auto take = [&](std::size_t candidate, std::span<const Minutes> all) {
            candidates[candidate].occurs = !all.empty();
            for (const Minutes each : all)
                found.push_back({candidate, each});
        };
        cry::DecipherBatch(session_.cipher, views, [&](std::size_t i, std::string_view plain) {
            if (i >= 2 * series_) {
                start = StartOf(plain);
                if (start) take(i - series_, {&*start, 1});
            } else if (i % 2 == 0) {
                start = StartOf(plain);
            } else if (start) {
                minutes.clear();
                ExpandRecurrence(MidnightOf(period_.first), MidnightOf(period_.last), MinuteOfDay(*start),
                                 plain, locale_, minutes);
                take(i / 2, minutes);
            }
        });
        texts_.clear();
    }

    Session& session_;
    Period period_;
    const LocaleFacts& locale_;
    bool payloads_;
    std::size_t series_ = 0;    ///< how many of the candidates, from the first on
    std::vector<Bytes> texts_;  ///< two of each series, then one of each single appointment
};

/// A text, or the beginning of a long one.
WipedText BeginningOf(const WipedText& text) {
    std::size_t end = 240;
    if (text.size() <= end) return text;
    while (end > 0 && (Octet(text, end) & 0xC0U) == 0x80)
        --end;  // no character is cut
    WipedText beginning(std::string_view(text).substr(0, end));
    beginning += "…";
    return beginning;
}

/// The end of an occurrence that begins at `start`, as long as its record is.
Minutes EndOf(Minutes start, const Appointment& appointment) {
    const std::int64_t end =
        std::int64_t{start.count} + appointment.end.count - std::int64_t{appointment.start.count};
    using Limits = std::numeric_limits<std::int32_t>;
    return {static_cast<std::int32_t>(std::clamp<std::int64_t>(end, Limits::min(), Limits::max()))};
}

}  // namespace

std::string SeriesStatement(std::string_view columns, const std::string& firstBound,
                            const std::string& lastBound) {
    return "SELECT " + std::string(columns) + " FROM tt WHERE (fSec=12) AND (fSub >= 148) AND ((fR4 < " +
           firstBound + " AND fR2 > " + lastBound + ")) WITH OWNERACCESS OPTION;";
}

std::string SinglesStatement(std::string_view columns, const std::string& low, const std::string& high) {
    const SpreadRange day = PackDateAt({kEpoch.serial}, DateKind::Start, 0.5);
    return "SELECT " + std::string(columns) + " FROM tt WHERE ((fSec=12) AND (fSub < 148) AND (fR3 Between " +
           low + " And " + high + ")) ORDER BY Int([fR3]/" + std::to_string(day.high - day.low + 1) +
           "), fR1 WITH OWNERACCESS OPTION;";
}

Result<std::vector<Occurrence>> AppointmentsInPeriod(Session& session, Period period,
                                                     const LocaleFacts& locale) {
    const bool testAll = !session.ShowPrivate;
    Search search(session, period, locale, testAll);
    if (const int error = search.Run()) return Error{error, session.ProgramDb->LastError()};
    if (testAll)
        search.ForEachPayload([](Candidate& candidate, std::size_t, std::string_view plain) {
            candidate.shown = !store::IsPayloadPrivate(plain, Section::Calendar);
        });
    std::vector<Occurrence> occurrences;
    occurrences.reserve(search.found.size());
    for (const Found& each : search.found)
        if (const Candidate& candidate = search.candidates[each.candidate]; candidate.shown)
            occurrences.push_back({candidate.pk, each.minutes});
    return occurrences;
}

Result<std::vector<Entry>> EntriesInPeriod(Session& session, Period period, const LocaleFacts& locale) {
    Search search(session, period, locale, true);
    if (const int error = search.Run()) return Error{error, session.ProgramDb->LastError()};
    std::vector<Appointment> records(search.candidates.size());
    search.ForEachPayload([&](Candidate& candidate, std::size_t number, std::string_view plain) {
        Appointment& record = records[number];
        candidate.shown = store::DecodeFields(record, plain, kAppointmentFields) &&
                          (session.ShowPrivate || !record.isPrivate);
    });
    std::vector<Entry> entries;
    entries.reserve(search.found.size());
    for (const Found& each : search.found) {
        const Candidate& candidate = search.candidates[each.candidate];
        // The column by which a row was found may belie its start in a file that others wrote.
        const Day day = DayOf(each.minutes);
        if (!candidate.shown || day < period.first || day > period.last) continue;
        const Appointment& record = records[each.candidate];
        entries.push_back({.pk = candidate.pk,
                           .start = each.minutes,
                           .end = EndOf(each.minutes, record),
                           .allDay = record.allDay != 0,
                           .alarm = record.alarm != 0,
                           .recurring = candidate.recurring,
                           .isPrivate = record.isPrivate,
                           .subject = record.subject,
                           .location = record.location,
                           .notes = BeginningOf(record.notes)});
    }
    return entries;
}

}  // namespace bmr::calendar
