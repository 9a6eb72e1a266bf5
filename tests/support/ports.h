#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "base/clock.h"
#include "base/ports.h"
#include "crypto/secret.h"

namespace bmr::test {

/// Stands still until a test moves it.
class FixedClock final : public Clock {
  public:
    explicit FixedClock(DateValue at = {46347.5}) : now(at) {}  // 21 November 2026, noon
    DateValue Now() const override { return now; }
    std::int64_t MonotonicMs() const override { return monotonic; }

    DateValue now;
    std::int64_t monotonic = 0;
};

/// Answers questions from a script and fails the test on one that it did not expect, or that was never asked.
class ScriptedPrompter final : public Prompter {
  public:
    ~ScriptedPrompter() override {
        EXPECT_TRUE(answers.empty()) << answers.size() << " expected questions were not asked, first Msg "
                                     << answers.front().number;
        EXPECT_TRUE(secrets.empty()) << "a passphrase was not asked for";
        EXPECT_TRUE(inputs.empty()) << "an input box was not shown";
        EXPECT_TRUE(files.empty()) << "a file was not asked for";
    }

    /// Expects the box of message `number` (0 for one without a number) and answers it.
    ScriptedPrompter& Expect(int number, Answer answer = Answer::Ok) {
        answers.push_back({number, answer});
        return *this;
    }
    /// The next passphrase prompt gets `text`; nothing cancels it.
    ScriptedPrompter& Type(std::optional<std::string> text) {
        secrets.push_back(std::move(text));
        return *this;
    }

    Answer Ask(const Box& box) override {
        shown.push_back(box);
        if (onAsk) onAsk();
        if (answers.empty() || answers.front().number != box.number) {
            ADD_FAILURE() << "unexpected box " << box.number << ": " << box.text;
            return box.buttons == Buttons::YesNo ? Answer::No : Answer::Cancel;
        }
        const Answer answer = answers.front().answer;
        answers.pop_front();
        return answer;
    }
    std::optional<std::string> InputBox(const std::string& title, const std::string&,
                                        const std::string&) override {
        if (inputs.empty()) {
            ADD_FAILURE() << "unexpected input box " << title;
            return std::nullopt;
        }
        if (onInput) onInput();
        auto text = std::move(inputs.front());
        inputs.pop_front();
        return text;
    }
    bool AskSecret(const PassphraseRequest& request, Secret& typed) override {
        requests.push_back(request);
        if (secrets.empty()) {
            ADD_FAILURE() << "unexpected passphrase prompt " << request.prompt;
            return false;
        }
        const auto text = std::move(secrets.front());
        secrets.pop_front();
        if (onSecret) onSecret();
        if (!text) return false;
        typed = Secret(*text);
        return true;
    }
    std::optional<std::filesystem::path> AskOpenFile(const FileRequest& request) override {
        return AskFile(request);
    }
    std::optional<std::filesystem::path> AskSaveFile(const FileRequest& request) override {
        return AskFile(request);
    }
    void Comment(const std::string& text, bool) override { comments.push_back(text); }
    void PauseAfterFailure() override { ++pauses; }

    struct Scripted {
        int number;
        Answer answer;
    };
    std::deque<Scripted> answers;
    std::deque<std::optional<std::string>> secrets;
    std::deque<std::optional<std::string>> inputs;
    std::deque<std::optional<std::filesystem::path>> files;
    std::vector<Box> shown;
    std::function<void()> onAsk;  ///< what happens while a box stands
    std::vector<PassphraseRequest> requests;
    std::vector<std::string> comments;
    int pauses = 0;
    std::function<void()> onSecret;  ///< what happens while a passphrase prompt stands
    std::function<void()> onInput;   ///< while an input box would stand open

  private:
    std::optional<std::filesystem::path> AskFile(const FileRequest& request) {
        if (files.empty()) {
            ADD_FAILURE() << "unexpected file dialog " << request.title;
            return std::nullopt;
        }
        auto file = std::move(files.front());
        files.pop_front();
        return file;
    }
};

class MapRegistry final : public Registry {
  public:
    std::string Read(const std::string& name) const override {
        const auto found = values.find(name);
        return found == values.end() ? std::string() : found->second;
    }
    void Write(const std::string& name, const std::string& value) override { values[name] = value; }

    std::map<std::string, std::string> values;
};

/// Starts nothing and remembers what it should have started.
class RecordingDesktop final : public Desktop {
  public:
    bool OpenWeb(const std::string& url) override { return Take("web " + url); }
    bool OpenMail(const std::string& address) override { return Take("mail " + address); }
    bool Dial(const std::string& number, const std::string& name) override {
        return Take("dial " + number + " for " + name);
    }
    std::vector<std::string> asked;
    bool works = true;

  private:
    bool Take(std::string what) {
        asked.push_back(std::move(what));
        return works;
    }
};

}  // namespace bmr::test
