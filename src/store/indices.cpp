#include "store/indices.h"

#include <algorithm>
#include <map>
#include <span>
#include <string>
#include <unordered_map>

#include "base/errors.h"
#include "crypto/conversion.h"
#include "crypto/cry.h"
#include "engine/db.h"
#include "store/bucketsearch.h"
#include "store/section_store.h"

namespace bmr::store {
namespace {

/// A bucket in its present order; its bounds and the section are bound.
std::string BucketStatement(const std::string& columns) {
    return "SELECT " + columns + " FROM tt WHERE ([fR2] Between ? And ?) AND (fSec=?) ORDER BY fR1" +
           kOwnerAccess;
}

Result<std::vector<BucketRow>> ReadBucket(engine::Database& db, std::uint8_t section,
                                          const SpreadRange& bounds) {
    auto cursor = db.Select(BucketStatement("fPK, fR1"), {bounds.low, bounds.high, section});
    if (!cursor) return cursor.error();
    std::vector<BucketRow> rows;
    while (cursor->Next())
        rows.push_back({cursor->Int(0), cursor->Int(1)});
    if (cursor->error() != 0) return Error{cursor->error(), db.LastError()};
    return rows;
}

/// The rows of the text's bucket without `own`, from memory where the memory still holds.
Result<std::vector<BucketRow>*> OrderedBucket(Session& session, std::uint8_t section,
                                              const SpreadRange& bounds, std::int32_t own) {
    BucketOrder& order = session.bucketOrder;
    if (order.changes < 0 || session.ProgramDb->ChangeCount() != order.changes) order.Clear();
    if (own != kNewRecord) order.Forget(own);
    const auto found = order.buckets.find({section, bounds.low});
    if (found != order.buckets.end()) return &found->second;
    auto rows = ReadBucket(*session.ProgramDb, section, bounds);
    if (!rows) return rows.error();
    std::erase_if(*rows, [own](const BucketRow& row) { return row.fPK == own; });
    return &(order.buckets[{section, bounds.low}] = std::move(*rows));
}

/// The texts of the rows at `places`, trimmed; one that cannot be read is empty.
std::vector<Bytes> TextsOfRows(Session& session, const std::vector<BucketRow>& rows,
                               std::span<const std::size_t> places) {
    std::vector<Bytes> ciphered;
    for (const std::size_t place : places)
        ciphered.push_back(CipheredName(session, rows[place].fPK));
    std::vector<Bytes> texts(places.size());
    const std::vector<std::string_view> views(ciphered.begin(), ciphered.end());
    cry::DecipherBatch(session.cipher, views,
                       [&](std::size_t i, std::string_view plain) { texts[i] = Bytes(TrimBlanks(plain)); });
    return texts;
}

int WritePosition(engine::Recordset& table, std::int32_t fPK, std::int32_t position) {
    if (const int error = table.FindFirst("fPK=?", {fPK})) return error;
    if (table.NoMatch()) return MessageNumber::NoRecord;
    table.Edit();
    table.SetField("fR1", position);
    table.SetField("AE", NumberOf(table.Field("AE")) | 2);
    return table.Update();
}

std::int32_t EvenPosition(std::size_t place, std::size_t count, const SpreadRange& bounds,
                          RandomSource& random) {
    return SpreadIndex(static_cast<std::int32_t>(place) * kSortSpread,
                       static_cast<std::int32_t>(count) * kSortSpread, bounds.low, bounds.high, random)
        .value;
}

/// Spreads the rows of a bucket evenly and writes each but the one at `own`. Rows at 0 at its front stay:
/// confidential records without a name never get a place.
int RespreadBucket(Session& session, std::uint8_t section, std::vector<BucketRow>& rows,
                   const SpreadRange& bounds, std::size_t own) {
    session.undo.TellSpread({section, BucketOfKey(bounds.high)});
    auto table = session.ProgramDb->OpenRecordset("tt");
    if (!table) return table.error().number;
    bool atFront = true;
    for (std::size_t place = 0; place < rows.size(); ++place) {
        atFront = atFront && place != own && rows[place].position == 0;
        if (atFront) continue;
        rows[place].position = EvenPosition(place, rows.size(), bounds, session.ports.random);
        if (place == own) continue;
        if (const int error = WritePosition(**table, rows[place].fPK, rows[place].position)) return error;
    }
    return 0;
}

/// A row of a bucket that is being merged: one that stands in the file, or number `index` of the new ones.
struct MergedRow {
    WipedText text;
    std::int32_t fPK = kNewRecord;
    std::size_t index = 0;
    std::int32_t position = 0;
};

int AppendStandingRows(Session& session, std::uint8_t section, const SpreadRange& bounds,
                       std::vector<MergedRow>& merged) {
    auto cursor =
        session.ProgramDb->Select(BucketStatement("fPK, fR1, fT1"), {bounds.low, bounds.high, section});
    if (!cursor) return cursor.error().number;
    std::vector<BucketRow> rows;
    std::vector<Bytes> ciphered;
    while (cursor->Next()) {
        rows.push_back({cursor->Int(0), cursor->Int(1)});
        ciphered.emplace_back(cursor->Bytes(2));
    }
    const std::vector<std::string_view> views(ciphered.begin(), ciphered.end());
    cry::DecipherBatch(session.cipher, views, [&](std::size_t i, std::string_view plain) {
        merged.push_back({TrimBlanks(plain), rows[i].fPK, 0, rows[i].position});
    });
    return cursor->error();
}

}  // namespace

SpreadRange BucketBounds(std::string_view text) {
    return SpreadIndexAt(conversion::NameKey(TrimBlanks(text), false), kSortBuckets, 0, kMaxLong, 0.5);
}

std::int32_t BucketKey(std::string_view text, RandomSource& random) {
    const std::int32_t bucket = conversion::NameKey(TrimBlanks(text), false);
    for (;;) {
        const SpreadRange drawn = SpreadIndex(bucket, kSortBuckets, 0, kMaxLong, random);
        if (drawn.value <= drawn.high && BucketOfKey(drawn.value) == BucketOfKey(drawn.high))
            return drawn.value;
    }
}

std::optional<std::int32_t> PositionBetween(const std::vector<BucketRow>& rows, std::size_t place,
                                            const SpreadRange& bounds, RandomSource& random) {
    const std::int64_t above = place == 0 ? std::int64_t{bounds.low} - 1 : rows[place - 1].position;
    const std::int64_t below = place == rows.size() ? std::int64_t{bounds.high} + 1 : rows[place].position;
    const std::int64_t low = std::max<std::int64_t>(above + 1, bounds.low);
    const std::int64_t high = std::min<std::int64_t>(below - 1, bounds.high);
    if (low > high) return std::nullopt;
    if (rows.empty()) {
        const std::int32_t anywhere = SpreadIndex(0, 1, bounds.low, bounds.high, random).value;
        return std::clamp(anywhere, bounds.low, bounds.high);
    }
    const auto slots = static_cast<std::int32_t>(rows.size() + 1) * kSortSpread;
    const std::int32_t told =
        SpreadIndex(static_cast<std::int32_t>(place) * kSortSpread, slots, bounds.low, bounds.high, random)
            .value;
    if (told >= low && told <= high) return told;
    // The middle half of the gap: points at its very edge would leave no room for the next row.
    const std::int64_t width = high - low;
    const auto offset =
        static_cast<std::int64_t>(static_cast<double>(width) * (0.25 + 0.5 * random.Uniform()));
    return static_cast<std::int32_t>(low + offset);
}

int BucketPosition(Session& session, std::uint8_t section, engine::Recordset& row, std::string_view text) {
    const std::string_view plain = TrimBlanks(text);
    const SpreadRange bounds = BucketBounds(plain);
    const std::int32_t own = NumberOf(row.Field("fPK"), kNewRecord);
    auto ordered = OrderedBucket(session, section, bounds, own);
    if (!ordered) return ordered.error().number;
    std::vector<BucketRow>& rows = **ordered;

    const std::size_t place = FindBucketPlace(rows.size(), plain, [&](std::span<const std::size_t> places) {
        return TextsOfRows(session, rows, places);
    });
    const auto position = PositionBetween(rows, place, bounds, session.ports.random);
    const auto here =
        rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(place), {own, position.value_or(0)});
    if (!position)
        if (const int error = RespreadBucket(session, section, rows, bounds, place)) return error;
    row.SetField("fR2", BucketKey(plain, session.ports.random));
    row.SetField("fR1", here->position);
    session.bucketOrder.changes = session.ProgramDb->ChangeCount();
    if (own == kNewRecord) session.bucketOrder.added = &*here;
    return 0;
}

