#include "custody/passphrase.h"

#include "base/errors.h"
#include "base/languageus.h"
#include "store/session.h"

namespace bmr::custody {

using namespace store;

void WipeHashes(Session& session) {
    session.PassHash.Wipe();
    session.PassHashStrong.Wipe();
    session.MasterKey.Wipe();
    cry::WipeString(session.user.PwVerifier);
    cry::WipeString(session.user.WrappedKey);
}

std::string PromptTitle(const Session& session) {
    const auto name = session.DatabasePath.filename().u8string();
    const std::string utf8(name.begin(), name.end());
    // A name with characters that code page 1252 lacks stands as it is.
    const auto bytes = ToBytes(utf8);
    return "Database: " + (bytes ? ToUtf8(UpperCase(*bytes)) : utf8);
}

void StandBy(Session& session) {
    Prompter& prompter = session.ports.prompter;
    prompter.Comment("Stand By", true);
    prompter.PauseAfterFailure();
    prompter.Comment("", false);
}

bool RetryAfterFailure(Session& session, int error) {
    ++session.PwAttempts;
    Box box = MessageBox(-error, BoxIcon::Warning);
    const bool last = session.PwAttempts >= kMostAttempts;
    if (!last) {
        box.buttons = Buttons::RetryCancel;
        box.standard = Answer::Retry;
    }
    const bool retry = session.ports.prompter.Ask(box) == Answer::Retry && !last;
    // The pause comes on every way on, or Cancel and a new opening would be the fast way to guess.
    StandBy(session);
    return retry;
}

int RequestPassphrase(Session& session, bool newOne) {
    PassphraseRequest request;
    request.title = PromptTitle(session);
    request.prompt = Msg(newOne ? 99 : 159);
    request.confirm = newOne;
    request.checkQuality = newOne;
    for (;;) {
        Secret typed;
        if (!session.ports.prompter.AskSecret(request, typed) || typed.empty())
            return MessageNumber::Cancelled;
        if (typed.size() >= kShortestPassphrase) {
            session.PassHash = cry::HashPassphrase(typed.view());
            session.PassHashStrong = cry::HashStrong(typed.view());
            return 0;
        }
        typed.Wipe();
        if (!RetryAfterFailure(session, MessageNumber::PassphraseTooShort))
            return session.DatabaseOpen ? MessageNumber::PassphraseTooShort : kQuitProgram;
    }
}

}  // namespace bmr::custody
