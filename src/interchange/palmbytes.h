#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Files of other programs. The readers are functions over bytes and know nothing of the store.
namespace bmr::interchange {

/// A walk over the bytes of a Palm Desktop file, little-endian. Behind the end everything reads as 0 or
/// empty, and a number or text that the end cuts holds what there is. Texts are views of the bytes, in code
/// page 1252.
class PalmBytes {
  public:
    explicit PalmBytes(std::string_view bytes) : bytes_(bytes) {}

    bool AtEnd() const { return at_ == bytes_.size(); }
    std::size_t Left() const { return bytes_.size() - at_; }

    std::uint8_t Byte();
    std::uint16_t Word();
    /// One whose top byte is 255 reads 0.
    std::uint32_t Long();
    std::string_view Chars(std::size_t count);
    /// A length byte, or 255 and a word, and so many characters.
    std::string_view CString();
    /// The bytes 00 01 42 41 give "AB10".
    std::string Tag();

    // Fields of a record: a type word comes first, which nobody judges.

    std::uint32_t IntField();
    bool BoolField();
    std::string_view TextField();

  private:
    std::string_view bytes_;
    std::size_t at_ = 0;
};

}  // namespace bmr::interchange
