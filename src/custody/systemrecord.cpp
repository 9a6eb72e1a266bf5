#include "custody/systemrecord.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "store/record_get.h"
#include "store/record_put.h"
#include "store/section_store.h"

namespace bmr::custody {

using namespace store;

namespace {

constexpr std::uint8_t kVersionField = 2;
constexpr std::size_t kFieldCount = 17;
constexpr int kMaxVersion = 1000000;

constexpr std::uint8_t kSystemClass = 1;
constexpr std::uint8_t kSystemSubclass = 3;

/// Every field of a payload as its bytes (tag and stored value), by number. A field may hold a person's
/// words.
using Fields = std::array<Secret, 256>;

/// Tag, length and value of a text field. REQUIRES: at most `kLongestText` characters.
Secret RawText(FieldTag tag, std::string_view value) {
    const auto length = static_cast<unsigned>(value.size());
    Bytes head(1, ByteChar(static_cast<unsigned>(tag)));
    if (length < 255)
        head += ByteChar(length);
    else
        head += {ByteChar(255), ByteChar(length % 256), ByteChar(length / 256)};
    Secret raw(head);
    raw.Append(value);
    return raw;
}

/// Nothing unless the walk ends cleanly and meets the version: then it is no system record that we could
/// rewrite without a loss.
std::optional<Fields> RawFields(std::string_view payload) {
    Fields fields;
    PayloadReader reader(payload);
    for (RawField field; reader.Next(field);) {
        const auto tag = static_cast<FieldTag>(field.tag);
        Secret& raw = fields[field.number];
        if (tag == FieldTag::Text || tag == FieldTag::Memo) {
            raw = RawText(tag, field.value);
        } else {
            raw = Secret(Bytes(1, ByteChar(field.tag)));
            raw.Append(field.value);
        }
    }
    if (!reader.Clean() || fields[kVersionField].empty()) return std::nullopt;
    return fields;
}

Secret SystemPayload(Fields fields) {
    fields[kVersionField] = RawText(FieldTag::Text, std::to_string(kDatabaseVersion));
    Secret payload;
    for (std::size_t number = 0; number < fields.size(); ++number) {
        Secret& field = fields[number];
        // Reserved fields stand there from the start, empty.
        if (field.empty() && number < kFieldCount) field = RawText(FieldTag::Text, {});
        if (field.empty()) continue;
        payload.Append(Bytes(1, ByteChar(static_cast<unsigned>(number))));
        payload.Append(field.view());
    }
    return payload;
}

/// The fields of the record that stands, none where there is no record, nothing where it does not decode.
Result<std::optional<Fields>> FetchFields(Session& session) {
    const auto found = FetchSinglePayload(session, kSystemClass, kSystemSubclass);
    if (!found) return found.error();
    return *found ? RawFields((*found)->view()) : std::optional<Fields>(std::in_place);
}

int StoreFields(Session& session, Fields fields) {
    return StoreSinglePayload(session, kSystemClass, kSystemSubclass,
                              SystemPayload(std::move(fields)).view());
}

/// Version text to a number, so that "1000" stands above "201"; a fraction counts as the next whole one.
int VersionNumber(std::string_view text) {
    text = TrimBlanks(text);
    double number = 0;
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    if (parsed.ec == std::errc::result_out_of_range) return kMaxVersion;
    if (parsed.ec != std::errc() || !(number > 0)) return 0;
    return static_cast<int>(std::min<double>(std::ceil(number), kMaxVersion));
}

}  // namespace

int ReadDatabaseVersion(Session& session) {
    const auto payload = FetchSinglePayload(session, kSystemClass, kSystemSubclass);
    return payload && *payload ? VersionIn((*payload)->view()) : 0;
}

int VersionIn(std::string_view payload) {
    return VersionNumber(TextOf(GetPayloadField(payload, kVersionField)));
}

int WriteSystemRecord(Session& session) {
    auto fields = FetchFields(session);
    if (!fields) return fields.error().number;
    if (!*fields) return 0;  // what does not decode is not overwritten
    return StoreFields(session, std::move(**fields));
}

Result<Secret> ReadSystemMemo(Session& session, std::uint8_t number) {
    const auto found = FetchSinglePayload(session, kSystemClass, kSystemSubclass);
    if (!found) return found.error();
    Secret value;
    if (!*found) return value;
    bool memo = true;
    PayloadReader reader((*found)->view());
    for (RawField field; reader.Next(field);) {
        if (field.number != number) continue;
        value = Secret(field.value);
        memo = value.empty() || field.tag == static_cast<std::uint8_t>(FieldTag::Memo);
    }
    if (!reader.Clean() || !memo)
        return Error{engine::EngineNumber::Failed, "the field is none of this version's"};
    return value;
}

int WriteSystemMemo(Session& session, std::uint8_t number, std::string_view value) {
    if (value.size() > kLongestText) return engine::EngineNumber::Failed;
    auto fields = FetchFields(session);
    if (!fields) return fields.error().number;
    if (!*fields) return engine::EngineNumber::Failed;
    (**fields)[number] = RawText(value.empty() ? FieldTag::Text : FieldTag::Memo, value);
    return StoreFields(session, std::move(**fields));
}

int WriteMissingSystemRecord(Session& session) {
    const auto found = FetchSinglePayload(session, kSystemClass, kSystemSubclass);
    if (!found) return found.error().number;
    return *found ? 0 : WriteSystemRecord(session);
}

}  // namespace bmr::custody
