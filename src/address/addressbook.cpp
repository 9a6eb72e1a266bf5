#include "address/addressbook.h"

#include <array>
#include <span>
#include <unordered_set>

#include "address/contact.h"
#include "address/marker.h"
#include "base/languageus.h"
#include "store/bulkadd.h"
#include "store/indices.h"
#include "store/privatefilter.h"
#include "store/words.h"

namespace bmr::address {

using store::Session;

namespace {

/// What the list calls all categories once it has made a number of it.
constexpr std::int32_t kAllCategories = 65535;

constexpr store::NoiseColumns kNoise{.r3 = true, .r4 = true};

/// In fR5 of every row.
constexpr std::int32_t kRowMark = 2;

bool IsAll(std::int32_t category) {
    return category == store::Category::All || category == store::Category::Edit ||
           category == kAllCategories;
}

/// Whether the columns of a list say something else than what stands in the file. Their texts are compared
/// one by one, since a letter may have moved from one to the other.
bool IsOther(Session& session, const engine::Recordset& row, const char* column, std::string_view text) {
    const std::string_view before = cry::DecipherField(session.cipher, TextOf(row.Field(column)));
    return TrimBlanks(before) != TrimBlanks(text) || store::IsMarked(before) != store::IsMarked(text);
}

/// What of a record goes into its row.
struct RowTexts {
    store::EncodedRecord encoded;
    WipedText marker;
    WipedText contact;

