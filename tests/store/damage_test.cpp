#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <random>

#include "engine/db.h"
#include "engine/db_engine.h"
#include "support/store_file.h"

namespace bmr::store {
namespace {

using test::NewStore;
using test::OpenStore;
using test::ReadFile;
using test::TempFolder;
using test::WriteFile;

void Fill(engine::Database& db, int from, int to, std::size_t payload = 300) {
    engine::Transaction all(db);
    auto table = db.OpenRecordset("tt");
    for (int i = from; i < to; ++i) {
        (*table)->AddNew();
        (*table)->SetField("fSec", 15);
        (*table)->SetField("fR1", i);
        (*table)->SetField("fEtx", Bytes(payload, ByteChar(static_cast<unsigned>(i))));
        ASSERT_EQ((*table)->Update(), 0);
    }
    ASSERT_EQ(all.Commit(), 0);
}

void MakeFilled(const std::filesystem::path& path, int rows) {
    Fill(*NewStore(path), 0, rows);
}

/// Runs SQL that only a test may run.
void RunRaw(const std::filesystem::path& path, const std::string& sql) {
    SQLite::Database db(path.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    db.exec(sql);
}

/// Runs `work` in a process of its own; its result is the exit status, below 128.
int InChild(const std::function<int()>& work) {
    const pid_t child = ::fork();
    if (child == 0) _exit(work());
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

int NumberOfOpening(const std::filesystem::path& path) {
    const auto db = engine::Database::Open(path);
    return db ? 0 : db.error().number;
}

/// The numbers of all rows that still hold what `Fill` wrote.
std::vector<int> SoundRows(engine::Database& db) {
    std::vector<int> found;
    auto rows = db.Select("SELECT fR1, fEtx FROM tt WHERE fSec=15 ORDER BY fR1");
    while (rows && rows->Next()) {
        if (rows->Bytes(1) == Bytes(300, ByteChar(static_cast<unsigned>(rows->Int(0)))))
            found.push_back(rows->Int(0));
    }
    return found;
}

TEST(Damage, EachBadFileHasItsNumberAndStaysAsItIs) {
    const TempFolder folder;
    MakeFilled(folder / "good.bmr", 200);
    const std::string good = ReadFile(folder / "good.bmr");
    ASSERT_GT(good.size(), 16U * 4096);
    WriteFile(folder / "empty.bmr", "");
    WriteFile(folder / "text.bmr", "This is a letter and no database. " + std::string(9000, 'x'));
    WriteFile(folder / "head.bmr", good.substr(0, 50));
    WriteFile(folder / "page.bmr", good.substr(0, 4096));
    WriteFile(folder / "half.bmr", good.substr(0, good.size() / 2));
    WriteFile(folder / "last.bmr", good.substr(0, good.size() - 1));
    std::string wiped = good;
    wiped.replace(0, 16, 16, '\0');
    WriteFile(folder / "wiped.bmr", wiped);
    RunRaw(folder / "other.bmr", "CREATE TABLE notes (a, b)");
    RunRaw(folder / "few.bmr", "CREATE TABLE tt (fPK, fEtx, fSec)");
    RunRaw(folder / "view.bmr",
           "CREATE TABLE x (a); CREATE VIEW tt AS SELECT 1 fPK, 1 fEtx, 1 fSec, 1 fSub, 1 fR1, 1 fR2, 1 fR3, "
           "1 fR4, 1 "
           "fR5, 1 fF1, 1 fF2, 1 fF3, 1 fT1, 1 fT2, 1 fT3, 1 fG1, 1 AE FROM x");
    for (const char* name :
         {"empty", "text", "head", "page", "half", "last", "wiped", "other", "few", "view"}) {
        const auto path = folder / (std::string(name) + ".bmr");
        const std::string before = ReadFile(path);
        EXPECT_EQ(NumberOfOpening(path), engine::EngineNumber::Damaged) << name;
        EXPECT_TRUE(ReadFile(path) == before) << name;
    }
    EXPECT_EQ(NumberOfOpening(folder / "none.bmr"), engine::EngineNumber::NotFound);
    EXPECT_EQ(NumberOfOpening(folder / "good.bmr" / "deeper.bmr"), engine::EngineNumber::NotFound);
    EXPECT_EQ(NumberOfOpening(folder.Path()), engine::EngineNumber::NoPermission);
    ASSERT_EQ(::mkfifo((folder / "pipe.bmr").c_str(), 0600), 0);
    EXPECT_EQ(NumberOfOpening(folder / "pipe.bmr"), engine::EngineNumber::NoPermission)
        << "and it does not wait";
    EXPECT_EQ(NumberOfOpening(folder / "good.bmr"), 0);
    EXPECT_TRUE(ReadFile(folder / "good.bmr") == good) << "opening alone writes nothing";
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
        EXPECT_NE(entry.path().extension(), ".bmr-journal") << entry.path();
}

TEST(Damage, WithoutPermissionNothingOpensAndNothingIsMade) {
    const TempFolder folder;
    MakeFilled(folder / "mine.bmr", 5);
    const std::string before = ReadFile(folder / "mine.bmr");
    std::filesystem::permissions(folder.Path(), std::filesystem::perms(0755));
    const auto asStranger = [&](std::filesystem::perms mode, const std::function<int()>& work) {
        std::filesystem::permissions(folder / "mine.bmr", mode);
        return InChild([&] {
            if (::geteuid() == 0 && ::seteuid(65534) != 0) return 99;
            return work();
        });
    };
    const auto open = [&] {
        return NumberOfOpening(folder / "mine.bmr") == engine::EngineNumber::NoPermission ? 0 : 1;
    };
    EXPECT_EQ(asStranger(std::filesystem::perms(0), open), 0) << "may not be read";
    EXPECT_EQ(asStranger(std::filesystem::perms(0444), open), 0) << "may only be read";
    if (::geteuid() == 0) {
        EXPECT_EQ(asStranger(std::filesystem::perms(0600),
                             [&] {
                                 return engine::CreateStore(folder / "new.bmr") ==
                                                engine::EngineNumber::NoPermission
                                            ? 0
                                            : 1;
                             }),
                  0)
            << "a folder that may not be written";
    }
    std::filesystem::permissions(folder / "mine.bmr", std::filesystem::perms(0600));
    EXPECT_TRUE(ReadFile(folder / "mine.bmr") == before);
}

TEST(Damage, AFileHeldByAnotherProcessIsInUseAtOnce) {
    const TempFolder folder;
    MakeFilled(folder / "a.bmr", 5);
    int ready[2];
    int leave[2];
    ASSERT_EQ(::pipe(ready), 0);
    ASSERT_EQ(::pipe(leave), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(leave[1]);
        const auto db = engine::Database::Open(folder / "a.bmr");  // and does not write
        char byte = db ? 'y' : 'n';
        if (::write(ready[1], &byte, 1) != 1) _exit(1);
        _exit(::read(leave[0], &byte, 1) >= 0 ? 0 : 1);
    }
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    ASSERT_EQ(byte, 'y');
    const std::string before = ReadFile(folder / "a.bmr");
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(NumberOfOpening(folder / "a.bmr"), engine::EngineNumber::InUse);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(500));
    EXPECT_EQ(engine::CompactDatabase(folder / "a.bmr", folder / "b.bmr"), engine::EngineNumber::InUse);
    EXPECT_EQ(engine::RepairDatabase(folder / "a.bmr"), engine::EngineNumber::InUse);
    EXPECT_TRUE(ReadFile(folder / "a.bmr") == before);
    EXPECT_FALSE(std::filesystem::exists(folder / "b.bmr"));
    ::close(leave[1]);
    ::waitpid(child, nullptr, 0);
    const auto db = engine::Database::Open(folder / "a.bmr");
    ASSERT_TRUE(db);
    EXPECT_EQ(NumberOfOpening(folder / "a.bmr"), engine::EngineNumber::InUse)
        << "a second time in one process";
}

TEST(Damage, AFullDiskUndoesTheWholeTransaction) {
    const TempFolder folder;
    const auto path = folder / "a.bmr";
    MakeFilled(path, 200);
    const std::string before = ReadFile(path);
    const int result = InChild([&] {
        const rlimit limit{before.size() + 8 * 4096, before.size() + 8 * 4096};
        ::signal(SIGXFSZ, SIG_IGN);
        auto opened = engine::Database::Open(path);
        if (!opened || ::setrlimit(RLIMIT_FSIZE, &limit) != 0) return 1;
        engine::Database& db = **opened;
        auto table = db.OpenRecordset("tt");
        {
            engine::Transaction save(db);
            (*table)->Edit();
            (*table)->SetField("fR1", 77);
            if ((*table)->Update() != 0) return 2;
            (*table)->AddNew();
            (*table)->SetField("fEtx", Bytes(std::size_t{12} << 20, 'x'));
            const int failed = (*table)->Update();
            const int commit = save.Commit();
            if (failed != engine::EngineNumber::DiskFull && commit != engine::EngineNumber::DiskFull)
                return 3;
            if (db.LastError().empty()) return 4;
        }
        (*table)->AddNew();
        (*table)->SetField("fEtx", Bytes(std::size_t{1} << 20, 'x'));
        if ((*table)->Update() != engine::EngineNumber::DiskFull) return 5;
        if ((*table)->RecordCount() != 200) return 6;
        if (db.Execute("INSERT INTO tt IN \"" + path.string() + "x\" SELECT * FROM tt") !=
            engine::EngineNumber::NotFound)
            return 7;
        return engine::CompactDatabase(path, folder / "b.bmr") == engine::EngineNumber::InUse ? 0 : 8;
    });
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(ReadFile(path) == before);
    EXPECT_FALSE(std::filesystem::exists(path.string() + "-journal"));

    const int compact = InChild([&] {
        const rlimit limit{8 * 4096, 8 * 4096};
        ::signal(SIGXFSZ, SIG_IGN);
        if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) return 1;
        return engine::CompactDatabase(path, folder / "b.bmr") == engine::EngineNumber::DiskFull ? 0 : 2;
    });
    EXPECT_EQ(compact, 0);
    EXPECT_FALSE(std::filesystem::exists(folder / "b.bmr")) << "no half copy is left";
    EXPECT_TRUE(ReadFile(path) == before);
}

TEST(Damage, AnOpenJournalIsRolledBack) {
    const TempFolder folder;
    const auto path = folder / "a.bmr";
    MakeFilled(path, 100);
    const std::string before = ReadFile(path);
    EXPECT_EQ(InChild([&] {
                  const auto db = OpenStore(path);
                  if (db->BeginTrans() != 0) return 1;
                  Fill(*db, 1000, 4500, 3000);  // more than the cache holds: pages reach the file
                  ::raise(SIGKILL);
                  return 2;
              }),
              128 + SIGKILL);
    ASSERT_GT(std::filesystem::file_size(path.string() + "-journal"), 0U);
    ASSERT_FALSE(ReadFile(path) == before);
    // Even a file that takes its place must not get the old pages.
    WriteFile(folder / "b.bmr", before);
    for (const char* suffix : {"", "-journal"})
        std::filesystem::copy_file(path.string() + suffix, (folder / "c.bmr").string() + suffix);
    ASSERT_EQ(engine::ReplaceFile(folder / "b.bmr", folder / "c.bmr"), 0);
    EXPECT_TRUE(ReadFile(folder / "c.bmr") == before);
    EXPECT_FALSE(std::filesystem::exists((folder / "c.bmr").string() + "-journal"));

    EXPECT_EQ(SoundRows(*OpenStore(path)).size(), 100U);
    EXPECT_FALSE(std::filesystem::exists(path.string() + "-journal"));
    EXPECT_TRUE(ReadFile(path) == before);
}

TEST(Damage, NothingOfAForeignSchemaRuns) {
    const TempFolder folder;
    const auto path = folder / "a.bmr";
    MakeFilled(path, 3);
    RunRaw(path,
           "CREATE TABLE spy (a); CREATE VIEW v AS SELECT * FROM tt;"
           "CREATE TRIGGER t1 AFTER INSERT ON tt BEGIN INSERT INTO spy VALUES (1); END;"
           "CREATE TRIGGER t2 AFTER UPDATE ON tt BEGIN DELETE FROM tt; END;"
           "CREATE TRIGGER t3 AFTER DELETE ON tt BEGIN INSERT INTO spy VALUES (3); END;");
    {
        const auto db = OpenStore(path);
        auto table = db->OpenRecordset("tt");
        (*table)->AddNew();
        EXPECT_EQ((*table)->Update(), 0);
        (*table)->Edit();
        (*table)->SetField("fR1", 1);
        EXPECT_EQ((*table)->Update(), 0);
        EXPECT_EQ((*table)->Delete(), 0);
        EXPECT_EQ((*table)->RecordCount(), 3);
    }
    SQLite::Database raw(path.string());
    EXPECT_EQ(raw.execAndGet("SELECT count(*) FROM spy").getInt(), 0);
}

TEST(Damage, AFileOfAnotherProgramIsReadAndWritten) {
    const TempFolder folder;
    const auto path = folder / "a.bmr";
    // Other order, other widths, texts as text, a write-ahead log, one index: still the told columns.
    RunRaw(path,
           "PRAGMA journal_mode=WAL;"
           "CREATE TABLE TT (AE SMALLINT, fG1 INT, fT3 TEXT, fT2 TEXT DEFAULT '0', fT1 TEXT DEFAULT '0', fF3 "
           "BOOLEAN, "
           "fF2 BOOLEAN, fF1 BOOLEAN, fR5 INT, fR4 INT, fR3 INT, fR2 INT, fR1 INT, fSub INT, fSec INT, fEtx "
           "BLOB, "
           "fPK INTEGER PRIMARY KEY, more TEXT DEFAULT 'm');"
           "CREATE INDEX fSec ON tt (fSec);"
           "INSERT INTO tt (fPK, fSec, fSub, fR1, fT1, fF3) VALUES (5, 15, 0, 3, 'abc', 1), (6, 15, 0, 2, "
           "'abc', 0)");
    {
        const auto db = OpenStore(path);
        auto rows = db->OpenRecordset("SELECT * FROM tt WHERE fSec=15 And fR1 Between 1 And 5 ORDER BY fR1");
        ASSERT_TRUE(rows) << db->LastError();
        EXPECT_EQ((*rows)->RecordCount(), 2);
        EXPECT_EQ((*rows)->Field("fPK"), Value(6));
        EXPECT_EQ((*rows)->Field("fT1"), Value(Bytes("abc")));
        (*rows)->Edit();
        (*rows)->SetField("fT1", Bytes("abc"));
        EXPECT_EQ((*rows)->Update(), 0);
        auto doubles = db->OpenRecordset("SELECT fT1 FROM tt GROUP BY fT1 HAVING Count(fPK)>1");
        ASSERT_TRUE(doubles);
        EXPECT_EQ((*doubles)->RecordCount(), 1) << "text and bytes are the same text";
    }
    EXPECT_EQ(NumberOfOpening(path), 0);
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
        EXPECT_EQ(entry.path(), path) << "no side file stays";
}

TEST(Repair, MendsIndexesInPlace) {
    const TempFolder folder;
    const auto path = folder / "a.bmr";
    MakeFilled(path, 100);
    // A row goes into the index under another column's number.
    const std::string rename = "PRAGMA writable_schema=ON; UPDATE sqlite_schema SET sql = replace(sql, ";
    RunRaw(path, rename + "'(\"fR3\")', '(\"fR4\")') WHERE name = 'fR3'");
    RunRaw(path, "INSERT INTO tt (fPK, fSec, fR3, fR4) VALUES (1, 16, 5, 6)");
    RunRaw(path, rename + "'(\"fR4\")', '(\"fR3\")') WHERE name = 'fR3'");
    const auto count = [&] {
        const auto db = OpenStore(path);
        auto rows = db->OpenRecordset("SELECT * FROM tt WHERE fR3=5");
        return std::pair((*rows)->RecordCount(), db->CheckIntegrity().empty());
    };
    ASSERT_EQ(count(), std::pair(std::int64_t{0}, false));
    ASSERT_EQ(engine::RepairDatabase(path), 0);
    EXPECT_EQ(count(), std::pair(std::int64_t{1}, true));
    EXPECT_EQ(SoundRows(*OpenStore(path)).size(), 100U);
}

TEST(Repair, SavesTheRowsAroundADamagedPage) {
    const TempFolder folder;
    MakeFilled(folder / "good.bmr", 600);
    const std::string good = ReadFile(folder / "good.bmr");
    const std::size_t pages = good.size() / 4096;
    std::size_t worst = 600;
    for (std::size_t page = 1; page < pages; page += 5) {
        const auto path = folder / "bad.bmr";
        std::string bad = good;
        bad.replace(page * 4096, 4096, 4096, '\xa5');
        WriteFile(path, bad);
        std::string detail;
        const int number = engine::RepairDatabase(path, &detail);
        if (number != 0) {
            EXPECT_TRUE(ReadFile(path) == bad) << "what cannot be won is left alone, page " << page;
            continue;
        }
        const auto db = OpenStore(path);
        EXPECT_TRUE(db->CheckIntegrity().empty()) << page;
        worst = std::min(worst, SoundRows(*db).size());
    }
    EXPECT_GE(worst, 570U) << "one page holds a dozen rows";
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
        EXPECT_EQ(entry.path().extension(), ".bmr") << entry.path();
}

TEST(Repair, SavesTheRowsOfAFileCutShortAndLeavesWhatIsNoDatabase) {
    const TempFolder folder;
    const auto path = folder / "a.bmr";
    MakeFilled(path, 600);
    const std::string good = ReadFile(path);
    WriteFile(path, good.substr(0, good.size() / 2));
    ASSERT_EQ(NumberOfOpening(path), engine::EngineNumber::Damaged);
    std::string detail;
    ASSERT_EQ(engine::RepairDatabase(path, &detail), 0) << detail;
    const auto saved = SoundRows(*OpenStore(path)).size();
    EXPECT_GT(saved, 100U);
    EXPECT_EQ(detail.find(std::to_string(saved)), 0U) << detail;

    for (const std::string& bytes : {std::string(), std::string("no database"), good.substr(0, 4096),
                                     std::string(16, 'x') + good.substr(16)}) {
        WriteFile(path, bytes);
        EXPECT_EQ(engine::RepairDatabase(path, &detail), engine::EngineNumber::Damaged);
        EXPECT_FALSE(detail.empty());
        EXPECT_TRUE(ReadFile(path) == bytes) << bytes.size();
    }
    EXPECT_EQ(engine::RepairDatabase(folder / "none.bmr"), engine::EngineNumber::NotFound);
}

TEST(Damage, FlippedBitsNeverCrashAndARefusedFileIsLeftAlone) {
    const TempFolder folder;
    MakeFilled(folder / "good.bmr", 60);
    const std::string good = ReadFile(folder / "good.bmr");
    const auto path = folder / "bad.bmr";
    std::mt19937 random(20);
    int refused = 0;
    int differs = 0;
    for (int round = 0; round < 300; ++round) {
        std::string bad = good;
        // Half of the flips hit the first pages, where the structure is.
        const std::size_t at = random() % (round % 2 == 0 ? bad.size() : 3 * 4096);
        bad[at] = static_cast<char>(bad[at] ^ (1 << random() % 8));
        WriteFile(path, bad);
        auto db = engine::Database::Open(path);
        if (!db) {
            ++refused;
            EXPECT_TRUE(ReadFile(path) == bad);
            continue;
        }
        differs += SoundRows(**db).size() != 60 ? 1 : 0;
        auto rows = (*db)->OpenRecordset("SELECT * FROM tt WHERE fSec > 3 ORDER BY fR1, fT1");
        for (; rows && !(*rows)->Eof(); (*rows)->MoveNext())
            (*rows)->Field("fEtx");
        (void)(*db)->CheckIntegrity();
        if (round % 10 == 0) {
            (void)(*db)->Execute("DELETE * FROM tt WHERE fR1 > 30");
            db = Error{};
            (void)engine::RepairDatabase(path);
        }
    }
    EXPECT_GT(refused, 5);
    EXPECT_GT(differs, 5);
}

}  // namespace
}  // namespace bmr::store
