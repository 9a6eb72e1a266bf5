#include <algorithm>
#include <array>

#include "engine/columns.h"
#include "engine/dialect_lex.h"
#include "engine/dialect_parse.h"

namespace bmr::engine::dialect {
namespace {

constexpr std::array<Function, 7> kFunctions{{{"Int", false},
                                              {"Abs", false},
                                              {"Count", true},
                                              {"Sum", true},
                                              {"Min", true},
                                              {"Max", true},
                                              {"Avg", true}}};

void Replace(Expr& expr, const std::vector<Item>& items) {
    if (expr.op == Op::Alias) {
        const auto item = std::find_if(items.begin(), items.end(),
                                       [&expr](const Item& each) { return SameName(each.alias, expr.text); });
        if (item == items.end()) throw SyntaxError{expr.place, "an unknown name"};
        const Expr value = item->value;
        expr = value;
        return;
    }
    for (auto& arg : expr.args)
        Replace(arg, items);
}

}  // namespace

const Function* FindFunction(std::string_view name) {
    const auto* found = std::find_if(kFunctions.begin(), kFunctions.end(),
                                     [name](const Function& each) { return SameName(each.name, name); });
    return found == kFunctions.end() ? nullptr : found;
}

bool HasAggregate(const Expr& expr) {
    if (expr.op == Op::Call && FindFunction(expr.text)->aggregate) return true;
    return std::any_of(expr.args.begin(), expr.args.end(), HasAggregate);
}

// The items themselves and the conditions know columns only: a row is chosen before its items are computed.
void ResolveAliases(Statement& statement) {
    const std::vector<Item> none;
    for (auto& item : statement.items)
        Replace(item.value, none);
    for (auto& each : statement.where)
        Replace(each, none);
    for (auto& each : statement.groupBy)
        Replace(each, none);
    for (auto& each : statement.having)
        Replace(each, statement.items);
    for (auto& term : statement.orderBy)
        Replace(term.value, statement.items);
}

}  // namespace bmr::engine::dialect
