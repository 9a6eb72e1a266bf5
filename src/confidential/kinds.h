#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace bmr::confidential {

/// One of the sixteen kinds of confidential record: what its five fields mean. Captions are UTF-8 (plain
/// ASCII).
struct Kind {
    std::int16_t number = 0;  ///< fG1: 1 to 16. DO NOT renumber: files in the field carry these.
    std::string_view group;
    std::string_view caption;
    std::array<std::string_view, 5> captions;  ///< the last is empty in kinds of four fields
    int height = 1;                            ///< rows of the second field: 1, 2 or 3
    std::string_view toolTip;

    std::size_t FieldCount() const { return captions[4].empty() ? 4 : 5; }
};

/// All kinds in the order of the screen: five groups, headed by their captions (which begin with a blank).
std::span<const Kind> ConfidentialKinds();

/// The kind of a number, null for 0 (none chosen) and numbers beyond.
const Kind* ConfidentialKindFields(std::int32_t number);

/// True for a caption that stands for a secret: it holds "Password" or "PIN", in any case.
bool IsMaskedCaption(std::string_view caption);

/// True for a caption whose field is a web address.
bool IsUrlCaption(std::string_view caption);
/// The same for a mail address and for a telephone number.
bool IsMailCaption(std::string_view caption);
bool IsPhoneCaption(std::string_view caption);

}  // namespace bmr::confidential
