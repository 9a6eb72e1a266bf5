#include "kit/namedlistmodel.h"

#include "kit/icons.h"
#include "kit/words.h"
#include "store/session.h"

namespace bmr::kit {

namespace {

constexpr int kName = 0;
constexpr int kLock = 1;
constexpr int kDate = 2;
constexpr int kColumns = 3;

}  // namespace

NamedListModel::NamedListModel(const QString& caption, List list, NameOf nameOf, QObject* parent)
    : RecordListModel(parent), caption_(caption), list_(std::move(list)), nameOf_(std::move(nameOf)) {}

int NamedListModel::Rebuild(const QString& search) {
    auto keys = list_(TakeWords(search));
    beginResetModel();
    details_.clear();
    SetKeys(keys ? std::move(*keys) : std::vector<std::int32_t>());
    endResetModel();
    return keys ? 0 : keys.error().number;
}

void NamedListModel::SetDetails(store::Session& session, DetailsOf detailsOf) {
    session_ = &session;
    detailsOf_ = std::move(detailsOf);
}

CellTexts NamedListModel::ReadTexts(int row) const {
    return CellTexts({ShowWords(nameOf_(KeyAt(row)))});
}

QString NamedListModel::Name(int row) const {
    return TextsOf(row).texts.front();
}

const NamedListModel::Details& NamedListModel::DetailsAt(int row) const {
    const std::int32_t key = KeyAt(row);
    if (const auto known = details_.find(key); known != details_.end()) return known->second;
    return details_.emplace(key, detailsOf_(key)).first->second;
}

bool NamedListModel::ColumnEmpty(int column) const {
    return column == kLock && session_ && !session_->ShowPrivate;
}

int NamedListModel::columnCount(const QModelIndex& parent) const {
    if (parent.isValid()) return 0;
    return detailsOf_ ? kColumns : 1;
}

QVariant NamedListModel::data(const QModelIndex& index, int role) const {
    const int row = index.row();
    switch (role) {
        case Qt::DisplayRole:
            if (index.column() == kName) return Name(row);
            if (index.column() == kLock) return DetailsAt(row).isPrivate ? QString("P") : QString();
            return DetailsAt(row).date;
        case Qt::ToolTipRole:
            if (index.column() == kName) return Name(row);
            if (index.column() == kLock && DetailsAt(row).isPrivate) return tr("Private");
            break;
        case Qt::TextAlignmentRole:
            if (index.column() == kDate) return static_cast<int>(Qt::AlignVCenter | Qt::AlignRight);
            break;
        case RecordRole::Key:
            return KeyAt(row);
        case RecordRole::Marks:
            return index.column() == kDate ? RowMark::Quiet : 0;
        case RecordRole::Symbol:
            if (index.column() == kLock && DetailsAt(row).isPrivate) return Icon("object-locked");
            break;
        default:
            break;
    }
    return {};
}

QVariant NamedListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section != 0 || role != Qt::DisplayRole) return {};
    return caption_;
}

}  // namespace bmr::kit
