#pragma once

#include <array>
#include <memory>
#include <optional>
#include <vector>

#include "engine/columns.h"
#include "engine/db.h"
#include "engine/db_engine.h"
#include "engine/db_rows.h"

namespace bmr::engine {

struct Database::Impl {
    std::filesystem::path path;
    std::shared_ptr<Engine> engine;
    std::int64_t affected = 0;
};

struct Cursor::Impl {
    Query query;
    int error = 0;
    std::shared_ptr<Engine> engine;
};

/// Where a recordset's rows come from.
/// Table: rows of `tt` in the order of insertion, looked up at each step.
/// Keys: the row numbers of a dynaset; a row is fetched when it is asked for.
/// Copied: the rows of a snapshot or of a grouped statement.
enum class RowSource { Table, Keys, Copied };

struct Recordset::Impl {
    std::shared_ptr<Engine> engine;
    RowSource source = RowSource::Table;
    std::vector<ResultColumn> columns;
    std::string items;  ///< of Keys: what is fetched of a row

    std::vector<std::int64_t> keys;  ///< of Keys; `kGone` where the row was deleted
    std::int64_t gone = 0;
    PackedRows rows;  ///< of Copied: all rows, else the present row once it was fetched

    enum class At { Before, Row, After };
    At at = At::Before;
    std::int64_t place = 0;  ///< the row number (Table) or the place in the list, when `at` is Row
    bool deleted = false;    ///< the present row is gone
    bool noMatch = false;

    enum class Editing { No, Adding, Changing };
    Editing editing = Editing::No;
    std::array<std::optional<Value>, kColumnCount> pending;
    int refused = 0;  ///< a value was set that the row cannot take

    static constexpr std::int64_t kGone = INT64_MIN;

    // Moving. Rows that were deleted are stepped over.
    void Step(std::int64_t rows);
    void StepInTable(std::int64_t rows);
    void StepInList(std::int64_t rows);
    void ToEnd(bool last);
    std::int64_t ListSize() const;
    bool IsGone(std::int64_t listPlace) const;
    void Stand(At where, std::int64_t newPlace = 0);

    /// The number of the present row in `tt`; nothing without one.
    std::optional<std::int64_t> RowNumber() const;
    /// Fetches the present row unless it is at hand. False when it cannot be read.
    bool Load();

    void Find(std::string_view criteria);
    /// Asks for `what` of the rows of `tt` that meet `criteria`.
    std::optional<Query> Matches(std::string_view what, std::string_view criteria);
    std::optional<std::int64_t> FindInTable(std::string_view criteria);
    std::optional<std::int64_t> FindInKeys(std::string_view criteria);
    std::optional<std::int64_t> FindInCopy(std::string_view criteria);

    int Insert();
    int Change();
    bool IsKeyTaken(std::int32_t key);
};

}  // namespace bmr::engine
