#include "notes/memomodel.h"

#include <QVariant>

#include "crypto/cry.h"
#include "kit/words.h"

namespace bmr::notes {

MemoModel::MemoModel(store::Session& session, QObject* parent) : RecordListModel(parent), session_(session) {}

int MemoModel::Rebuild(std::int32_t category, const QString& search) {
    int error = 0;
    std::vector<std::int32_t> keys;
    const auto wanted = ToBytes(search.toStdString());
    if (wanted) {  // what the format cannot hold no memo holds either
        auto rows = ListMemos(session_, category, *wanted);
        if (rows)
            for (const MemoRow& row : *rows)
                keys.push_back(row.fPK);
        else
            error = rows.error().number;
    }
    beginResetModel();
    SetKeys(std::move(keys));
    endResetModel();
    return error;
}

kit::RowTexts MemoModel::ReadTexts(int row) const {
    Bytes subject = MemoSubject(session_, KeyAt(row));
    kit::RowTexts texts({kit::ToQString(subject)});
    cry::WipeString(subject);
    return texts;
}

QString MemoModel::Subject(int row) const {
    return TextsOf(row).texts.front();
}

int MemoModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : 1;
}

QVariant MemoModel::data(const QModelIndex& index, int role) const {
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole) return Subject(index.row());
    if (role == kit::RecordRole::Key) return KeyAt(index.row());
    return {};
}

QVariant MemoModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section != 0 || role != Qt::DisplayRole) return {};
    return tr("Memo");
}

}  // namespace bmr::notes
