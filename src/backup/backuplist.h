#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "backup/trailer.h"
#include "base/serialdate.h"

namespace bmr::backup {

/// One file of a folder that is called as a backup is.
struct BackupEntry {
    std::filesystem::path file;
    std::uint64_t bytes = 0;        ///< of the backup
    std::optional<DateValue> date;  ///< as its name tells it
    Trailer trailer;
    std::string path;      ///< of the database, as it was stored; UTF-8
    std::string database;  ///< its bare name
    Error fault;           ///< number 0: the trailer can be read; `TestBackup` tells of the rest
};

/// The backups of a folder, the newest first, those without a date behind them by their names. Reads nothing
/// but their ends.
Result<std::vector<BackupEntry>> ListBackups(const std::filesystem::path& folder);

}  // namespace bmr::backup
