#include "diary/dayrows.h"

#include <algorithm>

namespace bmr::diary {
namespace {

Result<std::vector<std::int32_t>> Keys(store::Session& session, const char* statement,
                                       const KeyRange& range) {
    auto cursor = session.ProgramDb->Select(statement, {range.low, range.high});
    if (!cursor) return cursor.error();
    std::vector<std::int32_t> keys;
    while (cursor->Next())
        keys.push_back(cursor->Int(0));
    if (cursor->error() != 0) return Error{cursor->error(), session.ProgramDb->LastError()};
    return keys;
}

}  // namespace

std::int32_t PointOf(Day day, RandomSource& random) {
    const SpreadRange point = PackDate(day, kDateKind, random);
    return std::clamp(point.value, point.low, point.high);
}

bool IsInTable(Day day) {
    return UnpackDate(PackDateAt(day, kDateKind, 0.5).value, kDateKind) == day;
}

KeyRange RangeOf(Day first, Day last) {
    return {PackDateAt(first, kDateKind, 0).low, PackDateAt(last, kDateKind, 0).high};
}

Result<std::vector<std::int32_t>> KeysOfDay(store::Session& session, Day day) {
    const KeyRange range = RangeOf(day, day);
    auto keys = Keys(session, "SELECT fPK FROM tt WHERE fSec=13 And (fR2 Between ? And ?)", range);
    if (!keys || keys->size() < 2) return keys;
    // By the section alone rows come as they were stored; the sum keeps the days from being the way in.
    return Keys(session, "SELECT fPK FROM tt WHERE fSec=13 And ((fR2 + 0) Between ? And ?)", range);
}

}  // namespace bmr::diary
