#include <algorithm>
#include <iterator>
#include <optional>

#include "engine/columns.h"
#include "engine/db.h"
#include "engine/db_engine.h"

namespace bmr::engine {
namespace {

constexpr std::size_t kPlans = 64;
/// After so many changed rows a choice is made again.
constexpr std::int64_t kStale = 4096;
/// Fewer rows are sorted sooner than any other way in is looked for.
constexpr std::int64_t kQuickSort = 2048;

std::string IndexOn(std::string_view column) {
    const auto* found = std::find_if(kIndexes.begin(), kIndexes.end(),
                                     [&](const IndexDescription& each) { return each.column == column; });
    return found == kIndexes.end() ? "" : std::string(found->name);
}

/// fSub is 0 in nearly all rows; only above that it may be a way in, as to the series among appointments.
bool IsUseless(const Condition& each) {
    return each.column == "fSub" &&
           (each.IsEquality() || !each.low || each.low->parameter > 0 || each.low->number <= 0);
}
bool IsUseless(const IndexRange& range) {
    return range.column == "fSub" && (range.low <= 0 || range.low == range.high);
}

/// The ways in where nothing has to be counted: the row of a key, or the only condition that has an index.
std::optional<Ways> WaysByShape(const Translated& statement) {
    std::string_view only;
    bool several = false;
    for (const Condition& each : statement.conditions) {
        if (each.column == "fPK" && each.IsEquality()) return Ways{IndexOn("fPK"), IndexOn("fPK")};
        if (IsUseless(each)) continue;
        several = several || (!only.empty() && only != each.column);
        only = each.column;
    }
    if (several || (!only.empty() && !IndexOn(statement.orderedBy).empty())) return std::nullopt;
    return Ways{IndexOn(only), IndexOn(only)};
}

bool HangsOnValues(const Condition& condition) {
    const auto bound = [](const std::optional<Bound>& each) { return each && each->parameter > 0; };
    return bound(condition.low) || bound(condition.high);
}

std::string TextFor(const Translated& statement, Use use, std::string_view index) {
    switch (use) {
        case Use::AllRows:
        case Use::FirstRows:
            break;
        case Use::RowNumbers:
            return statement.Selecting("rowid", index);
        case Use::FirstNumber:
            return statement.Selecting("min(rowid)", index);
        case Use::OneRow:
            return "SELECT " + statement.items + " FROM main.tt WHERE rowid = ?1";
    }
    return statement.WithIndex(index);
}

}  // namespace

Result<std::shared_ptr<Plan>> Engine::PlanOf(std::string_view text, Wording wording) {
    auto& plans = plans_[wording == Wording::Statement ? 0 : 1];
    const std::int64_t changes = sqlite3_total_changes64(handle());
    const auto found = plans.find(text);
    if (found != plans.end() && changes - found->second->changesAt < kStale) return found->second;
    auto translated = wording == Wording::Statement ? Translate(text) : TranslateCriteria(text);
    if (!translated) return Error{Fail(translated.error().number, translated.error().detail), lastError_};
    auto plan = std::make_shared<Plan>();
    plan->statement = std::move(*translated);
    plan->changesAt = changes;
    ChooseWays(*plan);
    if (plans.size() >= kPlans) plans.clear();
    plans[std::string(text)] = plan;
    return plan;
}

void Engine::ChooseWays(Plan& plan) {
    const Translated& statement = plan.statement;
    if (auto ways = WaysByShape(statement)) {
        plan.ways = *std::move(ways);
    } else if (std::any_of(statement.conditions.begin(), statement.conditions.end(), HangsOnValues)) {
        plan.byValues = true;
    } else {
        plan.ways = CountedWays(statement.Ranges({}), statement.orderedBy);
    }
}

Result<Query> Engine::Prepare(Plan& plan, Use use, std::span<const std::int32_t> values) {
    const Translated& statement = plan.statement;
    if (use != Use::OneRow && values.size() != statement.parameters)
        return Error{Fail(EngineNumber::BadStatement,
                          "The statement takes " + std::to_string(statement.parameters) +
                              " values and was given " + std::to_string(values.size()) + "."),
                     lastError_};
    if (plan.byValues && use != Use::OneRow) {
        plan.ways = CountedWays(statement.Ranges(values), statement.orderedBy);
        plan.texts = {};
    }
    const std::string& index = use == Use::FirstRows ? plan.ways.toFirst : plan.ways.toAll;
    std::string& text = plan.texts[static_cast<std::size_t>(use)];
    if (text.empty()) text = TextFor(statement, use, index);
    auto query = Prepare(text);
    if (!query && query.error().number == EngineNumber::BadStatement && !index.empty())
        query = Prepare(text = TextFor(statement, use, ""));
    for (std::size_t i = 0; query && i < values.size(); ++i)
        query->Bind(static_cast<int>(i) + 1, std::int64_t{values[i]});
    return query;
}

std::int64_t Engine::Count(const IndexRange& range, std::int64_t limit) {
    auto query = Prepare("SELECT count(*) FROM (SELECT 1 FROM main.tt INDEXED BY \"" + IndexOn(range.column) +
                         "\" WHERE " + std::string(range.column) + " BETWEEN ?1 AND ?2 LIMIT ?3)");
    if (!query) return limit;
    query->Bind(1, range.low);
    query->Bind(2, range.high);
    query->Bind(3, limit);
    return query->Step() ? query->Number(0) : limit;
}

std::int64_t Engine::CountAll() {
    auto query = Prepare("SELECT count(*) FROM main.tt");
    return query && query->Step() ? query->Number(0) : 0;
}

// The library would guess, and its guesses are wrong for this table: fSub is nearly the same in all rows, a
// range of days is far narrower than its section, and a section may be three rows or nearly all.
Ways Engine::CountedWays(const std::vector<IndexRange>& ranges, const std::string& orderedBy) {
    std::vector<IndexRange> candidates;
    std::copy_if(ranges.begin(), ranges.end(), std::back_inserter(candidates),
                 [](const IndexRange& range) { return !IsUseless(range); });
    // Counting in growing steps costs little more than the narrowest has rows.
    const IndexRange* narrowest = nullptr;
    std::int64_t rows = 0;
    for (std::int64_t limit = 256; narrowest == nullptr; limit *= 8) {
        if (limit > (std::int64_t{1} << 33)) return {};  // no index that can be read
        for (const auto& candidate : candidates) {
            const std::int64_t counted = Count(candidate, limit);
            if (counted < limit && (narrowest == nullptr || counted < rows)) {
                narrowest = &candidate;
                rows = counted;
            }
        }
    }
    const std::string best = IndexOn(narrowest->column);
    const std::string order = IndexOn(orderedBy);
    // Where many rows qualify anyway, walking them in order gives the first ones without a sort.
    const bool walk = rows > kQuickSort && !order.empty() && rows * 4 >= CountAll();
    return {best, walk ? order : best};
}

}  // namespace bmr::engine
