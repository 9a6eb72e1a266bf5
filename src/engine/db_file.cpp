#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Statement.h>

#include <system_error>

#include "engine/columns.h"
#include "engine/db.h"
#include "engine/db_engine.h"
#include "engine/db_file.h"
#include "engine/fileio.h"

namespace bmr::engine {
namespace {

int Tell(std::string* detail, int number, const std::string& words) {
    if (detail != nullptr) *detail = words;
    return number;
}

std::string CreateTable() {
    std::string sql = "CREATE TABLE tt (";
    for (std::size_t column = 0; column < kColumnCount; ++column) {
        sql += (column == 0 ? "\n " : ",\n ") + std::string(ColumnNames[column]);
        sql += IsBytesColumn(column) ? " BLOB" : " INTEGER";
        if (ColumnNames[column] == "fPK") {
            // Our own rows bring their key along; this is for those who add rows with other tools.
            sql += " DEFAULT ((random() & 4294967295) - 2147483648)";
        } else if (ColumnDefaults[column]) {
            const std::string value(*ColumnDefaults[column]);
            sql += " DEFAULT " + (IsBytesColumn(column) ? "'" + value + "'" : value);
        }
    }
    return sql + ")";
}

std::string CreateIndexes() {
    std::string sql;
    for (const auto& index : kIndexes)
        sql +=
            "CREATE INDEX \"" + std::string(index.name) + "\" ON tt (\"" + std::string(index.column) + "\");";
    return sql;
}

}  // namespace

StoreWriter::StoreWriter(const std::filesystem::path& path) {
    number_ = NumberOfErrno(CreateNewFile(path));
    if (number_ != 0) {
        words_ = "The file cannot be made.";
        return;
    }
    Guard([&] {
        db_ = std::make_unique<SQLite::Database>(EnginePath(path), SQLite::OPEN_READWRITE, 0);
        KeepReservedBytes(*db_);
        db_->exec(
            "PRAGMA page_size=4096; PRAGMA temp_store=MEMORY; PRAGMA locking_mode=EXCLUSIVE;"
            "PRAGMA synchronous=EXTRA; PRAGMA secure_delete=ON; PRAGMA journal_size_limit=0");
        db_->exec("BEGIN EXCLUSIVE");
        db_->exec(CreateTable());
    });
}

StoreWriter::~StoreWriter() = default;

void StoreWriter::Guard(const std::function<void()>& work) {
    if (number_ != 0) return;
    try {
        work();
    } catch (const SQLite::Exception& error) {
        number_ = NumberOfCode(error.getErrorCode(), db_ ? sqlite3_system_errno(db_->getHandle()) : 0);
        words_ = error.what();
    }
}

void StoreWriter::Add(sqlite3_stmt* row) {
    Guard([&] {
        if (!insert_) {
            std::string marks = "?";
            for (std::size_t column = 1; column < kColumnCount; ++column)
                marks += ", ?";
            insert_ = std::make_unique<SQLite::Statement>(*db_, "INSERT INTO tt VALUES (" + marks + ")");
        }
        insert_->reset();
        for (int column = 0; column < static_cast<int>(kColumnCount); ++column)
            BindCell(column, row);
        insert_->exec();
    });
}

void StoreWriter::BindCell(int column, sqlite3_stmt* row) {
    switch (sqlite3_column_type(row, column)) {
        case SQLITE_NULL:
            insert_->bind(column + 1);
            break;
        case SQLITE_INTEGER:
            insert_->bind(column + 1, static_cast<std::int64_t>(sqlite3_column_int64(row, column)));
            break;
        case SQLITE_FLOAT:
            insert_->bind(column + 1, sqlite3_column_double(row, column));
            break;
        default: {
            const void* data = sqlite3_column_blob(row, column);
            const int size = sqlite3_column_bytes(row, column);
            insert_->bind(column + 1, data == nullptr ? "" : data, size);
        }
    }
}

int StoreWriter::Finish(std::string* detail) {
    Guard([&] {
        insert_.reset();
        db_->exec(CreateIndexes());
        db_->exec("COMMIT");
    });
    insert_.reset();
    db_.reset();  // what was not committed is rolled back
    return number_ == 0 ? 0 : Tell(detail, number_, words_);
}

void KeepReservedBytes(SQLite::Database& db) {
    int reserved = kReservedBytes;
    sqlite3_file_control(db.getHandle(), "main", SQLITE_FCNTL_RESERVE_BYTES, &reserved);
}

int CreateStore(const std::filesystem::path& path) {
    return StoreWriter(path).Finish(nullptr);
}

namespace {

/// The compacted copy of an open file, tested; none on a failure.
int WriteCompacted(Engine& engine, const std::filesystem::path& target, std::string* detail) {
    if (const int error = CreateNewFile(target))
        return Tell(detail, NumberOfErrno(error), "The compacted copy cannot be made.");
    int number = 0;
    try {
        SQLite::Database& db = engine.connection();
        KeepReservedBytes(db);
        SQLite::Statement vacuum(db, "VACUUM INTO ?");
        vacuum.bind(1, EnginePath(target));
        vacuum.exec();
    } catch (const SQLite::Exception& error) {
        number =
            Tell(detail, NumberOfCode(error.getExtendedErrorCode(), sqlite3_system_errno(engine.handle())),
                 error.what());
    }
    if (number == 0) {
        const int error = SyncFile(target);
        number = error == 0 ? 0 : Tell(detail, NumberOfErrno(error), "The compacted copy cannot be stored.");
    }
    if (number == 0) number = TestCopy(target, detail);
    if (number != 0) RemoveQuietly(target);
    return number;
}

}  // namespace

int CompactDatabase(const std::filesystem::path& source, const std::filesystem::path& target,
                    std::string* detail) {
    const auto engine = Engine::Open(source, Engine::Purpose::Use);
    return engine ? WriteCompacted(**engine, target, detail)
                  : Tell(detail, engine.error().number, engine.error().detail);
}

int CompactInPlace(const std::filesystem::path& path, const std::filesystem::path& copy,
                   std::string* detail) {
    const auto engine = Engine::Open(path, Engine::Purpose::Use);
    if (!engine) return Tell(detail, engine.error().number, engine.error().detail);
    if (const int number = WriteCompacted(**engine, copy, detail)) return number;
    auto journal = path;
    journal += "-journal";
#ifdef _WIN32
    constexpr bool kKeepsOpenFiles = true;
#else
    constexpr bool kKeepsOpenFiles = false;
#endif
    // A journal that was played back at the opening goes with the close; later it might be the new file's.
    if (std::error_code ignored; kKeepsOpenFiles || std::filesystem::exists(journal, ignored))
        (*engine)->Close();
    const int number = ReplaceFile(copy, path);
    if (number != 0) RemoveQuietly(copy);
    return number;
}

std::filesystem::path FollowLinks(const std::filesystem::path& path) {
    std::error_code error;
    auto followed = std::filesystem::canonical(path, error);
    return error ? path : followed;
}

int TestCopy(const std::filesystem::path& copy, std::string* detail) {
    auto db = Database::Open(copy);
    if (!db) return Tell(detail, db.error().number, db.error().detail);
    const auto lines = (*db)->CheckIntegrity();
    return lines.empty() ? 0 : Tell(detail, EngineNumber::Damaged, lines.front());
}

void RemoveQuietly(const std::filesystem::path& path) {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
}

int ReplaceFile(const std::filesystem::path& source, const std::filesystem::path& target) {
    // A journal that was left beside the old file would be rolled back into the new one.
    for (const char* suffix : {"-journal", "-wal", "-shm"}) {
        std::filesystem::path side = target;
        side += suffix;
        std::error_code error;
        if (!std::filesystem::exists(side, error)) continue;
        { const auto rolledBack = Engine::Open(target, Engine::Purpose::Repair); }
        std::filesystem::remove(side, error);
        if (error) return NumberOfErrno(error.default_error_condition().value());
    }
    if (const int error = SyncFile(source)) return NumberOfErrno(error);
    if (const int error = RenameOver(source, target)) return NumberOfErrno(error);
    return NumberOfErrno(SyncFolder(target.parent_path()));
}

}  // namespace bmr::engine
