#include "calendar/panemodel.h"

#include <QLocale>
#include <algorithm>

#include "kit/words.h"
#include "tasks/task.h"

namespace bmr::calendar {

namespace {

Qt::Alignment AlignmentOf(int column) {
    using Column = PaneModel::Column;
    return Qt::AlignVCenter | (column == Column::Priority ? Qt::AlignHCenter
                               : column == Column::Due    ? Qt::AlignRight
                                                          : Qt::AlignLeft);
}

}  // namespace

PaneModel::PaneModel(store::Session& session, QObject* parent) : RecordListModel(parent), session_(session) {}

int PaneModel::Rebuild() {
    beginResetModel();
    tasks_.clear();
    auto rows = ListPane(session_);
    const int error = rows ? 0 : rows.error().number;
    if (rows) tasks_ = std::move(*rows);
    std::vector<std::int32_t> keys;
    keys.reserve(tasks_.size());
    for (const PaneRow& row : tasks_)
        keys.push_back(row.fPK);
    SetKeys(std::move(keys));
    endResetModel();
    return error;
}

kit::CellTexts PaneModel::ReadTexts(int row) const {
    const WipedText task = PaneTask(session_, KeyAt(row));
    std::vector<QString> texts(1);
    texts.front() = kit::ShowWords(task);
    return kit::CellTexts(std::move(texts));
}

bool PaneModel::ColumnEmpty(int column) const {
    return column == Column::Due &&
           std::ranges::none_of(tasks_, [](const PaneRow& row) { return row.due.has_value(); });
}

int PaneModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : Column::Count;
}

QVariant PaneModel::data(const QModelIndex& index, int role) const {
    const PaneRow& task = RowAt(index.row());
    const int column = index.column();
    switch (role) {
        case Qt::DisplayRole:
            if (column == Column::Priority) return QLocale().toString(task.priority + 1);
            if (column == Column::Due) return QString::fromStdString(PaneDate(task.due));
            return TextsOf(index.row()).texts.front();
        case Qt::ToolTipRole:
            if (column == Column::Task) return TextsOf(index.row()).texts.front();
            break;
        case Qt::CheckStateRole:
            if (column == Column::Task) return static_cast<int>(Qt::Unchecked);
            break;
        case Qt::TextAlignmentRole:
            return static_cast<int>(AlignmentOf(column).toInt());
        case kit::RecordRole::Key:
            return task.fPK;
        case kit::RecordRole::Marks:
            if (column == Column::Due && task.overdue) return static_cast<int>(kit::RowMark::Overdue);
            if (column == Column::Priority && task.priority != tasks::Priority::High)
                return static_cast<int>(kit::RowMark::Faint);
            return 0;
        default:
            break;
    }
    return {};
}

bool PaneModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (role != Qt::CheckStateRole || index.column() != Column::Task) return false;
    if (value.toInt() == Qt::Checked) emit Ticked(KeyAt(index.row()));
    return true;
}

QVariant PaneModel::headerData(int section, Qt::Orientation orientation, int role) const {
    static const char* const kNames[] = {QT_TR_NOOP("P"), QT_TR_NOOP("Due"), QT_TR_NOOP("Task")};
    static const char* const kHints[] = {QT_TR_NOOP("Priority: 1 is high, 3 is low"), QT_TR_NOOP("Due date"),
                                         QT_TR_NOOP("Open tasks")};
    if (orientation != Qt::Horizontal || section < 0 || section >= Column::Count) return {};
    if (role == Qt::DisplayRole) return tr(kNames[section]);
    if (role == Qt::ToolTipRole) return tr(kHints[section]);
    if (role == Qt::TextAlignmentRole) return static_cast<int>(AlignmentOf(section).toInt());
    return {};
}

Qt::ItemFlags PaneModel::flags(const QModelIndex& index) const {
    const auto flags = RecordListModel::flags(index);
    return index.column() == Column::Task ? flags | Qt::ItemIsUserCheckable : flags;
}

}  // namespace bmr::calendar
