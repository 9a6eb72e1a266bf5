#include "app/start.h"

#include <gtest/gtest.h>

#include <QFileInfo>
#include <QTemporaryDir>

#include "app/registry.h"

namespace bmr::app {
namespace {

/// The settings of a registry under test lie in a folder of their own.
class RegistryFile : public testing::Test {
  protected:
    RegistryFile() { QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder_.path()); }
    QString File() const { return folder_.filePath("Tolvane/Brindlemere.conf"); }

    QTemporaryDir folder_;
};

TEST_F(RegistryFile, KeepsOddPathsForTheNextProgram) {
    for (const std::string path : {"/home/ä ö/Straße=1;2,3.bmr", "/tmp/100%/\"quoted\"/back\\slash.bmr",
                                   " /leading/and/trailing ", "@/x.bmr"}) {
        QtRegistry().Write("MostRecentFiles/1", path);
        QtRegistry().Write("User/LastUser", "Admin");
        EXPECT_EQ(QtRegistry().Read("MostRecentFiles/1"), path);
        EXPECT_EQ(QtRegistry().Read("User/LastUser"), "Admin");
    }
    QtRegistry().Write("MostRecentFiles/1", "");
    EXPECT_EQ(QtRegistry().Read("MostRecentFiles/1"), "");
    EXPECT_EQ(QtRegistry().Read("MostRecentFiles/2"), "") << "an absent value reads as empty";
}

TEST_F(RegistryFile, OnlyItsOwnerReadsIt) {
    QtRegistry().Write("MostRecentFiles/1", "/home/someone/secret name.bmr");
    constexpr auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    EXPECT_FALSE(QFileInfo(File()).permissions() & others);
    // A file that an older program left open to all is closed at the next write.
    QFile::setPermissions(File(), QFile::ReadOwner | QFile::WriteOwner | others);
    QtRegistry().Write("MostRecentFiles/1", "/home/someone/other.bmr");
    EXPECT_FALSE(QFileInfo(File()).permissions() & others);
}

TEST(ParseArguments, UnderstandsItsOptionsAndRefusesOthers) {
    const Arguments all = ParseArguments({"--theme", "dark", "/tmp/a b.bmr"});
    EXPECT_EQ(all.error, "");
    EXPECT_EQ(all.theme, "dark");
    EXPECT_EQ(all.file, std::filesystem::path("/tmp/a b.bmr"));
    EXPECT_EQ(ParseArguments({"--theme=light"}).theme, "light");
    EXPECT_EQ(ParseArguments({}).theme, "") << "as the window was left";
    EXPECT_TRUE(ParseArguments({"x.bmr"}).file->is_absolute()) << "the folder of the start may be left later";
    EXPECT_EQ(ParseArguments({"--", "--odd.bmr"}).file->filename(), "--odd.bmr");
    EXPECT_TRUE(ParseArguments({"--help"}).help);
    EXPECT_TRUE(ParseArguments({"-v"}).version);
    EXPECT_EQ(ParseArguments({}).file, std::nullopt);

    for (const QStringList& wrong :
         {QStringList{"--theme", "pink"}, {"--theme"}, {"--thame=dark"}, {"a.bmr", "b.bmr"}, {"-x"}})
        EXPECT_NE(ParseArguments(wrong).error, "") << wrong.join(' ').toStdString();
}

TEST(Paths, SurviveTheWayToTheScreenAndBack) {
    const std::filesystem::path path("/tmp/Grüße — ünï/ç.bmr");
    EXPECT_EQ(ToPath(ToQString(path)), path);
}

TEST(SingleInstance, LetsNoSecondOneIn) {
    QTemporaryDir runtime;
    const auto folder = ToPath(runtime.path());
    {
        SingleInstance first(folder);
        EXPECT_TRUE(first.Take());
        SingleInstance second(folder);
        EXPECT_FALSE(second.Take());
    }
    SingleInstance after(folder);
    EXPECT_TRUE(after.Take()) << "the end of the first program frees the place";
    EXPECT_TRUE(SingleInstance(folder / "missing").Take()) << "a lock that cannot be made keeps nobody out";
}

}  // namespace
}  // namespace bmr::app
