#pragma once

#include <cstdint>
#include <filesystem>

#include "backup/compressfile.h"
#include "base/serialdate.h"

namespace bmr::backup {

struct MadeBackup {
    std::filesystem::path file;
    std::uint64_t bytes = 0;
};

/// Backs a closed database up into a folder that exists, under the name of `now`. A journal that a killed
/// program left is played back first, and nobody may write meanwhile; a damaged database is copied as it is.
/// Besides what `CompressFile` refuses: a name that would come back as another (".bma"), and a database that
/// is in use. REQUIRES: the database is not open in this process.
Result<MadeBackup> MakeBackup(const std::filesystem::path& database, const std::filesystem::path& folder,
                              DateValue now, const CompressPorts& ports = {});

}  // namespace bmr::backup
