#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "base/serialdate.h"

/// Compressed backups of whole databases, and the way back. Nothing here knows a key: a backup is as
/// enciphered as its database.
namespace bmr::backup {

/// A path as text in UTF-8.
std::string PathText(const std::filesystem::path& path);
std::filesystem::path PathOf(std::string_view utf8);

/// The part of a path behind its last separator, which may be of this system or of another, and behind a
/// drive.
std::string BareName(std::string_view path);

/// The name of a backup that is made at `now`: the database's bare name up to its first ".", date and time to
/// the second, ".bmz", in `folder`. Two backups of one second have one name.
std::filesystem::path BackupFileName(const std::filesystem::path& folder,
                                     const std::filesystem::path& database, DateValue now);

/// The moment that the name of a backup tells; nothing where it tells none.
std::optional<DateValue> DateOfBackup(const std::filesystem::path& backup);

/// What stands before the date in the names of a database's backups.
std::string BackupStem(const std::filesystem::path& database);

/// Whether a file is called as a backup is, in any case.
bool IsBackupName(const std::filesystem::path& file);

/// The name that a restored file has before it takes the database's place (the last letter becomes "q"), and
/// that of the database before (the last letter becomes "b"; older ones "b1", "b2"). Capitals stay capitals.
std::filesystem::path RestoredName(const std::filesystem::path& database);
std::filesystem::path FormerName(const std::filesystem::path& database, int age = 0);

/// The name under which a backup or a restored file is written before it is whole: the last letter becomes
/// "~". What a killed program leaves has it.
std::filesystem::path PartName(const std::filesystem::path& target);

/// The same the other way round: the database of a restored file.
std::filesystem::path DatabaseOfRestored(const std::filesystem::path& restored);

}  // namespace bmr::backup
