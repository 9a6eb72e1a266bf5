#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "base/serialdate.h"
#include "base/wiped.h"
#include "store/session.h"

/// Which days have a page: told by fR2 alone, with nothing deciphered, unless it is said otherwise. While
/// private records are hidden, no day has one.
namespace bmr::diary {

/// The days of a span that have a page, both ends within, in their order: the marks of a month.
Result<std::vector<Day>> MarkedDays(store::Session& session, Day first, Day last);

/// The nearest day before or behind that has a page.
Result<std::optional<Day>> PreviousEntry(store::Session& session, Day day);
Result<std::optional<Day>> NextEntry(store::Session& session, Day day);

/// The same date of earlier years, the latest first. 29 February has only leap years.
Result<std::vector<Day>> OnThisDay(store::Session& session, Day day);

/// The first line of a day's page that is not blank, up to so many characters. Deciphers one payload; empty
/// where there is nothing.
WipedText FirstLine(store::Session& session, Day day, std::size_t most);

/// The days whose text holds `search`, in any case and with or without accents, the latest first. Deciphers
/// every page.
Result<std::vector<Day>> Search(store::Session& session, std::string_view search);

/// Words of a text: what stands between blanks and has a letter or a digit, and each character of a script
/// that sets none between its words.
std::size_t CountWords(std::string_view text);

/// A span as one text, each day under its heading; days without text are left out. Headings by the short
/// date pattern of a locale.
Result<WipedText> ExportText(store::Session& session, Day first, Day last, std::string_view shortDate);

}  // namespace bmr::diary
