#include "kit/recordlistmodel.h"

#include "kit/words.h"

namespace bmr::kit {

CellTexts::~CellTexts() {
    for (QString& text : texts)
        WipeQString(text);
}

int RecordListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(keys_.size());
}

Qt::ItemFlags RecordListModel::flags(const QModelIndex& index) const {
    if (index.isValid() && Heading(index.row())) return Qt::ItemNeverHasChildren;
    return QAbstractTableModel::flags(index) | Qt::ItemNeverHasChildren | Qt::ItemIsDragEnabled;
}

const CellTexts& RecordListModel::TextsOf(int row) const {
    const std::int32_t key = KeyAt(row);
    if (const auto found = kept_.find(key); found != kept_.end()) {
        recent_.splice(recent_.begin(), recent_, found->second);
        return recent_.front().texts;
    }
    ++const_cast<RecordListModel*>(this)->deciphered;
    recent_.push_front({key, ReadTexts(row)});
    kept_[key] = recent_.begin();
    if (recent_.size() > kKept) {
        kept_.erase(recent_.back().key);
        recent_.pop_back();
    }
    return recent_.front().texts;
}

void RecordListModel::Forget(std::int32_t key) {
    const auto found = kept_.find(key);
    if (found == kept_.end()) return;
    recent_.erase(found->second);
    kept_.erase(found);
}

void RecordListModel::ForgetAll() {
    recent_.clear();
    kept_.clear();
}

void RecordListModel::SetKeys(std::vector<std::int32_t> keys) {
    keys_ = std::move(keys);
    ForgetAll();
    IndexRows();
}

void RecordListModel::IndexRows() {
    rows_.clear();
    rows_.reserve(static_cast<qsizetype>(keys_.size()));
    for (std::size_t row = 0; row < keys_.size(); ++row)
        rows_.insert(keys_[row], static_cast<int>(row));
}

void RecordListModel::Reorder(const std::vector<int>& order) {
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    std::vector<std::int32_t> held;
    for (const QModelIndex& index : before)
        held.push_back(KeyAt(index.row()));
    std::vector<std::int32_t> keys;
    keys.reserve(order.size());
    for (const int row : order)
        keys.push_back(KeyAt(row));
    keys_ = std::move(keys);
    IndexRows();
    QModelIndexList after;
    for (qsizetype i = 0; i < before.size(); ++i)
        after << index(RowOf(held[static_cast<std::size_t>(i)]), before[i].column());
    changePersistentIndexList(before, after);
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

void RecordListModel::DropKey(int row) {
    Forget(KeyAt(row));
    keys_.erase(keys_.begin() + row);
    IndexRows();
}

}  // namespace bmr::kit
