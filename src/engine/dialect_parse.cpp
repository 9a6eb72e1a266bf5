#include "engine/dialect_parse.h"

#include <algorithm>
#include <array>
#include <optional>

#include "engine/columns.h"
#include "engine/dialect_lex.h"

namespace bmr::engine::dialect {
namespace {

using Kind = Token::Kind;

constexpr std::size_t kMostTokens = 4000;
constexpr int kDeepest = 100;

struct Binary {
    std::string_view sign;
    Op op;
};

class Parser {
  public:
    explicit Parser(std::string_view text) : tokens_(Tokenize(text)) {
        if (tokens_.size() > kMostTokens) throw SyntaxError{0, "a text that is too long"};
    }

    Statement ParseWhole() {
        Statement statement;
        if (TakeWord("INSERT")) {
            statement.kind = Statement::Kind::Insert;
            InsertHead(statement);
        } else if (TakeWord("DELETE")) {
            statement.kind = Statement::Kind::Delete;
            TakeSign("*");
            From();
        } else {
            ExpectWord("SELECT");
            Items(statement);
            From();
        }
        Clauses(statement);
        TakeSign(";");
        ExpectEnd();
        ResolveAliases(statement);
        return statement;
    }

    Statement ParseConditionsAlone() {
        Statement statement;
        Conditions(statement);
        ExpectEnd();
        return statement;
    }

  private:
    const Token& Peek() const { return tokens_[at_]; }
    [[noreturn]] void Fail(const char* reason) const { throw SyntaxError{Peek().place, reason}; }

    bool IsWord(std::string_view word) const {
        return Peek().kind == Kind::Word && SameName(Peek().text, word);
    }
    bool TakeWord(std::string_view word) {
        if (!IsWord(word)) return false;
        ++at_;
        return true;
    }
    void ExpectWord(const char* word) {
        if (!TakeWord(word)) Fail("another word than expected");
    }
    bool TakeSign(std::string_view sign) {
        if (Peek().kind != Kind::Sign || Peek().text != sign) return false;
        ++at_;
        return true;
    }
    void ExpectSign(std::string_view sign) {
        if (!TakeSign(sign)) Fail(sign == ")" ? "a parenthesis is missing" : "another sign than expected");
    }
    void ExpectEnd() const {
        if (Peek().kind != Kind::End) Fail("words behind the end");
    }

    void ExpectTable() {
        if (Peek().kind == Kind::Bracketed && SameName(Peek().text, "tt")) {
            ++at_;
        } else if (!TakeWord("tt")) {
            Fail("another table than tt");
        }
    }
    void From() {
        ExpectWord("FROM");
        ExpectTable();
    }

    void InsertHead(Statement& statement) {
        ExpectWord("INTO");
        ExpectTable();
        ExpectWord("IN");
        if (Peek().kind != Kind::Text || Peek().text.empty()) Fail("a path is missing");
        if (Peek().text.find('\0') != std::string::npos) Fail("a path that cannot be");
        statement.otherFile = Peek().text;
        ++at_;
        ExpectWord("SELECT");
        ExpectSign("*");
        From();
    }

    void Items(Statement& statement) {
        do {
            Item item;
            if (TakeSign("*")) {
                item.value.op = Op::Star;
            } else {
                item.value = Or();
                if (TakeWord("AS")) item.alias = Name();
            }
            statement.items.push_back(std::move(item));
        } while (TakeSign(","));
    }

    std::string Name() {
        if (Peek().kind != Kind::Word && Peek().kind != Kind::Bracketed) Fail("a name is missing");
        return tokens_[at_++].text;
    }

    void Conditions(Statement& statement) {
        parameters_ = &statement.parameters;
        statement.where.push_back(Or());
        parameters_ = nullptr;
        if (HasAggregate(statement.where.front())) Fail("a sum or count among the conditions");
    }

