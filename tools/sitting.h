#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include "base/clock.h"
#include "crypto/systemrandom.h"
#include "store/session.h"
#include "toolprompter.h"

namespace bmr::tools {

/// Ends a command with one line on standard error. Status 2 is a wrong passphrase, 1 everything else.
class Failure : public std::runtime_error {
  public:
    explicit Failure(const std::string& text, int status = 1) : std::runtime_error(text), status_(status) {}
    int status() const { return status_; }

  private:
    int status_;
};

/// One opened database with all that a session needs. What is not closed by `Close` is let go as it stands:
/// a command that only reads writes nothing at its end.
class Sitting {
  public:
    explicit Sitting(int passphraseFd);
    ~Sitting();
    Sitting(const Sitting&) = delete;
    Sitting& operator=(const Sitting&) = delete;

    /// Makes a new database, which must not exist yet.
    void Create(const std::filesystem::path& path);
    /// Tests the file, asks for the passphrase once and opens. For `Read` the file stays as it is; that a
    /// journal was played back is told on standard error.
    void Open(const std::filesystem::path& path, engine::Access access = engine::Access::Write);
    /// Writes the system record and the settings, and closes. What the command was for is done by then, so a
    /// failure is no failure of the command: it, and all other warnings so far, go to standard error.
    void Close();

    store::Session& session() { return session_; }
    ToolPrompter& prompter() { return prompter_; }

    /// Throws when `error` is none of 0: with the words of the last box, the reason why no passphrase came,
    /// or the engine's, in this order.
    void Check(int error);

  private:
    SecretInput input_;
    ToolPrompter prompter_;
    SystemClock clock_;
    cry::SystemRandom random_;
    NoRegistry registry_;
    store::Session session_;
};

}  // namespace bmr::tools
