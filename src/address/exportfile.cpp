#include "address/exportfile.h"

#include <optional>
#include <system_error>

#include "engine/fileio.h"

namespace bmr::address {
namespace {

Error Refused(const std::filesystem::path& path, const std::string& why) {
    return {engine::EngineNumber::Failed, path.string() + " could not be written: " + why + "."};
}

/// Another name in the folder of `path`, which nobody has.
std::filesystem::path NameBeside(const std::filesystem::path& path, RandomSource& random) {
    std::filesystem::path beside = path;
    beside += "." + ToHex(cry::RandomBytes(random, 4)) + ".tmp";
    return beside;
}

}  // namespace

Result<bool> ReplaceFile(store::Session& session, const std::filesystem::path& path,
                         const std::function<Result<std::string_view>()>& next) {
    std::error_code ignored;
    // Any other handle of the open database would drop its locks, and its own text would be gone.
    if (std::filesystem::equivalent(path, session.DatabasePath, ignored))
        return Refused(path, "it is the open database");
    const std::filesystem::path beside = NameBeside(path, session.ports.random);
    std::optional<Error> unread;
    int error = engine::WriteNewFile(beside, [&]() -> std::string_view {
        const auto part = next();
        if (part) return *part;
        unread = part.error();
        return {};
    });
    if (unread) {
        std::filesystem::remove(beside, ignored);
        return *unread;
    }
    if (error == 0) error = engine::RenameOver(beside, path);
    if (error == 0) error = engine::SyncFolder(path.parent_path());
    if (error == 0) return true;
    std::filesystem::remove(beside, ignored);
    return Refused(path, std::generic_category().message(error));
}

}  // namespace bmr::address
