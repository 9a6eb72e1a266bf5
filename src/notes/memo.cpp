#include "notes/memo.h"

#include "base/languageus.h"
#include "store/categories.h"
#include "store/privatefilter.h"

namespace bmr::notes {

using store::Session;

namespace {

void Touch(const Session& session, Memo& memo, DateValue changed) {
    const store::Touched touched = store::TouchOf(session, changed);
    memo.userNumber = touched.userNumber;
    memo.dateLastModified = touched.day;
}

}  // namespace

Memo ClearRecord(Session& session, std::int32_t category) {
    Memo memo;
    memo.dateCreated = memo.dateLastModified = store::TouchOf(session).day;
    memo.category = store::RealCategory(category);
    return memo;
}

Memo ReadRecord(Session& session, const engine::Recordset& row) {
    return store::ReadNamed(session, kMemos, row);
}

std::optional<Memo> FetchRecord(Session& session, std::int32_t key, int* error) {
    return store::FetchNamed(session, kMemos, key, error);
}

int WriteRecord(Session& session, Memo& memo) {
    Touch(session, memo, {});
    const int error = store::StoreNamed(session, kMemos, memo);
    if (error == 0) session.CalendarDirty = true;
    return error;
}

int AddRecords(Session& session, std::vector<Memo>& memos) {
    for (Memo& memo : memos)
        Touch(session, memo, memo.dateLastModified);
    const int error = store::AddNamed(session, kMemos, memos);
    if (error == 0) session.CalendarDirty = true;
    return error;
}

Result<std::vector<std::int32_t>> ListRecords(Session& session, std::int32_t category,
                                              std::string_view search) {
    return store::ListNamed(session, kMemos, store::CategoryClause(session, kMemos.section, category),
                            search);
}

WipedText RecordName(Session& session, std::int32_t fPK) {
    return store::NameOf(session, kMemos.nameField, fPK);
}

void WipeRecord(Memo& memo) {
    store::WipeFields(memo, kMemoFields);
}

WipedText DeleteText(std::string_view subject) {
    return Joined(Msg(27), " \r\n\r\n   ", subject);
}

int DeleteRecords(Session& session, std::int32_t category) {
    return store::DeleteRows(session, kMemos.section,
                             store::CategoryClause(session, kMemos.section, category));
}

}  // namespace bmr::notes
