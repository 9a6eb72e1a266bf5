#include "budget/amount.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <numeric>

namespace bmr::budget {
namespace {

__extension__ using Wide = __int128;

constexpr Wide kScale = 10000;
constexpr int kPlaces = 4;
constexpr int kMostExponent = 9999;

/// Blanks that group digits in some locale, or stand around a number.
constexpr std::array<std::string_view, 6> kBlanks = {
    " ", "\t", "\xC2\xA0", "\xE2\x80\xAF", "\xE2\x80\x89", "\xE2\x80\x87"};
constexpr std::array<std::string_view, 2> kApostrophes = {"'", "\xE2\x80\x99"};
constexpr std::array<std::string_view, 3> kMinus = {"-", "\xE2\x88\x92", "\xE2\x80\x93"};

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Reads a text from its beginning.
class Scanner {
  public:
    explicit Scanner(std::string_view text) : rest_(text) {}

    bool AtEnd() const { return rest_.empty(); }
    std::string_view rest() const { return rest_; }
    char Peek() const { return rest_.empty() ? '\0' : rest_.front(); }
    bool Take(std::string_view word) {
        if (word.empty() || !rest_.starts_with(word)) return false;
        rest_.remove_prefix(word.size());
        return true;
    }
    template <class Words>
    bool TakeAny(const Words& words) {
        return std::ranges::any_of(words, [this](std::string_view word) { return Take(word); });
    }
    void SkipBlanks() {
        while (TakeAny(kBlanks)) {
        }
    }
    void Drop() { rest_.remove_prefix(1); }

  private:
    std::string_view rest_;
};

std::string_view Trimmed(std::string_view text) {
    Scanner scanner(text);
    scanner.SkipBlanks();
    text = scanner.rest();
    for (bool cut = true; cut;)
        cut = std::ranges::any_of(kBlanks, [&text](std::string_view blank) {
            if (!text.ends_with(blank)) return false;
            text.remove_suffix(blank.size());
            return true;
        });
    return text;
}

template <class Signs>
bool IsAmong(std::string_view sign, const Signs& signs) {
    return std::ranges::find(signs, sign) != std::end(signs);
}

bool TakeGroupSign(Scanner& scanner, const AmountFormat& format) {
    if (IsAmong(format.group, kBlanks)) return scanner.TakeAny(kBlanks);
    if (IsAmong(format.group, kApostrophes)) return scanner.TakeAny(kApostrophes);
    return scanner.Take(format.group);
}

/// A number without its sign: its digits, and how many of them stand behind the decimal sign.
struct Digits {
    std::string digits;
    int places = 0;
};

void TakeDigits(Scanner& scanner, std::string& digits) {
    for (; IsDigit(scanner.Peek()); scanner.Drop())
        digits += scanner.Peek();
}

/// The digits before the decimal sign. False where they are grouped as nobody groups them.
bool TakeWhole(Scanner& scanner, const AmountFormat& format, std::string& digits) {
    std::size_t before = 0;
    bool grouped = false;
    TakeDigits(scanner, digits);
    for (std::size_t size = digits.size();; size = digits.size() - before) {
        Scanner ahead = scanner;
        const bool more = size > 0 && TakeGroupSign(ahead, format) && IsDigit(ahead.Peek());
        if (more && (size > 3 || (grouped && size < 2))) return false;
        if (!more) return !grouped || size == 3;
        grouped = true;
        before = digits.size();
        scanner = ahead;
        TakeDigits(scanner, digits);
    }
}

/// "e3", "E-2". An exponent without digits is none.
void TakeExponent(Scanner& scanner, int& places) {
    Scanner ahead = scanner;
    if (!ahead.Take("e") && !ahead.Take("E")) return;
    const bool down = ahead.Take("-");
    if (!down) ahead.Take("+");
    std::string digits;
    TakeDigits(ahead, digits);
    if (digits.empty()) return;
    int exponent = 0;
    for (const char digit : digits)
        exponent = std::min(kMostExponent, exponent * 10 + (digit - '0'));
    places += down ? exponent : -exponent;
    scanner = ahead;
}

std::optional<Digits> TakeNumber(Scanner& scanner, const AmountFormat& format) {
    Digits number;
    if (!TakeWhole(scanner, format, number.digits)) return std::nullopt;
    if (scanner.Take(format.decimal)) {
        const std::size_t whole = number.digits.size();
        TakeDigits(scanner, number.digits);
        number.places = static_cast<int>(number.digits.size() - whole);
    }
    if (number.digits.empty()) return std::nullopt;
    TakeExponent(scanner, number.places);
    return number;
}

/// The number in ten-thousandths, rounded; nothing where 128 bits do not hold it.
std::optional<Wide> Rounded(const Digits& number) {
    const int shift = kPlaces - number.places;
    std::string_view digits = number.digits;
    bool up = false;
    if (shift < 0) {
        const auto cut = static_cast<std::size_t>(-shift);
        if (cut > digits.size()) return Wide{0};
        up = digits[digits.size() - cut] >= '5';
        digits.remove_suffix(cut);
    }
    Wide value = 0;
    const auto append = [&value](int digit) {
        return !__builtin_mul_overflow(value, Wide{10}, &value) &&
               !__builtin_add_overflow(value, Wide{digit}, &value);
    };
    for (const char digit : digits)
        if (!append(digit - '0')) return std::nullopt;
    for (int i = 0; i < shift && value != 0; ++i)
        if (!append(0)) return std::nullopt;
    return value + (up ? 1 : 0);
}

std::optional<Money> InRange(Wide tenThousandths) {
    if (tenThousandths > std::numeric_limits<std::int64_t>::max() ||
        tenThousandths < std::numeric_limits<std::int64_t>::min())
        return std::nullopt;
    return Money{static_cast<std::int64_t>(tenThousandths)};
}

Wide Magnitude(Wide value) {
    return value < 0 ? -value : value;
}

/// An exact fraction. What overflows is none any more.
struct Fraction {
    Wide over = 0;
    Wide under = 1;
};

std::optional<Fraction> Reduced(Wide over, Wide under) {
    if (under == 0) return std::nullopt;
    Wide a = Magnitude(over);
    for (Wide b = Magnitude(under); b != 0;) {
        const Wide rest = a % b;
        a = b;
        b = rest;
    }
    if (under < 0) a = -a;
    return Fraction{over / a, under / a};
}

std::optional<Fraction> Times(const Fraction& a, const Fraction& b) {
    // What cancels crosswise goes first, so that more fits.
    const auto left = Reduced(a.over, b.under);
    const auto right = Reduced(b.over, a.under);
    Wide over = 0, under = 0;
    if (!left || !right || __builtin_mul_overflow(left->over, right->over, &over) ||
        __builtin_mul_overflow(left->under, right->under, &under))
        return std::nullopt;
    return Reduced(over, under);
}

std::optional<Fraction> Sum(const Fraction& a, const Fraction& b, bool less) {
    Wide left = 0, right = 0, over = 0, under = 0;
    if (__builtin_mul_overflow(a.over, b.under, &left) || __builtin_mul_overflow(b.over, a.under, &right) ||
        (less ? __builtin_sub_overflow(left, right, &over) : __builtin_add_overflow(left, right, &over)) ||
        __builtin_mul_overflow(a.under, b.under, &under))
        return std::nullopt;
    return Reduced(over, under);
}

std::optional<Fraction> FractionOf(const Digits& number) {
    Fraction fraction;
    for (const char digit : number.digits)
        if (__builtin_mul_overflow(fraction.over, Wide{10}, &fraction.over) ||
            __builtin_add_overflow(fraction.over, Wide{digit - '0'}, &fraction.over))
            return std::nullopt;
    Wide& side = number.places >= 0 ? fraction.under : fraction.over;
    for (int i = 0; i < std::abs(number.places) && fraction.over != 0; ++i)
        if (__builtin_mul_overflow(side, Wide{10}, &side)) return std::nullopt;
    return Reduced(fraction.over, fraction.under);
}

/// Works out a sum by the usual rules.
class Calculator {
  public:
    Calculator(std::string_view text, const AmountFormat& format) : scanner_(text), format_(format) {}

