#pragma once

#include <filesystem>

#include "engine/db.h"

namespace bmr::store {
struct Session;
}

namespace bmr::custody {

/// 0, the engine's number, or -1 for an empty path. A damaged file offers the repair (Msg 46). On an error
/// `DatabasePath` is cleared.
[[nodiscard]] int TestOpen(store::Session& session, const std::filesystem::path& path,
                           engine::Access access = engine::Access::Write);
/// Repairs the file at `DatabasePath` and tests it again.
[[nodiscard]] int RepairAndTest(store::Session& session);

/// Asks for a file and tests it; sets `DatabasePath`. `Cancelled`; any other error was shown.
[[nodiscard]] int OpenFileDialog(store::Session& session);

/// Asks for a name (unless `DefaultPathChosen`) and a new passphrase, makes the file; the user is in as
/// `Admin`. An existing file is deleted only once the new passphrase stands. May give `Cancelled`. A failure
/// leaves no new file behind.
[[nodiscard]] int NewDatabase(store::Session& session);

/// Passphrase, keys, version, settings, duplicates, registry: the database at `DatabasePath` is open
/// afterwards. 0, an error number (`Cancelled`; others were shown), or `kQuitProgram` when the program is
/// to end. After a failure no database is open, the keys are wiped and `DatabasePath` is empty. Lost rows are
/// made anew and duplicates removed, unless it is opened for reading: then the file stays as it is. REQUIRES:
/// no open database.
[[nodiscard]] int OpenDatabaseFile(store::Session& session, engine::Access access = engine::Access::Write);

/// Writes the system record and the settings, closes the file and wipes the keys. The caller has closed the
/// section. Never leaves the database open, and empties `DatabasePath`; an error number, told in a box unless
/// the program is ending, says that this last write failed: what was stored before stands.
int CloseDatabase(store::Session& session);

/// Closes, compacts into a file beside the database (its last three characters "tmp"), puts that in its
/// place, Msg(166), opens again; where the compacting failed, the old file. `FileNotFound` when it is gone.
/// The caller has closed the section.
[[nodiscard]] int RepairAndCompact(store::Session& session);

/// Deletes later copies of section rows with an fT1 that stood before (Null never counts). The number
/// deleted, or a negative number on an error.
int RemoveDuplicates(store::Session& session);

}  // namespace bmr::custody
