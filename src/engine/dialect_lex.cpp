#include "engine/dialect_lex.h"

#include <array>

namespace bmr::engine::dialect {
namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

class Lexer {
  public:
    explicit Lexer(std::string_view text) : text_(text) {}

    std::vector<Token> Run() {
        std::vector<Token> tokens;
        do {
            tokens.push_back(Next());
        } while (tokens.back().kind != Token::Kind::End);
        return tokens;
    }

  private:
    char Peek(std::size_t ahead = 0) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0'; }

    Token Next() {
        while (at_ < text_.size() && (Peek() == ' ' || Peek() == '\t' || Peek() == '\r' || Peek() == '\n'))
            ++at_;
        const std::size_t start = at_;
        if (at_ >= text_.size()) return {Token::Kind::End, "", start};
        const char c = Peek();
        if (IsLetter(c)) {
            while (IsLetter(Peek()) || IsDigit(Peek()))
                ++at_;
            return {Token::Kind::Word, std::string(text_.substr(start, at_ - start)), start};
        }
        if (IsDigit(c) || (c == '.' && IsDigit(Peek(1)))) return Number(start);
        if (c == '[') return Bracketed(start);
        if (c == '"' || c == '\'') return Quoted(start, c);
        return Sign(start);
    }

    Token Number(std::size_t start) {
        const auto digits = [this] {
            while (IsDigit(Peek()))
                ++at_;
        };
        digits();
        if (Peek() == '.') {
            ++at_;
            digits();
        }
        if (Peek() == 'e' || Peek() == 'E') {
            const std::size_t sign = Peek(1) == '+' || Peek(1) == '-' ? 2 : 1;
            if (!IsDigit(Peek(sign))) throw SyntaxError{start, "a broken number"};
            at_ += sign;
            digits();
        }
        if (IsLetter(Peek()) || Peek() == '.') throw SyntaxError{start, "a broken number"};
        return {Token::Kind::Number, std::string(text_.substr(start, at_ - start)), start};
    }

    Token Bracketed(std::size_t start) {
        const std::size_t end = text_.find(']', start);
        if (end == std::string_view::npos) throw SyntaxError{start, "a bracket that is not closed"};
        at_ = end + 1;
        return {Token::Kind::Bracketed, std::string(text_.substr(start + 1, end - start - 1)), start};
    }

    // A quote inside stands twice.
    Token Quoted(std::size_t start, char quote) {
        std::string inside;
        for (++at_; at_ < text_.size(); ++at_) {
            if (Peek() == quote) {
                if (Peek(1) != quote) {
                    ++at_;
                    return {Token::Kind::Text, inside, start};
                }
                ++at_;
            }
            inside += Peek();
        }
        throw SyntaxError{start, "a quote that is not closed"};
    }

    Token Sign(std::size_t start) {
        static constexpr std::array<std::string_view, 3> kDouble{"<=", ">=", "<>"};
        for (const auto sign : kDouble) {
            if (text_.substr(start, 2) == sign) {
                at_ += 2;
                return {Token::Kind::Sign, std::string(sign), start};
            }
        }
        if (std::string_view("()+-*/\\^=<>,;.?").find(Peek()) == std::string_view::npos)
            throw SyntaxError{start, "a character that means nothing"};
        ++at_;
        return {Token::Kind::Sign, std::string(text_.substr(start, 1)), start};
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

}  // namespace

std::vector<Token> Tokenize(std::string_view text) {
    return Lexer(text).Run();
}

}  // namespace bmr::engine::dialect
