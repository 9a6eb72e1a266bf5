#include "rows.h"

#include <vector>

#include "base/errors.h"
#include "base/languageus.h"
#include "store/record_get.h"

namespace bmr::tools {
namespace {

/// Enough rows for the batch cipher to group them, few enough to hold them.
constexpr std::size_t kChunk = 8192;

Row RowAt(const engine::Cursor& cursor) {
    Row row;
    row.fPK = cursor.Int(0);
    row.fSec = cursor.Int(1);
    row.fSub = cursor.Int(2);
    if (!cursor.IsNull(3)) row.fG1 = cursor.Int(3);
    row.fR1 = cursor.Int(4);
    row.fR2 = cursor.Int(5);
    row.fR3 = cursor.Int(6);
    row.fF1 = cursor.Int(7) != 0;
    row.fF2 = cursor.Int(8) != 0;
    row.fF3 = cursor.Int(9) != 0;
    row.fEtx = cursor.Bytes(10);
    row.fT1 = cursor.Bytes(11);
    if (row.fSec == store::Section::Address) row.fT2 = cursor.Bytes(12);
    return row;
}

std::vector<std::string_view> CipherTexts(const std::vector<Row>& rows, Bytes Row::*column) {
    std::vector<std::string_view> texts;
    texts.reserve(rows.size());
    for (const Row& row : rows)
        texts.push_back(IsFieldCiphered(row) ? std::string_view(row.*column) : std::string_view());
    return texts;
}

void Decipher(cry::CipherState& cipher, std::vector<Row>& rows, ListTexts listTexts,
              const std::function<void(const Row&, std::string_view)>& each) {
    if (listTexts == ListTexts::Decipher) {
        cry::DecipherBatch(cipher, CipherTexts(rows, &Row::fT1),
                           [&](std::size_t index, std::string_view plain) { rows[index].listText = plain; });
        cry::DecipherBatch(cipher, CipherTexts(rows, &Row::fT2),
                           [&](std::size_t index, std::string_view plain) { rows[index].contact = plain; });
    }
    cry::DecipherBatch(cipher, CipherTexts(rows, &Row::fEtx),
                       [&](std::size_t index, std::string_view plain) { each(rows[index], plain); });
    rows.clear();
}

}  // namespace

bool IsFieldCiphered(const Row& row) {
    return row.fSec != 2 && !(row.fSec == 1 && row.fSub != 3);
}

int ForEachRow(store::Session& session, const std::string& condition, ListTexts listTexts,
               const std::function<void(const Row& row, std::string_view payload)>& each) {
    auto cursor = session.ProgramDb->Select(
        "SELECT fPK, fSec, fSub, fG1, fR1, fR2, fR3, fF1, fF2, fF3, fEtx, fT1, fT2 FROM tt" +
        (condition.empty() ? std::string() : " WHERE " + condition) + " ORDER BY fSec, fSub, fPK");
    if (!cursor) return cursor.error().number;
    std::vector<Row> rows;
    while (cursor->Next()) {
        rows.push_back(RowAt(*cursor));
        if (rows.size() == kChunk) Decipher(session.cipher, rows, listTexts, each);
    }
    if (cursor->error() != 0) return cursor->error();
    Decipher(session.cipher, rows, listTexts, each);
    return 0;
}

bool IsHidden(const store::Session& session, bool showPrivate, const Row& row, std::string_view payload) {
    if (session.ShowPrivate || showPrivate || !store::FactsOf(row.fSec)) return false;
    const Value flag = store::GetPayloadField(payload, store::FactsOf(row.fSec)->FlagField());
    const auto* isPrivate = std::get_if<bool>(&flag);
    return isPrivate == nullptr || *isPrivate;
}

Result<Row> FindRow(store::Session& session, std::int32_t fPK, bool showPrivate) {
    std::optional<Row> found;
    const int error = ForEachRow(session, "fPK=" + std::to_string(fPK), ListTexts::Leave,
                                 [&](const Row& row, std::string_view payload) {
                                     if (!found && !IsHidden(session, showPrivate, row, payload)) found = row;
                                 });
    if (error != 0) return Error{error, session.ProgramDb->LastError()};
    if (!found) return Error{MessageNumber::NoRecord, Msg(-MessageNumber::NoRecord)};
    return *found;
}

}  // namespace bmr::tools
