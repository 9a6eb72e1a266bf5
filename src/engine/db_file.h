#pragma once

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <sqlite3.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace bmr::engine {

/// Bytes that stay free at the end of each page, so that the last byte of a database is always 0.
inline constexpr int kReservedBytes = 8;

/// Makes a new database row by row. All is one transaction, which `Finish` commits; the indexes are built at
/// the end, in order and therefore dense.
class StoreWriter {
  public:
    explicit StoreWriter(const std::filesystem::path& path);
    ~StoreWriter();

    /// Copies the row that `row` has in hand; its columns are those of `tt`, in order.
    void Add(sqlite3_stmt* row);
    /// 0, or the number of the first failure; then no file is left.
    int Finish(std::string* detail);

  private:
    void Guard(const std::function<void()>& work);
    void BindCell(int column, sqlite3_stmt* row);

    std::filesystem::path path_;  ///< empty where the file was not made
    std::unique_ptr<SQLite::Database> db_;
    std::unique_ptr<SQLite::Statement> insert_;
    int number_ = 0;
    std::string words_;
};

/// Gives the pages that a connection makes from now on their reserved bytes.
void KeepReservedBytes(SQLite::Database& db);

/// Puts `words` into `detail`, where somebody wants them, and gives `number` back.
int Tell(std::string* detail, int number, const std::string& words);

void RemoveQuietly(const std::filesystem::path& path);
void RemoveWithJournal(const std::filesystem::path& path);

}  // namespace bmr::engine
