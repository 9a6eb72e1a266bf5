#include "custody/lifecycle.h"

#include <algorithm>

#include "base/errors.h"
#include "base/languageus.h"
#include "custody/keyrecords.h"
#include "custody/openfailure.h"
#include "custody/passphrase.h"
#include "custody/systemrecord.h"
#include "custody/users.h"
#include "store/session.h"
#include "store/startvariables.h"

namespace bmr::custody {

using namespace store;

namespace {

namespace fs = std::filesystem;

constexpr int kEmptyPath = -1;

const char* const kMostRecentFile = "MostRecentFiles/1";
const char* const kLastUser = "User/LastUser";

std::string PathText(const fs::path& path) {
    const auto utf8 = path.u8string();
    return {utf8.begin(), utf8.end()};
}

/// What a database leaves in the session, wiped or back to what it is before an opening.
void ForgetDatabase(Session& session) {
    session.ProgramDb.reset();
    session.DatabaseOpen = false;
    session.DatabasePath.clear();
    cry::WipeBytes(session.cipher.FieldKey);
    cry::WipeBytes(session.cipher.Keystring);
    cry::WipeBytes(session.cipher.FieldPlain);
    WipeHashes(session);
    session.confidentialKind = 0;
    session.calendarView.reset();
    session.user = CurrentUser();
    session.pin = PinRecord();
    session.settings = Settings();
    session.userLabels = BuiltInUserLabels();
    session.ShowPrivate = false;
    session.SectionCode = Section::None;
    session.PinPassed = 0;
    session.CalendarDirty = false;
    session.bucketOrder.Clear();
    session.undo.Reset();
}

void Warn(Session& session, const std::string& text) {
    Box box;
    box.text = text;
    box.icon = BoxIcon::Warning;
    session.ports.prompter.Ask(box);
}

/// The end of an opening that failed; gives `error` back.
int Abandon(Session& session, int error) {
    ForgetDatabase(session);
    session.ports.prompter.Comment("", false);
    return error;
}

/// Opens the session's one connection, which is held until the close.
int OpenConnection(Session& session, engine::Access access) {
    auto db = engine::Database::Open(session.DatabasePath, access);
    if (!db) {
        Box box = MessageBox(83, BoxIcon::Critical);
        box.text += "102: " + ExplainOpenFailure(db.error().number);
        session.ports.prompter.Ask(box);
        return db.error().number;
    }
    session.ProgramDb = std::move(*db);
    return 0;
}

/// Passphrase and keys, until they fit or the attempts are used up.
int LogIn(Session& session) {
    for (;;) {
        if (const int error = RequestPassphrase(session, false)) return error;
        session.ports.prompter.Comment("Checking Database...", true);
        const int error = LoadKeys(session);
        if (error > 0) TellOpenFailure(session, error);
        if (error != MessageNumber::NoSuchUser) return error;
        session.ports.prompter.Comment("", false);
        if (!RetryAfterFailure(session, error)) return session.DatabaseOpen ? error : kQuitProgram;
    }
}

/// Refuses a database of a later version before anything in it is changed, and makes a lost system record.
int CheckSystemRecord(Session& session) {
    if (ReadDatabaseVersion(session) > kDatabaseVersion) {
        session.ports.prompter.Ask(MessageBox(94, BoxIcon::Critical));
        return kQuitProgram;
    }
    return session.ProgramDb->ReadOnly() ? 0 : WriteMissingSystemRecord(session);
}

/// What follows once the keys are there: the user's preferences, the duplicates, the registry. Wipes the
/// hashes once a PIN that was never set has been made from them.
int FinishOpening(Session& session) {
    session.ports.prompter.Comment("Database Check OK. Opening...", true);
    if (const int error = LoadPin(session)) return error;
    WipeHashes(session);
    if (const int error = ReadSettings(session)) return error;
    session.userLabels = ReadUserLabels(session, session.user.UserNumber);
    if (!session.ProgramDb->ReadOnly())
        if (const int removed = RemoveDuplicates(session); removed < 0) return -removed;
    session.DatabaseOpen = true;
    std::error_code ignored;  // a path that cannot be made absolute is kept as it was given
    const auto absolute = fs::absolute(session.DatabasePath, ignored);
    session.ports.registry.Write(kMostRecentFile, PathText(ignored ? session.DatabasePath : absolute));
    session.ports.registry.Write(kLastUser, ToUtf8(session.user.UserName));
    session.ports.prompter.Comment("", false);
    return 0;
}

/// `FinishOpening`, or the state of before with the cause told.
int FinishOrAbandon(Session& session) {
    const int error = FinishOpening(session);
    if (error == 0) return 0;
    if (error > 0) TellOpenFailure(session, error);
    return Abandon(session, error);
}

/// The name for a new database, or nothing. An existing file of a name that only got its extension here was
/// not asked about by the dialog.
std::optional<fs::path> AskNewName(Session& session) {
    Prompter& prompter = session.ports.prompter;
    auto path = prompter.AskSaveFile({.title = Msg(89), .filter = "Tolvane BMR-files (*.bmr)|*.bmr"});
    if (!path || path->filename().empty()) return std::nullopt;
    std::error_code ignored;  // what cannot be looked at cannot be overwritten either
    if (PathText(path->filename()).find('.') == std::string::npos) {
        *path += ".bmr";
        if (fs::exists(*path, ignored)) {
            Box box;
            box.text = "\"" + PathText(path->filename()) + "\" already exists. Replace it?";
            box.buttons = Buttons::YesNo;
            box.icon = BoxIcon::Warning;
            box.standard = Answer::No;
            if (prompter.Ask(box) != Answer::Yes) return std::nullopt;
        }
    }
    return path;
}

/// Deletes the file that a new database replaces, with a journal that would be played back into the new one.
/// A file that another process has open stays.
int DeleteReplaced(const fs::path& path) {
    std::error_code error;
    if (!fs::exists(path, error)) return error ? engine::EngineNumber::NoPermission : 0;
    if (!fs::is_regular_file(path, error)) return engine::EngineNumber::NoPermission;
    if (auto open = engine::Database::Open(path); !open && open.error().number == engine::EngineNumber::InUse)
        return engine::EngineNumber::InUse;
    fs::remove(path, error);
    if (error) return engine::EngineNumber::NoPermission;
    auto journal = path;
    journal += "-journal";
    fs::remove(journal, error);
    return error ? engine::EngineNumber::NoPermission : 0;
}

/// The file, its keys and its system record, all rows in one transaction. `made` tells of the file.
int FillNewStore(Session& session, bool& made) {
    if (const int error = engine::CreateStore(session.DatabasePath)) return error;
    made = true;
    auto db = engine::Database::Open(session.DatabasePath);
    if (!db) return db.error().number;
    session.ProgramDb = std::move(*db);
    engine::Transaction all(*session.ProgramDb);
    if (all.error() != 0) return all.error();
    if (const int error = CreateKeys(session)) return error;
    if (const int error = WriteSystemRecord(session)) return error;
    return all.Commit();
}

int Compact(Session& session, const fs::path& given) {
    const fs::path path = engine::FollowLinks(given);
    fs::path copy = path;
    std::string name = PathText(path.filename());
    name.replace(name.size() - std::min<std::size_t>(3, name.size()), std::string::npos, "tmp");
    copy.replace_filename(fs::u8path(name));
    std::error_code error;
    if (copy == path || (fs::exists(fs::symlink_status(copy, error)) && !engine::IsLeftoverCopy(copy))) {
        Warn(session, "The file \"" + name + "\" stands where the compacted copy would be written.");
        return engine::EngineNumber::Failed;
    }
    std::string detail;
    const int failed = engine::CompactInPlace(path, copy, &detail);
    if (failed != 0)
        TellOpenFailure(session, failed);
    else if (!detail.empty())
        Warn(session, detail);
    return failed;
}

}  // namespace

int TestOpen(Session& session, const fs::path& path, engine::Access access) {
    if (path.empty()) return kEmptyPath;
    session.DatabasePath = path;
    int error = 0;
    std::string detail;
    {
        auto db = engine::Database::Open(session.DatabasePath, access);
        if (!db) {
            error = db.error().number;
            detail = db.error().detail;
        }
    }
    if (error == engine::EngineNumber::Damaged) {
        Box box = MessageBox(46, BoxIcon::Warning);
        box.text += "\n" + detail;
        box.buttons = Buttons::YesNo;
        box.standard = Answer::No;
        if (session.ports.prompter.Ask(box) == Answer::Yes) error = RepairAndTest(session);
    }
    if (error != 0) session.DatabasePath.clear();
    return error;
}

int RepairAndTest(Session& session) {
    session.ports.prompter.Comment("", true);
    std::string detail;
    const int failed = engine::RepairDatabase(session.DatabasePath, &detail);
    session.ports.prompter.Comment("", false);
    // What a repair could not do, the test tells; what it may have lost must be told here.
    if (failed == 0 && !detail.empty()) Warn(session, detail);
    return TestOpen(session, fs::path(session.DatabasePath));
}

int OpenFileDialog(Session& session) {
    session.DatabasePath.clear();
    FileRequest request;
    request.title = Msg(88) + " BMR Tolvane";
    request.filter = "Brindlemere BMR (*.bmr)|*.bmr|Brindlemere archive BMA (*.bma)|*.bma|" + Msg(87) + " (*.*)|*.*";
    request.mustExist = true;
    const auto path = session.ports.prompter.AskOpenFile(request);
    if (!path || path->empty()) return MessageNumber::Cancelled;
    const int error = TestOpen(session, *path);
    // A good file that is locked or forbidden has nothing wrong with its format.
    if (error == engine::EngineNumber::Damaged)
        session.ports.prompter.Ask(MessageBox(51, BoxIcon::Warning));
    else if (error != 0)
        TellOpenFailure(session, error);
    return error;
}

int NewDatabase(Session& session) {
    const HashWiper wiper(session);
    const bool chosen = !session.DefaultPathChosen;
    session.DefaultPathChosen = false;
    if (chosen) {
        const auto path = AskNewName(session);
        if (!path) return MessageNumber::Cancelled;
        session.DatabasePath = *path;
    }
    session.PwAttempts = 0;
    if (const int error = RequestPassphrase(session, true)) return Abandon(session, error);
    int error = chosen ? DeleteReplaced(session.DatabasePath) : 0;
    bool made = false;
    if (error == 0) error = FillNewStore(session, made);
    if (error == 0) error = FinishOpening(session);
    if (error == 0) {
        TellDoubt(session);
        return 0;
    }
    const fs::path path = session.DatabasePath;
    Abandon(session, error);
    if (made) engine::RemoveStore(path);
    if (error > 0) TellOpenFailure(session, error);
    return error;
}

int OpenDatabaseFile(Session& session, engine::Access access) {
    const HashWiper wiper(session);
    session.PwAttempts = 0;
    if (const int error = OpenConnection(session, access)) return Abandon(session, error);
    if (const int error = LogIn(session)) return Abandon(session, error);
    const int error = CheckSystemRecord(session);
    if (error > 0) TellOpenFailure(session, error);
    if (error != 0) return Abandon(session, error);
    const int finished = FinishOrAbandon(session);
    if (finished == 0) TellDoubt(session);
    return finished;
}

int CloseDatabase(Session& session) {
    int error = 0;
    bool doubt = false;
    if (session.ProgramDb && session.DatabaseOpen) {
        {
            engine::Transaction last(*session.ProgramDb);
            error = last.error();
            if (error == 0) error = WriteSystemRecord(session);
            if (error == 0) error = WriteSettingsAtClose(session);
            if (error == 0) error = last.Commit();
        }
        doubt = session.ProgramDb->TakeDoubt();
    }
    ForgetDatabase(session);
    if (session.ending) return error;
    if (doubt) Warn(session, kStoredInDoubt);
    // What was stored before stands, and must not be taken for lost.
    if (error != 0)
        Warn(session,
             "The database is closed, and what was stored in it stands. Only what it shows and filters "
             "could not be kept for the next time. " +
                 ExplainOpenFailure(error));
    return error;
}

int RepairAndCompact(Session& session) {
    const fs::path path = session.DatabasePath;
    std::error_code ignored;  // what cannot be looked at is not there
    if (!fs::exists(path, ignored)) {
        session.ports.prompter.Ask(MessageBox(134, BoxIcon::Warning));
        return MessageNumber::FileNotFound;
    }
    int error = CloseDatabase(session);
    if (error == 0) {
        session.ports.prompter.Comment("", true);
        error = Compact(session, path);
        session.ports.prompter.Comment("", false);
        if (error == 0) session.ports.prompter.Ask(MessageBox(166));
    }
    // The old file stands unharmed when the compacting failed, and the person goes on in it.
    session.DatabasePath = path;
    const int opened = OpenDatabaseFile(session);
    return opened != 0 ? opened : error;
}

}  // namespace bmr::custody
