#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "engine/db.h"
#include "support/folder.h"

namespace bmr::test {

/// All bytes of a file. Not of a file that this process has open as a database: closing would drop its locks.
inline std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteFile(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

/// Overwrites the page of a closed file on which `bytes` stand, as a failing disk might.
inline void DamagePageWith(const std::filesystem::path& path, const std::string& bytes) {
    constexpr std::size_t kPage = 4096;
    std::string file = ReadFile(path);
    const std::size_t at = file.find(bytes);
    if (at == std::string::npos) throw std::runtime_error("no page with these bytes");
    file.replace(at / kPage * kPage, kPage, kPage, '\xa5');
    WriteFile(path, file);
}

/// Opens a store that must open.
inline std::unique_ptr<engine::Database> OpenStore(const std::filesystem::path& path) {
    auto db = engine::Database::Open(path);
    if (!db) throw std::runtime_error(path.string() + ": " + db.error().detail);
    return std::move(*db);
}

/// Makes a store and opens it.
inline std::unique_ptr<engine::Database> NewStore(const std::filesystem::path& path) {
    if (const int error = engine::CreateStore(path))
        throw std::runtime_error(path.string() + ": error " + std::to_string(error));
    return OpenStore(path);
}

}  // namespace bmr::test
