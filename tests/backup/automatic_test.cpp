#include "backup/automatic.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "backup/backuplist.h"
#include "backup/backupname.h"
#include "notes/memo.h"
#include "store/undo.h"
#include "support/sitting.h"

namespace bmr::backup {
namespace {

namespace fs = std::filesystem;

DateValue At(const char* day, double time = 0.5) {
    return {ParseIsoDate(day)->serial + time};
}

TEST(Superseded, KeepsSevenDaysFourWeeksAndTwelveMonths) {
    // Two backups a day for 500 days, the newest first.
    std::vector<DateValue> moments;
    const DateValue newest = At("2026-11-21", 0.9);
    for (int i = 0; i < 1000; ++i)
        moments.push_back({newest.serial - i * 0.5});
    std::vector<std::string> kept;
    const auto gone = Superseded(moments);
    for (std::size_t i = 0; i < moments.size(); ++i)
        if (!std::ranges::binary_search(gone, i)) kept.push_back(IsoDate(DayOf(moments[i])));
    EXPECT_EQ(kept, (std::vector<std::string>{
                        // seven days, of which the last is also that of its week and month
                        "2026-11-21", "2026-11-20", "2026-11-19", "2026-11-18", "2026-11-17", "2026-11-16",
                        "2026-11-15",
                        // Sundays, the last days of their weeks; the 15th was the second week's
                        "2026-11-08", "2026-11-01",
                        // and the last days of months
                        "2026-10-31", "2026-09-30", "2026-08-31", "2026-07-31", "2026-06-30", "2026-05-31",
                        "2026-04-30", "2026-03-31", "2026-02-28", "2026-01-31", "2025-12-31"}));
    // What is kept today is enough tomorrow: nothing that a period still needs was removed before.
    EXPECT_TRUE(Superseded({}).empty());
    EXPECT_TRUE(Superseded({newest}).empty());
    // After a long rest the old ones are the latest days.
    EXPECT_EQ(Superseded({At("2026-11-21"), At("2020-01-05"), At("2020-01-04"), At("2020-01-04", 0.1)}),
              (std::vector<std::size_t>{3}));
}

TEST(BackUpAutomatically, RotatesItsOwnFilesInItsOwnFolderAlone) {
    test::Sitting sitting;
    sitting.Make();
    sitting.Close();
    const fs::path folder = sitting.folder.Path() / "backups";
    auto outcome = BackUpAutomatically(sitting.file, folder, At("2026-11-21"));
    EXPECT_TRUE(outcome.folderGone);
    EXPECT_NE(outcome.error.number, 0);
    EXPECT_FALSE(fs::exists(folder)) << "a folder that is gone is not made";

    fs::create_directory(folder);
    outcome = BackUpAutomatically(sitting.file, folder, At("2026-11-20"));
    ASSERT_EQ(outcome.error.number, 0) << ErrorText(outcome.error);
    const fs::path first = outcome.file;
    EXPECT_EQ(first, folder / "automatic" / "test261120120000.bmz");
    // By hand, of another database of the same name, of the same day, and without a date: none is touched.
    const fs::path byHand = BackupFileName(folder, sitting.file, At("2026-11-20", 0.25));
    fs::copy_file(first, byHand);
    const fs::path other = BackupFileName(AutomaticFolder(folder), sitting.file, At("2026-11-20", 0.125));
    test::WriteFile(other, test::FileBytes(first).substr(0, 100) + WriteTrailer({"/elsewhere/test.bmr", 1}));
    const fs::path undated = AutomaticFolder(folder) / "kept for the tax.bmz";
    fs::copy_file(first, undated);
    const fs::path older = BackupFileName(AutomaticFolder(folder), sitting.file, At("2026-11-20", 0.25));
    fs::copy_file(first, older);

    outcome = BackUpAutomatically(sitting.file, folder, At("2026-11-21"));
    ASSERT_EQ(outcome.error.number, 0) << ErrorText(outcome.error);
    EXPECT_EQ(outcome.removed, std::vector<fs::path>{older});
    for (const fs::path& kept : {first, byHand, other, undated, outcome.file})
        EXPECT_TRUE(fs::exists(kept)) << kept;
    EXPECT_EQ(LastBackup(sitting.file, folder), DateOfBackup(outcome.file));
    EXPECT_EQ(LastBackup(sitting.folder.Path() / "none.bmr", folder), std::nullopt);
    // A clock that was set back: what it makes is kept.
    const auto back = BackUpAutomatically(sitting.file, folder, At("2026-11-20", 0.375));
    EXPECT_EQ(back.error.number, 0);
    EXPECT_TRUE(fs::exists(back.file));
}

TEST(BackupSettings, StandOutsideTheFileAndWarnInTime) {
    test::MapRegistry registry;
    const BackupSettings none = LoadBackupSettings(registry);
    EXPECT_TRUE(none.folder.empty());
    EXPECT_FALSE(none.automatic);
    EXPECT_FALSE(BackupOverdue(none, std::nullopt, {46347}));
    StoreBackupSettings(registry, {"/backups/ä", true, 14});
    EXPECT_EQ(registry.values["BackupPath"], "/backups/ä");
    const BackupSettings read = LoadBackupSettings(registry);
    EXPECT_EQ(read.folder, "/backups/ä");
    EXPECT_TRUE(read.automatic);
    EXPECT_TRUE(BackupOverdue(read, std::nullopt, {46347}));
    EXPECT_TRUE(BackupOverdue(read, DateValue{46333.9}, {46347}));
    EXPECT_FALSE(BackupOverdue(read, DateValue{46334.1}, {46347}));
    registry.values["Backup/WarnAfterDays"] = "many";
    EXPECT_EQ(LoadBackupSettings(registry).warnAfterDays, 0);
}

TEST(SectionsChanged, OnlyByRowsOfSectionsAndCategories) {
    test::Sitting sitting;
    sitting.Make();
    EXPECT_FALSE(SectionsChanged(sitting.session)) << "what the opening writes is no change";
    sitting.Close();
    ASSERT_EQ(sitting.Open(), 0);
    EXPECT_FALSE(SectionsChanged(sitting.session));
    notes::Memo memo = notes::ClearRecord(sitting.session, 0);
    memo.subject = "changed";
    ASSERT_EQ(notes::WriteRecord(sitting.session, memo), 0);
    EXPECT_TRUE(SectionsChanged(sitting.session));
    sitting.Close();
    ASSERT_EQ(sitting.Open(), 0);
    EXPECT_FALSE(SectionsChanged(sitting.session));
    ASSERT_EQ(store::StoreCategories(sitting.session, {{"Home", 1}}, store::Section::Todo), 0);
    EXPECT_TRUE(SectionsChanged(sitting.session));
    sitting.Close();
}

}  // namespace
}  // namespace bmr::backup
