#pragma once

#include <filesystem>

namespace bmr::store {
struct Session;
}

namespace bmr::shell {

/// Facts of the machine that the start needs.
struct Environment {
    std::filesystem::path documentsFolder;
};

enum class StartOutcome {
    Open,        ///< a database is open: enable the menus, go to the start section
    ShowMenuDB,  ///< show `frmMenuDB`
    Quit,        ///< the program ends
    Empty,       ///< no database; the window stands empty
};

/// The folder of the default file, and the file.
std::filesystem::path DefaultFolder(const Environment& environment);
std::filesystem::path DefaultFile(const Environment& environment);

/// Looks for the most recent database and opens it; at a first run (no file known, no default folder) offers
/// to make the default file.
StartOutcome Start(store::Session& session, const Environment& environment);

/// `cmdNewDB` of `frmMenuDB`: Open, Quit, or ShowMenuDB when the form is to stay.
StartOutcome MenuNewDB(store::Session& session);
/// `cmdOldDB`: Open, ShowMenuDB while no usable file was chosen, and Quit after Msg(97) when the file did not
/// open.
StartOutcome MenuOldDB(store::Session& session);

/// What the window stands with once `frmMenuDB` has gone: Open, or Empty after Msg(97).
StartOutcome EndStart(store::Session& session);

}  // namespace bmr::shell
