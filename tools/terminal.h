#pragma once

#include <string>

#include "crypto/secret.h"

namespace bmr::tools {

/// No core dumps, and no other process of the user may attach: a dump would hold the keys.
void HardenProcess();

/// `text` (UTF-8) on one line, every character that could steer a terminal replaced by "?".
std::string Printable(const std::string& text);

/// Where passphrases and other secrets come from: the terminal, without echo, or lines of a file descriptor.
class SecretInput {
  public:
    /// `fd` below 0 asks on the terminal. `what` and `option` name the secret and its descriptor in problems.
    explicit SecretInput(int fd, std::string what = "passphrase", std::string option = "--passphrase-fd")
        : fd_(fd), what_(std::move(what)), option_(std::move(option)) {}

    /// A person sits there, who can be asked twice.
    bool Interactive() const { return fd_ < 0; }

    /// One line, in code page 1252, without its line end. False on an end of input, on a break-off and on a
    /// character that the page does not hold; `Problem` then says why in plain words.
    bool Read(const std::string& prompt, Secret& typed);

    /// The same in UTF-8, whatever its characters: for a value of a record.
    bool ReadWords(const std::string& prompt, Secret& typed) { return ReadLine(prompt, false, typed); }

    /// A question to be answered by y or n; everything else is no. REQUIRES: Interactive.
    bool Confirm(const std::string& question);

    const std::string& Problem() const { return problem_; }

  private:
    bool ReadLine(const std::string& prompt, bool echo, Secret& line);
    int fd_;
    std::string what_;
    std::string option_;
    std::string problem_;
};

}  // namespace bmr::tools
