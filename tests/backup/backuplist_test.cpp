#include "backup/backuplist.h"

#include <gtest/gtest.h>

#include "backup/backupname.h"
#include "support/data.h"
#include "support/store_file.h"
#include "support/zlib.h"

namespace bmr::backup {
namespace {

namespace fs = std::filesystem;

/// "2024-03-05T07:08:09".
DateValue Moment(const std::string& text) {
    const auto two = [&text](std::size_t at) { return std::stoi(text.substr(at, 2)); };
    return {ParseIsoDate(text.substr(0, 10))->serial + (two(11) * 3600 + two(14) * 60 + two(17)) / 86400.0};
}

TEST(BackupFileName, MeetsTheKnownAnswersAndTellsItsDate) {
    for (const auto& vector : test::LoadVectors("logic.json")["groups"]["BackupFileName"]) {
        const DateValue now = Moment(vector["now"]);
        const auto name = BackupFileName(PathOf(vector["folder"].get<std::string>()),
                                         PathOf(vector["database"].get<std::string>()), now);
        EXPECT_EQ(PathText(name), vector["out"]) << vector["id"];
        ASSERT_TRUE(DateOfBackup(name));
        EXPECT_NEAR(DateOfBackup(name)->serial, now.serial, 1e-9);
    }
    EXPECT_EQ(PathText(BackupFileName("/b", "/d/two words ä.x.bmr", Moment("2079-12-31T23:59:59"))),
              "/b/two words ä791231235959.bmz");
    EXPECT_EQ(PathText(BackupFileName("/b/", "/d/x.bmr", Moment("2000-01-01T00:00:00"))),
              "/b/x000101000000.bmz");
    EXPECT_EQ(DayOf(*DateOfBackup("2024240305070809.bmz")), *ParseIsoDate("2024-03-05"));
    EXPECT_EQ(DayOf(*DateOfBackup("A991231235959.BMZ")), *ParseIsoDate("1999-12-31"));
    for (const char* name : {"x.bmz", "x240230070809.bmz", "x240305240000.bmz", "x240305006000.bmz",
                             "x24030507080.bmz", "x240305070809.bmr", "240305070809"})
        EXPECT_FALSE(DateOfBackup(name)) << name;
}

TEST(Names, TheLettersOfAnEndingChangeAndCapitalsStay) {
    EXPECT_EQ(RestoredName("/d/a.bmr"), "/d/a.bmq");
    EXPECT_EQ(FormerName("/d/a.bmr"), "/d/a.bmb");
    EXPECT_EQ(FormerName("/d/a.bmr", 2), "/d/a.bmb2");
    EXPECT_EQ(DatabaseOfRestored("/d/A.BMQ"), "/d/A.BMR");
    EXPECT_EQ(PartName("/d/a240305070809.bmz"), "/d/a240305070809.bm~");
}

TEST(ListBackups, TheNewestFirstAndEveryFaultOfAnEndTold) {
    const test::TempFolder folder;
    const Bytes good = test::PlainCompress("data") + WriteTrailer({"C:\\Docs\\My Data.bmr", 4});
    for (const char* name : {"My Data240305070809.bmz", "My Data991231235959.bmz", "undated.bmz",
                             "My Data260305070809.BMZ", "not a backup.bmr"})
        test::WriteFile(folder / name, good);
    test::WriteFile(folder / "x250101000000.bmz", "no trailer");
    fs::create_directory(folder / "folder250101000000.bmz");
    const auto list = ListBackups(folder.Path());
    ASSERT_TRUE(list);
    std::vector<std::string> names;
    for (const BackupEntry& entry : *list)
        names.push_back(entry.file.filename().string());
    EXPECT_EQ(names, (std::vector<std::string>{"My Data260305070809.BMZ", "x250101000000.bmz",
                                               "My Data240305070809.bmz", "My Data991231235959.bmz",
                                               "undated.bmz"}));
    EXPECT_EQ(list->front().database, "My Data.bmr");
    EXPECT_EQ(list->front().path, "C:\\Docs\\My Data.bmr");
    EXPECT_EQ(list->front().trailer.size, 4);
    EXPECT_EQ(list->front().bytes, good.size());
    EXPECT_EQ(list->front().fault.number, 0);
    EXPECT_EQ((*list)[1].fault.number, BackupNumber::NotCompressed);
    EXPECT_FALSE(ListBackups(folder / "gone"));
}

}  // namespace
}  // namespace bmr::backup
