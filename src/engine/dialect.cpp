#include "engine/dialect.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "engine/columns.h"
#include "engine/dialect_lex.h"
#include "engine/dialect_parse.h"
#include "engine/enginenumber.h"

namespace bmr::engine {
namespace {

using dialect::Expr;
using dialect::Op;
using dialect::Statement;
using dialect::SyntaxError;

std::optional<std::int64_t> WholeConstant(const Expr& expr) {
    if (expr.op == Op::Negate) {
        const auto inside = WholeConstant(expr.args[0]);
        return inside ? std::optional(-*inside) : std::nullopt;
    }
    if (expr.op != Op::Number || expr.text.size() > 18) return std::nullopt;
    std::int64_t number = 0;
    const char* end = expr.text.data() + expr.text.size();
    const auto read = std::from_chars(expr.text.data(), end, number);
    return read.ec == std::errc() && read.ptr == end ? std::optional(number) : std::nullopt;
}

/// Whether the value is always whole (or Null), so that the engine's own whole-number operators do.
bool IsWhole(const Expr& expr) {
    switch (expr.op) {
        case Op::Parameter:
            return true;
        case Op::Number:
            return WholeConstant(expr).has_value();
        case Op::Column:
            return !IsBytesColumn(*ColumnIndex(expr.text));
        case Op::Call:
            return expr.text == "Count" ||
                   (expr.text != "Int" && expr.text != "Avg" && IsWhole(expr.args[0]));
        case Op::Negate:
        case Op::Add:
        case Op::Subtract:
            return std::all_of(expr.args.begin(), expr.args.end(), IsWhole);
        case Op::Multiply:  // may outgrow the engine's whole numbers
        case Op::Divide:
        case Op::Power:
        case Op::Null:
        case Op::Star:
        case Op::Alias:
            return false;
        default:
            return true;
    }
}

/// Writes expressions in the engine's words, every operation in parentheses.
class Writer {
  public:
    std::string Write(const Expr& expr) const {
        switch (expr.op) {
            case Op::Number:
            case Op::Column:
                return expr.text;
            case Op::Parameter:
                return "?" + expr.text;
            case Op::Alias:
                throw SyntaxError{expr.place, "an unknown name"};
            case Op::Null:
                return "NULL";
            case Op::Star:
                return "*";
            case Op::Call:
                return (expr.text == "Int" ? std::string("dialect_int") : expr.text) + "(" +
                       Write(expr.args[0]) + ")";
            case Op::Negate:
                return "(- " + Write(expr.args[0]) + ")";
            case Op::Not:
                return "(NOT " + Write(expr.args[0]) + ")";
            case Op::IsNull:
                return "(" + Write(expr.args[0]) + " IS NULL)";
            case Op::IsNotNull:
                return "(" + Write(expr.args[0]) + " IS NOT NULL)";
            case Op::Between:
                return "(" + Compared(expr.args[0]) + " BETWEEN " + Compared(expr.args[1]) + " AND " +
                       Compared(expr.args[2]) + ")";
            case Op::Power:
                return "dialect_power(" + Write(expr.args[0]) + ", " + Write(expr.args[1]) + ")";
            case Op::Divide:
                return "(CAST(" + Write(expr.args[0]) + " AS REAL) / " + Write(expr.args[1]) + ")";
            case Op::Mod:
                return WholeNumbers(expr, " % ", "dialect_mod(");
            case Op::WholeDivide:
                return WholeNumbers(expr, " / ", "dialect_quotient(");
            default:
                return Infix(expr);
        }
    }

    /// A text may have been stored as text or as bytes; as bytes they compare alike.
    std::string Compared(const Expr& expr) const {
        const std::string written = Write(expr);
        return expr.op == Op::Column && IsBytesColumn(*ColumnIndex(expr.text))
                   ? "CAST(" + written + " AS BLOB)"
                   : written;
    }

  private:
    std::string WholeNumbers(const Expr& expr, const char* sign, const char* function) const {
        const Expr& left = expr.args[0];
        const Expr& right = expr.args[1];
        if (IsWhole(left) && WholeConstant(right).value_or(0) != 0)
            return "(" + Write(left) + sign + Write(right) + ")";
        return function + Write(left) + ", " + Write(right) + ")";
    }

