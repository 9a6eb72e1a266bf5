#include "address/exportfile.h"

#include <algorithm>
#include <system_error>

#include "engine/fileio.h"

namespace bmr::address {
namespace {

constexpr std::size_t kChunk = 512;

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
                         const std::function<std::string_view()>& next) {
    std::error_code ignored;
    // Any other handle of the open database would drop its locks, and its own text would be gone.
    if (std::filesystem::equivalent(path, session.DatabasePath, ignored))
        return Refused(path, "it is the open database");
    const std::filesystem::path beside = NameBeside(path, session.ports.random);
    int error = engine::WriteNewFile(beside, next);
    if (error == 0) error = engine::RenameOver(beside, path);
    if (error == 0) error = engine::SyncFolder(path.parent_path());
    if (error == 0) return true;
    std::filesystem::remove(beside, ignored);
    return Refused(path, std::generic_category().message(error));
}

bool PayloadSource::Next(
    const std::function<void(std::int32_t key, std::string_view payload, std::string_view name)>& each) {
    const std::size_t end = std::min(at_ + kChunk, keys_.size());
    if (at_ == end || error_ != 0) return false;
    std::vector<Bytes> ciphered;
    std::vector<std::int32_t> read;
    for (; at_ < end; ++at_) {
        auto row = session_.ProgramDb->Select("SELECT fT1, fEtx FROM tt WHERE fPK=?", {keys_[at_]});
        if (!row) {
            error_ = row.error().number;
            return false;
        }
        if (!row->Next()) continue;
        read.push_back(keys_[at_]);
        ciphered.emplace_back(row->Bytes(0));
        ciphered.emplace_back(row->Bytes(1));
    }
    WipedText name;
    const std::vector<std::string_view> views(ciphered.begin(), ciphered.end());
    cry::DecipherBatch(session_.cipher, views, [&](std::size_t i, std::string_view plain) {
        if (i % 2 == 0)
            name = plain;
        else
            each(read[i / 2], plain, name);
    });
    return true;
}

}  // namespace bmr::address
