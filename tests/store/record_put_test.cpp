#include "store/record_put.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "base/buckets.h"
#include "crypto/conversion.h"
#include "store/record_get.h"
#include "support/data.h"
#include "support/random.h"

namespace bmr::store {
namespace {

const nlohmann::json& Vectors() {
    static const nlohmann::json vectors = test::LoadVectors("format.json")["EncodeField"];
    return vectors;
}

Bytes Encode(const Value& value, FieldTag tag) {
    test::SeededRandom random;
    return EncodeField(value, tag, random);
}

/// "-1.5" as ten-thousandths.
Money Amount(const std::string& text) {
    return {std::llround(std::stod(text) * 10000)};
}

Value ScalarOf(const nlohmann::json& value, FieldTag tag) {
    if (value.is_null()) return Null{};
    if (value == "") return Bytes();
    if (value.is_string()) return Amount(value);
    if (value.is_boolean()) return value.get<bool>();
    if (value.is_number_integer()) return value.get<std::int32_t>();
    if (tag == FieldTag::DateTime || tag == FieldTag::TimeOfDay) return DateValue{value.get<double>()};
    return value.get<double>();
}

/// The characters of a known answer's text: start, start + step, ...
Bytes PatternText(const nlohmann::json& pattern) {
    Bytes text(pattern["length"].get<std::size_t>(), '\0');
    unsigned next = pattern["start"];
    const unsigned step = pattern["step"];
    for (char& c : text) {
        c = ByteChar(next);
        next += step;
    }
    return text;
}

TEST(EncodeField, KnownAnswersOfEveryScalar) {
    for (const auto& entry : Vectors()["scalars"]) {
        const auto tag = static_cast<FieldTag>(entry["tag"].get<int>());
        EXPECT_EQ(ToHex(Encode(ScalarOf(entry["value"], tag), tag)), entry["hex"].get<std::string>())
            << entry;
    }
}

TEST(EncodeField, TextsByLength) {
    for (const auto& entry : Vectors()["texts"]) {
        const auto tag = static_cast<FieldTag>(entry["tag"].get<int>());
        const Bytes text = PatternText(entry["pattern"]);
        const Bytes field = Encode(text, tag);
        if (entry.contains("hex")) {
            EXPECT_EQ(ToHex(field), entry["hex"].get<std::string>());
        } else {
            EXPECT_EQ(field.size(), entry["length"].get<std::size_t>());
            EXPECT_EQ(ToHex(field.substr(0, 16)), entry["first16"].get<std::string>());
        }
        EXPECT_EQ(std::get<Bytes>(DecodeField(field)), text.substr(0, kLongestText));
    }
}

TEST(EncodeField, DatesLieInTheirBucketAndNeverReadAsNone) {
    for (const auto& entry : Vectors()["tag25"]["dates"]) {
        const Bytes field = Encode(DateValue{entry["serial"].get<double>() + 0.75}, FieldTag::Date);
        ASSERT_EQ(field.size(), 5U);
        const std::int32_t packed = conversion::UnpackInteger(field.substr(1));
        EXPECT_GE(packed, entry["kind1"]["low"].get<std::int32_t>()) << entry;
        EXPECT_LE(packed, entry["kind1"]["high"].get<std::int32_t>()) << entry;
        EXPECT_EQ(IsoDate(DayOf(std::get<DateValue>(DecodeField(field)))),
                  entry["kind1"]["reads_back"].get<std::string>());
    }
    for (const Value& none : {Value(Empty{}), Value(Null{}), Value(Bytes("no date")), Value(true)})
        EXPECT_EQ(ToHex(Encode(none, FieldTag::Date)), Vectors()["tag25"]["no_date"].get<std::string>());
    EXPECT_EQ(DecodeField(test::Hex("1900000000")), Value(Empty{}));

    test::ScriptedRandom lowest;  // the bottom of the bucket that holds the stored 0
    lowest.uniforms = {0.0, 0.0};
    const Bytes field = EncodeField(DateValue{31608}, FieldTag::Date, lowest);
    EXPECT_EQ(std::get<DateValue>(DecodeField(field)), DateValue{31608});
}

TEST(EncodeField, RefusesWhatTheTagCannotHold) {
    EXPECT_EQ(Encode(256, FieldTag::Byte), "");
    EXPECT_EQ(Encode(-1, FieldTag::Byte), "");
    EXPECT_EQ(Encode(32768, FieldTag::Int16), "");
    EXPECT_EQ(Encode(-32769, FieldTag::Int16), "");
    EXPECT_EQ(Encode(Bytes("12"), FieldTag::Int32), "");
    EXPECT_EQ(Encode(Bytes("text"), FieldTag::Boolean), "");
    EXPECT_EQ(Encode(7, FieldTag::Text), "");
    EXPECT_EQ(Encode(7, static_cast<FieldTag>(9)), "");
    for (const double odd : {std::nan(""), std::numeric_limits<double>::infinity()})
        EXPECT_EQ(ToHex(Encode(odd, FieldTag::Double)), "070000000000000000");

    Bytes payload = "kept";
    test::SeededRandom random;
    EXPECT_FALSE(AppendField(payload, 1, 256, FieldTag::Byte, random));
    EXPECT_EQ(payload, "kept");
    EXPECT_TRUE(AppendField(payload, 200, true, FieldTag::Boolean, random));
    EXPECT_EQ(payload, "kept\xC8\x01\x01");
}

}  // namespace
}  // namespace bmr::store
