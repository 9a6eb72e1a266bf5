#include "engine/db.h"

#include "engine/db_impl.h"

namespace bmr::engine {

Database::Database(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}

Database::~Database() {
    impl_->engine->Close();
}

Result<std::unique_ptr<Database>> Database::Open(const std::filesystem::path& path, Access access) {
    auto engine = Engine::Open(path, access == Access::Read ? Engine::Purpose::Read : Engine::Purpose::Use);
    if (!engine) return engine.error();
    return std::unique_ptr<Database>(new Database(std::make_unique<Impl>(Impl{path, *engine})));
}

const std::filesystem::path& Database::Path() const {
    return impl_->path;
}

bool Database::ReadOnly() const {
    return impl_->engine->readOnly();
}

const std::string& Database::LastError() const {
    return impl_->engine->lastError();
}

std::int64_t Database::ChangeCount() const {
    return sqlite3_total_changes64(impl_->engine->handle()) + impl_->engine->undone();
}

int Database::Execute(std::string_view statement, Parameters values) {
    Engine& engine = *impl_->engine;
    if (const int broken = engine.brokenBy()) return broken;
    auto plan = engine.PlanOf(statement);
    if (!plan) return plan.error().number;
    const Translated& translated = (*plan)->statement;
    if (translated.kind == Translated::Kind::Select)
        return engine.Fail(EngineNumber::BadStatement, "A selection cannot be executed.");
    if (!translated.otherFile.empty()) {
        if (const int number = engine.Attach(translated.otherFile)) return number;
    }
    int number = 0;
    {
        auto query = engine.Prepare(**plan, Use::AllRows, values);
        const auto schema = translated.otherFile.empty() ? Engine::Schema::Main : Engine::Schema::Other;
        number = query ? engine.Write(*query, schema) : query.error().number;
    }
    if (!translated.otherFile.empty()) engine.DetachOutsideTransaction();
    return number;
}

Result<std::unique_ptr<Recordset>> Database::OpenRecordset(std::string_view text, RecordsetType type,
                                                           Parameters values) {
    const auto& engine = impl_->engine;
    const bool table = SameName(text, "tt");
    auto plan = engine->PlanOf(table ? "SELECT * FROM tt" : text);
    if (!plan) return plan.error();
    const Translated& statement = (*plan)->statement;
    if (statement.kind != Translated::Kind::Select)
        return Error{engine->Fail(EngineNumber::BadStatement, "Only a selection gives rows."), LastError()};
    auto impl = std::make_unique<Recordset::Impl>();
    impl->engine = engine;
    impl->plan = *plan;
    impl->copied = type == RecordsetType::Snapshot || statement.grouped;
    impl->table = table && !impl->copied;
    impl->listed = !impl->table;
    if (impl->listed) {
        auto query = engine->Prepare(**plan, impl->copied ? Use::AllRows : Use::RowNumbers, values);
        if (!query) return query.error();
        while (query->Step()) {
            if (impl->copied) {
                impl->rows.Append(query->handle());
            } else {
                impl->keys.push_back(query->Number(0));
            }
        }
        if (query->code() != SQLITE_DONE) return Error{engine->FailWith(query->code()), LastError()};
        impl->Stand(0);
    }
    return std::unique_ptr<Recordset>(new Recordset(std::move(impl)));
}

Result<Cursor> Database::Select(std::string_view text, Parameters values) {
    Engine& engine = *impl_->engine;
    auto plan = engine.PlanOf(text);
    if (!plan) return plan.error();
    if ((*plan)->statement.kind != Translated::Kind::Select)
        return Error{engine.Fail(EngineNumber::BadStatement, "Only a selection gives rows."), LastError()};
    auto query = engine.Prepare(**plan, Use::FirstRows, values);
    if (!query) return query.error();
    return Cursor(std::make_unique<Cursor::Impl>(Cursor::Impl{std::move(*query), 0, impl_->engine}));
}

int Database::BeginTrans() {
    return impl_->engine->Begin();
}

int Database::CommitTrans() {
    return impl_->engine->Commit();
}

bool Database::TakeDoubt() {
    return impl_->engine->TakeDoubt();
}

void Database::Rollback() {
    impl_->engine->Rollback();
}

std::vector<std::string> Database::CheckIntegrity() {
    std::vector<std::string> lines;
    auto query = impl_->engine->Prepare("PRAGMA integrity_check");
    if (!query) return {LastError()};
    while (query->Step())
        lines.emplace_back(CellOf(query->handle(), 0).bytes);
    if (query->code() != SQLITE_DONE) {
        impl_->engine->FailWith(query->code());
        lines.push_back(LastError());
    }
    if (lines.size() == 1 && lines.front() == "ok") lines.clear();
    return lines;
}

Cursor::Cursor(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
Cursor::Cursor(Cursor&&) noexcept = default;
Cursor& Cursor::operator=(Cursor&&) noexcept = default;
Cursor::~Cursor() = default;

bool Cursor::Next() {
    if (impl_->query.code() == SQLITE_DONE || impl_->error != 0) return false;
    if (impl_->query.Step()) return true;
    if (impl_->query.code() != SQLITE_DONE)
        impl_->error =
            impl_->engine->alive() ? impl_->engine->FailWith(impl_->query.code()) : EngineNumber::Failed;
    return false;
}

int Cursor::error() const {
    return impl_->error;
}

std::int32_t Cursor::Int(int column) const {
    return sqlite3_column_int(impl_->query.handle(), column);
}

double Cursor::Real(int column) const {
    return sqlite3_column_double(impl_->query.handle(), column);
}

std::string_view Cursor::Bytes(int column) const {
    sqlite3_stmt* row = impl_->query.handle();
    const auto* data = static_cast<const char*>(sqlite3_column_blob(row, column));
    return data == nullptr
               ? std::string_view()
               : std::string_view(data, static_cast<std::size_t>(sqlite3_column_bytes(row, column)));
}

bool Cursor::IsNull(int column) const {
    return sqlite3_column_type(impl_->query.handle(), column) == SQLITE_NULL;
}

}  // namespace bmr::engine
