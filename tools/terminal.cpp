#include "terminal.h"

#include "base/bytes.h"
#include "base/languageus.h"
#include "crypto/cry.h"
#include "terminal_system.h"

namespace bmr::tools {
namespace {

/// UTF-8 to code page 1252, leaving no copy behind.
bool ToPage(const Secret& line, const std::string& what, Secret& typed, std::string& problem) {
    auto bytes = ToBytes(line.view());
    if (!bytes) {
        const auto found = FindUnmappable(line.view());
        problem = "The " + what + " cannot be used: character " + std::to_string(found.front().position + 1) +
                  " is not in code page 1252.";
        return false;
    }
    typed = Secret(*bytes);
    cry::WipeString(*bytes);
    return true;
}

}  // namespace

std::string Printable(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned code = ByteAt(text, i);
        const unsigned next = i + 1 < text.size() ? ByteAt(text, i + 1) : 0;
        if (code == 0xC2 && next >= 0x80 && next < 0xA0) {  // the controls above 128
            out += '?';
            ++i;
        } else if (code == '\r' && next == '\n') {
            continue;
        } else if (code == '\n' || code == '\r' || code == '\t') {
            out += ' ';
        } else {
            out += code < 32 || code == 127 ? '?' : text[i];
        }
    }
    return out;
}

bool SecretInput::ReadLine(const std::string& prompt, bool echo, Secret& line) {
    const LineResult result = Interactive() ? ReadTerminalLine(prompt, echo, line) : ReadFdLine(fd_, line);
    if (result == LineResult::Read) return true;
    line.Wipe();
    if (result == LineResult::NoTerminal)
        problem_ = "There is no terminal to ask for the " + what_ + ": use " + option_ + ".";
    else if (result == LineResult::TooLong)
        problem_ = "The " + what_ + " is too long.";
    else
        problem_ = Msg(45);
    return false;
}

bool SecretInput::Read(const std::string& prompt, Secret& typed) {
    Secret line;
    return ReadLine(prompt, false, line) && ToPage(line, what_, typed, problem_);
}

bool SecretInput::Confirm(const std::string& question) {
    Secret line;
    return ReadLine(question + " [y/N] ", true, line) && !line.empty() &&
           (line.view()[0] == 'y' || line.view()[0] == 'Y');
}

}  // namespace bmr::tools
