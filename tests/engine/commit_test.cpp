#include <gtest/gtest.h>

#include <functional>

#include "engine/db.h"
#include "support/failing_disk.h"
#include "support/store_file.h"

namespace bmr::engine {
namespace {

using test::FailingDisk;
using test::TempFolder;

/// The number in the row of class 15; 0 without one.
std::int32_t Standing(Database& db) {
    auto rows = db.Select("SELECT fR1 FROM tt WHERE fSec=15");
    EXPECT_TRUE(rows);
    return rows && rows->Next() ? rows->Int(0) : 0;
}

int WriteNumber(Database& db, std::int32_t number) {
    auto table = db.OpenRecordset("tt");
    if (!table) return table.error().number;
    if (const int error = (*table)->FindFirst("fSec=15")) return error;
    (*table)->Edit();
    (*table)->SetField("fR1", number);
    (*table)->SetField("fEtx", Bytes(9000, 'n'));  // new pages, so that the file grows
    return (*table)->Update();
}

struct Way {
    const char* name;
    std::int32_t written;  ///< what stands where it succeeded; 1 stood before
    std::function<int(Database&)> write;
};

const Way kWays[] = {
    {"a transaction", 2,
     [](Database& db) {
         Transaction outer(db);
         if (outer.error() != 0) return outer.error();
         if (const int error = WriteNumber(db, 3)) return error;
         if (const int error = WriteNumber(db, 2)) return error;
         return outer.Commit();
     }},
    {"an update by itself", 2, [](Database& db) { return WriteNumber(db, 2); }},
    {"a statement by itself", 0, [](Database& db) { return db.Execute("DELETE * FROM tt WHERE fSec=15"); }},
};

struct Tally {
    int stood = 0;
    int undone = 0;
    int unsure = 0;
};

/// Lets the call of number `call` of one write fail and compares what is told with what stands. False when
/// there is no such call any more.
bool TryFailure(const Way& way, int call, int count, Tally& tally) {
    const std::string trace = way.name + (", call " + std::to_string(call)) + ", " + std::to_string(count);
    const TempFolder folder;
    const auto path = folder / "a.bmr";
    auto db = test::NewStore(path);
    auto table = db->OpenRecordset("tt");
    (*table)->AddNew();
    (*table)->SetField("fSec", 15);
    (*table)->SetField("fR1", 1);
    EXPECT_EQ((*table)->Update(), 0);

    bool failed = false;
    int error = 0;
    {
        const FailingDisk disk(call, count);
        error = way.write(*db);
        failed = FailingDisk::Failed();
    }
    const bool doubt = db->TakeDoubt();
    EXPECT_FALSE(db->TakeDoubt()) << "told once";
    if (error == EngineNumber::Unsure) {
        ++tally.unsure;
    } else {
        ++(error == 0 ? tally.stood : tally.undone);
        EXPECT_TRUE(error == 0 || !doubt) << trace;
        EXPECT_EQ(Standing(*db), error == 0 ? way.written : 1) << trace << ": the open file, error " << error;
    }
    db.reset();
    db = test::OpenStore(path);
    EXPECT_TRUE(db->CheckIntegrity().empty()) << trace;
    if (error != EngineNumber::Unsure)
        EXPECT_EQ(Standing(*db), error == 0 ? way.written : 1) << trace << ": opened again, error " << error;
    return failed;
}

TEST(Commit, WhateverFailsOnTheDiskWhatIsToldIsWhatStands) {
    for (const Way& way : kWays) {
        for (const int count : {1, 2, FailingDisk::kForEver}) {
            Tally tally;
            int calls = 1;
            while (TryFailure(way, calls, count, tally) && calls < 100)
                ++calls;
            ASSERT_LT(calls, 100);
            EXPECT_GT(calls, 5) << "a write has more steps than that";
            EXPECT_GT(tally.undone, 0) << way.name;
            if (count == 1) EXPECT_GT(tally.stood, 1) << way.name << ": the last sync fails behind the end";
            if (count == 1) EXPECT_EQ(tally.unsure, 0) << way.name << ": the file can be looked at again";
        }
    }
}

TEST(Commit, OneThatStandsThoughItsLastSyncFailedIsDoneAndDoubtful) {
    const TempFolder folder;
    const auto db = test::NewStore(folder / "a.bmr");
    int doubtful = 0;
    for (int call = 1;; ++call) {
        Transaction change(*db);
        auto table = db->OpenRecordset("tt");
        (*table)->AddNew();
        (*table)->SetField("fSec", 15);
        (*table)->SetField("fR1", call);
        ASSERT_EQ((*table)->Update(), 0);
        const FailingDisk disk(call);
        const int error = change.Commit();
        if (!FailingDisk::Failed()) break;
        auto rows = db->Select("SELECT fPK FROM tt WHERE fR1=?", {call});
        ASSERT_TRUE(rows);
        EXPECT_EQ(rows->Next(), error == 0) << call;
        if (error == 0 && db->TakeDoubt()) ++doubtful;
    }
    EXPECT_GE(doubtful, 1);
}

}  // namespace
}  // namespace bmr::engine
