#pragma once

#include <QString>
#include <utility>

#include "base/bytes.h"
#include "base/wiped.h"
#include "crypto/secret.h"

namespace bmr::kit {

/// Text of code page 1252 for a widget: names of categories, labels, passphrases.
QString ToQString(std::string_view bytes);

/// What a widget holds as text of code page 1252. A character that the page has no place for becomes "?";
/// where that would lose something, ask `RefusalOf` first.
Bytes FromQString(const QString& text);

/// Empty when code page 1252 holds the text; else one sentence that names the characters that it does not.
QString RefusalOf(const QString& text);

/// A text of a record for a widget, and back.
QString ShowWords(std::string_view words);
WipedText TakeWords(const QString& text);

/// The same for a field of many lines, where a line ends in "\n". In a record it ends in two characters; one
/// that was written otherwise (`before`) keeps its own ends.
QString ShowLines(std::string_view words);
WipedText TakeLines(const QString& text, std::string_view before);

/// How long a record's text is, in words: "1,234 characters".
QString LengthOf(std::string_view words);

/// Empty for a text that a record holds whole; else one sentence that says by how much it is too long.
QString TooLongOf(std::string_view words);

/// The text as UTF-8 in memory that is wiped, with nothing left beside it.
Secret ToSecret(const QString& text);
/// The same as bytes of code page 1252.
Secret ToLatinSecret(const QString& text);

/// Overwrites the characters of a string that nobody shares, then empties it.
void WipeQString(QString& text);

/// A string of ours that is overwritten when it goes, unless a control shares it.
struct WipedLetters : QString {
    WipedLetters() = default;
    WipedLetters(QString text) : QString(std::move(text)) {}
    WipedLetters(const WipedLetters&) = default;
    WipedLetters(WipedLetters&&) noexcept = default;
    WipedLetters& operator=(const WipedLetters&) = default;
    WipedLetters& operator=(WipedLetters&&) noexcept = default;
    ~WipedLetters() { WipeQString(*this); }
};

}  // namespace bmr::kit
