#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/value.h"
#include "engine/dialect.h"

namespace bmr::engine {

/// One value of a row as the engine holds it.
struct Cell {
    enum class Kind : char { Null, Number, Real, Bytes };
    Kind kind = Kind::Null;
    std::int64_t number = 0;
    double real = 0;
    std::string_view bytes;  ///< lives as long as what it was read from
};

Cell CellOf(sqlite3_stmt* statement, int column);

/// What a cell means in its column; a number that its column cannot hold reads as Null.
Value ValueOf(const Cell& cell, const ResultColumn& column);

/// The value as the column keeps it; nothing when it cannot.
std::optional<Value> Fitting(std::size_t column, Value value);

/// What a new row has in the column; Null for the key, which is drawn.
Value DefaultOf(std::size_t column);

/// Copied rows in one block of memory.
class PackedRows {
  public:
    /// Appends the row that `statement` has in hand, its columns from `first` on.
    void Append(sqlite3_stmt* statement, int first = 0);
    void Clear();
    std::size_t size() const { return starts_.size(); }
    /// A null cell for a row or a column that is not there.
    Cell At(std::size_t row, std::size_t column) const;

  private:
    std::string block_;
    std::vector<std::size_t> starts_;
};

}  // namespace bmr::engine
