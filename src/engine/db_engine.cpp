#include "engine/db_engine.h"

#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Statement.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include "engine/columns.h"
#include "engine/enginenumber.h"
#include "engine/fileio.h"

namespace bmr::engine {
namespace {

constexpr std::size_t kCached = 64;

/// What can be told of a path without opening it. Opening (and closing) would drop the locks of a database
/// that this process has open there.
int TestPath(const std::filesystem::path& path) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (status.type() == std::filesystem::file_type::not_found) return EngineNumber::NotFound;
    if (error) return NumberOfErrno(error.default_error_condition().value());
    return status.type() == std::filesystem::file_type::regular ? 0 : EngineNumber::NoPermission;
}

const char* WordsForPath(int number) {
    return number == EngineNumber::NotFound ? "There is no such file."
                                            : "This is no file that may be opened.";
}

std::filesystem::path PathOf(const std::string& utf8) {
    return std::u8string(utf8.begin(), utf8.end());
}

/// The extended code, which an exception of our own lacks.
int CodeOf(const SQLite::Exception& error) {
    return error.getExtendedErrorCode() > 0 ? error.getExtendedErrorCode() : error.getErrorCode();
}

void Set(sqlite3* db, int option, int value) {
    if (sqlite3_db_config(db, option, value, nullptr) != SQLITE_OK) throw SQLite::Exception(db);
}

}  // namespace

int NumberOfCode(int code, int systemError) {
    switch (code & 0xff) {
        case SQLITE_OK:
        case SQLITE_ROW:
        case SQLITE_DONE:
            return 0;
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return EngineNumber::InUse;
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            return EngineNumber::Damaged;
        case SQLITE_FULL:
            return EngineNumber::DiskFull;
        case SQLITE_READONLY:
        case SQLITE_PERM:
        case SQLITE_AUTH:
        case SQLITE_CANTOPEN:
            return EngineNumber::NoPermission;
        case SQLITE_IOERR:
            if (code == SQLITE_IOERR_SHORT_READ || code == SQLITE_IOERR_CORRUPTFS)
                return EngineNumber::Damaged;
            return systemError != 0 ? NumberOfErrno(systemError) : EngineNumber::Failed;
        default:
            return EngineNumber::Failed;
    }
}

std::string EnginePath(const std::filesystem::path& path) {
    const auto utf8 = std::filesystem::absolute(path).u8string();
    return {utf8.begin(), utf8.end()};
}

std::int32_t DrawKey(RandomSource& random, const std::function<bool(std::int32_t)>& taken) {
    for (;;) {
        std::array<std::uint8_t, 4> bytes{};
        random.Fill(bytes);
        const std::uint32_t bits = (std::uint32_t{bytes[0]} << 24) | (std::uint32_t{bytes[1]} << 16) |
                                   (std::uint32_t{bytes[2]} << 8) | bytes[3];
        const auto key = static_cast<std::int32_t>(bits);
        if (key != 0 && key != -1 && !taken(key)) return key;
    }
}

Result<std::shared_ptr<Engine>> Engine::Open(const std::filesystem::path& path, Purpose purpose) {
    if (const int number = TestPath(path)) return Error{number, WordsForPath(number)};
    std::shared_ptr<Engine> engine(new Engine);
    try {
        // A path never reads as a URI; the one of a copy in memory does.
        const int kFlags = SQLite::OPEN_READWRITE | SQLite::OPEN_URI;
        engine->db_ = std::make_unique<SQLite::Database>(EnginePath(path), kFlags, 0);
        engine->Configure(purpose);
        // The library opens what may only be read without a word.
        if (sqlite3_db_readonly(engine->handle(), "main") != 0)
            return Error{EngineNumber::NoPermission, "The file may not be written."};
        engine->LockAndTest(purpose);
        return engine;
    } catch (const SQLite::Exception& error) {
        const int system = engine->db_ ? sqlite3_system_errno(engine->handle()) : 0;
        return Error{NumberOfCode(CodeOf(error), system), error.what()};
    }
}

void Engine::Configure(Purpose purpose) {
    sqlite3* db = handle();
    sqlite3_extended_result_codes(db, 1);
    // Nothing that came with a file may run: no views, no triggers, no functions of its schema.
    Set(db, SQLITE_DBCONFIG_DEFENSIVE, purpose == Purpose::Repair ? 0 : 1);
    Set(db, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0);
    Set(db, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0);
    Set(db, SQLITE_DBCONFIG_ENABLE_VIEW, 0);
    // A file that ends too early is refused unless its schema may be written.
    if (purpose == Purpose::Repair) Set(db, SQLITE_DBCONFIG_WRITABLE_SCHEMA, 1);
    // What another program left in its log is read from there, and stays there.
    std::error_code none;
    const auto log =
        std::filesystem::file_size(PathOf(sqlite3_filename_wal(sqlite3_db_filename(db, "main"))), none);
    if (purpose == Purpose::Read && !none && log > 0) Set(db, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1);
    readOnly_ = purpose == Purpose::Read;
    AddDialectFunctions(db);
    db_->exec("PRAGMA cell_size_check=ON; PRAGMA temp_store=MEMORY; PRAGMA locking_mode=EXCLUSIVE");
}

