#include <algorithm>
#include <limits>
#include <unordered_set>

#include "engine/db_impl.h"

namespace bmr::engine {

using At = Recordset::Impl::At;

Recordset::Recordset(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}
Recordset::~Recordset() = default;

std::int64_t Recordset::Impl::ListSize() const {
    return static_cast<std::int64_t>(source == RowSource::Keys ? keys.size() : rows.size());
}

bool Recordset::Impl::IsGone(std::int64_t listPlace) const {
    return source == RowSource::Keys && keys[static_cast<std::size_t>(listPlace)] == kGone;
}

void Recordset::Impl::Stand(At where, std::int64_t newPlace) {
    at = where;
    place = newPlace;
    deleted = false;
    editing = Editing::No;
    if (source != RowSource::Copied) rows.Clear();
}

void Recordset::Impl::Step(std::int64_t by) {
    if (by == 0 || !engine->alive()) return;
    source == RowSource::Table ? StepInTable(by) : StepInList(by);
}

void Recordset::Impl::StepInTable(std::int64_t by) {
    const bool forward = by > 0;
    if ((forward && at == At::After) || (!forward && at == At::Before)) return;
    auto query = engine->Prepare(
        forward ? "SELECT rowid FROM main.tt WHERE rowid > ?1 ORDER BY rowid LIMIT 1 OFFSET ?2"
                : "SELECT rowid FROM main.tt WHERE rowid < ?1 ORDER BY rowid DESC LIMIT 1 "
                  "OFFSET ?2");
    using Limits = std::numeric_limits<std::int64_t>;
    const std::int64_t edge = forward ? Limits::min() : Limits::max();
    if (query) {
        query->Bind(1, at == At::Row ? place : edge);
        query->Bind(2, (forward ? by : -by) - 1);
    }
    if (query && query->Step()) {
        Stand(At::Row, query->Number(0));
    } else {
        Stand(forward ? At::After : At::Before);
    }
}

void Recordset::Impl::StepInList(std::int64_t by) {
    const std::int64_t size = ListSize();
    std::int64_t to = at == At::Row ? place : at == At::Before ? -1 : size;
    const std::int64_t step = by > 0 ? 1 : -1;
    if (gone == 0) {  // no gap to step over
        const std::int64_t room = by > 0 ? size - to : to + 1;
        to += step * std::min(std::max(by, -by), room);
        by = 0;
    }
    while (by != 0 && to + step >= -1 && to + step <= size) {
        to += step;
        if (to < 0 || to >= size) break;
        if (!IsGone(to)) by -= step;
    }
    Stand(to < 0 ? At::Before : to >= size ? At::After : At::Row, to);
}

void Recordset::Impl::ToEnd(bool last) {
    Stand(last ? At::After : At::Before);
    Step(last ? -1 : 1);
    // An empty recordset stands before its first row and behind its last.
}

std::optional<std::int64_t> Recordset::Impl::RowNumber() const {
    if (at != At::Row || deleted || source == RowSource::Copied) return std::nullopt;
    if (source == RowSource::Table) return place;
    return IsGone(place) ? std::nullopt : std::optional(keys[static_cast<std::size_t>(place)]);
}

bool Recordset::Impl::Load() {
    if (source == RowSource::Copied) return at == At::Row;
    if (rows.size() > 0) return true;
    const auto number = RowNumber();
    if (!number || !engine->alive()) return false;
    auto query = engine->Prepare("SELECT " + items + " FROM main.tt WHERE rowid = ?1");
    if (!query) return false;
    query->Bind(1, *number);
    if (!query->Step()) {
        if (query->code() != SQLITE_DONE) engine->FailWith(query->code());
        return false;
    }
    rows.Append(query->handle());
    return true;
}

void Recordset::Impl::Find(std::string_view criteria) {
    noMatch = true;
    if (!engine->alive()) return;
    const auto found = source == RowSource::Table  ? FindInTable(criteria)
                       : source == RowSource::Keys ? FindInKeys(criteria)
                                                   : FindInCopy(criteria);
    if (!found) return;
    noMatch = false;
    Stand(At::Row, *found);
}

std::optional<Query> Recordset::Impl::Matches(std::string_view what, std::string_view criteria) {
    const auto translated = TranslateCriteria(criteria);
    if (!translated) {
        engine->Fail(translated.error().number, translated.error().detail);
        return std::nullopt;
    }
    auto query = engine->PrepareWith(engine->ChooseWays(translated->ranges, "").toAll, [&](auto index) {
        return "SELECT " + std::string(what) + " FROM main.tt" +
               (index.empty() ? "" : " INDEXED BY \"" + std::string(index) + "\"") + " WHERE " +
               translated->sql;
    });
    return query ? std::optional(std::move(*query)) : std::nullopt;
}

std::optional<std::int64_t> Recordset::Impl::FindInTable(std::string_view criteria) {
    auto query = Matches("min(rowid)", criteria);
    if (!query) return std::nullopt;
    if (query->Step() && sqlite3_column_type(query->handle(), 0) != SQLITE_NULL) return query->Number(0);
    if (query->code() != SQLITE_ROW) engine->FailWith(query->code());
    return std::nullopt;
}

// All rows that match are looked up by index, then the first of them in this recordset's order.
std::optional<std::int64_t> Recordset::Impl::FindInKeys(std::string_view criteria) {
    auto query = Matches("rowid", criteria);
    if (!query) return std::nullopt;
    std::unordered_set<std::int64_t> matches;
    while (query->Step())
        matches.insert(query->Number(0));
    if (query->code() != SQLITE_DONE) engine->FailWith(query->code());
    const auto found =
        std::find_if(keys.begin(), keys.end(), [&](std::int64_t key) { return matches.contains(key); });
    if (found == keys.end()) return std::nullopt;
    return found - keys.begin();
}

// A snapshot is searched as it was taken: its values are handed to the engine row by row.
std::optional<std::int64_t> Recordset::Impl::FindInCopy(std::string_view criteria) {
    const auto translated = TranslateCriteria(criteria, columns);
    if (!translated) {
        engine->Fail(translated.error().number, translated.error().detail);
        return std::nullopt;
    }
    auto query = engine->Prepare("SELECT 1 WHERE " + *translated);
    if (!query) return std::nullopt;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        query->Reset();
        for (std::size_t column = 0; column < columns.size(); ++column) {
            const Cell cell = rows.At(row, column);
            const int at1 = static_cast<int>(column) + 1;
            if (cell.kind == Cell::Kind::Null) query->BindNull(at1);
            if (cell.kind == Cell::Kind::Number) query->Bind(at1, cell.number);
            if (cell.kind == Cell::Kind::Real) query->Bind(at1, cell.real);
            if (cell.kind == Cell::Kind::Bytes) query->Bind(at1, cell.bytes);
        }
        if (query->Step()) return static_cast<std::int64_t>(row);
    }
    return std::nullopt;
}

