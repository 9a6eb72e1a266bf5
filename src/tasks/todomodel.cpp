#include "tasks/todomodel.h"

#include <QIcon>
#include <QLocale>
#include <QPalette>
#include <algorithm>

#include "kit/categorycombo.h"
#include "kit/dateentry.h"
#include "kit/icons.h"
#include "kit/words.h"
#include "tasks/tasksearch.h"

namespace bmr::tasks {

namespace {

// Places in the cached texts.
constexpr std::size_t kTask = 0;
constexpr std::size_t kPrivate = 1;
constexpr std::size_t kReadable = 2;

std::vector<std::int32_t> KeysOf(const std::vector<TaskRow>& rows) {
    std::vector<std::int32_t> keys;
    keys.reserve(rows.size());
    for (const TaskRow& row : rows)
        keys.push_back(row.fPK);
    return keys;
}

}  // namespace

TodoModel::TodoModel(store::Session& session, QObject* parent)
    : RecordListModel(parent), session_(session), locale_(kit::FactsOf(QLocale())) {}

int TodoModel::Rebuild(const TaskFilter& filter, const std::string& search) {
    filter_ = filter;
    beginResetModel();
    tasks_.clear();
    auto rows = ListRecords(session_, filter);
    int error = rows ? 0 : rows.error().number;
    if (rows) tasks_ = std::move(*rows);
    if (error == 0 && !search.empty())
        error = KeepMatching(session_, filter, search, categories_, locale_, tasks_);
    if (error != 0) tasks_.clear();
    SetKeys(KeysOf(tasks_));
    endResetModel();
    return error;
}

int TodoModel::SortBy(SortOrder order) {
    if (order.subItem == SubItem::Private)
        if (const int error = ReadPrivateFlags(session_, filter_, tasks_)) return error;
    std::vector<TaskRow> sorted = tasks_;
    SortRows(sorted, order, categories_, locale_);
    std::vector<int> places;
    places.reserve(sorted.size());
    for (const TaskRow& row : sorted)
        places.push_back(RowOf(row.fPK));
    tasks_ = std::move(sorted);
    Reorder(places);
    return 0;
}

QString TodoModel::TaskText(int row) const {
    return TextsOf(row).texts[kTask];
}

bool TodoModel::IsPrivate(int row) const {
    return !TextsOf(row).texts[kPrivate].isEmpty();
}

std::int32_t TodoModel::ListedCategory(std::int32_t number) const {
    const bool listed =
        std::any_of(categories_.begin(), categories_.end(),
                    [number](const store::CategoryEntry& entry) { return entry.number == number; });
    return listed ? number : store::Category::Unfiled;
}

kit::CellTexts TodoModel::ReadTexts(int row) const {
    Task read = tasks::ReadTexts(session_, KeyAt(row));
    std::vector<QString> texts(3);
    texts[kTask] = read.readable ? kit::ShowWords(read.task) : tr("(cannot be read)");
    texts[kPrivate] = read.isPrivate ? "P" : "";
    texts[kReadable] = read.readable ? "1" : "";
    store::WipeFields(read, kTaskFields);
    return kit::CellTexts(std::move(texts));
}

void TodoModel::Update(const Task& task) {
    const int row = RowOf(task.key);
    if (row < 0) return;
    UpdateRow(tasks_[static_cast<std::size_t>(row)], task, session_.ports.clock.Today());
    Forget(task.key);
    emit dataChanged(index(row, 0), index(row, columnCount() - 1));
}

int TodoModel::CountOverdue() const {
    return static_cast<int>(
        std::count_if(tasks_.begin(), tasks_.end(), [](const TaskRow& row) { return row.Overdue(); }));
}

bool TodoModel::ColumnEmpty(int column) const {
    const auto none = [this](auto&& has) { return std::ranges::none_of(tasks_, has); };
    switch (column) {
        case SubItem::DueDate:
            return none([](const TaskRow& row) { return row.hasDueDate; });
        case SubItem::Private:
            return !session_.ShowPrivate;
        case SubItem::Note:
            return none([](const TaskRow& row) { return row.hasNote; });
        case SubItem::ExecDate:
            return none([](const TaskRow& row) { return row.completed; });
        default:
            return false;
    }
}

int TodoModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : SubItem::SortKey;  // the sort key is no column: the rows lie in its order
}

