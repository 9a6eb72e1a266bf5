#include "address/rowcheck.h"

#include "address/contact.h"
#include "address/marker.h"
#include "store/record_get.h"
#include "store/words.h"

namespace bmr::address {
namespace {

constexpr std::size_t kTexts = 4;  ///< fT1, fT2, fT3, fEtx
constexpr std::size_t kChunk = 2048;

struct Columns {
    WipedText name;
    WipedText contact;
    bool isPrivate = true;
};

std::string FaultOf(const Columns& row, std::string_view payload) {
    const Value flag = store::GetPayloadField(payload, FieldNumber::Private);
    if (const auto* isPrivate = std::get_if<bool>(&flag); isPrivate && *isPrivate != row.isPrivate)
        return "fT3 does not tell whether the address is private";
    const WipedText contact = ContactOfPayload(payload);
    if (TrimBlanks(contact) != TrimBlanks(row.contact) ||
        (store::IsMarked(contact) && !store::IsMarked(row.contact)))
        return "fT2 does not tell the contact";
    const WipedText whole = TextOf(store::GetPayloadField(payload, store::CompanionOf(FieldNumber::FileAs)));
    if (!whole.empty() && !store::IsMarked(row.name) &&
        store::JudgeCompanion(whole, TrimBlanks(row.name)) == store::CompanionState::Fits)
        return "fT1 does not tell that the payload has the whole name";
    return {};
}

/// Rows that wait to be deciphered together, which is far cheaper than one by one.
class Checker {
  public:
    explicit Checker(store::Session& session) : session_(session) {}

    void Add(const engine::Cursor& cursor) {
        keys_.push_back(cursor.Int(0));
        for (std::size_t i = 0; i < kTexts; ++i)
            ciphered_.emplace_back(cursor.Bytes(1 + static_cast<int>(i)));
        if (keys_.size() == kChunk) Check();
    }
    void Check() {
        Columns row;
        const std::vector<std::string_view> views(ciphered_.begin(), ciphered_.end());
        cry::DecipherBatch(session_.cipher, views, [&](std::size_t i, std::string_view plain) {
            switch (i % kTexts) {
                case 0:
                    row.name = plain;
                    break;
                case 1:
                    row.contact = plain;
                    break;
                case 2:
                    row.isPrivate = IsPrivateMarker(plain);
                    break;
                default:
                    Take(keys_[i / kTexts], row, plain);
            }
        });
        keys_.clear();
        ciphered_.clear();
    }

    CheckedRows checked;

  private:
    void Take(std::int32_t fPK, const Columns& row, std::string_view payload) {
        const std::string_view name = TrimBlanks(row.name);
        if (name.empty() || name == std::string_view("\0", 1)) ++checked.nameless;
        store::PayloadReader reader(payload);
        for (store::RawField field; reader.Next(field);) {
        }
        if (payload.empty() || !reader.Clean()) return;
        if (std::string fault = FaultOf(row, payload); !fault.empty())
            checked.faults.push_back({fPK, std::move(fault)});
    }

    store::Session& session_;
    std::vector<std::int32_t> keys_;
    std::vector<Bytes> ciphered_;
};

}  // namespace

Result<CheckedRows> CheckRows(store::Session& session) {
    auto rows =
        session.ProgramDb->Select("SELECT fPK, fT1, fT2, fT3, fEtx FROM tt WHERE fSec=11 ORDER BY fPK");
    if (!rows) return rows.error();
    Checker checker(session);
    while (rows->Next())
        checker.Add(*rows);
    if (rows->error() != 0) return Error{rows->error(), session.ProgramDb->LastError()};
    checker.Check();
    return std::move(checker.checked);
}

}  // namespace bmr::address
