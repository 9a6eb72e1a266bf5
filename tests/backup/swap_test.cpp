#include "backup/swap.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <map>

#include "backup/backupname.h"
#include "support/sitting.h"

namespace bmr::backup {
namespace {

namespace fs = std::filesystem;
using test::FileBytes;
using test::TempFolder;
using test::WriteFile;

/// Every file of a folder with what stands in it.
std::map<std::string, std::string> FilesOf(const fs::path& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::directory_iterator(folder))
        files[entry.path().filename().string()] = FileBytes(entry.path());
    return files;
}

using Files = std::map<std::string, std::string>;

/// A database in place and a restored file beside it, each named by its text: no engine is needed to move
/// them.
struct Scene {
    explicit Scene(const Files& files) {
        for (const auto& [name, text] : files)
            WriteFile(folder / name, text);
    }
    TempFolder folder;
    fs::path database = folder / "a.bmr";

    /// Leaves a journal that the engine could not play back beside the database.
    std::function<void(const SwapStep&)> LeaveJournal() {
        return [this](const SwapStep& step) {
            if (step.action == SwapAction::KeepDatabase) WriteFile(folder / "a.bmr-journal", "its journal");
        };
    }
};

TEST(SwapIn, KeepsThreeDatabasesFromBefore) {
    Scene scene({{"a.bmr", "1"}, {"a.bmq", "2"}, {"a.bmb.txt", "other"}});
    const auto restore = [&](const std::string& text) {
        WriteFile(scene.folder / "a.bmq", text);
        const auto report = SwapIn(scene.database);
        EXPECT_EQ(report.number, 0) << report.Words();
        return report;
    };
    EXPECT_EQ(restore("2").steps.size(), 2U);
    EXPECT_EQ(FilesOf(scene.folder.Path()), (Files{{"a.bmr", "2"}, {"a.bmb", "1"}, {"a.bmb.txt", "other"}}));
    restore("3");
    restore("4");
    const auto report = restore("5");
    EXPECT_EQ(
        FilesOf(scene.folder.Path()),
        (Files{{"a.bmr", "5"}, {"a.bmb", "4"}, {"a.bmb1", "3"}, {"a.bmb2", "2"}, {"a.bmb.txt", "other"}}));
    EXPECT_EQ(report.Words(),
              "\"a.bmb2\" was deleted.\r\n\"a.bmb1\" was renamed to \"a.bmb2\".\r\n\"a.bmb\" was renamed to "
              "\"a.bmb1\".\r\n\"a.bmr\" was renamed to \"a.bmb\".\r\n\"a.bmq\" was renamed to \"a.bmr\".");
    // Without a database the one from before stays.
    fs::remove(scene.database);
    EXPECT_EQ(restore("6").steps.size(), 1U);
    EXPECT_EQ(FilesOf(scene.folder.Path())["a.bmb"], "4");
    EXPECT_EQ(SwapIn(scene.database).number, engine::EngineNumber::NotFound) << "nothing was restored";
    EXPECT_EQ(FilesOf(scene.folder.Path())["a.bmr"], "6");
}

TEST(SwapIn, AJournalGoesWithItsFileAndNeverIntoAnother) {
    Scene scene({{"a.bmr", "old"}, {"a.bmq", "new"}, {"a.bmb", "older"}, {"a.bmb-journal", "older journal"}});
    EXPECT_EQ(SwapIn(scene.database, scene.LeaveJournal()).number, 0);
    EXPECT_EQ(FilesOf(scene.folder.Path()), (Files{{"a.bmr", "new"},
                                                   {"a.bmb", "old"},
                                                   {"a.bmb-journal", "its journal"},
                                                   {"a.bmb1", "older"},
                                                   {"a.bmb1-journal", "older journal"}}));
    Scene alone({{"a.bmr-journal", "whose?"}, {"a.bmq", "new"}, {"a.bmb", "old"}});
    EXPECT_EQ(SwapIn(alone.database).number, 0);
    EXPECT_EQ(FilesOf(alone.folder.Path()),
              (Files{{"a.bmr", "new"}, {"a.bmb", "old"}, {"a.bmb-journal.left", "whose?"}}));
}

TEST(SwapIn, AFailedStepLeavesTheDatabaseUnderItsName) {
    // A folder that is not empty stands where a file would be renamed to.
    Scene scene({{"a.bmr", "old"}, {"a.bmq", "new"}});
    const auto report = SwapIn(scene.database, [&](const SwapStep& step) {
        if (step.action != SwapAction::TakeRestored) return;
        fs::remove(step.from);  // the restored file is gone when its turn comes
    });
    EXPECT_NE(report.number, 0);
    ASSERT_EQ(report.steps.size(), 3U);
    EXPECT_EQ(report.steps.back().action, SwapAction::PutBack);
    EXPECT_EQ(report.steps.back().number, 0);
    EXPECT_EQ(FilesOf(scene.folder.Path()), (Files{{"a.bmr", "old"}, {"a.bmb", "old"}}));
    EXPECT_NE(report.Words().find("\"a.bmq\" could not be renamed to \"a.bmr\". The file was not found."),
              std::string::npos)
        << report.Words();

    Scene blocked({{"a.bmr", "old"}, {"a.bmq", "new"}, {"a.bmb", "older"}});
    fs::create_directories(blocked.folder / "a.bmb1-journal" / "full");
    fs::create_directories(blocked.folder / "a.bmb2" / "full");
    WriteFile(blocked.folder / "a.bmb1", "oldest");
    EXPECT_NE(SwapIn(blocked.database).number, 0);
    EXPECT_EQ(FileBytes(blocked.database), "old");
    EXPECT_EQ(FileBytes(blocked.folder / "a.bmb"), "older");
    EXPECT_EQ(FileBytes(blocked.folder / "a.bmb1"), "oldest");
    EXPECT_EQ(FileBytes(blocked.folder / "a.bmq"), "new");
}

TEST(SwapIn, AKillBeforeAnyStepLosesNothingAndTheNextStartFinishes) {
    const Files before{{"a.bmr", "now"},
                       {"a.bmq", "new"},
                       {"a.bmb", "before 0"},
                       {"a.bmb1", "before 1"},
                       {"a.bmb2", "before 2"}};
    bool finished = false;
    int broken = 0;
    for (int kill = 1; !finished; ++kill) {
        ASSERT_LT(kill, 20);
        Scene scene(before);
        const pid_t child = ::fork();
        if (child == 0) {
            int step = 0;
            SwapIn(scene.database, [&, journal = scene.LeaveJournal()](const SwapStep& next) {
                journal(next);
                if (++step == kill) ::raise(SIGKILL);
            });
            ::_exit(0);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        finished = WIFEXITED(status);
        auto files = FilesOf(scene.folder.Path());
        const auto left = FindLeftRestore(scene.database);
        const bool whole = files["a.bmr"] == "now" || files["a.bmb"] == "now";
        EXPECT_TRUE(whole) << kill;
        if (finished) {
            EXPECT_EQ(left, LeftRestore::None);
            break;
        }
        EXPECT_EQ(left, files["a.bmr"] == "now" ? LeftRestore::Ready : LeftRestore::Broken) << kill;
        EXPECT_FALSE(LeftText(left, scene.database).empty());
        broken += left == LeftRestore::Broken ? 1 : 0;
        EXPECT_EQ(SwapIn(scene.database).number, 0) << kill;
        files = FilesOf(scene.folder.Path());
        EXPECT_EQ(files["a.bmr"], "new") << kill;
        EXPECT_EQ(files["a.bmb"], "now") << kill;
        EXPECT_EQ(files["a.bmb1"], "before 0") << kill;
        EXPECT_EQ(files["a.bmb2"], "before 1") << kill << ": a second run ages no more than needed";
        EXPECT_FALSE(files.contains("a.bmr-journal")) << kill;
        EXPECT_EQ(FindLeftRestore(scene.database), LeftRestore::None) << kill;
    }
    EXPECT_EQ(broken, 2) << "no kill met the moment without a database";
}

TEST(GiveUpRestore, TheDatabaseStandsAgainBeforeTheRestoredFileGoes) {
    Scene ready({{"a.bmr", "now"}, {"a.bmq", "new"}, {"a.bmb", "before"}});
    EXPECT_EQ(GiveUpRestore(ready.database).number, 0);
    EXPECT_EQ(FilesOf(ready.folder.Path()), (Files{{"a.bmr", "now"}, {"a.bmb", "before"}}));

    Scene broken({{"a.bmq", "new"}, {"a.bmb", "before"}, {"a.bmb-journal", "j"}});
    EXPECT_EQ(GiveUpRestore(broken.database).number, 0);
    EXPECT_EQ(FilesOf(broken.folder.Path()),
              (Files{{"a.bmr", "before"}, {"a.bmr-journal", "j"}, {"a.bmb", "before"}}));

    Scene former({{"a.bmb", "before"}});
    EXPECT_EQ(FindLeftRestore(former.database), LeftRestore::OnlyFormer);
    EXPECT_EQ(FinishRestore(former.database).number, 0);
    EXPECT_EQ(FileBytes(former.database), "before");
}

TEST(Restored, OnlyAWholeDatabaseWithItsKeysIsSwappedIn) {
    test::Sitting sitting;
    sitting.Make();
    sitting.Close();
    const fs::path restored = RestoredName(sitting.file);
    fs::copy_file(sitting.file, restored);
    EXPECT_EQ(TestRestored(restored).number, 0);
    EXPECT_EQ(FilesOf(sitting.folder.Path()).size(), 2U) << "the test leaves nothing beside it";

    const auto spoil = [&](const std::string& statement) {
        fs::copy_file(sitting.file, restored, fs::copy_options::overwrite_existing);
        const auto db = engine::Database::Open(restored);
        ASSERT_TRUE(db);
        EXPECT_EQ((*db)->Execute(statement), 0);
    };
    spoil("DELETE FROM tt WHERE fSec=1 And fSub=1");
    EXPECT_EQ(TestRestored(restored).number, 0) << "the second copy of the keystring is there";
    spoil("DELETE FROM tt WHERE fSec=1 And fSub<3");
    EXPECT_NE(TestRestored(restored).number, 0);
    spoil("DELETE FROM tt WHERE fSec=2");
    EXPECT_NE(TestRestored(restored).number, 0);
    std::string bytes = FileBytes(sitting.file);
    std::fill(bytes.begin() + 4096, bytes.begin() + 8192, '\x5a');
    WriteFile(restored, bytes);
    EXPECT_EQ(TestRestored(restored).number, engine::EngineNumber::Damaged);
    const std::string before = FileBytes(sitting.file);
    EXPECT_NE(FinishRestore(sitting.file).number, 0);
    EXPECT_EQ(FileBytes(sitting.file), before);

    // In use by another program: left alone.
    fs::copy_file(sitting.file, restored, fs::copy_options::overwrite_existing);
    const auto open = engine::Database::Open(sitting.file);
    ASSERT_TRUE(open);
    if (const pid_t child = ::fork(); child == 0) {
        const auto report = SwapIn(sitting.file);
        ::_exit(report.number == engine::EngineNumber::InUse && report.steps.empty() ? 0 : 1);
    } else {
        int status = 1;
        ::waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    EXPECT_TRUE(fs::exists(restored));
}

}  // namespace
}  // namespace bmr::backup
