#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <random>
#include <thread>

#include "engine/db.h"
#include "support/store_file.h"

namespace bmr::store {
namespace {

using test::NewStore;
using test::OpenStore;
using test::TempFolder;

constexpr int kRows = 6;
constexpr int kKills = 220;

/// What a row holds in a generation; now and then too much for one page.
Bytes Payload(int row, std::int32_t generation) {
    return Bytes(generation % 7 == row ? 20000 : 300, ByteChar(static_cast<unsigned>(generation * 31 + row)));
}

/// Saves all rows in one transaction, again and again, and tells the parent after each save that stood.
[[noreturn]] void SaveForEver(const std::filesystem::path& path, int tell) {
    auto db = engine::Database::Open(path);
    if (!db) _exit(1);
    std::int32_t generation = 0;
    {
        auto table = (*db)->OpenRecordset("tt");
        if (!table) _exit(2);
        generation = NumberOf((*table)->Field("fR1"));
    }
    for (;;) {
        ++generation;
        engine::Transaction save(**db);
        auto table = (*db)->OpenRecordset("tt");
        for (int row = 0; row < kRows; ++row) {
            if ((*table)->FindFirst("fSec=15 And fSub=?", {row}) != 0) _exit(3);
            if (row == generation % kRows) {  // one row goes and comes back instead
                if ((*table)->Delete() != 0) _exit(3);
                (*table)->AddNew();
                (*table)->SetField("fSec", 15);
                (*table)->SetField("fSub", row);
            } else {
                (*table)->Edit();
            }
            (*table)->SetField("fR1", generation);
            (*table)->SetField("fEtx", Payload(row, generation));
            if ((*table)->Update() != 0) _exit(4);
        }
        if (save.Commit() != 0) _exit(5);
        if (::write(tell, &generation, sizeof(generation)) != sizeof(generation)) _exit(6);
    }
}

/// Lets a child save for a random time, kills it, and gives the last generation that it called saved.
std::int32_t KillWhileSaving(const std::filesystem::path& path, std::mt19937& random) {
    int ends[2];
    if (::pipe(ends) != 0) throw std::runtime_error("no pipe");
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[0]);
        SaveForEver(path, ends[1]);
    }
    ::close(ends[1]);
    std::int32_t saved = -1;
    if (::read(ends[0], &saved, sizeof(saved)) != sizeof(saved)) ADD_FAILURE() << "no save at all";
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 6000));
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status)) << "the child ended by itself: " << WEXITSTATUS(status);
    std::int32_t later = 0;
    while (::read(ends[0], &later, sizeof(later)) == sizeof(later))
        saved = later;
    ::close(ends[0]);
    return saved;
}

TEST(Kill, AtAnyMomentLeavesTheOldOrTheNewStateAndNoConfirmedSaveIsLost) {
    const TempFolder folder;
    const auto path = folder / "a.bmr";
    {
        const auto db = NewStore(path);
        auto table = db->OpenRecordset("tt");
        for (int row = 0; row < kRows; ++row) {
            (*table)->AddNew();
            (*table)->SetField("fSec", 15);
            (*table)->SetField("fSub", row);
            (*table)->SetField("fEtx", Payload(row, 0));
            ASSERT_EQ((*table)->Update(), 0);
        }
    }
    std::mt19937 random(std::random_device{}());
    int journals = 0;
    int between = 0;
    for (int kill = 0; kill < kKills; ++kill) {
        const std::int32_t confirmed = KillWhileSaving(path, random);
        std::error_code none;
        const auto size = std::filesystem::file_size(path.string() + "-journal", none);
        journals += !none && size > 0 ? 1 : 0;

        const auto db = OpenStore(path);
        ASSERT_TRUE(db->CheckIntegrity().empty()) << "kill " << kill;
        auto rows = db->Select("SELECT fSub, fR1, fEtx FROM tt WHERE fSec=15 ORDER BY fSub");
        ASSERT_TRUE(rows);
        std::int32_t found = -1;
        int count = 0;
        for (; rows->Next(); ++count) {
            ASSERT_EQ(rows->Int(0), count);
            if (count == 0) found = rows->Int(1);
            ASSERT_EQ(rows->Int(1), found) << "a save is whole or not at all";
            ASSERT_EQ(rows->Bytes(2), Payload(count, found));
        }
        ASSERT_EQ(count, kRows);
        ASSERT_TRUE(found == confirmed || found == confirmed + 1) << found << " after " << confirmed;
        between += found == confirmed + 1 ? 1 : 0;
    }
    EXPECT_FALSE(std::filesystem::exists(path.string() + "-journal"));
    // The kills did meet saves that were under way.
    EXPECT_GT(journals, kKills / 20);
    RecordProperty("journals", journals);
    RecordProperty("between", between);
    std::printf("[          ] %d kills met an open journal, %d a save that was not told yet\n", journals,
                between);
}

