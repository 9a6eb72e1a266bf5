#pragma once

#include <string_view>

#include "base/bytes.h"

namespace bmr {

// What needs to know more of characters than their numbers. Nothing here is needed to read a record, so that
// the tables of characters, which change with each edition, never decide what a stored text says.

/// True when `utf8` is UTF-8 from end to end, without encoded surrogates.
bool IsWellFormed(std::string_view utf8);

/// `utf8` with U+FFFD for each malformed byte, and for each encoded surrogate as a whole.
Words WellFormed(std::string_view utf8);

/// Whole UTF-8 in normalisation form C, in which an ä is one character; malformed bytes go as in WellFormed.
Words Normalised(std::string_view utf8);

/// A text of any script in the letters of code page 1252, for readers who know no other and for the order of
/// lists. Each character that the page has stays; the others become Latin letters where they have some, "?"
/// for one that has none, and nothing for a combining mark. Never blank when `nfc` is not. The first call for
/// a script takes up to a tenth of a second. May be called from every thread.
Bytes Transliterate(std::string_view nfc);

/// A text with "?" for each character that code page 1252 lacks: for what must not look right when it is not,
/// as a password.
Bytes MaskForeign(std::string_view nfc);

/// `utf8` as it compares without regard to case, in every script.
Words FoldCase(std::string_view utf8);

}  // namespace bmr
