#pragma once

#include <string>

#include "crypto/secret.h"

namespace bmr::tools {

/// What the operating system gives: one implementation each for POSIX and for Windows.

enum class LineResult { Read, NoInput, TooLong, NoTerminal };

/// The longest line that is taken for a passphrase, in bytes.
inline constexpr std::size_t kLongestLine = 4096;

/// One line of UTF-8 from the controlling terminal, whatever standard input is.
LineResult ReadTerminalLine(const std::string& prompt, bool echo, Secret& line);

/// One line from a descriptor, byte by byte, so that the next reader finds the rest.
LineResult ReadFdLine(int fd, Secret& line);

}  // namespace bmr::tools
