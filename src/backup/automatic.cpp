#include "backup/automatic.h"

#include <charconv>
#include <set>
#include <system_error>

#include "backup/backuplist.h"
#include "backup/backupname.h"
#include "backup/makebackup.h"
#include "store/session.h"

namespace bmr::backup {

namespace fs = std::filesystem;

namespace {

constexpr const char* kPath = "BackupPath";
constexpr const char* kAutomatic = "Backup/Automatic";
constexpr const char* kWarnAfterDays = "Backup/WarnAfterDays";

constexpr std::size_t kDays = 7;
constexpr std::size_t kWeeks = 4;
constexpr std::size_t kMonths = 12;
constexpr std::int32_t kSomeMonday = 2;  ///< 1 January 1900

/// Backups of this database alone, with a date, the newest first.
std::vector<BackupEntry> OwnBackups(const fs::path& folder, const fs::path& database) {
    auto entries = ListBackups(folder);
    if (!entries) return {};
    std::erase_if(*entries, [&database](const BackupEntry& entry) {
        return entry.fault.number != 0 || !entry.date || !Names(entry.trailer, database);
    });
    return std::move(*entries);
}

/// True for the first of a period, while there are not too many of them.
bool FirstOf(std::set<std::int32_t>& periods, std::int32_t period, std::size_t most) {
    return periods.size() < most && periods.insert(period).second;
}

void Rotate(const fs::path& folder, const fs::path& database, AutomaticBackup& outcome) {
    const auto entries = OwnBackups(folder, database);
    std::vector<DateValue> moments;
    moments.reserve(entries.size());
    for (const BackupEntry& entry : entries)
        moments.push_back(*entry.date);
    for (const std::size_t place : Superseded(moments)) {
        std::error_code error;
        // The new one stays, whatever a clock that was set back makes of its date.
        if (entries[place].file == outcome.file) continue;
        if (fs::remove(entries[place].file, error)) outcome.removed.push_back(entries[place].file);
    }
}

/// Whether a backup unpacks to the bytes that it was made of.
Error Prove(const fs::path& backup, const Bytes& sum, const Progress& progress) {
    cry::Digest digest;
    const auto tested = TestBackup(backup, {.progress = progress, .digest = &digest});
    if (!tested) return tested.error();
    if (digest.Finish() != sum)
        return {BackupNumber::Failed, "The backup does not hold what the database does."};
    return {};
}

}  // namespace

BackupSettings LoadBackupSettings(const Registry& registry) {
    BackupSettings settings;
    settings.folder = PathOf(registry.Read(kPath));
    settings.automatic = registry.Read(kAutomatic) == "1";
    const std::string days = registry.Read(kWarnAfterDays);
    int number = 0;
    const auto end = days.data() + days.size();
    if (const auto read = std::from_chars(days.data(), end, number);
        read.ec == std::errc() && read.ptr == end)
        settings.warnAfterDays = std::max(number, 0);
    return settings;
}

void StoreBackupSettings(Registry& registry, const BackupSettings& settings) {
    registry.Write(kPath, PathText(settings.folder));
    registry.Write(kAutomatic, settings.automatic ? "1" : "0");
    registry.Write(kWarnAfterDays, std::to_string(settings.warnAfterDays));
}

bool SectionsChanged(const store::Session& session) {
    return session.undo.lastNumber != 0;
}

fs::path AutomaticFolder(const fs::path& folder) {
    return folder / "automatic";
}

AutomaticBackup BackUpAutomatically(const fs::path& database, const fs::path& folder, DateValue now,
                                    const Progress& progress) {
    AutomaticBackup outcome;
    std::error_code error;
    if (folder.empty() || !fs::is_directory(folder, error)) {
        outcome.folderGone = true;
        outcome.error = {BackupNumber::Failed, "The folder of the backups is not there: " + PathText(folder)};
        return outcome;
    }
    const fs::path own = AutomaticFolder(folder);
    fs::create_directory(own, error);
    cry::Digest digest;
    const auto made = MakeBackup(database, own, now, {.progress = progress, .digest = &digest});
    if (!made) {
        outcome.error = made.error();
        return outcome;
    }
    outcome.file = made->file;
    outcome.error = Prove(made->file, digest.Finish(), progress);
    if (outcome.error.number != 0)
        fs::remove(made->file, error);
    else
        Rotate(own, database, outcome);
    return outcome;
}

std::vector<std::size_t> Superseded(const std::vector<DateValue>& moments) {
    std::set<std::int32_t> days;
    std::set<std::int32_t> weeks;
    std::set<std::int32_t> months;
    std::vector<std::size_t> superseded;
    for (std::size_t i = 0; i < moments.size(); ++i) {
        const Day day = DayOf(moments[i]);
        const auto date = YearMonthDay(day);
        const std::int32_t month = static_cast<int>(date.year()) * 12 +
                                   static_cast<std::int32_t>(static_cast<unsigned>(date.month()));
        const bool ofDay = FirstOf(days, day.serial, kDays);
        const bool ofWeek = FirstOf(weeks, (day.serial - kSomeMonday) / 7, kWeeks);
        const bool ofMonth = FirstOf(months, month, kMonths);
        if (!ofDay && !ofWeek && !ofMonth) superseded.push_back(i);
    }
    return superseded;
}

std::optional<DateValue> LastBackup(const fs::path& database, const fs::path& folder) {
    std::optional<DateValue> last;
    for (const fs::path& each : {folder, AutomaticFolder(folder)})
        if (const auto entries = OwnBackups(each, database); !entries.empty())
            last = std::max(last, entries.front().date);
    return last;
}

bool BackupOverdue(const BackupSettings& settings, std::optional<DateValue> last, Day today) {
    if (settings.warnAfterDays <= 0) return false;
    return !last || today.serial - DayOf(*last).serial >= settings.warnAfterDays;
}

}  // namespace bmr::backup
