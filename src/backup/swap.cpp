#include "backup/swap.h"

#include <array>
#include <system_error>

#include "backup/backupname.h"
#include "backup/trailer.h"
#include "engine/db.h"
#include "engine/fileio.h"

namespace bmr::backup {

namespace fs = std::filesystem;

namespace {

constexpr int kFormers = 3;  ///< databases from before that are kept
constexpr std::array<const char*, 3> kSides{"-journal", "-wal", "-shm"};

fs::path Beside(const fs::path& file, const char* suffix) {
    fs::path side = file;
    side += suffix;
    return side;
}

bool Stands(const fs::path& path) {
    std::error_code none;
    return fs::exists(fs::symlink_status(path, none));
}

/// The file under a second name, without ever having the first one gone.
int PutSecondName(const fs::path& from, const fs::path& to) {
    std::error_code error;
    fs::create_hard_link(from, to, error);
    if (!error) return 0;
    error.clear();
    const fs::path part = PartName(to);
    fs::copy_file(from, part, fs::copy_options::overwrite_existing, error);
    int number = error ? error.default_error_condition().value() : engine::SyncFile(part);
    if (number == 0) number = engine::RenameOver(part, to);
    if (number != 0) fs::remove(part, error);
    return engine::NumberOfErrno(number);
}

class Swap {
  public:
    Swap(const fs::path& database, const std::function<void(const SwapStep&)>& before) : before_(before) {
        report_.database = database;
    }

    SwapReport Run() {
        const fs::path& database = report_.database;
        const bool had = Stands(database);
        const bool done = (!had || MakeRoom(0)) && KeepDatabase(had) &&
                          Move(SwapAction::TakeRestored, RestoredName(database), database);
        if (!done && had && !Stands(database)) PutBack();
        engine::SyncFolder(database.parent_path());
        return std::move(report_);
    }

    /// The database's name for the file that it was before. False when that failed.
    bool PutBack() {
        const fs::path& database = report_.database;
        SwapStep step{SwapAction::PutBack, FormerName(database), database};
        if (before_) before_(step);
        // Its journal belongs to the name that is opened, and is played back but once.
        for (const char* suffix : kSides)
            if (const fs::path side = Beside(step.from, suffix); step.number == 0 && Stands(side))
                step.number = engine::NumberOfErrno(engine::RenameOver(side, Beside(database, suffix)));
        if (step.number == 0) step.number = PutSecondName(step.from, database);
        return Add(std::move(step));
    }
    SwapReport&& Take() { return std::move(report_); }

  private:
    bool Add(SwapStep step) {
        const int number = step.number;
        report_.steps.push_back(std::move(step));
        if (report_.number == 0) report_.number = number;
        return number == 0;
    }

    bool Move(SwapAction action, const fs::path& from, const fs::path& to) {
        SwapStep step{action, from, to};
        if (before_) before_(step);
        step.number = engine::NumberOfErrno(engine::RenameOver(from, to));
        return Add(std::move(step));
    }

    /// Frees the name of a database from before, and only as far as there is none free behind it: a swap that
    /// was broken off here goes on where it stopped.
    bool MakeRoom(int age) {
        const fs::path former = FormerName(report_.database, age);
        if (!Stands(former)) return true;
        if (age + 1 == kFormers) return Drop(former);
        if (!MakeRoom(age + 1)) return false;
        const fs::path older = FormerName(report_.database, age + 1);
        // The side files first: until the file follows them, its place is taken and nothing else comes there.
        for (const char* suffix : kSides)
            if (const fs::path side = Beside(former, suffix); Stands(side))
                if (!Move(SwapAction::AgeFormer, side, Beside(older, suffix))) return false;
        return Move(SwapAction::AgeFormer, former, older);
    }

    bool Drop(const fs::path& former) {
        SwapStep step{SwapAction::DropOldest, former, {}};
        if (before_) before_(step);
        std::error_code error;
        for (const char* suffix : kSides)
            if (!error) fs::remove(Beside(former, suffix), error);
        if (!error) fs::remove(former, error);
        if (error) step.number = engine::NumberOfErrno(error.default_error_condition().value());
        return Add(std::move(step));
    }

    bool KeepDatabase(bool had) {
        const fs::path& database = report_.database;
        const fs::path former = FormerName(database);
        if (had && !Move(SwapAction::KeepDatabase, database, former)) return false;
        for (const char* suffix : kSides) {
            const fs::path side = Beside(database, suffix);
            if (!Stands(side)) continue;
            // Without the file to which it belongs nobody knows whose it is: it may not be played back into
            // another, and stays under a name that no engine looks for.
            fs::path to = Beside(former, suffix);
            if (!had) to += ".left";
            if (!Move(SwapAction::KeepJournal, side, to)) return false;
        }
        return true;
    }

