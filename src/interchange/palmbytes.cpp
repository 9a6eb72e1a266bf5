#include "interchange/palmbytes.h"

#include <algorithm>

namespace bmr::interchange {

namespace {

constexpr std::uint8_t kLongLength = 255;
constexpr std::uint32_t kNoLong = 255;  ///< a top byte that makes a long 0

}  // namespace

std::uint8_t PalmBytes::Byte() {
    return AtEnd() ? std::uint8_t{0} : static_cast<std::uint8_t>(bytes_[at_++]);
}

std::uint16_t PalmBytes::Word() {
    const unsigned low = Byte();
    return static_cast<std::uint16_t>(low | unsigned{Byte()} << 8);
}

std::uint32_t PalmBytes::Long() {
    const std::uint32_t low = Word();
    const std::uint32_t value = low | std::uint32_t{Word()} << 16;
    return value >> 24 == kNoLong ? 0 : value;
}

std::string_view PalmBytes::Chars(std::size_t count) {
    const std::string_view chars = bytes_.substr(at_, count);
    at_ += chars.size();
    return chars;
}

std::string_view PalmBytes::CString() {
    const std::uint8_t length = Byte();
    return Chars(length == kLongLength ? Word() : length);
}

std::string PalmBytes::Tag() {
    const unsigned last = Byte();
    const unsigned third = Byte();
    const char second = static_cast<char>(Byte());
    const char first = static_cast<char>(Byte());
    return std::string{first, second} + std::to_string(third) + std::to_string(last);
}

std::uint32_t PalmBytes::IntField() {
    Long();
    return Long();
}

bool PalmBytes::BoolField() {
    return IntField() == 1;
}

std::string_view PalmBytes::TextField() {
    Long();
    Long();
    return CString();
}

}  // namespace bmr::interchange
