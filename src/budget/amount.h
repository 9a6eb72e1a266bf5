#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/money.h"

/// Amounts as people write and read them. Nothing here is ever a floating number.
namespace bmr::budget {

/// How a locale writes amounts, UTF-8. A grouping sign that is a blank of any width stands for all of them,
/// and so do the two apostrophes; an empty one means that digits are not grouped.
struct AmountFormat {
    std::string decimal = ".";
    std::string group = ",";
    bool operator==(const AmountFormat&) const = default;
};

/// The amount that a text tells in a locale's signs; nothing for what is no number, or lies beyond the range
/// of amounts (Msg 21). A sign stands before or behind, parentheses are one too, "1e3" is a thousand; groups
/// must be such as a person writes them, so that a decimal sign of another locale is refused and not taken
/// for a grouping. What lies behind the fourth place is rounded, half away from zero.
std::optional<Money> ParseAmount(std::string_view text, const AmountFormat& format);

/// The same, and sums of amounts: + - * / and parentheses ("12.50*3"), worked out exactly and rounded once.
/// Nothing for what is neither, for a division by nothing, and beyond the range.
std::optional<Money> WorkOutAmount(std::string_view text, const AmountFormat& format);

/// Whether a text is a sum to be worked out, and no plain number.
bool IsSum(std::string_view text, const AmountFormat& format);

/// The test behind Msg 22: whether plain number parsing, which knows the decimal point alone and stops at the
/// first character that is no part of a number, gives 0. It may differ from the amount that is stored.
bool IsZeroByPlainRule(std::string_view text);

/// "#,##0.00" in a locale's signs, half away from zero.
std::string AmountText(Money amount, const AmountFormat& format);
/// What a sum shows: the same behind a blank.
std::string SumText(Money amount, const AmountFormat& format);
/// All four places, point as decimal sign, not grouped: "12.5000".
std::string ExactText(Money amount);
/// Two places, or as many more as the amount has; not grouped. Reads back as the same amount.
std::string PlainText(Money amount, const AmountFormat& format);

/// What `AmountText` shows, as an amount again.
Money RoundedToHundredths(Money amount);

/// Sums hold at the ends of the range, where the largest amount stays what it is.
Money Plus(Money a, Money b);
Money Minus(Money a, Money b);

}  // namespace bmr::budget
