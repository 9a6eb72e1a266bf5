#include "base/shortdate.h"

#include <vector>

namespace bmr {
namespace {

/// A run of one pattern letter, or text to be copied.
struct Piece {
    char letter = 0;  // 'y', 'M', 'd', or 0 for text
    std::size_t count = 0;
    std::string text;
};

std::vector<Piece> PiecesOf(std::string_view pattern) {
    std::vector<Piece> pieces;
    bool quoted = false;
    for (const char c : pattern) {
        if (c == '\'') {
            quoted = !quoted;
            continue;
        }
        const char letter = !quoted && (c == 'y' || c == 'M' || c == 'd') ? c : '\0';
        if (pieces.empty() || pieces.back().letter != letter) pieces.push_back({letter, 0, {}});
        ++pieces.back().count;
        if (letter == 0) pieces.back().text += c;
    }
    return pieces;
}

std::string Padded(unsigned number, std::size_t width) {
    std::string digits = std::to_string(number);
    if (digits.size() < width) digits.insert(0, width - digits.size(), '0');
    return digits;
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The runs of digits of `text`; a run too long for any date ends the reading.
std::vector<int> NumbersOf(std::string_view text) {
    std::vector<int> numbers;
    for (std::size_t at = 0; at < text.size();) {
        if (!IsDigit(text[at])) {
            ++at;
            continue;
        }
        int number = 0;
        for (; at < text.size() && IsDigit(text[at]); ++at) {
            number = number * 10 + (text[at] - '0');
            if (number > 9999) return {};
        }
        numbers.push_back(number);
    }
    return numbers;
}

}  // namespace

std::string FormatShortDate(Day day, std::string_view pattern) {
    const auto date = YearMonthDay(day);
    const auto year = static_cast<unsigned>(static_cast<int>(date.year()));
    std::string out;
    for (const Piece& piece : PiecesOf(pattern)) {
        if (piece.letter == 'y')
            out += piece.count == 2 ? Padded(year % 100, 2) : Padded(year, 4);
        else if (piece.letter == 'M')
            out += Padded(static_cast<unsigned>(date.month()), piece.count == 1 ? 1 : 2);
        else if (piece.letter == 'd')
            out += Padded(static_cast<unsigned>(date.day()), piece.count == 1 ? 1 : 2);
        else
            out += piece.text;
    }
    return out;
}

std::optional<Day> ParseShortDate(std::string_view text, std::string_view pattern) {
    if (const auto iso = ParseIsoDate(text)) return iso;
    const std::vector<int> numbers = NumbersOf(text);
    if (numbers.size() != 3) return std::nullopt;
    int year = 0;
    int month = 0;
    int day = 0;
    std::size_t next = 0;
    for (const Piece& piece : PiecesOf(pattern)) {
        if (piece.letter == 0) continue;
        if (next == numbers.size()) return std::nullopt;
        (piece.letter == 'y' ? year : piece.letter == 'M' ? month : day) = numbers[next++];
    }
    if (year < 100) year += year < 30 ? 2000 : 1900;
    const std::chrono::year_month_day date{std::chrono::year{year},
                                           std::chrono::month{static_cast<unsigned>(month)},
                                           std::chrono::day{static_cast<unsigned>(day)}};
    if (!date.ok()) return std::nullopt;
    return DayFrom(date);
}

}  // namespace bmr
