#include "kit/namedlistmodel.h"

#include "kit/words.h"

namespace bmr::kit {

NamedListModel::NamedListModel(const QString& caption, List list, NameOf nameOf, QObject* parent)
    : RecordListModel(parent), caption_(caption), list_(std::move(list)), nameOf_(std::move(nameOf)) {}

int NamedListModel::Rebuild(const QString& search) {
    auto keys = list_(TakeWords(search));
    beginResetModel();
    SetKeys(keys ? std::move(*keys) : std::vector<std::int32_t>());
    endResetModel();
    return keys ? 0 : keys.error().number;
}

CellTexts NamedListModel::ReadTexts(int row) const {
    return CellTexts({ShowWords(nameOf_(KeyAt(row)))});
}

QString NamedListModel::Name(int row) const {
    return TextsOf(row).texts.front();
}

int NamedListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : 1;
}

QVariant NamedListModel::data(const QModelIndex& index, int role) const {
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole) return Name(index.row());
    if (role == RecordRole::Key) return KeyAt(index.row());
    return {};
}

QVariant NamedListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section != 0 || role != Qt::DisplayRole) return {};
    return caption_;
}

}  // namespace bmr::kit
