#include <utility>

#include "engine/db_engine.h"

namespace bmr::engine {

Query::Query(std::shared_ptr<Engine> engine, sqlite3_stmt* statement)
    : engine_(std::move(engine)), statement_(statement) {}

Query::Query(Query&& other) noexcept
    : engine_(std::move(other.engine_)),
      statement_(std::exchange(other.statement_, nullptr)),
      code_(other.code_) {}

Query& Query::operator=(Query&& other) noexcept {
    if (this != &other) {
        GiveBack();
        engine_ = std::move(other.engine_);
        statement_ = std::exchange(other.statement_, nullptr);
        code_ = other.code_;
    }
    return *this;
}

Query::~Query() {
    GiveBack();
}

void Query::GiveBack() {
    if (statement_ != nullptr && engine_->alive()) engine_->TakeBack(statement_);
    statement_ = nullptr;
}

sqlite3_stmt* Query::handle() const {
    return statement_ != nullptr && engine_->alive() ? statement_ : nullptr;
}

void Query::Bind(int place, std::int64_t number) {
    if (handle() != nullptr) sqlite3_bind_int64(statement_, place, number);
}

void Query::Bind(int place, double number) {
    if (handle() != nullptr) sqlite3_bind_double(statement_, place, number);
}

void Query::Bind(int place, std::string_view bytes) {
    // A null pointer would bind Null, not the empty text.
    const char* data = bytes.data() == nullptr ? "" : bytes.data();
    if (handle() != nullptr) sqlite3_bind_blob64(statement_, place, data, bytes.size(), SQLITE_TRANSIENT);
}

void Query::BindNull(int place) {
    if (handle() != nullptr) sqlite3_bind_null(statement_, place);
}

bool Query::Step() {
    code_ = handle() != nullptr ? sqlite3_step(statement_) : SQLITE_MISUSE;
    return code_ == SQLITE_ROW;
}

void Query::Reset() {
    if (handle() != nullptr) sqlite3_reset(statement_);
}

}  // namespace bmr::engine
