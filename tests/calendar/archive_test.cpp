#include "calendar/archive.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "base/buckets.h"
#include "calendar/appointment.h"
#include "custody/keyrecords.h"
#include "store/record_put.h"
#include "store/undo.h"
#include "support/failing_disk.h"
#include "support/full_disk.h"
#include "support/sitting.h"

namespace bmr::calendar {
namespace {

namespace fs = std::filesystem;
using test::RowValues;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const Day kUntil{46387};
const char* const kRows = " WHERE fSec=12";

Day After(int days) {
    return {kUntil.serial + days};
}

/// A database with a keystring of its own, and a folder for archives.
struct Old : test::Sitting {
    fs::path archive = folder.Path() / "old \"days\" Ł.bma";

    Old() { session.ShowPrivate = true; }

    std::int32_t Add(const char* subject, Day day) { return Add(subject, day, {}, false); }
    std::int32_t Series(const char* subject, Day first, std::optional<Day> last, bool isPrivate = false) {
        RedoRule rule{RedoKind::Daily,     last ? RedoEnd::Date : RedoEnd::Never,  0, 3,
                      DateToDays16(first), DateToDays16(last.value_or(Day{60000}))};
        return Add(subject, first, WriteRedoRule(rule), isPrivate);
    }
    std::int32_t Add(const char* subject, Day day, const Bytes& redo, bool isPrivate) {
        Appointment appointment = ClearRecord({(day.serial - kEpoch.serial) * 1440 + 600}, 30);
        appointment.subject = subject;
        appointment.redoString = redo;
        appointment.isPrivate = isPrivate;
        EXPECT_EQ(WriteRecord(session, appointment).error, 0);
        return appointment.key;
    }
    /// The subjects of the appointments in a file that this session's keys open.
    std::multiset<std::string> Subjects(engine::Database& db) {
        std::multiset<std::string> subjects;
        for (const RowValues& row : test::RowsOf(db, kRows)) {
            Appointment appointment;
            const auto text = TextOf(row.at("fEtx"));
            EXPECT_TRUE(store::DecodeFields(appointment, cry::DecipherField(session.cipher, text),
                                            kAppointmentFields));
            subjects.insert(appointment.subject);
        }
        return subjects;
    }
    std::multiset<std::string> Left() { return Subjects(*session.ProgramDb); }
    std::multiset<std::string> Archived() {
        auto db = engine::Database::Open(archive);
        if (!db) return {};
        return Subjects(**db);
    }
    std::vector<RowValues> Before(std::vector<std::int32_t> keys) {
        std::vector<RowValues> rows;
        for (const std::int32_t key : keys)
            rows.push_back(test::RowsOf(*session.ProgramDb, " WHERE fPK=" + std::to_string(key)).at(0));
        return rows;
    }
};

/// An `Old` with one row on each side of every bound.
struct Bounds : Old {
    std::int32_t gone1 = 0, gone2 = 0;
    Bounds() {
        Make();
        gone1 = Add("on the day", kUntil);
        Add("the day after", After(1));
        Add("long ago", {20000});
        Series("begins on the day", kUntil, std::nullopt);
        gone2 = Series("began before, runs", After(-1), std::nullopt);
        Series("began before, ends later", After(-40), After(2));
        Series("began before, ended", After(-40), kUntil);
        Series("private, runs", After(-40), After(90), true);
    }
};

const std::multiset<std::string> kStay = {"begins on the day", "the day after"};
const std::multiset<std::string> kGo = {"on the day",          "long ago",      "began before, runs",
                                        "began before, ended", "private, runs", "began before, ends later"};

std::vector<std::string> Running(store::Session& session) {
    std::vector<std::string> subjects;
    const auto found = SeriesStillRunning(session, kUntil);
    EXPECT_TRUE(found);
    for (const RunningSeries& series : *found)
        subjects.push_back(series.subject + (series.last ? " to " + IsoDate(*series.last) : ""));
    std::ranges::sort(subjects);
    return subjects;
}

TEST(Archive, NamesTheSeriesThatWouldGoAndStillRun) {
    Bounds old;
    EXPECT_THAT(Running(old.session),
                ElementsAre("began before, ends later to " + IsoDate(After(2)), "began before, runs",
                            "private, runs to " + IsoDate(After(90))));
    old.session.ShowPrivate = false;
    EXPECT_THAT(Running(old.session),
                ElementsAre("began before, ends later to " + IsoDate(After(2)), "began before, runs"));
}

TEST(Archive, AsksOnceWhereItKeepsAndTwiceWhereItDoesNot) {
    Bounds old;
    LocaleFacts locale;
    old.prompter.Expect(152).Expect(152).Expect(163, Answer::No).Expect(152, Answer::Cancel);
    EXPECT_TRUE(ConfirmArchive(old.session, kUntil, true, locale));
    old.session.ShowPrivate = false;
    EXPECT_FALSE(ConfirmArchive(old.session, kUntil, false, locale));
    EXPECT_FALSE(ConfirmArchive(old.session, kUntil, false, locale));
    const auto& shown = old.prompter.shown;
    EXPECT_EQ(
        shown[shown.size() - 4].text,
        "All appointments until 2026-12-31 will be deleted from the main database (.BMR file). The "
        "deleted events will be archived in the archive file (.BMA file). These are 2 single appointments "
        "and 4 series.");
    EXPECT_THAT(shown[shown.size() - 3].text,
                HasSubstr("and 4 series; 1 of them is private and hidden now."));
    EXPECT_EQ(shown[shown.size() - 2].text, "Confirm deletion of all events before and including 2026-12-31");
}

TEST(Archive, MovesEveryRowToTheByteIntoAFileThatOpensByItself) {
    Bounds old;
    const auto before = old.Before({old.gone1, old.gone2});
    const auto outcome = ArchiveUntil(old.session, kUntil, old.archive);
    EXPECT_EQ(outcome.error, 0) << outcome.words;
    EXPECT_EQ(outcome.series, 4);
    EXPECT_EQ(outcome.singles, 2);
    EXPECT_EQ(old.Left(), kStay);
    EXPECT_EQ(old.Archived(), kGo);
    auto db = engine::Database::Open(old.archive);
    ASSERT_TRUE(db);
    for (const RowValues& row : before)
        EXPECT_EQ(test::RowsOf(**db, " WHERE fPK=" + std::to_string(NumberOf(row.at("fPK")))).at(0), row);
    db->reset();
    old.Close();
    old.file = old.archive;
    ASSERT_EQ(old.Open(), 0);
    EXPECT_EQ(old.Left(), kGo);
    old.Close();
}

TEST(Archive, IsAddedToUnderThePassphraseOfToday) {
    Bounds old;
    ASSERT_EQ(ArchiveUntil(old.session, kUntil, old.archive).error, 0);
    constexpr const char* kNew = "another Horse 8";
    old.prompter.Type(test::kPassphrase).Type(kNew);
    ASSERT_EQ(custody::ChangePassphrase(old.session), custody::PassphraseChange::Changed);
    const auto outcome = ArchiveUntil(old.session, After(10), old.archive);
    EXPECT_EQ(outcome.error, 0) << outcome.words;
    EXPECT_THAT(old.Left(), IsEmpty());
    old.Close();
    old.file = old.archive;
    ASSERT_EQ(old.Open(kNew), 0);
    EXPECT_EQ(old.Left().size(), kGo.size() + kStay.size());
    old.Close();
}

TEST(Archive, AKeyThatStandsThereAlreadyIsDrawnAnew) {
    Bounds old;
    ASSERT_EQ(engine::CreateStore(old.archive), 0);
    std::int32_t user = 0;
    {
        auto db = engine::Database::Open(old.archive);
        ASSERT_TRUE(db);
        auto table = (*db)->OpenRecordset("tt");
        // A record of the same key, and one that has the user's.
        user = old.session.user.fPK;
        for (const std::int32_t key : {old.gone1, old.gone2, user}) {
            (*table)->AddNew(key);
            (*table)->SetField("fSec", 14);
            ASSERT_EQ((*table)->Update(), 0);
        }
        auto own = old.session.ProgramDb->OpenRecordset("SELECT * FROM tt WHERE fSec=1 And fSub=3");
        (*table)->AddNew();
        for (const char* column : {"fSec", "fSub", "fEtx"})
            (*table)->SetField(column, (*own)->Field(column));
        ASSERT_EQ((*table)->Update(), 0);
        // A foreign file may have a record of another section under one of these keys.
        old.session.ProgramDb.reset();
        ASSERT_EQ((*db)->Execute("INSERT INTO tt IN \"" + old.file.string() +
                                 "\" SELECT * FROM tt WHERE fPK=" + std::to_string(old.gone1)),
                  0);
        auto again = engine::Database::Open(old.file);
        ASSERT_TRUE(again);
        old.session.ProgramDb = std::move(*again);
    }
    const auto outcome = ArchiveUntil(old.session, kUntil, old.archive);
    EXPECT_EQ(outcome.error, 0) << outcome.words;
    EXPECT_EQ(old.Left(), kStay);
    EXPECT_EQ(old.Archived(), kGo);
    EXPECT_EQ(test::RowsOf(*old.session.ProgramDb, " WHERE fSec=14").size(), 1U);
    auto db = engine::Database::Open(old.archive);
    ASSERT_TRUE(db);
    std::set<std::int32_t> keys;
    const auto rows = test::RowsOf(**db);
    for (const RowValues& row : rows)
        keys.insert(NumberOf(row.at("fPK")));
    EXPECT_EQ(keys.size(), rows.size());
    EXPECT_EQ(test::RowsOf(**db, " WHERE fSec=2").size(), 1U);
    EXPECT_EQ(test::RowsOf(**db, " WHERE fSec=14").size(), 3U);
}

TEST(Archive, RefusesWhatIsNotItsOwnAndLeavesBothFilesAlone) {
    Bounds old;
    const auto everything = old.Left();
    const auto refused = [&](const fs::path& path) {
        const std::string before = fs::is_regular_file(path) ? test::FileBytes(path) : "";
        const auto outcome = ArchiveUntil(old.session, kUntil, path);
        EXPECT_NE(outcome.error, 0) << path;
        EXPECT_THAT(outcome.words, HasSubstr("Nothing was archived or deleted. "));
        EXPECT_EQ(old.Left(), everything) << path;
        if (!before.empty()) EXPECT_TRUE(test::FileBytes(path) == before) << path;
        return outcome.words;
    };
    test::Sitting other;
    other.random.Uniform();  // another keystring than ours
    other.Make();
    other.Close();
    EXPECT_THAT(refused(other.file), HasSubstr("another database"));
    test::WriteFile(old.folder / "text.bma", "Dear diary");
    refused(old.folder / "text.bma");
    test::WriteFile(old.folder / "empty.bma", "");
    refused(old.folder / "empty.bma");
    refused(old.folder.Path());
    refused(old.folder / "none" / "a.bma");
    EXPECT_FALSE(fs::exists(old.folder / "none"));
    fs::create_symlink(old.folder / "nowhere.bma", old.folder / "link.bma");
    refused(old.folder / "link.bma");
    fs::create_symlink(old.file, old.folder / "self.bma");
    for (const fs::path& self : {old.file, old.folder / "self.bma"}) {
        const auto outcome = ArchiveUntil(old.session, kUntil, self);
        EXPECT_THAT(outcome.words, HasSubstr("the database itself"));
        EXPECT_EQ(old.Left(), everything);
    }
    ASSERT_EQ(engine::CreateStore(old.archive), 0);
    EXPECT_THAT(refused(old.archive), HasSubstr("another database")) << "a file without keys";
    fs::remove(old.archive);
    ASSERT_EQ(ArchiveUntil(old.session, {20000}, old.archive).error, 0);
    const auto held = engine::Database::Open(old.archive);
    EXPECT_THAT(ArchiveUntil(old.session, kUntil, old.archive).words, HasSubstr("in use"));
}

TEST(Archive, AFullDiskLeavesNoFileAndEveryRow) {
    Bounds old;
    const auto everything = old.Left();
    {
        const test::FullDisk disk;
        const auto outcome = ArchiveUntil(old.session, kUntil, old.archive);
        EXPECT_NE(outcome.error, 0);
        EXPECT_THAT(outcome.words, HasSubstr("Nothing was archived or deleted. "));
    }
    EXPECT_FALSE(fs::exists(old.archive));
    EXPECT_EQ(old.Left(), everything);
}

/// Each call by which the disk is written fails in turn, for once and for good.
TEST(Archive, EveryRowStandsInOneFileWhateverWriteFails) {
    Bounds old;
    old.session.ProgramDb.reset();
    const std::string before = test::FileBytes(old.file);
    auto all = kStay;
    all.insert(kGo.begin(), kGo.end());
    for (const int count : {1, test::FailingDisk::kForEver}) {
        int refused = 0;
        int half = 0;
        bool failed = true;
        for (int call = 1; failed && call < 400; ++call) {
            test::WriteFile(old.file, before);
            fs::remove(old.archive);
            auto db = engine::Database::Open(old.file);
            ASSERT_TRUE(db);
            old.session.ProgramDb = std::move(*db);
            ArchiveOutcome outcome;
            {
                const test::FailingDisk disk(call, count);
                outcome = ArchiveUntil(old.session, kUntil, old.archive);
                failed = test::FailingDisk::Failed();
            }
            old.session.ProgramDb.reset();
            db = engine::Database::Open(old.file);
            ASSERT_TRUE(db) << call;
            auto found = old.Subjects(**db);
            const auto archived = old.Archived();
            found.insert(archived.begin(), archived.end());
            ASSERT_EQ(found, all) << "call " << call;
            ASSERT_EQ(outcome.error == 0, outcome.words.empty()) << call;
            if (outcome.error == engine::EngineNumber::Unsure) continue;
            ASSERT_EQ(archived.size(), static_cast<std::size_t>(outcome.series + outcome.singles)) << call;
            if (outcome.error == 0) continue;
            ++(outcome.series > 0 ? half : refused);
            EXPECT_EQ(outcome.series > 0, outcome.words.starts_with("The series were archived")) << call;
        }
        EXPECT_FALSE(failed) << "it never ends";
        EXPECT_GT(refused, 5);
        EXPECT_GT(half, 2);
    }
}

TEST(Archive, WithoutAFileIsOneStepToTakeBack) {
    Bounds old;
    const auto before = test::RowsOf(*old.session.ProgramDb, " WHERE fSec=12 ORDER BY fPK");
    const auto outcome = DeleteUntil(old.session, kUntil);
    EXPECT_EQ(outcome.error, 0);
    EXPECT_EQ(outcome.series + outcome.singles, 6);
    EXPECT_EQ(old.Left(), kStay);
    const auto back = store::TakeStep(old.session, store::Section::Calendar, store::UndoWay::Undo);
    EXPECT_EQ(back.written, 6U);
    EXPECT_EQ(test::RowsOf(*old.session.ProgramDb, " WHERE fSec=12 ORDER BY fPK"), before);
    EXPECT_EQ(DeleteUntil(old.session, {61900}).error, 0);
    EXPECT_THAT(old.Left(), IsEmpty());
}

}  // namespace
}  // namespace bmr::calendar
