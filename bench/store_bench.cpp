// login100k    what 100,000 rows add to a login, against one plain scan of fSec and fT1 with a hash   limit 2
// list100k     the task list's rows, private ones shown, against the bare statement                    limit
// 2 hidden100k   the same with private ones hidden, against the batch kernel over as many fields limit 1.5
// save         one task, against a bare durable insert of the same row limit 1.3
#include <algorithm>
#include <unordered_set>
#include <vector>

#include "database.h"
#include "ratio.h"
#include "store/section_store.h"
#include "tasks/tasklist.h"

namespace {

using namespace bmr;
using bench::BareDatabase;
using bench::BenchDatabase;
using bench::BestOf;

constexpr int kRows = 100000;
constexpr int kRuns = 9;
std::size_t sink = 0;

double BareScan(const std::filesystem::path& path) {
    return BestOf(kRuns, [&] {
        BareDatabase bare(path);
        sqlite3_stmt* statement = bare.Prepare("SELECT fSec, fT1 FROM tt");
        std::unordered_set<std::string> seen;
        while (sqlite3_step(statement) == SQLITE_ROW) {
            if (sqlite3_column_int(statement, 0) <= 10) continue;
            const auto* text = static_cast<const char*>(sqlite3_column_blob(statement, 1));
            seen.emplace(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, 1)));
        }
        sqlite3_finalize(statement);
        sink += seen.size();
    });
}

double BareList(const std::filesystem::path& path) {
    BareDatabase bare(path);
    return BestOf(kRuns, [&] {
        sqlite3_stmt* statement =
            bare.Prepare("SELECT fPK, fG1, fR1, fR2, fR3, fF1, fF2, fF3 FROM tt WHERE fSec=15 AND fF3=0");
        struct Row {
            std::int32_t values[8];
        };
        std::vector<Row> rows;
        while (sqlite3_step(statement) == SQLITE_ROW) {
            Row row{};
            for (int i = 0; i < 8; ++i)
                row.values[i] = sqlite3_column_int(statement, i);
            rows.push_back(row);
        }
        sqlite3_finalize(statement);
        sink += rows.size();
    });
}

double OpenAndClose(BenchDatabase& database) {
    return BestOf(kRuns, [&] {
        database.Open();
        database.session.DatabaseOpen = true;
        database.Close();
    });
}

double Kernel(BenchDatabase& database) {
    std::vector<Bytes> fields;
    auto cursor = database.session.ProgramDb->Select("SELECT fEtx FROM tt WHERE fSec=15");
    while (cursor && cursor->Next())
        fields.emplace_back(cursor->Bytes(0));
    const std::vector<std::string_view> views(fields.begin(), fields.end());
    return BestOf(kRuns, [&] {
        cry::DecipherBatch(database.session.cipher, views,
                           [&](std::size_t, std::string_view plain) { sink += plain.size(); });
    });
}

double List(BenchDatabase& database) {
    return BestOf(kRuns, [&] {
        auto rows = tasks::ListRecords(database.session, {});
        sink += rows ? rows->size() : 0;
    });
}

double Save(BenchDatabase& database) {
    tasks::Task task;
    task.task = "Renew the library card";
    return BestOf(300, [&] {
        task.key = store::kNewRecord;
        BenchDatabase::Check(tasks::WriteRecord(database.session, task).error);
    });
}

double BareSave(const std::filesystem::path& path) {
    BareDatabase bare(path);
    sqlite3_stmt* statement = bare.Prepare(
        "INSERT INTO tt (fPK, fEtx, fSec, fSub, fG1, fR1, fR2, fR3, fR4, fF1, fF2, fF3, fT1, fT2, fT3, AE) "
        "VALUES (random() % 2000000000, randomblob(58), 15, 0, 0, random() % 2000000000, random() % "
        "2000000000, "
        "random() % 2000000000, random() % 2000000000, 0, 0, 0, randomblob(34), randomblob(16), "
        "randomblob(16), 1)");
    const double best = BestOf(300, [&] {
        if (sqlite3_step(statement) != SQLITE_DONE) throw std::runtime_error("bare insert");
        sqlite3_reset(statement);
    });
    sqlite3_finalize(statement);
    return best;
}

}  // namespace

int main() {
    BenchDatabase empty("empty");
    empty.Close();
    BenchDatabase large("large");
    large.AddTasks(kRows);
    large.session.ShowPrivate = true;
    const double list = List(large);
    large.session.ShowPrivate = false;
    const double hidden = List(large);
    const double kernel = Kernel(large);
    const double save = Save(large);
    large.Close();

    bench::Report report;
    report.Ratio("login100k", OpenAndClose(large) - OpenAndClose(empty), BareScan(large.path), 2);
    report.Ratio("list100k", list, BareList(large.path), 2);
    report.Ratio("hidden100k", hidden, kernel, 1.5);
    report.Ratio("save", save, BareSave(large.path), 1.3);
    return sink == 0 ? 1 : report.Status();
}