    void Clauses(Statement& statement) {
        const bool select = statement.kind == Statement::Kind::Select;
        if (TakeWord("WHERE")) {
            Conditions(statement);
            if (select) TakeSign(")");  // one composed statement of the system has a parenthesis too many
        } else if (statement.kind == Statement::Kind::Delete) {
            Fail("a DELETE without conditions");
        }
        if (select && TakeWord("GROUP")) {
            ExpectWord("BY");
            do {
                statement.groupBy.push_back(Or());
            } while (TakeSign(","));
            if (TakeWord("HAVING")) statement.having.push_back(Or());
        }
        if (select && TakeWord("ORDER")) {
            ExpectWord("BY");
            do {
                OrderTerm term{Or()};
                if (TakeWord("DESC")) {
                    term.falling = true;
                } else {
                    TakeWord("ASC");
                }
                statement.orderBy.push_back(std::move(term));
            } while (TakeSign(","));
        }
        if (TakeWord("WITH")) {
            ExpectWord("OWNERACCESS");
            ExpectWord("OPTION");
        }
    }

    // Lowest binding first: Or, And, Not, comparisons, + -, Mod, \, * /, sign, ^.
    Expr Or() {
        const Depth depth(*this);
        Expr left = And();
        while (IsWord("Or"))
            left = Join(Op::Or, std::move(left), &Parser::And);
        return left;
    }
    Expr And() {
        Expr left = Not();
        while (IsWord("And"))
            left = Join(Op::And, std::move(left), &Parser::Not);
        return left;
    }
    Expr Not() {
        const Depth depth(*this);
        const std::size_t place = Peek().place;
        if (!TakeWord("Not")) return Comparison();
        Expr expr{Op::Not, "", {}, place};
        expr.args.push_back(Not());
        return expr;
    }

    Expr Comparison() {
        static constexpr std::array<Binary, 6> kSigns{{{"=", Op::Equal},
                                                       {"<>", Op::NotEqual},
                                                       {"<=", Op::LessEqual},
                                                       {">=", Op::GreaterEqual},
                                                       {"<", Op::Less},
                                                       {">", Op::Greater}}};
        Expr left = Sum();
        for (;;) {
            const auto sign = std::find_if(kSigns.begin(), kSigns.end(), [this](const Binary& each) {
                return Peek().kind == Kind::Sign && Peek().text == each.sign;
            });
            if (sign != kSigns.end()) {
                left = Join(sign->op, std::move(left), &Parser::Sum);
            } else if (IsWord("Between")) {
                left = BetweenOf(std::move(left));
            } else if (IsWord("Is")) {
                left = IsOf(std::move(left));
            } else {
                return left;
            }
        }
    }

    Expr BetweenOf(Expr left) {
        Expr expr{Op::Between, "", {}, Peek().place};
        ++at_;
        expr.args.push_back(std::move(left));
        expr.args.push_back(Sum());
        ExpectWord("And");
        expr.args.push_back(Sum());
        return expr;
    }

    Expr IsOf(Expr left) {
        Expr expr{Op::IsNull, "", {}, Peek().place};
        ++at_;
        if (TakeWord("Not")) expr.op = Op::IsNotNull;
        ExpectWord("Null");
        expr.args.push_back(std::move(left));
        return expr;
    }

    Expr Sum() {
        Expr left = Modulus();
        for (;;) {
            if (IsSign("+")) {
                left = Join(Op::Add, std::move(left), &Parser::Modulus);
            } else if (IsSign("-")) {
                left = Join(Op::Subtract, std::move(left), &Parser::Modulus);
            } else {
                return left;
            }
        }
    }
    Expr Modulus() {
        Expr left = WholeQuotient();
        while (IsWord("Mod"))
            left = Join(Op::Mod, std::move(left), &Parser::WholeQuotient);
        return left;
    }
    Expr WholeQuotient() {
        Expr left = Product();
        while (IsSign("\\"))
            left = Join(Op::WholeDivide, std::move(left), &Parser::Product);
        return left;
    }
    Expr Product() {
        Expr left = Signed();
        for (;;) {
            if (IsSign("*")) {
                left = Join(Op::Multiply, std::move(left), &Parser::Signed);
            } else if (IsSign("/")) {
                left = Join(Op::Divide, std::move(left), &Parser::Signed);
            } else {
                return left;
            }
        }
    }
    Expr Signed() {
        const Depth depth(*this);
        const std::size_t place = Peek().place;
        if (TakeSign("+")) return Signed();
        if (!TakeSign("-")) return PowerOf();
        Expr expr{Op::Negate, "", {}, place};
        expr.args.push_back(Signed());
        return expr;
    }
    // From the left, as the dialect has it; an exponent may carry a sign.
    Expr PowerOf() {
        Expr left = Primary();
        while (IsSign("^"))
            left = Join(Op::Power, std::move(left), &Parser::Exponent);
        return left;
    }
    Expr Exponent() { return IsSign("-") || IsSign("+") ? SignedExponent() : Primary(); }
    Expr SignedExponent() {
        const Depth depth(*this);
        const std::size_t place = Peek().place;
        if (TakeSign("+")) return Exponent();
        ++at_;
        Expr expr{Op::Negate, "", {}, place};
        expr.args.push_back(Exponent());
        return expr;
    }

