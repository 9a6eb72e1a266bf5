#include "store/systemrecord.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "store/lifecycle.h"
#include "store/record_get.h"
#include "store/record_put.h"
#include "store/section_store.h"

namespace bmr::store {

namespace {

constexpr std::uint8_t kVersionField = 2;
constexpr std::size_t kFieldCount = 17;
constexpr int kMaxVersion = 1000000;

constexpr std::uint8_t kSystemClass = 1;
constexpr std::uint8_t kSystemSubclass = 3;

/// Every field of the payload as its bytes (tag and stored value), by number; nothing unless the walk ends
/// cleanly and meets the version: then it is no system record that we could rewrite without a loss.
std::optional<std::array<Bytes, 256>> RawFields(std::string_view payload) {
    std::array<Bytes, 256> fields;
    PayloadReader reader(payload);
    for (RawField field; reader.Next(field);) {
        const auto tag = static_cast<FieldTag>(field.tag);
        Bytes& raw = fields[field.number];
        raw = ByteChar(field.tag);
        if (tag == FieldTag::Text || tag == FieldTag::Memo) {
            const auto length = static_cast<unsigned>(field.value.size());
            if (length < 255)
                raw += ByteChar(length);
            else
                raw += {ByteChar(255), ByteChar(length % 256), ByteChar(length / 256)};
        }
        raw += field.value;
    }
    if (!reader.Clean() || fields[kVersionField].empty()) return std::nullopt;
    return fields;
}

Bytes SystemPayload(std::array<Bytes, 256> fields, RandomSource& random) {
    const Bytes version = std::to_string(kDatabaseVersion);
    fields[kVersionField] = EncodeField(version, FieldTag::Text, random);
    Bytes payload;
    for (std::size_t number = 0; number < fields.size(); ++number) {
        Bytes& field = fields[number];
        // Reserved fields stand there from the start, empty.
        if (field.empty() && number < kFieldCount) field = EncodeField(Bytes(), FieldTag::Text, random);
        if (field.empty()) continue;
        payload += ByteChar(static_cast<unsigned>(number));
        payload += field;
    }
    return payload;
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
    if (!payload || !*payload) return 0;
    return VersionNumber(TextOf(GetPayloadField((*payload)->view(), kVersionField)));
}

int WriteSystemRecord(Session& session) {
    const auto found = FetchSinglePayload(session, kSystemClass, kSystemSubclass);
    if (!found) return found.error().number;
    std::array<Bytes, 256> fields;
    if (*found) {
        auto raw = RawFields((*found)->view());
        if (!raw) return 0;  // what does not decode is not overwritten
        fields = std::move(*raw);
    }
    return StoreSinglePayload(session, kSystemClass, kSystemSubclass,
                              SystemPayload(std::move(fields), session.ports.random));
}

int WriteMissingSystemRecord(Session& session) {
    const auto found = FetchSinglePayload(session, kSystemClass, kSystemSubclass);
    if (!found) return found.error().number;
    return *found ? 0 : WriteSystemRecord(session);
}

}  // namespace bmr::store
