#include "store/record_get.h"

#include "store/privatefilter.h"

#include <gtest/gtest.h>

#include "support/data.h"
#include "support/random.h"

namespace bmr::store {
namespace {

using test::Hex;

const nlohmann::json& Vectors() {
    static const nlohmann::json vectors = test::LoadVectors("format.json");
    return vectors;
}

struct Keys {
    Keys() { cipher.Keystring = Secret(Hex(Vectors()["FieldCipher"]["keystring"].get<std::string>())); }
    test::SeededRandom random;
    cry::CipherState cipher{random};
};

Bytes Payload(const nlohmann::json& walk) {
    return Hex(walk["payload"].get<std::string>());
}

/// A decoded value against the plain JSON of a known answer.
bool Same(const Value& value, const nlohmann::json& expected) {
    if (const auto* flag = std::get_if<bool>(&value)) return expected == *flag;
    if (const auto* number = std::get_if<std::int32_t>(&value)) return expected == *number;
    if (const auto* real = std::get_if<double>(&value)) return expected == *real;
    if (const auto* money = std::get_if<Money>(&value)) return expected == money->tenThousandths;
    if (const auto* date = std::get_if<DateValue>(&value)) return expected == date->serial;
    const auto* text = std::get_if<Bytes>(&value);
    return text != nullptr && expected == ToHex(*text);
}

std::vector<nlohmann::json> Walks() {
    std::vector<nlohmann::json> walks(Vectors()["records"]["walks"].begin(),
                                      Vectors()["records"]["walks"].end());
    walks.push_back(Vectors()["records"]["disputed"][0]);  // a value cut short is not entered
    return walks;
}

TEST(PayloadReader, KnownWalks) {
    for (const auto& walk : Walks()) {
        const Bytes payload = Payload(walk);
        PayloadReader reader(payload);
        RawField field;
        for (const auto& expected : walk["fields"]) {
            ASSERT_TRUE(reader.Next(field)) << walk["note"];
            EXPECT_EQ(field.number, expected["number"].get<int>()) << walk["note"];
            EXPECT_EQ(field.tag, expected["tag"].get<int>()) << walk["note"];
            EXPECT_TRUE(Same(DecodeRaw(field), expected["value"])) << walk["note"];
        }
        EXPECT_FALSE(reader.Next(field)) << walk["note"];
        const std::string end = walk.value("walk_ends", "cut short");
        EXPECT_EQ(reader.Clean(), end == "end" || end == "empty record") << walk["note"];
    }
}

TEST(DecodeRecord, FillsByNumberTheLastOneWins) {
    Keys keys;
    for (const auto& walk : Walks()) {
        std::vector<Value> fields(12, Value(7));
        const std::vector<Value> before = fields;
        DecodeRecord(fields, Payload(walk), false, keys.cipher);
        if (Payload(walk).empty()) {
            EXPECT_EQ(fields, before);
            continue;
        }
        std::vector<Value> expected(12, Value(Bytes()));
        const Bytes payload = Payload(walk);
        PayloadReader reader(payload);
        for (RawField field; reader.Next(field); expected[field.number] = DecodeRaw(field))
            if (field.number >= expected.size()) expected.resize(field.number + 1U, Value(Bytes()));
        EXPECT_EQ(fields, expected) << walk["note"];
        EXPECT_EQ(fields.size(), walk["note"] == "number beyond the array" ? 201U : 12U);
    }
}

TEST(DecodeRecord, DeciphersUntrimmed) {
    Keys keys;
    // Field 32 begins and ends in bytes that trimming would take.
    const Bytes payload = Hex("200420202020") + Hex("2102") + " ";
    const Bytes cipher = cry::FieldCipher(keys.cipher, 1, payload);
    std::vector<Value> fields;
    DecodeRecord(fields, cipher, true, keys.cipher);
    ASSERT_EQ(fields.size(), 34U);
    EXPECT_EQ(fields[32], Value(0x20202020));
    EXPECT_EQ(fields[33], Value(32));
    EXPECT_EQ(GetRecordField(keys.cipher, cipher, 33), Value(32));
    EXPECT_EQ(GetRecordField(keys.cipher, cipher, 5), Value(Empty{}));

    // A payload of no fields is enciphered blanks.
    std::vector<Value> none(3, Value(true));
    DecodeRecord(none, cry::FieldCipher(keys.cipher, 1, Bytes()), true, keys.cipher);
    EXPECT_EQ(none, std::vector<Value>(3, Value(Bytes())));
}

TEST(DecodeRecord, NothingOfTheRecordBeforeIsReadWhereNothingCanBe) {
    Keys keys;
    const Bytes open = cry::FieldCipher(keys.cipher, 1, Hex("010100"));
    EXPECT_FALSE(IsRecordPrivate(keys.cipher, open, 14));
    EXPECT_TRUE(IsRecordPrivate(keys.cipher, "", 14));
    keys.cipher.Keystring.Wipe();
    EXPECT_TRUE(IsRecordPrivate(keys.cipher, open, 14));
    EXPECT_EQ(GetRecordField(keys.cipher, open, 1), Value(Empty{}));
}

TEST(DecodeRecord, DamageEndsQuietly) {
    Keys keys;
    const Bytes good = Payload(Walks()[5]);
    for (std::size_t cut = 0; cut < good.size(); ++cut) {
        std::vector<Value> fields(9);
        DecodeRecord(fields, good.substr(0, cut), false, keys.cipher);
        EXPECT_EQ(fields.size(), 9U);
    }
    const Bytes cipher = cry::FieldCipher(keys.cipher, 1, good);
    for (std::size_t bit = 0; bit < cipher.size() * 8; ++bit) {
        Bytes bad = cipher;
        bad[bit / 8] = static_cast<char>(bad[bit / 8] ^ (1 << bit % 8));
        std::vector<Value> fields;
        DecodeRecord(fields, bad, true, keys.cipher);
        EXPECT_LE(fields.size(), 256U);
    }
}

TEST(DecodeValue, NothingGivesNullAndAHalfValueNothing) {
    for (int tag = 0; tag < 30; ++tag) {
        EXPECT_EQ(DecodeValue("", static_cast<FieldTag>(tag)), Value(Null{}));
        EXPECT_EQ(DecodeValue(std::string_view("\xFF", 1), static_cast<FieldTag>(tag)), tag == 1 ? Value(true)
                                                                                        : tag == 2
                                                                                            ? Value(255)
                                                                                            : Value(Empty{}))
            << tag;
    }
    EXPECT_EQ(DecodeField(""), Value(Null{}));
    EXPECT_EQ(DecodeField(Hex("0a0161")), Value(Bytes("a")));
}

TEST(IsRecordPrivate, KnownAnswers) {
    Keys keys;
    std::vector<nlohmann::json> cases(Vectors()["records"]["IsRecordPrivate"].begin(),
                                      Vectors()["records"]["IsRecordPrivate"].end());
    cases.push_back(Vectors()["records"]["disputed"][1]);
    for (const auto& entry : cases)
        EXPECT_EQ(IsRecordPrivate(keys.cipher, Hex(entry["cipher"].get<std::string>()), entry["section"]),
                  entry["private"].get<bool>())
            << entry;
}

}  // namespace
}  // namespace bmr::store
