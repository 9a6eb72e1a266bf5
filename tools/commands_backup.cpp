#include <cmath>
#include <cstdio>
#include <iostream>

#include "backup/backuplist.h"
#include "backup/backupname.h"
#include "backup/makebackup.h"
#include "backup/swap.h"
#include "base/clock.h"
#include "base/languageus.h"
#include "commands.h"
#include "engine/db.h"
#include "recordjson.h"
#include "sitting.h"
#include "terminal.h"

namespace bmr::tools {
namespace {

namespace fs = std::filesystem;

/// A path that the caller may stand anywhere to use.
std::string Whole(const fs::path& path) {
    std::error_code none;
    const fs::path whole = fs::absolute(path, none).lexically_normal();
    return backup::PathText(none ? path : whole);
}

/// "2024-03-05 07:08:09"; empty for none.
std::string MomentText(const std::optional<DateValue>& moment, char between) {
    if (!moment) return {};
    const Day day = DayOf(*moment);
    const auto second = static_cast<int>(std::lround((moment->serial - day.serial) * 86400));
    char time[32];
    std::snprintf(time, sizeof time, "%c%02d:%02d:%02d", between, second / 3600, second / 60 % 60,
                  second % 60);
    return IsoDate(day) + time;
}

/// Where the database of a backup goes; throws where nobody can tell.
fs::path TargetOf(const Options& options) {
    const auto trailer = backup::ReadTrailer(options.file);
    if (!trailer) throw Failure(backup::ErrorText(trailer.error()));
    const auto place = backup::PlaceOf(*trailer);
    if (!place) throw Failure(backup::ErrorText(place.error()));
    if (options.folder.empty() && !place->folderExists)
        throw Failure("The backup is of " + ToUtf8(trailer->name) +
                      ", whose folder is not here. Name another with --to.");
    const fs::path folder = options.folder.empty() ? place->folder : options.folder;
    std::error_code none;
    if (!fs::is_directory(folder, none)) throw Failure("The folder " + folder.string() + " does not exist.");
    return place->In(folder);
}

/// Unpacks and tests; the restored file is gone again where it is no good.
void UnpackTested(const fs::path& backup, const fs::path& restored) {
    const auto bytes = backup::Unpack(backup, restored);
    if (!bytes) throw Failure(backup::ErrorText(bytes.error()));
    const Error fault = backup::TestRestored(restored);
    if (fault.number == 0) return;
    engine::RemoveStore(restored);
    throw Failure("The restored file is no good, and nothing was replaced. " + backup::ErrorText(fault));
}

}  // namespace

void RunBackup(const Options& options) {
    const fs::path folder = options.folder.empty() ? options.file.parent_path() : options.folder;
    const auto made =
        backup::MakeBackup(options.file, folder.empty() ? fs::path(".") : folder, SystemClock().Now());
    if (!made) throw Failure(backup::ErrorText(made.error()));
    std::cout << Printable(Whole(made->file)) << '\n';
}

void RunRestore(const Options& options) {
    const fs::path database = TargetOf(options);
    std::error_code none;
    if (!options.replace && fs::exists(fs::symlink_status(database, none)))
        throw Failure(database.string() + " exists already. With --replace it is kept as " +
                      backup::FormerName(database).filename().string() + " and replaced.");
    UnpackTested(options.file, backup::RestoredName(database));
    const auto report = backup::SwapIn(database);
    if (report.number != 0) {
        // The backup is still there: nothing is lost with what was unpacked, where the database stands.
        if (fs::exists(database, none)) engine::RemoveStore(backup::RestoredName(database));
        throw Failure(report.Words());
    }
    std::cout << Printable(Whole(database)) << '\n';
}

void RunBackups(const Options& options) {
    const auto entries = backup::ListBackups(options.file);
    if (!entries) throw Failure(backup::ErrorText(entries.error()));
    Json list = Json::array();
    if (!options.json) std::cout << "Date                 Whole      Bytes  Database  File\n";
    for (const backup::BackupEntry& entry : *entries) {
        const bool whole = static_cast<bool>(backup::TestBackup(entry.file));
        if (options.json) {
            list.push_back({{"file", Whole(entry.file)},
                            {"database", entry.path},
                            {"date", entry.date ? Json(MomentText(entry.date, 'T')) : Json()},
                            {"bytes", entry.bytes},
                            {"size", entry.fault.number == 0 ? Json(entry.trailer.size) : Json()},
                            {"whole", whole}});
            continue;
        }
        std::string date = MomentText(entry.date, ' ');
        date.resize(19, ' ');
        char bytes[32];
        std::snprintf(bytes, sizeof bytes, "%12llu", static_cast<unsigned long long>(entry.bytes));
        std::cout << date << "  " << (whole ? "yes" : "NO ") << "  " << bytes << "  "
                  << Printable(entry.path.empty() ? "?" : entry.path) << "  "
                  << Printable(backup::PathText(entry.file.filename())) << '\n';
    }
    if (options.json) std::cout << DumpLine(list, 2) << '\n';
}

}  // namespace bmr::tools
