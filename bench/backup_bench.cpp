// backup100    a backup of a database of 100 MB, read, packed on all cores and brought to the disk, against
// the
//              library's one-shot compress of the same bytes in memory   limit 0.5, size 1.02
// restore100   the way back, tested and brought to the disk, against the library's one-shot uncompress and a
//              plain write and sync   limit 1.1
// memory       what a backup and a restore take   limit 64 MiB
// palm10k      10,000 records of each kind of a handheld's files planned and stored, against the bulk path of
//              the same records   limit 2
#include <zlib.h>

#include <fstream>
#include <iterator>

#include "../tests/support/palm.h"
#include "backup/compressfile.h"
#include "backup/makebackup.h"
#include "database.h"
#include "engine/fileio.h"
#include "interchange/palmimport.h"
#include "notes/memo.h"
#include "ratio.h"

namespace {

using namespace bmr;
using bench::BenchDatabase;
using bench::BestOf;

constexpr int kRuns = 3;
constexpr int kMemos = 62000;
constexpr int kMemosAtOnce = 2000;
constexpr int kPalmRecords = 10000;

/// The most memory that the process has held since `ForgetPeak`, in MiB.
double PeakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmHWM:")) return std::stod(line.substr(6)) / 1024;
    return 0;
}

void ForgetPeak() {
    std::ofstream("/proc/self/clear_refs") << "5";
}

void FillWithMemos(BenchDatabase& database) {
    database.session.undo.recording = false;
    for (int first = 0; first < kMemos; first += kMemosAtOnce) {
        std::vector<notes::Memo> memos(kMemosAtOnce);
        for (int i = 0; i < kMemosAtOnce; ++i) {
            memos[static_cast<std::size_t>(i)].subject = "Memo " + std::to_string(first + i);
            memos[static_cast<std::size_t>(i)].body =
                std::string(static_cast<std::size_t>(200 + i % 2000), 'm');
        }
        BenchDatabase::Check(notes::AddRecords(database.session, memos));
    }
}

template <class Value>
Value Must(const Result<Value>& result) {
    if (!result) throw std::runtime_error(backup::ErrorText(result.error()));
    return *result;
}

void MeasureBackups(bench::Report& report) {
    BenchDatabase database("backup");
    FillWithMemos(database);
    database.Close();
    const auto folder = database.path.parent_path();
    ForgetPeak();
    const double before = PeakMemory();
    const DateValue now = database.clock.Now();
    backup::MadeBackup made;
    double processor = 1e300;
    const double packing = BestOf(kRuns, [&] {
        const std::clock_t begin = std::clock();
        made = Must(backup::MakeBackup(database.path, folder, now));
        processor = std::min(processor, static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
    });
    const auto restored = folder / "bench.bmq";
    const double unpacking = BestOf(kRuns, [&] { Must(backup::Unpack(made.file, restored)); });
    const double memory = PeakMemory() - before;

    std::ifstream file(database.path, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(file)), {});
    std::printf("a database of %.1f MB\n", static_cast<double>(bytes.size()) / 1e6);
    uLongf size = 0;
    std::string packed(compressBound(bytes.size()), '\0');
    double baseProcessor = 1e300;
    const double base = BestOf(kRuns, [&] {
        const std::clock_t begin = std::clock();
        size = packed.size();
        compress(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(bytes.data()),
                 bytes.size());
        baseProcessor = std::min(baseProcessor, static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC);
    });
    report.Ratio("backup100", packing, base, 0.5);
    report.Ratio("packing100", processor / 2, baseProcessor, 0.5);
    const double ratio = static_cast<double>(made.bytes) / static_cast<double>(size);
    report.Figure("backup100, its size against the library's", ratio, 1.02, "times");
    const auto plain = folder / "plain";
    const double plainWay = BestOf(kRuns, [&] {
        uLongf length = bytes.size();
        uncompress(reinterpret_cast<Bytef*>(bytes.data()), &length,
                   reinterpret_cast<const Bytef*>(packed.data()), size);
        std::ofstream(plain, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(length));
        engine::SyncFile(plain);
    });
    report.Ratio("restore100", unpacking, plainWay, 1.1);
    report.Figure("memory of both", memory, 64, "MiB");
}

void WritePalmFile(const std::filesystem::path& path, std::uint8_t section) {
    test::PalmWriter writer;
    constexpr auto kCount = static_cast<std::uint32_t>(kPalmRecords);
    const std::vector<std::string> categories{"Business", "Personal"};
    if (section == store::Section::Memo) writer.Header("MP10", "memopad.dat", categories, 5, kCount);
    if (section == store::Section::Todo) writer.Header("TD10", "todo.dat", categories, 9, kCount);
    if (section == store::Section::Calendar) writer.Header("DB10", "datebook.dat", {}, 15, kCount);
    for (std::uint32_t i = 0; i < kCount; ++i) {
        const std::string text = "Renew the library card of number " + std::to_string(i);
        const std::uint32_t start = 1500000000 + i * 3600;
        if (section == store::Section::Memo)
            writer.Memo(text + "\nBring the old one along.", i % 20 == 0, i % 3);
        if (section == store::Section::Todo)
            writer.Todo(text, i % 2 == 0 ? start : 0, false, i % 5 + 1, "note", i % 3);
        if (section == store::Section::Calendar) writer.Appointment(text, start, start + 1800).NoRepeat();
    }
    std::ofstream(path, std::ios::binary) << writer.bytes;
}

int AddBulk(store::Session& session, interchange::PalmPlan& plan) {
    if (auto* memos = std::get_if<std::vector<notes::Memo>>(&plan.records))
        return notes::AddRecords(session, *memos);
    if (auto* tasks = std::get_if<std::vector<tasks::Task>>(&plan.records))
        return tasks::AddRecords(session, *tasks);
    return calendar::AddRecords(session, std::get<std::vector<calendar::Appointment>>(plan.records));
}

void MeasureImport(bench::Report& report, std::uint8_t section, const std::string& name) {
    double ours = 1e300;
    double base = 1e300;
    for (int run = 0; run < kRuns; ++run) {
        BenchDatabase database("palm");
        const auto file = database.path.parent_path() / std::string(interchange::PalmFileName(section));
        WritePalmFile(file, section);
        // The same rows before each, so that both find the same section.
        auto bulk = Must(interchange::PlanPalmImport(database.session, section, file, {}));
        base = std::min(base, BestOf(1, [&] { BenchDatabase::Check(AddBulk(database.session, bulk)); }));
        BenchDatabase::Check(store::DeleteRows(database.session, section));
        ours = std::min(
            ours, BestOf(1, [&] {
                auto plan = Must(interchange::PlanPalmImport(database.session, section, file, {}));
                BenchDatabase::Check(interchange::StorePalmPlan(database.session, plan, false).error);
            }));
    }
    report.Ratio("palm10k, " + name, ours, base, 2);
}

}  // namespace

int main() {
    bench::Report report;
    MeasureBackups(report);
    MeasureImport(report, store::Section::Memo, "memos");
    MeasureImport(report, store::Section::Todo, "tasks");
    MeasureImport(report, store::Section::Calendar, "appointments");
    return report.Status();
}
