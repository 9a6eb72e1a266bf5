#pragma once

#include <cstdint>
#include <optional>
#include <span>
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

/// A bound of a condition: a number, or `number` more than a value that is bound later.
struct Bound {
    std::int64_t number = 0;
    int parameter = 0;  ///< the value's number, counted from 1; 0: none
    bool operator==(const Bound&) const = default;
};

/// A condition that every row of the result meets and that an index can answer.
struct Condition {
    std::string_view column;
    std::optional<Bound> low, high;
    bool IsEquality() const { return low && low == high; }
};

/// What such conditions come to: low <= column <= high.
struct IndexRange {
    std::string_view column;
    std::int64_t low = INT64_MIN;
    std::int64_t high = INT64_MAX;
    bool operator==(const IndexRange&) const = default;
};

/// A statement of the dialect, ready for the engine.
struct Translated {
    enum class Kind { Select, Delete, Insert };
    Kind kind = Kind::Select;
    /// The path of INSERT INTO tt IN "path", UTF-8; the statement then names the attached file's table
    /// `other.tt`.
    std::string otherFile;

    std::vector<ResultColumn> columns;  ///< of a SELECT
    std::string items;                  ///< of a SELECT: what stands before FROM, in the engine's words
    std::string tail;                   ///< what stands behind the table's name
    bool grouped = false;               ///< rows of the result are no rows of `tt`

    std::size_t parameters = 0;         ///< how many values are to be bound
    std::vector<Condition> conditions;  ///< the ways in that it offers
    std::string orderedBy;  ///< the column of `tt` that leads ORDER BY in rising order, if it is a bare one

    /// The statement in the engine's words, made to take the index `name` (or none when empty).
    std::string WithIndex(std::string_view name) const;
    /// A SELECT of `what` of the same rows in the same order; not for a grouped one.
    std::string Selecting(std::string_view what, std::string_view index) const;
    /// The conditions with these values, one range for a column.
    std::vector<IndexRange> Ranges(std::span<const std::int32_t> values) const;
};

/// Translates a statement. `/` is always a real division; `\` and `Mod` work on whole numbers (operands are
/// rounded to the nearest, halves to even, the quotient is cut toward zero and the remainder takes the
/// dividend's sign), division by zero gives Null; `^` is power and binds tighter than a sign; `Int()` is
/// floor; True and False are 1 and 0; names may stand in brackets; WITH OWNERACCESS OPTION is accepted
/// everywhere and means nothing, as does one parenthesis too many at the end of a SELECT's conditions. `?`
/// stands among the conditions for a whole number that is bound later, in the order of the marks.
/// Anything that the dialect does not know is refused with EngineNumber::BadStatement and the place where it
/// stands.
Result<Translated> Translate(std::string_view statement);

/// The criteria text of `FindFirst`: conditions alone, over the columns of `tt`.
Result<Translated> TranslateCriteria(std::string_view criteria);

}  // namespace bmr::engine
