#include "calendar/archive.h"

#include <unordered_set>

#include "base/buckets.h"
#include "base/languageus.h"
#include "base/shortdate.h"
#include "calendar/appointment.h"
#include "custody/keycopy.h"
#include "custody/openfailure.h"
#include "engine/enginenumber.h"
#include "store/privatefilter.h"
#include "store/undo.h"
#include "store/undorow.h"
#include "store/undostep.h"

namespace bmr::calendar {
namespace {

namespace fs = std::filesystem;
using store::Session;

/// Which series go: those whose first day lies in a bucket below that of the day.
std::string SeriesClauses(Day until) {
    return " And fSub > 147 And fR4 < " + std::to_string(PackDateAt(until, DateKind::First, 0.5).low);
}

/// Which single appointments go: those of the day too.
std::string SinglesClauses(Day until) {
    return " And fSub < 148 And fR3 <= " + std::to_string(PackDateAt(until, DateKind::Start, 0.5).high);
}

std::string BothClauses(Day until) {
    return " And ((" + SeriesClauses(until).substr(5) + ") Or (" + SinglesClauses(until).substr(5) + "))";
}

std::string RowsOf(const std::string& clauses) {
    return " FROM tt WHERE fSec=12" + clauses;
}

Result<std::int64_t> CountRows(engine::Database& db, const std::string& clauses) {
    auto rows = db.Select("SELECT Count(*) AS N" + RowsOf(clauses));
    if (!rows) return rows.error();
    const std::int64_t count = rows->Next() ? rows->Int(0) : 0;
    if (rows->error() != 0) return Error{rows->error(), db.LastError()};
    return count;
}

using Keys = std::unordered_set<std::int32_t>;

Result<Keys> KeysIn(engine::Database& db, const std::string& statement) {
    auto rows = db.Select(statement);
    if (!rows) return rows.error();
    Keys keys;
    while (rows->Next())
        keys.insert(rows->Int(0));
    if (rows->error() != 0) return Error{rows->error(), db.LastError()};
    return keys;
}

std::string Quoted(const fs::path& file) {
    std::string quoted = "\"";
    for (const auto c : file.u8string()) {
        if (c == u8'"') quoted += '"';
        quoted += static_cast<char>(c);
    }
    return quoted + "\"";
}

/// The archive while nothing has been moved yet: open by itself, tested or made, under this session's keys.
class Archive {
  public:
    Archive(Session& session, const fs::path& file) : session_(session), file_(file) {}

    /// 0, or a number with `words` set. What was made is gone again then.
    int Prepare(std::string& words) {
        const int error = OpenOrMake(words);
        if (error == 0) return 0;
        if (words.empty()) words = custody::ExplainOpenFailure(error);
        Discard();
        return error;
    }
    const Keys& keys() const { return keys_; }
    /// Takes away what was made.
    void Discard() const {
        if (made_) engine::RemoveStore(file_);
    }

  private:
    int OpenOrMake(std::string& words) {
        std::error_code none;
        if (fs::equivalent(file_, session_.DatabasePath, none)) {
            words = "The archive cannot be the database itself.";
            return engine::EngineNumber::InUse;
        }
        // A link that leads nowhere is no name for a new file either.
        const bool exists = fs::exists(fs::symlink_status(file_, none));
        if (!exists) {
            if (const int error = engine::CreateStore(file_)) {
                words = Msg(154) + " " + custody::ExplainOpenFailure(error);
                return error;
            }
            made_ = true;
        }
        auto db = engine::Database::Open(file_);
        if (!db) return db.error().number;
        if (exists)
            if (const int error = TestKeys(**db, words)) return error;
        if (const int error = custody::CopyKeys(session_, **db)) return error;
        auto keys = KeysIn(**db, "SELECT fPK FROM tt");
        if (!keys) return keys.error().number;
        keys_ = std::move(*keys);
        return 0;
    }

    int TestKeys(engine::Database& db, std::string& words) {
        const auto version = custody::VersionUnderOurKeys(session_, db);
        if (!version) return version.error().number;
        if (*version > 0 && *version <= store::kDatabaseVersion) return 0;
        words = *version > 0 ? "The archive was written by a later version of this program."
                             : "The archive belongs to another database: its keys are not those of this one.";
        return engine::EngineNumber::Failed;
    }

