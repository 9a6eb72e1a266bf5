#include "backup/compressfile.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <new>
#include <system_error>

#include "backup/backupname.h"
#include "base/errors.h"
#include "engine/enginenumber.h"
#include "engine/fileio.h"

namespace bmr::backup {

namespace fs = std::filesystem;

namespace {

/// No zlib stream gives more than this for each of its bytes.
constexpr std::uint64_t kMostExpansion = 1032;
constexpr std::int64_t kLargest = std::numeric_limits<std::int32_t>::max();

Error Refused(std::string why) {
    return {BackupNumber::Failed, std::move(why)};
}

Error SystemFailure(int error) {
    return {engine::NumberOfErrno(error), std::generic_category().message(error)};
}

Result<std::uint64_t> SizeOf(const fs::path& file) {
    std::error_code error;
    const std::uint64_t size = fs::file_size(file, error);
    if (error == std::errc::no_such_file_or_directory) return Error{BackupNumber::NotFound, {}};
    if (error) return SystemFailure(error.default_error_condition().value());
    if (size == 0) return Error{BackupNumber::ZeroLength, {}};
    return size;
}

/// Puts what `next` gives into the place of `target`, and nothing there unless `good` agrees at the end.
Result<std::uint64_t> WriteInPlace(const fs::path& target, const std::function<std::string_view()>& next,
                                   const std::function<std::optional<Error>()>& wrong) {
    const fs::path part = PartName(target);
    std::error_code none;
    fs::remove(part, none);  // of a program that was killed
    std::uint64_t written = 0;
    int error = engine::WriteNewFile(part, [&] {
        const std::string_view bytes = next();
        written += bytes.size();
        return bytes;
    });
    std::optional<Error> fault = wrong();
    if (!fault && error == 0) error = engine::RenameOver(part, target);
    if (!fault && error == 0) {
        // The file has its name; where the folder cannot be synced, a power cut may take it back at the
        // worst.
        engine::SyncFolder(target.parent_path());
        return written;
    }
    fs::remove(part, none);
    return fault ? *fault : SystemFailure(error);
}

/// What stops a stream on its way.
class Watch {
  public:
    Watch(const Progress& progress, std::uint64_t all) : progress_(progress), all_(all) {}
    bool Goes(std::uint64_t done) {
        stopped_ = stopped_ || (progress_ && !progress_(done, all_));
        return !stopped_;
    }
    bool Stopped() const { return stopped_; }

  private:
    const Progress& progress_;
    std::uint64_t all_;
    bool stopped_ = false;
};

Result<std::uint64_t> Pack(const fs::path& source, const fs::path& target, const CompressPorts& ports) {
    const auto size = SizeOf(source);
    if (!size) return size.error();
    if (*size > static_cast<std::uint64_t>(kLargest))
        return Refused("A file of 2 GB or more does not fit the format of the backups.");
    std::ifstream file(source, std::ios::binary);
    file.seekg(-1, std::ios::end);
    const int last = file.get();
    if (last == kFormatVersion) return Error{BackupNumber::AlreadyCompressed, {}};
    file.seekg(0);
    if (last < 0 || !file) return Refused("The file cannot be read.");

    const Bytes trailer = WriteTrailer({StoredName(source), static_cast<std::int32_t>(*size)});
    Packer packer(file, [&ports](std::string_view seen) {
        if (ports.digest) ports.digest->Add(seen);
    });
    Watch watch(ports.progress, *size);
    bool behind = false;
    bool noMemory = false;
    const auto next = [&]() -> std::string_view {
        if (behind || !watch.Goes(packer.Done())) return {};
        try {
            const std::string_view bytes = packer.Next();
            if (!bytes.empty()) return bytes;
        } catch (const std::bad_alloc&) {
            noMemory = true;
            return {};
        }
        behind = true;
        return trailer;
    };
    return WriteInPlace(target, next, [&]() -> std::optional<Error> {
        if (watch.Stopped()) return Error{MessageNumber::Cancelled, {}};
        if (noMemory) return Refused("There is not enough memory.");
        if (behind && (!packer.Whole() || packer.Done() != *size))
            return Refused("The file could not be read to its end, or was changed meanwhile.");
        return std::nullopt;
    });
}

/// The bytes that a backup holds, and at the end whether they are the right ones.
class Contents {
  public:
    Contents(const fs::path& backup, const Trailer& trailer, const CompressPorts& ports)
        : trailer_(trailer),
          ports_(ports),
          file_(backup, std::ios::binary),
          unpacker_(file_, trailer.body),
          watch_(ports.progress, trailer.body) {}

