// memolist100k  the memo list's rows, private ones shown, against the bare statement in that order limit 2.5
// memosave      a new memo among 100,000, against a bare durable insert of such a row, median limit 1.5
// rewrites      share of saves that move their neighbours, over 100,000 new memos                    limit
// 0.001 bulk10k       10,000 memos at once, against 30,000 fields of the batch kernel and bare inserts
// limit 1.5
#include <algorithm>
#include <array>
#include <vector>

#include "database.h"
#include "notes/memo.h"
#include "ratio.h"

namespace {

using namespace bmr;
using bench::BareDatabase;
using bench::BenchDatabase;
using bench::BestInTurns;

constexpr int kRows = 100000;
constexpr int kSaves = 400;
constexpr std::size_t kBulk = 10000;
std::size_t sink = 0;

/// Every pair of first letters is as likely as any other.
Bytes RandomSubject(RandomSource& random) {
    Bytes subject;
    for (int i = 0; i < 12; ++i)
        subject += static_cast<char>((i == 0 ? 'A' : 'a') + DrawBelow(random, 26));
    return subject + " and what belongs to it";
}

notes::Memo RandomMemo(store::Session& session) {
    notes::Memo memo = notes::ClearRecord(session, DrawBelow(session.ports.random, 5));
    memo.subject = RandomSubject(session.ports.random);
    memo.body = Bytes(static_cast<std::size_t>(40 + DrawBelow(session.ports.random, 160)), 'x');
    memo.isPrivate = DrawBelow(session.ports.random, 20) == 0;
    return memo;
}

std::vector<notes::Memo> RandomMemos(store::Session& session, std::size_t count) {
    std::vector<notes::Memo> memos;
    for (std::size_t i = 0; i < count; ++i)
        memos.push_back(RandomMemo(session));
    return memos;
}

/// One by one, as a person does, in one transaction, as no person does: the share of saves that wrote more
/// than the row.
double FillOneByOne(BenchDatabase& database) {
    store::Session& session = database.session;
    engine::Transaction transaction(*session.ProgramDb);
    int rewriting = 0;
    for (int i = 0; i < kRows; ++i) {
        notes::Memo memo = RandomMemo(session);
        const std::int64_t before = session.ProgramDb->ChangeCount();
        BenchDatabase::Check(notes::WriteRecord(session, memo));
        if (session.ProgramDb->ChangeCount() - before > 1) ++rewriting;
    }
    BenchDatabase::Check(transaction.Commit());
    return static_cast<double>(rewriting) / kRows;
}

void BareList(BareDatabase& bare) {
    sqlite3_stmt* statement = bare.Prepare(
        "SELECT fPK, fR1, floor(fR2/(4294967296.0/42)+21.0) AS X FROM tt WHERE fSec=14 ORDER BY X, fR1");
    std::vector<std::array<std::int32_t, 2>> rows;
    while (sqlite3_step(statement) == SQLITE_ROW)
        rows.push_back({sqlite3_column_int(statement, 0), sqlite3_column_int(statement, 1)});
    sqlite3_finalize(statement);
    sink += rows.size();
}

/// Inserts rows of the size of memos, each statement a transaction unless one is open.
class BareInserts {
  public:
    explicit BareInserts(BareDatabase& bare)
        : statement_(
              bare.Prepare("INSERT INTO tt (fPK, fEtx, fSec, fSub, fG1, fR1, fR2, fR3, fR4, fF1, fF2, "
                           "fF3, fT1, fT2, fT3, AE) VALUES (random() % 2000000000, randomblob(194), 14, "
                           "0, 0, random() % 2000000000, random() % 2000000000, random() % 2000000000, "
                           "random() % 2000000000, 0, 0, 0, randomblob(50), randomblob(16), "
                           "randomblob(16), 1)")) {}
    ~BareInserts() { sqlite3_finalize(statement_); }
    BareInserts(const BareInserts&) = delete;
    BareInserts& operator=(const BareInserts&) = delete;
    void One() {
        if (sqlite3_step(statement_) != SQLITE_DONE) throw std::runtime_error("bare insert");
        sqlite3_reset(statement_);
    }

  private:
    sqlite3_stmt* statement_;
};

template <class Work>
double SecondsOf(Work work) {
    return bench::BestOf(1, work);
}

double Median(std::vector<double>& values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void MeasureSaves(BenchDatabase& database, BareDatabase& bare, bench::Report& report) {
    std::vector<double> ours;
    std::vector<double> base;
    BareInserts inserts(bare);
    std::vector<notes::Memo> memos = RandomMemos(database.session, kSaves);
    for (notes::Memo& memo : memos) {
        ours.push_back(SecondsOf([&] { BenchDatabase::Check(notes::WriteRecord(database.session, memo)); }));
        base.push_back(SecondsOf([&] { inserts.One(); }));
    }
    report.Ratio("memosave", Median(ours), Median(base), 1.5);
}

/// What a copy of the file as it stands gives a bare connection, beside ours.
std::filesystem::path CopyOf(const BenchDatabase& database) {
    std::filesystem::path path = database.path;
    path.replace_extension(".bare");
    std::filesystem::copy_file(database.path, path, std::filesystem::copy_options::overwrite_existing);
    return path;
}

void MeasureLarge(bench::Report& report) {
    BenchDatabase large("order");
    const double share = FillOneByOne(large);
    report.Figure("rewrites", share, 0.001, "of all saves");
    large.session.ShowPrivate = true;
    BareDatabase bare(CopyOf(large));
    const auto list = BestInTurns(
        9, [&] { BareList(bare); },
        [&] {
            auto rows = notes::ListRecords(large.session, store::Category::All);
            sink += rows ? rows->size() : 0;
        });
    report.Ratio("memolist100k", list.ours, list.base, 2.5);
    MeasureSaves(large, bare, report);
}

void MeasureBulk(bench::Report& report) {
    BenchDatabase small("bulk");
    store::Session& session = small.session;
    BareDatabase bare(CopyOf(small));
    std::vector<notes::Memo> memos = RandomMemos(session, kBulk);
    // A payload and two names for each memo.
    std::vector<Bytes> fields;
    for (const notes::Memo& memo : memos) {
        fields.push_back(cry::FieldCipher(session.cipher, 1, memo.subject + memo.body + Bytes(27, 'x')));
        for (int i = 0; i < 2; ++i)
            fields.push_back(cry::FieldCipher(session.cipher, 1, memo.subject));
    }
    const std::vector<std::string_view> views(fields.begin(), fields.end());
    const auto kernel = [&] {
        cry::DecipherBatch(session.cipher, views,
                           [](std::size_t, std::string_view plain) { sink += plain.size(); });
        BareInserts inserts(bare);
        bare.Run("BEGIN");
        for (std::size_t i = 0; i < kBulk; ++i)
            inserts.One();
        bare.Run("COMMIT");
    };
    bench::BestPair best;
    for (int run = 0; run < 7; ++run) {
        const auto pair =
            BestInTurns(1, kernel, [&] { BenchDatabase::Check(notes::AddRecords(session, memos)); });
        best.base = std::min(best.base, pair.base);
        best.ours = std::min(best.ours, pair.ours);
        BenchDatabase::Check(notes::DeleteRecords(session, store::Category::All));
        bare.Run("DELETE FROM tt WHERE fSec=14");
    }
    report.Ratio("bulk10k", best.ours, best.base, 1.5);
}

}  // namespace

int main() {
    bench::Report report;
    MeasureLarge(report);
    MeasureBulk(report);
    return sink == 0 ? 1 : report.Status();
}
