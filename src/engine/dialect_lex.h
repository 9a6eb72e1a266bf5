#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace bmr::engine::dialect {

/// Where and why a text is not of the dialect. Does not leave the files of the translator.
struct SyntaxError {
    std::size_t place = 0;
    std::string reason;
};

struct Token {
    enum class Kind { End, Word, Bracketed, Number, Text, Sign };
    Kind kind = Kind::End;
    std::string text;  ///< a bracketed name and a quoted text without their marks
    std::size_t place = 0;
};

/// Cuts a text into its tokens, the last of kind End. Throws SyntaxError.
std::vector<Token> Tokenize(std::string_view text);

}  // namespace bmr::engine::dialect
