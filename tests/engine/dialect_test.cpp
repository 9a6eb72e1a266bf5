#include "engine/dialect.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <random>

#include "engine/db.h"
#include "support/store_file.h"

namespace bmr::engine {
namespace {

using test::NewStore;
using test::TempFolder;

/// What a test knows of a row without asking the engine.
struct Row {
    std::int32_t fPK = 0, fSec = 0, fSub = 0, fR1 = 0, fR2 = 0, fR3 = 0, fR4 = 0;
    std::int32_t fG1 = -1;  ///< -1: Null
    bool fF3 = false;
    Bytes fT1;
    bool noT1 = false;
};

class Statements : public testing::Test {
  protected:
    Statements() : db_(NewStore(folder_ / "a.bmr")) {}

    void Fill(int count) {
        std::mt19937 engine(7);
        const auto below = [&](unsigned limit) { return static_cast<std::int32_t>(engine() % limit); };
        const std::int32_t sections[] = {1, 2, 5, 9, 10, 11, 12, 13, 14, 15, 16, 17};
        ASSERT_EQ(db_->BeginTrans(), 0);
        auto table = db_->OpenRecordset("tt");
        ASSERT_TRUE(table);
        for (int i = 0; i < count; ++i) {
            Row row;
            row.fSec = sections[below(12)];
            row.fSub = row.fSec == 12 ? below(256) : row.fSec == 10 ? 11 + below(9) : below(2);
            row.fR1 = below(2147483648U);
            row.fR2 = static_cast<std::int32_t>(engine());
            row.fR3 = below(2147483648U);
            row.fR4 = below(2147483648U);
            row.fG1 = below(6) - 1;
            row.fF3 = below(2) == 1;
            row.fT1 = "text " + std::to_string(below(40));
            row.noT1 = below(10) == 0;
            Store(**table, row);
            rows_.push_back(row);
        }
        ASSERT_EQ(db_->CommitTrans(), 0);
    }

    static void Store(Recordset& table, Row& row) {
        table.AddNew();
        table.SetField("fSec", row.fSec);
        table.SetField("fSub", row.fSub);
        table.SetField("fR1", row.fR1);
        table.SetField("fR2", row.fR2);
        table.SetField("fR3", row.fR3);
        table.SetField("fR4", row.fR4);
        table.SetField("fG1", row.fG1 == -1 ? Value(Null{}) : Value(row.fG1));
        table.SetField("fF3", row.fF3);
        table.SetField("fT1", row.noT1 ? Value(Null{}) : Value(row.fT1));
        ASSERT_EQ(table.Update(), 0);
        row.fPK = NumberOf(table.Field("fPK"));
    }

    /// Keys of the rows that meet `meets`, in the order of `key` (or of insertion).
    std::vector<std::int32_t> Expected(
        const std::function<bool(const Row&)>& meets,
        const std::function<std::vector<double>(const Row&)>& key = nullptr) const {
        std::vector<Row> chosen;
        std::copy_if(rows_.begin(), rows_.end(), std::back_inserter(chosen), meets);
        if (key)
            std::stable_sort(chosen.begin(), chosen.end(),
                             [&](const Row& a, const Row& b) { return key(a) < key(b); });
        std::vector<std::int32_t> keys;
        for (const Row& row : chosen)
            keys.push_back(row.fPK);
        return keys;
    }

    /// Keys by all three ways of reading, which must agree.
    std::vector<std::int32_t> Keys(const std::string& statement) {
        std::vector<std::int32_t> dynaset = Walk(statement, RecordsetType::Dynaset);
        EXPECT_EQ(Walk(statement, RecordsetType::Snapshot), dynaset) << statement;
        auto cursor = db_->Select(statement);
        std::vector<std::int32_t> forward;
        while (cursor && cursor->Next())
            forward.push_back(cursor->Int(0));
        EXPECT_EQ(forward, dynaset) << statement;
        return dynaset;
    }

    std::vector<std::int32_t> Walk(const std::string& statement, RecordsetType type) {
        std::vector<std::int32_t> keys;
        auto rows = db_->OpenRecordset(statement, type);
        EXPECT_TRUE(rows) << statement << ": " << db_->LastError();
        if (!rows) return keys;
        for (; !(*rows)->Eof(); (*rows)->MoveNext())
            keys.push_back(NumberOf((*rows)->Field("fPK")));
        return keys;
    }

