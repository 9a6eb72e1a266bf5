#include "engine/db.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <set>

#include "engine/columns.h"
#include "engine/db_engine.h"
#include "support/random.h"
#include "support/store_file.h"

namespace bmr::engine {
namespace {

using test::NewStore;
using test::OpenStore;
using test::TempFolder;

/// Adds a row to `table`; gives its key.
std::int32_t Add(Recordset& table, std::int32_t section, std::int32_t number, const Bytes& text = "x") {
    table.AddNew();
    table.SetField("fSec", section);
    table.SetField("fR1", number);
    table.SetField("fEtx", text);
    EXPECT_EQ(table.Update(1, 0), 0);
    return NumberOf(table.Field("fPK"));
}

std::unique_ptr<Recordset> Rows(Database& db, std::string_view text,
                                RecordsetType type = RecordsetType::Dynaset) {
    auto rows = db.OpenRecordset(text, type);
    if (!rows) throw std::runtime_error(rows.error().detail);
    return std::move(*rows);
}

std::vector<std::int32_t> Numbers(Recordset& rows) {
    std::vector<std::int32_t> numbers;
    for (rows.MoveFirst(); !rows.Eof(); rows.MoveNext())
        numbers.push_back(NumberOf(rows.Field("fR1")));
    return numbers;
}

using Ints = std::vector<std::int32_t>;

TEST(Store, NewFileHasTheTableAndNothingElse) {
    const TempFolder folder;
    const auto path = folder / "a.bmr";
    const auto usual = ::umask(0);
    const int error = CreateStore(path);
    ::umask(usual);  // the tests behind this one share the process
    ASSERT_EQ(error, 0);
    struct stat status {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
    const std::string bytes = test::ReadFile(path);
    EXPECT_EQ(bytes.substr(0, 15), "SQLite format 3");
    EXPECT_EQ(ByteAt(bytes, 16) * 256 + ByteAt(bytes, 17), 4096U);
    EXPECT_EQ(ByteAt(bytes, 20), 8U);
    EXPECT_EQ(bytes.substr(bytes.size() - 8), std::string(8, '\0'));
    EXPECT_NE(CreateStore(path), 0) << "an existing file stays";
    EXPECT_EQ(test::ReadFile(path), bytes);

    const auto engine = Engine::Open(path, Engine::Purpose::Use);
    ASSERT_TRUE(engine);
    const auto words = [&](const char* sql) {
        std::vector<std::string> lines;
        auto query = (*engine)->Prepare(sql);
        while (query && query->Step())
            lines.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(query->handle(), 0)));
        return lines;
    };
    EXPECT_EQ(words("SELECT name FROM pragma_table_xinfo('tt')"),
              std::vector<std::string>(ColumnNames.begin(), ColumnNames.end()));
    EXPECT_EQ(words("SELECT name || ' ' || \"unique\" || ' ' || origin || ' ' || partial FROM "
                    "pragma_index_list('tt') ORDER BY name"),
              (std::vector<std::string>{"PrimaryKey 0 c 0", "fR1 0 c 0", "fR2 0 c 0", "fR3 0 c 0",
                                        "fR4 0 c 0", "fR5 0 c 0", "fSec 0 c 0", "fSub 0 c 0"}));
    EXPECT_EQ(words("SELECT name FROM pragma_index_info('PrimaryKey')"), std::vector<std::string>{"fPK"});
    EXPECT_EQ(words("SELECT count(*) FROM sqlite_schema"), std::vector<std::string>{"9"});
}

TEST(Store, RowsStartWithTheDefaultsAndARandomKey) {
    const TempFolder folder;
    const auto db = NewStore(folder / "a.bmr");
    auto table = Rows(*db, "tt");
    std::set<std::int32_t> keys;
    bool negative = false;
    for (int i = 0; i < 64; ++i) {
        table->AddNew();
        EXPECT_EQ(table->Field("fT1"), Value(Bytes("0")));
        ASSERT_EQ(table->Update(), 0);
        const std::int32_t key = NumberOf(table->Field("fPK"));
        keys.insert(key);
        negative = negative || key < 0;
    }
    EXPECT_EQ(keys.size(), 64U);
    EXPECT_TRUE(negative);
    table->MoveFirst();
    for (const char* name : {"fT1", "fT2"})
        EXPECT_EQ(table->Field(name), Value(Bytes("0"))) << name;
    for (const char* name : {"fEtx", "fT3", "fG1", "AE"})
        EXPECT_EQ(table->Field(name), Value(Null{})) << name;
    for (const char* name : {"fSec", "fSub", "fR1", "fR5"})
        EXPECT_EQ(table->Field(name), Value(0)) << name;
    EXPECT_EQ(table->Field("fF2"), Value(false));
    EXPECT_EQ(table->Field("fNone"), Value(Empty{}));
}

TEST(Store, KeysAreDrawnAnewWhenTheyMayNotStand) {
    test::ScriptedRandom random;
    for (const char* four : {"\0\0\0\0", "\xff\xff\xff\xff", "\0\0\0\x07", "\x80\0\0\0"})
        random.AddBytes({four, 4});
    EXPECT_EQ(DrawKey(random, [](std::int32_t key) { return key == 7; }), INT32_MIN);
}

TEST(Store, KeepsEveryValueAColumnCanHold) {
    const TempFolder folder;
    Bytes all;
    for (unsigned code = 0; code < 256; ++code)
        all += ByteChar(code);
    {
        const auto db = NewStore(folder / "a.bmr");
        auto table = Rows(*db, "tt");
        table->AddNew();
        table->SetField("fEtx", all);
        table->SetField("fT1", Bytes());
        table->SetField("fT2", Null{});
        table->SetField("fsec", 255);
        table->SetField("FR1", INT32_MIN);
        table->SetField("fR2", INT32_MAX);
        table->SetField("fG1", -32768);
        table->SetField("AE", 32767);
        table->SetField("fF1", true);
        ASSERT_EQ(table->Update(), 0);
    }
    const auto db = OpenStore(folder / "a.bmr");
    for (const auto type : {RecordsetType::Dynaset, RecordsetType::Snapshot}) {
        auto row = Rows(*db, "SELECT * FROM tt", type);
        EXPECT_EQ(row->Field("fEtx"), Value(all));
        EXPECT_EQ(row->Field("fT1"), Value(Bytes()));
        EXPECT_EQ(row->Field("fT2"), Value(Null{}));
        EXPECT_EQ(row->Field("fSec"), Value(255));
        EXPECT_EQ(row->Field("fR1"), Value(INT32_MIN));
        EXPECT_EQ(row->Field("fR2"), Value(INT32_MAX));
        EXPECT_EQ(row->Field("fG1"), Value(-32768));
        EXPECT_EQ(row->Field("AE"), Value(32767));
        EXPECT_EQ(row->Field("fF1"), Value(true));
    }
}

TEST(Store, RefusesWhatAColumnCannotHold) {
    const TempFolder folder;
    const auto db = NewStore(folder / "a.bmr");
    auto table = Rows(*db, "tt");
    Add(*table, 15, 1);
    const std::pair<const char*, Value> cases[] = {
        {"fSec", 256}, {"fSub", -1},     {"fG1", 32768},      {"AE", -32769},
        {"fR1", 1.5},  {"fT1", 5},       {"fR1", Bytes("1")}, {"fPK", 5},
        {"fNone", 1},  {"fR1", Money{}}, {"fF1", Bytes("")},  {"fEtx", DateValue{1}}};
    for (const auto& [name, value] : cases) {
        table->Edit();
        table->SetField("fR2", 77);
        table->SetField(name, value);
        EXPECT_NE(table->Update(), 0) << name;
        EXPECT_NE(db->LastError().find(name), std::string::npos);
    }
    EXPECT_EQ(table->Field("fR2"), Value(0)) << "nothing of a refused row is written";
    EXPECT_NE(table->Update(), 0) << "without Edit";
    auto snapshot = Rows(*db, "SELECT * FROM tt", RecordsetType::Snapshot);
    snapshot->Edit();
    snapshot->SetField("fR1", 2);
    EXPECT_NE(snapshot->Update(), 0);
    EXPECT_NE(snapshot->Delete(), 0);
    EXPECT_EQ(table->RecordCount(), 1);
}

TEST(Store, MovesFindsAndMarksAlikeInEveryKindOfRecordset) {
    const TempFolder folder;
    const auto db = NewStore(folder / "a.bmr");
    Ints keys;
    for (int i = 0; i < 10; ++i)
        keys.push_back(Add(*Rows(*db, "tt"), i < 8 ? 15 : 2, i));
    struct Kind {
        const char* text;
        RecordsetType type;
    };
    for (const Kind kind : {Kind{"tt", RecordsetType::Dynaset}, Kind{"tt", RecordsetType::Snapshot},
                            Kind{"SELECT fPK, fR1, fSec FROM tt", RecordsetType::Dynaset}}) {
        SCOPED_TRACE(std::string(kind.text) +
                     (kind.type == RecordsetType::Snapshot ? " snapshot" : " dynaset"));
        auto rows = Rows(*db, kind.text, kind.type);
        const auto number = [&] { return NumberOf(rows->Field("fR1"), -1); };
        EXPECT_EQ(rows->RecordCount(), 10);
        EXPECT_EQ(number(), 0);
        EXPECT_EQ(rows->AbsolutePosition(), 0);
        rows->Move(4);
        EXPECT_EQ(number(), 4);
        const auto mark = rows->Bookmark();
        rows->MoveLast();
        EXPECT_EQ(number(), 9);
        rows->MovePrevious();
        EXPECT_EQ(number(), 8);
        EXPECT_EQ(rows->AbsolutePosition(), 8);
        rows->Move(-3, mark);
        EXPECT_EQ(number(), 1);
        rows->SetBookmark(mark);
        EXPECT_EQ(number(), 4);
        rows->Move(6);
        EXPECT_TRUE(rows->Eof());
        EXPECT_EQ(rows->AbsolutePosition(), -1);
        EXPECT_EQ(rows->Field("fR1"), Value(Null{}));
        rows->MovePrevious();
        EXPECT_EQ(number(), 9);
        rows->Move(-20);
        EXPECT_EQ(rows->Field("fR1"), Value(Null{}));
        EXPECT_FALSE(rows->Eof());
        rows->MoveNext();
        EXPECT_EQ(number(), 0);
        if (kind.type == RecordsetType::Snapshot) {
            EXPECT_NE(rows->FindFirst("fSec=2"), 0) << "it has no index to be searched by";
            continue;
        }

        EXPECT_EQ(rows->FindFirst("fSec=2 And fR1>8"), 0);
        EXPECT_FALSE(rows->NoMatch());
        EXPECT_EQ(number(), 9);
        EXPECT_EQ(rows->FindFirst("fPK = ?", {keys[3]}), 0);
        EXPECT_EQ(rows->AbsolutePosition(), 3);
        EXPECT_EQ(rows->FindFirst("fSec = 15"), 0);
        EXPECT_EQ(number(), 0) << "the first by insertion";
        EXPECT_EQ(rows->FindFirst("fSec=3"), 0);
        EXPECT_TRUE(rows->NoMatch());
        EXPECT_EQ(number(), 0) << "no match leaves the present row";
        EXPECT_EQ(rows->FindFirst("fSec=2; DELETE * FROM tt"), EngineNumber::BadStatement);
        EXPECT_TRUE(rows->NoMatch());
    }
    for (const char* text : {"SELECT * FROM tt WHERE fSec=3", "SELECT * FROM tt WHERE fSec=3 ORDER BY fR1"}) {
        auto none = Rows(*db, text);
        EXPECT_TRUE(none->Eof());
        none->MoveLast();
        EXPECT_TRUE(none->Eof());
        EXPECT_EQ(none->RecordCount(), 0);
    }
}

TEST(Store, AddsNoRowBehindASearchThatFailed) {
    const TempFolder folder;
    const auto path = folder / "a.bmr";
    std::int32_t key = 0;
    {
        const auto db = NewStore(path);
        auto table = Rows(*db, "tt");
        key = Add(*table, 10, 1, "the row on the damaged page");
        for (int i = 0; i < 100; ++i)
            Add(*table, 15, i, Bytes(300, 'x'));
    }
    test::DamagePageWith(path, "the row on the damaged page");
    const auto db = OpenStore(path);
    auto table = Rows(*db, "tt");
    EXPECT_EQ(table->FindFirst("fSec=10 And fR1=1"), EngineNumber::Damaged);
    EXPECT_TRUE(table->NoMatch());
    const std::int64_t before = db->ChangeCount();
    for (int i = 0; i < 2; ++i) {
        table->AddNew();
        table->SetField("fSec", 10);
        EXPECT_EQ(table->Update(), EngineNumber::Damaged);
    }
    EXPECT_EQ(table->FindFirst("fPK=?", {key}), 0) << "the index still knows it";
    table->Edit();
    table->SetField("fR1", 2);
    EXPECT_EQ(table->Update(), EngineNumber::Damaged) << "a row that cannot be read is not written over";
    EXPECT_EQ(db->ChangeCount(), before);
    EXPECT_EQ(table->FindFirst("fSec=11"), 0);
    Add(*table, 11, 1);
}

TEST(Store, EditsAndDeletesWhileWalking) {
    const TempFolder folder;
    const auto db = NewStore(folder / "a.bmr");
    for (const char* text : {"tt", "SELECT fPK, AE, fR1 FROM tt WHERE fSec=11 ORDER BY fR1"}) {
        SCOPED_TRACE(text);
        {
            auto table = Rows(*db, "tt");
            for (const int number : {1, 2, 3, 4, 5, 6})
                Add(*table, 11, number);
        }
        auto rows = Rows(*db, text);
        for (; !rows->Eof(); rows->MoveNext()) {
            const int number = NumberOf(rows->Field("fR1"));
            if (number % 2 == 0) {
                EXPECT_EQ(rows->Delete(), 0);
                EXPECT_EQ(rows->Field("fR1"), Value(Null{}));
                EXPECT_NE(rows->Delete(), 0) << "a row is deleted once";
                continue;
            }
            rows->Edit();
            rows->SetField("fR1", number * 10);
            EXPECT_EQ(rows->Field("fR1"), Value(number * 10));
            if (number == 3) continue;  // without Update
            rows->SetField("AE", NumberOf(rows->Field("AE")) | 2);
            EXPECT_EQ(rows->Update(), 0);
            EXPECT_EQ(rows->Field("AE"), Value(2));
        }
        EXPECT_EQ(rows->RecordCount(), 3);
        EXPECT_EQ(Numbers(*rows), (Ints{10, 3, 50}));
        rows->MoveLast();
        EXPECT_EQ(rows->AbsolutePosition(), 2);
        rows->Move(-2);
        EXPECT_EQ(rows->Field("fR1"), Value(10));
        Add(*rows, 11, 99);
        EXPECT_EQ(Numbers(*rows), (Ints{10, 3, 50, 99}));
        const std::int64_t before = db->ChangeCount();
        EXPECT_EQ(db->Execute("DELETE * FROM tt WHERE fSec=11"), 0);
        EXPECT_EQ(db->ChangeCount() - before, 4);
        rows->MoveFirst();
        rows->Edit();
        rows->SetField("fR1", 1);
        EXPECT_NE(rows->Update(), 0) << "a row that is gone cannot be written";
    }
}

TEST(Store, SnapshotKeepsWhatItRead) {
    const TempFolder folder;
    const auto db = NewStore(folder / "a.bmr");
    Add(*Rows(*db, "tt"), 11, 1);
    auto snapshot = Rows(*db, "SELECT *, fR1 / 2 AS Half FROM tt", RecordsetType::Snapshot);
    ASSERT_EQ(db->Execute("DELETE * FROM tt WHERE fSec=11"), 0);
    EXPECT_EQ(snapshot->Field("fR1"), Value(1));
    EXPECT_EQ(snapshot->Field("half"), Value(0.5));
}

TEST(Store, TransactionsNestAndRollBackWhole) {
    const TempFolder folder;
    const auto db = NewStore(folder / "a.bmr");
    auto table = Rows(*db, "tt");
    const auto count = [&] { return Rows(*db, "tt")->RecordCount(); };
    {
        Transaction outer(*db);
        Add(*table, 15, 1);
        {
            Transaction inner(*db);
            Add(*table, 15, 2);
            EXPECT_EQ(inner.Commit(), 0);
        }
        EXPECT_EQ(outer.Commit(), 0);
    }
    EXPECT_EQ(count(), 2);
    {
        const Transaction left(*db);
        Add(*table, 15, 3);
        EXPECT_EQ(db->Execute("DELETE * FROM tt WHERE fR1=1"), 0);
    }
    EXPECT_EQ(count(), 2);
    {
        Transaction outer(*db);
        Add(*table, 15, 4);
        { const Transaction inner(*db); }
        table->AddNew();
        EXPECT_NE(table->Update(), 0) << "no write slips out behind an inner rollback";
        EXPECT_NE(db->Execute("DELETE * FROM tt WHERE fR1=1"), 0);
        EXPECT_NE(outer.Commit(), 0);
    }
    EXPECT_EQ(count(), 2);
    EXPECT_NE(db->CommitTrans(), 0) << "without a transaction";
    EXPECT_EQ(db->BeginTrans(), 0);
    Add(*table, 15, 5);
    EXPECT_EQ(db->CommitTrans(), 0);
    EXPECT_EQ(count(), 3);
}

TEST(Store, ReadersOutliveNothing) {
    const TempFolder folder;
    auto db = NewStore(folder / "a.bmr");
    auto table = Rows(*db, "tt");
    Add(*table, 15, 1);
    Add(*table, 15, 2);
    auto keys = Rows(*db, "SELECT * FROM tt");
    auto cursor = db->Select("SELECT fR1 FROM tt");
    ASSERT_TRUE(cursor && cursor->Next());
    db.reset();
    EXPECT_FALSE(cursor->Next());
    EXPECT_NE(cursor->error(), 0);
    EXPECT_EQ(cursor->Int(0), 0);
    for (auto* rows : {table.get(), keys.get()}) {
        rows->MoveNext();
        EXPECT_NE(rows->FindFirst("fSec=15"), 0);
        EXPECT_TRUE(rows->NoMatch() && rows->Eof());
        EXPECT_NE(rows->Delete(), 0);
        rows->AddNew();
        EXPECT_NE(rows->Update(), 0);
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "a.bmr-journal"));
    EXPECT_TRUE(Database::Open(folder / "a.bmr"));
}

