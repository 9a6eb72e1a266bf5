#pragma once

#include <cstdint>
#include <filesystem>

#include "base/bytes.h"
#include "base/result.h"

namespace bmr::backup {

/// The messages of this room as error numbers. An `Error` may carry further words, to be shown behind those
/// of its message.
struct BackupNumber {
    static constexpr int AlreadyCompressed = -130;
    static constexpr int NotCompressed = -131;
    static constexpr int ZeroLength = -133;
    static constexpr int NotFound = -134;
    static constexpr int Failed = -137;
};

/// The byte that marks the format, five places from a backup's end.
inline constexpr char kFormatVersion = 3;
inline constexpr std::size_t kLongestName = 255;

/// What stands at the end of a backup, behind the compressed bytes.
struct Trailer {
    Bytes name;              ///< path of the file that was backed up, in code page 1252
    std::int32_t size = 0;   ///< of that file; negative only in a damaged backup
    std::uint64_t body = 0;  ///< compressed bytes before the trailer
};

/// The bytes of a trailer: name, its length, the version, the size low byte first. REQUIRES: a name of
/// at most `kLongestName` bytes.
Bytes WriteTrailer(const Trailer& trailer);

/// Reads a backup's trailer and nothing else of it. `ZeroLength`, `NotCompressed` where there is none, or the
/// engine's number.
Result<Trailer> ReadTrailer(const std::filesystem::path& backup);

/// The path of a database as its backups store it: absolute; its bare name alone where the path is too long
/// or has letters that code page 1252 lacks, with "_" for such letters.
Bytes StoredName(const std::filesystem::path& database);

/// Whether a trailer names this database, by its path or where that cannot be stored by its name.
bool Names(const Trailer& trailer, const std::filesystem::path& database);

/// The words of an error of this room: its message and what is told beside it.
std::string ErrorText(const Error& error);

}  // namespace bmr::backup
