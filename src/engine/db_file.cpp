#include "engine/db_file.h"

#include <SQLiteCpp/Exception.h>

#include <system_error>

#include "engine/columns.h"
#include "engine/db_engine.h"
#include "engine/fileio.h"

namespace bmr::engine {
namespace {

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

int Tell(std::string* detail, int number, const std::string& words) {
    if (detail != nullptr) *detail = words;
    return number;
}

StoreWriter::StoreWriter(const std::filesystem::path& path) {
    number_ = NumberOfErrno(CreateNewFile(path));
    if (number_ != 0) {
        words_ = "The file cannot be made.";
        return;
    }
    path_ = path;
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
    if (number_ != 0 && !path_.empty()) RemoveWithJournal(path_);
    return number_ == 0 ? 0 : Tell(detail, number_, words_);
}

void KeepReservedBytes(SQLite::Database& db) {
    int reserved = kReservedBytes;
    sqlite3_file_control(db.getHandle(), "main", SQLITE_FCNTL_RESERVE_BYTES, &reserved);
}

void RemoveWithJournal(const std::filesystem::path& path) {
    auto journal = path;
    journal += "-journal";
    RemoveQuietly(journal);
    RemoveQuietly(path);
}

void RemoveQuietly(const std::filesystem::path& path) {
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
}

}  // namespace bmr::engine
