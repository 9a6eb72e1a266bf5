#include "sitting.h"

#include <iostream>
#include <tuple>

#include "base/errors.h"
#include "base/languageus.h"
#include "custody/lifecycle.h"
#include "custody/openfailure.h"
#include "custody/passphrase.h"

namespace bmr::tools {
namespace {

constexpr int kWrongPassphrase = -MessageNumber::NoSuchUser;
constexpr int kTooShort = -MessageNumber::PassphraseTooShort;

/// Whether a save that did not end has left something beside the file.
bool HasJournal(const std::filesystem::path& path) {
    auto journal = engine::FollowLinks(path);
    journal += "-journal";
    std::error_code none;
    const auto size = std::filesystem::file_size(journal, none);
    return !none && size > 0;
}

}  // namespace

Sitting::Sitting(int passphraseFd)
    : input_(passphraseFd), prompter_(input_), session_({prompter_, clock_, random_, registry_}) {
    session_.undo.recording = false;
}

Sitting::~Sitting() {
    session_.ProgramDb.reset();
    cry::WipeBytes(session_.cipher.Keystring);
    cry::WipeBytes(session_.cipher.FieldKey);
}

void Sitting::Create(const std::filesystem::path& path) {
    std::error_code ignored;
    if (std::filesystem::exists(std::filesystem::symlink_status(path, ignored)))
        throw Failure(path.string() + " exists already.");
    session_.DatabasePath = path;
    session_.DefaultPathChosen = true;  // the name is known: no dialog
    Check(custody::NewDatabase(session_));
}

void Sitting::Open(const std::filesystem::path& path, engine::Access access) {
    session_.DatabasePath = path;
    const bool journal = HasJournal(path);
    const int unusable = custody::TestOpen(session_, path, access);
    if (access == engine::Access::Read && journal && !HasJournal(path))
        std::cerr << "bmr: note: a save that was broken off in " << Printable(path.string())
                  << " has been taken back." << std::endl;
    if (unusable != 0) {
        const std::string told = prompter_.LastBox().text;
        throw Failure(path.string() + ": " + (told.empty() ? custody::ExplainOpenFailure(unusable) : told));
    }
    session_.DatabasePath = path;
    const int error = custody::OpenDatabaseFile(session_, access);
    const int told = prompter_.LastBox().number;
    // Nothing shorter than 8 characters ever became a passphrase.
    if (error != 0 && (told == kWrongPassphrase || told == kTooShort))
        throw Failure(Msg(kWrongPassphrase), 2);
    Check(error);
}

void Sitting::Close() {
    std::ignore = custody::CloseDatabase(session_);  // it tells what it could not write
    std::cout.flush();
    for (const std::string& warning : prompter_.Warnings())
        std::cerr << "bmr: warning: " << Printable(warning) << std::endl;
}

void Sitting::Check(int error) {
    if (error == 0) return;
    if (!prompter_.Problem().empty()) throw Failure(prompter_.Problem());
    if (!prompter_.LastBox().text.empty()) throw Failure(prompter_.LastBox().text);
    if (error < 0 && error != custody::kQuitProgram && !Msg(-error).empty()) throw Failure(Msg(-error));
    throw Failure(custody::ExplainOpenFailure(error));
}

}  // namespace bmr::tools
