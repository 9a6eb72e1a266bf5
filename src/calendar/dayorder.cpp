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

/// The rows of a day in their order.
struct DayRows {
    std::vector<DayRow> rows;
    std::vector<Bytes> starts;  ///< enciphered
};

constexpr const char* kDayClauses =
    " FROM tt WHERE (fSec=12) AND ([fR3] Between ? And ?) ORDER BY [fR1] WITH OWNERACCESS OPTION;";

SpreadRange BoundsOf(Day day) {
    return PackDateAt(day, DateKind::Start, 0.5);
}

store::PlaceKey StretchOf(Day day) {
    return {Section::Calendar, store::DayOfPoint(BoundsOf(day).value)};
}

/// Without the row of `own`.
Result<DayRows> ReadDay(Session& session, Day day, std::int32_t own) {
    const SpreadRange bounds = BoundsOf(day);
    auto cursor = session.ProgramDb->Select("SELECT fPK, fR1, AE, fT1" + std::string(kDayClauses),
                                            {bounds.low, bounds.high});
    if (!cursor) return cursor.error();
    DayRows found;
    while (cursor->Next()) {
        if (cursor->Int(0) == own) continue;
        found.rows.push_back({cursor->Int(0), cursor->Int(1),
                              cursor->IsNull(2) ? std::nullopt : std::optional(cursor->Int(2))});
        found.starts.emplace_back(cursor->Bytes(3));
    }
    if (cursor->error() != 0) return Error{cursor->error(), session.ProgramDb->LastError()};
    return found;
}

/// The starts at some places. One that cannot be read counts as that of the row before it.
std::vector<Minutes> StartsAt(Session& session, Day day, const DayRows& read,
                              std::span<const std::size_t> places) {
    std::vector<std::string_view> views;
    for (const std::size_t place : places)
        views.emplace_back(read.starts[place]);
    std::vector<std::optional<Minutes>> found(places.size());
    cry::DecipherBatch(session.cipher, views,
                       [&](std::size_t i, std::string_view plain) { found[i] = StartOf(plain); });
    std::vector<Minutes> starts;
    for (std::size_t i = 0; i < places.size(); ++i) {
        for (std::size_t place = places[i]; !found[i] && place > 0; --place)
            found[i] = StartOf(cry::DecipherField(session.cipher, read.starts[place - 1]));
        starts.push_back(found[i].value_or(MidnightOf(day)));
    }
    return starts;
}

std::vector<Minutes> AllStarts(Session& session, Day day, const DayRows& read) {
    std::vector<std::size_t> places(read.rows.size());
    for (std::size_t i = 0; i < places.size(); ++i)
        places[i] = i;
    return StartsAt(session, day, read, places);
}

/// The first place from `first` on whose start lies behind, or `end`. As many places are looked at in one
/// go as the ciphers work on side by side.
std::size_t FirstBehind(std::size_t first, std::size_t end, const StartReader& others,
                        const std::function<bool(Minutes)>& isBehind) {
    constexpr std::size_t kAtOnce = 6;
    while (first < end) {
        const std::size_t count = std::min(kAtOnce, end - first);
        std::vector<std::size_t> places;
        for (std::size_t i = 1; i <= count; ++i)
            places.push_back(first + (end - first + 1) * i / (count + 1) - 1);
        const std::vector<Minutes> starts = others(places);
        const auto behind = static_cast<std::size_t>(std::ranges::find_if(starts, isBehind) - starts.begin());
        if (behind > 0) first = places[behind - 1] + 1;
        if (behind < count) end = places[behind];
    }
    return end;
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

/// Gives a row that stands in hand another point.
int Rewrite(Session& session, engine::Recordset& table, const store::PlaceKey& stretch, const DayRow& row,
            std::int32_t point) {
    session.undo.TellMoved(row.fPK, {stretch, row.fR1, row.AE});
    table.Edit();
    table.SetField("fR1", point);
    table.SetField("AE", row.AE.value_or(0) | 2);
    return table.Update();
}

/// Rewrites the rows of a day for which `pointOf` gives a point, by their numbers in `read`.
int RewriteDay(Session& session, Day day, const DayRows& read,
               const std::function<std::optional<std::int32_t>(std::size_t i)>& pointOf) {
    const SpreadRange bounds = BoundsOf(day);
    auto table = session.ProgramDb->OpenRecordset("SELECT fPK, fR1, AE" + std::string(kDayClauses),
                                                  engine::RecordsetType::Dynaset, {bounds.low, bounds.high});
    if (!table) return table.error().number;
    const auto& rows = read.rows;
    std::size_t met = 0;
    for (; !(*table)->Eof(); (*table)->MoveNext()) {
        // The order is that in which they were read, but for a row that is left out.
        const std::int32_t key = NumberOf((*table)->Field("fPK"), store::kNewRecord);
        auto row = rows.begin() + static_cast<std::ptrdiff_t>(std::min(met, rows.size()));
        if (row == rows.end() || row->fPK != key) row = std::ranges::find(rows, key, &DayRow::fPK);
        if (row == rows.end()) continue;
        ++met;
        if (const auto point = pointOf(static_cast<std::size_t>(row - rows.begin())))
            if (const int error = Rewrite(session, **table, StretchOf(day), *row, *point)) return error;
    }
    return met == rows.size() ? 0 : MessageNumber::NoRecord;
}

}  // namespace

