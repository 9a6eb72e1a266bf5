#pragma once

#include <string>
#include <vector>

#include "base/ports.h"
#include "crypto/secret.h"
#include "terminal.h"

namespace bmr::tools {

/// Answers for a command line: nobody is there to press buttons, so every question gets the careful answer
/// (no repair, no retry, no overwriting), and the words of the last box are kept for the error line.
class ToolPrompter final : public Prompter {
  public:
    explicit ToolPrompter(SecretInput& input) : input_(input) {}

    /// From now on the passphrase of the opening is kept, and given again when the same one is asked for:
    /// a person who changes it, or compacts the file, types it once.
    void KeepCurrent() { keep_ = true; }

    Answer Ask(const Box& box) override;
    std::optional<std::string> InputBox(const std::string&, const std::string&, const std::string&) override {
        return std::nullopt;
    }
    bool AskSecret(const PassphraseRequest& request, Secret& typed) override;
    std::optional<std::filesystem::path> AskOpenFile(const FileRequest&) override { return std::nullopt; }
    std::optional<std::filesystem::path> AskSaveFile(const FileRequest&) override { return std::nullopt; }
    void Comment(const std::string&, bool) override {}
    void PauseAfterFailure() override;

    /// The last box that was shown, number 0 and no text when there was none.
    const Box& LastBox() const { return last_; }

    /// The texts of all boxes that warned of something and asked nothing.
    const std::vector<std::string>& Warnings() const { return warnings_; }

    /// Why the passphrase could not be read, empty when it could.
    const std::string& Problem() const { return problem_; }

  private:
    bool AskNew(const PassphraseRequest& request, Secret& typed);

    SecretInput& input_;
    bool keep_ = false;
    Secret current_;
    Box last_;
    std::vector<std::string> warnings_;
    std::string problem_;
};

/// Keeps nothing outside the file: which database was opened last is the window's business.
class NoRegistry final : public Registry {
  public:
    std::string Read(const std::string&) const override { return {}; }
    void Write(const std::string&, const std::string&) override {}
};

}  // namespace bmr::tools
