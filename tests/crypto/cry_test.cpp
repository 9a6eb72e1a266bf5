#include "crypto/cry.h"

#include <gtest/gtest.h>

#include "support/data.h"
#include "support/random.h"

namespace bmr::cry {
namespace {

using test::Hex;

const nlohmann::json& Vectors() {
    static const nlohmann::json vectors = test::LoadVectors("format.json");
    return vectors;
}

Bytes Field(const nlohmann::json& entry, const char* name) {
    return Hex(entry.at(name).get<std::string>());
}

TEST(Hashes, KnownAnswers) {
    for (const auto& entry : Vectors()["hashes"]) {
        EXPECT_EQ(HashPassphrase(Field(entry, "text")).view(), Field(entry, "HashPassphrase"));
        EXPECT_EQ(HashStrong(Field(entry, "text")).view(), Field(entry, "HashStrong"));
    }
    for (const auto& entry : Vectors()["DefaultPin"])
        EXPECT_EQ(DefaultPin(Field(entry, "PassHashStrong")), entry["pin"].get<std::string>());
    for (const auto& entry : Vectors()["DeriveKey"])
        EXPECT_EQ(DeriveKey(Field(entry, "pass"), entry["length"], Field(entry, "salt"), entry["iterations"])
                      .view(),
                  Field(entry, "key"));
}

TEST(FieldKeys, KnownAnswers) {
    for (const char* group : {"SelectFieldKey", "SelectFieldKey_short_keystring"}) {
        test::SeededRandom random;
        CipherState state(random);
        state.Keystring = Secret(Field(Vectors()[group], "keystring"));
        for (const auto& entry : Vectors()[group]["cases"]) {
            SelectFieldKey(state, entry["selector"]);
            EXPECT_EQ(state.FieldKey.view(), Field(entry, "key")) << group << entry["selector"];
        }
    }
}

TEST(FieldCipherMode1, KnownAnswers) {
    for (const auto& entry : Vectors()["FieldCipher"]["mode1"]) {
        test::ScriptedRandom random;
        random.uniforms.push_back((entry["selector"].get<double>() + 0.5) / 65536);
        if (!entry["spaces_drawn"].is_null())
            random.uniforms.push_back((entry["spaces_drawn"].get<double>() + 0.5) / 13);
        random.AddBytes(Field(entry, "iv"));
        CipherState state(random);
        state.Keystring = Secret(Field(Vectors()["FieldCipher"], "keystring"));
        EXPECT_EQ(ToHex(FieldCipher(state, 1, Field(entry, "text"))), entry["cipher"].get<std::string>());
    }
}

TEST(FieldCipherMode2, KnownAnswers) {
    test::SeededRandom random;
    CipherState state(random);
    state.Keystring = Secret(Field(Vectors()["FieldCipher"], "keystring"));
    for (const auto& entry : Vectors()["FieldCipher"]["mode2"]) {
        EXPECT_EQ(ToHex(FieldCipher(state, 2, Field(entry, "cipher"))), entry["result"].get<std::string>())
            << entry["note"];
        EXPECT_EQ(ToHex(state.FieldPlain.view()), entry["FieldPlain"].get<std::string>()) << entry["note"];
    }
}

TEST(FieldCipherModes3And4, KnownAnswersAndTheMissingKeyMessage) {
    for (const auto& entry : Vectors()["FieldCipher"]["mode3_and_4"]) {
        test::ScriptedRandom random;
        if (!entry["spaces_drawn"].is_null())
            random.uniforms.push_back((entry["spaces_drawn"].get<double>() + 0.5) / 13);
        random.AddBytes(Field(entry, "iv"));
        CipherState state(random);
        state.FieldKey = Secret(Field(entry, "field_key"));
        const Bytes cipher = FieldCipher(state, 3, Field(entry, "text"));
        EXPECT_EQ(ToHex(cipher), entry["cipher"].get<std::string>());
        EXPECT_EQ(ToHex(FieldCipher(state, 4, cipher)), entry["mode4"].get<std::string>());
    }
    test::SeededRandom random;
    CipherState state(random);
    int shown = 0;
    state.showMessage = [&shown](int number) { shown = number; };
    EXPECT_FALSE(FieldCipher(state, 3, Bytes("text")).empty());
    EXPECT_EQ(shown, 34);
}

TEST(FieldCipherWithoutKeys, GivesNothingAndSaysNothing) {
    test::SeededRandom random;
    CipherState state(random);
    EXPECT_EQ(FieldCipher(state, 1, Bytes("text")), "");
    EXPECT_EQ(FieldCipher(state, 2, Bytes(18, 'x')), "");
    state.Keystring = Secret(RandomBytes(random, 256));
    EXPECT_EQ(FieldCipher(state, 1, Value(Empty{})), "");
    EXPECT_GE(FieldCipher(state, 1, Value(Null{})).size(), 18U);
}

TEST(PassCipher, KnownAnswers) {
    for (const auto& entry : Vectors()["PassCipher"]["good"]) {
        test::ScriptedRandom random;
        random.AddBytes(Field(entry, "salt"));
        EXPECT_EQ(ToHex(PassEncrypt(random, Field(entry, "text"), Field(entry, "pass"))),
                  entry["cipher"].get<std::string>());
    }
    for (const char* group : {"good", "other"})
        for (const auto& entry : Vectors()["PassCipher"][group])
            EXPECT_EQ(ToHex(PassDecrypt(Field(entry, "cipher"), Field(entry, "pass")).view()),
                      entry["plain"].get<std::string>())
                << entry;
    EXPECT_TRUE(PassDecrypt("", "pass").empty());
    EXPECT_TRUE(PassDecrypt(Bytes(16, 'x'), "pass").empty());
}

TEST(VerifierCipher, KnownAnswers) {
    for (const auto& entry : Vectors()["VerifierCipher"]["cases"]) {
        EXPECT_EQ(ToHex(VerifierEncrypt(Field(entry, "text"), Field(entry, "pass"))),
                  entry["cipher"].get<std::string>());
        EXPECT_EQ(
            ToHex(
                VerifierDecrypt(Field(entry, "cipher") + Field(entry, "tail"), Field(entry, "pass")).view()),
            entry["plain"].get<std::string>())
            << entry;
    }
    EXPECT_TRUE(VerifierDecrypt(Bytes(23, 'x'), "pass").empty());
    EXPECT_TRUE(VerifierDecrypt(Bytes(24, 'x'), "pass").empty());
}

TEST(Wiping, EmptiesWhatItIsGiven) {
    Bytes text = "a secret that is longer than the inline buffer";
    const char* memory = text.data();
    WipeString(text);
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(std::string_view(memory + 1, 8), std::string_view("\0\0\0\0\0\0\0\0", 8));
    Secret secret(std::string_view("key"));
    WipeBytes(secret);
    EXPECT_TRUE(secret.empty());
}

}  // namespace
}  // namespace bmr::cry
