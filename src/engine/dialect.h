#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"

namespace bmr::engine {

/// A column of a statement's result.
struct ResultColumn {
    std::string name;    ///< as the statement names it; "Expr1000" and on for a nameless expression
    std::string source;  ///< the column of `tt` that it is, empty for a computed one
};

/// A condition that every row of the result meets and that an index can answer: low <= column <= high.
struct IndexRange {
    std::string column;
    std::int64_t low = INT64_MIN;
    std::int64_t high = INT64_MAX;
    bool operator==(const IndexRange&) const = default;
};

/// A statement of the dialect, ready for the engine.
struct Translated {
    enum class Kind { Select, Delete, Insert };
    Kind kind = Kind::Select;
    std::string sql;
    /// The path of INSERT INTO tt IN "path", UTF-8; the statement then names the attached file's table
    /// `other.tt`.
    std::string otherFile;

    std::vector<ResultColumn> columns;  ///< of a SELECT
    std::string items;                  ///< of a SELECT: what stands before FROM, in the engine's words
    std::string tail;                   ///< what stands behind the table's name
    bool grouped = false;               ///< rows of the result are no rows of `tt`

    std::vector<IndexRange> ranges;  ///< the ways in that the conditions offer
    std::string orderedBy;  ///< the column of `tt` that leads ORDER BY in rising order, if it is a bare one

    /// The statement again, made to take the index `name` (or none when empty).
    std::string WithIndex(std::string_view name) const;
    /// A SELECT of the row numbers of the same rows in the same order; not for a grouped one.
    std::string RowNumbers(std::string_view index) const;
};

/// Translates a statement. `/` is always a real division; `\` and `Mod` work on whole numbers (operands are
/// rounded to the nearest, halves to even, the quotient is cut toward zero and the remainder takes the
/// dividend's sign), division by zero gives Null; `^` is power and binds tighter than a sign; `Int()` is
/// floor; True and False are 1 and 0; names may stand in brackets; WITH OWNERACCESS OPTION is accepted
/// everywhere and means nothing, as does one parenthesis too many at the end of a SELECT's conditions.
/// Anything that the dialect does not know is refused with EngineNumber::BadStatement and the place where it
/// stands.
Result<Translated> Translate(std::string_view statement);

/// The criteria text of `FindFirst`: an expression alone, over the columns of `tt`.
struct Criteria {
    std::string sql;
    std::vector<IndexRange> ranges;
};
Result<Criteria> TranslateCriteria(std::string_view criteria);

/// The same over the columns of a result: `?1` stands for its first column.
Result<std::string> TranslateCriteria(std::string_view criteria, const std::vector<ResultColumn>& columns);

}  // namespace bmr::engine
