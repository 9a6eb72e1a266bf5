#pragma once

#include <SQLiteCpp/Database.h>
#include <sqlite3.h>

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/result.h"
#include "crypto/systemrandom.h"
#include "engine/dialect.h"

namespace bmr::engine {

/// The indexes that a statement takes; empty: the library's own choice.
struct Ways {
    std::string toAll;    ///< quickest to the last row
    std::string toFirst;  ///< quickest to the first rows, in order
};

/// What is asked of a statement.
enum class Use {
    AllRows,
    FirstRows,    ///< its rows, of which only the first few may be read
    RowNumbers,   ///< the numbers of its rows in `tt`
    FirstNumber,  ///< the lowest of them; Null when there is none
    OneRow        ///< its columns of the row with the number that is bound first
};

/// A translated statement, the ways in that were chosen for it and the texts that came of them.
struct Plan {
    Translated statement;
    bool byValues = false;  ///< the ways hang on the values that are bound, and are chosen at each use
    Ways ways;
    std::int64_t changesAt = 0;        ///< the connection's changes when they were chosen
    std::array<std::string, 5> texts;  ///< by Use, each made when it is first asked for
};

/// What a plan is made of: a whole statement, or the criteria of FindFirst.
enum class Wording { Statement, Criteria };

/// Lets a table of texts be asked for a view, without a copy.
struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};

class Engine;

/// A prepared statement, lent by the engine's cache and given back when this goes. After the engine has
/// closed it gives no rows any more.
class Query {
  public:
    Query(std::shared_ptr<Engine> engine, sqlite3_stmt* statement);
    Query(Query&& other) noexcept;
    Query& operator=(Query&& other) noexcept;
    ~Query();

    /// Places are counted from 1.
    void Bind(int place, std::int64_t number);
    void Bind(int place, double number);
    void Bind(int place, std::string_view bytes);
    void BindNull(int place);

    /// True with a row in hand. False at the end (`code` is then SQLITE_DONE) or on an error.
    bool Step();
    int code() const { return code_; }
    void Reset();

    /// Columns are counted from 0.
    std::int64_t Number(int column) const { return sqlite3_column_int64(statement_, column); }
    /// Null when the engine has closed.
    sqlite3_stmt* handle() const;

  private:
    void GiveBack();

    std::shared_ptr<Engine> engine_;
    sqlite3_stmt* statement_ = nullptr;
    int code_ = SQLITE_OK;
};

/// One connection: the file's lock, the transactions, the cache of prepared statements. Shared by a Database
/// and its recordsets; closed by the Database.
class Engine : public std::enable_shared_from_this<Engine> {
  public:
    /// How a file is opened. `Read` leaves it as it is; `Repair` takes the lock but asks for no sound schema
    /// and reads on where the file is too short.
    enum class Purpose { Use, Read, Repair };
    static Result<std::shared_ptr<Engine>> Open(const std::filesystem::path& path, Purpose purpose);
    ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    void Close();
    bool alive() const { return db_ != nullptr; }
    bool readOnly() const { return readOnly_; }
    sqlite3* handle() const { return db_->getHandle(); }
    SQLite::Database& connection() { return *db_; }
    RandomSource& random() { return random_; }

    Result<Query> Prepare(std::string_view sql);
    /// The plan's text for `use` with `values` bound, which must be as many as the statement has parameters.
    /// Where the file lacks the index that was chosen, it goes without.
    Result<Query> Prepare(Plan& plan, Use use, std::span<const std::int32_t> values = {});
    void TakeBack(sqlite3_stmt* statement);

    Result<std::shared_ptr<Plan>> PlanOf(std::string_view text, Wording wording = Wording::Statement);

    int Begin();
    /// 0 when the new state stands, though the disk may have failed behind it (`TakeDoubt`). Else the number
    /// of the failure, and the state of before stands; or `Unsure` when the file could not be looked at.
    int Commit();
    void Rollback();
    /// Whether a commit stood although the disk failed; once.
    bool TakeDoubt() { return std::exchange(doubt_, false); }
    /// Gives a file that was marked as a copy a mark of the usual kind.
    int DropMark();
    /// Transactions and statements that were undone since the file was opened.
    std::int64_t undone() const { return undone_; }
    enum class Schema { Main, Other };
    /// Runs a statement that writes, in a transaction of its own where there is none. A failure undoes the
    /// whole transaction around it.
    int Write(Query& query, Schema schema = Schema::Main);
    /// Why nothing may be written any more until the transaction has ended; 0 when it may.
    int brokenBy() const { return broken_; }

    /// Opens the file of INSERT INTO tt IN as `other`; it goes when the transaction ends, or with `Detach`.
    int Attach(const std::string& path);
    void DetachOutsideTransaction();

    /// Takes note of a failure and gives its number.
    int Fail(int number, std::string words);
    int FailWith(int code);
    const std::string& lastError() const { return lastError_; }

  private:
    Engine() = default;
    void Configure(Purpose purpose);
    void LockAndTest(Purpose purpose);
    void RemoveColdJournal();
    void TestSize();
    void TestSchema(const std::string& schema);
    void ChooseWays(Plan& plan);
    Ways CountedWays(const std::vector<IndexRange>& ranges, const std::string& orderedBy);
    std::int64_t Count(const IndexRange& range, std::int64_t limit);
    std::int64_t CountAll();
    int Run(Query& query, Schema schema);
    int End();
    int SetMark(const std::string& schema, std::int64_t mark);
    std::optional<std::int64_t> MarkOf(const std::string& schema);
    void UndoOnFailure(int number);

    std::unique_ptr<SQLite::Database> db_;
    cry::SystemRandom random_;
    std::unordered_multimap<std::string_view, sqlite3_stmt*> idle_;  ///< by the text that each holds itself
    std::array<std::unordered_map<std::string, std::shared_ptr<Plan>, TextHash, std::equal_to<>>, 2>
        plans_;  ///< by Wording
    std::string attached_;
    std::string lastError_;
    int depth_ = 0;
    int broken_ = 0;
    std::int64_t undone_ = 0;
    bool wroteMain_ = false;   ///< in the present transaction
    bool wroteOther_ = false;  ///< the same in the other file
    bool doubt_ = false;
    bool readOnly_ = false;
};

/// Stands in the place of a transaction's mark in a compacted copy until that has taken the file's place. No
/// transaction draws it.
inline constexpr std::int32_t kCopyMark = 0x62636d70;

/// The engine's number for the library's extended code.
int NumberOfCode(int code, int systemError);

/// Adds Int, ^, Mod and \ to a connection.
void AddDialectFunctions(sqlite3* db);

/// A random row key: never -1 or 0, never one that is `taken`.
std::int32_t DrawKey(RandomSource& random, const std::function<bool(std::int32_t)>& taken);

/// A path as the library wants it: absolute, so that it is never taken for a URI, and UTF-8.
std::string EnginePath(const std::filesystem::path& path);

}  // namespace bmr::engine