    std::string_view Next() {
        if (!watch_.Goes(unpacker_.Read())) return {};
        const std::string_view bytes = unpacker_.Next();
        size_ += bytes.size();
        // More than the trailer says is never written.
        if (size_ > Told()) return {};
        if (ports_.digest) ports_.digest->Add(bytes);
        return bytes;
    }
    std::optional<Error> Wrong() const {
        if (watch_.Stopped()) return Error{MessageNumber::Cancelled, {}};
        if (!unpacker_.Whole() || size_ != Told() || size_ == 0)
            return Error{BackupNumber::Failed, "The backup is damaged."};
        return std::nullopt;
    }
    std::uint64_t size() const { return size_; }

  private:
    std::uint64_t Told() const { return static_cast<std::uint64_t>(std::max(trailer_.size, 0)); }

    const Trailer& trailer_;
    const CompressPorts& ports_;
    std::ifstream file_;
    Unpacker unpacker_;
    Watch watch_;
    std::uint64_t size_ = 0;
};

/// The trailer of a backup that can hold what it says.
Result<Trailer> SoundTrailer(const fs::path& backup) {
    auto trailer = ReadTrailer(backup);
    if (!trailer) return trailer;
    if (trailer->size <= 0 || static_cast<std::uint64_t>(trailer->size) > trailer->body * kMostExpansion)
        return Error{BackupNumber::Failed, "The backup is damaged."};
    return trailer;
}

}  // namespace

fs::path RestorePlace::In(const fs::path& chosen) const {
    return chosen / PathOf(bare);
}

Result<RestorePlace> PlaceOf(const Trailer& trailer) {
    const std::string path = ToUtf8(trailer.name);
    RestorePlace place;
    place.bare = BareName(path);
    // A name that would leave its folder, or be none, comes of a damaged or a made-up backup.
    const bool control = std::any_of(place.bare.begin(), place.bare.end(),
                                     [](char c) { return static_cast<unsigned char>(c) < 32; });
    if (place.bare.size() < 2 || place.bare == ".." || control || place.bare.find(':') != std::string::npos)
        return Error{BackupNumber::NotCompressed, "The backup names no file."};
    // The last letter is not the stored one but that of a database.
    place.bare = PathText(DatabaseOfRestored(PathOf(place.bare)));
    const fs::path stored = PathOf(path);
    std::error_code none;
    if (stored.is_absolute() && PathText(stored.filename()) == BareName(path)) {
        place.folder = stored.parent_path();
        place.folderExists = fs::is_directory(place.folder, none);
    }
    place.ask = !place.folderExists || fs::exists(fs::symlink_status(place.In(place.folder), none));
    return place;
}

Result<std::uint64_t> Unpack(const fs::path& backup, const fs::path& target, const CompressPorts& ports) {
    const auto trailer = SoundTrailer(backup);
    if (!trailer) return trailer.error();
    Contents contents(backup, *trailer, ports);
    return WriteInPlace(
        target, [&contents] { return contents.Next(); }, [&contents] { return contents.Wrong(); });
}

Result<std::uint64_t> TestBackup(const fs::path& backup, const CompressPorts& ports) {
    const auto trailer = SoundTrailer(backup);
    if (!trailer) return trailer.error();
    Contents contents(backup, *trailer, ports);
    while (!contents.Next().empty()) {
    }
    if (const auto wrong = contents.Wrong()) return *wrong;
    return contents.size();
}

Result<std::uint64_t> CompressFile(bool doCompress, const fs::path& source, fs::path& target,
                                   const CompressPorts& ports) {
    if (doCompress) return Pack(source, target, ports);
    const auto trailer = ReadTrailer(source);
    if (!trailer) return trailer.error();
    const auto place = PlaceOf(*trailer);
    if (!place) return place.error();
    fs::path folder = place->folder;
    if (place->ask && ports.chooseFolder)
        // Who cancels stays with the stored folder; what stands there is only replaced after another
        // question.
        if (const auto chosen = ports.chooseFolder(folder)) folder = *chosen;
    std::error_code none;
    if (folder.empty() || !fs::is_directory(folder, none))
        return Refused("The folder to restore to does not exist.");
    target = RestoredName(place->In(folder));
    return Unpack(source, target, ports);
}

}  // namespace bmr::backup
