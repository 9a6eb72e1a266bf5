#include "confidential/recordmodel.h"

#include <QVariant>

#include "crypto/cry.h"
#include "kit/words.h"

namespace bmr::confidential {

RecordModel::RecordModel(store::Session& session, QObject* parent)
    : RecordListModel(parent), session_(session) {}

int RecordModel::Rebuild(std::int32_t kind, const QString& search) {
    int error = 0;
    std::vector<std::int32_t> keys;
    const auto wanted = ToBytes(search.toStdString());
    if (wanted && kind != 0) {
        auto found = ListRecords(session_, kind, *wanted);
        if (found)
            keys = std::move(*found);
        else
            error = found.error().number;
    }
    beginResetModel();
    SetKeys(std::move(keys));
    endResetModel();
    return error;
}

kit::RowTexts RecordModel::ReadTexts(int row) const {
    Bytes name = RecordName(session_, KeyAt(row));
    kit::RowTexts texts({kit::ToQString(name)});
    cry::WipeString(name);
    return texts;
}

QString RecordModel::Name(int row) const {
    return TextsOf(row).texts.front();
}

int RecordModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : 1;
}

QVariant RecordModel::data(const QModelIndex& index, int role) const {
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole) return Name(index.row());
    if (role == kit::RecordRole::Key) return KeyAt(index.row());
    return {};
}

}  // namespace bmr::confidential
