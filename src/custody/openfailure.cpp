#include "custody/openfailure.h"

#include "store/session.h"

namespace bmr::custody {

using namespace store;

std::string ExplainOpenFailure(int number) {
    switch (number) {
        case engine::EngineNumber::Damaged:
            return "The file is damaged or is not a Brindlemere database.";
        case engine::EngineNumber::InUse:
            return "The file is in use by another program.";
        case engine::EngineNumber::NotFound:
            return "The file was not found.";
        case engine::EngineNumber::NoPermission:
            return "The file may not be opened or written with your permissions.";
        case engine::EngineNumber::DiskFull:
            return "The disk is full.";
        default:
            return "The file could not be read or written.";
    }
}

void TellOpenFailure(Session& session, int number) {
    Box box;
    box.text = ExplainOpenFailure(number);
    box.icon = BoxIcon::Warning;
    session.ports.prompter.Ask(box);
}

}  // namespace bmr::custody
