// firstpaint   the calendar's first paint after its button, over 100,000 appointments and 500 series, against
//              that of an empty one and the reading of the week                                limit 1.2
#include <QApplication>
#include <QLocale>
#include <ctime>

#include "app/frmMDI.h"
#include "app/hardening.h"
#include "calendar/appointment.h"
#include "calendar/occurrences.h"
#include "calendar/recurrence.h"
#include "database.h"
#include "forms.h"
#include "kit/dateentry.h"
#include "kit/programtheme.h"
#include "ratio.h"

namespace {

using namespace bmr;
using namespace bmr::calendar;
using bench::BenchDatabase;

constexpr int kRows = 100000;
constexpr int kSeries = 500;
constexpr int kDays = 7300;
constexpr int kRuns = 15;
std::size_t sink = 0;

/// Twenty years of them, with today in the middle.
void Fill(BenchDatabase& database) {
    const Day first{database.clock.Today().serial - kDays / 2};
    std::vector<Appointment> made;
    made.reserve(kRows);
    for (int i = 0; i < kRows; ++i) {
        const Day day{first.serial + i * 37 % kDays};
        made.push_back(ClearRecord({MidnightOf(day).count + 15 * (28 + i % 48)}, 15 * (1 + i % 7)));
        Appointment& one = made.back();
        one.subject = "Meeting with the people of number " + std::to_string(i);
        one.location = i % 3 == 0 ? "Harbour Street 12" : "";
        if (i < kSeries)
            one.redoString = WriteRedoRule({.kind = RedoKind::Weekly,
                                            .endMode = RedoEnd::Date,
                                            .pattern = static_cast<std::uint8_t>(2 << (i % 7)),
                                            .interval = static_cast<std::uint8_t>(1 + i % 3),
                                            .first = DateToDays16(day),
                                            .last = DateToDays16({day.serial + 60 + i})});
    }
    const bool recording = std::exchange(database.session.undo.recording, false);
    BenchDatabase::Check(AddRecords(database.session, made));
    database.session.undo.recording = recording;
}

/// The window over a database, and the processor seconds from the button to what stands on the screen.
class Window {
  public:
    explicit Window(BenchDatabase& database)
        : session_(database.session), frame_({session_, Forms({}), {database.path.parent_path()}}) {
        database.Close();
        frame_.show();
        frame_.Start(database.path);
        session_.settings.calView = static_cast<std::uint8_t>(PeriodKind::Week);
        session_.ShowPrivate = true;
    }
    double Paint() {
        frame_.optSection_Click(0);
        session_.calendarView.reset();
        QCoreApplication::processEvents();
        const std::clock_t began = std::clock();
        frame_.optSection_Click(store::Section::Calendar);
        frame_.repaint();
        const double took = static_cast<double>(std::clock() - began) / CLOCKS_PER_SEC;
        QCoreApplication::processEvents();  // the tasks come now
        return took;
    }

  private:
    store::Session& session_;
    app::frmMDI frame_;
};

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    app::OverwriteFreed();  // as the program does
    QApplication application(argc, argv);
    const kit::Theme theme(application);

    BenchDatabase none("unpainted");
    BenchDatabase many("painted");
    Fill(many);
    Window empty(none);
    Window full(many);
    const LocaleFacts locale = kit::FactsOf(QLocale());
    const Period week = PeriodBounds(many.clock.Today(), PeriodKind::Week, locale);
    const auto read = [&] {
        const std::clock_t began = std::clock();
        const auto entries = EntriesInPeriod(many.session, week, locale);
        sink += entries->size();
        return static_cast<double>(std::clock() - began) / CLOCKS_PER_SEC;
    };
    double unpainted = 1e300;
    double reading = 1e300;
    double painted = 1e300;
    for (int run = 0; run < kRuns; ++run) {
        unpainted = std::min(unpainted, empty.Paint());
        reading = std::min(reading, read());
        painted = std::min(painted, full.Paint());
    }
    bench::Report report;
    report.Ratio("firstpaint", painted, unpainted + reading, 1.2);
    return sink == 0 ? 1 : report.Status();
}
