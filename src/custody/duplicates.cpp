#include <functional>
#include <string>
#include <unordered_set>
#include <vector>

#include "custody/lifecycle.h"
#include "store/session.h"

namespace bmr::custody {

using namespace store;

namespace {

/// Whether a number stands twice in `hashes`: an open table of twice the size, since a node for each of a
/// hundred thousand rows would cost more than reading them.
class RepeatFinder {
  public:
    explicit RepeatFinder(std::size_t count) {
        std::size_t size = 16;
        while (size < count * 2)
            size *= 2;
        slots_.resize(size);
    }
    /// True when the hash was there before.
    bool Insert(std::uint64_t hash) {
        if (hash == 0) hash = 1;  // 0 marks a free slot
        std::size_t at = hash & (slots_.size() - 1);
        for (; slots_[at] != 0; at = (at + 1) & (slots_.size() - 1))
            if (slots_[at] == hash) return true;
        slots_[at] = hash;
        return false;
    }

  private:
    std::vector<std::uint64_t> slots_;
};

/// Rows of the classes up to this one are no section's records.
constexpr std::uint8_t kLastSystemClass = 10;

struct Scan {
    int error = 0;
    std::vector<std::uint8_t> sections;  ///< those in which a hash stands twice
};

/// One pass over the rows' fT1. It may name a section too many, by two texts of one hash, never one too few.
Scan SectionsWithRepeats(engine::Database& db) {
    Scan result;
    // Without a condition: one walk along the table. With fSec>10 the engine would go by the index and fetch
    // each row by itself.
    auto rows = db.Select("SELECT fSec, fT1 FROM tt");
    if (!rows) {
        result.error = rows.error().number;
        return result;
    }
    std::vector<std::pair<std::uint8_t, std::uint64_t>> seen;
    while (rows->Next()) {
        const auto section = static_cast<std::uint8_t>(rows->Int(0));
        if (section <= kLastSystemClass || rows->IsNull(1)) continue;
        const std::uint64_t hash = std::hash<std::string_view>()(rows->Bytes(1));
        seen.emplace_back(section, hash + section * 0x9E3779B97F4A7C15ull);
    }
    result.error = rows->error();
    RepeatFinder finder(seen.size());
    std::vector<bool> named(256);
    for (const auto& [section, hash] : seen) {
        if (!finder.Insert(hash) || named[section]) continue;
        named[section] = true;
        result.sections.push_back(section);
    }
    return result;
}

/// Walks a section's rows in the order of insertion and deletes each whose fT1 stood before. By the row and
/// not by its key: a copy of a row has the key of the first.
int RemoveFrom(engine::Database& db, std::uint8_t section, int& removed) {
    auto found = db.OpenRecordset("SELECT * FROM tt WHERE fSec=" + std::to_string(section),
                                  engine::RecordsetType::Dynaset);
    if (!found) return found.error().number;
    engine::Recordset& rows = **found;
    std::unordered_set<Bytes> stood;
    for (; !rows.Eof(); rows.MoveNext()) {
        const Value text = rows.Field("fT1");
        const auto* bytes = std::get_if<Bytes>(&text);
        if (!bytes || stood.insert(*bytes).second) continue;
        if (const int error = rows.Delete()) return error;
        ++removed;
    }
    return 0;
}

}  // namespace

int RemoveDuplicates(Session& session) {
    engine::Database& db = *session.ProgramDb;
    const Scan scan = SectionsWithRepeats(db);
    if (scan.error != 0) return -scan.error;
    if (scan.sections.empty()) return 0;
    engine::Transaction all(db);
    if (all.error() != 0) return -all.error();
    int removed = 0;
    for (const std::uint8_t section : scan.sections)
        if (const int error = RemoveFrom(db, section, removed)) return -error;
    if (const int error = all.Commit()) return -error;
    return removed;
}

}  // namespace bmr::custody
