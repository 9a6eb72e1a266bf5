#pragma once

#include <QString>

#include "base/bytes.h"

namespace bmr::kit {

/// Text of the record format for a widget.
QString ToQString(std::string_view bytes);

/// What a widget holds as text of the record format. A character that code page 1252 has no place for becomes
/// "?"; where that would lose something, ask `RefusalOf` first.
Bytes FromQString(const QString& text);

/// Empty when the text can be stored; else one sentence that names the characters that cannot.
QString RefusalOf(const QString& text);

/// Overwrites the characters of a string that nobody shares, then empties it.
void WipeQString(QString& text);

}  // namespace bmr::kit
