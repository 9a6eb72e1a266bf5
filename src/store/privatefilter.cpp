#include "store/privatefilter.h"

#include <vector>

#include "crypto/cry.h"
#include "store/record_get.h"
#include "store/section_store.h"

namespace bmr::store {
namespace {

/// As many rows as share key schedules well, without a whole large section in memory.
constexpr std::size_t kBatchRows = 100000;
constexpr std::size_t kBatchBytes = std::size_t{32} << 20;

struct Batch {
    std::vector<std::int32_t> keys;
    std::vector<std::size_t> ends;
    Bytes ciphered;

    bool Full() const { return keys.size() >= kBatchRows || ciphered.size() >= kBatchBytes; }
    void Add(std::int32_t key, std::string_view text) {
        keys.push_back(key);
        ciphered.append(text);
        ends.push_back(ciphered.size());
    }
};

void TestBatch(Session& session, std::uint8_t section, Batch& batch,
               std::unordered_set<std::int32_t>& found) {
    std::vector<std::string_view> views;
    views.reserve(batch.ends.size());
    std::size_t begin = 0;
    for (const std::size_t end : batch.ends) {
        views.push_back(std::string_view(batch.ciphered).substr(begin, end - begin));
        begin = end;
    }
    cry::DecipherBatch(session.cipher, views, [&](std::size_t i, std::string_view plain) {
        if (IsPayloadPrivate(plain, section)) found.insert(batch.keys[i]);
    });
    batch = Batch();
}

}  // namespace

Result<std::unordered_set<std::int32_t>> PrivateRecords(Session& session, std::uint8_t section,
                                                        const std::string& clauses) {
    auto cursor = session.ProgramDb->Select("SELECT fPK, fEtx FROM tt WHERE fSec=" + std::to_string(section) +
                                            clauses + kOwnerAccess);
    if (!cursor) return cursor.error();
    std::unordered_set<std::int32_t> found;
    Batch batch;
    while (cursor->Next()) {
        batch.Add(cursor->Int(0), cursor->Bytes(1));
        if (batch.Full()) TestBatch(session, section, batch, found);
    }
    if (cursor->error() != 0) return Error{cursor->error(), session.ProgramDb->LastError()};
    TestBatch(session, section, batch, found);
    return found;
}

}  // namespace bmr::store
