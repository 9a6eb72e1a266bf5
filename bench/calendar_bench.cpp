// week100k      a week among 100,000 appointments and 500 series, against the two bare statements, each on
//               its best index, and the batch kernel for as many fields                        limit 2
// weekandback   the next week and back, against the same for both weeks                        limit 2
// kept          memory that a hundred of these turns keep                                      limit 64 KiB
// month1000     a month's six weeks with 1,000 entries, against the same                       limit 1.5
// expansion     500 series over ten years, against libical's iterator over the same rules      limit 0.5
// daysave       a new appointment on a day of 50, against a bare transaction that writes the same rows,
//               median                                                                         limit 1.5
#include <libical/ical.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <random>
#include <vector>

#include "calendar/appointment.h"
#include "calendar/months.h"
#include "calendar/occurrences.h"
#include "calendar/periods.h"
#include "calendar/redowords.h"
#include "database.h"
#include "ratio.h"

namespace {

using namespace bmr;
using namespace bmr::calendar;
using bench::BareDatabase;
using bench::BenchDatabase;
using bench::BestInTurns;

constexpr int kRows = 100000;
constexpr int kSeries = 500;
constexpr Day kFirstDay{42736};  ///< 1 January 2017, a Sunday
constexpr int kDays = 7300;
constexpr Day kShown{46398};    ///< in the middle of the years
constexpr Day kCrowded{50100};  ///< behind them: its month is filled
constexpr std::size_t kCrowd = 1000;
constexpr int kRuns = 15;
constexpr int kTurns = 100;
constexpr int kSaves = 300;
constexpr int kOfDay = 50;
constexpr std::int32_t kTenYears = 3652;
std::size_t sink = 0;

const LocaleFacts& Locale() {
    static const LocaleFacts locale = [] {
        LocaleFacts facts;
        facts.firstDayOfWeek = 2;
        return facts;
    }();
    return locale;
}

std::mt19937& Engine() {
    static std::mt19937 engine(20270101);
    return engine;
}

RandomSource& SystemNoise() {
    static cry::SystemRandom random;
    return random;
}

int Draw(int below) {
    return static_cast<int>(Engine()() % static_cast<unsigned>(below));
}

Appointment Single(Day day) {
    Appointment one = ClearRecord({MidnightOf(day).count + 15 * (24 + Draw(60))}, 15 * (1 + Draw(8)));
    one.subject = "Meeting with the people of number " + std::to_string(Draw(100000));
    one.location = Draw(3) == 0 ? "Harbour Street 12" : "";
    one.notes = Draw(4) == 0 ? "Bring the papers along, and the plan of the house." : "";
    one.isPrivate = Draw(20) == 0;
    return one;
}

/// The kinds that other programs know too.
constexpr std::array<const char*, 8> kRules = {"day",
                                               "3 days",
                                               "workday",
                                               "week on mon",
                                               "2 weeks on tue,fri",
                                               "month on first mon",
                                               "2 months on last fri",
                                               "year on second tue of may"};

Appointment Series(const char* rule, Day day, std::int32_t days) {
    RedoState state = *ParseRule(rule, day, Locale());
    state.endMode = days == 0 ? RedoEnd::Never : RedoEnd::Date;
    state.end = {day.serial + days};
    if (days != 0) RecalcRedoEnd(state, Locale());
    Appointment one = Single(state.start);
    one.redoString = StringToStore(state, {}, Locale(), SystemNoise());
    return one;
}

void Fill(BenchDatabase& database) {
    std::vector<Appointment> made;
    for (int i = 0; i < kSeries; ++i)
        made.push_back(Series(kRules[static_cast<std::size_t>(i) % kRules.size()],
                              {kFirstDay.serial + Draw(kDays)}, i % 25 == 0 ? 0 : 60 + Draw(700)));
    for (int i = kSeries; i < kRows; ++i)
        made.push_back(Single({kFirstDay.serial + Draw(kDays)}));
    const bool recording = std::exchange(database.session.undo.recording, false);
    BenchDatabase::Check(AddRecords(database.session, made));
    database.session.undo.recording = recording;
}

/// More single appointments in the month, until its six weeks show as many as wanted.
void Crowd(BenchDatabase& database, const Period& grid) {
    const auto shown = EntriesInPeriod(database.session, grid, Locale());
    std::vector<Appointment> made;
    for (std::size_t i = shown->size(); i < kCrowd; ++i)
        made.push_back(Single({grid.first.serial + Draw(42)}));
    BenchDatabase::Check(AddRecords(database.session, made));
}

/// What anyone would write without us: the two statements on the index that finds the fewest rows, and every
/// field that is needed in one batch.
class BareView {
  public:
    BareView(BareDatabase& bare, cry::CipherState& cipher)
        : cipher_(cipher),
          series_(bare.Prepare("SELECT fPK, fT1, fT3, fEtx FROM tt INDEXED BY \"fSub\" WHERE fSec=12 AND "
                               "fSub BETWEEN 148 AND 255 AND fR4 < ?1 AND fR2 > ?2")),
          singles_(bare.Prepare("SELECT fPK, fT1, fEtx FROM tt INDEXED BY \"fR3\" WHERE fSec=12 AND fSub < "
                                "148 AND fR3 BETWEEN ?1 AND ?2 ORDER BY fR3/71049, fR1")) {}
    ~BareView() {
        sqlite3_finalize(series_);
        sqlite3_finalize(singles_);
    }
    BareView(const BareView&) = delete;
    BareView& operator=(const BareView&) = delete;

