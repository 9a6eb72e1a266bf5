#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace bmr::engine::dialect {

enum class Op {
    Number,     ///< text: the digits as written
    Parameter,  ///< text: its number, counted from 1
    Column,     ///< text: the column's proper name
    Alias,      ///< text: a name that another item of the statement carries
    Null,
    Star,
    Call,  ///< text: the function's proper name
    Negate,
    Power,
    Multiply,
    Divide,
    WholeDivide,
    Mod,
    Add,
    Subtract,
    Equal,
    NotEqual,
    Less,
    LessEqual,
    Greater,
    GreaterEqual,
    Between,
    IsNull,
    IsNotNull,
    Not,
    And,
    Or
};

struct Expr {
    Op op = Op::Null;
    std::string text;
    std::vector<Expr> args;
    std::size_t place = 0;
};

struct Item {
    Expr value;
    std::string alias;
};

struct OrderTerm {
    Expr value;
    bool falling = false;
};

struct Statement {
    enum class Kind { Select, Delete, Insert } kind = Kind::Select;
    std::string otherFile;
    std::vector<Item> items;
    std::vector<Expr> where;  ///< none or one
    std::vector<Expr> groupBy;
    std::vector<Expr> having;  ///< none or one
    std::vector<OrderTerm> orderBy;
    int parameters = 0;  ///< how many values are bound to it, in the order of their marks
};

/// Throws SyntaxError.
Statement ParseStatement(std::string_view text);
/// Conditions alone: a selection of all rows that meet them. Names that are no columns of `tt` become
/// aliases.
Statement ParseCriteria(std::string_view text);

/// A function of the dialect; null for an unknown name.
struct Function {
    std::string_view name;
    bool aggregate = false;
};
const Function* FindFunction(std::string_view name);

/// Puts the items in the place of the names that they carry. Throws SyntaxError on a name that is none.
void ResolveAliases(Statement& statement);

/// Whether an aggregate function stands anywhere in `expr`.
bool HasAggregate(const Expr& expr);

}  // namespace bmr::engine::dialect
