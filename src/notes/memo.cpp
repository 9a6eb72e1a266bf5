#include "notes/memo.h"

#include <span>

#include "base/languageus.h"
#include "store/bulkadd.h"
#include "store/categories.h"
#include "store/indices.h"
#include "store/privatefilter.h"
#include "store/record_get.h"
#include "store/record_put.h"

namespace bmr::notes {
namespace {

using engine::Recordset;
using store::FieldTag;
using store::Section;
using store::Session;

constexpr store::NoiseColumns kNoise{.t2 = true, .t3 = true, .r3 = true, .r4 = true};

Bytes EncodeMemo(Session& session, const Memo& memo) {
    RandomSource& random = session.ports.random;
    Bytes payload;
    const auto add = [&](MemoField field, const Value& value, FieldTag tag) {
        store::AppendField(payload, static_cast<std::uint8_t>(field), value, tag, random);
    };
    add(MemoField::UserNumber, std::int32_t{memo.userNumber}, FieldTag::Byte);
    add(MemoField::Private, memo.isPrivate, FieldTag::Boolean);
    add(MemoField::DateCreated, memo.dateCreated, FieldTag::Date);
    add(MemoField::DateLastModified, memo.dateLastModified, FieldTag::Date);
    store::AppendText(payload, static_cast<std::uint8_t>(MemoField::Subject), memo.subject, FieldTag::Text);
    store::AppendText(payload, static_cast<std::uint8_t>(MemoField::Memo), memo.body, FieldTag::Memo);
    return payload;
}

/// Sets every column but the place in the alphabet's `fR1`. 0 or an error number.
int FillMemoRow(Session& session, Recordset& row, Memo& memo, bool renamed) {
    Bytes payload = EncodeMemo(session, memo);
    const std::string_view texts[] = {payload, memo.subject};
    const auto ciphered = cry::EncipherBatch(session.cipher, std::span(texts).first(renamed ? 2 : 1));
    cry::WipeString(payload);
    if (ciphered.front().empty()) return engine::EngineNumber::Failed;
    row.SetField("fEtx", ciphered.front());
    row.SetField("fG1", memo.category);
    if (renamed) {
        row.SetField("fT1", ciphered.back());
        row.SetField("fR2", store::BucketKey(memo.subject, session.ports.random));
    }
    store::FillColumns(row, kNoise, session.ports.random);
    return 0;
}

/// `changed` is the day of the change, 0 for today.
void Touch(Session& session, Memo& memo, DateValue changed) {
    memo.userNumber = session.user.UserNumber;
    memo.dateLastModified =
        changed.serial != 0 ? changed : DateValue{static_cast<double>(session.ports.clock.Today().serial)};
}

DateValue DateOf(const Value& value) {
    const auto* date = std::get_if<DateValue>(&value);
    return date ? *date : DateValue{};
}

/// The list's rows in alphabetical order. Only plain columns: with texts in it the engine would carry every
/// body through its sort.
std::string OrderedKeys(const std::string& columns, const std::string& clauses) {
    return "SELECT " + columns + " FROM tt WHERE fSec=14" + clauses + " ORDER BY " + store::kBucketColumn +
           ", fR1" + store::kOwnerAccess;
}

}  // namespace

Memo ClearMemo(Session& session, std::int32_t category) {
    Memo memo;
    memo.dateCreated = {static_cast<double>(session.ports.clock.Today().serial)};
    memo.dateLastModified = memo.dateCreated;
    memo.category = store::RealCategory(category);
    return memo;
}

Memo ReadMemo(Session& session, const Recordset& row) {
    Memo memo;
    std::vector<Value> fields(6);
    store::DecodeRecord(fields, TextOf(row.Field("fEtx")), true, session.cipher);
    const auto at = [&fields](MemoField field) -> const Value& {
        return fields[static_cast<std::size_t>(field)];
    };
    memo.key = NumberOf(row.Field("fPK"), store::kNewRecord);
    memo.category = NumberOf(row.Field("fG1"));
    memo.userNumber = static_cast<std::uint8_t>(NumberOf(at(MemoField::UserNumber)));
    const auto* flag = std::get_if<bool>(&at(MemoField::Private));
    memo.isPrivate = flag ? *flag : true;
    memo.readable = flag && store::DecodesWhole(session.cipher.FieldPlain.view());
    memo.dateCreated = DateOf(at(MemoField::DateCreated));
    memo.dateLastModified = DateOf(at(MemoField::DateLastModified));
    memo.subject = TextOf(at(MemoField::Subject));
    memo.body = TextOf(at(MemoField::Memo));
    return memo;
}

std::optional<Memo> FetchMemo(Session& session, std::int32_t key) {
    const auto row = store::FetchRow(session, Section::Memo, key);
    if (!row || !*row) return std::nullopt;
    return ReadMemo(session, **row);
}

int WriteMemo(Session& session, Memo& memo) {
    Touch(session, memo, {});
    bool renamed = true;
    const auto fill = [&](Recordset& row, bool added) {
        if (!added) {
            Bytes before = cry::FieldCipher(session.cipher, 2, TextOf(row.Field("fT1")));
            renamed = before != TrimBlanks(memo.subject);
            cry::WipeString(before);
        }
        return FillMemoRow(session, row, memo, renamed);
    };
    const auto place = [&](std::int32_t fPK, bool added) {
        return renamed ? store::BucketPosition(session, Section::Memo, fPK, memo.subject, added) : 0;
    };
    const store::StoreOutcome outcome = store::StoreRow(session, Section::Memo, memo.key, fill, place);
    if (outcome.error != 0) return outcome.error;
    memo.key = outcome.fPK;
    session.CalendarDirty = true;
    return 0;
}

int AddMemos(Session& session, std::vector<Memo>& memos) {
    for (Memo& memo : memos)
        Touch(session, memo, memo.dateLastModified);
    store::BulkRecords records;
    records.count = memos.size();
    records.text = [&](std::size_t i) -> const Bytes& { return memos[i].subject; };
    records.payload = [&](std::size_t i) { return EncodeMemo(session, memos[i]); };
    records.fG1 = [&](std::size_t i) { return memos[i].category; };
    std::vector<std::int32_t> keys;
    if (const int error = store::AddInBulk(session, Section::Memo, records, keys); error != 0) return error;
    for (std::size_t i = 0; i < memos.size(); ++i)
        memos[i].key = keys[i];
    session.CalendarDirty = true;
    return 0;
}

Result<std::vector<MemoRow>> ListMemos(Session& session, std::int32_t category, std::string_view search) {
    const std::string clauses = store::CategoryClause(category);
    store::ListFilter filter;
    if (const int error = filter.Load(session, Section::Memo, clauses, search); error != 0)
        return Error{error, session.ProgramDb->LastError()};
    auto cursor = session.ProgramDb->Select(OrderedKeys("fPK, fG1", clauses));
    if (!cursor) return cursor.error();
    std::vector<MemoRow> rows;
    while (cursor->Next()) {
        const std::int32_t key = cursor->Int(0);
        if (filter.Shows(key)) rows.push_back({key, cursor->Int(1)});
    }
    if (cursor->error() != 0) return Error{cursor->error(), session.ProgramDb->LastError()};
    return rows;
}

Bytes MemoSubject(Session& session, std::int32_t fPK) {
    return cry::FieldCipher(session.cipher, 2, store::CipheredName(session, fPK));
}

std::string DeleteMemoText(std::string_view subject) {
    return Msg(27) + " \r\n\r\n   " + ToUtf8(subject);
}

int DeleteMemos(Session& session, std::int32_t category) {
    return store::DeleteRows(session, Section::Memo, store::CategoryClause(category));
}

}  // namespace bmr::notes
