#include "backup/makebackup.h"

#include <chrono>
#include <system_error>

#include "backup/backupname.h"
#include "engine/db.h"

namespace bmr::backup {

namespace fs = std::filesystem;

namespace {

/// Longer ago than any backup takes.
constexpr std::chrono::hours kOld{24};

/// Takes away what killed programs left of this database's backups.
void RemoveLeftParts(const fs::path& folder, const fs::path& database) {
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(folder, none)) {
        const std::string name = PathText(entry.path().filename());
        if (name.empty() || name.back() != '~') continue;
        const fs::path whole = PathOf(name.substr(0, name.size() - 1) + "z");
        if (!DateOfBackup(whole) || BackupFileName({}, database, *DateOfBackup(whole)) != whole) continue;
        const auto age = fs::file_time_type::clock::now() - entry.last_write_time(none);
        if (!none && age > kOld) fs::remove(entry.path(), none);
    }
}

}  // namespace

Result<MadeBackup> MakeBackup(const fs::path& database, const fs::path& folder, DateValue now,
                              const CompressPorts& ports) {
    const std::string name = PathText(database);
    std::error_code none;
    if (!fs::exists(database, none)) return Error{BackupNumber::NotFound, {}};
    if (name.back() != 'r' && name.back() != 'R')
        return Error{BackupNumber::Failed,
                     "Only a .bmr file comes back under its own name. Give the file that ending first."};
    if (!fs::is_directory(folder, none))
        return Error{BackupNumber::Failed, "The folder " + PathText(folder) + " does not exist."};
    if (fs::file_size(database, none) == 0) return Error{BackupNumber::ZeroLength, {}};
    // Held until the file is packed; what is no database at all cannot be locked and is copied nevertheless.
    const auto lock = engine::Database::Open(database, engine::Access::Read);
    if (!lock && lock.error().number != engine::EngineNumber::Damaged) return lock.error();

    RemoveLeftParts(folder, database);
    MadeBackup made{BackupFileName(folder, database, now), 0};
    const auto bytes = CompressFile(true, database, made.file, ports);
    if (!bytes) return bytes.error();
    made.bytes = *bytes;
    return made;
}

}  // namespace bmr::backup
