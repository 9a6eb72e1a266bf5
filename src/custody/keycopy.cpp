#include "custody/keycopy.h"

#include <string>

#include "custody/systemrecord.h"
#include "store/session.h"
#include "store/undorow.h"

namespace bmr::custody {
namespace {

const std::string kKeyRows = " FROM tt WHERE (fSec=1 And fSub<=3) Or fSec=2";

/// Adds a row as it stands; under another key where something else has its own already.
int AddCopy(engine::Recordset& table, const store::RowImage& image) {
    if (const int error = table.FindFirst("fPK=?", {image.fPK})) return error;
    if (table.NoMatch())
        table.AddNew(image.fPK);
    else
        table.AddNew();
    store::SetImage(table, image);
    return table.Update();
}

}  // namespace

Result<int> VersionUnderOurKeys(store::Session& session, engine::Database& other) {
    auto rows = other.Select("SELECT fEtx FROM tt WHERE fSec=1 And fSub=3");
    if (!rows) return rows.error();
    const bool found = rows->Next();
    if (rows->error() != 0) return Error{rows->error(), other.LastError()};
    return found ? VersionIn(cry::DecipherField(session.cipher, rows->Bytes(0))) : 0;
}

int CopyKeys(store::Session& session, engine::Database& other) {
    auto found = session.ProgramDb->OpenRecordset("SELECT *" + kKeyRows, engine::RecordsetType::Snapshot);
    if (!found) return found.error().number;
    engine::Transaction all(other);
    if (all.error() != 0) return all.error();
    if (const int error = other.Execute("DELETE *" + kKeyRows)) return error;
    auto table = other.OpenRecordset("tt");
    if (!table) return table.error().number;
    for (engine::Recordset& row = **found; !row.Eof(); row.MoveNext())
        if (const int error = AddCopy(**table, *store::ImageOf(row))) return error;
    return all.Commit();
}

}  // namespace bmr::custody
