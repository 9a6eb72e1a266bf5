#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "base/bytes.h"
#include "base/value.h"
#include "crypto/cry.h"
#include "store/record_put.h"

namespace bmr::store {

/// One field of a payload as it stands there.
struct RawField {
    std::uint8_t number = 0;
    std::uint8_t tag = 0;
    std::string_view value;  ///< the value's bytes, without tag and length prefix
    std::string_view whole;  ///< the field as it stands, number and tag included
};

/// Walks a plain payload. Gives false at the end, at a tag that is none, and at a value cut short.
class PayloadReader {
  public:
    explicit PayloadReader(std::string_view payload);
    bool Next(RawField& field);
    /// True when the walk ended because the payload ended, with no byte left over.
    bool Clean() const;

  private:
    std::string_view rest_;
    bool clean_ = true;
};

/// A field's value in its own type: Boolean gives bool, the whole numbers int32, 5 Money, 6 and 7 double, 8
/// DateValue, 22 DateValue with a fraction only, 25 DateValue of a whole day (`Empty` for the stored 0), 10
/// and 12 Bytes.
Value DecodeRaw(const RawField& field);

/// Tag and value text; `Null` for "".
Value DecodeValue(std::string_view text, FieldTag tag);
/// Text beginning with the tag.
Value DecodeField(std::string_view text);

/// Fills `fields` by field number (the array grows as needed): every entry is first set to "", then those
/// found are set to their value in its own type. With `decipher` the text is a field cipher text of mode 1,
/// else a plain payload. An empty text leaves `fields` unchanged. Ends quietly at whatever cannot be read.
void DecodeRecord(std::vector<Value>& fields, std::string_view text, bool decipher, cry::CipherState& cipher);

/// The value of one field of a field cipher text; `Empty` when the number does not occur.
Value GetRecordField(cry::CipherState& cipher, std::string_view text, std::uint8_t number);
/// The same of a plain payload.
Value GetPayloadField(std::string_view payload, std::uint8_t number);

}  // namespace bmr::store