int SpreadBuckets(Session& session, std::uint8_t section, const std::vector<Bytes>& texts,
                  std::vector<std::int32_t>& positions) {
    session.bucketOrder.Clear();
    positions.assign(texts.size(), 0);
    std::map<std::int32_t, std::vector<MergedRow>> byBucket;
    for (std::size_t i = 0; i < texts.size(); ++i)
        byBucket[BucketBounds(texts[i]).low].push_back({TrimBlanks(texts[i]), kNewRecord, i});
    auto table = session.ProgramDb->OpenRecordset("tt");
    if (!table) return table.error().number;
    for (auto& [low, merged] : byBucket) {
        const SpreadRange bounds = BucketBounds(merged.front().text);
        const std::size_t added = merged.size();
        if (const int error = AppendStandingRows(session, section, bounds, merged); error != 0) return error;
        if (merged.size() > added) session.undo.TellSpread({section, BucketOfKey(bounds.high)});
        std::stable_sort(merged.begin(), merged.end(),
                         [](const MergedRow& a, const MergedRow& b) { return a.text < b.text; });
        for (std::size_t place = 0; place < merged.size(); ++place) {
            MergedRow& row = merged[place];
            const bool nameless = row.text.empty() && row.position == 0;  // and so it stays
            const std::int32_t position = EvenPosition(place, merged.size(), bounds, session.ports.random);
            int error = 0;
            if (row.fPK == kNewRecord)
                positions[row.index] = position;
            else if (!nameless)
                error = WritePosition(**table, row.fPK, position);
            if (error != 0) return error;
        }
    }
    return 0;
}

