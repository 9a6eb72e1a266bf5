#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/result.h"
#include "base/wiped.h"
#include "calendar/calendar.h"
#include "store/session.h"

/// What a period shows: all occurrences of series and all single appointments in it. Private ones are left
/// out while private records are hidden.
namespace bmr::calendar {

/// The statements that choose the rows; columns and bounds are the caller's.
std::string SeriesStatement(std::string_view columns, const std::string& firstBound,
                            const std::string& lastBound);
std::string SinglesStatement(std::string_view columns, const std::string& low, const std::string& high);

/// Every occurrence in the period, in order. Deciphers two fields of each series that may fall into it, one
/// of each single appointment, and the payload of what has an occurrence only while private records are
/// hidden.
Result<std::vector<Occurrence>> AppointmentsInPeriod(store::Session& session, Period period,
                                                     const LocaleFacts& locale);

/// One box of a view.
struct Entry {
    std::int32_t pk = 0;
    Minutes start;  ///< of this occurrence
    Minutes end;    ///< of this occurrence; foreign rows may have it before the start
    bool allDay = false;
    bool alarm = false;
    bool recurring = false;
    bool isPrivate = false;
    WipedText subject;   ///< UTF-8
    WipedText location;  ///< UTF-8
    WipedText notes;     ///< UTF-8: how they begin, for a tooltip
};

/// The occurrences of `AppointmentsInPeriod` with what a view paints of them, in the same order. Opens one
/// payload more for each row that has an occurrence. A row that does not decode is left out, and so is a
/// start outside the period.
Result<std::vector<Entry>> EntriesInPeriod(store::Session& session, Period period, const LocaleFacts& locale);

}  // namespace bmr::calendar
