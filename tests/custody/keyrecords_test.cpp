#include "custody/keyrecords.h"

#include <algorithm>

#include "custody/passphrase.h"
#include "custody/users.h"
#include "store/record_get.h"
#include "support/sitting.h"

namespace bmr::custody {

using namespace store;
namespace {

using test::kPassphrase;
using test::Sitting;

Bytes BytesOf(const test::RowValues& row, const char* name) {
    return TextOf(row.at(name));
}

/// The keys of a database, opened by hand from its rows.
struct Chain {
    Secret passHash;
    Secret masterKey;
    Secret mark;  ///< HashPassphrase(masterKey)
    Secret keystring;
};

Chain Unwrap(Sitting& sitting, const std::string& passphrase) {
    Chain chain;
    chain.passHash = cry::HashPassphrase(passphrase);
    const auto user = sitting.Rows(" WHERE fSec=2").at(0);
    const Secret payload = cry::PassDecrypt(BytesOf(user, "fEtx"), chain.passHash.view());
    chain.masterKey = cry::PassDecrypt(TextOf(GetPayloadField(payload.view(), 2)), chain.passHash.view());
    chain.mark = cry::HashPassphrase(chain.masterKey.view());
    chain.keystring = cry::PassDecrypt(BytesOf(sitting.Rows(" WHERE fSec=1 And fSub=1").at(0), "fEtx"),
                                       chain.masterKey.view());
    return chain;
}

bool HoldsNoSecret(const Session& session) {
    return session.PassHash.empty() && session.PassHashStrong.empty() && session.MasterKey.empty() &&
           session.user.PwVerifier.empty() && session.user.WrappedKey.empty();
}

TEST(CreateKeys, WritesTheChainFromPassphraseToKeystring) {
    Sitting sitting;
    sitting.Make();
    const Bytes keystring(sitting.session.cipher.Keystring.view());
    EXPECT_TRUE(HoldsNoSecret(sitting.session));
    EXPECT_EQ(sitting.session.user.UserName, "Admin");
    EXPECT_TRUE(sitting.session.DatabaseOpen);
    sitting.Close();
    EXPECT_TRUE(sitting.session.cipher.Keystring.empty());
    EXPECT_TRUE(sitting.session.cipher.FieldKey.empty());
    EXPECT_TRUE(sitting.session.pin.Pin.empty());

    const Chain chain = Unwrap(sitting, kPassphrase);
    EXPECT_EQ(chain.masterKey.size(), 43u);
    EXPECT_EQ(chain.keystring.view(), keystring);
    EXPECT_EQ(keystring.size(), 256u);
    const auto rows = sitting.Rows(" WHERE fSec=1 And fSub<3 ORDER BY fSub");
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(BytesOf(rows[0], "fT1"), chain.mark.view());
    EXPECT_EQ(rows[0].at("AE"), Value(1));
    const Secret outer = cry::PassDecrypt(BytesOf(rows[1], "fEtx"), chain.mark.view());
    EXPECT_EQ(cry::PassDecrypt(outer.view(), chain.masterKey.view()).view(), keystring);
    EXPECT_NE(BytesOf(rows[1], "fT1"), chain.mark.view());
    // Beside them the user, the system record, and the settings of the first opening.
    EXPECT_EQ(sitting.Rows().size(), 5u);
}

TEST(Login, KeepsNoHashAndOpensTheSameKeystring) {
    Sitting sitting;
    sitting.Make();
    const Bytes keystring(sitting.session.cipher.Keystring.view());
    sitting.Close();
    ASSERT_EQ(sitting.Open(), 0);
    EXPECT_EQ(sitting.session.cipher.Keystring.view(), keystring);
    EXPECT_TRUE(HoldsNoSecret(sitting.session));
    EXPECT_EQ(sitting.prompter.requests.back().title, "Database: TEST.BMR");
    EXPECT_EQ(sitting.prompter.requests.back().prompt, "Enter Passphrase");
    EXPECT_FALSE(sitting.prompter.requests.back().confirm);
    EXPECT_EQ(sitting.registry.values["User/LastUser"], "Admin");
    EXPECT_EQ(sitting.registry.values["MostRecentFiles/1"], sitting.file.string());
    sitting.Close();
}

TEST(Login, ThreePromptsThenTheEndWithAPauseAfterEach) {
    Sitting sitting;
    sitting.Make();
    sitting.Close();
    // Short and wrong ones count together; the third has no Retry.
    sitting.prompter.Type("wrong one").Expect(85, Answer::Retry).Type("short").Expect(40, Answer::Retry);
    sitting.prompter.Type("wrong again").Expect(85);
    EXPECT_EQ(sitting.OpenFile(), kQuitProgram);
    EXPECT_EQ(sitting.prompter.pauses, 3);
    EXPECT_EQ(sitting.prompter.shown[0].buttons, Buttons::RetryCancel);
    EXPECT_EQ(sitting.prompter.shown[2].buttons, Buttons::Ok);
    EXPECT_FALSE(sitting.session.ProgramDb);
    EXPECT_TRUE(HoldsNoSecret(sitting.session));
    EXPECT_NE(std::find(sitting.prompter.comments.begin(), sitting.prompter.comments.end(), "Stand By"),
              sitting.prompter.comments.end());

    // A new opening counts anew; the right one after a failure opens.
    sitting.prompter.Type("wrong one").Expect(85, Answer::Retry).Type(kPassphrase);
    EXPECT_EQ(sitting.OpenFile(), 0);
    sitting.Close();

    sitting.prompter.Type("wrong one").Expect(85, Answer::Cancel);
    EXPECT_EQ(sitting.OpenFile(), kQuitProgram);
    EXPECT_EQ(sitting.prompter.pauses, 5);

    sitting.prompter.Type(std::nullopt);
    EXPECT_EQ(sitting.OpenFile(), -98);
    EXPECT_EQ(sitting.prompter.pauses, 5);
    EXPECT_TRUE(HoldsNoSecret(sitting.session));
    EXPECT_TRUE(sitting.session.DatabasePath.empty());
}

TEST(ChangePassphrase, RewritesTheUsersRowAndNothingElse) {
    Sitting sitting;
    sitting.Make();
    ASSERT_EQ(WritePin(sitting.session, 1, "4711", 3, true), 0);
    const auto before = test::RowsOf(*sitting.session.ProgramDb);
    sitting.prompter.Type(kPassphrase).Type("another Horse 10");
    EXPECT_EQ(ChangePassphrase(sitting.session), PassphraseChange::Changed);
    EXPECT_TRUE(sitting.prompter.requests.back().confirm);
    EXPECT_TRUE(sitting.prompter.requests.back().checkQuality);
    EXPECT_TRUE(HoldsNoSecret(sitting.session));
    EXPECT_EQ(sitting.session.pin.PinApp, 0);

    const auto after = test::RowsOf(*sitting.session.ProgramDb);
    ASSERT_EQ(after.size(), before.size());
    int changed = 0;
    for (std::size_t i = 0; i < after.size(); ++i) {
        if (after[i] == before[i]) continue;
        ++changed;
        EXPECT_EQ(after[i].at("fSec"), Value(2));
        EXPECT_EQ(after[i].at("AE"), Value(3));
    }
    EXPECT_EQ(changed, 1);
    sitting.Close();

    sitting.prompter.Type(kPassphrase).Expect(85, Answer::Retry).Type("another Horse 10");
    EXPECT_EQ(sitting.OpenFile(), 0);
    EXPECT_EQ(sitting.session.pin.PinApp, 0);
    sitting.Close();
}

TEST(ChangePassphrase, LeavesEverythingWhenRefusedOrCancelled) {
    Sitting sitting;
    sitting.Make();
    const auto before = test::RowsOf(*sitting.session.ProgramDb);
    sitting.prompter.Type("not the one").Expect(85);
    EXPECT_EQ(ChangePassphrase(sitting.session), PassphraseChange::Unverified);
    sitting.prompter.Type(std::nullopt);
    EXPECT_EQ(ChangePassphrase(sitting.session), PassphraseChange::Unverified);
    sitting.prompter.Type(kPassphrase).Type(std::nullopt).Expect(124);
    EXPECT_EQ(ChangePassphrase(sitting.session), PassphraseChange::Unchanged);
    // Too short until the attempts are used up: the database stays open.
    sitting.prompter.Type(kPassphrase)
        .Type("a")
        .Expect(40, Answer::Retry)
        .Type("b")
        .Expect(40, Answer::Retry);
    sitting.prompter.Type("c").Expect(40).Expect(124);
    EXPECT_EQ(ChangePassphrase(sitting.session), PassphraseChange::Unchanged);
    EXPECT_EQ(test::RowsOf(*sitting.session.ProgramDb), before);
    EXPECT_TRUE(HoldsNoSecret(sitting.session));
    EXPECT_TRUE(sitting.session.DatabaseOpen);
    sitting.Close();
}

TEST(LoadKeys, LostKeystringEndsWithTheNumberOfTheCopy) {
    Sitting sitting;
    sitting.Make();
    sitting.Close();
    const std::string whole = test::FileBytes(sitting.file);
    const auto endsWith = [&](const std::string& number) {
        sitting.prompter.Expect(83);
        EXPECT_EQ(sitting.Open(), kQuitProgram);
        EXPECT_EQ(sitting.prompter.shown.back().text, "Fatal Error #" + number);
        EXPECT_TRUE(HoldsNoSecret(sitting.session));
        EXPECT_TRUE(sitting.session.cipher.Keystring.empty());
    };
    sitting.Execute("DELETE * FROM tt WHERE fSec=1 And fSub=1");
    endsWith("106");
    EXPECT_TRUE(sitting.Rows(" WHERE fSec=1 And fSub=1").empty());

    test::WriteFile(sitting.file, whole);
    sitting.Edit("fSec=1 And fSub=1", [](engine::Recordset& row) { row.SetField("fEtx", Bytes(288, 'x')); });
    endsWith("106");

    sitting.Execute("DELETE * FROM tt WHERE fSec=1 And fSub=2");
    endsWith("105");
}

TEST(LoadKeys, CopyUnderThePassphraseRepairsTheKeystringRow) {
    Sitting sitting;
    sitting.Make();
    sitting.Close();
    const Chain chain = Unwrap(sitting, kPassphrase);
    const auto recoverable = [&](engine::Recordset& row) {
        const Bytes inner = cry::PassEncrypt(sitting.random, chain.keystring.view(), chain.passHash.view());
        row.SetField("fEtx", cry::PassEncrypt(sitting.random, inner, chain.mark.view()));
    };
    sitting.Edit("fSec=1 And fSub=2", recoverable);
    sitting.Execute("DELETE * FROM tt WHERE fSec=1 And fSub=1");
    ASSERT_EQ(sitting.Open(), 0);
    EXPECT_EQ(sitting.session.cipher.Keystring.view(), chain.keystring.view());
    sitting.Close();
    auto row = sitting.Rows(" WHERE fSec=1 And fSub=1").at(0);
    EXPECT_EQ(row.at("AE"), Value(1));
    EXPECT_EQ(BytesOf(row, "fT1"), chain.mark.view());
    EXPECT_EQ(cry::PassDecrypt(BytesOf(row, "fEtx"), chain.masterKey.view()).view(), chain.keystring.view());

    sitting.Edit("fSec=1 And fSub=1",
                 [](engine::Recordset& damaged) { damaged.SetField("fEtx", Bytes("gone")); });
    ASSERT_EQ(sitting.Open(), 0);
    sitting.Close();
    row = sitting.Rows(" WHERE fSec=1 And fSub=1").at(0);
    EXPECT_EQ(row.at("AE"), Value(3));
    EXPECT_EQ(cry::PassDecrypt(BytesOf(row, "fEtx"), chain.masterKey.view()).view(), chain.keystring.view());
}

}  // namespace
}  // namespace bmr::custody