void Recordset::FindFirst(std::string_view criteria) {
    impl_->Find(criteria);
}

bool Recordset::NoMatch() const {
    return impl_->noMatch;
}

void Recordset::MoveFirst() {
    impl_->ToEnd(false);
}

void Recordset::MoveLast() {
    impl_->ToEnd(true);
}

void Recordset::MoveNext() {
    impl_->Step(1);
}

void Recordset::MovePrevious() {
    impl_->Step(-1);
}

void Recordset::Move(std::int64_t rows) {
    impl_->Step(rows);
}

void Recordset::Move(std::int64_t rows, std::int64_t bookmark) {
    SetBookmark(bookmark);
    impl_->Step(rows);
}

bool Recordset::Eof() const {
    return impl_->at == At::After || (impl_->at == At::Before && RecordCount() == 0);
}

bool Recordset::Bof() const {
    return impl_->at == At::Before || (impl_->at == At::After && RecordCount() == 0);
}

std::int64_t Recordset::RecordCount() const {
    if (impl_->source != RowSource::Table) return impl_->ListSize() - impl_->gone;
    if (!impl_->engine->alive()) return 0;
    auto query = impl_->engine->Prepare("SELECT count(*) FROM main.tt");
    return query && query->Step() ? query->Number(0) : 0;
}

std::int64_t Recordset::AbsolutePosition() const {
    if (impl_->at != At::Row || !impl_->engine->alive()) return -1;
    if (impl_->source == RowSource::Table) {
        auto query = impl_->engine->Prepare("SELECT count(*) FROM main.tt WHERE rowid < ?1");
        if (!query) return -1;
        query->Bind(1, impl_->place);
        return query->Step() ? query->Number(0) : -1;
    }
    if (impl_->gone == 0) return impl_->place;
    return std::count_if(impl_->keys.begin(), impl_->keys.begin() + impl_->place,
                         [](std::int64_t key) { return key != Impl::kGone; });
}

std::int64_t Recordset::Bookmark() const {
    return impl_->place;
}

void Recordset::SetBookmark(std::int64_t bookmark) {
    if (impl_->source != RowSource::Table && (bookmark < 0 || bookmark >= impl_->ListSize())) return;
    impl_->Stand(At::Row, bookmark);
}

}  // namespace bmr::engine
