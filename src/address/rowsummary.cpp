#include "address/rowsummary.h"

#include "address/addressbook.h"
#include "address/contact.h"
#include "address/marker.h"
#include "store/words.h"

namespace bmr::address {

using store::Session;

namespace {

constexpr std::size_t kTexts = 3;  ///< fT1, fT2, fT3

void SetText(RowSummary& summary, std::size_t which, std::string_view plain, bool& marked) {
    if (which == 2) {
        summary.isPrivate = IsPrivateMarker(plain);
        return;
    }
    marked = marked || store::IsMarked(plain);
    (which == 0 ? summary.fileAs : summary.contact) = ToUtf8(TrimBlanks(plain));
}

/// The whole texts of a row whose columns hold letters for them.
void Complete(RowSummary& summary, std::string_view payload, std::string_view column) {
    const Record record = DecodeAddressRecord(payload, column);
    summary.fileAs = TrimBlanks(record.fileAs);
    // What a payload does not tell is shown as the column has it.
    const WipedText contact = AddressContactText(record);
    if (!TrimBlanks(contact).empty()) summary.contact = TrimBlanks(contact);
}

}  // namespace

RowSummary AddressRowSummary(Session& session, const engine::Recordset& row) {
    RowSummary summary;
    summary.fPK = NumberOf(row.Field("fPK"));
    summary.category = NumberOf(row.Field("fG1"));
    summary.changes = NumberOf(row.Field("AE"), 1);
    bool marked = false;
    const WipedText column(cry::DecipherField(session.cipher, TextOf(row.Field("fT1"))));
    SetText(summary, 0, column, marked);
    SetText(summary, 1, cry::DecipherField(session.cipher, TextOf(row.Field("fT2"))), marked);
    SetText(summary, 2, cry::DecipherField(session.cipher, TextOf(row.Field("fT3"))), marked);
    if (marked) Complete(summary, cry::DecipherField(session.cipher, TextOf(row.Field("fEtx"))), column);
    return summary;
}

Result<std::vector<RowSummary>> ReadSummaries(Session& session, store::Keys keys) {
    if (!session.ProgramDb) return Error{engine::EngineNumber::Failed, "no database is open"};
    std::vector<RowSummary> summaries;
    std::vector<Bytes> ciphered;
    summaries.reserve(keys.size());
    ciphered.reserve(keys.size() * kTexts);
    for (const std::int32_t key : keys) {
        auto row =
            session.ProgramDb->Select("SELECT fT1, fT2, fT3, fG1, AE, fSec FROM tt WHERE fPK=?", {key});
        if (!row) return row.error();
        if (!row->Next() || row->Int(5) != kRecords.section) continue;
        RowSummary& summary = summaries.emplace_back();
        summary.fPK = key;
        summary.category = row->Int(3);
        summary.changes = row->IsNull(4) ? 1 : row->Int(4);
        for (int column = 0; column < static_cast<int>(kTexts); ++column)
            ciphered.emplace_back(row->Bytes(column));
    }
    std::vector<bool> marked(summaries.size());
    const std::vector<std::string_view> views(ciphered.begin(), ciphered.end());
    cry::DecipherBatch(session.cipher, views, [&](std::size_t i, std::string_view plain) {
        bool isMarked = marked[i / kTexts];
        SetText(summaries[i / kTexts], i % kTexts, plain, isMarked);
        marked[i / kTexts] = isMarked;
    });
    for (std::size_t i = 0; i < summaries.size(); ++i) {
        if (!marked[i]) continue;
        auto row = session.ProgramDb->Select("SELECT fEtx FROM tt WHERE fPK=?", {summaries[i].fPK});
        if (!row || !row->Next()) continue;
        const WipedText column(cry::DecipherField(session.cipher, ciphered[i * kTexts]));
        Complete(summaries[i], cry::DecipherField(session.cipher, row->Bytes(0)), column);
    }
    return summaries;
}

}  // namespace bmr::address
