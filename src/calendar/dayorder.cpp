#include "calendar/dayorder.h"

#include <algorithm>
#include <unordered_map>

#include "base/buckets.h"
#include "base/errors.h"
#include "store/record_get.h"
#include "store/section_store.h"

namespace bmr::calendar {
namespace {

using store::Section;
using store::Session;

struct DayRow {
    std::int32_t fPK = 0;
    std::int32_t fR1 = 0;
    std::optional<std::int32_t> AE;
};

/// The rows of a day in their order, with their starts.
struct DayRows {
    std::vector<DayRow> rows;
    std::vector<Minutes> starts;
};

SpreadRange BoundsOf(Day day) {
    return PackDateAt(day, DateKind::Start, 0.5);
}

store::PlaceKey StretchOf(Day day) {
    return {Section::Calendar, store::DayOfPoint(BoundsOf(day).value)};
}

/// Without the row of `own`. A start that cannot be read counts as that of the row before it.
Result<DayRows> ReadDay(Session& session, Day day, std::int32_t own) {
    const SpreadRange bounds = BoundsOf(day);
    auto cursor = session.ProgramDb->Select(
        "SELECT fPK, fR1, AE, fT1 FROM tt WHERE (fSec=12) AND ([fR3] Between ? And "
        "?) ORDER BY [fR1] WITH OWNERACCESS OPTION;",
        {bounds.low, bounds.high});
    if (!cursor) return cursor.error();
    DayRows found;
    std::vector<Bytes> ciphered;
    while (cursor->Next()) {
        if (cursor->Int(0) == own) continue;
        found.rows.push_back({cursor->Int(0), cursor->Int(1),
                              cursor->IsNull(2) ? std::nullopt : std::optional(cursor->Int(2))});
        ciphered.emplace_back(cursor->Bytes(3));
    }
    if (cursor->error() != 0) return Error{cursor->error(), session.ProgramDb->LastError()};
    Minutes last = MidnightOf(day);
    const std::vector<std::string_view> views(ciphered.begin(), ciphered.end());
    cry::DecipherBatch(session.cipher, views, [&](std::size_t, std::string_view plain) {
        last = StartOf(plain).value_or(last);
        found.starts.push_back(last);
    });
    return found;
}

/// A point of slot `place`, never of the next one.
std::int32_t PointOf(std::size_t place, std::size_t count, RandomSource& random) {
    const SpreadRange drawn =
        SpreadIndex(static_cast<std::int32_t>(place), static_cast<std::int32_t>(count), 0, kMaxLong, random);
    return std::min(drawn.value, drawn.high);
}

bool StandsAt(const DayRow& row, std::size_t place, std::size_t count) {
    return row.fR1 >= 0 &&
           SlotOf(row.fR1, static_cast<std::int32_t>(count), 0, kMaxLong) == static_cast<std::int32_t>(place);
}

int Rewrite(Session& session, engine::Recordset& table, const store::PlaceKey& stretch, const DayRow& row,
            std::int32_t point) {
    session.undo.TellMoved(row.fPK, {stretch, row.fR1, row.AE});
    if (const int error = table.FindFirst("fPK=?", {row.fPK})) return error;
    if (table.NoMatch()) return MessageNumber::NoRecord;
    table.Edit();
    table.SetField("fR1", point);
    table.SetField("AE", row.AE.value_or(0) | 2);
    return table.Update();
}

}  // namespace

std::size_t PlaceOfNew(std::span<const Minutes> others, Minutes start) {
    if (others.empty() || start >= others.back()) return others.size();
    std::size_t place = 0;
    while (others[place] <= start)
        ++place;
    return place;
}

std::size_t PlaceOfMoved(std::span<const Minutes> all, std::size_t place, Minutes start) {
    const Minutes before = all[place];
    if (start < before)
        while (place > 0 && all[place - 1] >= start)
            --place;
    if (start > before)
        while (place + 1 < all.size() && all[place + 1] <= start)
            ++place;
    return place;
}

int PlaceInDay(Session& session, engine::Recordset& row, Day day, Minutes start,
               std::optional<Minutes> before) {
    const auto read = ReadDay(session, day, NumberOf(row.Field("fPK"), store::kNewRecord));
    if (!read) return read.error().number;
    const std::vector<DayRow>& others = read->rows;
    const std::size_t count = others.size() + 1;
    std::size_t old = 0;
    std::size_t place = 0;
    if (before) {
        const std::int32_t fR1 = NumberOf(row.Field("fR1"));
        old = static_cast<std::size_t>(
            std::ranges::count_if(others, [fR1](const DayRow& other) { return other.fR1 < fR1; }));
        std::vector<Minutes> all = read->starts;
        all.insert(all.begin() + static_cast<std::ptrdiff_t>(old), *before);
        place = PlaceOfMoved(all, old, start);
    } else {
        place = PlaceOfNew(read->starts, start);
    }
    auto table = session.ProgramDb->OpenRecordset("tt");
    if (!table) return table.error().number;
    RandomSource& random = session.ports.random;
    for (std::size_t i = 0; i < others.size(); ++i) {
        const std::size_t now = i < place ? i : i + 1;
        // Rows of the day may have gone since the others got their slots.
        const bool stays = before && now == (i < old ? i : i + 1) && StandsAt(others[i], now, count);
        if (stays) continue;
        if (const int error =
                Rewrite(session, **table, StretchOf(day), others[i], PointOf(now, count, random)))
            return error;
    }
    row.SetField("fR1", PointOf(place, count, random));
    return 0;
}

int PlaceManyInDay(Session& session, Day day, std::span<const Minutes> starts,
                   std::vector<std::int32_t>& places) {
    const auto read = ReadDay(session, day, store::kNewRecord);
    if (!read) return read.error().number;
    const std::size_t standing = read->rows.size();
    const std::size_t count = standing + starts.size();
    std::vector<std::size_t> order(count);  // rows that stand, then new ones by their numbers
    for (std::size_t i = 0; i < count; ++i)
        order[i] = i;
    std::ranges::stable_sort(
        order, {}, [&](std::size_t i) { return i < standing ? read->starts[i] : starts[i - standing]; });
    auto table = session.ProgramDb->OpenRecordset("tt");
    if (!table) return table.error().number;
    places.assign(starts.size(), 0);
    for (std::size_t place = 0; place < count; ++place) {
        const std::int32_t point = PointOf(place, count, session.ports.random);
        if (order[place] >= standing) {
            places[order[place] - standing] = point;
        } else if (const int error =
                       Rewrite(session, **table, StretchOf(day), read->rows[order[place]], point)) {
            return error;
        }
    }
    return 0;
}

const store::DayOrder kDayOrder{.place = [](Session& session, engine::Recordset& row) {
    const Day day{store::DayOfPoint(NumberOf(row.Field("fR3")))};
    const auto start = StartOf(cry::DecipherField(session.cipher, TextOf(row.Field("fT1"))));
    return PlaceInDay(session, row, day, start.value_or(MidnightOf(day)));
}};

std::optional<Minutes> StartOf(std::string_view plain) {
    const Value value = store::DecodeField(plain);
    const auto* count = std::get_if<std::int32_t>(&value);
    return count ? std::optional(Minutes{*count}) : std::nullopt;
}

std::vector<std::int32_t> FindDisorder(Session& session) {
    struct Place {
        std::int32_t fPK, day;
    };
    auto cursor = session.ProgramDb->Select("SELECT fPK, fR3, fT1 FROM tt WHERE fSec=12 ORDER BY fR1 " +
                                            std::string(store::kOwnerAccess));
    if (!cursor) return {};
    std::vector<Place> places;
    std::vector<Bytes> ciphered;
    while (cursor->Next()) {
        places.push_back({cursor->Int(0), store::DayOfPoint(cursor->Int(1))});
        ciphered.emplace_back(cursor->Bytes(2));
    }
    std::vector<std::int32_t> wrong;
    std::unordered_map<std::int32_t, Minutes> lastOfDay;
    const std::vector<std::string_view> views(ciphered.begin(), ciphered.end());
    cry::DecipherBatch(session.cipher, views, [&](std::size_t i, std::string_view plain) {
        const auto start = StartOf(plain);
        if (!start) return;
        const auto [last, first] = lastOfDay.try_emplace(places[i].day, *start);
        if (!first && *start < last->second) wrong.push_back(places[i].fPK);
        last->second = *start;
    });
    return wrong;
}

}  // namespace bmr::calendar
