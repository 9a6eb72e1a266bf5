#include <algorithm>

#include "engine/db_impl.h"

namespace bmr::engine {

using Editing = Recordset::Impl::Editing;

namespace {

void BindValue(Query& query, int place, const Value& value) {
    if (const auto* bytes = std::get_if<Bytes>(&value)) {
        query.Bind(place, std::string_view(*bytes));
    } else if (std::holds_alternative<Null>(value)) {
        query.BindNull(place);
    } else {
        query.Bind(place, static_cast<std::int64_t>(NumberOf(value)));
    }
}

std::string InsertText() {
    std::string names;
    std::string marks;
    for (std::size_t column = 0; column < kColumnCount; ++column) {
        const char* comma = column == 0 ? "" : ", ";
        names += comma + std::string(ColumnNames[column]);
        marks += comma + ("?" + std::to_string(column + 1));
    }
    return "INSERT INTO main.tt (" + names + ") VALUES (" + marks + ")";
}

int NoRow(Engine& engine) {
    return engine.Fail(EngineNumber::Failed, "There is no row that may be written.");
}

}  // namespace

Recordset::Recordset(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
Recordset::~Recordset() = default;

/// The rows of "tt" in the order of insertion.
int Recordset::Impl::List() {
    if (listed) return 0;
    if (!engine->alive()) return EngineNumber::Failed;
    auto query = engine->Prepare("SELECT rowid FROM main.tt ORDER BY rowid");
    if (!query) return query.error().number;
    while (query->Step())
        keys.push_back(query->Number(0));
    listed = true;
    if (query->code() != SQLITE_DONE) {
        keys.clear();  // part of the rows would pass for all of them
        return engine->FailWith(query->code());
    }
    if (row) {
        place = std::lower_bound(keys.begin(), keys.end(), *row) - keys.begin();
    } else if (!keys.empty()) {
        row = keys.front();
    }
    return 0;
}

std::int64_t Recordset::Impl::ListSize() const {
    return static_cast<std::int64_t>(copied ? rows.size() : keys.size());
}

void Recordset::Impl::Stand(std::int64_t newPlace) {
    place = newPlace;
    editing = Editing::No;
    if (copied) return;
    rows.Clear();
    row.reset();
    if (place < 0 || place >= ListSize()) return;
    const std::int64_t key = keys[static_cast<std::size_t>(place)];
    if (key != kGone) row = key;
}

void Recordset::Impl::Step(std::int64_t by) {
    if (by == 0 || !engine->alive()) return;
    const std::int64_t size = ListSize();
    const std::int64_t step = by > 0 ? 1 : -1;
    std::int64_t to = place;
    const auto inside = [&] { return to >= 0 && to < size; };
    for (; by != 0 && to + step >= -1 && to + step <= size; by -= step) {
        do
            to += step;
        while (!copied && inside() && keys[static_cast<std::size_t>(to)] == kGone);
    }
    Stand(to);
}

int Recordset::Impl::Load() {
    if (copied) return place >= 0 && place < ListSize() ? 0 : EngineNumber::Failed;
    if (rows.size() > 0) return 0;
    if (!row)
        if (const int error = List()) return error;
    if (!row || !engine->alive()) return NoRow(*engine);
    if (!reader) {
        auto query = engine->Prepare(*plan, Use::OneRow);
        if (!query) return query.error().number;
        reader = std::move(*query);
    }
    reader->Bind(1, *row);
    int number = 0;
    if (reader->Step())
        rows.Append(reader->handle());
    else
        number = reader->code() == SQLITE_DONE ? NoRow(*engine) : engine->FailWith(reader->code());
    reader->Reset();
    return number;
}

int Recordset::Impl::Find(std::string_view criteria, Parameters values) {
    if (!engine->alive()) return EngineNumber::Failed;
    if (copied) return engine->Fail(EngineNumber::Failed, "A snapshot is not searched.");
    auto wanted = engine->PlanOf(criteria, Wording::Criteria);
    if (!wanted) return wanted.error().number;
    auto query = engine->Prepare(**wanted, table ? Use::FirstNumber : Use::RowNumbers, values);
    if (!query) return query.error().number;
    std::vector<std::int64_t> matches;
    while (query->Step())
        if (sqlite3_column_type(query->handle(), 0) != SQLITE_NULL) matches.push_back(query->Number(0));
    if (query->code() != SQLITE_DONE) return engine->FailWith(query->code());
    // All that match, then the first of them in this recordset's order.
    std::sort(matches.begin(), matches.end());
    const auto found = std::find_if(keys.begin(), keys.end(), [&](std::int64_t key) {
        return std::binary_search(matches.begin(), matches.end(), key);
    });
    if (matches.empty() || (!table && found == keys.end())) return 0;
    noMatch = false;
    if (listed) {
        const auto foundPlace = found - keys.begin();
        if (found == keys.end()) keys.push_back(matches.front());  // added since "tt" was listed
        Stand(foundPlace);
    } else {
        editing = Editing::No;
        rows.Clear();
        row = matches.front();
    }
    return 0;
}

int Recordset::FindFirst(std::string_view criteria, Parameters values) {
    impl_->noMatch = true;
    return impl_->searchFailed = impl_->Find(criteria, values);
}

bool Recordset::NoMatch() const {
    return impl_->noMatch;
}

void Recordset::MoveFirst() {
    if (impl_->List() != 0) return;
    impl_->Stand(-1);
    impl_->Step(1);
}

void Recordset::MoveLast() {
    if (impl_->List() != 0) return;
    impl_->Stand(impl_->ListSize());
    impl_->Step(-1);
}

void Recordset::MoveNext() {
    Move(1);
}

void Recordset::MovePrevious() {
    Move(-1);
}

void Recordset::Move(std::int64_t rows) {
    if (impl_->List() == 0) impl_->Step(rows);
}

void Recordset::Move(std::int64_t rows, std::int64_t bookmark) {
    SetBookmark(bookmark);
    impl_->Step(rows);
}

bool Recordset::Eof() const {
    if (!impl_->engine->alive()) return true;
    return !impl_->row && (RecordCount() == 0 || impl_->place >= impl_->ListSize());
}

std::int64_t Recordset::RecordCount() const {
    return impl_->List() == 0 ? impl_->ListSize() - impl_->gone : 0;
}

std::int64_t Recordset::AbsolutePosition() const {
    if (impl_->List() != 0 || impl_->place < 0 || impl_->place >= impl_->ListSize()) return -1;
    if (impl_->gone == 0) return impl_->place;
    return std::count_if(impl_->keys.begin(), impl_->keys.begin() + impl_->place,
                         [](std::int64_t key) { return key != Impl::kGone; });
}

std::int64_t Recordset::Bookmark() const {
    return impl_->List() == 0 ? impl_->place : -1;
}

void Recordset::SetBookmark(std::int64_t bookmark) {
    if (impl_->List() == 0 && bookmark >= 0 && bookmark < impl_->ListSize()) impl_->Stand(bookmark);
}

Value Recordset::Field(std::string_view name) const {
    if (impl_->editing != Editing::No) {
        const auto column = ColumnIndex(name);
        if (column && impl_->pending[*column]) return *impl_->pending[*column];
        if (column && impl_->editing == Editing::Adding) return DefaultOf(*column);
    }
    const auto& columns = impl_->plan->statement.columns;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (!SameName(columns[i].name, name)) continue;
        if (impl_->Load() != 0) return Null{};
        return ValueOf(impl_->rows.At(impl_->copied ? static_cast<std::size_t>(impl_->place) : 0, i),
                       columns[i]);
    }
    return Empty{};
}

void Recordset::SetField(std::string_view name, Value value) {
    const auto column = ColumnIndex(name);
    auto fitting = column && *column != 0 ? Fitting(*column, std::move(value)) : std::nullopt;
    if (impl_->editing != Editing::No && fitting) {
        impl_->pending[*column] = std::move(fitting);
    } else if (impl_->refused == 0) {
        impl_->refused = impl_->engine->Fail(EngineNumber::Failed,
                                             "The column " + std::string(name) + " cannot take this value.");
    }
}

void Recordset::Impl::Begin(Editing what) {
    pending.fill(std::nullopt);
    refused = 0;
    givenKey.reset();
    editing = copied ? Editing::No : what;
}

// Behind a search that failed, the row may well stand in the file: a second one is never added.
void Recordset::AddNew() {
    impl_->Begin(Editing::Adding);
    impl_->refused = impl_->searchFailed;
}

void Recordset::AddNew(std::int32_t fPK) {
    AddNew();
    impl_->givenKey = fPK;
}

// A row that cannot be read is not overwritten either.
void Recordset::Edit() {
    impl_->Begin(Editing::Changing);
    impl_->refused = impl_->Load();
}

int Recordset::Update(int, int) {
    Engine& engine = *impl_->engine;
    if (!engine.alive()) return EngineNumber::Failed;
    int number = impl_->refused;
    if (number == 0) {
        number = impl_->editing == Editing::Adding     ? impl_->Insert()
                 : impl_->editing == Editing::Changing ? impl_->Change()
                                                       : NoRow(engine);
    }
    impl_->Begin(Editing::No);
    return number;
}

Result<std::int32_t> Recordset::Impl::NewKey() {
    auto same = engine->Prepare("SELECT 1 FROM main.tt WHERE fPK = ?1");
    if (!same) return same.error();
    const auto taken = [&same](std::int32_t key) {
        same->Reset();
        same->Bind(1, std::int64_t{key});
        return same->Step();
    };
    if (givenKey && taken(*givenKey))
        return Error{engine->Fail(EngineNumber::Failed, "The key of the row is taken."), engine->lastError()};
    const std::int32_t key = givenKey ? *givenKey : DrawKey(engine->random(), taken);
    if (same->code() != SQLITE_DONE) return Error{engine->FailWith(same->code()), engine->lastError()};
    return key;
}

int Recordset::Impl::Insert() {
    if (engine->brokenBy() != 0) return engine->brokenBy();
    static const std::string kText = InsertText();
    auto query = engine->Prepare(kText);
    if (!query) return query.error().number;
    const auto key = NewKey();
    if (!key) return key.error().number;
    query->Bind(1, std::int64_t{*key});
    for (std::size_t column = 1; column < kColumnCount; ++column)
        BindValue(*query, static_cast<int>(column) + 1, pending[column].value_or(DefaultOf(column)));
    if (const int number = engine->Write(*query)) return number;
    row = sqlite3_last_insert_rowid(engine->handle());
    rows.Clear();
    if (!listed) return 0;
    keys.push_back(*row);
    place = ListSize() - 1;
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
    if (!writer || changes != written) {
        auto query = engine->Prepare("UPDATE main.tt SET " + changes + " WHERE rowid = ?1");
        if (!query) return query.error().number;
        writer = std::move(*query);
        written = std::move(changes);
    }
    writer->Bind(1, row.value_or(kGone));
    int next = 1;
    for (const auto& value : pending)
        if (value) BindValue(*writer, ++next, *value);
    if (const int number = engine->Write(*writer)) return number;
    if (sqlite3_changes64(engine->handle()) != 1)
        return engine->Fail(EngineNumber::Failed, "The row has been deleted.");
    rows.Clear();
    return 0;
}

int Recordset::Delete() {
    Engine& engine = *impl_->engine;
    // The row's neighbours must be known before it goes.
    if (const int error = impl_->copied ? 0 : impl_->List()) return error;
    if (!engine.alive() || !impl_->row) return NoRow(engine);
    auto query = engine.Prepare("DELETE FROM main.tt WHERE rowid = ?1");
    if (!query) return query.error().number;
    query->Bind(1, *impl_->row);
    if (const int error = engine.Write(*query)) return error;
    impl_->keys[static_cast<std::size_t>(impl_->place)] = Impl::kGone;
    ++impl_->gone;
    impl_->row.reset();
    impl_->rows.Clear();
    impl_->Begin(Editing::No);
    return 0;
}

}  // namespace bmr::engine
