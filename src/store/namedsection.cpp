#include "store/namedsection.h"

#include <array>
#include <span>

#include "store/bulkadd.h"
#include "store/indices.h"
#include "store/privatefilter.h"
#include "store/words.h"

namespace bmr::store {
namespace {

constexpr NoiseColumns kNoise{.t2 = true, .t3 = true, .r3 = true, .r4 = true};

/// What of a record's name is to be written, by what stands in the file.
struct NameChange {
    bool moved = false;    ///< its place in the alphabet is another
    bool written = false;  ///< fT1 is
};

NameChange ChangeOf(Session& session, const NamedOrder& order, const EncodedRecord& record,
                    const engine::Recordset& row, bool added) {
    const std::string_view name = TrimBlanks(record.column);
    if (added) return {order.placeNameless || !name.empty(), true};
    const std::string_view before = cry::DecipherField(session.cipher, TextOf(row.Field("fT1")));
    const bool moved = TrimBlanks(before) != name;
    return {moved, moved || order.alwaysWriteName || IsMarked(before) != IsMarked(record.column)};
}

int FillRow(Session& session, const NamedOrder& order, const EncodedRecord& record, std::int32_t group,
            const NameChange& change, engine::Recordset& row, bool added) {
    const std::array<std::string_view, 2> texts = {record.payload, record.column};
    const auto ciphered = cry::EncipherBatch(session.cipher, std::span(texts).first(change.written ? 2 : 1));
    if (ciphered.front().empty()) return engine::EngineNumber::Failed;
    row.SetField("fEtx", ciphered.front());
    if (added || !order.fixedGroup) row.SetField("fG1", group);
    if (change.written) row.SetField("fT1", ciphered.back());
    if (change.moved)
        if (const int error = BucketPosition(session, order.section, row, record.column)) return error;
    FillColumns(row, kNoise, session.ports.random);
    return 0;
}

}  // namespace

Touched TouchOf(const Session& session, DateValue given) {
    const DateValue today{static_cast<double>(session.ports.clock.Today().serial)};
    return {session.user.UserNumber, given.serial != 0 ? given : today};
}

int StoreEncoded(Session& session, const NamedOrder& order, std::int32_t& key, const EncodedRecord& record,
                 std::int32_t group) {
    const StoreOutcome outcome =
        StoreRow(session, order.section, key, [&](engine::Recordset& row, bool added) {
            return FillRow(session, order, record, group, ChangeOf(session, order, record, row, added), row,
                           added);
        });
    if (outcome.error == 0) key = outcome.fPK;
    return outcome.error;
}

int AddEncoded(Session& session, const NamedOrder& order, const NamedRecords& records) {
    std::vector<Bytes> names;
    names.reserve(records.count);
    for (std::size_t i = 0; i < records.count; ++i)
        names.push_back(records.column(i));
    BulkRecords bulk;
    bulk.count = records.count;
    bulk.text = [&](std::size_t i) -> const Bytes& { return names[i]; };
    bulk.payload = records.payload;
    bulk.fG1 = records.group;
    bulk.placeNameless = order.placeNameless;
    std::vector<std::int32_t> keys;
    const int error = AddInBulk(session, order.section, bulk, keys);
    for (Bytes& name : names)
        cry::WipeString(name);
    if (error == 0)
        for (std::size_t i = 0; i < records.count; ++i)
            records.added(i, keys[i]);
    return error;
}

std::string NamedStatement(std::uint8_t section, const std::string& columns, const std::string& clauses) {
    return "SELECT " + columns + " FROM tt WHERE fSec=" + std::to_string(section) + clauses + " ORDER BY " +
           kBucketColumn + ", fR1" + kOwnerAccess;
}

Result<std::vector<std::int32_t>> ListNamed(Session& session, const NamedOrder& order,
                                            const std::string& clauses, std::string_view search) {
    ListFilter filter;
    if (const int error = filter.Load(session, order.section, order.nameField, clauses, search); error != 0)
        return Error{error, session.ProgramDb->LastError()};
    auto cursor = session.ProgramDb->Select(NamedStatement(order.section, "fPK", clauses));
    if (!cursor) return cursor.error();
    std::vector<std::int32_t> keys;
    while (cursor->Next())
        if (const std::int32_t key = cursor->Int(0); filter.Shows(key)) keys.push_back(key);
    if (cursor->error() != 0) return Error{cursor->error(), session.ProgramDb->LastError()};
    return keys;
}

}  // namespace bmr::store
