#include <algorithm>

#include "engine/columns.h"
#include "engine/db_engine.h"

namespace bmr::engine {
namespace {

constexpr std::size_t kPlans = 64;
/// After so many changed rows a choice is made again.
constexpr std::int64_t kStale = 4096;
/// Fewer rows are sorted sooner than any other way in is looked for.
constexpr std::int64_t kQuickSort = 2048;

std::string IndexOn(const std::string& column) {
    const auto* found = std::find_if(kIndexes.begin(), kIndexes.end(),
                                     [&](const IndexDescription& each) { return each.column == column; });
    return found == kIndexes.end() ? "" : std::string(found->name);
}

}  // namespace

Result<std::shared_ptr<const Plan>> Engine::PlanOf(std::string_view statement) {
    const std::string text(statement);
    const std::int64_t changes = sqlite3_total_changes64(handle());
    if (const auto found = plans_.find(text);
        found != plans_.end() && changes - found->second->changesAt < kStale)
        return found->second;
    auto translated = Translate(statement);
    if (!translated) return Error{Fail(translated.error().number, translated.error().detail), lastError_};
    auto plan = std::make_shared<Plan>();
    plan->statement = std::move(*translated);
    plan->ways = ChooseWays(plan->statement.ranges, plan->statement.orderedBy);
    plan->changesAt = changes;
    if (plans_.size() >= kPlans) plans_.clear();
    plans_[text] = plan;
    return std::shared_ptr<const Plan>(plan);
}

std::int64_t Engine::Count(const IndexRange& range, std::int64_t limit) {
    auto query = Prepare("SELECT count(*) FROM (SELECT 1 FROM main.tt INDEXED BY \"" + IndexOn(range.column) +
                         "\" WHERE " + range.column + " BETWEEN ?1 AND ?2 LIMIT ?3)");
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
Ways Engine::ChooseWays(const std::vector<IndexRange>& ranges, const std::string& orderedBy) {
    std::vector<IndexRange> candidates;
    for (const auto& range : ranges) {
        if (range.column == "fPK" && range.low == range.high) return {IndexOn("fPK"), IndexOn("fPK")};
        if (range.column != "fSub") candidates.push_back(range);
    }
    if (candidates.empty()) return {};
    const std::string order = IndexOn(orderedBy);
    const std::string only = IndexOn(candidates.front().column);
    if (candidates.size() == 1 && candidates.front().low == candidates.front().high && order.empty())
        return {only, only};

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
    // Where many rows qualify anyway, walking them in order gives the first ones without a sort.
    const bool walk = rows > kQuickSort && !order.empty() && rows * 4 >= CountAll();
    return {best, walk ? order : best};
}

}  // namespace bmr::engine
