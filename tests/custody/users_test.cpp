#include "custody/users.h"

#include "custody/keyrecords.h"
#include "custody/passphrase.h"
#include "store/record_put.h"
#include "support/data.h"
#include "support/sitting.h"

namespace bmr::custody {

using namespace store;
namespace {

using test::kPassphrase;
using test::Sitting;

/// Adds a user beside Admin to the open database, with a passphrase of their own for the same master key.
void AddUser(Sitting& sitting, std::uint8_t number, const std::string& passphrase) {
    Session& session = sitting.session;
    session.PassHash = cry::HashPassphrase(kPassphrase);
    ASSERT_EQ(FindUser(session), 0);
    session.PassHash = cry::HashPassphrase(passphrase);
    session.PassHashStrong = cry::HashStrong(passphrase);
    session.user = CurrentUser();
    session.user.UserNumber = number;
    session.user.UserName = "Second";
    session.user.PwVerifier = Bytes(cry::HashStrong(session.PassHash.view()).view());
    session.user.WrappedKey =
        cry::PassEncrypt(sitting.random, session.MasterKey.view(), session.PassHash.view());
    ASSERT_EQ(WriteUser(session), 0);
    ASSERT_EQ(SetDefaultPin(session), 0);
    WipeHashes(session);
}

TEST(Users, EachPassphraseOpensItsOwnRowAndTheSameKeystring) {
    Sitting sitting;
    sitting.Make();
    const Bytes keystring(sitting.session.cipher.Keystring.view());
    AddUser(sitting, 7, "second Person 2");
    const std::int32_t second = sitting.session.user.fPK;
    sitting.Close();

    ASSERT_EQ(sitting.Open("second Person 2"), 0);
    EXPECT_EQ(sitting.session.user.fPK, second);
    EXPECT_EQ(sitting.session.user.UserNumber, 7);
    EXPECT_EQ(sitting.session.user.UserName, "Second");
    EXPECT_EQ(sitting.session.cipher.Keystring.view(), keystring);
    EXPECT_EQ(sitting.registry.values["User/LastUser"], "Second");

    // A change of passphrase to the other user's keeps to the own row.
    sitting.prompter.Type("second Person 2").Type(kPassphrase);
    EXPECT_EQ(ChangePassphrase(sitting.session), PassphraseChange::Changed);
    EXPECT_EQ(sitting.session.user.fPK, second);
    const auto before = test::RowsOf(*sitting.session.ProgramDb, " WHERE fSec=2 And fSub=0");
    sitting.prompter.Type(kPassphrase).Type("second Person 3");
    EXPECT_EQ(ChangePassphrase(sitting.session), PassphraseChange::Changed);
    EXPECT_EQ(test::RowsOf(*sitting.session.ProgramDb, " WHERE fSec=2 And fSub=0"), before);
    sitting.Close();

    ASSERT_EQ(sitting.Open(), 0);
    EXPECT_EQ(sitting.session.user.UserName, "Admin");
    EXPECT_EQ(sitting.session.cipher.Keystring.view(), keystring);
    sitting.Close();
}

TEST(Users, NoUserRowEndsTheProgram) {
    Sitting sitting;
    sitting.Make();
    sitting.Close();
    sitting.Execute("DELETE * FROM tt WHERE fSec=2");
    sitting.prompter.Expect(96);
    EXPECT_EQ(sitting.Open(), kQuitProgram);
}

TEST(VerifyUser, WorksWithAnyCountOfBytesBehindTheVerifier) {
    Sitting sitting;
    sitting.Make();
    for (const int extra : {0, 5, 23}) {
        auto rows = sitting.session.ProgramDb->OpenRecordset("tt");
        engine::Recordset& row = **rows;
        ASSERT_EQ(row.FindFirst("fSec=2"), 0);
        const Bytes verifier = TextOf(row.Field("fT3")).substr(0, 24);
        row.Edit();
        row.SetField("fT3", verifier + cry::RandomBytes(sitting.random, extra));
        ASSERT_EQ(row.Update(), 0);
        sitting.prompter.Type(kPassphrase);
        EXPECT_TRUE(VerifyUser(sitting.session, "Enter Passphrase")) << extra;
        sitting.prompter.Type("correct Horse 8").Expect(85);
        EXPECT_FALSE(VerifyUser(sitting.session, "Enter Passphrase")) << extra;
    }
    EXPECT_EQ(sitting.prompter.pauses, 3);
    sitting.prompter.Type(std::nullopt);
    EXPECT_FALSE(VerifyUser(sitting.session, "Enter Passphrase"));
    EXPECT_EQ(sitting.prompter.pauses, 3);
    EXPECT_TRUE(sitting.session.PassHash.empty());
    sitting.Close();
}

TEST(Pin, DefaultFollowsFromThePassphrase) {
    int tried = 0;
    const auto answers = test::LoadVectors("format.json")["DefaultPin"];
    for (const auto& answer : answers) {
        const Bytes passphrase = test::Hex(answer["passphrase"]);
        if (passphrase.size() < 8 || ++tried > 6) continue;
        Sitting sitting;
        sitting.Make(passphrase);
        EXPECT_EQ(sitting.session.pin.Pin.view(), answer["pin"].get<std::string>());
        EXPECT_EQ(sitting.session.pin.PinKind, 0);
        EXPECT_EQ(sitting.session.pin.PinApp, 0);
        EXPECT_FALSE(sitting.session.pin.PINeveryaccess);
        sitting.Close();
    }
    EXPECT_GE(tried, 3);
}

TEST(Pin, AnyCharactersAndLengthComeBack) {
    Sitting sitting;
    sitting.Make();
    for (const Bytes& pin : {Bytes("  12 "), Bytes("\0\xFF\x80", 3), Bytes(300, 'p')}) {
        ASSERT_EQ(WritePin(sitting.session, 1, pin, 0x21, true), 0);
        sitting.session.pin = PinRecord();
        ASSERT_EQ(LoadPin(sitting.session), 0);
        EXPECT_EQ(sitting.session.pin.Pin.view(), pin);
        EXPECT_EQ(sitting.session.pin.PinKind, 1);
        EXPECT_EQ(sitting.session.pin.PinApp, 0x21);
        EXPECT_TRUE(sitting.session.pin.PINeveryaccess);
    }
    EXPECT_NE(WritePin(sitting.session, 1, Bytes(65001, 'p'), 0, false), 0);
    EXPECT_EQ(sitting.session.pin.Pin.size(), 300u);

    sitting.prompter.Type(Bytes(300, 'p')).Type("1").Expect(125).Type(std::nullopt);
    EXPECT_EQ(PinPrompt(sitting.session, "Tasks"), PinAnswer::Right);
    EXPECT_EQ(PinPrompt(sitting.session, "Tasks"), PinAnswer::Wrong);
    EXPECT_EQ(PinPrompt(sitting.session, "Tasks"), PinAnswer::Cancelled);
    EXPECT_EQ(sitting.prompter.requests.back().prompt, "Enter PIN:");
    EXPECT_EQ(sitting.prompter.requests.back().clearCaption, "Show PIN in clear");

    ASSERT_EQ(sitting.session.ProgramDb->Execute("DELETE * FROM tt WHERE fSec=2"), 0);
    sitting.prompter.Expect(109);
    EXPECT_EQ(WritePin(sitting.session, 1, "12", 0, false), kQuitProgram);
    sitting.Close();
}

TEST(Pin, OneThatWasNeverSetIsMadeWithoutAnotherQuestion) {
    Sitting sitting;
    sitting.Make();
    const Bytes standard(sitting.session.pin.Pin.view());
    Bytes payload;
    AppendField(payload, 0, 1, FieldTag::Byte, sitting.random);
    AppendField(payload, 1, Bytes(), FieldTag::Text, sitting.random);
    AppendField(payload, 2, 0x1F, FieldTag::Int32, sitting.random);
    AppendField(payload, 3, true, FieldTag::Boolean, sitting.random);
    const Bytes emptyPin = cry::FieldCipher(sitting.session.cipher, 1, std::string_view(payload));
    ASSERT_GT(emptyPin.size(), 24U);
    sitting.Close();
    for (const Value& stored : {Value(Null{}), Value(Bytes("0")), Value(Bytes(8, 'n')), Value(Bytes(16, 'n')),
                                Value(Bytes(24, 'n')), Value(emptyPin)}) {
        sitting.Edit("fSec=2", [&](engine::Recordset& row) { row.SetField("fT2", stored); });
        ASSERT_EQ(sitting.Open(), 0) << TextOf(stored);
        EXPECT_EQ(sitting.session.pin.Pin.view(), standard);
        EXPECT_EQ(sitting.session.pin.PinApp, 0);
        EXPECT_FALSE(sitting.session.pin.PINeveryaccess || sitting.session.pin.Unread);
        EXPECT_TRUE(sitting.session.PassHashStrong.empty());
        sitting.session.pin = PinRecord();
        ASSERT_EQ(LoadPin(sitting.session), 0) << "it stands in the file";
        EXPECT_EQ(sitting.session.pin.Pin.view(), standard);
        sitting.Close();
    }
}

TEST(Pin, OneThatLacksAFieldOrHasItInAnotherFormDoesNotDecode) {
    Sitting sitting;
    sitting.Make();
    struct Part {
        Value value;
        FieldTag tag;
        Value odd;
        FieldTag oddTag;
    };
    const Part parts[] = {{1, FieldTag::Byte, Bytes("1"), FieldTag::Text},
                          {Bytes("4711"), FieldTag::Text, 4711, FieldTag::Int32},
                          {3, FieldTag::Int32, 3, FieldTag::Byte},
                          {true, FieldTag::Boolean, 1, FieldTag::Byte}};
    for (std::size_t wrong = 0; wrong <= std::size(parts); ++wrong) {
        for (const bool odd : {false, true}) {
            Bytes payload;
            for (std::size_t i = 0; i < std::size(parts); ++i) {
                if (i == wrong && !odd) continue;
                AppendField(payload, static_cast<std::uint8_t>(i), i == wrong ? parts[i].odd : parts[i].value,
                            i == wrong ? parts[i].oddTag : parts[i].tag, sitting.random);
            }
            auto rows = sitting.session.ProgramDb->OpenRecordset("tt");
            ASSERT_EQ((*rows)->FindFirst("fSec=2"), 0);
            (*rows)->Edit();
            (*rows)->SetField("fT2", cry::FieldCipher(sitting.session.cipher, 1, std::string_view(payload)));
            ASSERT_EQ((*rows)->Update(), 0);
            ASSERT_EQ(LoadPin(sitting.session), 0);
            EXPECT_EQ(sitting.session.pin.Unread, wrong < std::size(parts))
                << "field " << wrong << ", " << odd;
        }
    }
    EXPECT_TRUE(sitting.session.pin.PINeveryaccess);
    EXPECT_EQ(sitting.session.pin.Pin.view(), "4711");
    sitting.Close();
}

TEST(Pin, OneThatDoesNotDecodeIsLeftUntilTheUserWantsAnother) {
    Sitting sitting;
    sitting.Make();
    const Bytes standard(sitting.session.pin.Pin.view());
    ASSERT_EQ(WritePin(sitting.session, 1, "4711", 1, true), 0);
    sitting.Close();
    Bytes cut = TextOf(sitting.Rows(" WHERE fSec=2").at(0).at("fT2"));
    cut.resize(cut.size() - 8);
    const auto stored = [&] { return TextOf(sitting.Rows(" WHERE fSec=2").at(0).at("fT2")); };
    for (const Bytes& damaged : {Bytes(42, 'n'), cut, Bytes(7, 'n')}) {
        sitting.Edit("fSec=2", [&](engine::Recordset& row) { row.SetField("fT2", damaged); });
        ASSERT_EQ(sitting.Open(), 0) << "and asks nothing";
        EXPECT_TRUE(sitting.session.pin.Unread);
        EXPECT_TRUE(sitting.session.pin.Pin.empty());
        sitting.Close();
        EXPECT_EQ(stored(), damaged);
    }
    ASSERT_EQ(sitting.Open(), 0);
    sitting.prompter.Type("somebody else").Expect(85).Type(kPassphrase);
    EXPECT_EQ(SetDefaultPin(sitting.session), -85);
    EXPECT_TRUE(sitting.session.pin.Unread);
    EXPECT_EQ(SetDefaultPin(sitting.session), 0);
    EXPECT_FALSE(sitting.session.pin.Unread);
    EXPECT_EQ(sitting.session.pin.Pin.view(), standard);
    sitting.Close();
    ASSERT_EQ(sitting.Open(), 0);
    EXPECT_FALSE(sitting.session.pin.Unread);
    sitting.Close();

    sitting.Edit("fSec=2", [&](engine::Recordset& row) { row.SetField("fT2", cut); });
    ASSERT_EQ(sitting.Open(), 0);
    sitting.prompter.Type(kPassphrase).Type("another Horse 8");
    EXPECT_EQ(ChangePassphrase(sitting.session), PassphraseChange::Changed);
    EXPECT_FALSE(sitting.session.pin.Unread);
    sitting.Close();
    EXPECT_NE(stored(), cut);
}

}  // namespace
}  // namespace bmr::custody
