#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/ports.h"

namespace bmr::shell {

// All texts here are UTF-8 unless told otherwise.

/// Drops from the end of the text, character by character, what is neither a digit nor the decimal sign.
std::string NumericOnly(std::string_view text, char decimalPoint);

/// Trims `text`; true when it has the shape of a mail address: a letter or digit at both ends, letters,
/// digits, "@", "." and "-" between, at least one "@". Letters with accents count.
bool ValidEmail(std::string& text);

/// The address with "http://" in front when it has no beginning of the form "scheme://". Nothing for a blank
/// address and for one that we do not hand to the desktop: any scheme but http, https and ftp could start
/// something on this machine, and a control character has no place in an address.
std::optional<std::string> WebAddress(std::string_view address);

/// Opens the address; a refused or failed one is told in a box, a blank one is left alone.
void OpenWebsite(Prompter& prompter, Desktop& desktop, std::string_view address);

/// Starts the mail program. An address of the wrong shape shows Msg(163): another message's number, kept as
/// it always was.
void SendMail(Prompter& prompter, Desktop& desktop, std::string address);

/// What can be dialled of a number: digits, "*", "#", commas (pauses) and one leading "+".
std::string CleanDialNumber(std::string_view number);

/// Asks for the number and hands it to the telephone with the person's name; Msg(165) when there is none.
void DialPhone(Prompter& prompter, Desktop& desktop, const std::string& number, const std::string& caption);

/// The text without its blanks, as "Copy (no spaces)" gives it.
std::string WithoutBlanks(std::string_view text);

/// Which entries of a field's pop-up menu are enabled.
struct FieldMenu {
    bool cut = false;
    bool copy = false;
    bool copyNoSpaces = false;
    bool paste = false;
};
FieldMenu SetMenuForSelection(std::string_view selected, bool writable, bool secret);

}  // namespace bmr::shell
