#include "kit/failure.h"

#include "base/languageus.h"
#include "store/session.h"

namespace bmr::kit {

void TellFailure(store::Session& session, int error, const QString& what) {
    constexpr int kCancelled = -98;
    if (error == 0 || error == kCancelled) return;
    if (error < 0) {
        session.ports.prompter.Ask(MessageBox(-error, BoxIcon::Critical));
        return;
    }
    std::string text = what.toStdString();
    if (session.ProgramDb && !session.ProgramDb->LastError().empty())
        text += "\r\n\r\n" + session.ProgramDb->LastError();
    text += " (" + std::to_string(error) + ")";
    session.ports.prompter.Ask({0, text, Buttons::Ok, BoxIcon::Critical, Answer::Ok, ""});
}

}  // namespace bmr::kit