    /// `shown`: rows of series that have an occurrence, of which the payload is read too.
    void Read(const Period& period, std::size_t shown) {
        std::vector<Bytes> fields;
        Bind(series_, PackDateAt(period.last, DateKind::First, 0.5).high,
             PackDateAt(period.first, DateKind::Last, 0.5).low);
        while (sqlite3_step(series_) == SQLITE_ROW) {
            fields.push_back(Field(series_, 1));
            fields.push_back(Field(series_, 2));
            Bytes payload = Field(series_, 3);
            if (shown > 0) {
                fields.push_back(std::move(payload));
                --shown;
            }
        }
        sqlite3_reset(series_);
        Bind(singles_, PackDateAt(period.first, DateKind::Start, 0.5).low,
             PackDateAt(period.last, DateKind::Start, 0.5).high);
        while (sqlite3_step(singles_) == SQLITE_ROW) {
            fields.push_back(Field(singles_, 1));
            fields.push_back(Field(singles_, 2));
        }
        sqlite3_reset(singles_);
        const std::vector<std::string_view> views(fields.begin(), fields.end());
        cry::DecipherBatch(cipher_, views, [](std::size_t, std::string_view plain) { sink += plain.size(); });
        count = fields.size();
    }

    std::size_t count = 0;  ///< fields that were deciphered

