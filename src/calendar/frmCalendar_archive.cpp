#include <QLocale>

#include "calendar/archive.h"
#include "calendar/frmCalendar.h"
#include "calendar/frmEnterDate.h"
#include "calendar/frmRunning.h"
#include "kit/failure.h"
#include "kit/stepstrip.h"

// How old appointments leave the calendar.
namespace bmr::calendar {

namespace {

QString Went(std::int64_t count, const QString& one, const QString& many) {
    return count == 1 ? one : many.arg(QLocale().toString(static_cast<qlonglong>(count)));
}

}  // namespace

bool frmCalendar::ConfirmRunning(Day until) {
    const auto series = SeriesStillRunning(session_, until);
    if (!series) {
        kit::TellFailure(session_, series.error().number, tr("The appointments could not be read."));
        return false;
    }
    if (series->empty()) return true;
    frmRunning box(*series, until, locale_, this);
    return box.exec() == QDialog::Accepted && !session_.ending && session_.DatabaseOpen;
}

std::optional<std::filesystem::path> frmCalendar::AskArchive() {
    auto file = session_.ports.prompter.AskSaveFile({.title = tr("Archive File").toStdString(),
                                                     .filter = "Brindlemere archive BMA (*.bma)|*.bma",
                                                     .addsTo = true});
    if (!file || file->empty()) return std::nullopt;
    if (!file->has_extension()) *file += ".bma";
    return file;
}

void frmCalendar::mnuArchive_Click() {
    if (round_.Open() || !session_.DatabaseOpen) return;
    // What was typed before a question that then was answered with no comes again, until one goes elsewhere.
    if (archiveFrom_ != Date()) archiveDate_.reset();
    archiveFrom_ = Date();
    frmEnterDate form(archiveDate_.value_or(archiveFrom_), today_, this);
    form.exec();
    const auto closed = [this] { return session_.ending || !session_.DatabaseOpen; };
    if (closed() || !form.Date()) return;
    const Day until = *form.Date();
    archiveDate_ = until;
    const bool keep = form.Archive();
    if (!ConfirmRunning(until) || closed()) return;
    if (!ConfirmArchive(session_, until, keep, locale_) || closed()) return;
    std::optional<std::filesystem::path> file;
    if (keep && (!(file = AskArchive()) || closed())) return;
    const auto before = session_.undo.lastNumber;
    session_.ports.prompter.Comment(tr("Archiving…").toStdString(), true);
    const ArchiveOutcome outcome = keep ? ArchiveUntil(session_, until, *file) : DeleteUntil(session_, until);
    session_.ports.prompter.Comment("", false);
    if (outcome.error != 0) {
        Box box;
        box.text = outcome.words;
        box.icon = BoxIcon::Critical;
        session_.ports.prompter.Ask(box);
        if (closed()) return;
    }
    calendarChanged();
    if (outcome.error != 0) return;
    archiveDate_.reset();
    if (outcome.series + outcome.singles == 0) return strip_->Say(tr("There are no appointments that old."));
    if (!keep) return TellStepSince(before);
    strip_->Say(tr("%1 and %2 moved to the archive.")
                    .arg(Went(outcome.singles, tr("One appointment"), tr("%1 appointments")),
                         Went(outcome.series, tr("one series"), tr("%1 series"))));
}

}  // namespace bmr::calendar
