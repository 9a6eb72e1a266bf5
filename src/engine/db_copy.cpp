#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Statement.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <span>
#include <string_view>
#include <system_error>

#include "engine/db_file.h"
#include "engine/db_impl.h"
#include "engine/fileio.h"

// New files, compacted copies, and the step that puts one file in the place of another.
namespace bmr::engine {
namespace {

constexpr const char* kDoubt =
    "The new file is in its place, but the disk reported a failure behind it. Make a copy of it on another "
    "disk.";

}  // namespace

int CreateStore(const std::filesystem::path& path) {
    return StoreWriter(path).Finish(nullptr);
}

namespace {

constexpr std::string_view kMagic("SQLite format 3\0", 16);
constexpr std::size_t kMarkAt = 60;  ///< in the head of a file, high byte first: what is read as user_version
constexpr sqlite3_int64 kHead = 100;
constexpr sqlite3_int64 kMostInMemory = sqlite3_int64{1} << 40;

/// Puts the mark of a copy that has not taken its place yet into a head.
void Mark(std::span<char> head) {
    for (std::size_t i = 0; i < 4; ++i)
        head[kMarkAt + i] = static_cast<char>((kCopyMark >> (24 - 8 * i)) & 0xff);
}

/// The bytes of a database in memory, part by part, with the mark in its head.
class MarkedBytes {
  public:
    explicit MarkedBytes(SQLite::Database& memory) {
        sqlite3_file_control(memory.getHandle(), "main", SQLITE_FCNTL_FILE_POINTER, &file_);
        Test(file_->pMethods->xFileSize(file_, &size_));
    }
    /// Empty at the end.
    std::string_view Next() {
        const auto length = std::min<sqlite3_int64>(size_ - at_, at_ == 0 ? kHead : kPart);
        part_.resize(static_cast<std::size_t>(length));
        Test(file_->pMethods->xRead(file_, part_.data(), static_cast<int>(length), at_));
        if (at_ == 0 && length == kHead) Mark(part_);
        at_ += length;
        return part_;
    }

  private:
    static constexpr sqlite3_int64 kPart = 1 << 20;
    static void Test(int code) {
        if (code != SQLITE_OK) throw SQLite::Exception("The compacted copy cannot be read.", code);
    }
    sqlite3_file* file_ = nullptr;
    sqlite3_int64 size_ = 0;
    sqlite3_int64 at_ = 0;
    std::string part_;
};

/// Writes the compacted copy of an open file, marked from its first bytes on. It is made in memory: the
/// library would leave a file behind, where it is killed, that nobody could tell from a person's own.
void WriteMarked(Engine& engine, const std::filesystem::path& target) {
    SQLite::Database& db = engine.connection();
    const std::string name =
        "file:/compacted-" + std::to_string(reinterpret_cast<std::uintptr_t>(&engine)) + "?vfs=memdb";
    SQLite::Database memory(name, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE | SQLite::OPEN_URI);
    sqlite3_int64 most = kMostInMemory;  // the library's own limit is lower
    sqlite3_file_control(memory.getHandle(), "main", SQLITE_FCNTL_SIZE_LIMIT, &most);
    KeepReservedBytes(db);
    SQLite::Statement vacuum(db, "VACUUM INTO ?");
    vacuum.bind(1, name);
    vacuum.exec();
    MarkedBytes bytes(memory);
    if (const int error = WriteNewFile(target, [&bytes] { return bytes.Next(); }))
        throw std::system_error(error, std::generic_category());
}

/// The compacted copy, tested; none on a failure.
int WriteCompacted(Engine& engine, const std::filesystem::path& target, std::string* detail) {
    std::error_code ignored;
    if (std::filesystem::exists(std::filesystem::symlink_status(target, ignored)))
        return Tell(detail, EngineNumber::Failed, "There is a file where the copy would be written.");
    int number = 0;
    try {
        WriteMarked(engine, target);
    } catch (const SQLite::Exception& error) {
        number =
            Tell(detail, NumberOfCode(error.getExtendedErrorCode(), sqlite3_system_errno(engine.handle())),
                 error.what());
    } catch (const std::system_error& error) {
        number = Tell(detail, NumberOfErrno(error.code().value()), "The compacted copy cannot be stored.");
    }
    if (number == 0) number = TestCopy(target, detail);
    if (number != 0) RemoveQuietly(target);
    return number;
}

/// Takes the mark from a copy that has become the file.
int DropMark(const std::filesystem::path& path) {
    const auto engine = Engine::Open(path, Engine::Purpose::Use);
    return engine ? (*engine)->DropMark() : engine.error().number;
}

}  // namespace

bool IsLeftoverCopy(const std::filesystem::path& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(std::filesystem::symlink_status(path, error))) return false;
    std::array<char, kHead> head{};
    std::ifstream file(path, std::ios::binary);
    file.read(head.data(), head.size());
    // A file without one byte holds nothing: it was made, and the program killed before it wrote.
    if (file.gcount() == 0) return file.eof();
    const auto read = head;
    Mark(head);
    return file.gcount() == kHead && std::string_view(read.data(), kMagic.size()) == kMagic && read == head;
}

int CompactDatabase(const std::filesystem::path& source, const std::filesystem::path& target,
                    std::string* detail) {
    const auto engine = Engine::Open(source, Engine::Purpose::Use);
    if (!engine) return Tell(detail, engine.error().number, engine.error().detail);
    if (const int number = WriteCompacted(**engine, target, detail)) return number;
    return DropMark(target);
}

int CompactInPlace(const std::filesystem::path& path, const std::filesystem::path& copy,
                   std::string* detail) {
    const auto engine = Engine::Open(path, Engine::Purpose::Use);
    if (!engine) return Tell(detail, engine.error().number, engine.error().detail);
    // Under the file's lock: it is not one that another program is writing just now.
    if (IsLeftoverCopy(copy)) RemoveQuietly(copy);
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
    if (const int number = ReplaceFile(copy, path, detail)) {
        RemoveQuietly(copy);
        return number;
    }
    // Only now: whenever the program is killed, a copy that lies beside the file has its mark. One that takes
    // it along to the file's place loses it with the next save.
    if (DropMark(path) != 0) return Tell(detail, 0, kDoubt);
    return 0;
}

std::filesystem::path FollowLinks(const std::filesystem::path& path) {
    std::error_code error;
    auto followed = std::filesystem::canonical(path, error);
    return error ? path : followed;
}

void RemoveStore(const std::filesystem::path& path) {
    RemoveWithJournal(path);
}

int TestCopy(const std::filesystem::path& copy, std::string* detail) {
    auto db = Database::Open(copy);
    if (!db) return Tell(detail, db.error().number, db.error().detail);
    const auto lines = (*db)->CheckIntegrity();
    return lines.empty() ? 0 : Tell(detail, EngineNumber::Damaged, lines.front());
}

int ReplaceFile(const std::filesystem::path& source, const std::filesystem::path& target,
                std::string* detail) {
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
    if (SyncFolder(target.parent_path()) != 0) return Tell(detail, 0, kDoubt);
    return 0;
}

}  // namespace bmr::engine
