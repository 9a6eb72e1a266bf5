#include "crypto/conversion.h"

#include <gtest/gtest.h>

#include "support/data.h"

namespace bmr::conversion {
namespace {

using test::Hex;

const nlohmann::json& Group(const char* name) {
    static const nlohmann::json vectors = test::LoadVectors("format.json");
    return vectors.at("conversions").at(name);
}

TEST(Conversion, IntegersAndAmounts) {
    for (const auto& entry : Group("PackInteger"))
        EXPECT_EQ(ToHex(PackInteger(entry["value"], entry["bytes"]).value_or("refused")),
                  entry["hex"].get<std::string>());
    for (const auto& entry : Group("UnpackInteger"))
        EXPECT_EQ(UnpackInteger(Hex(entry["hex"])), entry["value"].get<std::int32_t>());
    for (const auto& entry : Group("UnpackCurrency")) {
        const Bytes stored = Hex(entry["hex"]);
        EXPECT_EQ(UnpackCurrency(stored).tenThousandths, entry["ten_thousandths"].get<std::int64_t>());
        if (stored.size() == 8) EXPECT_EQ(PackCurrency(UnpackCurrency(stored)), stored);
    }
    EXPECT_EQ(PackCurrency({-15000}), Hex("68c5ffffffffffff"));
    EXPECT_FALSE(PackInteger(32768, 2));
    EXPECT_FALSE(PackInteger(-2147483649, 4));
}

TEST(Conversion, Floats) {
    for (const auto& entry : Group("FloatToBits")) {
        if (!entry["value"].is_number()) continue;
        const std::string bits = FloatToBits(entry["value"], entry["bits"]);
        EXPECT_EQ(bits, entry["text"].get<std::string>()) << entry;
        EXPECT_EQ(ToHex(BitsToBytes(bits).value_or("")), entry["bytes"].get<std::string>()) << entry;
    }
    for (const auto& entry : Group("BytesToFloat"))
        if (entry["value"].is_number())
            EXPECT_EQ(BytesToFloat(Hex(entry["hex"])), entry["value"].get<double>());
    EXPECT_FALSE(BitsToBytes("1111111"));
    EXPECT_FALSE(BitsToByte("1111111"));
    for (const auto& entry : Group("BitsNegate"))
        EXPECT_EQ(BitsNegate(entry["bits"].get<std::string>()), entry["result"].get<std::string>());
}

TEST(Conversion, NameKeys) {
    for (const auto& entry : Group("NameKey")) {
        const Bytes text = Hex(entry["text"]);
        EXPECT_EQ(NameCode(text, false), entry["NameCode"].get<int>()) << entry;
        EXPECT_EQ(NameKey(text, false), entry["NameKey"].get<int>()) << entry;
        EXPECT_EQ(NameCode(text, true), entry["NameCode_accents"].get<int>()) << entry;
        EXPECT_EQ(NameKey(text, true), entry["NameKey_accents"].get<int>()) << entry;
    }
    for (unsigned code = 0; code < 256; ++code) {
        const Bytes one(1, ByteChar(code));
        EXPECT_EQ(NameCode(one, false), Group("NameCode_of_all_bytes")["accents_0"][code].get<int>()) << code;
        EXPECT_EQ(NameCode(one, true), Group("NameCode_of_all_bytes")["accents_1"][code].get<int>()) << code;
    }
}

}  // namespace
}  // namespace bmr::conversion