    const std::function<void(const SwapStep&)>& before_;
    SwapReport report_;
};

std::string Quoted(const fs::path& path) {
    return "\"" + PathText(path.filename()) + "\"";
}

std::string Sentence(const SwapStep& step) {
    std::string told;
    switch (step.action) {
        case SwapAction::DropOldest:
            told = Quoted(step.from) + (step.number == 0 ? " was deleted" : " could not be deleted");
            break;
        case SwapAction::AgeFormer:
        case SwapAction::KeepDatabase:
        case SwapAction::KeepJournal:
        case SwapAction::TakeRestored:
            told = Quoted(step.from) + (step.number == 0 ? " was renamed to " : " could not be renamed to ") +
                   Quoted(step.to);
            break;
        case SwapAction::PutBack:
            told = step.number == 0 ? "The database as it was before stands again as " + Quoted(step.to) +
                                          " and stays as " + Quoted(step.from)
                                    : "The database as it was before is " + Quoted(step.from);
            break;
    }
    told += ".";
    if (step.number != 0) told += " " + ErrorText({step.number, {}});
    return told;
}

}  // namespace

std::string SwapReport::Words() const {
    std::string words;
    for (const SwapStep& step : steps)
        words += (words.empty() ? "" : "\r\n") + Sentence(step);
    if (steps.empty() && number != 0)
        words = Quoted(database) + " was left as it is. " + ErrorText({number, {}});
    return words;
}

Error TestRestored(const fs::path& restored) {
    const auto db = engine::Database::Open(restored, engine::Access::Read);
    if (!db) return db.error();
    const auto lines = (*db)->CheckIntegrity();
    if (!lines.empty()) return {engine::EngineNumber::Damaged, lines.front()};
    for (const char* condition : {"fSec=1 And (fSub=1 Or fSub=2)", "fSec=2"}) {
        auto row = (*db)->Select("SELECT fPK FROM tt WHERE " + std::string(condition));
        if (!row) return row.error();
        if (!row->Next())
            return {engine::EngineNumber::Damaged,
                    "The file has no keystring or no user: nobody could open it."};
    }
    return {};
}

SwapReport SwapIn(const fs::path& database, const std::function<void(const SwapStep&)>& before) {
    SwapReport refused;
    refused.database = database;
    if (!Stands(RestoredName(database))) {
        refused.number = engine::EngineNumber::NotFound;
        return refused;
    }
    if (Stands(database)) {
        // Plays a journal back. One that is damaged is just what a backup is restored for.
        const auto lock = engine::Database::Open(database);
        if (!lock && lock.error().number == engine::EngineNumber::InUse) {
            refused.number = engine::EngineNumber::InUse;
            return refused;
        }
    }
    return Swap(database, before).Run();
}

LeftRestore FindLeftRestore(const fs::path& database) {
    if (database.empty()) return LeftRestore::None;
    const bool restored = Stands(RestoredName(database));
    if (Stands(database)) return restored ? LeftRestore::Ready : LeftRestore::None;
    if (restored) return LeftRestore::Broken;
    return Stands(FormerName(database)) ? LeftRestore::OnlyFormer : LeftRestore::None;
}

std::string LeftText(LeftRestore left, const fs::path& database) {
    switch (left) {
        case LeftRestore::None:
            break;
        case LeftRestore::Ready:
            return "A backup of " + Quoted(database) + " was unpacked to " + Quoted(RestoredName(database)) +
                   ", but the program ended before it took the database's place. The database is as it was.";
        case LeftRestore::Broken:
            return "The program ended while a backup of " + Quoted(database) +
                   " was restored. The backup is whole in " + Quoted(RestoredName(database)) +
                   (Stands(FormerName(database))
                        ? ", the database as it was before in " + Quoted(FormerName(database))
                        : std::string()) +
                   ".";
        case LeftRestore::OnlyFormer:
            return Quoted(database) + " is not there, but " + Quoted(FormerName(database)) +
                   ", the database as it was before a backup was restored.";
    }
    return {};
}

SwapReport FinishRestore(const fs::path& database) {
    if (FindLeftRestore(database) == LeftRestore::OnlyFormer) return GiveUpRestore(database);
    if (const Error fault = TestRestored(RestoredName(database)); fault.number != 0) {
        SwapReport refused;
        refused.database = database;
        refused.number = fault.number;
        return refused;
    }
    return SwapIn(database);
}

SwapReport GiveUpRestore(const fs::path& database) {
    static const std::function<void(const SwapStep&)> kNobody;
    Swap swap(database, kNobody);
    // The restored file goes only once the database has its name again.
    if (Stands(database) || !Stands(FormerName(database)) || swap.PutBack())
        engine::RemoveStore(RestoredName(database));
    engine::SyncFolder(database.parent_path());
    return swap.Take();
}

}  // namespace bmr::backup
