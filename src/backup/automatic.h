#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "backup/compressfile.h"
#include "base/ports.h"
#include "base/serialdate.h"

namespace bmr::store {
struct Session;
}

namespace bmr::backup {

/// What is kept of backups outside the database, for this machine.
struct BackupSettings {
    std::filesystem::path folder;  ///< `BackupPath`; empty until one was chosen
    bool automatic = false;        ///< a backup whenever a changed database is closed
    int warnAfterDays = 0;         ///< without a backup; 0 never
};
BackupSettings LoadBackupSettings(const Registry& registry);
void StoreBackupSettings(Registry& registry, const BackupSettings& settings);

/// Whether a row of a section or a list of categories was changed since the database was opened. To be asked
/// before it is closed, and before it is compacted, which opens it anew.
bool SectionsChanged(const store::Session& session);

/// The folder of the automatic backups within that of the others.
std::filesystem::path AutomaticFolder(const std::filesystem::path& folder);

struct AutomaticBackup {
    Error error;              ///< number 0: made, and unpacked to the same bytes
    bool folderGone = false;  ///< the folder of the backups is not there
    std::filesystem::path file;
    std::vector<std::filesystem::path> removed;  ///< older ones that it took the place of
};
/// Backs a closed database up into the automatic folder, which is made where only it is missing, proves the
/// backup by its unpacked bytes, and then removes the automatic backups of this database that need not be
/// kept. Asks nothing.
AutomaticBackup BackUpAutomatically(const std::filesystem::path& database,
                                    const std::filesystem::path& folder, DateValue now,
                                    const Progress& progress = {});

/// Which of these moments, the newest first, need not be kept: what is not the last of its day, week (from
/// Monday) or month among the latest 7 days, 4 weeks and 12 months that have any. Places in `moments`.
std::vector<std::size_t> Superseded(const std::vector<DateValue>& moments);

/// When this database was last backed up, automatically or not, by the names in these folders.
std::optional<DateValue> LastBackup(const std::filesystem::path& database,
                                    const std::filesystem::path& folder);

/// Whether it is time to warn; a database that never was backed up counts as overdue.
bool BackupOverdue(const BackupSettings& settings, std::optional<DateValue> last, Day today);

}  // namespace bmr::backup
