#include "engine/fileio.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#ifdef _WIN32
#include <io.h>
#include <share.h>
#else
#include <unistd.h>
#endif

#include "engine/enginenumber.h"

namespace bmr::engine {

#ifdef _WIN32

int CreateNewFile(const std::filesystem::path& path) {
    int file = -1;
    const int error =
        ::_wsopen_s(&file, path.c_str(), _O_CREAT | _O_EXCL | _O_RDWR | _O_BINARY | _O_NOINHERIT, _SH_DENYNO,
                    _S_IREAD | _S_IWRITE);
    if (error != 0) return error;
    ::_close(file);
    return 0;
}

int WriteNewFile(const std::filesystem::path& path, const std::function<std::string_view()>& next) {
    if (const int error = CreateNewFile(path)) return error;
    int file = -1;
    int error = ::_wsopen_s(&file, path.c_str(), _O_RDWR | _O_BINARY | _O_NOINHERIT, _SH_DENYNO, 0);
    if (error != 0) return error;
    for (bool first = true, last = false; error == 0 && !last; first = false) {
        std::string_view part = next();
        last = part.empty();
        while (error == 0 && !part.empty()) {
            const auto most = static_cast<unsigned>(std::min<std::size_t>(part.size(), 1 << 20));
            const int written = ::_write(file, part.data(), most);
            if (written < 0) error = errno;
            part.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
        }
        if (error == 0 && (first || last) && ::_commit(file) != 0) error = errno;
    }
    ::_close(file);
    return error;
}

int SyncFile(const std::filesystem::path& path) {
    int file = -1;
    const int error = ::_wsopen_s(&file, path.c_str(), _O_RDWR | _O_BINARY | _O_NOINHERIT, _SH_DENYNO, 0);
    if (error != 0) return error;
    const int result = ::_commit(file) == 0 ? 0 : errno;
    ::_close(file);
    return result;
}

int SyncFolder(const std::filesystem::path&) {
    return 0;
}

#else

namespace {

int SyncAt(const std::filesystem::path& path, int flags) {
    const int file = ::open(path.c_str(), flags | O_CLOEXEC);
    if (file < 0) return errno;
    const int result = ::fsync(file) == 0 ? 0 : errno;
    ::close(file);
    return result;
}

}  // namespace

int CreateNewFile(const std::filesystem::path& path) {
    const int file =
        ::open(path.c_str(), O_CREAT | O_EXCL | O_RDWR | O_NOFOLLOW | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file < 0) return errno;
    const int result = ::fchmod(file, S_IRUSR | S_IWUSR) == 0 ? 0 : errno;
    ::close(file);
    return result;
}

int WriteNewFile(const std::filesystem::path& path, const std::function<std::string_view()>& next) {
    if (const int error = CreateNewFile(path)) return error;
    const int file = ::open(path.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC);
    if (file < 0) return errno;
    int error = 0;
    off_t at = 0;
    for (bool first = true, last = false; error == 0 && !last; first = false) {
        std::string_view part = next();
        last = part.empty();
        while (error == 0 && !part.empty()) {
            const ssize_t written = ::pwrite(file, part.data(), part.size(), at);
            if (written < 0 && errno != EINTR) error = errno;
            if (written < 0) continue;
            part.remove_prefix(static_cast<std::size_t>(written));
            at += written;
        }
        if (error == 0 && (first || last) && ::fsync(file) != 0) error = errno;
    }
    ::close(file);
    return error;
}

int SyncFile(const std::filesystem::path& path) {
    return SyncAt(path, O_RDONLY);
}

int SyncFolder(const std::filesystem::path& folder) {
    return SyncAt(folder.empty() ? std::filesystem::path(".") : folder, O_RDONLY | O_DIRECTORY);
}

#endif

int RenameOver(const std::filesystem::path& from, const std::filesystem::path& to) {
    std::error_code error;
    std::filesystem::rename(from, to, error);
    return error ? error.default_error_condition().value() : 0;
}

int NumberOfErrno(int error) {
    switch (error) {
        case 0:
            return 0;
        case ENOENT:
        case ENOTDIR:
            return EngineNumber::NotFound;
        case EACCES:
        case EPERM:
        case EROFS:
        case EISDIR:
            return EngineNumber::NoPermission;
        case ENOSPC:
        case EFBIG:
#ifdef EDQUOT
        case EDQUOT:
#endif
            return EngineNumber::DiskFull;
        default:
            return EngineNumber::Failed;
    }
}

}  // namespace bmr::engine
