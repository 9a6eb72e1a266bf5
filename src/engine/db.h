#pragma once

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "base/value.h"
#include "engine/enginenumber.h"

namespace bmr::engine {

enum class RecordsetType { Dynaset = 2, Snapshot = 4 };

/// Who opens with `Read` changes no byte of the file, and every attempt to write is refused; only a journal
/// that a killed program left is played back.
enum class Access { Write, Read };

class Recordset;
class Cursor;

/// The values for the `?` of a statement or of criteria, in order: one for each, or the engine refuses it.
using Parameters = std::initializer_list<std::int32_t>;

/// One open file with the table `tt`: exclusive lock, rollback journal with synchronous=EXTRA, secure delete.
/// The only place that knows the engine. Statements are in the dialect of `engine/dialect`; one that is met
/// often takes its values as parameters, as it is then translated and prepared once. Methods that can fail
/// return the engine's number (0 for none); the engine's words stand in `LastError`.
///
/// While it is open, this process must not open the file by any other means: closing such a handle would drop
/// the lock. Recordsets and cursors that outlive it give no rows any more.
class Database {
  public:
    /// Opens exclusively, for reading too; a file that is no database or is damaged gives 3049.
    static Result<std::unique_ptr<Database>> Open(const std::filesystem::path& path,
                                                  Access access = Access::Write);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    const std::filesystem::path& Path() const;
    bool ReadOnly() const;

    /// Runs a statement that gives no rows: DELETE or INSERT INTO tt IN "path" SELECT. A statement that fails
    /// changes nothing.
    [[nodiscard]] int Execute(std::string_view statement, Parameters values = {});

    /// Rows changed since the file was opened, whatever became of their transactions, and what was undone:
    /// equal counts mean that nothing was written or taken back in between.
    std::int64_t ChangeCount() const;

    /// `text` is "tt" or a statement. A dynaset of "tt" is opened in constant time: rows are found by
    /// `FindFirst`.
    Result<std::unique_ptr<Recordset>> OpenRecordset(std::string_view text,
                                                     RecordsetType type = RecordsetType::Dynaset,
                                                     Parameters values = {});

    /// Forward-only reading of a statement, without copies: for lists and scans. Rows that are written while
    /// it reads may or may not be met.
    Result<Cursor> Select(std::string_view statement, Parameters values = {});

    /// Bracket for changes of several rows. Nested calls count: only the outermost commits; a rollback inside
    /// makes the outermost commit a rollback (and gives an error number).
    [[nodiscard]] int BeginTrans();
    ///
    /// A commit that the disk refuses at its very end may stand all the same: the file is looked at, and what
    /// is there decides. 0 when the change stands (`TakeDoubt` then tells of the disk), the failure's number
    /// when all is as before, `EngineNumber::Unsure` when the file cannot be looked at any more. So it is
    /// with statements and rows that are written outside a bracket.
    [[nodiscard]] int CommitTrans();
    void Rollback();

    /// Whether something was stored since the last question although the disk reported a failure behind it:
    /// it is there, but may not outlast a power cut.
    bool TakeDoubt();

    /// Runs the engine's whole integrity check; empty when clean, else its lines.
    std::vector<std::string> CheckIntegrity();

    const std::string& LastError() const;

    struct Impl;

  private:
    friend class Recordset;
    friend class Cursor;
    explicit Database(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> impl_;
};

/// Rolls back when it goes without `Commit`.
class Transaction {
  public:
    explicit Transaction(Database& db) : db_(db), error_(db.BeginTrans()) {}
    ~Transaction() {
        if (!done_ && error_ == 0) db_.Rollback();
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    int error() const { return error_; }
    [[nodiscard]] int Commit() {
        done_ = true;
        return error_ != 0 ? error_ : db_.CommitTrans();
    }

  private:
    Database& db_;
    int error_;
    bool done_ = false;
};

/// Reads a statement's rows once, forward. Columns are addressed by their place in the statement, from 0.
/// Text and number views live until the next `Next`.
class Cursor {
  public:
    Cursor(Cursor&&) noexcept;
    Cursor& operator=(Cursor&&) noexcept;
    ~Cursor();
    /// True with a row in hand. False at the end or on an error (`error`).
    bool Next();
    int error() const;
    std::int32_t Int(int column) const;  ///< Null reads 0
    double Real(int column) const;
    std::string_view Bytes(int column) const;  ///< Null reads empty
    bool IsNull(int column) const;

