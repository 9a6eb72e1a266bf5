#include "backup/trailer.h"

#include <algorithm>
#include <fstream>
#include <system_error>

#include "backup/backupname.h"
#include "base/languageus.h"
#include "base/utf8.h"
#include "crypto/conversion.h"
#include "custody/openfailure.h"
#include "engine/enginenumber.h"
#include "engine/fileio.h"

namespace bmr::backup {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kFixedPart = 6;  ///< length of the name, version, size

Error ReadFailure() {
    return {engine::EngineNumber::Failed, "The backup cannot be read."};
}

}  // namespace

Bytes WriteTrailer(const Trailer& trailer) {
    Bytes bytes = trailer.name;
    bytes += ByteChar(static_cast<unsigned>(trailer.name.size()));
    bytes += kFormatVersion;
    bytes += *conversion::PackInteger(trailer.size, 4);
    return bytes;
}

Result<Trailer> ReadTrailer(const fs::path& backup) {
    std::error_code none;
    const std::uint64_t all = fs::file_size(backup, none);
    if (none) return Error{engine::NumberOfErrno(none.default_error_condition().value()), none.message()};
    if (all == 0) return Error{BackupNumber::ZeroLength, {}};
    Bytes tail(static_cast<std::size_t>(std::min<std::uint64_t>(all, kFixedPart + kLongestName)), '\0');
    std::ifstream file(backup, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(all - tail.size()));
    if (!file.read(tail.data(), static_cast<std::streamsize>(tail.size()))) return ReadFailure();

    const Error unknown{BackupNumber::NotCompressed, {}};
    if (tail.size() < kFixedPart || tail[tail.size() - 5] != kFormatVersion) return unknown;
    const std::size_t length = ByteAt(tail, tail.size() - kFixedPart);
    if (length == 0 || tail.size() < kFixedPart + length) return unknown;
    Trailer trailer;
    trailer.name = tail.substr(tail.size() - kFixedPart - length, length);
    trailer.size = conversion::UnpackInteger(tail.substr(tail.size() - 4));
    trailer.body = all - kFixedPart - length;
    return trailer;
}

Bytes StoredName(const fs::path& database) {
    std::error_code none;
    const fs::path absolute = fs::absolute(database, none).lexically_normal();
    const std::string path = PathText(none ? database : absolute);
    const auto whole = ToBytes(path);
    if (whole && whole->size() <= kLongestName) return *whole;
    Bytes bare;
    const std::string name = BareName(path);
    for (std::size_t at = 0; at < name.size();) {
        const int byte = ByteOf(NextCharacter(name, at));
        bare += byte < 0 ? '_' : ByteChar(static_cast<unsigned>(byte));
    }
    // The end stays: its letters tell what the file is.
    return bare.size() <= kLongestName ? bare : bare.substr(bare.size() - kLongestName);
}

bool Names(const Trailer& trailer, const fs::path& database) {
    return trailer.name == StoredName(database);
}

std::string ErrorText(const Error& error) {
    std::string text = error.number < 0 ? Msg(-error.number) : std::string();
    std::string more = error.detail;
    if (error.number > 0) more = custody::ExplainOpenFailure(error.number);
    if (text.empty() || more.empty()) return text + more;
    return text + " " + more;
}

}  // namespace bmr::backup
