#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/wiped.h"

/// The lines of vCards, versions 2.1, 3.0 (RFC 2426) and 4.0 (RFC 6350), as programs write them. Takes what
/// can be read of a damaged file, in memory that does not grow with it.
namespace bmr::address {

/// One property: "item1.TEL;TYPE=work:+49 30 1234".
struct VCardProperty {
    std::string group;                                            ///< small letters
    std::string name;                                             ///< capitals
    std::vector<std::pair<std::string, std::string>> parameters;  ///< names in capitals; TYPE where left out
    /// UTF-8, out of its transfer encoding, its escapes as they stand. Empty for what is no text.
    WipedText value;
    bool isMedia = false;  ///< a picture, a sound or another thing that is no text
    bool isCut = false;    ///< longer than anything that a record can hold

    /// Whether a TYPE names it (small letters).
    bool HasType(std::string_view type) const;
    /// The first value of a parameter; empty without one.
    std::string_view Parameter(std::string_view parameter) const;
};

struct VCard {
    int version = 30;      ///< 21, 30 or 40
    std::size_t line = 0;  ///< of its BEGIN, from 1
    std::vector<VCardProperty> properties;
    std::size_t strayLines = 0;  ///< lines that are no property
    std::string problem;         ///< why it cannot be taken; empty for a whole one

    void Clear();
};

/// Texts of one property: split at the separator where no backslash stands before it, still escaped.
std::vector<std::string_view> SplitEscaped(std::string_view value, char separator);
/// Without its escapes; line breaks become CR LF.
WipedText Unescaped(std::string_view text, int version);

class VCardReader {
  public:
    /// `read` fills what it is given from its front and tells how much; 0 at the end.
    explicit VCardReader(std::function<std::size_t(std::span<char>)> read);
    ~VCardReader();
    VCardReader(const VCardReader&) = delete;
    VCardReader& operator=(const VCardReader&) = delete;

    /// The next card. False at the end of the file.
    bool Next(VCard& card);
    /// Bytes read so far.
    std::size_t Position() const { return position_; }

  private:
    struct Line {
        WipedText text;
        std::size_t number = 0;
        bool isCut = false;
        bool isMedia = false;
    };

    bool NextByte(char& byte);
    /// One line of the file, without its end.
    bool PhysicalLine(Line& line);
    /// One line of the card, its folds undone.
    bool LogicalLine(Line& line);
    void TakeProperty(VCard& card, const Line& line);

    std::function<std::size_t(std::span<char>)> read_;
    WipedText buffer_;
    std::size_t at_ = 0;
    std::size_t filled_ = 0;
    std::size_t position_ = 0;
    std::size_t lines_ = 0;
    std::optional<Line> ahead_;         ///< of the file, not used up yet
    std::optional<std::size_t> begun_;  ///< a BEGIN was met where a card had no end: its line
    bool lastWasReturn_ = false;
};

}  // namespace bmr::address
