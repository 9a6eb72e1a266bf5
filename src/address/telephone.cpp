#include "address/telephone.h"

#include <algorithm>
#include <vector>

#include "base/bytes.h"

namespace bmr::address {
namespace {

constexpr std::size_t kFewestTyped = 3;
constexpr std::size_t kFewestSame = 5;
/// A country's code and an area's zero.
constexpr std::size_t kLongestPrefix = 4;

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The digits that count, and their places.
struct Digits {
    WipedText digits;
    std::vector<std::size_t> places;
};

Digits ReadDigits(std::string_view number) {
    Digits read;
    const bool abroad = TrimBlanks(number).starts_with('+') || TrimBlanks(number).starts_with("00");
    read.digits.reserve(number.size());
    for (std::size_t at = 0; at < number.size(); ++at) {
        if (abroad && number.substr(at).starts_with("(0)"))
            at += 2;
        else if (IsDigit(number[at]) && !(read.digits.empty() && number[at] == '0')) {
            read.digits += number.substr(at, 1);
            read.places.push_back(at);
        }
    }
    return read;
}

}  // namespace

WipedText DigitsOf(std::string_view number) {
    return std::move(ReadDigits(number).digits);
}

bool LooksLikeNumber(std::string_view typed) {
    if (typed.find_first_not_of("0123456789 +-/().") != std::string_view::npos) return false;
    return static_cast<std::size_t>(std::count_if(typed.begin(), typed.end(), IsDigit)) >= kFewestTyped;
}

std::optional<std::pair<std::size_t, std::size_t>> FindNumber(std::string_view number,
                                                              std::string_view typed) {
    if (!LooksLikeNumber(typed)) return std::nullopt;
    const WipedText wanted = DigitsOf(typed);
    const Digits read = ReadDigits(number);
    const std::size_t at = wanted.empty() ? std::string::npos : read.digits.find(wanted);
    if (at == std::string::npos) return std::nullopt;
    return std::pair(read.places[at], read.places[at + wanted.size() - 1] + 1);
}

bool SameNumber(std::string_view a, std::string_view b) {
    const WipedText one = DigitsOf(a);
    const WipedText other = DigitsOf(b);
    const std::size_t shorter = std::min(one.size(), other.size());
    const std::size_t longer = std::max(one.size(), other.size());
    if (shorter < kFewestSame || longer - shorter > kLongestPrefix) return false;
    return std::string_view(one).ends_with(other) || std::string_view(other).ends_with(one);
}

}  // namespace bmr::address