    std::string Infix(const Expr& expr) const {
        const bool comparison = expr.op == Op::Equal || expr.op == Op::NotEqual || expr.op == Op::Less ||
                                expr.op == Op::LessEqual || expr.op == Op::Greater ||
                                expr.op == Op::GreaterEqual;
        const auto side = [&](const Expr& arg) { return comparison ? Compared(arg) : Write(arg); };
        return "(" + (IsChained(expr) ? Chain(expr.args[0]) : side(expr.args[0])) + Sign(expr.op) +
               side(expr.args[1]) + ")";
    }

    /// The library's parser gives up on a hundred parentheses, which so many conditions in a row would open.
    static bool IsChained(const Expr& expr) {
        return (expr.op == Op::And || expr.op == Op::Or) && expr.args[0].op == expr.op;
    }
    std::string Chain(const Expr& expr) const {
        return (IsChained(expr) ? Chain(expr.args[0]) : Write(expr.args[0])) + Sign(expr.op) +
               Write(expr.args[1]);
    }

    static const char* Sign(Op op) {
        switch (op) {
            case Op::Multiply:
                return " * ";
            case Op::Add:
                return " + ";
            case Op::Subtract:
                return " - ";
            case Op::Equal:
                return " = ";
            case Op::NotEqual:
                return " <> ";
            case Op::Less:
                return " < ";
            case Op::LessEqual:
                return " <= ";
            case Op::Greater:
                return " > ";
            case Op::GreaterEqual:
                return " >= ";
            case Op::And:
                return " AND ";
            default:
                return " OR ";
        }
    }
};

std::optional<Bound> BoundOf(const Expr& expr) {
    if (expr.op == Op::Parameter) return Bound{0, std::stoi(expr.text)};
    const auto number = WholeConstant(expr);
    return number ? std::optional(Bound{*number}) : std::nullopt;
}

/// What the conditions that must all hold say about the columns that have an index.
class ConditionFinder {
  public:
    std::vector<Condition> Find(const std::vector<Expr>& where) {
        if (!where.empty()) Visit(where.front());
        return std::move(conditions_);
    }

  private:
    void Visit(const Expr& expr) {
        if (expr.op == Op::And) {
            Visit(expr.args[0]);
            Visit(expr.args[1]);
        } else if (expr.op == Op::Between) {
            const auto low = BoundOf(expr.args[1]);
            const auto high = BoundOf(expr.args[2]);
            if (low && high) Add(expr.args[0], low, high);
        } else if (expr.args.size() == 2) {
            if (const auto right = BoundOf(expr.args[1])) {
                Compare(expr.op, expr.args[0], *right);
            } else if (const auto left = BoundOf(expr.args[0])) {
                Compare(Mirror(expr.op), expr.args[1], *left);
            }
        }
    }

    static Op Mirror(Op op) {
        switch (op) {
            case Op::Less:
                return Op::Greater;
            case Op::LessEqual:
                return Op::GreaterEqual;
            case Op::Greater:
                return Op::Less;
            case Op::GreaterEqual:
                return Op::LessEqual;
            default:
                return op;
        }
    }

    void Compare(Op op, const Expr& column, Bound bound) {
        switch (op) {
            case Op::Equal:
                return Add(column, bound, bound);
            case Op::Less:
                --bound.number;
                return Add(column, std::nullopt, bound);
            case Op::LessEqual:
                return Add(column, std::nullopt, bound);
            case Op::Greater:
                ++bound.number;
                return Add(column, bound, std::nullopt);
            case Op::GreaterEqual:
                return Add(column, bound, std::nullopt);
            default:
                return;
        }
    }

    void Add(const Expr& expr, std::optional<Bound> low, std::optional<Bound> high) {
        const auto* index = std::find_if(kIndexes.begin(), kIndexes.end(),
                                         [&](const auto& each) { return each.column == expr.text; });
        if (expr.op == Op::Column && index != kIndexes.end())
            conditions_.push_back({index->column, low, high});
    }