TEST(Store, CopyToAnotherFileStandsOrFallsWithTheTransaction) {
    const TempFolder folder;
    const auto db = NewStore(folder / "a.bmr");
    Add(*Rows(*db, "tt"), 12, 1, "secret");
    const auto copy = [&](const std::filesystem::path& to) {
        return db->Execute("INSERT INTO tt IN \"" + to.string() + "\" SELECT * From tt WHERE (fSec=12);");
    };
    ASSERT_EQ(CreateStore(folder / "b.bma"), 0);
    {
        const Transaction undone(*db);
        EXPECT_EQ(copy(folder / "b.bma"), 0);
        EXPECT_EQ(db->Execute("DELETE * FROM tt WHERE fSec=12"), 0);
    }
    EXPECT_EQ(Rows(*OpenStore(folder / "b.bma"), "tt")->RecordCount(), 0);
    EXPECT_EQ(copy(folder / "b.bma"), 0);
    EXPECT_EQ(Rows(*OpenStore(folder / "b.bma"), "tt")->RecordCount(), 1);
    EXPECT_EQ(Rows(*OpenStore(folder / "b.bma"), "tt")->Field("fEtx"), Value(Bytes("secret")));
    EXPECT_EQ(Rows(*OpenStore(folder / "b.bma"), "tt")->Field("fPK"), Rows(*db, "tt")->Field("fPK"));

    EXPECT_EQ(copy(folder / "none.bma"), EngineNumber::NotFound);
    EXPECT_FALSE(std::filesystem::exists(folder / "none.bma"));
    test::WriteFile(folder / "text.bma", "This is no database at all, only some words.");
    EXPECT_EQ(copy(folder / "text.bma"), EngineNumber::Damaged);
    {
        const auto held = OpenStore(folder / "b.bma");
        EXPECT_EQ(copy(folder / "b.bma"), EngineNumber::InUse);
    }
    EXPECT_EQ(copy(folder / "a.bmr"), EngineNumber::InUse) << "into itself";
    EXPECT_EQ(copy(folder / "b.bma"), 0) << "a failure leaves nothing attached";
    EXPECT_EQ(Rows(*db, "tt")->RecordCount(), 1);
}

