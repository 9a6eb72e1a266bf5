#include "shell/helpers.h"

#include <algorithm>

#include "base/bytes.h"

namespace bmr::shell {
namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// A letter or digit of code page 1252: letters are what has a case, and the sharp s.
bool IsWord(char c) {
    return IsDigit(c) || ByteAt({&c, 1}, 0) == 0xDF || UpperCase({&c, 1}) != LowerCase({&c, 1});
}

bool IsSchemeChar(char c) {
    return IsDigit(c) || (c >= 'a' && c <= 'z') || c == '+' || c == '-' || c == '.';
}

void Tell(Prompter& prompter, std::string text) {
    prompter.Ask({.number = 0,
                  .text = std::move(text),
                  .buttons = Buttons::Ok,
                  .icon = BoxIcon::Warning,
                  .title = {}});
}

}  // namespace

std::string NumericOnly(std::string_view text, char decimalPoint) {
    while (!text.empty() && !IsDigit(text.back()) && text.back() != decimalPoint)
        text.remove_suffix(1);
    return std::string(text);
}

bool ValidEmail(std::string& text) {
    text = std::string(TrimBlanks(text));
    const auto bytes = ToBytes(text);
    if (!bytes || bytes->empty() || !IsWord(bytes->front()) || !IsWord(bytes->back())) return false;
    const auto passes = [](char c) { return IsWord(c) || c == '@' || c == '.' || c == '-'; };
    return std::all_of(bytes->begin(), bytes->end(), passes) && bytes->find('@') != Bytes::npos;
}

std::optional<std::string> WebAddress(std::string_view address) {
    const std::string_view trimmed = TrimBlanks(address);
    const auto control = [](char c) { return static_cast<unsigned char>(c) < 32 || c == 127; };
    if (trimmed.empty() || std::any_of(trimmed.begin(), trimmed.end(), control)) return std::nullopt;

    const auto colon = trimmed.find("://");
    const std::string scheme = colon == std::string_view::npos ? "" : LowerCase(trimmed.substr(0, colon));
    const bool begins = !scheme.empty() && std::all_of(scheme.begin(), scheme.end(), IsSchemeChar);
    if (!begins) return "http://" + std::string(trimmed);
    if (scheme != "http" && scheme != "https" && scheme != "ftp") return std::nullopt;
    return std::string(trimmed);
}

void OpenWebsite(Prompter& prompter, Desktop& desktop, std::string_view address) {
    if (TrimBlanks(address).empty()) return;
    const auto url = WebAddress(address);
    if (!url) {
        Tell(prompter, "Only addresses of the kinds http, https and ftp are opened.");
    } else if (!desktop.OpenWeb(*url)) {
        Tell(prompter, "The address could not be opened: no program on this desktop takes it.");
    }
}

void SendMail(Prompter& prompter, Desktop& desktop, std::string address) {
    if (!ValidEmail(address)) {
        prompter.Ask(MessageBox(163));
    } else if (!desktop.OpenMail(address)) {
        Tell(prompter, "No mail program could be started.");
    }
}

std::string CleanDialNumber(std::string_view number) {
    std::string dialled;
    for (const char c : number) {
        if (IsDigit(c) || c == '*' || c == '#' || c == ',' || (c == '+' && dialled.empty())) dialled += c;
    }
    return dialled;
}

void DialPhone(Prompter& prompter, Desktop& desktop, const std::string& number, const std::string& caption) {
    if (number.empty()) {
        prompter.Ask(MessageBox(165));
        return;
    }
    const std::string prompt =
        number.front() == '+' ? "Phone number (no leading \"+\")" : std::string("Phone number ");
    const auto answer = prompter.InputBox("Dial", prompt, number);
    if (!answer || answer->empty()) return;
    const std::string dialled = CleanDialNumber(*answer);
    if (dialled.empty()) {
        prompter.Ask(MessageBox(165));
    } else if (!desktop.Dial(dialled, caption)) {
        Tell(prompter, "The number could not be dialled: no program on this desktop takes it.");
    }
}

std::string WithoutBlanks(std::string_view text) {
    std::string out(text);
    std::erase(out, ' ');
    return out;
}

FieldMenu SetMenuForSelection(std::string_view selected, bool writable, bool secret) {
    const bool copies = !selected.empty() && !secret;
    return {copies && writable, copies, copies && selected.find(' ') != std::string_view::npos, writable};
}

}  // namespace bmr::shell
