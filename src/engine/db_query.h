#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string_view>

namespace bmr::engine {

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

}  // namespace bmr::engine