TEST(Store, TakesTheIndexThatTheRowsAskFor) {
    const TempFolder folder;
    ASSERT_EQ(CreateStore(folder / "a.bmr"), 0);
    const std::string inOrder = "SELECT fPK FROM tt WHERE fSec=15 ORDER BY fR1";
    const auto engine = Engine::Open(folder / "a.bmr", Engine::Purpose::Use);
    ASSERT_TRUE(engine);
    const auto ways = [&](const std::string& statement) {
        const auto plan = (*engine)->PlanOf(statement);
        return plan ? (*plan)->ways.toAll + " " + (*plan)->ways.toFirst : (*engine)->lastError();
    };
    EXPECT_EQ(ways(inOrder), "fSec fSec");
    ASSERT_EQ((*engine)->Begin(), 0);
    auto insert = (*engine)->Prepare("INSERT INTO tt (fPK, fSec, fR1, fR3) VALUES (?1, ?2, ?3, ?1)");
    for (int i = 1; i <= 6000; ++i) {
        insert->Bind(1, std::int64_t{i});
        insert->Bind(2, std::int64_t{i <= 3 ? 1 : i <= 1000 ? 12 : 15});
        insert->Bind(3, std::int64_t{i * 7919 % 6000});
        ASSERT_EQ((*engine)->Write(*insert), 0);
    }
    ASSERT_EQ((*engine)->Commit(), 0);
    EXPECT_EQ(ways(inOrder), "fSec fR1") << "chosen anew after many changes";
    EXPECT_EQ(ways("SELECT * FROM tt WHERE fSec=1 ORDER BY fR1"), "fSec fSec");
    EXPECT_EQ(ways("SELECT * FROM tt WHERE fSec=15 And fPK=7 ORDER BY fR1"), "PrimaryKey PrimaryKey");
    EXPECT_EQ(ways("SELECT * FROM tt WHERE fSec=1 And fSub=0"), "fSec fSec");
    EXPECT_EQ(ways("SELECT * FROM tt WHERE fSec=12 And fSub >= 148 And fR3 < 5000"), "fSub fSub");
    EXPECT_EQ(ways("SELECT * FROM tt WHERE fSec=12 And fSub < 148 And fR3 < 5000"), "fSec fSec");
    EXPECT_EQ(ways("SELECT * FROM tt WHERE fSec=12 And fR3 Between 500 And 520 ORDER BY fR1"), "fR3 fR3");
    EXPECT_EQ(ways("SELECT * FROM tt WHERE fSec=1 And fR3 Between 1 And 5000"), "fSec fSec");
    EXPECT_EQ(ways("DELETE * FROM tt WHERE fSec=15 And fR3 < 40"), "fR3 fR3");
    EXPECT_EQ(ways("SELECT fSec FROM tt GROUP BY fSec HAVING fSec>10;"), " ");
    EXPECT_EQ(ways("DELETE * FROM tt WHERE fSec=15 And fPK=?"), "PrimaryKey PrimaryKey");

    const auto byValues = (*engine)->PlanOf("SELECT fPK FROM tt WHERE fSec=? And (fR3 Between ? And ?)");
    ASSERT_TRUE(byValues);
    const auto chosen = [&](std::array<std::int32_t, 3> values) {
        EXPECT_TRUE((*engine)->Prepare(**byValues, Use::AllRows, values));
        return (*byValues)->ways.toAll;
    };
    EXPECT_EQ(chosen({12, 500, 520}), "fR3");
    EXPECT_EQ(chosen({1, 1, 5000}), "fSec") << "chosen for these values, not for those before";
    EXPECT_EQ(chosen({15, 500, 520}), "fR3");
    const auto series =
        (*engine)->PlanOf("SELECT fPK FROM tt WHERE (fSec=12) AND (fSub >= 148) AND ((fR4 < ? AND fR2 > ?))");
    ASSERT_TRUE(series);
    EXPECT_TRUE((*engine)->Prepare(**series, Use::AllRows, std::array<std::int32_t, 2>{5000, -1}));
    EXPECT_EQ((*series)->ways.toAll, "fSub");

    auto rows = (*engine)->Prepare((*(*engine)->PlanOf(inOrder))->statement.WithIndex("fR1"));
    ASSERT_TRUE(rows);
    for (int i = 0; i < 50; ++i)
        ASSERT_TRUE(rows->Step());
    EXPECT_EQ(sqlite3_stmt_status(rows->handle(), SQLITE_STMTSTATUS_SORT, 0), 0);
    EXPECT_LT(sqlite3_stmt_status(rows->handle(), SQLITE_STMTSTATUS_VM_STEP, 0), 2000);
}

