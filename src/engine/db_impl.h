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
};

struct Cursor::Impl {
    Query query;
    int error = 0;
    std::shared_ptr<Engine> engine;
};

struct Recordset::Impl {
    std::shared_ptr<Engine> engine;
    std::shared_ptr<Plan> plan;
    bool table = false;   ///< a dynaset of "tt"
    bool copied = false;  ///< of a snapshot or a grouped statement: its rows are no rows of `tt`
    bool listed = false;  ///< false for "tt" until the first step: a row that is looked up needs no list

    std::vector<std::int64_t> keys;  ///< the row numbers; `kGone` where the row was deleted
    std::int64_t gone = 0;
    PackedRows rows;  ///< of a copy all rows, else the present row once it was fetched

    std::int64_t place = 0;  ///< in the list; -1 before the first row, the list's size behind the last
    std::optional<std::int64_t> row;  ///< the number of the present row in `tt`
    bool noMatch = false;
    int searchFailed = 0;  ///< the number of a search that came to no answer

    enum class Editing { No, Adding, Changing };
    Editing editing = Editing::No;
    std::array<std::optional<Value>, kColumnCount> pending;
    int refused = 0;                       ///< why the row cannot be written
    std::optional<std::int32_t> givenKey;  ///< of a row in AddNew that had one before; none: drawn

    /// Kept from row to row: one change over many rows asks for the same ones each time.
    std::optional<Query> reader;
    std::optional<Query> writer;
    std::string written;  ///< what `writer` sets

    static constexpr std::int64_t kGone = INT64_MIN;

    int List();
    std::int64_t ListSize() const;
    void Stand(std::int64_t newPlace);
    /// Rows that were deleted are stepped over.
    void Step(std::int64_t by);
    /// Fetches the present row unless it is at hand.
    int Load();
    int Find(std::string_view criteria, Parameters values);
    void Begin(Editing what);
    int Insert();
    /// The key of a row that is added.
    Result<std::int32_t> NewKey();
    int Change();
};

/// Opens a fresh copy and runs the whole integrity check over it.
int TestCopy(const std::filesystem::path& copy, std::string* detail);

}  // namespace bmr::engine
