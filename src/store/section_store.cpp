#include "store/section_store.h"

#include "base/errors.h"
#include "store/record_put.h"
#include "store/undostep.h"

namespace bmr::store {
namespace {

/// Change marks of a row: 1 when it was added, 2 when it was edited. Null counts as none.
void MarkChange(engine::Recordset& row, bool added) {
    row.SetField("AE", added ? 1 : NumberOf(row.Field("AE")) | 2);
}

constexpr NoiseColumns kAllColumns = {
    .t1 = true, .t2 = true, .t3 = true, .r1 = true, .r2 = true, .r3 = true, .r4 = true};

}  // namespace

StoreOutcome StoreRow(Session& session, std::uint8_t section, std::int32_t key,
                      const std::function<int(engine::Recordset& row, bool added)>& fill) {
    StoreOutcome outcome;
    const auto fail = [&outcome, &session](int error) {
        session.bucketOrder.Clear();  // it may know of rows that are being rolled back
        outcome = {.error = error};
        return outcome;
    };
    UndoStep step(session, section);
    engine::Transaction transaction(*session.ProgramDb);
    if (transaction.error() != 0) return fail(transaction.error());
    auto opened = session.ProgramDb->OpenRecordset("tt");
    if (!opened) return fail(opened.error().number);
    engine::Recordset& row = **opened;

    outcome.added = true;
    if (key != kNewRecord) {
        if (const int error = row.FindFirst("fPK=?", {key})) return fail(error);
        outcome.added = row.NoMatch();
    }
    if (outcome.added)
        row.AddNew();
    else if (NumberOf(row.Field("fSec")) != section)
        return fail(MessageNumber::UpdateImpossible);
    else
        row.Edit();
    auto before = outcome.added || !step.WantsRows() ? nullptr : ImageOf(row);
    if (const int error = fill(row, outcome.added)) return fail(error);
    row.SetField("fSec", std::int32_t{section});
    MarkChange(row, outcome.added);
    const auto after = step.Mark(row);
    const std::int64_t changesBefore = session.ProgramDb->ChangeCount();
    if (const int error = row.Update(1, 0)) return fail(error);
    outcome.fPK = NumberOf(row.Field("fPK"));
    // `fill` has told of the place that the row takes in the alphabet.
    session.bucketOrder.Name(outcome.fPK);
    session.bucketOrder.Passed(changesBefore, session.ProgramDb->ChangeCount());
    step.Record(outcome.fPK, std::move(before), after);
    if (const int error = transaction.Commit()) return fail(error);
    step.Keep();
    return outcome;
}

Result<std::unique_ptr<engine::Recordset>> FetchRow(Session& session, std::uint8_t section,
                                                    std::int32_t key) {
    std::unique_ptr<engine::Recordset> none;
    if (!session.ProgramDb) return none;
    auto row = session.ProgramDb->OpenRecordset("SELECT * FROM tt WHERE fPK=? WITH OWNERACCESS OPTION;",
                                                engine::RecordsetType::Snapshot, {key});
    if (row && ((*row)->Eof() || NumberOf((*row)->Field("fSec")) != section)) return none;
    return row;
}

Bytes CipheredName(Session& session, std::int32_t key) {
    if (!session.ProgramDb) return {};
    auto row = session.ProgramDb->Select("SELECT fT1 FROM tt WHERE fPK=?", {key});
    return row && row->Next() ? Bytes(row->Bytes(0)) : Bytes();
}

int DeleteRow(Session& session, std::int32_t key) {
    auto table = session.ProgramDb->OpenRecordset("tt");
    if (!table) return table.error().number;
    auto before = FindImage(**table, key);
    if (!before) return before.error().number;
    if (!*before) return 0;  // somebody was quicker
    UndoStep step(session, static_cast<std::uint8_t>(SectionOf(**before)));
    const std::int64_t changesBefore = session.ProgramDb->ChangeCount();
    const int error =
        session.ProgramDb->Execute("DELETE * FROM tt WHERE fPK=? WITH OWNERACCESS OPTION;", {key});
    if (error != 0) return error;
    session.bucketOrder.Forget(key);
    session.bucketOrder.Passed(changesBefore, session.ProgramDb->ChangeCount());
    step.Record(key, std::move(*before), {});
    step.Keep();
    return 0;
}

int DeleteRows(Session& session, std::uint8_t section, const std::string& clauses) {
    const std::string which = " FROM tt WHERE fSec=" + std::to_string(section) + clauses + kOwnerAccess;
    UndoStep step(session, section);
    engine::Transaction transaction(*session.ProgramDb);
    if (transaction.error() != 0) return transaction.error();
    {
        auto rows = session.ProgramDb->OpenRecordset("SELECT *" + which);
        if (!rows) return rows.error().number;
        for (; !(*rows)->Eof() && step.WantsRows(); (*rows)->MoveNext()) {
            auto before = ImageOf(**rows);
            const std::int32_t key = before->fPK;
            step.Record(key, std::move(before), {});
        }
    }
    const std::int64_t changesBefore = session.ProgramDb->ChangeCount();
    if (const int error = session.ProgramDb->Execute("DELETE *" + which)) return error;
    step.CountDeleted(static_cast<std::size_t>(session.ProgramDb->ChangeCount() - changesBefore));
    if (const int error = transaction.Commit()) return error;
    step.Keep();
    return 0;
}

int SetPayload(Session& session, engine::Recordset& row, std::string_view payload) {
    const Bytes cipher = cry::FieldCipher(session.cipher, 1, payload);
    if (cipher.empty()) return engine::EngineNumber::Failed;
    row.SetField("fEtx", cipher);
    return 0;
}

Result<std::optional<Secret>> FetchSinglePayload(Session& session, std::uint8_t fSec, std::uint8_t fSub) {
    if (!session.ProgramDb) return Error{engine::EngineNumber::Failed, "no database is open"};
    auto rows = session.ProgramDb->Select(
        "SELECT fEtx FROM tt WHERE fSec=? And fSub=? WITH OWNERACCESS OPTION;", {fSec, fSub});
    if (!rows) return rows.error();
    if (!rows->Next()) {
        if (rows->error() != 0) return Error{rows->error(), session.ProgramDb->LastError()};
        return std::optional<Secret>();
    }
    if (cry::DecipherField(session.cipher, rows->Bytes(0)).empty()) return std::optional<Secret>(Secret());
    return std::optional<Secret>(std::move(session.cipher.FieldPlain));
}

int StoreSinglePayload(Session& session, std::uint8_t fSec, std::uint8_t fSub, std::string_view payload) {
    const bool ofCategories = fSec == kListClass;
    UndoStep step(session, fSub, {"change of the categories", "The categories were changed.", true});
    engine::Transaction transaction(*session.ProgramDb);
    if (transaction.error() != 0) return transaction.error();
    auto opened = session.ProgramDb->OpenRecordset("tt");
    if (!opened) return opened.error().number;
    engine::Recordset& row = **opened;
    if (const int error = row.FindFirst("fSec=? And fSub=?", {fSec, fSub})) return error;
    const bool added = row.NoMatch();
    if (added) {
        row.AddNew();
        row.SetField("fSec", std::int32_t{fSec});
        row.SetField("fSub", std::int32_t{fSub});
    } else {
        row.Edit();
    }
    auto before = added || !ofCategories ? nullptr : ImageOf(row);
    if (const int error = SetPayload(session, row, payload)) return error;
    MarkChange(row, added);
    FillColumns(row, kAllColumns, session.ports.random);
    const auto after = step.Mark(row);
    if (const int error = row.Update(1, 0)) return error;
    if (ofCategories) step.Record(NumberOf(row.Field("fPK")), std::move(before), after);
    if (const int error = transaction.Commit()) return error;
    step.Keep();
    return 0;
}

}  // namespace bmr::store
