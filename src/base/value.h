#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "base/bytes.h"
#include "base/money.h"
#include "base/serialdate.h"

namespace bmr {

/// A value never set, and the engine's Null. Both encode as nothing, but only `Empty` enciphers to nothing.
struct Empty {
    bool operator==(const Empty&) const = default;
};
struct Null {
    bool operator==(const Null&) const = default;
};

/// What a column or a payload field holds. Whole numbers of every width travel as 32-bit, text as bytes of
/// code page 1252.
using Value = std::variant<Empty, Null, bool, std::int32_t, double, Money, DateValue, Bytes>;

/// True for `Empty`, `Null` and the empty text.
inline bool IsBlank(const Value& value) {
    if (const auto* text = std::get_if<Bytes>(&value)) return text->empty();
    return std::holds_alternative<Empty>(value) || std::holds_alternative<Null>(value);
}

/// The text of a text value, empty for any other kind.
inline Bytes TextOf(const Value& value) {
    const auto* text = std::get_if<Bytes>(&value);
    return text ? *text : Bytes();
}

/// The number of a whole-number or boolean value (true is -1 nowhere: it counts 1), `fallback` for others.
inline std::int32_t NumberOf(const Value& value, std::int32_t fallback = 0) {
    if (const auto* number = std::get_if<std::int32_t>(&value)) return *number;
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? 1 : 0;
    return fallback;
}

}  // namespace bmr
