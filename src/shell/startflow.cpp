#include "shell/startflow.h"

#include <string>

#include "base/ports.h"
#include "custody/lifecycle.h"
#include "custody/openfailure.h"
#include "custody/passphrase.h"
#include "store/session.h"

namespace bmr::shell {

namespace {

namespace fs = std::filesystem;

StartOutcome OutcomeOf(int error) {
    if (error == 0) return StartOutcome::Open;
    return error == custody::kQuitProgram ? StartOutcome::Quit : StartOutcome::ShowMenuDB;
}

void ShowUnsuccessful(store::Session& session) {
    session.ports.prompter.Ask(MessageBox(97, BoxIcon::Warning));
}

/// Makes the default file in its folder, asking for nothing but the passphrase.
StartOutcome MakeDefaultFile(store::Session& session, const Environment& environment) {
    std::error_code error;
    fs::create_directories(DefaultFolder(environment), error);
    if (error) {
        custody::TellOpenFailure(session, engine::EngineNumber::NoPermission);
        return StartOutcome::ShowMenuDB;
    }
    session.DatabasePath = DefaultFile(environment);
    session.DefaultPathChosen = true;
    return OutcomeOf(custody::NewDatabase(session));
}

/// Msg(160) with the real path below it. Esc is the third button: who has not answered has not asked for a
/// file.
Box FirstRunQuestion(const Environment& environment) {
    Box box = MessageBox(160, BoxIcon::Question);
    fs::path file = DefaultFile(environment);
    const std::u8string path = file.make_preferred().u8string();
    box.text += "\r\n\r\n" + std::string(path.begin(), path.end());
    box.buttons = Buttons::YesNoCancel;
    box.standard = Answer::No;
    box.words[2] = "More ways";
    return box;
}

}  // namespace

fs::path DefaultFolder(const Environment& environment) {
    return environment.documentsFolder / "Brindlemere";
}

fs::path DefaultFile(const Environment& environment) {
    return DefaultFolder(environment) / "PersonalData.bmr";
}

StartOutcome Start(store::Session& session, const Environment& environment) {
    const std::string recent = session.ports.registry.Read("MostRecentFiles/1");
    const fs::path path(std::u8string(recent.begin(), recent.end()));
    const int unusable = custody::TestOpen(session, path);
    if (unusable == 0) return OutcomeOf(custody::OpenDatabaseFile(session));

    std::error_code ignored;  // a folder that cannot be looked at is none of ours
    if (recent.empty() && !fs::exists(DefaultFolder(environment), ignored)) {
        const Answer answer = session.ports.prompter.Ask(FirstRunQuestion(environment));
        if (session.ending) return StartOutcome::Quit;  // the end of the program is no consent
        return answer == Answer::No ? MakeDefaultFile(session, environment) : StartOutcome::ShowMenuDB;
    }
    // A file that has gone is no news worth a box, and a damaged one was told; any other cause is.
    if (unusable > 0 && unusable != engine::EngineNumber::NotFound &&
        unusable != engine::EngineNumber::Damaged)
        custody::TellOpenFailure(session, unusable);
    return StartOutcome::ShowMenuDB;
}

StartOutcome MenuNewDB(store::Session& session) {
    return OutcomeOf(custody::NewDatabase(session));
}

StartOutcome MenuOldDB(store::Session& session) {
    if (custody::OpenFileDialog(session) != 0) return StartOutcome::ShowMenuDB;
    const int error = custody::OpenDatabaseFile(session);
    if (error == 0) return StartOutcome::Open;
    if (error != custody::kQuitProgram) ShowUnsuccessful(session);
    return StartOutcome::Quit;
}

StartOutcome EndStart(store::Session& session) {
    if (session.DatabaseOpen) return StartOutcome::Open;
    ShowUnsuccessful(session);
    return StartOutcome::Empty;
}

}  // namespace bmr::shell
