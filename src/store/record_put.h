#pragma once

#include <cstdint>
#include <string_view>

#include "base/bytes.h"
#include "base/random.h"
#include "base/value.h"

namespace bmr::engine {
class Recordset;
}

namespace bmr::store {

/// Stored in every payload. Never renumber: files in the field carry these.
enum class FieldTag : std::uint8_t {
    Boolean = 1,
    Byte = 2,
    Int16 = 3,
    Int32 = 4,
    Currency = 5,
    Single = 6,
    Double = 7,
    DateTime = 8,
    Text = 10,
    Memo = 12,
    TimeOfDay = 22,
    Date = 25,
};

/// The longest text that a field holds, in characters; what is beyond is cut without a word.
inline constexpr std::size_t kLongestText = 65000;

/// The field's tag and value; the caller puts the field number in front. A number outside the tag's range and
/// a tag that is none give the empty text. Tag 25 draws its bucket point from `random`.
Bytes EncodeField(const Value& value, FieldTag tag, RandomSource& random);

/// Appends character(number) and the encoded field to `payload`. False (and nothing appended) on a value that
/// is refused.
bool AppendField(Bytes& payload, std::uint8_t number, const Value& value, FieldTag tag, RandomSource& random);

/// The same for a text (tag Text or Memo), which is not copied on the way. A payload that outgrows its memory
/// is wiped there: it may hold secrets.
void AppendText(Bytes& payload, std::uint8_t number, std::string_view text, FieldTag tag);

/// Appends a field as it stood in another payload: number, tag and value.
void AppendRaw(Bytes& payload, std::string_view field);

/// Columns that a record leaves unused and that get noise.
struct NoiseColumns {
    bool t1 = false, t2 = false, t3 = false;
    bool r1 = false, r2 = false, r3 = false, r4 = false;
};

/// Fills the flagged columns of a row in AddNew or Edit: texts with 8, 16 or 24 random bytes, numbers with 0
/// to 2147483647. fR5 and the booleans are never filled.
void FillColumns(engine::Recordset& row, const NoiseColumns& columns, RandomSource& random);

}  // namespace bmr::store