  private:
    friend class Database;
    struct Impl;
    explicit Cursor(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> impl_;
};

/// Rows of "tt" or of a statement, addressed by field name as in the engine's own interface. Columns of `tt`:
/// fPK, fSec, fSub, fR1 to fR5, fG1 and AE read as int32, fF1 to fF3 as bool, fEtx and fT1 to fT3 as Bytes;
/// Null where empty. A computed column reads as int32 where it is whole and fits, else as double.
class Recordset {
  public:
    ~Recordset();
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;

    /// Moves to the first row that meets `criteria` ("fSec=1 And fSub=?"); `NoMatch` tells when there is
    /// none. Not for a snapshot. 0, or the engine's number: then nobody knows whether there is such a row,
    /// and `Update` refuses an `AddNew` with that number until a search succeeds.
    [[nodiscard]] int FindFirst(std::string_view criteria, Parameters values = {});
    bool NoMatch() const;

    void MoveFirst();
    void MoveLast();
    void MoveNext();
    void MovePrevious();
    /// By `rows` from the present row, or from `bookmark`.
    void Move(std::int64_t rows);
    void Move(std::int64_t rows, std::int64_t bookmark);
    bool Eof() const;
    std::int64_t RecordCount() const;
    /// Place of the present row, from 0; -1 without one.
    std::int64_t AbsolutePosition() const;
    std::int64_t Bookmark() const;
    void SetBookmark(std::int64_t bookmark);

    Value Field(std::string_view name) const;
    /// Only between `AddNew` or `Edit` and `Update`. Bytes go in as they are; bool, int32, Null as told. An
    /// int32 outside the range of the column's type makes `Update` fail.
    void SetField(std::string_view name, Value value);

    /// A new row starts with the column defaults ("0" in fT1 and fT2, 0 in the numbers, Null in fT3, fG1, AE)
    /// and a random `fPK` (never -1 or 0, drawn anew on collision), which `Field("fPK")` reads after
    /// `Update`.
    void AddNew();
    /// The same for a row that is put back under the key that it had; `Update` refuses a key that is taken.
    void AddNew(std::int32_t fPK);
    void Edit();
    /// Writes the row, which becomes the present one. 0, or the engine's number with nothing changed; so for
    /// a row that `Edit` could not read.
    [[nodiscard]] int Update(int type = 1, int force = 0);
    [[nodiscard]] int Delete();

    struct Impl;

  private:
    friend class Database;
    explicit Recordset(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> impl_;
};

/// Makes a new, empty file with table `tt`, mode 0600, 8 reserved bytes a page. The file must not exist; a
/// failure leaves none.
[[nodiscard]] int CreateStore(const std::filesystem::path& path);

/// Takes away a closed file and its journal, as far as they are there.
void RemoveStore(const std::filesystem::path& path);

/// Writes a compacted copy; `target` must not exist.
[[nodiscard]] int CompactDatabase(const std::filesystem::path& source, const std::filesystem::path& target,
                                  std::string* detail = nullptr);

/// Writes a compacted copy and puts it in the file's place, which stays locked until then: a program that
/// writes meanwhile is refused, and never loses what it saved. `copy` lies beside the file and must not
/// exist, unless it is a leftover, which goes. 0 once the compacted file is in its place; `detail` then says
/// where the disk failed behind it.
[[nodiscard]] int CompactInPlace(const std::filesystem::path& path, const std::filesystem::path& copy,
                                 std::string* detail = nullptr);

/// Whether a file is a copy that was being written when a program was killed, by its mark, or is empty. Not
/// of a file that this process has open.
bool IsLeftoverCopy(const std::filesystem::path& path);

/// The file that a link leads to, so that a copy takes the place of the file and not of the link; a path that
/// cannot be followed as it is.
std::filesystem::path FollowLinks(const std::filesystem::path& path);

/// Repairs in place what can be repaired: rolls back an open journal, rebuilds the indexes, and where rows
/// are unreadable writes a copy of the readable ones and puts it in the file's place. The file is left as it
/// was when nothing could be won; one that was replaced is kept beside it ("name.damaged1.bmr"), since what
/// we cannot read others may. `detail` (UTF-8) then says how many rows were read and where the old file is.
[[nodiscard]] int RepairDatabase(const std::filesystem::path& path, std::string* detail = nullptr);

/// Puts `source` in the place of `target`: fsync of the file, rename, fsync of the folder. A journal that was
/// left beside `target` is played back and removed first. Neither file may be open. 0 once the file is in its
/// place; `detail` then says where the disk failed behind it.
[[nodiscard]] int ReplaceFile(const std::filesystem::path& source, const std::filesystem::path& target,
                              std::string* detail = nullptr);

}  // namespace bmr::engine