    std::vector<Condition> conditions_;
};

bool HasColumn(const Expr& expr) {
    return expr.op == Op::Column || std::any_of(expr.args.begin(), expr.args.end(), HasColumn);
}

std::string AllColumns() {
    std::string list;
    for (const auto name : ColumnNames)
        list += (list.empty() ? "" : ", ") + std::string(name);
    return list;
}

void WriteItems(const Statement& statement, Translated& result) {
    for (const auto& item : statement.items) {
        if (!result.items.empty()) result.items += ", ";
        if (item.value.op == Op::Star) {
            for (const auto name : ColumnNames)
                result.columns.push_back({std::string(name), std::string(name)});
            result.items += AllColumns();
            continue;
        }
        const std::string source = item.value.op == Op::Column ? item.value.text : "";
        std::string name = !item.alias.empty() ? item.alias : source;
        if (name.empty()) name = "Expr" + std::to_string(1000 + result.columns.size());
        result.columns.push_back({name, source});
        result.items += Writer().Write(item.value);
        result.grouped = result.grouped || dialect::HasAggregate(item.value);
    }
}

void WriteTail(const Statement& statement, Translated& result) {
    const Writer writer;
    std::string& tail = result.tail;
    if (!statement.where.empty()) tail += " WHERE " + writer.Write(statement.where.front());
    for (const auto& each : statement.groupBy) {
        // A bare number would be the place of an item.
        if (!HasColumn(each)) throw SyntaxError{each.place, "grouping by a constant"};
        tail += (&each == &statement.groupBy.front() ? " GROUP BY " : ", ") + writer.Compared(each);
        result.grouped = true;
    }
    if (!statement.having.empty()) tail += " HAVING " + writer.Write(statement.having.front());
    for (const auto& term : statement.orderBy) {
        if (!HasColumn(term.value)) throw SyntaxError{term.value.place, "ordering by a constant"};
        tail += (&term == &statement.orderBy.front() ? " ORDER BY " : ", ") + writer.Compared(term.value) +
                (term.falling ? " DESC" : "");
    }
    if (!statement.orderBy.empty() && statement.orderBy.front().value.op == Op::Column &&
        !statement.orderBy.front().falling)
        result.orderedBy = statement.orderBy.front().value.text;
    result.conditions = ConditionFinder().Find(statement.where);
    result.parameters = static_cast<std::size_t>(statement.parameters);
    // Copied rows keep the order in which they came.
    if (statement.kind == Statement::Kind::Insert) tail += " ORDER BY rowid";
}

Error Refusal(const SyntaxError& error) {
    return {EngineNumber::BadStatement, "The statement is not understood at character " +
                                            std::to_string(error.place + 1) + ": " + error.reason + "."};
}

std::string Head(const Translated& statement) {
    switch (statement.kind) {
        case Translated::Kind::Select:
            return "SELECT " + statement.items + " FROM main.tt";
        case Translated::Kind::Delete:
            return "DELETE FROM main.tt";
        case Translated::Kind::Insert:
            break;
    }
    return "INSERT INTO other.tt (" + AllColumns() + ") SELECT " + AllColumns() + " FROM main.tt";
}

std::string Hint(std::string_view index) {
    return index.empty() ? "" : " INDEXED BY \"" + std::string(index) + "\"";
}

}  // namespace

std::string Translated::WithIndex(std::string_view name) const {
    return Head(*this) + Hint(name) + tail;
}

std::string Translated::Selecting(std::string_view what, std::string_view index) const {
    return "SELECT " + std::string(what) + " FROM main.tt" + Hint(index) + tail;
}

std::vector<IndexRange> Translated::Ranges(std::span<const std::int32_t> values) const {
    const auto number = [&](const Bound& bound) {
        return bound.number +
               (bound.parameter > 0 ? values[static_cast<std::size_t>(bound.parameter) - 1] : 0);
    };
    std::vector<IndexRange> ranges;
    for (const Condition& each : conditions) {
        auto range = std::find_if(ranges.begin(), ranges.end(),
                                  [&](const IndexRange& known) { return known.column == each.column; });
        if (range == ranges.end()) range = ranges.insert(range, IndexRange{each.column});
        if (each.low) range->low = std::max(range->low, number(*each.low));
        if (each.high) range->high = std::min(range->high, number(*each.high));
    }
    return ranges;
}

Result<Translated> Translate(std::string_view statement) {
    try {
        const Statement parsed = dialect::ParseStatement(statement);
        Translated result;
        switch (parsed.kind) {
            case Statement::Kind::Select:
                result.kind = Translated::Kind::Select;
                break;
            case Statement::Kind::Delete:
                result.kind = Translated::Kind::Delete;
                break;
            case Statement::Kind::Insert:
                result.kind = Translated::Kind::Insert;
                break;
        }
        result.otherFile = parsed.otherFile;
        WriteItems(parsed, result);
        WriteTail(parsed, result);
        return result;
    } catch (const SyntaxError& error) {
        return Refusal(error);
    }
}

Result<Translated> TranslateCriteria(std::string_view criteria) {
    try {
        Translated result;
        WriteTail(dialect::ParseCriteria(criteria), result);
        return result;
    } catch (const SyntaxError& error) {
        return Refusal(error);
    }
}

}  // namespace bmr::engine
