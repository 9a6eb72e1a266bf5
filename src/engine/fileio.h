#pragma once

#include <filesystem>
#include <functional>
#include <string_view>

namespace bmr::engine {

/// File operations that the standard library lacks. Each gives 0 or the system's errno. None may be used on a
/// file that this process holds open as a database: closing any other handle would drop its locks.

/// Makes an empty file that only its owner may read and write. Never follows or overwrites what is there.
int CreateNewFile(const std::filesystem::path& path);

/// Makes such a file of the parts that `next` gives until it gives an empty one. The first has reached the
/// disk before the second is written. What was written before a failure stays.
int WriteNewFile(const std::filesystem::path& path, const std::function<std::string_view()>& next);

/// Brings a file's contents to the disk.
int SyncFile(const std::filesystem::path& path);

/// Brings the entries of a folder to the disk; does nothing where the system has no such thing.
int SyncFolder(const std::filesystem::path& folder);

/// Renames, in one step, over whatever has the new name.
int RenameOver(const std::filesystem::path& from, const std::filesystem::path& to);

/// The engine's number for a system error.
int NumberOfErrno(int error);

}  // namespace bmr::engine
