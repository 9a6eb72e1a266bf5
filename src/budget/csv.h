#pragma once

#include <cstdint>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

#include "base/wiped.h"

/// Tables as text, as banks write them: read piece by piece, whatever the size of the file.
namespace bmr::budget {

enum class CsvEncoding : std::uint8_t { Utf8, Windows1252, Utf16Little, Utf16Big };

/// How a file is to be read.
struct CsvForm {
    CsvEncoding encoding = CsvEncoding::Utf8;
    char separator = ',';  ///< one of , ; | and the tab
    bool operator==(const CsvForm&) const = default;
};

/// Columns and characters beyond these are not read.
inline constexpr std::size_t kMostCsvColumns = 1000;
inline constexpr std::size_t kMostCsvRecord = std::size_t{1} << 20;  ///< bytes of one row

using CsvRow = std::vector<WipedText>;

/// Guesses encoding and separator from the beginning of a file; the more of it, the better.
CsvForm GuessForm(std::string_view beginning);

/// Reads rows one by one. Cells are UTF-8, blanks at their ends cut; NUL bytes are left out, what is no text
/// in the encoding becomes U+FFFD. A cell in double quotes may hold separators, quotes (doubled) and line
/// breaks; quotes that never close are ordinary characters of their line. Rows without any text are passed
/// over.
class CsvReader {
  public:
    CsvReader(std::istream& in, CsvForm form);

    /// False at the end.
    bool Next(CsvRow& row);
    /// The line that the last row began on, from 1.
    std::size_t Line() const { return rowLine_; }
    /// Rows that had more columns or characters than are read, or quotes that never closed.
    std::size_t Doubtful() const { return doubtful_; }

  private:
    /// Text from `at_` on, at least `size` bytes unless the file ends before.
    void Fill(std::size_t size);
    void Append(std::string_view bytes);
    void AppendUnits(std::string_view bytes);
    bool Parse(CsvRow& row, bool quotes);
    void PassOverLine();

    std::istream& in_;
    CsvForm form_;
    WipedText text_;  ///< what was read and is not parsed yet, UTF-8
    std::size_t at_ = 0;
    std::string carried_;  ///< bytes of a character that the last piece cut off
    char32_t high_ = 0;    ///< the first half of a pair in UTF-16
    bool begun_ = false;
    std::size_t line_ = 1;
    std::size_t rowLine_ = 0;
    std::size_t doubtful_ = 0;
};

/// A row as text, with a line end; cells are quoted where they must be.
WipedText CsvLine(const CsvRow& row, char separator);

}  // namespace bmr::budget