    Expr Primary() {
        const Token token = Peek();
        switch (token.kind) {
            case Kind::Number:
                ++at_;
                return {Op::Number, token.text, {}, token.place};
            case Kind::Bracketed:
                ++at_;
                return NameOf(token);
            case Kind::Word:
                ++at_;
                return Word(token);
            case Kind::Sign:
                if (TakeSign("(")) {
                    Expr inside = Or();
                    ExpectSign(")");
                    return inside;
                }
                if (parameters_ != nullptr && TakeSign("?"))
                    return {Op::Parameter, std::to_string(++*parameters_), {}, token.place};
                Fail("a value is missing");
            case Kind::Text:
                Fail("a quoted text");
            case Kind::End:
                break;
        }
        Fail("the text ends too early");
    }

    Expr Word(const Token& token) {
        if (SameName(token.text, "True")) return {Op::Number, "1", {}, token.place};
        if (SameName(token.text, "False")) return {Op::Number, "0", {}, token.place};
        if (SameName(token.text, "Null")) return {Op::Null, "", {}, token.place};
        if (SameName(token.text, "tt") && TakeSign(".")) {
            const std::size_t place = Peek().place;
            return NameOf({Kind::Word, Name(), place});
        }
        if (!TakeSign("(")) return NameOf(token);
        const auto* function = FindFunction(token.text);
        if (!function) throw SyntaxError{token.place, "an unknown function"};
        Expr call{Op::Call, std::string(function->name), {}, token.place};
        if (function->name == "Count" && TakeSign("*")) {
            call.args.push_back({Op::Star, "", {}, token.place});
        } else {
            call.args.push_back(Or());
            if (function->aggregate && HasAggregate(call.args.front()))
                throw SyntaxError{token.place, "a sum of sums"};
        }
        ExpectSign(")");
        return call;
    }

    static Expr NameOf(const Token& token) {
        if (const auto column = ColumnIndex(token.text))
            return {Op::Column, std::string(ColumnNames[*column]), {}, token.place};
        return {Op::Alias, token.text, {}, token.place};
    }

    bool IsSign(std::string_view sign) const { return Peek().kind == Kind::Sign && Peek().text == sign; }

    Expr Join(Op op, Expr left, Expr (Parser::*right)()) {
        Expr expr{op, "", {}, Peek().place};
        ++at_;
        expr.args.push_back(std::move(left));
        expr.args.push_back((this->*right)());
        return expr;
    }

    // Keeps a text of a thousand parentheses from using up the stack.
    struct Depth {
        explicit Depth(Parser& owner) : parser(owner) {
            if (++parser.depth_ > kDeepest) parser.Fail("a text that is nested too deep");
        }
        ~Depth() { --parser.depth_; }
        Depth(const Depth&) = delete;
        Depth& operator=(const Depth&) = delete;
        Parser& parser;
    };

    std::vector<Token> tokens_;
    std::size_t at_ = 0;
    int depth_ = 0;
    int* parameters_ = nullptr;  ///< counts the marks where they may stand: among the conditions
};

}  // namespace

Statement ParseStatement(std::string_view text) {
    return Parser(text).ParseWhole();
}

Statement ParseCriteria(std::string_view text) {
    return Parser(text).ParseConditionsAlone();
}

}  // namespace bmr::engine::dialect
