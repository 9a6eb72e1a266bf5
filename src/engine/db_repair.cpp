#include <algorithm>
#include <vector>

#include "engine/db_file.h"
#include "engine/db_impl.h"
#include "engine/fileio.h"

namespace bmr::engine {
namespace {

std::vector<std::string> Integrity(Engine& engine) {
    std::vector<std::string> lines;
    auto query = engine.Prepare("PRAGMA integrity_check");
    if (!query) return {engine.lastError()};
    while (query->Step())
        lines.emplace_back(CellOf(query->handle(), 0).bytes);
    if (query->code() != SQLITE_DONE) lines.emplace_back("unreadable");
    if (lines.size() == 1 && lines.front() == "ok") lines.clear();
    return lines;
}

/// Collects row numbers until the end or the first damage.
void Collect(Engine& engine, const std::string& sql, std::vector<std::int64_t>& rows) {
    auto query = engine.Prepare(sql);
    while (query && query->Step())
        rows.push_back(query->Number(0));
}

// A damaged page hides the rows behind it from a walk in one direction, and a damaged index those of one
// index: all are asked, from both ends.
std::vector<std::int64_t> AllRowNumbers(Engine& engine) {
    std::vector<std::int64_t> rows;
    for (const char* order : {" ORDER BY rowid", " ORDER BY rowid DESC"})
        Collect(engine, std::string("SELECT rowid FROM main.tt NOT INDEXED") + order, rows);
    for (const auto& index : kIndexes) {
        for (const char* order : {"", " DESC"})
            Collect(engine,
                    "SELECT rowid FROM main.tt INDEXED BY \"" + std::string(index.name) + "\" ORDER BY " +
                        std::string(index.column) + order,
                    rows);
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

/// Copies every row that can be read. Gives the number of rows, and the writer's error.
int CopyReadable(Engine& engine, const std::filesystem::path& copy, std::size_t& copied,
                 std::string* detail) {
    std::string names;
    for (const auto name : ColumnNames)
        names += (names.empty() ? "" : ", ") + std::string(name);
    StoreWriter writer(copy);
    for (const std::int64_t row : AllRowNumbers(engine)) {
        auto query = engine.Prepare("SELECT " + names + " FROM main.tt NOT INDEXED WHERE rowid = ?1");
        if (!query) break;
        query->Bind(1, row);
        if (!query->Step()) continue;
        writer.Add(query->handle());
        ++copied;
    }
    return writer.Finish(detail);
}

/// Whether the table itself is sound. Anything else is copied and not mended: a page that is wrongly thought
/// to be free must not be written.
bool OnlyIndexes(const std::vector<std::string>& lines) {
    return std::all_of(lines.begin(), lines.end(), [](const std::string& line) {
        return line.find("missing from index") != std::string::npos ||
               line.find("wrong # of entries in index") != std::string::npos;
    });
}

int RebuildIndexes(Engine& engine) {
    if (const int number = engine.Begin()) return number;
    int number = 0;
    {
        auto query = engine.Prepare("REINDEX main.tt");
        number = query ? engine.Write(*query) : query.error().number;
    }
    if (number == 0 && !Integrity(engine).empty()) number = EngineNumber::Damaged;
    if (number != 0) {
        engine.Rollback();
        return number;
    }
    return engine.Commit();
}

/// "name<mark>1.bmr", or the next number that is free.
std::filesystem::path FreeNameBeside(const std::filesystem::path& path, const std::string& mark) {
    std::filesystem::path name;
    for (int i = 1; name.empty() || std::filesystem::exists(std::filesystem::symlink_status(name)); ++i) {
        std::filesystem::path file = path.stem();
        file += mark + std::to_string(i);
        file += path.extension();
        name = path.parent_path() / file;
    }
    return name;
}

/// Keeps the damaged file under another name. A second name costs nothing; where the system has none, a copy.
int KeepDamaged(const std::filesystem::path& path, const std::filesystem::path& name) {
    std::error_code error;
    std::filesystem::create_hard_link(path, name, error);
    if (error) std::filesystem::copy_file(path, name, error);
    if (!error) return NumberOfErrno(SyncFile(name));
    RemoveQuietly(name);
    return NumberOfErrno(error.default_error_condition().value());
}

}  // namespace

int RepairDatabase(const std::filesystem::path& given, std::string* detail) {
    const auto path = FollowLinks(given);
    const auto opened = Engine::Open(path, Engine::Purpose::Repair);
    if (!opened) return Tell(detail, opened.error().number, opened.error().detail);
    Engine& engine = **opened;
    const auto lines = Integrity(engine);
    if (lines.empty() || (OnlyIndexes(lines) && RebuildIndexes(engine) == 0)) {
        engine.Close();
        const auto sound = Database::Open(path);
        return sound ? 0 : Tell(detail, sound.error().number, sound.error().detail);
    }
    const auto copy = FreeNameBeside(path, ".repair");
    const auto kept = FreeNameBeside(path, ".damaged");
    std::size_t copied = 0;
    int number = CopyReadable(engine, copy, copied, detail);
    engine.Close();
    if (number == 0 && copied == 0) number = Tell(detail, EngineNumber::Damaged, lines.front());
    if (number == 0) number = TestCopy(copy, detail);
    if (number == 0) number = KeepDamaged(path, kept);
    std::string doubt;
    if (number == 0) {
        number = ReplaceFile(copy, path, &doubt);
        if (number != 0) RemoveQuietly(kept);
    }
    if (number != 0) {
        RemoveQuietly(copy);
        return number;
    }
    const auto name = kept.filename().u8string();
    return Tell(detail, 0,
                std::to_string(copied) + " records could be read. The damaged file is kept as \"" +
                    std::string(name.begin(), name.end()) + "\"." + (doubt.empty() ? "" : " " + doubt));
}

}  // namespace bmr::engine