void Engine::LockAndTest(Purpose purpose) {
    // The lock is taken now, not at the first save; a journal that was left is rolled back under it.
    db_->exec("BEGIN EXCLUSIVE");
    RemoveColdJournal();
    if (purpose != Purpose::Repair) {
        TestSize();
        TestSchema("main");
    }
    db_->exec("ROLLBACK");  // the lock stays; a commit would already correct the header of a damaged file
    const std::string mode = db_->execAndGet("PRAGMA journal_mode").getString();
    if (mode != "delete" && purpose == Purpose::Use) {
        db_->exec("PRAGMA journal_mode=DELETE");
        db_->exec("BEGIN EXCLUSIVE; COMMIT");
    }
    // While the lock is held the journal is cut to nothing at each commit, and removed at the close.
    db_->exec(
        "PRAGMA synchronous=EXTRA; PRAGMA secure_delete=ON; PRAGMA journal_size_limit=0;"
        "PRAGMA cache_size=-8000; PRAGMA mmap_size=0");
    if (purpose == Purpose::Read) db_->exec("PRAGMA query_only=ON");
}

// A program that was killed between two saves leaves an empty journal. Nothing is to be rolled back from it,
// but it would lie beside the file for good. It is only taken away while the lock is held and the library has
// it not open.
void Engine::RemoveColdJournal() {
    sqlite3_file* journal = nullptr;
    sqlite3_file_control(handle(), "main", SQLITE_FCNTL_JOURNAL_POINTER, &journal);
    if (journal == nullptr || journal->pMethods != nullptr) return;
    std::error_code ignored;
    std::filesystem::remove(PathOf(sqlite3_filename_journal(sqlite3_db_filename(handle(), "main"))), ignored);
}

/// The library reads on where the last page is cut, as if zeros stood there.
void Engine::TestSize() {
    const int page = db_->execAndGet("PRAGMA page_size").getInt();
    std::error_code error;
    const auto size = std::filesystem::file_size(PathOf(db_->getFilename()), error);
    if (!error && size % static_cast<unsigned>(page) != 0)
        throw SQLite::Exception("The file has been cut short.", SQLITE_NOTADB);
}

/// A file without the table `tt`, or with one of another shape, counts as damaged.
void Engine::TestSchema(const std::string& schema) {
    const auto damaged = [] { return SQLite::Exception("The file has no table of records.", SQLITE_NOTADB); };
    SQLite::Statement table(*db_, "SELECT type, wr FROM pragma_table_list('tt') WHERE schema = ?");
    table.bind(1, schema);
    if (!table.executeStep() || table.getColumn(0).getString() != "table" || table.getColumn(1).getInt() != 0)
        throw damaged();
    SQLite::Statement columns(*db_, "SELECT name, hidden FROM pragma_table_xinfo('tt', ?)");
    columns.bind(1, schema);
    std::array<bool, kColumnCount> found{};
    while (columns.executeStep()) {
        const auto column = ColumnIndex(columns.getColumn(0).getString());
        if (column && columns.getColumn(1).getInt() == 0) found[*column] = true;
    }
    if (std::find(found.begin(), found.end(), false) != found.end()) throw damaged();
}

Engine::~Engine() {
    Close();
}

void Engine::Close() {
    if (!db_) return;
    idle_.clear();
    while (sqlite3_stmt* statement = sqlite3_next_stmt(handle(), nullptr))
        sqlite3_finalize(statement);
    db_.reset();
}

Result<Query> Engine::Prepare(std::string_view sql) {
    if (const auto found = idle_.find(sql); found != idle_.end()) {
        sqlite3_stmt* statement = found->second;
        idle_.erase(found);
        return Query(shared_from_this(), statement);
    }
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v3(handle(), sql.data(), static_cast<int>(sql.size()),
                                        SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    if (code != SQLITE_OK) {
        const int number = code == SQLITE_ERROR ? EngineNumber::BadStatement
                                                : NumberOfCode(code, sqlite3_system_errno(handle()));
        return Error{Fail(number, sqlite3_errmsg(handle())), lastError_};
    }
    return Query(shared_from_this(), statement);
}

void Engine::TakeBack(sqlite3_stmt* statement) {
    sqlite3_reset(statement);
    sqlite3_clear_bindings(statement);
    if (idle_.size() >= kCached)
        for (const auto& [text, each] : std::exchange(idle_, {}))
            sqlite3_finalize(each);
    idle_.emplace(sqlite3_sql(statement), statement);
}

int Engine::Fail(int number, std::string words) {
    lastError_ = std::move(words);
    return number;
}

int Engine::FailWith(int code) {
    return Fail(NumberOfCode(code, sqlite3_system_errno(handle())), sqlite3_errmsg(handle()));
}

int Engine::Attach(const std::string& path) {
    const std::filesystem::path file = PathOf(path);
    if (const int number = TestPath(file)) return Fail(number, WordsForPath(number));
    const std::string full = EnginePath(file);
    if (attached_ == full) return 0;
    if (!attached_.empty()) return Fail(EngineNumber::Failed, "Another file is open in this transaction.");
    try {
        SQLite::Statement attach(*db_, "ATTACH ? AS other");
        attach.bind(1, full);
        attach.exec();
        attached_ = full;
        if (sqlite3_db_readonly(handle(), "other") != 0)
            throw SQLite::Exception("The file may not be written.", SQLITE_READONLY);
        TestSchema("other");
        return 0;
    } catch (const SQLite::Exception& error) {
        const int number = NumberOfCode(CodeOf(error), sqlite3_system_errno(handle()));
        Fail(number, error.what());
        DetachOutsideTransaction();
        return number;
    }
}

void Engine::DetachOutsideTransaction() {
    if (attached_.empty() || depth_ > 0) return;
    if (sqlite3_exec(handle(), "DETACH other", nullptr, nullptr, nullptr) == SQLITE_OK) attached_.clear();
}

}  // namespace bmr::engine