  private:
    static void Bind(sqlite3_stmt* statement, std::int32_t first, std::int32_t second) {
        sqlite3_bind_int(statement, 1, first);
        sqlite3_bind_int(statement, 2, second);
    }
    static Bytes Field(sqlite3_stmt* statement, int column) {
        return {static_cast<const char*>(sqlite3_column_blob(statement, column)),
                static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
    }

    cry::CipherState& cipher_;
    sqlite3_stmt* series_;
    sqlite3_stmt* singles_;
};

std::vector<Entry> Show(BenchDatabase& database, const Period& period) {
    auto entries = EntriesInPeriod(database.session, period, Locale());
    if (!entries) throw std::runtime_error("no entries");
    sink += entries->size();
    return std::move(*entries);
}

std::size_t SeriesIn(const std::vector<Entry>& entries) {
    std::vector<std::int32_t> keys;
    for (const Entry& entry : entries)
        if (entry.recurring) keys.push_back(entry.pk);
    std::sort(keys.begin(), keys.end());
    return static_cast<std::size_t>(std::unique(keys.begin(), keys.end()) - keys.begin());
}

double KeptBytes() {
    return static_cast<double>(mallinfo2().uordblks);
}

void MeasureViews(BenchDatabase& database, bench::Report& report) {
    const Period week = PeriodBounds(kShown, PeriodKind::Week, Locale());
    const Period next = PeriodBounds({kShown.serial + 7}, PeriodKind::Week, Locale());
    const Period month = PeriodBounds(kCrowded, PeriodKind::MonthGrid, Locale());
    database.session.ShowPrivate = true;
    Crowd(database, month);
    std::filesystem::path copy = database.path;
    copy.replace_extension(".bare");
    database.Close();
    std::filesystem::copy_file(database.path, copy, std::filesystem::copy_options::overwrite_existing);
    database.Open();
    database.session.ShowPrivate = true;
    BareDatabase bare(copy);
    BareView view(bare, database.session.cipher);

    const std::size_t ofWeek = SeriesIn(Show(database, week));
    const std::size_t ofNext = SeriesIn(Show(database, next));
    const auto weeks = BestInTurns(
        kRuns,
        [&] {
            for (int i = 0; i < 10; ++i)
                view.Read(week, ofWeek);
        },
        [&] {
            for (int i = 0; i < 10; ++i)
                Show(database, week);
        });
    std::printf("%zu entries, %zu fields\n", Show(database, week).size(), view.count);
    report.Ratio("week100k, ten times", weeks.ours, weeks.base, 2);
    const auto turns = BestInTurns(
        kRuns,
        [&] {
            for (int i = 0; i < 5; ++i) {
                view.Read(next, ofNext);
                view.Read(week, ofWeek);
            }
        },
        [&] {
            for (int i = 0; i < 5; ++i) {
                Show(database, next);
                Show(database, week);
            }
        });
    report.Ratio("weekandback, five times", turns.ours, turns.base, 2);
    const double before = KeptBytes();
    for (int i = 0; i < kTurns; ++i) {
        Show(database, next);
        Show(database, week);
    }
    report.Figure("kept by 100 turns", (KeptBytes() - before) / 1024, 64, "KiB");

    const std::vector<Entry> crowd = Show(database, month);
    if (crowd.size() != kCrowd) throw std::runtime_error("another month");
    const std::size_t ofMonth = SeriesIn(crowd);
    const auto months = BestInTurns(
        kRuns, [&] { view.Read(month, ofMonth); },
        [&] {
            const std::vector<Entry> entries = Show(database, month);
            std::vector<Minutes> starts;
            starts.reserve(entries.size());
            for (const Entry& entry : entries)
                starts.push_back(entry.start);
            sink += FillMonth(month, starts, 2, FirstWeek::FourDays).cells.size();
        });
    report.Ratio("month1000", months.ours, months.base, 1.5);
}

/// The same rule in the words of the other.
icalrecurrencetype RuleOf(const RedoRule& rule) {
    static constexpr std::array<const char*, 8> kNames = {"", "SU", "MO", "TU", "WE", "TH", "FR", "SA"};
    std::string text;
    const std::string interval = ";INTERVAL=" + std::to_string(int{rule.interval});
    const int nth = rule.pattern >> 3;
    const std::string onNth =
        ";BYDAY=" + std::string(nth == 5 ? "-1" : std::to_string(nth)) + kNames.at(rule.pattern & 7U);
    switch (rule.kind) {
        case RedoKind::Weekly:
            text = "FREQ=WEEKLY;WKST=MO" + interval + ";BYDAY=";
            for (unsigned i = 1; i <= 7; ++i)
                if ((rule.pattern >> i & 1U) != 0)
                    text += (text.ends_with('=') ? "" : ",") + std::string(kNames.at(i));
            break;
        case RedoKind::Daily:
            text = "FREQ=DAILY" + interval;
            break;
        case RedoKind::Workdays:
            text = "FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR";
            break;
        case RedoKind::MonthWeekday:
            text = "FREQ=MONTHLY" + interval + onNth;
            break;
        default:
            text = "FREQ=YEARLY;BYMONTH=" + std::to_string(int{rule.interval}) + onNth;
    }
    return icalrecurrencetype_from_string(text.c_str());
}

icaltimetype TimeOf(Day day) {
    icaltimetype time = icaltime_null_time();
    time.year = YearOf(day);
    time.month = MonthOf(day);
    time.day = DayOfMonth(day);
    time.is_date = 1;
    return time;
}

void MeasureExpansion(bench::Report& report) {
    struct Both {
        Bytes text;
        icalrecurrencetype rule;
        icaltimetype start;
    };
    const Period years{kFirstDay, {kFirstDay.serial + kTenYears}};
    std::vector<Both> series;
    for (int i = 0; i < kSeries; ++i) {
        const Appointment one = Series(kRules[static_cast<std::size_t>(i) % kRules.size()],
                                       {kFirstDay.serial + 1 + Draw(300)}, 0);
        const RedoRule rule = *ReadRedoRule(one.redoString);
        series.push_back({Bytes(one.redoString), RuleOf(rule), TimeOf(DayOf(rule.first))});
    }
    const icaltimetype last = TimeOf(years.last);
    const auto theirs = [&](const Both& each) {
        std::size_t count = 0;
        icalrecur_iterator* iterator = icalrecur_iterator_new(each.rule, each.start);
        for (icaltimetype next = icalrecur_iterator_next(iterator);
             !icaltime_is_null_time(next) && icaltime_compare_date_only(next, last) <= 0;
             next = icalrecur_iterator_next(iterator))
            ++count;
        icalrecur_iterator_free(iterator);
        return count;
    };
    std::vector<Minutes> minutes;
    const auto ours = [&](const Both& each) {
        minutes.clear();
        ExpandRecurrence(MidnightOf(years.first), MidnightOf(years.last), 540, each.text, Locale(), minutes);
        return minutes.size();
    };
    std::size_t all = 0;
    for (const Both& each : series) {
        if (theirs(each) != ours(each)) throw std::runtime_error("another series: " + ToHex(each.text));
        all += minutes.size();
    }
    std::printf("%zu occurrences\n", all);
    const auto best = BestInTurns(
        kRuns,
        [&] {
            for (const Both& each : series)
                sink += theirs(each);
        },
        [&] {
            for (const Both& each : series)
                sink += ours(each);
        });
    report.Ratio("expansion", best.ours, best.base, 0.5);
}

double Median(std::vector<double>& values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

template <class Work>
double SecondsOf(Work work) {
    return bench::BestOf(1, work);
}

void MeasureSaves(bench::Report& report) {
    BenchDatabase database("daysave");
    store::Session& session = database.session;
    std::vector<Appointment> made;
    for (int i = 0; i < 20 * kOfDay; ++i)
        made.push_back(Single({kShown.serial + i / kOfDay}));
    BenchDatabase::Check(AddRecords(session, made));
    std::filesystem::path copy = database.path;
    copy.replace_extension(".bare");
    std::filesystem::copy_file(database.path, copy, std::filesystem::copy_options::overwrite_existing);
    BareDatabase bare(copy);
    sqlite3_stmt* insert = bare.Prepare(
        "INSERT INTO tt (fPK, fEtx, fSec, fSub, fR1, fR2, fR3, fR4, fT1, fT2, fT3, AE) VALUES (4711, "
        "randomblob(120), 12, 7, random() % 2000000000, random() % 2000000000, ?1, random() % 2000000000, "
        "randomblob(21), randomblob(19), randomblob(23), 1)");
    sqlite3_stmt* update = bare.Prepare("UPDATE tt SET fR1=?2, AE=AE|2 WHERE fPK=?1");
    const auto run = [](sqlite3_stmt* statement) {
        if (sqlite3_step(statement) != SQLITE_DONE) throw std::runtime_error("bare save");
        sqlite3_reset(statement);
    };
    std::vector<double> ours;
    std::vector<double> base;
    for (int i = 0; i < kSaves; ++i) {
        const std::size_t day = static_cast<std::size_t>(i) % 20;
        Appointment one = Single({kShown.serial + static_cast<std::int32_t>(day)});
        ours.push_back(SecondsOf([&] { BenchDatabase::Check(WriteRecord(session, one).error); }));
        BenchDatabase::Check(store::DeleteRow(session, one.key));
        base.push_back(SecondsOf([&] {
            bare.Run("BEGIN");
            for (std::size_t row = 0; row < kOfDay; ++row) {
                sqlite3_bind_int(update, 1, made[day * kOfDay + row].key);
                sqlite3_bind_int(update, 2, Draw(kMaxLong));
                run(update);
            }
            sqlite3_bind_int(insert, 1, PackDateAt(DayOf(one.start), DateKind::Start, 0.5).value);
            run(insert);
            bare.Run("COMMIT");
        }));
        bare.Run("DELETE FROM tt WHERE fPK=4711");
    }
    sqlite3_finalize(insert);
    sqlite3_finalize(update);
    report.Ratio("daysave", Median(ours), Median(base), 1.5);
}

}  // namespace

int main() {
    bench::Report report;
    {
        BenchDatabase large("calendar");
        Fill(large);
        MeasureViews(large, report);
    }
    MeasureExpansion(report);
    MeasureSaves(report);
    return sink == 0 ? 1 : report.Status();
}