QVariant TodoModel::Text(int row, int subItem) const {
    if (subItem == SubItem::Task) return TaskText(row);
    if (subItem == SubItem::Private) return IsPrivate(row) ? QString("P") : QString();
    return QString::fromStdString(SubItemText(RowAt(row), subItem, categories_, locale_));
}

int TodoModel::MarksOf(const TaskRow& task, int column) {
    if (task.completed) return kit::RowMark::Completed;
    if (column == SubItem::DueDate && task.Overdue()) return kit::RowMark::Overdue;
    // What most tasks have is said quietly, so that the high ones are seen.
    if (column == SubItem::Priority && task.priority != Priority::High) return kit::RowMark::Faint;
    return 0;
}

QVariant TodoModel::data(const QModelIndex& index, int role) const {
    const int row = index.row();
    const int column = index.column();
    const TaskRow& task = RowAt(row);
    switch (role) {
        case Qt::DisplayRole:
            return Text(row, column);
        case Qt::CheckStateRole:
            if (column != SubItem::Task) break;
            return static_cast<int>(task.completed ? Qt::Checked : Qt::Unchecked);
        case Qt::DecorationRole:
            if (column == SubItem::Task && task.Overdue()) return kit::Icon("task-due", kit::Ink::Alarm);
            if (column == SubItem::Category)
                return kit::CategoryIcon(ListedCategory(task.category), QPalette());
            break;
        case Qt::ToolTipRole:
            if (column == SubItem::Task) return TaskText(row);
            if (column == SubItem::Private && IsPrivate(row)) return tr("Private");
            if (column == SubItem::Note && task.hasNote) return tr("Has a note");
            break;
        case Qt::TextAlignmentRole:
            return static_cast<int>(Qt::AlignVCenter |
                                    (kColumns[static_cast<std::size_t>(column)].align == Align::Centre
                                         ? Qt::AlignHCenter
                                         : Qt::AlignLeft));
        case kit::RecordRole::Key:
            return task.fPK;
        case kit::RecordRole::Marks:
            return MarksOf(task, column);
        case kit::RecordRole::Symbol:
            if (column == SubItem::Private && IsPrivate(row)) return kit::Icon("object-locked");
            if (column == SubItem::Note && task.hasNote) return kit::Icon("view-pim-notes");
            break;
        default:
            break;
    }
    return {};
}

bool TodoModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (role != Qt::CheckStateRole || index.column() != SubItem::Task) return false;
    emit Ticked(KeyAt(index.row()), value.toInt() == Qt::Checked);
    return true;
}

QVariant TodoModel::headerData(int section, Qt::Orientation orientation, int role) const {
    static const char* const kHints[] = {
        QT_TR_NOOP("Click for the standard order: open first, overdue, by due date, by priority"),
        QT_TR_NOOP("Due date"),
        QT_TR_NOOP("Priority: X X X is high, X is low"),
        QT_TR_NOOP("Private"),
        QT_TR_NOOP("Has a note"),
        QT_TR_NOOP("Category"),
        QT_TR_NOOP("Date of completion")};
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) return {};
    if (role == Qt::DisplayRole) return QString(kColumns[static_cast<std::size_t>(section)].header);
    if (role == Qt::ToolTipRole) return tr(kHints[section]);
    if (role == Qt::TextAlignmentRole)
        return static_cast<int>(Qt::AlignVCenter |
                                (kColumns[static_cast<std::size_t>(section)].align == Align::Centre
                                     ? Qt::AlignHCenter
                                     : Qt::AlignLeft));
    return {};
}

Qt::ItemFlags TodoModel::flags(const QModelIndex& index) const {
    const auto flags = RecordListModel::flags(index);
    return index.column() == SubItem::Task ? flags | Qt::ItemIsUserCheckable : flags;
}

}  // namespace bmr::tasks
