#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "base/clock.h"
#include "base/ports.h"
#include "base/random.h"
#include "crypto/cry.h"
#include "crypto/secret.h"
#include "engine/db.h"
#include "store/bucketorder.h"
#include "store/section.h"
#include "store/settings.h"
#include "store/undolog.h"

namespace bmr::store {

/// The format version that this program writes and the highest that it opens.
inline constexpr int kDatabaseVersion = 201;

/// The user who is logged in. `wrappedKey` and `verifier` are as stored.
struct CurrentUser {
    std::int32_t fPK = 0;
    std::uint8_t UserNumber = 0;
    Bytes PwVerifier;
    Bytes WrappedKey;
    bool UserFlag1 = false;
    bool UserFlag2 = false;
    std::int32_t UserValue = 0;
    Bytes UserName;
};

/// The second, weaker secret that guards sections.
struct PinRecord {
    std::uint8_t PinKind = 0;
    Secret Pin;
    std::int32_t PinApp = 0;  ///< bit k: section 11 + k asks for the PIN
    bool PINeveryaccess = false;
    bool Unread = false;  ///< the stored record does not decode: it is left, and every section is guarded
};

/// The outside world, handed in once.
struct Ports {
    Prompter& prompter;
    Clock& clock;
    RandomSource& random;
    Registry& registry;
    Desktop* desktop = nullptr;  ///< none where nothing outside is to be started
};

/// All state of one sitting. Passed by reference; there is no other shared state.
struct Session {
    explicit Session(Ports outside) : ports(outside), cipher(outside.random) {}
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    Ports ports;
    cry::CipherState cipher;

    std::filesystem::path DatabasePath;  ///< empty when none is open
    std::unique_ptr<engine::Database>
        ProgramDb;              ///< the one connection, from the start of the opening to the close
    bool DatabaseOpen = false;  ///< open and logged in

    Settings settings;
    bool SettingsUnread = false;  ///< the settings row did not decode: left as it is until the user stores
    UserLabels userLabels = BuiltInUserLabels();
    CurrentUser user;
    PinRecord pin;

    BucketOrder bucketOrder;
    UndoLog undo;  ///< what the user can take back since the file was opened

    /// While false, private records are left out of all lists. False until the settings are read, then the
    /// stored value; stored with the settings.
    bool ShowPrivate = false;
    std::uint8_t SectionCode = Section::None;
    std::int32_t PinPassed = 0;      ///< bit k: the PIN of section 11 + k was given in this sitting
    bool CalendarDirty = false;      ///< a task changed: the calendar's task pane is to be redrawn
    bool DefaultPathChosen = false;  ///< the default file is being made: ask for no name
    bool ending = false;             ///< the program is going down: no question, no store any more

    /// The kind that was pressed when the confidential section was last left; 0 none.
    std::int32_t confidentialKind = 0;
    /// The view in which the calendar was last left; none: the preferences tell.
    std::optional<std::uint8_t> calendarView;

    // Only while a prompt is answered and the keys are loaded; wiped on every path.
    Secret PassHash;
    Secret PassHashStrong;
    Secret MasterKey;
    int PwAttempts = 0;
};

}  // namespace bmr::store