    std::optional<Fraction> Run() {
        scanner_.SkipBlanks();
        scanner_.Take("=");
        auto value = Terms(0);
        scanner_.SkipBlanks();
        return scanner_.AtEnd() ? value : std::nullopt;
    }

  private:
    static constexpr int kDeepest = 64;
    static constexpr std::array<std::string_view, 3> kTimes = {"*", "\xC3\x97", "\xC2\xB7"};
    static constexpr std::array<std::string_view, 3> kOver = {"/", "\xC3\xB7", ":"};

    std::optional<Fraction> Terms(int depth) {
        auto value = Factors(depth);
        while (value) {
            scanner_.SkipBlanks();
            const bool less = scanner_.TakeAny(kMinus);
            if (!less && !scanner_.Take("+")) break;
            const auto next = Factors(depth);
            value = next ? Sum(*value, *next, less) : std::nullopt;
        }
        return value;
    }
    std::optional<Fraction> Factors(int depth) {
        auto value = Factor(depth);
        while (value) {
            scanner_.SkipBlanks();
            const bool over = scanner_.TakeAny(kOver);
            if (!over && !scanner_.TakeAny(kTimes)) break;
            auto next = Factor(depth);
            if (next && over) next = Reduced(next->under, next->over);
            value = next ? Times(*value, *next) : std::nullopt;
        }
        return value;
    }
    std::optional<Fraction> Factor(int depth) {
        if (depth > kDeepest) return std::nullopt;
        scanner_.SkipBlanks();
        if (scanner_.TakeAny(kMinus)) {
            auto value = Factor(depth + 1);
            if (value) value->over = -value->over;
            return value;
        }
        if (scanner_.Take("+")) return Factor(depth + 1);
        if (scanner_.Take("(")) {
            auto value = Terms(depth + 1);
            scanner_.SkipBlanks();
            return scanner_.Take(")") ? value : std::nullopt;
        }
        const auto number = TakeNumber(scanner_, format_);
        return number ? FractionOf(*number) : std::nullopt;
    }

