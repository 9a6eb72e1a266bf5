#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>

#include "backup/packing.h"
#include "backup/trailer.h"
#include "base/result.h"
#include "crypto/digest.h"

namespace bmr::backup {

/// What a long work tells and asks on its way. All may be empty.
struct CompressPorts {
    /// False stops: the work then ends with `Cancelled`, and nothing is written.
    Progress progress = {};
    /// Asks for the folder into which a file is restored, beginning at the one that is given, which may be
    /// empty; nothing when cancelled.
    std::function<std::optional<std::filesystem::path>(const std::filesystem::path& folder)> chooseFolder =
        {};
    /// Gets the bytes of the uncompressed file.
    cry::Digest* digest = nullptr;
};

/// Both ways of a backup's format. With `doCompress` it packs `source` into `target`; else it restores the
/// backup `source`, and `target` is set to the restored file, which still has its passing name (".bmq"). The
/// bytes of the written file. It is written under another name, brought to the disk and then renamed, so that
/// no half file ever has its name; a failure leaves none.
Result<std::uint64_t> CompressFile(bool doCompress, const std::filesystem::path& source,
                                   std::filesystem::path& target, const CompressPorts& ports = {});

/// Where a backup wants to be restored to.
struct RestorePlace {
    std::string bare;              ///< name of the database, never with a folder
    std::filesystem::path folder;  ///< the stored one; empty where it is none of this system
    bool folderExists = false;
    /// A database stands there already, or the folder is missing or another system's: a person is asked.
    bool ask = false;

    /// The database in a folder.
    std::filesystem::path In(const std::filesystem::path& chosen) const;
};
/// `NotCompressed` for a name that none can be made of.
Result<RestorePlace> PlaceOf(const Trailer& trailer);

/// Unpacks a backup into `target`, the part of `CompressFile` behind its question.
Result<std::uint64_t> Unpack(const std::filesystem::path& backup, const std::filesystem::path& target,
                             const CompressPorts& ports = {});

/// Reads a whole backup and writes nothing: the size of what it holds, or why it cannot be restored.
Result<std::uint64_t> TestBackup(const std::filesystem::path& backup, const CompressPorts& ports = {});

}  // namespace bmr::backup
