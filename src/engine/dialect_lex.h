#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace bmr::engine::dialect {

struct Token {
    enum class Kind { End, Word, Bracketed, Number, Text, Sign };
    Kind kind = Kind::End;
    std::string text;  ///< a bracketed name and a quoted text without their marks
    std::size_t place = 0;
};

/// Cuts a text into its tokens, the last of kind End. Throws SyntaxError.
std::vector<Token> Tokenize(std::string_view text);

}  // namespace bmr::engine::dialect
