#pragma once

#include <sqlite3.h>

#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include "base/clock.h"
#include "base/ports.h"
#include "crypto/systemrandom.h"
#include "custody/lifecycle.h"
#include "store/session.h"
#include "tasks/task.h"

namespace bmr::bench {

inline constexpr const char* kPassphrase = "correct Horse 9";

/// Answers the passphrase prompt and nothing else.
class SilentPrompter final : public Prompter {
  public:
    Answer Ask(const Box& box) override { throw std::runtime_error("unexpected box: " + box.text); }
    std::optional<std::string> InputBox(const std::string&, const std::string&, const std::string&) override {
        return std::nullopt;
    }
    bool AskSecret(const PassphraseRequest&, Secret& typed) override {
        if (onSecret) onSecret();
        typed = Secret(std::string_view(kPassphrase));
        return true;
    }
    std::optional<std::filesystem::path> AskOpenFile(const FileRequest&) override { return std::nullopt; }
    std::optional<std::filesystem::path> AskSaveFile(const FileRequest&) override { return std::nullopt; }
    void Comment(const std::string&, bool) override {}
    void PauseAfterFailure() override {}

    std::function<void()> onSecret;  ///< what happens when the prompt would stand there
};

class NoRegistry final : public Registry {
  public:
    std::string Read(const std::string&) const override { return {}; }
    void Write(const std::string&, const std::string&) override {}
};

/// A database made for one benchmark, in a folder of its own.
class BenchDatabase {
  public:
    explicit BenchDatabase(const std::string& name) {
        folder_ = std::filesystem::temp_directory_path() / ("bmr-bench-" + name);
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
        path = folder_ / "bench.bmr";
        session.DatabasePath = path;
        session.DefaultPathChosen = true;
        Check(custody::NewDatabase(session));
    }
    ~BenchDatabase() {
        if (session.DatabaseOpen) custody::CloseDatabase(session);
        std::filesystem::remove_all(folder_);
    }
    BenchDatabase(const BenchDatabase&) = delete;
    BenchDatabase& operator=(const BenchDatabase&) = delete;

    void Open() {
        session.DatabasePath = path;
        Check(custody::OpenDatabaseFile(session));
    }
    void Close() { Check(custody::CloseDatabase(session)); }

    /// What is taken back afterwards is for the programs that measure it: the steps of these rows would be
    /// memory that no list takes.
    void AddTasks(int count) {
        const bool recording = std::exchange(session.undo.recording, false);
        engine::Transaction transaction(*session.ProgramDb);
        for (int i = 0; i < count; ++i) {
            tasks::Task task;
            task.task = "Renew the library card of number " + std::to_string(i);
            task.note = i % 3 == 0 ? "Bring the old one along, and the form." : "";
            task.isPrivate = i % 20 == 0;
            task.priority = i % 3;
            task.hasDueDate = i % 2 == 0;
            task.dueDate = {46300 + i % 400};
            task.category = i % 5;
            Check(tasks::WriteRecord(session, task).error);
        }
        Check(transaction.Commit());
        session.undo.recording = recording;
    }

    static void Check(int error) {
        if (error != 0) throw std::runtime_error("error " + std::to_string(error));
    }

    SystemClock clock;
    cry::SystemRandom random;
    SilentPrompter prompter;
    NoRegistry registry;
    store::Session session{{prompter, clock, random, registry}};
    std::filesystem::path path;

  private:
    std::filesystem::path folder_;
};

/// A bare connection of the engine: what anyone would write without us.
class BareDatabase {
  public:
    explicit BareDatabase(const std::filesystem::path& path) {
        if (sqlite3_open(path.c_str(), &db_) != SQLITE_OK) throw std::runtime_error("bare open");
        for (const char* pragma : {"PRAGMA synchronous=EXTRA", "PRAGMA secure_delete=ON",
                                   "PRAGMA journal_size_limit=0", "PRAGMA locking_mode=EXCLUSIVE"})
            Run(pragma);
    }
    ~BareDatabase() { sqlite3_close(db_); }
    BareDatabase(const BareDatabase&) = delete;
    BareDatabase& operator=(const BareDatabase&) = delete;

    void Run(const char* sql) {
        if (sqlite3_exec(db_, sql, nullptr, nullptr, nullptr) != SQLITE_OK) throw std::runtime_error(sql);
    }
    sqlite3_stmt* Prepare(const char* sql) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(db_, sql, -1, &statement, nullptr) != SQLITE_OK) throw std::runtime_error(sql);
        return statement;
    }

  private:
    sqlite3* db_ = nullptr;
};

}  // namespace bmr::bench
