#pragma once

#include <string>
#include <string_view>

#include "base/result.h"

namespace bmr::store {

/// A statement of the dialect, ready for the engine.
struct Translated {
    std::string sql;
    /// The path of INSERT INTO tt IN "path", UTF-8; the statement then names the attached file's table
    /// `other.tt`.
    std::string otherFile;
};

/// Translates a statement. `/` is always a real division; `\` and `Mod` work on whole numbers (operands are
/// rounded to the nearest, halves to even, the quotient is cut toward zero and the remainder takes the
/// dividend's sign); `^` is power and binds tighter than a sign; `Int()` is floor; True and False are 1 and
/// 0; names may stand in brackets; WITH OWNERACCESS OPTION is accepted everywhere and means nothing. `@name`
/// stands for a bound value. Anything that the dialect does not know is refused with
/// EngineNumber::BadStatement and the place where it stands.
Result<Translated> Translate(std::string_view statement);

/// The same for the criteria text of `FindFirst`: an expression alone.
Result<std::string> TranslateCriteria(std::string_view criteria);

}  // namespace bmr::store
