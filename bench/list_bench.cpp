// screen100k   the task list rebuilt and painted, private ones shown, against the bare statement     limit 2
// memory100k   what 100,000 tasks on the screen add to the process                                   limit 64
// MiB search100k   the same narrowed by a search, against the batch kernel over as many fields limit 2
// close100k    the window's database closed over the task list, in processor time                    limit
// 100 ms lock100k     from the key to the prompt, in processor time limit 100 ms
#include <unistd.h>

#include <QApplication>
#include <QLocale>
#include <ctime>
#include <fstream>
#include <vector>

#include "app/frmMDI.h"
#include "app/hardening.h"
#include "database.h"
#include "forms.h"
#include "kit/programtheme.h"
#include "kit/recordlistview.h"
#include "ratio.h"
#include "tasks/frmTodo.h"

namespace {

using namespace bmr;
using bench::BareDatabase;
using bench::BenchDatabase;

constexpr int kRows = 100000;
constexpr int kRuns = 9;
std::size_t sink = 0;

double ResidentMiB() {
    std::ifstream statm("/proc/self/statm");
    double size = 0;
    double resident = 0;
    statm >> size >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1024 * 1024);
}

void ReadBare(BareDatabase& bare) {
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
}

/// Processor milliseconds that the window takes to close, and to lock, a database whose task list it shows.
/// What is written durably waits for the disk, which is not counted.
std::pair<double, double> CloseAndLock(BenchDatabase& large) {
    app::frmMDI frame({large.session, Forms({}), {large.path.parent_path()}});
    frame.show();
    std::clock_t began = 0;
    double close = 1e300;
    double lock = 1e300;
    const auto since = [&began] { return static_cast<double>(std::clock() - began) * 1e3 / CLOCKS_PER_SEC; };
    const auto show = [&] {
        frame.Start(large.path);
        frame.optSection_Click(store::Section::Todo);
        QCoreApplication::processEvents();
    };
    for (int run = 0; run < 3; ++run) {
        show();
        began = std::clock();
        frame.CloseDatabase();
        close = std::min(close, since());
        show();
        large.prompter.onSecret = [&] { lock = std::min(lock, since()); };
        began = std::clock();
        frame.LockNow();
        large.prompter.onSecret = {};
        frame.CloseDatabase();
    }
    return {close, lock};
}

std::unique_ptr<tasks::frmTodo> Show(store::Session& session) {
    auto form = std::make_unique<tasks::frmTodo>(session);
    form->resize(980, 680);
    form->show();
    QCoreApplication::processEvents();
    return form;
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    app::OverwriteFreed();  // as the program does
    QApplication application(argc, argv);
    const kit::Theme theme(application);

    BenchDatabase empty("none");
    empty.session.ShowPrivate = true;
    Show(empty.session);
    const double before = ResidentMiB();
    BenchDatabase large("many");
    large.AddTasks(kRows);
    large.Close();
    // The bare base needs a second copy: our own connection holds the file alone.
    const auto copy = large.path.string() + "-bare";
    std::filesystem::copy_file(large.path, copy);
    large.Open();
    large.session.ShowPrivate = true;

    auto form = Show(large.session);
    const double after = ResidentMiB();
    auto* list = form->findChild<kit::RecordListView*>("TodoList");
    BareDatabase bare(copy);
    const auto screen = bench::BestInTurns(
        kRuns, [&] { ReadBare(bare); },
        [&] {
            form->showListitems();
            list->repaint();
        });

    std::vector<Bytes> fields;
    auto cursor = large.session.ProgramDb->Select("SELECT fEtx FROM tt WHERE fSec=15");
    while (cursor && cursor->Next())
        fields.emplace_back(cursor->Bytes(0));
    const std::vector<std::string_view> views(fields.begin(), fields.end());
    bool odd = false;
    const auto search = bench::BestInTurns(
        kRuns,
        [&] {
            cry::DecipherBatch(large.session.cipher, views,
                               [&](std::size_t, std::string_view plain) { sink += plain.size(); });
        },
        [&] {
            odd = !odd;
            form->SetSearch(odd ? "number 77" : "number 88");
            list->repaint();
        });
    form.reset();
    large.Close();
    const auto [close, lock] = CloseAndLock(large);

    bench::Report report;
    report.Ratio("screen100k", screen.ours, screen.base, 2);
    report.Figure("memory100k", after - before, 64, "MiB");
    report.Ratio("search100k", search.ours, search.base, 2);
    report.Figure("close100k", close, 100, "ms");
    report.Figure("lock100k", lock, 100, "ms");
    return sink == 0 ? 1 : report.Status();
}