    RowTexts(const Record& record, RandomSource& random)
        : encoded(kRecords.Encode(record, random)),
          marker(AddressPrivateMarker(record.isPrivate, random)),
          contact(ContactColumn(record, random)) {}
};

int FillRow(Session& session, const RowTexts& texts, std::int32_t category, engine::Recordset& row,
            bool added) {
    const bool renamed = added || IsOther(session, row, "fT1", texts.encoded.column) ||
                         IsOther(session, row, "fT2", texts.contact);
    const std::array<std::string_view, 4> plain = {texts.encoded.payload, texts.marker, texts.encoded.column,
                                                   texts.contact};
    const auto ciphered = cry::EncipherBatch(session.cipher, std::span(plain).first(renamed ? 4 : 2));
    if (ciphered.front().empty()) return engine::EngineNumber::Failed;
    row.SetField("fEtx", ciphered[0]);
    row.SetField("fT3", ciphered[1]);
    row.SetField("fG1", category);
    if (added) row.SetField("fR5", kRowMark);
    if (renamed) {
        row.SetField("fT1", ciphered[2]);
        row.SetField("fT2", ciphered[3]);
        if (const int error = store::BucketPosition(session, kRecords.section, row, texts.encoded.column))
            return error;
    }
    store::FillColumns(row, kNoise, session.ports.random);
    return 0;
}

/// Nothing, or the one character of code 0 that stands for it in some files.
bool IsNameless(std::string_view plain) {
    plain = TrimBlanks(plain);
    return plain.empty() || plain == std::string_view("\0", 1);
}

/// The rows without a name. They lie in the first bucket, or never got a place.
Result<std::unordered_set<std::int32_t>> NamelessRecords(Session& session, const std::string& clauses) {
    const SpreadRange first = store::BucketBounds("");
    return store::RecordsWhere(session, kRecords.section,
                               clauses + " And ([fR2] Between " + std::to_string(first.low) + " And " +
                                   std::to_string(first.high) + ")",
                               "fT1", IsNameless);
}

Result<std::unordered_set<std::int32_t>> HiddenRecords(Session& session, const std::string& clauses) {
    return store::RecordsWhere(session, kRecords.section, clauses, "fT3", IsPrivateMarker);
}

}  // namespace

Record ClearRecord(std::int32_t category) {
    Record record;
    record.category = store::RealCategory(category);
    for (std::size_t slot = 0; slot < kComSlots; ++slot)
        record.ComLabel(slot) = LabelOf(DefaultKind(slot));
    return record;
}

Record DecodeAddressRecord(std::string_view payload, std::string_view column) {
    Record record;
    record.readable = store::DecodeFields(record, payload, kAddressFields, column);
    return record;
}

Record ReadRecord(Session& session, const engine::Recordset& row) {
    const WipedText column(cry::DecipherField(session.cipher, TextOf(row.Field("fT1"))));
    Record record =
        DecodeAddressRecord(cry::DecipherField(session.cipher, TextOf(row.Field("fEtx"))), column);
    record.key = NumberOf(row.Field("fPK"), store::kNewRecord);
    record.category = NumberOf(row.Field("fG1"));
    return record;
}

std::optional<Record> FetchRecord(Session& session, std::int32_t key, int* error) {
    const auto row = store::FetchRow(session, kRecords.section, key);
    if (error) *error = row ? 0 : row.error().number;
    if (!row || !*row) return std::nullopt;
    return ReadRecord(session, **row);
}

int WriteRecord(Session& session, Record& record) {
    MakeContactGood(record);
    record.userNumber = session.user.UserNumber;
    const RowTexts texts(record, session.ports.random);
    const auto outcome =
        store::StoreRow(session, kRecords.section, record.key, [&](engine::Recordset& row, bool added) {
            return FillRow(session, texts, record.category, row, added);
        });
    if (outcome.error == 0) record.key = outcome.fPK;
    return outcome.error;
}

int AddRecords(Session& session, std::vector<Record>& records) {
    RandomSource& random = session.ports.random;
    std::vector<WipedText> names;
    names.reserve(records.size());
    for (Record& record : records) {
        MakeContactGood(record);
        record.userNumber = session.user.UserNumber;
        names.emplace_back(store::EncodeColumn(record, kAddressFields, random));
    }
    store::BulkRecords bulk;
    bulk.count = records.size();
    bulk.text = [&](std::size_t i) -> const Bytes& { return names[i]; };
    bulk.payload = [&](std::size_t i) { return std::move(kRecords.Encode(records[i], random).payload); };
    bulk.fG1 = [&](std::size_t i) { return records[i].category; };
    bulk.fT2 = [&](std::size_t i) { return ContactColumn(records[i], random); };
    bulk.fT3 = [&](std::size_t i) { return AddressPrivateMarker(records[i].isPrivate, random); };
    bulk.fR5 = kRowMark;
    std::vector<std::int32_t> keys;
    const int error = store::AddInBulk(session, kRecords.section, bulk, keys);
    for (std::size_t i = 0; error == 0 && i < records.size(); ++i)
        records[i].key = keys[i];
    return error;
}

std::string ClausesOf(Session& session, std::int32_t category) {
    return IsAll(category) ? std::string() : store::CategoryClause(session, kRecords.section, category);
}

Result<std::vector<std::int32_t>> ListRecords(Session& session, std::int32_t category) {
    if (!session.ProgramDb) return Error{engine::EngineNumber::Failed, "no database is open"};
    const std::string clauses = ClausesOf(session, category);
    auto left = NamelessRecords(session, clauses);
    if (!left) return left.error();
    if (!session.ShowPrivate) {
        auto hidden = HiddenRecords(session, clauses);
        if (!hidden) return hidden.error();
        left->merge(*hidden);
    }
    auto cursor = session.ProgramDb->Select(store::NamedStatement(kRecords.section, "fPK", clauses));
    if (!cursor) return cursor.error();
    std::vector<std::int32_t> keys;
    while (cursor->Next())
        if (const std::int32_t key = cursor->Int(0); !left->contains(key)) keys.push_back(key);
    if (cursor->error() != 0) return Error{cursor->error(), session.ProgramDb->LastError()};
    return keys;
}

WipedText RecordName(Session& session, std::int32_t fPK) {
    return store::NameOf(session, kRecords.nameField, fPK);
}

void WipeRecord(Record& record) {
    store::WipeFields(record, kAddressFields);
}

WipedText DeleteText(std::string_view name) {
    return Joined(Msg(79), " \r\n\r\n   ", name);
}

Result<std::size_t> CountHidden(Session& session, std::int32_t category) {
    if (session.ShowPrivate) return std::size_t{0};
    const auto hidden = HiddenRecords(session, ClausesOf(session, category));
    if (!hidden) return hidden.error();
    return hidden->size();
}

std::string DeleteAllText(std::int32_t category, std::size_t hidden) {
    std::string text = Msg(IsAll(category) ? 80 : 102);
    if (hidden > 0)
        text += "\r\n\r\n" + std::string("Including ") + std::to_string(hidden) +
                (hidden == 1 ? " hidden record." : " hidden records.");
    return text;
}

int DeleteRecords(Session& session, std::int32_t category) {
    return store::DeleteRows(session, kRecords.section, ClausesOf(session, category));
}

}  // namespace bmr::address
