#include "engine/db_rows.h"

#include <cmath>
#include <cstring>
#include <utility>

#include "engine/columns.h"

namespace bmr::engine {
namespace {

bool FitsInt32(std::int64_t number) {
    return number >= INT32_MIN && number <= INT32_MAX;
}

template <class T>
void Put(std::string& block, T value) {
    char raw[sizeof(T)];
    std::memcpy(raw, &value, sizeof(T));
    block.append(raw, sizeof(T));
}

template <class T>
T Get(const std::string& block, std::size_t at) {
    T value;
    std::memcpy(&value, block.data() + at, sizeof(T));
    return value;
}

std::pair<std::int64_t, std::int64_t> RangeOf(std::size_t column) {
    switch (ColumnTypes[column]) {
        case ColumnType::Boolean:
            return {0, 1};
        case ColumnType::Byte:
            return {0, UINT8_MAX};
        case ColumnType::Int16:
            return {INT16_MIN, INT16_MAX};
        default:
            return {INT32_MIN, INT32_MAX};
    }
}

Value Computed(const Cell& cell) {
    switch (cell.kind) {
        case Cell::Kind::Number:
            if (FitsInt32(cell.number)) return static_cast<std::int32_t>(cell.number);
            return static_cast<double>(cell.number);
        case Cell::Kind::Real:
            if (cell.real >= INT32_MIN && cell.real <= INT32_MAX && std::floor(cell.real) == cell.real)
                return static_cast<std::int32_t>(cell.real);
            return cell.real;
        case Cell::Kind::Bytes:
            return Bytes(cell.bytes);
        case Cell::Kind::Null:
            break;
    }
    return Null{};
}

}  // namespace

Cell CellOf(sqlite3_stmt* statement, int column) {
    Cell cell;
    switch (sqlite3_column_type(statement, column)) {
        case SQLITE_INTEGER:
            cell.kind = Cell::Kind::Number;
            cell.number = sqlite3_column_int64(statement, column);
            break;
        case SQLITE_FLOAT:
            cell.kind = Cell::Kind::Real;
            cell.real = sqlite3_column_double(statement, column);
            break;
        case SQLITE_NULL:
            break;
        default: {
            cell.kind = Cell::Kind::Bytes;
            const auto* data = static_cast<const char*>(sqlite3_column_blob(statement, column));
            if (data != nullptr)
                cell.bytes = {data, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
        }
    }
    return cell;
}

Value ValueOf(const Cell& cell, const ResultColumn& column) {
    const auto place = column.source.empty() ? std::nullopt : ColumnIndex(column.source);
    if (!place) return Computed(cell);
    if (IsBytesColumn(*place)) {
        if (cell.kind == Cell::Kind::Bytes) return Bytes(cell.bytes);
        if (cell.kind == Cell::Kind::Number) return std::to_string(cell.number);
        return Null{};
    }
    if (cell.kind != Cell::Kind::Number) return Null{};
    if (ColumnTypes[*place] == ColumnType::Boolean) return cell.number != 0;
    if (!FitsInt32(cell.number)) return Null{};
    return static_cast<std::int32_t>(cell.number);
}

std::optional<Value> Fitting(std::size_t column, Value value) {
    if (std::holds_alternative<Empty>(value) || std::holds_alternative<Null>(value)) return Null{};
    if (IsBytesColumn(column))
        return std::holds_alternative<Bytes>(value) ? std::optional(std::move(value)) : std::nullopt;
    const auto* flag = std::get_if<bool>(&value);
    const auto* number = std::get_if<std::int32_t>(&value);
    if (flag == nullptr && number == nullptr) return std::nullopt;
    if (ColumnTypes[column] == ColumnType::Boolean) return flag != nullptr ? *flag : *number != 0;
    const std::int32_t whole = flag != nullptr ? (*flag ? 1 : 0) : *number;
    const auto [low, high] = RangeOf(column);
    if (whole < low || whole > high) return std::nullopt;
    return whole;
}

Value DefaultOf(std::size_t column) {
    if (ColumnNames[column] == "fPK" || !ColumnDefaults[column]) return Null{};
    if (IsBytesColumn(column)) return Bytes(*ColumnDefaults[column]);
    if (ColumnTypes[column] == ColumnType::Boolean) return false;
    return std::int32_t{0};
}

void PackedRows::Append(sqlite3_stmt* statement, int first) {
    starts_.push_back(block_.size());
    const int count = sqlite3_column_count(statement);
    for (int column = first; column < count; ++column) {
        const Cell cell = CellOf(statement, column);
        block_ += static_cast<char>(cell.kind);
        switch (cell.kind) {
            case Cell::Kind::Null:
                break;
            case Cell::Kind::Number:
                Put(block_, cell.number);
                break;
            case Cell::Kind::Real:
                Put(block_, cell.real);
                break;
            case Cell::Kind::Bytes:
                Put(block_, cell.bytes.size());
                block_ += cell.bytes;
                break;
        }
    }
}

void PackedRows::Clear() {
    block_.clear();
    starts_.clear();
}

Cell PackedRows::At(std::size_t row, std::size_t column) const {
    Cell cell;
    if (row >= starts_.size()) return cell;
    std::size_t at = starts_[row];
    const std::size_t end = row + 1 < starts_.size() ? starts_[row + 1] : block_.size();
    for (std::size_t i = 0; at < end; ++i) {
        cell = {};
        cell.kind = static_cast<Cell::Kind>(block_[at++]);
        switch (cell.kind) {
            case Cell::Kind::Null:
                break;
            case Cell::Kind::Number:
                cell.number = Get<std::int64_t>(block_, at);
                at += sizeof(cell.number);
                break;
            case Cell::Kind::Real:
                cell.real = Get<double>(block_, at);
                at += sizeof(cell.real);
                break;
            case Cell::Kind::Bytes: {
                const auto size = Get<std::size_t>(block_, at);
                at += sizeof(size);
                cell.bytes = std::string_view(block_).substr(at, size);
                at += size;
                break;
            }
        }
        if (i == column) return cell;
    }
    return {};
}

}  // namespace bmr::engine
