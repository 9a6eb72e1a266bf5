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
        case engine::EngineNumber::Unsure:
            return "The disk failed, and nobody can say now whether the last change is stored. Close the "
                   "database and open it again to see.";
        default:
            return "The file could not be read or written.";
    }
}

const char* const kStoredInDoubt =
    "The change is stored, but the disk reported a failure behind it. Make a copy of the database on another "
    "disk.";

void TellDoubt(Session& session) {
    if (!session.ProgramDb || !session.ProgramDb->TakeDoubt()) return;
    Box box;
    box.text = kStoredInDoubt;
    box.icon = BoxIcon::Warning;
    session.ports.prompter.Ask(box);
}

void TellOpenFailure(Session& session, int number) {
    Box box;
    box.text = ExplainOpenFailure(number);
    box.icon = BoxIcon::Warning;
    session.ports.prompter.Ask(box);
}

}  // namespace bmr::custody