TEST(Store, CompactCopyHoldsTheSameRowsInLess) {
    const TempFolder folder;
    {
        const auto db = NewStore(folder / "a.bmr");
        auto table = Rows(*db, "tt");
        Transaction bulk(*db);
        for (int i = 0; i < 2000; ++i)
            Add(*table, 15, i, Bytes(200, 'x'));
        ASSERT_EQ(bulk.Commit(), 0);
        ASSERT_EQ(db->Execute("DELETE * FROM tt WHERE fR1 >= 50"), 0);
    }
    const auto before = test::ReadFile(folder / "a.bmr");
    ASSERT_EQ(CompactDatabase(folder / "a.bmr", folder / "a.tmp"), 0);
    EXPECT_EQ(test::ReadFile(folder / "a.bmr"), before);
    const auto after = test::ReadFile(folder / "a.tmp");
    EXPECT_LT(after.size() * 4, before.size());
    EXPECT_EQ(ByteAt(after, 20), 8U);
    EXPECT_EQ(std::filesystem::status(folder / "a.tmp").permissions(), std::filesystem::perms(0600));
    EXPECT_NE(CompactDatabase(folder / "a.bmr", folder / "a.tmp"), 0) << "the target may not exist";
    ASSERT_EQ(ReplaceFile(folder / "a.tmp", folder / "a.bmr"), 0);
    EXPECT_FALSE(std::filesystem::exists(folder / "a.tmp"));
    const auto db = OpenStore(folder / "a.bmr");
    auto rows = Rows(*db, "tt");
    const Ints numbers = Numbers(*rows);
    ASSERT_EQ(numbers.size(), 50U);
    EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
    EXPECT_TRUE(db->CheckIntegrity().empty());
}

}  // namespace
}  // namespace bmr::engine
