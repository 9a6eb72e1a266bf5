#include "store/bulkadd.h"

#include <algorithm>

#include "store/indices.h"
#include "store/record_put.h"
#include "store/undostep.h"

namespace bmr::store {
namespace {

/// Enough for the batch cipher to fill its lanes on every core, few enough to hold the longest memos.
constexpr std::size_t kChunk = 512;

/// How many columns of a record are enciphered.
std::size_t TextsOf(const BulkRecords& records) {
    return std::size_t{2} + (records.fT2 ? 1 : 0) + (records.fT3 ? 1 : 0);
}

/// Payload, name and further texts of the records from `first` to before `last`, one behind the other.
std::vector<Bytes> Encipher(Session& session, const BulkRecords& records, std::size_t first,
                            std::size_t last) {
    std::vector<Bytes> made;
    std::vector<std::string_view> plain;
    made.reserve((last - first) * TextsOf(records));
    for (std::size_t i = first; i < last; ++i) {
        plain.emplace_back(made.emplace_back(records.payload(i)));
        plain.emplace_back(records.text(i));
        if (records.fT2) plain.emplace_back(made.emplace_back(records.fT2(i)));
        if (records.fT3) plain.emplace_back(made.emplace_back(records.fT3(i)));
    }
    std::vector<Bytes> ciphered = cry::EncipherBatch(session.cipher, plain);
    for (Bytes& text : made)
        cry::WipeString(text);
    return ciphered;
}

int Positions(Session& session, std::uint8_t section, const BulkRecords& records,
              std::vector<std::int32_t>& positions) {
    std::vector<Bytes> texts;
    texts.reserve(records.count);
    for (std::size_t i = 0; i < records.count; ++i)
        texts.push_back(records.text(i));
    const int error = SpreadBuckets(session, section, texts, positions);
    for (Bytes& text : texts)
        cry::WipeString(text);
    return error;
}

}  // namespace

int AddInBulk(Session& session, std::uint8_t section, const BulkRecords& records,
              std::vector<std::int32_t>& keys) {
    // Without keys the cipher gives nothing, and nothing is no record.
    if (session.cipher.Keystring.empty()) return engine::EngineNumber::Failed;
    RandomSource& random = session.ports.random;
    UndoStep step(session, section, {"import", "imported"});
    engine::Transaction transaction(*session.ProgramDb);
    if (transaction.error() != 0) return transaction.error();
    std::vector<std::int32_t> positions;
    if (const int error = Positions(session, section, records, positions); error != 0) return error;
    auto table = session.ProgramDb->OpenRecordset("tt");
    if (!table) return table.error().number;
    engine::Recordset& row = **table;
    keys.assign(records.count, 0);
    const NoiseColumns noise{.t2 = !records.fT2, .t3 = !records.fT3, .r3 = true, .r4 = true};
    const std::size_t texts = TextsOf(records);
    std::vector<Bytes> ciphered;
    for (std::size_t i = 0; i < records.count; ++i) {
        if (i % kChunk == 0) ciphered = Encipher(session, records, i, std::min(i + kChunk, records.count));
        auto text = ciphered.begin() + static_cast<std::ptrdiff_t>(i % kChunk * texts);
        row.AddNew();
        row.SetField("fSec", std::int32_t{section});
        row.SetField("AE", 1);
        row.SetField("fG1", records.fG1(i));
        row.SetField("fEtx", std::move(*text++));
        row.SetField("fT1", std::move(*text++));
        if (records.fT2) row.SetField("fT2", std::move(*text++));
        if (records.fT3) row.SetField("fT3", std::move(*text++));
        if (records.fR5 != 0) row.SetField("fR5", records.fR5);
        if (records.placeNameless || !TrimBlanks(records.text(i)).empty()) {
            row.SetField("fR1", positions[i]);
            row.SetField("fR2", BucketKey(records.text(i), random));
        }
        FillColumns(row, noise, random);
        const auto after = step.Mark(row);
        if (const int error = row.Update(); error != 0) return error;
        keys[i] = NumberOf(row.Field("fPK"));
        step.Record(keys[i], nullptr, after);
    }
    if (const int error = transaction.Commit()) return error;
    step.Keep();
    return 0;
}

}  // namespace bmr::store
