// screen100k   the task list rebuilt and painted, private ones shown, against the bare statement     limit 2
// memory100k   what 100,000 tasks on the screen add to the process                                   limit 64
// MiB search100k   the same narrowed by a search, against the batch kernel over as many fields limit 2
#include <unistd.h>

#include <QApplication>
#include <QLocale>
#include <fstream>
#include <vector>

#include "database.h"
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
    QApplication app(argc, argv);
    const kit::Theme theme(app);

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

    bench::Report report;
    report.Ratio("screen100k", screen.ours, screen.base, 2);
    report.Figure("memory100k", after - before, 64, "MiB");
    report.Ratio("search100k", search.ours, search.base, 2);
    return sink == 0 ? 1 : report.Status();
}
