#include "kit/failure.h"

#include <QCoreApplication>

#include "base/errors.h"
#include "base/languageus.h"
#include "custody/openfailure.h"
#include "store/session.h"

namespace bmr::kit {

namespace {

std::string KeepEditing() {
    return QCoreApplication::translate("failure", "Keep editing").toStdString();
}

}  // namespace

void TellFailure(store::Session& session, int error, const QString& what) {
    if (error == 0 || error == MessageNumber::Cancelled) return;
    if (error < 0) {
        session.ports.prompter.Ask(MessageBox(-error, BoxIcon::Critical));
        return;
    }
    if (error == engine::EngineNumber::Unsure) return custody::TellOpenFailure(session, error);
    std::string text = what.toStdString();
    if (session.ProgramDb && !session.ProgramDb->LastError().empty())
        text += "\r\n\r\n" + session.ProgramDb->LastError();
    text += " (" + std::to_string(error) + ")";
    session.ports.prompter.Ask({0, text, Buttons::Ok, BoxIcon::Critical, Answer::Ok, ""});
}

bool AskToOverwrite(store::Session& session, const QString& record) {
    Box box;
    box.text =
        QCoreApplication::translate(
            "failure",
            "This %1 cannot be read: what the file holds of it is damaged. Whatever you save now takes "
            "the place of what is there. Write the %1 anew?")
            .arg(record)
            .toStdString();
    box.buttons = Buttons::YesNo;
    box.icon = BoxIcon::Warning;
    box.standard = Answer::No;
    return session.ports.prompter.Ask(box) == Answer::Yes;
}

Leaving AskDiscard(store::Session& session) {
    Box box = MessageBox(20, BoxIcon::Question);
    box.buttons = Buttons::YesNoCancel;
    box.standard = Answer::No;
    box.words[2] = KeepEditing();
    switch (session.ports.prompter.Ask(box)) {
        case Answer::Yes:
            return Leaving::Discard;
        case Answer::No:
            return Leaving::Store;
        default:
            return Leaving::Stay;
    }
}

bool AskDiscardOrStay(store::Session& session) {
    Box box = MessageBox(20, BoxIcon::Question);
    box.buttons = Buttons::YesNo;
    box.standard = Answer::No;
    box.words[1] = KeepEditing();
    return session.ports.prompter.Ask(box) == Answer::Yes;
}

}  // namespace bmr::kit
