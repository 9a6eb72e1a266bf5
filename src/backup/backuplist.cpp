#include "backup/backuplist.h"

#include <algorithm>
#include <system_error>

#include "backup/backupname.h"
#include "engine/fileio.h"

namespace bmr::backup {

namespace fs = std::filesystem;

namespace {

BackupEntry Look(const fs::directory_entry& file) {
    BackupEntry entry;
    entry.file = file.path();
    std::error_code none;
    entry.bytes = file.file_size(none);
    entry.date = DateOfBackup(entry.file);
    auto trailer = ReadTrailer(entry.file);
    if (!trailer) {
        entry.fault = trailer.error();
        return entry;
    }
    entry.trailer = std::move(*trailer);
    entry.path = ToUtf8(entry.trailer.name);
    entry.database = BareName(entry.path);
    return entry;
}

bool Newer(const BackupEntry& a, const BackupEntry& b) {
    if (a.date != b.date) return a.date > b.date;  // none is below every date
    return a.file.filename() < b.file.filename();
}

}  // namespace

Result<std::vector<BackupEntry>> ListBackups(const fs::path& folder) {
    std::error_code error;
    std::vector<BackupEntry> entries;
    auto files = fs::directory_iterator(folder, error);
    for (; !error && files != fs::directory_iterator(); files.increment(error)) {
        std::error_code none;
        if (IsBackupName(files->path().filename()) && files->is_regular_file(none))
            entries.push_back(Look(*files));
    }
    if (error) return Error{engine::NumberOfErrno(error.default_error_condition().value()), error.message()};
    std::ranges::sort(entries, Newer);
    return entries;
}

}  // namespace bmr::backup