    /// The value of an expression over a table with one row (fR1 = 7, fT3 Null).
    Value Compute(const std::string& expression) {
        auto rows = db_->OpenRecordset("SELECT " + expression + " AS X FROM tt");
        EXPECT_TRUE(rows) << expression << ": " << db_->LastError();
        return rows ? (*rows)->Field("x") : Value(Empty{});
    }

    TempFolder folder_;
    std::unique_ptr<Database> db_;
    std::vector<Row> rows_;
};

TEST_F(Statements, EachThatTheProgramComposesRuns) {
    Fill(3000);
    const auto other = folder_ / "other \"1\".bma";
    ASSERT_EQ(CreateStore(other), 0);
    std::string quoted = other.string();
    for (std::size_t at = 0; (at = quoted.find('"', at)) != std::string::npos; at += 2)
        quoted.insert(at, "\"");
    std::ifstream file(std::string(BMR_TEST_DATA) + "/statements.txt");
    int ran = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        if (const auto at = line.find("{path}"); at != std::string::npos) line.replace(at, 6, quoted);
        ++ran;
        if (line.starts_with("SELECT")) {
            auto rows = db_->OpenRecordset(line, RecordsetType::Snapshot);
            ASSERT_TRUE(rows) << line << ": " << db_->LastError();
            const bool byKey =
                line.find("fPK=") != std::string::npos || line.find("fPK =") != std::string::npos;
            EXPECT_EQ((*rows)->RecordCount() > 0, !byKey) << line;
        } else {
            const std::int64_t before = db_->ChangeCount();
            EXPECT_EQ(db_->Execute(line), 0) << line << ": " << db_->LastError();
            EXPECT_EQ(db_->ChangeCount() > before, line.find("fPK=") == std::string::npos) << line;
        }
    }
    EXPECT_EQ(ran, 38);
}

TEST_F(Statements, ChooseAndOrderWhatAComputationChooses) {
    Fill(3000);
    const auto bucket = [](const Row& row) { return std::floor(row.fR2 / (4294967296.0 / 42) + 21); };
    const std::string x = "Int([fR2] / (2 ^ 32 / 42) + 42 / 2)";

    EXPECT_EQ(Keys("SELECT fPK, " + x + " AS X FROM tt WHERE fSec=14 And fG1=3 ORDER BY " + x +
                   ", fR1 WITH OWNERACCESS OPTION;"),
              Expected([](const Row& r) { return r.fSec == 14 && r.fG1 == 3; },
                       [&](const Row& r) {
                           return std::vector<double>{bucket(r), double(r.fR1)};
                       }));
    EXPECT_EQ(
        Keys("SELECT fPK, fR2 FROM tt WHERE (fR2 Between -2000000000 And 900000000) AND (fSec=11)) ORDER BY "
             "fR1"),
        Expected([](const Row& r) { return r.fSec == 11 && r.fR2 >= -2000000000 && r.fR2 <= 900000000; },
                 [](const Row& r) { return std::vector<double>{double(r.fR1)}; }));
    EXPECT_EQ(Keys("SELECT fPK FROM tt WHERE ((fSec=12) AND (fSub < 148) AND (fR3 Between 500000000 And "
                   "1500000000)) ORDER BY Int([fR3]/81574), fR1"),
              Expected(
                  [](const Row& r) {
                      return r.fSec == 12 && r.fSub < 148 && r.fR3 >= 500000000 && r.fR3 <= 1500000000;
                  },
                  [](const Row& r) {
                      return std::vector<double>{std::floor(r.fR3 / 81574.0), double(r.fR1)};
                  }));
    EXPECT_EQ(
        Keys("SELECT fPK FROM tt WHERE fSec=17 And (((fR1 Mod 4) Mod 2) =1)  And (((fR1 Mod 4) \\ 2) =0)  "
             "And (fR3 Between 100000000 And 2000000000) ORDER BY fR3"),
        Expected(
            [](const Row& r) {
                return r.fSec == 17 && r.fR1 % 4 == 1 && r.fR3 >= 100000000 && r.fR3 <= 2000000000;
            },
            [](const Row& r) { return std::vector<double>{double(r.fR3)}; }));
    EXPECT_EQ(Keys("SELECT fPK FROM tt WHERE (fSec=12) AND (fSub >= 148) AND ((fR4 < 1900000000 AND fR2 > "
                   "100000000)) ORDER BY fR4 DESC"),
              Expected(
                  [](const Row& r) {
                      return r.fSec == 12 && r.fSub >= 148 && r.fR4 < 1900000000 && r.fR2 > 100000000;
                  },
                  [](const Row& r) { return std::vector<double>{-double(r.fR4)}; }));
    // Null is neither equal nor unequal to anything.
    EXPECT_EQ(Keys("SELECT fPK FROM tt WHERE fSec=15 And Not (fG1 = 3 Or fF3 = True)"),
              Expected([](const Row& r) { return r.fSec == 15 && r.fG1 != -1 && r.fG1 != 3 && !r.fF3; }));
}

TEST_F(Statements, BindValuesInTheOrderOfTheirMarks) {
    Fill(2000);
    const auto keys = [&](std::string_view statement, Parameters values) {
        std::vector<std::int32_t> found;
        auto cursor = db_->Select(statement, values);
        while (cursor && cursor->Next())
            found.push_back(cursor->Int(0));
        auto rows = db_->OpenRecordset(statement, RecordsetType::Dynaset, values);
        EXPECT_TRUE(cursor && rows) << db_->LastError();
        EXPECT_EQ(rows ? (*rows)->RecordCount() : -1, static_cast<std::int64_t>(found.size()));
        return found;
    };
    const std::string range = "SELECT fPK FROM tt WHERE (fR2 Between ? And ?) And fSec=? ORDER BY fR1";
    for (const auto& [low, high, section] : {std::tuple{-1000000000, 1000000000, 14},
                                             std::tuple{INT32_MIN, INT32_MAX, 11}, std::tuple{5, 4, 14}}) {
        EXPECT_EQ(keys(range, {low, high, section}),
                  Expected([low = low, high = high, section = section](
                               const Row& r) { return r.fSec == section && r.fR2 >= low && r.fR2 <= high; },
                           [](const Row& r) { return std::vector<double>{double(r.fR1)}; }));
    }
    EXPECT_EQ(keys("SELECT fPK FROM tt WHERE fSec=? And fR1 Mod ? = 1 ORDER BY fR1", {15, 3}),
              Expected([](const Row& r) { return r.fSec == 15 && r.fR1 % 3 == 1; },
                       [](const Row& r) { return std::vector<double>{double(r.fR1)}; }));

    auto table = db_->OpenRecordset("tt");
    ASSERT_TRUE(table);
    for (const Row& row : {rows_[7], rows_[1999], rows_[7]}) {
        EXPECT_EQ((*table)->FindFirst("fSec=? And fPK=?", {row.fSec, row.fPK}), 0);
        EXPECT_EQ((*table)->Field("fR1"), Value(row.fR1));
    }
    EXPECT_EQ(db_->Execute("DELETE * FROM tt WHERE fPK=?", {rows_[7].fPK}), 0);
    EXPECT_EQ((*table)->FindFirst("fPK=?", {rows_[7].fPK}), 0);
    EXPECT_TRUE((*table)->NoMatch());

    const std::int64_t before = db_->ChangeCount();
    for (const Parameters values : {Parameters{}, Parameters{15, 16}}) {
        EXPECT_FALSE(db_->Select("SELECT fPK FROM tt WHERE fSec=?", values));
        EXPECT_FALSE(db_->OpenRecordset("SELECT fPK FROM tt WHERE fSec=?", RecordsetType::Snapshot, values));
        EXPECT_EQ(db_->Execute("DELETE * FROM tt WHERE fSec=?", values), EngineNumber::BadStatement);
        EXPECT_EQ((*table)->FindFirst("fSec=?", values), EngineNumber::BadStatement);
        EXPECT_EQ((*table)->FindFirst("fSec=15", {1}), EngineNumber::BadStatement);
    }
    EXPECT_EQ(db_->ChangeCount(), before);
}

TEST_F(Statements, GroupAndCount) {
    Fill(3000);
    std::map<std::int32_t, int> sections;
    std::map<Bytes, int> texts;
    for (const Row& row : rows_) {
        if (row.fSec > 10) ++sections[row.fSec];
        if (row.fSec == 11 && !row.noT1) ++texts[row.fT1];
    }
    auto found = db_->OpenRecordset("SELECT fSec, Count(*) AS N FROM tt GROUP BY fSec HAVING fSec>10;");
    ASSERT_TRUE(found);
    std::map<std::int32_t, int> counted;
    for (; !(*found)->Eof(); (*found)->MoveNext())
        counted[NumberOf((*found)->Field("fSec"))] = NumberOf((*found)->Field("N"));
    EXPECT_EQ(counted, sections);

    auto doubles = db_->Select(
        "SELECT fT1 FROM tt WHERE fSec=11 And Not(fT1 Is Null) GROUP BY fT1 HAVING (Count(fPK)>1);");
    ASSERT_TRUE(doubles);
    std::size_t expected = 0;
    for (const auto& [text, count] : texts)
        expected += count > 1 ? 1 : 0;
    std::size_t seen = 0;
    for (; doubles->Next(); ++seen)
        EXPECT_GT(texts[Bytes(doubles->Bytes(0))], 1);
    EXPECT_EQ(seen, expected);
}

TEST_F(Statements, CopyToAnotherFileAndDelete) {
    Fill(500);
    const auto archive = folder_ / "a.bma";
    ASSERT_EQ(CreateStore(archive), 0);
    const std::string which = "((fSec=12) AND (fSub < 148) AND (fR3 <= 1000000000));";
    const auto meets = [](const Row& r) { return r.fSec == 12 && r.fSub < 148 && r.fR3 <= 1000000000; };
    ASSERT_EQ(db_->BeginTrans(), 0);
    ASSERT_EQ(db_->Execute("INSERT INTO tt IN \"" + archive.string() + "\" SELECT * From tt WHERE " + which),
              0);
    ASSERT_EQ(db_->Execute("DELETE * FROM tt WHERE " + which), 0);
    ASSERT_EQ(db_->CommitTrans(), 0);
    const auto byNumber = [](const Row& r) { return std::vector<double>{double(r.fR1)}; };
    const std::string left = "SELECT fPK FROM tt ORDER BY fR1";
    EXPECT_EQ(Keys(left), Expected([&](const Row& r) { return !meets(r); }, byNumber));
    const auto expected = Expected(meets, byNumber);
    ASSERT_FALSE(expected.empty());
    db_ = test::OpenStore(archive);
    EXPECT_EQ(Keys(left), expected);
}

TEST_F(Statements, ComputeLikeTheDialect) {
    Row row;
    row.fR1 = 7;
    Store(**db_->OpenRecordset("tt"), row);
    const std::pair<const char*, double> cases[] = {{"-2 ^ 2", -4},
                                                    {"2 ^ 3 ^ 2", 64},
                                                    {"2 ^ -1", 0.5},
                                                    {"5 / 2", 2.5},
                                                    {"6 / 2", 3},
                                                    {"7 \\ 2 * 2", 1},
                                                    {"10 Mod 4 \\ 2", 0},
                                                    {"7 Mod 5 + 1", 3},
                                                    {"-7 Mod 4", -3},
                                                    {"7 Mod -4", 3},
                                                    {"-7 \\ 2", -3},
                                                    {"2.5 Mod 4", 2},
                                                    {"3.5 Mod 5", 4},
                                                    {"-2.5 \\ 1", -2},
                                                    {"Int(-0.5)", -1},
                                                    {"Int(2.999)", 2},
                                                    {"Int(fR1 / 2)", 3},
                                                    {"2 + 3 * 4 - 1", 13},
                                                    {"8 / 4 / 2", 1},
                                                    {"10 - 4 - 3", 3},
                                                    {"fR1 / 2", 3.5},
                                                    {"[fR1] Mod 4", 3},
                                                    {"tt.fR1 \\ 4", 1},
                                                    {"Abs(-3)", 3},
                                                    {"1--1", 2},
                                                    {"1 + 1 = 2", 1},
                                                    {"Not 1 = 2", 1},
                                                    {"Not(1 = 1)", 0},
                                                    {"1 Or 0 And 0", 1},
                                                    {"(1 Or 0) And 0", 0},
                                                    {"Not 0 And 0", 0},
                                                    {"3 Between 1 And 3", 1},
                                                    {"fT3 Is Null", 1},
                                                    {"fT1 Is Not Null", 1},
                                                    {"2 ^ 32 / 42", 4294967296.0 / 42},
                                                    {"2 ^ 31", 2147483648.0},
                                                    {"1 <> 2", 1},
                                                    {"1 >= 2", 0}};
    for (const auto& [expression, expected] : cases) {
        const Value value = Compute(expression);
        const auto* real = std::get_if<double>(&value);
        EXPECT_DOUBLE_EQ(real != nullptr ? *real : NumberOf(value, -999), expected) << expression;
    }
    for (const char* expression :
         {"5 Mod 0", "5 \\ 0", "fR1 \\ fR2", "5 / 0", "1 + Null", "Int(Null)", "fT3"})
        EXPECT_EQ(Compute(expression), Value(Null{})) << expression;
    EXPECT_EQ(Compute("fF1"), Value(false));
    EXPECT_EQ(Compute("fT1"), Value(Bytes()));
}

TEST(Dialect, RefusesWhatItDoesNotKnow) {
    const char* cases[] = {"",
                           ";",
                           "SELECT",
                           "SELECT * FROM sqlite_master",
                           "SELECT * FROM tt, tt",
                           "SELECT rowid FROM tt",
                           "SELECT * FROM tt WHERE fSec=1; DELETE * FROM tt WHERE fSec=1",
                           "SELECT * FROM tt WHERE fSec=1 -- all",
                           "SELECT * FROM tt /* all */ WHERE fSec=1",
                           "SELECT * FROM tt WHERE fSec=1 UNION SELECT * FROM tt",
                           "SELECT * FROM tt WHERE fSec=(SELECT 1)",
                           "SELECT * FROM tt WHERE fT1='x' Or 1=1",
                           "SELECT * FROM tt WHERE (fSec=1",
                           "SELECT * FROM tt WHERE fSec=1))",
                           "SELECT * FROM tt WHERE fSec=@sec",
                           "SELECT * FROM tt WHERE fSec=1 1",
                           "SELECT * FROM tt WHERE Count(fPK)>1",
                           "SELECT * FROM tt ORDER BY 1",
                           "SELECT load_extension(1) FROM tt",
                           "SELECT fR1 AS X FROM tt WHERE X=1",
                           "SELECT ? FROM tt",
                           "SELECT fPK FROM tt ORDER BY fR1 + ?",
                           "SELECT fSec FROM tt GROUP BY fSec HAVING fSec>?",
                           "SELECT fPK FROM ?",
                           "SELECT fPK FROM tt WHERE fPK=?1",
                           "SELECT * FROM tt WHERE fR1 = 1.2.3",
                           "SELECT * FROM tt WHERE [fR1 = 1",
                           "DELETE * FROM tt",
                           "DELETE * FROM tt WHERE fSec=1)",
                           "UPDATE tt SET fSec=1",
                           "DROP TABLE tt",
                           "PRAGMA synchronous=OFF",
                           "ATTACH 'x' AS y",
                           "INSERT INTO tt SELECT * FROM tt",
                           "INSERT INTO tt IN \"\" SELECT * FROM tt WHERE fSec=1",
                           "INSERT INTO tt IN \"a SELECT * FROM tt WHERE fSec=1"};
    for (const char* text : cases) {
        const auto translated = Translate(text);
        ASSERT_FALSE(translated) << text << " became " << translated->WithIndex("");
        EXPECT_EQ(translated.error().number, EngineNumber::BadStatement);
    }
    EXPECT_FALSE(Translate("SELECT " + std::string(100000, '(') + "1"));
    EXPECT_FALSE(Translate("SELECT " + std::string(100000, '-') + "1 FROM tt"));
    EXPECT_FALSE(TranslateCriteria("fSec=1 ORDER BY fR1"));
    EXPECT_NE(Translate("SELECT fNo FROM tt").error().detail.find("character 8"), std::string::npos);
}

TEST(Dialect, FindsTheWaysIn) {
    const auto translated = Translate(
        "select * from TT where (FSEC=12) and ([fR3] between 5 and -(-9)) and "
        "(3 < fR4 and fr4 <= 8) and not fR1=1 and (fR2=1 or fR5=2) order by [FR1], fR2");
    ASSERT_TRUE(translated);
    const std::vector<IndexRange> expected{{"fSec", 12, 12}, {"fR3", 5, 9}, {"fR4", 4, 8}};
    EXPECT_EQ(translated->Ranges({}), expected);
    EXPECT_EQ(translated->orderedBy, "fR1");
    const auto bound =
        Translate("SELECT * FROM tt WHERE fR2 Between ? And ? And ? > fR2 And fSec=? And fR1=-?");
    ASSERT_TRUE(bound);
    EXPECT_EQ(bound->parameters, 5U);
    EXPECT_EQ(bound->Ranges(std::array{-7, 90, 80, 12, 1}),
              (std::vector<IndexRange>{{"fR2", -7, 79}, {"fSec", 12, 12}}));
    EXPECT_EQ(Translate("SELECT * FROM tt ORDER BY fR1 DESC")->orderedBy, "");
}

}  // namespace
}  // namespace bmr::engine
