#include "confidential/confidential.h"

#include "base/languageus.h"
#include "store/bulkadd.h"
#include "store/indices.h"
#include "store/privatefilter.h"
#include "store/record_get.h"
#include "store/record_put.h"

namespace bmr::confidential {
namespace {

using engine::Recordset;
using store::FieldTag;
using store::Section;
using store::Session;

constexpr store::NoiseColumns kNoise{.t2 = true, .t3 = true, .r3 = true, .r4 = true};
constexpr std::size_t kFieldCount = 9;

/// `changed` is the day of the change, 0 for today.
void Touch(Session& session, Record& record, DateValue changed) {
    record.userNumber = session.user.UserNumber;
    record.dateLastModified =
        changed.serial != 0 ? changed : DateValue{static_cast<double>(session.ports.clock.Today().serial)};
}

int FillRow(Session& session, Recordset& row, const Record& record, bool added, bool renamed) {
    Bytes payload = EncodeConfidentialRecord(session, record);
    const int error = store::SetPayload(session, row, payload);
    cry::WipeString(payload);
    if (error != 0) return error;
    if (added) row.SetField("fG1", record.kind);
    row.SetField("fT1", cry::FieldCipher(session.cipher, 1, record.n[0]));
    if (renamed) row.SetField("fR2", store::BucketKey(record.n[0], session.ports.random));
    store::FillColumns(row, kNoise, session.ports.random);
    return 0;
}

std::string OrderedStatement(const std::string& columns, std::int32_t kind) {
    return "SELECT " + columns + " FROM tt WHERE fSec=16 And fG1=" + std::to_string(kind) + " ORDER BY " +
           store::kBucketColumn + ", fR1" + store::kOwnerAccess;
}

}  // namespace

Bytes EncodeConfidentialRecord(Session& session, const Record& record) {
    RandomSource& random = session.ports.random;
    Bytes payload;
    const auto add = [&](RecordField field, const Value& value, FieldTag tag) {
        store::AppendField(payload, static_cast<std::uint8_t>(field), value, tag, random);
    };
    const auto addText = [&](std::size_t field, std::string_view text, FieldTag tag) {
        if (!text.empty()) store::AppendText(payload, static_cast<std::uint8_t>(field), text, tag);
    };
    for (std::size_t i = 0; i < record.n.size(); ++i)
        addText(i, record.n[i], FieldTag::Text);
    addText(static_cast<std::size_t>(RecordField::notes), record.notes, FieldTag::Memo);
    add(RecordField::DateLastModified, record.dateLastModified, FieldTag::Date);
    add(RecordField::Private, record.isPrivate, FieldTag::Boolean);
    add(RecordField::UserName, std::int32_t{record.userNumber}, FieldTag::Byte);
    return payload;
}

void DecodeConfidentialRecord(Session& session, std::string_view fEtx, Record& record) {
    std::vector<Value> fields(kFieldCount);
    store::DecodeRecord(fields, fEtx, true, session.cipher);
    for (std::size_t i = 0; i < record.n.size(); ++i)
        record.n[i] = TextOf(fields[i]);
    record.notes = TextOf(fields[static_cast<std::size_t>(RecordField::notes)]);
    const auto* date =
        std::get_if<DateValue>(&fields[static_cast<std::size_t>(RecordField::DateLastModified)]);
    record.dateLastModified = date ? *date : DateValue{};
    const auto* flag = std::get_if<bool>(&fields[static_cast<std::size_t>(RecordField::Private)]);
    record.isPrivate = flag ? *flag : true;
    record.readable = flag && store::DecodesWhole(session.cipher.FieldPlain.view());
    record.userNumber =
        static_cast<std::uint8_t>(NumberOf(fields[static_cast<std::size_t>(RecordField::UserName)]));
    for (Value& field : fields)
        if (auto* text = std::get_if<Bytes>(&field)) cry::WipeString(*text);
}

std::optional<Record> FetchRecord(Session& session, std::int32_t key) {
    const auto row = store::FetchRow(session, Section::Confidential, key);
    if (!row || !*row) return std::nullopt;
    Record record;
    record.key = key;
    record.kind = NumberOf((*row)->Field("fG1"));
    DecodeConfidentialRecord(session, TextOf((*row)->Field("fEtx")), record);
    return record;
}

int SaveRecord(Session& session, Record& record) {
    Touch(session, record, {});
    bool renamed = false;
    const auto fill = [&](Recordset& row, bool added) {
        Bytes before = added ? Bytes() : cry::FieldCipher(session.cipher, 2, TextOf(row.Field("fT1")));
        renamed = before != TrimBlanks(record.n[0]);
        cry::WipeString(before);
        return FillRow(session, row, record, added, renamed);
    };
    const auto place = [&](std::int32_t fPK, bool added) {
        return renamed ? store::BucketPosition(session, Section::Confidential, fPK, record.n[0], added) : 0;
    };
    const store::StoreOutcome outcome =
        store::StoreRow(session, Section::Confidential, record.key, fill, place);
    if (outcome.error == 0) record.key = outcome.fPK;
    return outcome.error;
}

int AddRecords(Session& session, std::vector<Record>& records) {
    for (Record& record : records)
        Touch(session, record, record.dateLastModified);
    store::BulkRecords bulk;
    bulk.count = records.size();
    bulk.text = [&](std::size_t i) -> const Bytes& { return records[i].n[0]; };
    bulk.payload = [&](std::size_t i) { return EncodeConfidentialRecord(session, records[i]); };
    bulk.fG1 = [&](std::size_t i) { return records[i].kind; };
    bulk.placeNameless = false;
    std::vector<std::int32_t> keys;
    if (const int error = store::AddInBulk(session, Section::Confidential, bulk, keys); error != 0)
        return error;
    for (std::size_t i = 0; i < records.size(); ++i)
        records[i].key = keys[i];
    return 0;
}

std::string ConfidentialListSql(std::int32_t kind) {
    return OrderedStatement(std::string("fPK, fEtx,fT1, fR1, ") + store::kBucketColumn + " AS X, fG1", kind);
}

Result<std::vector<std::int32_t>> ListRecords(Session& session, std::int32_t kind, std::string_view search) {
    store::ListFilter filter;
    if (const int error =
            filter.Load(session, Section::Confidential, " And fG1=" + std::to_string(kind), search);
        error != 0)
        return Error{error, session.ProgramDb->LastError()};
    // The rows and the order of the list's statement, without carrying the texts through the engine's sort.
    auto cursor = session.ProgramDb->Select(OrderedStatement("fPK", kind));
    if (!cursor) return cursor.error();
    std::vector<std::int32_t> keys;
    while (cursor->Next()) {
        const std::int32_t key = cursor->Int(0);
        if (filter.Shows(key)) keys.push_back(key);
    }
    if (cursor->error() != 0) return Error{cursor->error(), session.ProgramDb->LastError()};
    return keys;
}

Bytes RecordName(Session& session, std::int32_t fPK) {
    return cry::FieldCipher(session.cipher, 2, store::CipheredName(session, fPK));
}

std::string DeleteRecordText(std::string_view name) {
    return Msg(79) + "\r\n\r\n   " + ToUtf8(name);
}

void WipeRecord(Record& record) {
    for (Bytes& text : record.n)
        cry::WipeString(text);
    cry::WipeString(record.notes);
}

}  // namespace bmr::confidential