    Session& session_;
    const fs::path& file_;
    Keys keys_;
    bool made_ = false;
};

/// A key that neither file has.
Result<std::int32_t> FreeKey(Session& session, const Keys& taken) {
    for (;;) {
        std::array<std::uint8_t, 4> bytes{};
        session.ports.random.Fill(bytes);
        const auto key =
            static_cast<std::int32_t>(std::uint32_t{bytes[0]} | std::uint32_t{bytes[1]} << 8 |
                                      std::uint32_t{bytes[2]} << 16 | std::uint32_t{bytes[3]} << 24);
        if (key == 0 || key == store::kNewRecord || taken.contains(key)) continue;
        auto row = session.ProgramDb->Select("SELECT fPK FROM tt WHERE fPK=?", {key});
        if (!row) return row.error();
        if (!row->Next()) return key;
    }
}

/// Gives the rows that go and whose key the archive has another one here, inside the transaction in which
/// they go: the copy then brings it along. By the row and not by its key, which another section's row may
/// have.
int DrawKeysAnew(Session& session, const std::string& clauses, const Keys& taken) {
    auto going = session.ProgramDb->OpenRecordset("SELECT *" + RowsOf(clauses));
    if (!going) return going.error().number;
    auto table = session.ProgramDb->OpenRecordset("tt");
    if (!table) return table.error().number;
    for (engine::Recordset& row = **going; !row.Eof(); row.MoveNext()) {
        if (!taken.contains(NumberOf(row.Field("fPK")))) continue;
        const auto image = store::ImageOf(row);
        const auto key = FreeKey(session, taken);
        if (!key) return key.error().number;
        if (const int error = row.Delete()) return error;
        (*table)->AddNew(*key);
        store::SetImage(**table, *image);
        if (const int error = (*table)->Update()) return error;
    }
    return 0;
}

/// Moves the rows of a clause. 0 or the engine's number with every row where it was.
int Move(Session& session, const std::string& clauses, const fs::path& file, const Keys& taken) {
    engine::Database& db = *session.ProgramDb;
    engine::Transaction both(db);
    if (both.error() != 0) return both.error();
    if (const int error = DrawKeysAnew(session, clauses, taken)) return error;
    if (const int error = db.Execute("INSERT INTO tt IN " + Quoted(file) + " SELECT *" + RowsOf(clauses)))
        return error;
    if (const int error = db.Execute("DELETE *" + RowsOf(clauses))) return error;
    return both.Commit();
}

/// What is told when nothing was done.
std::string Undone(const char* done, int error, const std::string& why) {
    // Then nobody knows.
    if (error == engine::EngineNumber::Unsure) return why;
    return "Nothing was " + std::string(done) + ". " + why;
}

/// What is told when the second half failed.
std::string HalfDone(const ArchiveOutcome& outcome, const char* done) {
    const std::string why = custody::ExplainOpenFailure(outcome.error);
    const std::string series = outcome.series > 0 ? "The series were " + std::string(done) + ". " : "";
    if (outcome.error == engine::EngineNumber::Unsure) return series + why;
    return series + "The single appointments stay. " + why;
}

struct Going {
    std::int64_t series = 0;
    std::int64_t singles = 0;
};

Result<Going> CountGoing(engine::Database& db, Day until) {
    const auto series = CountRows(db, SeriesClauses(until));
    if (!series) return series.error();
    const auto singles = CountRows(db, SinglesClauses(until));
    if (!singles) return singles.error();
    return Going{*series, *singles};
}

std::string CountOf(std::int64_t count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

/// " These are 12 single appointments and 3 series; 2 of them are private and hidden now." Nothing where they
/// cannot be counted: whatever fails then fails at the work too, and is told there.
std::string TellGoing(Session& session, Day until) {
    const auto going = CountGoing(*session.ProgramDb, until);
    if (!going) return {};
    std::string text = " These are " + CountOf(going->singles, "single appointment", "single appointments") +
                       " and " + CountOf(going->series, "series", "series");
    if (!session.ShowPrivate) {
        const auto hidden = store::PrivateRecords(session, store::Section::Calendar, BothClauses(until));
        if (!hidden) return {};
        if (!hidden->empty())
            text += "; " + std::to_string(hidden->size()) + " of them " +
                    (hidden->size() == 1 ? "is" : "are") + " private and hidden now";
    }
    return text + ".";
}

}  // namespace

Result<std::vector<RunningSeries>> SeriesStillRunning(Session& session, Day until) {
    auto rows =
        session.ProgramDb->Select("SELECT fPK, fEtx" + RowsOf(SeriesClauses(until)) + " ORDER BY fR4");
    if (!rows) return rows.error();
    std::vector<RunningSeries> running;
    while (rows->Next()) {
        Appointment appointment;
        appointment.isPrivate = true;  // what does not decode counts as private
        store::DecodeFields(appointment, cry::DecipherField(session.cipher, rows->Bytes(1)),
                            kAppointmentFields);
        const auto rule = ReadRedoRule(appointment.redoString);
        if (rule && (session.ShowPrivate || !appointment.isPrivate)) {
            RunningSeries series{rows->Int(0), DayOf(rule->first), DayOf(rule->last), appointment.subject};
            if (rule->endMode == RedoEnd::Never) series.last.reset();
            if (!series.last || *series.last > until) running.push_back(std::move(series));
        }
        store::WipeFields(appointment, kAppointmentFields);
    }
    if (rows->error() != 0) return Error{rows->error(), session.ProgramDb->LastError()};
    return running;
}

bool ConfirmArchive(Session& session, Day until, bool keep, const LocaleFacts& locale) {
    const std::string date = " " + FormatShortDate(until, locale.shortDate);
    Box box = MessageBox(152, BoxIcon::Question);
    box.text += date + " " + Msg(153);
    // The catalogue ends the sentence in one of its two places only.
    if (!box.text.ends_with('.')) box.text += ".";
    if (keep) box.text += " " + Msg(162);
    box.text += TellGoing(session, until);
    box.buttons = Buttons::OkCancel;
    box.standard = Answer::Cancel;
    if (session.ports.prompter.Ask(box) != Answer::Ok) return false;
    if (keep) return true;
    Box again = MessageBox(163, BoxIcon::Warning);
    again.text += date;
    if (store::TooLargeToUndo(session, store::Section::Calendar, BothClauses(until)))
        again.text += store::kCannotBeUndone;
    again.buttons = Buttons::YesNo;
    again.standard = Answer::No;
    return session.ports.prompter.Ask(again) == Answer::Yes;
}

ArchiveOutcome DeleteUntil(Session& session, Day until) {
    ArchiveOutcome outcome;
    const auto nothing = [&outcome](int error) {
        outcome.error = error;
        outcome.words = Undone("deleted", error, custody::ExplainOpenFailure(error));
        return outcome;
    };
    const auto going = CountGoing(*session.ProgramDb, until);
    if (!going) return nothing(going.error().number);
    store::UndoStep step(session, store::Section::Calendar);
    if (const int error = store::DeleteRows(session, store::Section::Calendar, SeriesClauses(until)))
        return nothing(error);
    outcome.series = going->series;
    outcome.error = store::DeleteRows(session, store::Section::Calendar, SinglesClauses(until));
    if (outcome.error == 0)
        outcome.singles = going->singles;
    else
        outcome.words = HalfDone(outcome, "deleted");
    // The series are gone even then, and taking the step back leaves the rows alone that stand.
    step.Keep();
    return outcome;
}

ArchiveOutcome ArchiveUntil(Session& session, Day until, const fs::path& file) {
    ArchiveOutcome outcome;
    const auto nothing = [&outcome](int error, const std::string& why) {
        outcome.error = error;
        outcome.words = Undone("archived or deleted", error, why);
        return outcome;
    };
    if (session.ProgramDb->ReadOnly())
        return nothing(engine::EngineNumber::NoPermission, "The database is open for reading.");
    const auto going = CountGoing(*session.ProgramDb, until);
    if (!going) return nothing(going.error().number, custody::ExplainOpenFailure(going.error().number));
    Archive archive(session, file);
    std::string words;
    if (const int error = archive.Prepare(words)) return nothing(error, words);
    if (const int error = Move(session, SeriesClauses(until), file, archive.keys())) {
        // Rows may stand in it where nobody knows.
        if (error != engine::EngineNumber::Unsure) archive.Discard();
        return nothing(error, custody::ExplainOpenFailure(error));
    }
    outcome.series = going->series;
    outcome.error = Move(session, SinglesClauses(until), file, archive.keys());
    if (outcome.error == 0)
        outcome.singles = going->singles;
    else
        outcome.words = HalfDone(outcome, "archived");
    return outcome;
}

}  // namespace bmr::calendar