/// Saves a row at a time whenever the file is free, until `leave` closes; tells of the first, and how many
/// stood.
[[noreturn]] void SaveWheneverFree(const std::filesystem::path& path, int leave, int tell) {
    ::fcntl(leave, F_SETFL, O_NONBLOCK);
    std::int32_t saved = 0;
    for (char byte = 0; ::read(leave, &byte, 1) != 0;) {
        auto db = engine::Database::Open(path);
        if (!db) continue;
        auto table = (*db)->OpenRecordset("tt");
        (*table)->AddNew();
        (*table)->SetField("fSec", 16);
        if ((*table)->Update() != 0) continue;
        if (++saved == 1 && ::write(tell, &saved, sizeof(saved)) != sizeof(saved)) _exit(1);
    }
    _exit(::write(tell, &saved, sizeof(saved)) == sizeof(saved) ? 0 : 1);
}

TEST(Compacting, LosesNothingThatAnotherProgramSavesMeanwhile) {
    const TempFolder folder;
    const auto path = folder / "a.bmr";
    {
        const auto db = NewStore(path);
        auto table = db->OpenRecordset("tt");
        engine::Transaction bulk(*db);
        for (int i = 0; i < 4000; ++i) {
            (*table)->AddNew();
            (*table)->SetField("fEtx", Bytes(300, 'x'));
            ASSERT_EQ((*table)->Update(), 0);
        }
        ASSERT_EQ(bulk.Commit(), 0);
    }
    int leave[2];
    int told[2];
    ASSERT_EQ(::pipe(leave), 0);
    ASSERT_EQ(::pipe(told), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(leave[1]);
        SaveWheneverFree(path, leave[0], told[1]);
    }
    std::int32_t saved = 0;
    ASSERT_EQ(::read(told[0], &saved, sizeof(saved)), static_cast<ssize_t>(sizeof(saved)));
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    int done = 0;
    while (done < 10 && std::chrono::steady_clock::now() < end) {
        if (engine::CompactInPlace(path, folder / "a.tmp") == 0) ++done;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    ::close(leave[1]);
    ASSERT_EQ(::read(told[0], &saved, sizeof(saved)), static_cast<ssize_t>(sizeof(saved)));
    ::waitpid(child, nullptr, 0);
    EXPECT_EQ(done, 10);
    const auto db = OpenStore(path);
    auto rows = db->OpenRecordset("SELECT fPK FROM tt WHERE fSec=16");
    ASSERT_TRUE(rows);
    EXPECT_EQ((*rows)->RecordCount(), saved);
}

TEST(Compacting, AKillLeavesNothingThatKeepsTheNextOneAway) {
    const TempFolder folder;
    const auto path = folder / "a.bmr";
    const auto copy = folder / "a.tmp";
    {
        const auto db = NewStore(path);
        auto table = db->OpenRecordset("tt");
        engine::Transaction bulk(*db);
        for (int i = 0; i < 4000; ++i) {
            (*table)->AddNew();
            (*table)->SetField("fEtx", Bytes(300, 'x'));
            ASSERT_EQ((*table)->Update(), 0);
        }
        ASSERT_EQ(bulk.Commit(), 0);
    }
    // Kills fall anywhere in two runs, however long one takes here and now.
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_EQ(engine::CompactInPlace(path, copy), 0);
    const auto run =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - begin);
    std::mt19937 random(std::random_device{}());
    int left = 0;
    for (int kill = 0; kill < 60 || (left == 0 && kill < 400); ++kill) {
        const pid_t child = ::fork();
        if (child == 0)
            for (;;)
                if (engine::CompactInPlace(path, copy) != 0) _exit(1);
        std::this_thread::sleep_for(
            std::chrono::microseconds(random() % static_cast<unsigned>(2 * run.count() + 1)));
        ::kill(child, SIGKILL);
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status)) << "kill " << kill << ": the child was kept away";
        if (!std::filesystem::exists(copy)) continue;
        ++left;
        EXPECT_TRUE(engine::IsLeftoverCopy(copy)) << "kill " << kill;
    }
    EXPECT_GT(left, 0) << "no kill met a copy that was being written";
    ASSERT_EQ(engine::CompactInPlace(path, copy), 0);
    EXPECT_FALSE(std::filesystem::exists(copy));
    EXPECT_FALSE(engine::IsLeftoverCopy(path)) << "the mark is gone from what took the place";
    const auto db = OpenStore(path);
    EXPECT_TRUE(db->CheckIntegrity().empty());
    auto rows = db->OpenRecordset("tt");
    EXPECT_EQ((*rows)->RecordCount(), 4000);
}

}  // namespace
}  // namespace bmr::store
