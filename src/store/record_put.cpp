#include "store/record_put.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "base/buckets.h"
#include "crypto/conversion.h"
#include "crypto/cry.h"

namespace bmr::store {
namespace {

constexpr std::size_t kShortText = 254;

/// A whole number, 0 for nothing; no number for a value of another kind.
std::optional<std::int64_t> WholeNumber(const Value& value) {
    if (IsBlank(value)) return 0;
    if (const auto* number = std::get_if<std::int32_t>(&value)) return *number;
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? 1 : 0;
    return std::nullopt;
}

/// A number with a fraction; what is no number counts as 0.
double RealNumber(const Value& value) {
    if (const auto* number = std::get_if<double>(&value)) return *number;
    if (const auto* date = std::get_if<DateValue>(&value)) return date->serial;
    if (const auto* money = std::get_if<Money>(&value))
        return static_cast<double>(money->tenThousandths) / 10000;
    return NumberOf(value);
}

Bytes EncodeInteger(const Value& value, int byteCount) {
    const auto number = WholeNumber(value);
    return number ? conversion::PackInteger(*number, byteCount).value_or(Bytes()) : Bytes();
}

Bytes EncodeByte(const Value& value) {
    const auto number = WholeNumber(value);
    if (!number || *number < 0 || *number > 255) return {};
    return Bytes(1, ByteChar(static_cast<unsigned>(*number)));
}

Bytes EncodeMoney(const Value& value) {
    if (const auto* money = std::get_if<Money>(&value)) return conversion::PackCurrency(*money);
    const auto number = WholeNumber(value);
    return number ? conversion::PackCurrency({*number * 10000}) : Bytes();
}

Bytes EncodeFloat(double value, int bitCount) {
    return conversion::BitsToBytes(conversion::FloatToBits(value, bitCount)).value_or(Bytes());
}

/// A packed day; 0 is kept for "no date", so a point that falls on it is moved within its bucket.
Bytes EncodeDate(const Value& value, RandomSource& random) {
    std::int32_t packed = 0;
    if (const auto* date = std::get_if<DateValue>(&value)) {
        packed = PackDate(DayOf(*date), DateKind::Start, random).value;
        if (packed == 0) packed = 1;
    }
    return conversion::PackInteger(packed, 4).value_or(Bytes());
}

/// Makes room for `more` bytes; what was there stands in no memory that was given back.
void Reserve(Bytes& payload, std::size_t more) {
    const std::size_t needed = payload.size() + more;
    if (needed <= payload.capacity()) return;
    Bytes larger;
    larger.reserve(std::max(needed, 2 * payload.capacity()));
    larger.append(payload);
    payload.swap(larger);
    cry::WipeString(larger);
}

/// Length prefix and characters of a text.
void PutText(Bytes& out, std::string_view text) {
    text = text.substr(0, kLongestText);
    const auto size = static_cast<unsigned>(text.size());
    Reserve(out, size + 3);
    if (size <= kShortText)
        out += ByteChar(size);
    else
        out += {ByteChar(255), ByteChar(size & 0xFF), ByteChar(size >> 8)};
    out.append(text);
}

Bytes EncodeText(std::string_view text) {
    Bytes out;
    PutText(out, text);
    return out;
}

Bytes EncodeValue(const Value& value, FieldTag tag, RandomSource& random) {
    switch (tag) {
        case FieldTag::Boolean: {
            const auto number = WholeNumber(value);
            return number ? Bytes(1, ByteChar(*number != 0 ? 1 : 0)) : Bytes();
        }
        case FieldTag::Byte:
            return EncodeByte(value);
        case FieldTag::Int16:
            return EncodeInteger(value, 2);
        case FieldTag::Int32:
            return EncodeInteger(value, 4);
        case FieldTag::Currency:
            return EncodeMoney(value);
        case FieldTag::Single:
            return EncodeFloat(RealNumber(value), 32);
        case FieldTag::Double:
        case FieldTag::DateTime:
            return EncodeFloat(RealNumber(value), 64);
        case FieldTag::TimeOfDay: {
            const double serial = RealNumber(value);
            return EncodeFloat(serial - std::floor(serial), 32);
        }
        case FieldTag::Date:
            return EncodeDate(value, random);
        case FieldTag::Text:
        case FieldTag::Memo: {
            if (IsBlank(value)) return EncodeText({});
            const auto* text = std::get_if<Bytes>(&value);
            return text != nullptr ? EncodeText(*text) : Bytes();
        }
    }
    return {};
}

}  // namespace

Bytes EncodeField(const Value& value, FieldTag tag, RandomSource& random) {
    const Bytes encoded = EncodeValue(value, tag, random);
    if (encoded.empty()) return {};  // every tag stores at least one byte, so nothing means refused
    return ByteChar(static_cast<unsigned>(tag)) + encoded;
}

bool AppendField(Bytes& payload, std::uint8_t number, const Value& value, FieldTag tag,
                 RandomSource& random) {
    const Bytes field = EncodeField(value, tag, random);
    if (field.empty()) return false;
    Reserve(payload, field.size() + 1);
    payload += ByteChar(number);
    payload += field;
    return true;
}

void AppendText(Bytes& payload, std::uint8_t number, std::string_view text, FieldTag tag) {
    Reserve(payload, 2);
    payload += ByteChar(number);
    payload += ByteChar(static_cast<unsigned>(tag));
    PutText(payload, text);
}

void AppendRaw(Bytes& payload, std::string_view field) {
    Reserve(payload, field.size());
    payload.append(field);
}

}  // namespace bmr::store
