#include "store/record_get.h"

#include "base/buckets.h"
#include "crypto/conversion.h"
#include "store/section.h"

namespace bmr::store {
namespace {

/// Where the value of `tag` lies in `rest`, the text behind the tag.
struct Extent {
    std::size_t prefix = 0;
    std::size_t size = 0;
};

/// Nothing for a tag that is none, and for a value that is not whole.
std::optional<Extent> ExtentOf(FieldTag tag, std::string_view rest) {
    Extent extent;
    switch (tag) {
        case FieldTag::Boolean:
        case FieldTag::Byte:
            extent.size = 1;
            break;
        case FieldTag::Int16:
            extent.size = 2;
            break;
        case FieldTag::Int32:
        case FieldTag::Single:
        case FieldTag::TimeOfDay:
        case FieldTag::Date:
            extent.size = 4;
            break;
        case FieldTag::Currency:
        case FieldTag::Double:
        case FieldTag::DateTime:
            extent.size = 8;
            break;
        case FieldTag::Text:
        case FieldTag::Memo:
            if (rest.empty()) return std::nullopt;
            extent.prefix = ByteAt(rest, 0) < 255 ? 1 : 3;
            if (rest.size() < extent.prefix) return std::nullopt;
            extent.size =
                extent.prefix == 1 ? ByteAt(rest, 0) : ByteAt(rest, 1) + std::size_t{256} * ByteAt(rest, 2);
            break;
        default:
            return std::nullopt;
    }
    if (rest.size() < extent.prefix + extent.size) return std::nullopt;
    return extent;
}

Value DecodeDate(std::string_view value) {
    const std::int32_t packed = conversion::UnpackInteger(value);
    if (packed == 0) return Empty{};
    return DateValue{static_cast<double>(UnpackDate(packed, DateKind::Start).serial)};
}

}  // namespace

PayloadReader::PayloadReader(std::string_view payload) : rest_(payload) {
    // An enciphered "nothing" is a run of blanks: a record without fields.
    if (rest_.starts_with("  ") || rest_ == " ") rest_ = {};
    clean_ = rest_.empty();
}

bool PayloadReader::Next(RawField& field) {
    if (rest_.size() < 2) return false;
    const auto tag = static_cast<FieldTag>(ByteAt(rest_, 1));
    const auto extent = ExtentOf(tag, rest_.substr(2));
    if (!extent) return false;
    field.number = static_cast<std::uint8_t>(ByteAt(rest_, 0));
    field.tag = static_cast<std::uint8_t>(tag);
    field.whole = rest_.substr(0, 2 + extent->prefix + extent->size);
    field.value = field.whole.substr(2 + extent->prefix);
    rest_.remove_prefix(field.whole.size());
    clean_ = rest_.empty();
    return true;
}

bool PayloadReader::Clean() const {
    return clean_;
}

Value DecodeRaw(const RawField& field) {
    switch (static_cast<FieldTag>(field.tag)) {
        case FieldTag::Boolean:
            return ByteAt(field.value, 0) != 0;
        case FieldTag::Byte:
            return static_cast<std::int32_t>(ByteAt(field.value, 0));
        case FieldTag::Int16:
        case FieldTag::Int32:
            return conversion::UnpackInteger(field.value);
        case FieldTag::Currency:
            return conversion::UnpackCurrency(field.value);
        case FieldTag::Single:
        case FieldTag::Double:
            return conversion::BytesToFloat(field.value);
        case FieldTag::DateTime:
        case FieldTag::TimeOfDay:
            return DateValue{conversion::BytesToFloat(field.value)};
        case FieldTag::Date:
            return DecodeDate(field.value);
        case FieldTag::Text:
        case FieldTag::Memo:
            return Bytes(field.value);
    }
    return Empty{};
}

Value DecodeValue(std::string_view text, FieldTag tag) {
    if (text.empty()) return Null{};
    const auto extent = ExtentOf(tag, text);
    if (!extent) return Empty{};
    return DecodeRaw({0, static_cast<std::uint8_t>(tag), text.substr(extent->prefix, extent->size), {}});
}

Value DecodeField(std::string_view text) {
    if (text.empty()) return Null{};
    return DecodeValue(text.substr(1), static_cast<FieldTag>(ByteAt(text, 0)));
}

void DecodeRecord(std::vector<Value>& fields, std::string_view text, bool decipher,
                  cry::CipherState& cipher) {
    if (text.empty()) return;
    fields.assign(fields.size(), Bytes());
    PayloadReader reader(decipher ? cry::DecipherField(cipher, text) : text);
    for (RawField field; reader.Next(field);) {
        if (field.number >= fields.size()) fields.resize(std::size_t{field.number} + 1, Bytes());
        fields[field.number] = DecodeRaw(field);
    }
}

Value GetRecordField(cry::CipherState& cipher, std::string_view text, std::uint8_t number) {
    return GetPayloadField(cry::DecipherField(cipher, text), number);
}

Value GetPayloadField(std::string_view payload, std::uint8_t number) {
    PayloadReader reader(payload);
    for (RawField field; reader.Next(field);)
        if (field.number == number) return DecodeRaw(field);
    return Empty{};
}

}  // namespace bmr::store