std::vector<std::int32_t> FindDisorder(Session& session, std::uint8_t section) {
    struct Place {
        std::int32_t fPK, key;
    };
    std::vector<Place> places;
    std::vector<Bytes> ciphered;
    auto cursor =
        session.ProgramDb->Select("SELECT fPK, fR2, fT1 FROM tt WHERE fSec=" + std::to_string(section) +
                                  " ORDER BY " + kBucketColumn + ", fR1" + kOwnerAccess);
    if (!cursor) return {};
    while (cursor->Next()) {
        places.push_back({cursor->Int(0), cursor->Int(1)});
        ciphered.emplace_back(cursor->Bytes(2));
    }
    std::vector<std::int32_t> wrong;
    std::unordered_map<std::int32_t, WipedText> lastOfBucket;
    const std::vector<std::string_view> views(ciphered.begin(), ciphered.end());
    cry::DecipherBatch(session.cipher, views, [&](std::size_t i, std::string_view plain) {
        const WipedText text(TrimBlanks(plain));
        const SpreadRange bounds = BucketBounds(text);
        // A record without a name never got keys; it stays at 0, which is the empty name's bucket.
        const bool inside = places[i].key >= bounds.low && places[i].key <= bounds.high;
        const auto last = lastOfBucket.find(bounds.low);
        if (!inside || (last != lastOfBucket.end() && text < last->second)) wrong.push_back(places[i].fPK);
        lastOfBucket[bounds.low] = text;
    });
    return wrong;
}

}  // namespace bmr::store
