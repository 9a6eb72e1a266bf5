#include "engine/db_impl.h"

namespace bmr::engine {

using Editing = Recordset::Impl::Editing;

namespace {

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

/// The value as the column keeps it; nothing when it cannot.
std::optional<Value> Fitting(std::size_t column, const Value& value) {
    if (std::holds_alternative<Empty>(value) || std::holds_alternative<Null>(value)) return Null{};
    if (IsBytesColumn(column))
        return std::holds_alternative<Bytes>(value) ? std::optional(value) : std::nullopt;
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

void BindValue(Query& query, int place, const Value& value) {
    if (const auto* bytes = std::get_if<Bytes>(&value)) {
        query.Bind(place, std::string_view(*bytes));
    } else if (std::holds_alternative<Null>(value)) {
        query.BindNull(place);
    } else {
        query.Bind(place, static_cast<std::int64_t>(NumberOf(value)));
    }
}

}  // namespace

Value Recordset::Field(std::string_view name) const {
    const auto& columns = impl_->columns;
    if (impl_->editing != Editing::No) {
        const auto column = ColumnIndex(name);
        if (column && impl_->pending[*column]) return *impl_->pending[*column];
        if (column && impl_->editing == Editing::Adding) return DefaultOf(*column);
    }
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (!SameName(columns[i].name, name)) continue;
        if (!impl_->Load()) return Null{};
        const bool copied = impl_->source == RowSource::Copied;
        return ValueOf(impl_->rows.At(copied ? static_cast<std::size_t>(impl_->place) : 0, i), columns[i]);
    }
    return Empty{};
}

void Recordset::SetField(std::string_view name, Value value) {
    const auto column = ColumnIndex(name);
    const auto fitting = column && *column != 0 ? Fitting(*column, value) : std::nullopt;
    if (impl_->editing == Editing::No || !fitting) {
        impl_->refused = impl_->engine->Fail(EngineNumber::Failed,
                                             "The column " + std::string(name) + " cannot take this value.");
        return;
    }
    impl_->pending[*column] = *fitting;
}

void Recordset::AddNew() {
    impl_->pending.fill(std::nullopt);
    impl_->refused = 0;
    impl_->editing = impl_->source == RowSource::Copied ? Editing::No : Editing::Adding;
}

void Recordset::Edit() {
    impl_->pending.fill(std::nullopt);
    impl_->refused = 0;
    // A row that cannot be read is not overwritten either.
    impl_->editing = impl_->RowNumber() && impl_->Load() ? Editing::Changing : Editing::No;
}

void Recordset::CancelUpdate() {
    impl_->pending.fill(std::nullopt);
    impl_->refused = 0;
    impl_->editing = Editing::No;
}

int Recordset::Update(int, int) {
    Engine& engine = *impl_->engine;
    if (!engine.alive()) return EngineNumber::Failed;
    const Editing editing = impl_->editing;
    const int refused = impl_->refused;
    if (editing == Editing::No && refused == 0)
        engine.Fail(EngineNumber::Failed, "There is no row that may be written.");
    if (editing == Editing::No || refused != 0) {
        CancelUpdate();
        return EngineNumber::Failed;
    }
    const int number = editing == Editing::Adding ? impl_->Insert() : impl_->Change();
    CancelUpdate();
    return number;
}

bool Recordset::Impl::IsKeyTaken(std::int32_t key) {
    auto query = engine->Prepare("SELECT 1 FROM main.tt WHERE fPK = ?1");
    if (!query) return false;
    query->Bind(1, static_cast<std::int64_t>(key));
    return query->Step();
}

int Recordset::Impl::Insert() {
    if (engine->brokenBy() != 0) return engine->brokenBy();
    std::string names;
    std::string marks;
    for (std::size_t column = 0; column < kColumnCount; ++column) {
        const char* comma = column == 0 ? "" : ", ";
        names += comma + std::string(ColumnNames[column]);
        marks += comma + ("?" + std::to_string(column + 1));
    }
    auto query = engine->Prepare("INSERT INTO main.tt (" + names + ") VALUES (" + marks + ")");
    if (!query) return query.error().number;
    const std::int32_t key =
        DrawKey(engine->random(), [this](std::int32_t drawn) { return IsKeyTaken(drawn); });
    query->Bind(1, static_cast<std::int64_t>(key));
    for (std::size_t column = 1; column < kColumnCount; ++column)
        BindValue(*query, static_cast<int>(column) + 1, pending[column].value_or(DefaultOf(column)));
    if (const int number = engine->Write(*query)) return number;
    const std::int64_t row = sqlite3_last_insert_rowid(engine->handle());
    if (source == RowSource::Keys) keys.push_back(row);
    Stand(At::Row, source == RowSource::Keys ? ListSize() - 1 : row);
    return 0;
}

int Recordset::Impl::Change() {
    std::string changes;
    int place1 = 1;
    for (std::size_t column = 1; column < kColumnCount; ++column) {
        if (!pending[column]) continue;
        changes += (changes.empty() ? "" : ", ") + std::string(ColumnNames[column]) + " = ?" +
                   std::to_string(++place1);
    }
    if (changes.empty()) return 0;
    auto query = engine->Prepare("UPDATE main.tt SET " + changes + " WHERE rowid = ?1");
    if (!query) return query.error().number;
    query->Bind(1, RowNumber().value_or(kGone));
    int next = 1;
    for (const auto& value : pending)
        if (value) BindValue(*query, ++next, *value);
    if (const int number = engine->Write(*query)) return number;
    if (sqlite3_changes64(engine->handle()) != 1)
        return engine->Fail(EngineNumber::Failed, "The row has been deleted.");
    rows.Clear();
    return 0;
}

int Recordset::Delete() {
    Engine& engine = *impl_->engine;
    const auto number = impl_->RowNumber();
    if (!engine.alive() || !number) {
        return engine.Fail(EngineNumber::Failed, "There is no row that may be deleted.");
    }
    auto query = engine.Prepare("DELETE FROM main.tt WHERE rowid = ?1");
    if (!query) return query.error().number;
    query->Bind(1, *number);
    if (const int error = engine.Write(*query)) return error;
    CancelUpdate();
    impl_->rows.Clear();
    impl_->deleted = true;
    if (impl_->source == RowSource::Keys) {
        impl_->keys[static_cast<std::size_t>(impl_->place)] = Impl::kGone;
        ++impl_->gone;
    }
    return 0;
}

}  // namespace bmr::engine
