#pragma once

#include <QString>

namespace bmr::store {
struct Session;
}

namespace bmr::kit {

/// Tells of an error number: the message for a negative one, else `what` ("The task was not stored.") with
/// the engine's own words. Nothing for 0 and for a cancelled prompt.
void TellFailure(store::Session& session, int error, const QString& what);

/// Before an editor opens on a record ("memo") that did not decode: its store would end what might still be
/// saved by other means. True when the person wants that; the default answer does not.
bool AskToOverwrite(store::Session& session, const QString& record);

/// Whether the changes of an editor are to be given up; the default answer keeps them. `stays`: No goes on
/// editing, and the buttons say so.
bool AskDiscard(store::Session& session, bool stays = false);

}  // namespace bmr::kit
