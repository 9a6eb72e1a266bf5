#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Statement.h>

#include <system_error>

#include "engine/db_file.h"
#include "engine/db_impl.h"
#include "engine/fileio.h"

// New files, compacted copies, and the step that puts one file in the place of another.
namespace bmr::engine {

int CreateStore(const std::filesystem::path& path) {
    return StoreWriter(path).Finish(nullptr);
}

namespace {

/// The compacted copy of an open file, tested; none on a failure.
int WriteCompacted(Engine& engine, const std::filesystem::path& target, std::string* detail) {
    if (const int error = CreateNewFile(target))
        return Tell(detail, NumberOfErrno(error), "The compacted copy cannot be made.");
    int number = 0;
    try {
        SQLite::Database& db = engine.connection();
        KeepReservedBytes(db);
        SQLite::Statement vacuum(db, "VACUUM INTO ?");
        vacuum.bind(1, EnginePath(target));
        vacuum.exec();
    } catch (const SQLite::Exception& error) {
        number =
            Tell(detail, NumberOfCode(error.getExtendedErrorCode(), sqlite3_system_errno(engine.handle())),
                 error.what());
    }
    if (number == 0) {
        const int error = SyncFile(target);
        number = error == 0 ? 0 : Tell(detail, NumberOfErrno(error), "The compacted copy cannot be stored.");
    }
    if (number == 0) number = TestCopy(target, detail);
    if (number != 0) RemoveQuietly(target);
    return number;
}

}  // namespace

int CompactDatabase(const std::filesystem::path& source, const std::filesystem::path& target,
                    std::string* detail) {
    const auto engine = Engine::Open(source, Engine::Purpose::Use);
    return engine ? WriteCompacted(**engine, target, detail)
                  : Tell(detail, engine.error().number, engine.error().detail);
}

int CompactInPlace(const std::filesystem::path& path, const std::filesystem::path& copy,
                   std::string* detail) {
    const auto engine = Engine::Open(path, Engine::Purpose::Use);
    if (!engine) return Tell(detail, engine.error().number, engine.error().detail);
    if (const int number = WriteCompacted(**engine, copy, detail)) return number;
    auto journal = path;
    journal += "-journal";
#ifdef _WIN32
    constexpr bool kKeepsOpenFiles = true;
#else
    constexpr bool kKeepsOpenFiles = false;
#endif
    // A journal that was played back at the opening goes with the close; later it might be the new file's.
    if (std::error_code ignored; kKeepsOpenFiles || std::filesystem::exists(journal, ignored))
        (*engine)->Close();
    const int number = ReplaceFile(copy, path);
    if (number != 0) RemoveQuietly(copy);
    return number;
}

std::filesystem::path FollowLinks(const std::filesystem::path& path) {
    std::error_code error;
    auto followed = std::filesystem::canonical(path, error);
    return error ? path : followed;
}

int TestCopy(const std::filesystem::path& copy, std::string* detail) {
    auto db = Database::Open(copy);
    if (!db) return Tell(detail, db.error().number, db.error().detail);
    const auto lines = (*db)->CheckIntegrity();
    return lines.empty() ? 0 : Tell(detail, EngineNumber::Damaged, lines.front());
}

int ReplaceFile(const std::filesystem::path& source, const std::filesystem::path& target) {
    // A journal that was left beside the old file would be rolled back into the new one.
    for (const char* suffix : {"-journal", "-wal", "-shm"}) {
        std::filesystem::path side = target;
        side += suffix;
        std::error_code error;
        if (!std::filesystem::exists(side, error)) continue;
        { const auto rolledBack = Engine::Open(target, Engine::Purpose::Repair); }
        std::filesystem::remove(side, error);
        if (error) return NumberOfErrno(error.default_error_condition().value());
    }
    if (const int error = SyncFile(source)) return NumberOfErrno(error);
    if (const int error = RenameOver(source, target)) return NumberOfErrno(error);
    return NumberOfErrno(SyncFolder(target.parent_path()));
}

}  // namespace bmr::engine
