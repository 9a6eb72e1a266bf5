#include "custody/lifecycle.h"

#include <algorithm>

#include "custody/openfailure.h"
#include "custody/passphrase.h"
#include "custody/systemrecord.h"
#include "custody/users.h"
#include "store/privatefilter.h"
#include "store/record_get.h"
#include "store/record_put.h"
#include "support/full_disk.h"
#include "support/sitting.h"

namespace bmr::custody {

using namespace store;
namespace {

namespace fs = std::filesystem;
using test::kPassphrase;
using test::Sitting;

const char* const kSystemRow = "fSec=1 And fSub=3";

/// Puts `payload` into the system record of the open database.
void SetSystemPayload(Sitting& sitting, const Bytes& payload) {
    auto rows = sitting.session.ProgramDb->OpenRecordset("tt");
    ASSERT_EQ((*rows)->FindFirst(kSystemRow), 0);
    ASSERT_FALSE((*rows)->NoMatch());
    (*rows)->Edit();
    (*rows)->SetField("fEtx", cry::FieldCipher(sitting.session.cipher, 1, std::string_view(payload)));
    ASSERT_EQ((*rows)->Update(), 0);
}

Bytes VersionPayload(Sitting& sitting, const Bytes& version) {
    Bytes payload;
    AppendField(payload, 0, Bytes(), FieldTag::Text, sitting.random);
    AppendField(payload, 2, version, FieldTag::Text, sitting.random);
    return payload;
}

Bytes SystemPayload(Session& session) {
    auto rows = session.ProgramDb->OpenRecordset("tt");
    EXPECT_EQ((*rows)->FindFirst(kSystemRow), 0);
    cry::FieldCipher(session.cipher, 2, TextOf((*rows)->Field("fEtx")));
    return Bytes(session.cipher.FieldPlain.view());
}

/// Lets the database go as a process that dies would, without the writes of a close.
void Drop(Sitting& sitting) {
    sitting.session.ProgramDb.reset();
    sitting.session.DatabaseOpen = false;
}

TEST(Version, LaterOnesAreRefusedUntouchedAndComparedAsNumbers) {
    const std::vector<std::pair<Bytes, bool>> cases{{"201", true},   {"99", true},   {" 200 ", true},
                                                    {"", true},      {"202", false}, {"1000", false},
                                                    {"201.5", false}};
    Sitting sitting;
    sitting.Make();
    sitting.Close();
    const std::string whole = test::FileBytes(sitting.file);
    for (const auto& [version, opens] : cases) {
        test::WriteFile(sitting.file, whole);
        ASSERT_EQ(sitting.Open(), 0);
        SetSystemPayload(sitting, VersionPayload(sitting, version));
        Drop(sitting);
        // A lost settings row and a duplicate would both be written at an opening.
        sitting.Execute("DELETE * FROM tt WHERE fSec=5");
        const std::string before = test::FileBytes(sitting.file);
        if (opens) {
            EXPECT_EQ(sitting.Open(), 0) << version;
            sitting.Close();
            continue;
        }
        sitting.prompter.Expect(94);
        EXPECT_EQ(sitting.Open(), kQuitProgram) << version;
        EXPECT_TRUE(test::FileBytes(sitting.file) == before) << version;
        EXPECT_TRUE(sitting.session.cipher.Keystring.empty());
    }
}

TEST(SystemRecord, LostOneComesBackAndReservedFieldsStay) {
    Sitting sitting;
    sitting.Make();
    sitting.Close();
    sitting.Execute("DELETE * FROM tt WHERE fSec=1 And fSub=3");
    ASSERT_EQ(sitting.Open(), 0);
    EXPECT_EQ(ReadDatabaseVersion(sitting.session), 201);
    Bytes expected;
    for (std::uint8_t number = 0; number <= 16; ++number)
        AppendField(expected, number, Bytes(number == 2 ? "201" : ""), FieldTag::Text, sitting.random);
    EXPECT_EQ(SystemPayload(sitting.session), expected);

    // Whatever stands in the others is kept, byte by byte, also a field that this version knows nothing of.
    Bytes found = VersionPayload(sitting, "150");
    AppendField(found, 5, std::int32_t{-7}, FieldTag::Int32, sitting.random);
    AppendField(found, 16, Bytes(700, 'd'), FieldTag::Memo, sitting.random);
    AppendField(found, 40, true, FieldTag::Boolean, sitting.random);
    SetSystemPayload(sitting, found);
    sitting.Close();
    ASSERT_EQ(sitting.Open(), 0);
    const Bytes kept = SystemPayload(sitting.session);
    EXPECT_EQ(GetPayloadField(kept, 2), Value(Bytes("201")));
    EXPECT_EQ(GetPayloadField(kept, 5), Value(-7));
    EXPECT_EQ(GetPayloadField(kept, 16), Value(Bytes(700, 'd')));
    EXPECT_EQ(GetPayloadField(kept, 40), Value(true));
    EXPECT_NE(kept.find(found.substr(found.size() - 3)), Bytes::npos);
    sitting.Close();
    EXPECT_EQ(sitting.Rows(" WHERE " + std::string(kSystemRow)).size(), 1u);
}

TEST(SystemRecord, WhatDoesNotDecodeIsNeverOverwritten) {
    Sitting sitting;
    sitting.Make();
    sitting.Close();
    const Bytes noise(66, 'n');
    sitting.Edit(kSystemRow, [&](engine::Recordset& row) { row.SetField("fEtx", noise); });
    sitting.Edit("fSec=5", [&](engine::Recordset& row) { row.SetField("fEtx", noise); });
    ASSERT_EQ(sitting.Open(), 0);
    sitting.Close();
    EXPECT_EQ(TextOf(sitting.Rows(" WHERE fSec=1 And fSub=3").at(0).at("fEtx")), noise);
    EXPECT_EQ(TextOf(sitting.Rows(" WHERE fSec=5").at(0).at("fEtx")), noise);
}

TEST(Opening, FileOfAnotherProgram) {
    Sitting sitting;
    fs::copy_file(std::string(BMR_TEST_DATA) + "/foreign.bmr", sitting.file);
    EXPECT_EQ(TestOpen(sitting.session, sitting.file), 0);
    ASSERT_EQ(sitting.Open(), 0);
    EXPECT_EQ(sitting.session.user.UserName, "Admin");
    EXPECT_EQ(sitting.session.pin.Pin.view(), "16886122");
    EXPECT_TRUE(sitting.session.ShowPrivate);
    EXPECT_EQ(ReadDatabaseVersion(sitting.session), 201);
    int tasks = 0;
    for (const auto& row : test::RowsOf(*sitting.session.ProgramDb, " WHERE fSec=15")) {
        EXPECT_FALSE(IsBlank(GetRecordField(sitting.session.cipher, TextOf(row.at("fEtx")), 0)));
        ++tasks;
    }
    EXPECT_EQ(tasks, 3);
    sitting.prompter.Type(kPassphrase);
    EXPECT_TRUE(VerifyUser(sitting.session, "Enter Passphrase"));
    sitting.session.confidentialKind = 7;
    sitting.Close();
    EXPECT_EQ(sitting.session.confidentialKind, 0) << "the next database has other records";
    EXPECT_EQ(sitting.Rows().size(), 22u);
}

TEST(Opening, DuplicatesGoAndTheFirstStays) {
    Sitting sitting;
    sitting.Make();
    const auto add = [&](std::int32_t section, const Value& fT1, std::int32_t mark) {
        auto rows = sitting.session.ProgramDb->OpenRecordset("tt");
        (*rows)->AddNew();
        (*rows)->SetField("fSec", section);
        (*rows)->SetField("fT1", fT1);
        (*rows)->SetField("fR1", mark);
        EXPECT_EQ((*rows)->Update(), 0);
    };
    add(15, Bytes("same\0text", 9), 1);
    add(15, Bytes("same\0other", 10), 2);
    add(15, Bytes("same\0text", 9), 3);
    add(14, Bytes("same\0text", 9), 4);  // another section
    add(15, Null(), 5);
    add(15, Null(), 6);
    add(9, Bytes("labels"), 7);
    add(9, Bytes("labels"), 8);  // no section's record
    add(15, Bytes("same\0text", 9), 9);
    sitting.Close();
    // A real copy has the key of the first as well.
    const fs::path aside = sitting.folder.Path() / "aside.bmr";
    ASSERT_EQ(engine::CreateStore(aside), 0);
    const auto copyTo = [](const fs::path& to) {
        return "INSERT INTO tt IN \"" + to.string() + "\" SELECT * FROM tt WHERE fR1=2";
    };
    sitting.Execute(copyTo(aside));
    auto other = engine::Database::Open(aside);
    ASSERT_TRUE(other);
    ASSERT_EQ((*other)->Execute(copyTo(sitting.file)), 0) << (*other)->LastError();
    ASSERT_EQ(sitting.Rows(" WHERE fR1=2").size(), 2u);
    ASSERT_EQ(sitting.Open(), 0);
    std::vector<std::int32_t> left;
    for (const auto& row : test::RowsOf(*sitting.session.ProgramDb, " WHERE fSec>8 And fR1<10"))
        left.push_back(NumberOf(row.at("fR1")));
    std::sort(left.begin(), left.end());
    EXPECT_EQ(left, (std::vector<std::int32_t>{1, 2, 4, 5, 6, 7, 8}));
    EXPECT_EQ(RemoveDuplicates(sitting.session), 0);
    sitting.Close();
}

TEST(TestOpen, TellsDamageAndLeavesTheFileAsItWas) {
    Sitting sitting;
    sitting.session.DatabasePath = "stale";
    EXPECT_EQ(TestOpen(sitting.session, ""), -1);
    EXPECT_EQ(TestOpen(sitting.session, sitting.folder.Path() / "none.bmr"), engine::EngineNumber::NotFound);
    EXPECT_TRUE(sitting.session.DatabasePath.empty());
    EXPECT_NE(TestOpen(sitting.session, sitting.folder.Path()), 0);

    for (const std::string& bytes : {std::string(), std::string("no database"), std::string(9000, 'x')}) {
        test::WriteFile(sitting.file, bytes);
        sitting.prompter.Expect(46, Answer::No);
        EXPECT_EQ(TestOpen(sitting.session, sitting.file), engine::EngineNumber::Damaged);
        EXPECT_EQ(sitting.prompter.shown.back().text.find("DB not usable (Error 103): no keystring.\n"), 0u);
        // Yes tries, and a file that cannot be repaired is asked about again.
        sitting.prompter.Expect(46, Answer::Yes).Expect(46, Answer::No);
        EXPECT_EQ(TestOpen(sitting.session, sitting.file), engine::EngineNumber::Damaged);
        EXPECT_TRUE(test::FileBytes(sitting.file) == bytes) << bytes.size() << " bytes";
        EXPECT_TRUE(sitting.session.DatabasePath.empty());
    }
}

TEST(TestOpen, ARepairTellsWhatItSavedAndKeepsTheDamagedFile) {
    Sitting sitting;
    sitting.Make();
    sitting.Close();
    const std::string whole = test::FileBytes(sitting.file);
    const std::string damaged = whole.substr(0, whole.size() - 4096);
    test::WriteFile(sitting.file, damaged);
    sitting.prompter.Expect(46, Answer::Yes).Expect(0);
    EXPECT_EQ(TestOpen(sitting.session, sitting.file), 0);
    EXPECT_NE(sitting.prompter.shown.back().text.find("\"test.damaged1.bmr\""), std::string::npos);
    EXPECT_TRUE(test::FileBytes(sitting.folder.Path() / "test.damaged1.bmr") == damaged);
    EXPECT_EQ(sitting.Open(), 0);
    sitting.Close();
}

TEST(OpenFileDialog, TellsWhyAFileIsNoDatabase) {
    Sitting sitting;
    test::WriteFile(sitting.file, "no database");
    sitting.prompter.files = {std::nullopt, sitting.file, sitting.folder.Path() / "none.bmr"};
    EXPECT_EQ(OpenFileDialog(sitting.session), -98);
    sitting.prompter.Expect(46, Answer::No).Expect(51);
    EXPECT_EQ(OpenFileDialog(sitting.session), engine::EngineNumber::Damaged);
    sitting.prompter.Expect(0);
    EXPECT_EQ(OpenFileDialog(sitting.session), engine::EngineNumber::NotFound);
    EXPECT_EQ(sitting.prompter.shown.back().text, ExplainOpenFailure(engine::EngineNumber::NotFound));
}

TEST(NewDatabase, ExistingFileGoesOnlyOnceThePassphraseStands) {
    Sitting sitting;
    const fs::path chosen = sitting.folder.Path() / "mine";  // gets its extension
    const fs::path full = sitting.folder.Path() / "mine.bmr";
    test::WriteFile(full, "what was there");
    auto& prompter = sitting.prompter;
    prompter.files = {std::nullopt, chosen, full, chosen};
    EXPECT_EQ(NewDatabase(sitting.session), -98);
    prompter.Expect(0, Answer::No);  // the dialog did not ask about the name with its extension
    EXPECT_EQ(NewDatabase(sitting.session), -98);
    prompter.Type("short").Expect(40, Answer::Cancel);
    EXPECT_EQ(NewDatabase(sitting.session), kQuitProgram);
    EXPECT_EQ(test::FileBytes(full), "what was there");
    EXPECT_TRUE(sitting.session.DatabasePath.empty());

    prompter.Expect(0, Answer::Yes).Type(kPassphrase);
    EXPECT_EQ(NewDatabase(sitting.session), 0);
    EXPECT_EQ(sitting.session.DatabasePath, full);
    EXPECT_EQ(prompter.requests.back().prompt, "New Passphrase (minimum 8 characters):");
    sitting.Close();
    EXPECT_NE(test::FileBytes(full), "what was there");
    sitting.file = full;
    EXPECT_EQ(sitting.Open(), 0);

    // A database that somebody has open is not deleted under their hands.
    test::ScriptedPrompter other;
    other.files = {full};
    other.Type(kPassphrase).Expect(0);
    Session second{{other, sitting.clock, sitting.random, sitting.registry}};
    EXPECT_EQ(NewDatabase(second), engine::EngineNumber::InUse);
    sitting.Close();
    EXPECT_EQ(sitting.Open(), 0);
    sitting.Close();
}

TEST(NewDatabase, FailureIsToldAndLeavesNoSession) {
    Sitting sitting;
    sitting.session.DatabasePath = sitting.folder.Path() / "missing folder" / "x.bmr";
    sitting.session.DefaultPathChosen = true;
    sitting.prompter.Type(kPassphrase).Expect(0);
    EXPECT_GT(NewDatabase(sitting.session), 0);
    EXPECT_FALSE(sitting.session.DefaultPathChosen);
    EXPECT_TRUE(sitting.session.DatabasePath.empty());
    EXPECT_TRUE(sitting.session.PassHash.empty());
    EXPECT_TRUE(sitting.session.cipher.Keystring.empty());
}

TEST(CloseDatabase, FailedWriteIsToldAndTheKeysGoAllTheSame) {
    Sitting sitting;
    sitting.Make();
    sitting.Close();
    ASSERT_EQ(sitting.Open(), 0);
    sitting.session.settings.Idle = 9;
    sitting.session.bucketOrder.changes = 7;
    const std::string before = test::FileBytes(sitting.file);

    sitting.prompter.Expect(0);
    {
        const test::FullDisk full;
        EXPECT_GT(CloseDatabase(sitting.session), 0);
    }
    EXPECT_TRUE(sitting.session.cipher.Keystring.empty());
    EXPECT_FALSE(sitting.session.ProgramDb);
    EXPECT_EQ(sitting.session.bucketOrder.changes, -1);  // it belongs to the one file
    EXPECT_TRUE(test::FileBytes(sitting.file) == before);
    ASSERT_EQ(sitting.Open(), 0);
    EXPECT_EQ(sitting.session.settings.Idle, 5);
    sitting.Close();
    EXPECT_EQ(CloseDatabase(sitting.session), 0);  // nothing open: nothing to do
}

TEST(RepairAndCompact, PutsTheCompactFileInThePlaceAndAsksAgain) {
    Sitting sitting;
    sitting.Make();
    const auto before = test::RowsOf(*sitting.session.ProgramDb, " WHERE fSec<3 And fSub<3");
    sitting.prompter.Expect(166).Type(kPassphrase);
    EXPECT_EQ(RepairAndCompact(sitting.session), 0);
    EXPECT_EQ(test::RowsOf(*sitting.session.ProgramDb, " WHERE fSec<3 And fSub<3"), before);
    EXPECT_FALSE(fs::exists(sitting.folder.Path() / "test.tmp"));

    // Somebody's own file of that name is not ours to overwrite, and a database least of all; the one that
    // was to be compacted opens again as it was.
    sitting.Close();
    const std::string compacted = test::FileBytes(sitting.file);
    for (const std::string& own : {std::string("mine"), std::string(4096, '\0') + "rows", compacted}) {
        test::WriteFile(sitting.folder.Path() / "test.tmp", own);
        ASSERT_EQ(sitting.Open(), 0);
        sitting.prompter.Expect(0).Type(kPassphrase);
        EXPECT_NE(RepairAndCompact(sitting.session), 0);
        EXPECT_TRUE(sitting.session.DatabaseOpen);
        EXPECT_TRUE(test::FileBytes(sitting.folder.Path() / "test.tmp") == own);
        sitting.Close();
    }

    sitting.prompter.Expect(134);
    EXPECT_EQ(RepairAndCompact(sitting.session), -134);
}

TEST(RepairAndCompact, WorksOnTheFileThatALinkLeadsTo) {
    Sitting sitting;
    const fs::path real = sitting.folder.Path() / "elsewhere" / "real.bmr";
    fs::create_directory(real.parent_path());
    sitting.Make();
    sitting.Close();
    fs::rename(sitting.file, real);
    fs::create_symlink(real, sitting.file);
    ASSERT_EQ(sitting.Open(), 0);
    const auto before = fs::file_size(real);
    sitting.prompter.Expect(166).Type(kPassphrase);
    EXPECT_EQ(RepairAndCompact(sitting.session), 0);
    sitting.Close();
    EXPECT_TRUE(fs::is_symlink(sitting.file));
    EXPECT_EQ(fs::read_symlink(sitting.file), real);
    EXPECT_LE(fs::file_size(real), before);
    EXPECT_EQ(std::distance(fs::directory_iterator(real.parent_path()), fs::directory_iterator()), 1);
}

/// Says no to whatever comes up and always knows the passphrase.
class PatientPrompter final : public Prompter {
  public:
    Answer Ask(const Box& box) override {
        return box.buttons == Buttons::YesNo ? Answer::No : Answer::Cancel;
    }
    std::optional<std::string> InputBox(const std::string&, const std::string&, const std::string&) override {
        return std::nullopt;
    }
    bool AskSecret(const PassphraseRequest&, Secret& typed) override {
        typed = Secret(kPassphrase);
        return true;
    }
    std::optional<fs::path> AskOpenFile(const FileRequest&) override { return std::nullopt; }
    std::optional<fs::path> AskSaveFile(const FileRequest&) override { return std::nullopt; }
    void Comment(const std::string&, bool) override {}
    void PauseAfterFailure() override {}
};

TEST(Damage, FlippedBitsNeverBringItDown) {
    Sitting sitting;
    fs::copy_file(std::string(BMR_TEST_DATA) + "/foreign.bmr", sitting.file);
    const std::string whole = test::FileBytes(sitting.file);
    PatientPrompter prompter;
    Session session{{prompter, sitting.clock, sitting.random, sitting.registry}};
    int opened = 0;
    constexpr int kFlips = 100;
    for (int flip = 0; flip < kFlips; ++flip) {
        std::string bad = whole;
        // Half of them in the first page, where the file's own structure is.
        const auto byte = static_cast<std::size_t>(
            DrawBelow(sitting.random, static_cast<std::int32_t>(flip % 2 == 0 ? 4096 : bad.size())));
        bad[byte] = static_cast<char>(bad[byte] ^ (1 << DrawBelow(sitting.random, 8)));
        test::WriteFile(sitting.file, bad);
        if (TestOpen(session, sitting.file) != 0) {
            EXPECT_TRUE(test::FileBytes(sitting.file) == bad) << "byte " << byte;
            continue;
        }
        session.DatabasePath = sitting.file;
        if (OpenDatabaseFile(session) != 0) {
            EXPECT_TRUE(session.cipher.Keystring.empty()) << "byte " << byte;
            EXPECT_FALSE(session.ProgramDb);
            continue;
        }
        ++opened;
        auto rows = session.ProgramDb->Select("SELECT fSec, fEtx FROM tt WHERE fSec>10");
        if (rows) {
            std::vector<Value> fields;
            while (rows->Next()) {
                DecodeRecord(fields, rows->Bytes(1), true, session.cipher);
                IsRecordPrivate(session.cipher, rows->Bytes(1), static_cast<std::uint8_t>(rows->Int(0)));
            }
        }
        static_cast<void>(CloseDatabase(session));
    }
    EXPECT_GT(opened, 0);
    EXPECT_LT(opened, kFlips);
}

}  // namespace
}  // namespace bmr::custody
