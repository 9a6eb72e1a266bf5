#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string_view>
#include <vector>

#include "base/buckets.h"
#include "base/bytes.h"
#include "base/random.h"
#include "store/bucketorder.h"
#include "store/session.h"

namespace bmr::store {

/// Alphabetical order that nobody can read from the file. `fR2` is a random point of one of 42 buckets by the
/// first two letters, `fR1` a random point that orders the row inside its bucket. Reading by X, then fR1,
/// gives the rows of a bucket in the binary order of their texts (bytes of code page 1252, blanks at the ends
/// cut), with nothing deciphered.

/// Slots for each row of a bucket, so that a new row normally finds room.
inline constexpr std::int32_t kSortSpread = 10;

/// The computed column X of the lists, as it stands in their statements.
inline constexpr const char* kBucketColumn = "Int([fR2] / (2 ^ 32 / 42) + 42 / 2)";

/// The bounds of a text's bucket; fR1 and fR2 both lie inside them.
SpreadRange BucketBounds(std::string_view text);

/// A value for fR2. A draw that lands outside of its bucket, or on the few points where X already counts for
/// the neighbouring pair of buckets, is drawn anew: such a row would stand apart from its own bucket.
std::int32_t BucketKey(std::string_view text, RandomSource& random);

/// A position strictly between the rows at place - 1 and place, inside the bucket's bounds: a point of the
/// slot `place * spread` among `n * spread` where that lies between, else a random point of the gap. Nothing
/// when there is no room.
std::optional<std::int32_t> PositionBetween(const std::vector<BucketRow>& rows, std::size_t place,
                                            const SpreadRange& bounds, RandomSource& random);

/// Sets the place of a row in AddNew or Edit by its text: fR2 to a value of its bucket, fR1 to its position
/// there. Where there is no room, the other rows of the bucket are spread anew, each with `AE Or 2`. For the
/// `fill` of `StoreRow`, as the bucket is remembered with this row in it. 0 or the engine's number.
[[nodiscard]] int BucketPosition(Session& session, std::uint8_t section, engine::Recordset& row,
                                 std::string_view text);

/// Positions (fR1) for many new rows at once, one for each of `texts`, before they are added: every bucket
/// that gets one is merged with the rows that stand there (their texts deciphered in one batch), spread
/// evenly, and the standing rows are rewritten with `AE Or 2`. Inside the caller's transaction, for imports.
/// 0 or the engine's number.
[[nodiscard]] int SpreadBuckets(Session& session, std::uint8_t section, const std::vector<Bytes>& texts,
                                std::vector<std::int32_t>& positions);

/// Rows that break the promise: neighbours by X, fR1 of one bucket whose texts stand the wrong way round, and
/// rows whose fR2 lies outside their text's bucket. Their fPK, in reading order. For `bmr check`.
std::vector<std::int32_t> FindDisorder(Session& session, std::uint8_t section);

}  // namespace bmr::store
