#pragma once

#include <QString>
#include <cstdint>

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

/// What is to become of the changes of an editor that is being left.
enum class Leaving : std::uint8_t { Discard, Store, Stay };

/// Asks for it; the default answer keeps the changes, and Esc goes back to the editor.
Leaving AskDiscard(store::Session& session);
/// The same of an editor where No goes on editing, and stores nothing: whether they are to be given up.
bool AskDiscardOrStay(store::Session& session);

}  // namespace bmr::kit
