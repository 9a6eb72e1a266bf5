#include <iostream>

#include "calendar/archive.h"
#include "calendar/occurrences.h"
#include "calendar/timespan.h"
#include "commands.h"
#include "recordjson.h"
#include "sitting.h"
#include "terminal.h"
#include "weekstart.h"

namespace bmr::tools {
namespace {

constexpr std::int32_t kYear = 365;

calendar::Period PeriodOf(const Options& options, Day today) {
    const auto from = DayOption("--from", options.from);
    const auto to = DayOption("--to", options.to);
    calendar::Period period;
    period.first = from ? *from : to ? Day{to->serial - kYear + 1} : today;
    period.last = to ? *to : Day{period.first.serial + kYear - 1};
    if (period.last < period.first) throw Failure("The period would end before it begins.");
    return period;
}

std::string TimeOf(calendar::Minutes minutes, char between) {
    return IsoDate(DayOf(minutes)) + between + calendar::TimeText(MinuteOfDay(minutes));
}

Json EntryJson(const calendar::Entry& entry) {
    return {{"fPK", entry.pk},
            {"start", TimeOf(entry.start, 'T')},
            {"end", TimeOf(entry.end, 'T')},
            {"allday", entry.allDay},
            {"subject", entry.subject},
            {"location", entry.location},
            {"private", entry.isPrivate},
            {"recurring", entry.recurring},
            {"alarm", entry.alarm}};
}

/// The day is left out of an end on the day of the start.
std::string EndOf(const calendar::Entry& entry) {
    if (entry.allDay) return "all day";
    return DayOf(entry.end) == DayOf(entry.start) ? calendar::TimeText(MinuteOfDay(entry.end))
                                                  : TimeOf(entry.end, ' ');
}

void PrintTable(const std::vector<calendar::Entry>& entries) {
    std::cout << "Start             End               Marks  fPK          Appointment\n";
    for (const calendar::Entry& entry : entries) {
        std::string line = entry.allDay ? IsoDate(DayOf(entry.start)) : TimeOf(entry.start, ' ');
        const auto pad = [&line](std::size_t width) { line.resize(std::max(line.size() + 1, width), ' '); };
        pad(18);
        line += EndOf(entry);
        pad(36);
        line += entry.recurring ? 'R' : ' ';
        line += entry.alarm ? 'A' : ' ';
        line += entry.isPrivate ? 'P' : ' ';
        pad(43);
        line += std::to_string(entry.pk);
        pad(56);
        line += entry.subject;
        if (!entry.location.empty()) line += " (" + entry.location + ")";
        std::cout << Printable(line) << '\n';
    }
}

}  // namespace

std::optional<Day> DayOption(const std::string& option, const std::string& text) {
    if (text.empty()) return std::nullopt;
    const auto day = ParseIsoDate(text);
    if (!day) throw Failure(option + " is no date of the form YYYY-MM-DD.");
    return day;
}

LocaleFacts LocaleOf(const Options& options) {
    LocaleFacts locale;
    locale.firstDayOfWeek = options.week == "mon" ? 2 : options.week == "sun" ? 1 : WeekStartOfLocale();
    return locale;
}

void ListOccurrences(const Options& options) {
    if (options.kind) throw Failure("--kind is for confidential records.");
    if (!options.category.empty()) throw Failure("Calendar records have no categories.");
    Sitting sitting(options.passphraseFd);
    const auto period = PeriodOf(options, sitting.session().ports.clock.Today());
    sitting.Open(options.file, engine::Access::Read);
    store::Session& session = sitting.session();
    session.ShowPrivate = session.ShowPrivate || options.showPrivate;
    const auto entries = calendar::EntriesInPeriod(session, period, LocaleOf(options));
    sitting.Check(entries ? 0 : entries.error().number);
    if (!options.json) return PrintTable(*entries);
    bool first = true;
    for (const calendar::Entry& entry : *entries) {
        std::cout << (first ? "[\n" : ",\n") << DumpLine(EntryJson(entry));
        first = false;
    }
    std::cout << (first ? "[]\n" : "\n]\n");
}

void RunArchive(const Options& options) {
    const auto until = DayOption("--until", options.until);
    if (!until) throw Failure("--until is no date of the form YYYY-MM-DD.");
    Sitting sitting(options.passphraseFd);
    sitting.Open(options.file);
    store::Session& session = sitting.session();
    session.ShowPrivate = session.ShowPrivate || options.showPrivate;
    const auto running = calendar::SeriesStillRunning(session, *until);
    sitting.Check(running ? 0 : running.error().number);
    for (const calendar::RunningSeries& series : *running)
        std::cout << "fPK " << series.key << " goes although it comes again"
                  << (series.last ? " until " + IsoDate(*series.last) : "") << ": "
                  << Printable(series.subject) << '\n';
    const auto outcome = options.archive.empty() ? calendar::DeleteUntil(session, *until)
                                                 : calendar::ArchiveUntil(session, *until, options.archive);
    if (outcome.error != 0) throw Failure(outcome.words);
    std::cout << outcome.series << " series and " << outcome.singles << " single appointments "
              << (options.archive.empty() ? "deleted" : "archived") << '\n';
    sitting.Close();
}

}  // namespace bmr::tools
