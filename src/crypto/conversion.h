#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/bytes.h"
#include "base/money.h"

namespace bmr::conversion {

/// Two's complement, low byte first. Nothing when `value` does not fit `byteCount` (2 or 4) bytes.
std::optional<Bytes> PackInteger(std::int64_t value, int byteCount);
/// 2 or 4 bytes, low byte first.
std::int32_t UnpackInteger(std::string_view text);

/// Ten-thousandths in 8 bytes, two's complement, low byte first.
Bytes PackCurrency(Money amount);
/// 0 unless `text` has 8 bytes.
Money UnpackCurrency(std::string_view text);

/// IEEE 754 of 32 or 64 bits as a text of "0" and "1", most significant first; the mantissa is cut, not
/// rounded. A value below 1e-200, negative ones included, gives zeros: no stored float of this format is
/// negative.
std::string FloatToBits(double value, int bitCount);
/// One byte for each 8 characters, last byte first. A length that is no multiple of 8 gives nothing (Msg 32).
std::optional<Bytes> BitsToBytes(std::string_view bits);
/// 4 or 8 bytes, low byte first; all zero gives 0.
double BytesToFloat(std::string_view text);

/// Two's complement of a bit text.
std::string BitsNegate(std::string_view bits);
std::string ByteToBits(std::uint8_t byte);
/// Nothing for a text that is not 8 characters long (Msg 33).
std::optional<std::uint8_t> BitsToByte(std::string_view bits);

/// A to Z of the first letter as 1 to 26, accents folded; 0 for anything else. With `accents`, the Nordic
/// letters stand behind Z (28 to 30).
int NameCode(std::string_view text, bool accents);
/// (NameCode of the first letter * 31 + NameCode of the second) / 23, whole part: 0 to 41.
int NameKey(std::string_view text, bool accents);
/// Each byte above 128 replaced by its base letter, then upper case.
Bytes PlainUpper(std::string_view text);

}  // namespace bmr::conversion