    Scanner scanner_;
    const AmountFormat& format_;
};

/// Magnitude and sign, of which the lowest amount has both too.
std::uint64_t MagnitudeOf(Money amount) {
    const auto bits = static_cast<std::uint64_t>(amount.tenThousandths);
    return amount.tenThousandths < 0 ? 0 - bits : bits;
}

std::string Padded(std::uint64_t number, std::size_t width) {
    std::string digits = std::to_string(number);
    return std::string(width - std::min(width, digits.size()), '0') + digits;
}

}  // namespace

std::optional<Money> ParseAmount(std::string_view text, const AmountFormat& format) {
    text = Trimmed(text);
    const bool enclosed = text.size() > 1 && text.front() == '(' && text.back() == ')';
    if (enclosed) text = Trimmed(text.substr(1, text.size() - 2));
    Scanner scanner(text);
    bool negative = scanner.TakeAny(kMinus);
    const bool sign = negative || scanner.Take("+");
    scanner.SkipBlanks();
    const auto number = TakeNumber(scanner, format);
    if (!number) return std::nullopt;
    scanner.SkipBlanks();
    if (!sign && !enclosed) negative = scanner.TakeAny(kMinus);
    if (!scanner.AtEnd() || (enclosed && sign)) return std::nullopt;
    const auto value = Rounded(*number);
    return value ? InRange(negative || enclosed ? -*value : *value) : std::nullopt;
}

std::optional<Money> WorkOutAmount(std::string_view text, const AmountFormat& format) {
    if (const auto plain = ParseAmount(text, format)) return plain;
    const auto value = Calculator(text, format).Run();
    Wide scaled = 0;
    if (!value || __builtin_mul_overflow(value->over, kScale, &scaled)) return std::nullopt;
    const Wide whole = scaled / value->under;
    const Wide rest = Magnitude(scaled % value->under);
    const bool away = rest >= value->under - rest;
    return InRange(whole + (away ? (scaled < 0 ? -1 : 1) : 0));
}

bool IsSum(std::string_view text, const AmountFormat& format) {
    return !ParseAmount(text, format) && WorkOutAmount(text, format);
}

bool IsZeroByPlainRule(std::string_view text) {
    bool sign = false, point = false, digit = false;
    for (const char c : text) {
        if (c == ' ' || c == '\t' || c == '\n' || c == '\r') continue;
        if (IsDigit(c)) {
            if (c != '0') return false;
            digit = true;
        } else if (c == '.' && !point) {
            point = true;
        } else if ((c == '-' || c == '+') && !sign && !point && !digit) {
            sign = true;
        } else {
            break;
        }
    }
    return true;
}

std::string AmountText(Money amount, const AmountFormat& format) {
    const std::uint64_t magnitude = MagnitudeOf(amount);
    const std::uint64_t hundredths = magnitude / 100 + (magnitude % 100 >= 50 ? 1 : 0);
    const std::string whole = std::to_string(hundredths / 100);
    std::string text = amount.tenThousandths < 0 && hundredths != 0 ? "-" : "";
    for (std::size_t i = 0; i < whole.size(); ++i) {
        if (i > 0 && (whole.size() - i) % 3 == 0) text += format.group;
        text += whole[i];
    }
    return text + format.decimal + Padded(hundredths % 100, 2);
}

std::string SumText(Money amount, const AmountFormat& format) {
    return " " + AmountText(amount, format);
}

std::string ExactText(Money amount) {
    const std::uint64_t magnitude = MagnitudeOf(amount);
    return (amount.tenThousandths < 0 ? "-" : "") + std::to_string(magnitude / 10000) + "." +
           Padded(magnitude % 10000, kPlaces);
}

std::string PlainText(Money amount, const AmountFormat& format) {
    std::string exact = ExactText(amount);
    for (int i = 0; i < 2 && exact.back() == '0'; ++i)
        exact.pop_back();
    const std::size_t point = exact.find('.');
    return exact.substr(0, point) + format.decimal + exact.substr(point + 1);
}

Money RoundedToHundredths(Money amount) {
    const std::int64_t rest = amount.tenThousandths % 100;
    const std::int64_t cut = amount.tenThousandths - rest;
    if (rest >= 50) return Plus({cut}, {100});
    return rest <= -50 ? Minus({cut}, {100}) : Money{cut};
}

Money Plus(Money a, Money b) {
    std::int64_t sum = 0;
    if (!__builtin_add_overflow(a.tenThousandths, b.tenThousandths, &sum)) return {sum};
    return {b.tenThousandths < 0 ? std::numeric_limits<std::int64_t>::min()
                                 : std::numeric_limits<std::int64_t>::max()};
}

Money Minus(Money a, Money b) {
    std::int64_t rest = 0;
    if (!__builtin_sub_overflow(a.tenThousandths, b.tenThousandths, &rest)) return {rest};
    return {b.tenThousandths < 0 ? std::numeric_limits<std::int64_t>::max()
                                 : std::numeric_limits<std::int64_t>::min()};
}

}  // namespace bmr::budget