std::size_t PlaceOfNew(std::size_t count, const StartReader& others, Minutes start) {
    return FirstBehind(0, count, others, [start](Minutes other) { return other > start; });
}

std::size_t PlaceOfMoved(std::size_t count, const StartReader& others, std::size_t place, Minutes before,
                         Minutes start) {
    if (start < before)
        return FirstBehind(0, place, others, [start](Minutes other) { return other >= start; });
    if (start > before)
        return FirstBehind(place, count, others, [start](Minutes other) { return other > start; });
    return place;
}

int PlaceInDay(Session& session, engine::Recordset& row, Day day, Minutes start,
               std::optional<Minutes> before) {
    const auto read = ReadDay(session, day, NumberOf(row.Field("fPK"), store::kNewRecord));
    if (!read) return read.error().number;
    const std::vector<DayRow>& others = read->rows;
    const StartReader starts = [&](std::span<const std::size_t> places) {
        return StartsAt(session, day, *read, places);
    };
    const std::size_t count = others.size() + 1;
    std::size_t old = 0;
    std::size_t place = 0;
    if (before) {
        const std::int32_t fR1 = NumberOf(row.Field("fR1"));
        old = static_cast<std::size_t>(
            std::ranges::count_if(others, [fR1](const DayRow& other) { return other.fR1 < fR1; }));
        place = PlaceOfMoved(others.size(), starts, old, *before, start);
    } else {
        place = PlaceOfNew(others.size(), starts, start);
    }
    const auto now = [place](std::size_t i) { return i < place ? i : i + 1; };
    // Rows of the day may have gone since the others got their slots.
    const auto stays = [&](std::size_t i) {
        return before && now(i) == (i < old ? i : i + 1) && StandsAt(others[i], now(i), count);
    };
    RandomSource& random = session.ports.random;
    const auto pointOf = [&](std::size_t i) {
        return stays(i) ? std::nullopt : std::optional(PointOf(now(i), count, random));
    };
    bool any = false;
    for (std::size_t i = 0; i < others.size() && !any; ++i)
        any = !stays(i);
    if (any)
        if (const int error = RewriteDay(session, day, *read, pointOf)) return error;
    row.SetField("fR1", PointOf(place, count, random));
    return 0;
}

int PlaceManyInDay(Session& session, Day day, std::span<const Minutes> starts,
                   std::vector<std::int32_t>& places) {
    const auto read = ReadDay(session, day, store::kNewRecord);
    if (!read) return read.error().number;
    const std::vector<Minutes> old = AllStarts(session, day, *read);
    const std::size_t standing = old.size();
    const std::size_t count = standing + starts.size();
    std::vector<std::size_t> order(count);  // rows that stand, then new ones by their numbers
    for (std::size_t i = 0; i < count; ++i)
        order[i] = i;
    std::ranges::stable_sort(order, {},
                             [&](std::size_t i) { return i < standing ? old[i] : starts[i - standing]; });
    std::vector<std::int32_t> points(count);
    for (std::size_t place = 0; place < count; ++place)
        points[order[place]] = PointOf(place, count, session.ports.random);
    places.assign(points.begin() + static_cast<std::ptrdiff_t>(standing), points.end());
    if (standing == 0) return 0;
    return RewriteDay(session, day, *read, [&points](std::size_t i) { return std::optional(points[i]); });
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
