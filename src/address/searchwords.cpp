#include "address/searchwords.h"

#include <algorithm>
#include <array>

#include "address/record.h"
#include "address/telephone.h"
#include "base/shortdate.h"
#include "base/unicode.h"
#include "base/utf8.h"
#include "crypto/conversion.h"
#include "store/record_get.h"

namespace bmr::address {
namespace {

/// More words than anybody types; those behind them are not looked for.
constexpr std::size_t kMostWords = 16;
constexpr std::size_t kFewestInFields = 3;

/// Each character of the code page as a capital without accents, by its code.
Bytes PlainLetters() {
    Bytes all;
    for (unsigned code = 0; code < 256; ++code)
        all += ByteChar(code);
    return conversion::PlainUpper(all);
}

WipedText LettersOf(std::string_view told) {
    WipedText letters;
    AppendSearchLetters(letters, told);
    return letters;
}

std::size_t CountCharacters(std::string_view utf8) {
    std::size_t count = 0;
    for (std::size_t at = 0; at < utf8.size(); ++count)
        NextCharacter(utf8, at);
    return count;
}

/// Labels and the number of the shown slot are no words.
bool IsSearched(std::uint8_t number) {
    return number >= FieldNumber::Title && number <= FieldNumber::Notes && number != FieldNumber::Birthday &&
           (number < FieldNumber::ComLabel1 || number > FieldNumber::ComDisplay);
}

bool IsCom(std::uint8_t number) {
    return number >= FieldNumber::Com1 && number < FieldNumber::ComLabel1;
}

}  // namespace

void AppendSearchLetters(WipedText& out, std::string_view told) {
    static const Bytes kPlain = PlainLetters();
    out.Reserve(told.size());
    const std::size_t begin = out.size();
    out.resize(begin + told.size());
    std::ranges::transform(told, out.begin() + static_cast<std::ptrdiff_t>(begin),
                           [](char c) { return kPlain[static_cast<unsigned char>(c)]; });
}

SearchWords::SearchWords(std::string_view typed) {
    const WipedText words = Normalised(TrimBlanks(typed));
    if (LooksLikeNumber(words)) {
        digits_ = DigitsOf(words);
        shown_.push_back(words);
    }
    for (std::size_t at = 0; at < words.size() && needles_.size() < kMostWords;) {
        const std::size_t end = std::min(words.find(' ', at), words.size());
        const std::string_view word = std::string_view(words).substr(at, end - at);
        at = end + 1;
        if (word.empty()) continue;
        inColumns_ = !needles_.emplace_back(word).AsksTrueText() && inColumns_;
        shown_.emplace_back(word);
    }
    inFields_ = !inColumns_ || CountCharacters(words) >= kFewestInFields;
}

std::uint64_t SearchWords::FoundIn(std::string_view letters) const {
    std::uint64_t found = 0;
    for (std::size_t i = 0; i < needles_.size(); ++i)
        if (!needles_[i].AsksTrueText() && letters.find(needles_[i].Letters()) != std::string_view::npos)
            found |= std::uint64_t{1} << i;
    return found;
}

bool SearchWords::Matches(std::string_view name, std::string_view contact, std::string_view digits) const {
    if (!digits_.empty() && digits.find(digits_) != std::string_view::npos) return true;
    return std::ranges::all_of(needles_, [&](const store::Needle& needle) {
        return !needle.AsksTrueText() && (name.find(needle.Letters()) != std::string_view::npos ||
                                          contact.find(needle.Letters()) != std::string_view::npos);
    });
}

bool SearchWords::MatchesPayload(std::string_view nameColumn, std::string_view payload,
                                 const LocaleFacts& locale) const {
    std::uint64_t found = FoundIn(LettersOf(TrimBlanks(nameColumn)));
    store::PayloadReader reader(payload);
    for (store::RawField field; found != All() && reader.Next(field);) {
        if (IsSearched(field.number)) {
            found |= FoundIn(LettersOf(field.value));
            if (!digits_.empty() && IsCom(field.number) &&
                DigitsOf(field.value).find(digits_) != std::string::npos)
                return true;
        } else if (field.number == FieldNumber::Birthday) {
            if (const Value date = store::DecodeRaw(field); std::holds_alternative<DateValue>(date))
                found |= FoundIn(FormatShortDate(DayOf(std::get<DateValue>(date)), locale.shortDate));
        } else if (!inColumns_ && field.number >= store::CompanionOf(0)) {
            // A stale one is another text; that is found here is worth no second look.
            for (std::size_t i = 0; i < needles_.size(); ++i)
                if (needles_[i].AsksTrueText() && needles_[i].InTrue(store::TrueText(field.value)))
                    found |= std::uint64_t{1} << i;
        }
    }
    return found == All();
}

}  // namespace bmr::address
