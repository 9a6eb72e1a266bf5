#include "confidential/confidential.h"

#include "base/errors.h"
#include "base/languageus.h"
#include "confidential/kinds.h"
#include "store/indices.h"
#include "store/privatefilter.h"

namespace bmr::confidential {

using store::Session;

namespace {

void Touch(const Session& session, Record& record, DateValue changed) {
    const store::Touched touched = store::TouchOf(session, changed);
    record.userNumber = touched.userNumber;
    record.dateLastModified = touched.day;
}

std::string KindClause(std::int32_t kind) {
    return " And fG1=" + std::to_string(kind);
}

}  // namespace

store::FieldSet MaskedFields(const Record& record) {
    const Kind* kind = ConfidentialKindFields(record.kind);
    store::FieldSet masked = 0;
    for (std::uint8_t i = 0; kind && i < kind->captions.size(); ++i)
        if (IsMaskedCaption(kind->captions[i])) masked |= store::SetOf(i);
    return masked;
}

std::optional<Record> FetchRecord(Session& session, std::int32_t key, int* error) {
    return store::FetchNamed(session, kRecords, key, error);
}

int WriteRecord(Session& session, Record& record) {
    Touch(session, record, {});
    return store::StoreNamed(session, kRecords, record);
}

int AddRecords(Session& session, std::vector<Record>& records) {
    for (const Record& record : records)
        if (const Kind* kind = ConfidentialKindFields(record.kind);
            kind && kind->FieldCount() < record.n.size() && !record.n.back().empty())
            return MessageNumber::InputError;
    for (Record& record : records)
        Touch(session, record, record.dateLastModified);
    return store::AddNamed(session, kRecords, records);
}

std::string ConfidentialListSql(std::int32_t kind) {
    const std::string columns = std::string("fPK, fEtx,fT1, fR1, ") + store::kBucketColumn + " AS X, fG1";
    return store::NamedStatement(kRecords.section, columns, KindClause(kind));
}

Result<std::vector<std::int32_t>> ListRecords(Session& session, std::int32_t kind, std::string_view search) {
    return store::ListNamed(session, kRecords, KindClause(kind), search);
}

Result<std::vector<KindRecords>> FindRecords(Session& session, std::string_view search) {
    std::vector<KindRecords> found;
    for (const Kind& kind : ConfidentialKinds()) {
        auto keys = ListRecords(session, kind.number, search);
        if (!keys) return keys.error();
        if (!keys->empty()) found.push_back({kind.number, std::move(*keys)});
    }
    return found;
}

WipedText RecordName(Session& session, std::int32_t fPK) {
    return store::NameOf(session, kRecords.nameField, fPK);
}

WipedText DeleteText(std::string_view name) {
    return Joined(Msg(79), "\r\n\r\n   ", name);
}

void WipeRecord(Record& record) {
    store::WipeFields(record, ConfidentialFields);
}

}  // namespace bmr::confidential
