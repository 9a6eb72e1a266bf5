#include "kit/recordlistview.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDrag>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLocale>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <algorithm>
#include <utility>

#include "kit/categorydrop.h"
#include "kit/recorddelegate.h"
#include "kit/recordlistmodel.h"
#include "kit/remembered.h"

namespace bmr::kit {

namespace {

/// Type-ahead looks at no more rows than this: each may cost a decipherment.
constexpr int kSearched = 1000;
constexpr int kWidest = 4000;  ///< a wider column is nobody's choice

}  // namespace

RecordListView::RecordListView(QWidget* parent) : QTreeView(parent) {
    setUniformRowHeights(true);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setAllColumnsShowFocus(true);
    setAlternatingRowColors(true);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setDragDropMode(QAbstractItemView::DragOnly);
    setDragEnabled(false);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setItemDelegate(new RecordDelegate(this));
    setIconSize(QSize(16, 16));
    header()->setContextMenuPolicy(Qt::CustomContextMenu);
    header()->setSectionsClickable(true);
    header()->setSortIndicatorShown(true);
    header()->setHighlightSections(false);
    header()->setMinimumSectionSize(32);
    connect(header(), &QWidget::customContextMenuRequested, this, &RecordListView::HeaderMenu);
    header()->setStretchLastSection(false);
    connect(header(), &QHeaderView::sectionResized, this,
            [this](int column, int, int width) { ColumnResized(column, width); });
    connect(header(), &QHeaderView::sectionMoved, this, &RecordListView::SaveColumns);
}

void RecordListView::SetModel(RecordListModel* model) {
    model_ = model;
    setModel(model);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        TellKey();
        emit RowsSelected();
    });
    // The cursor may move among rows that stay selected.
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this, &RecordListView::TellKey);
    connect(model, &QAbstractItemModel::modelReset, this, [this] { toldKey_ = kNoKey; });
    for (int column = 0; column < model->columnCount(); ++column) {
        widths_ << header()->sectionSize(column);
        hidden_ << false;
    }
    SetTextColumn(0, 0);
    // A column may have become empty, or the first row have come. While rows only change, columns stay: none
    // may come under the pointer that has just ticked one.
    connect(model, &QAbstractItemModel::modelReset, this, &RecordListView::FitColumns);
}

int RecordListView::SelectedRow() const {
    if (!selectionModel() || !selectionModel()->hasSelection()) return -1;
    const QModelIndex current = selectionModel()->currentIndex();
    if (selectionModel()->isSelected(current)) return current.row();
    const std::vector<int> rows = SelectedRows();
    return rows.empty() ? -1 : rows.front();
}

std::int32_t RecordListView::SelectedKey() const {
    const int row = SelectedRow();
    return row < 0 ? kNoKey : model_->KeyAt(row);
}

std::vector<int> RecordListView::SelectedRows() const {
    std::vector<int> rows;
    for (const QItemSelectionRange& range : selectionModel()->selection())
        for (int row = range.top(); row <= range.bottom(); ++row)
            if (!model_->Heading(row)) rows.push_back(row);
    // A row can lie in several pieces: columns that are hidden or moved cut it.
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

std::vector<std::int32_t> RecordListView::SelectedKeys() const {
    std::vector<std::int32_t> keys;
    for (const int row : SelectedRows())
        keys.push_back(model_->KeyAt(row));
    return keys;
}

void RecordListView::SelectKey(std::int32_t key) {
    SelectKeys({key});
}

void RecordListView::SelectKeys(const std::vector<std::int32_t>& keys) {
    std::vector<int> rows;
    for (const std::int32_t key : keys)
        if (const int row = key == kNoKey ? -1 : model_->RowOf(key); row >= 0) rows.push_back(row);
    if (rows.empty()) return selectionModel()->clear();
    std::sort(rows.begin(), rows.end());
    // Whole stretches: each piece of a selection costs its painter and whoever asks for it.
    QItemSelection chosen;
    for (std::size_t from = 0, to = 0; from < rows.size(); from = ++to) {
        while (to + 1 < rows.size() && rows[to + 1] <= rows[to] + 1)
            ++to;
        chosen.append(QItemSelectionRange(model_->index(rows[from], 0),
                                          model_->index(rows[to], model_->columnCount() - 1)));
    }
    // What modifier is held down just now must not matter.
    const QModelIndex first = model_->index(rows.front(), 0);
    TellOnce([&] {
        selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
        selectionModel()->select(chosen, QItemSelectionModel::ClearAndSelect);
    });
    scrollTo(first);
}

void RecordListView::SelectFirst() {
    for (int row = 0; row < model_->rowCount(); ++row)
        if (!model_->Heading(row)) return SelectKey(model_->KeyAt(row));
}

void RecordListView::SelectOneOf(std::initializer_list<std::int32_t> keys) {
    for (const std::int32_t key : keys)
        if (key != kNoKey && model_->RowOf(key) >= 0) return SelectKey(key);
    SelectFirst();
}

void RecordListView::PutCursor(int row) {
    const int place = qMin(row, model_->rowCount() - 1);
    if (place >= 0) selectionModel()->setCurrentIndex(model_->index(place, 0), QItemSelectionModel::NoUpdate);
}

void RecordListView::SelectRow(int row) {
    int place = qMin(row, model_->rowCount() - 1);
    while (place > 0 && model_->Heading(place))
        --place;
    if (place >= 0) SelectKey(model_->KeyAt(place));
}

void RecordListView::TellOnce(const std::function<void()>& step) {
    ++steps_;
    step();
    --steps_;
    TellKey();
}

void RecordListView::TellKey() {
    if (steps_ > 0 || !model_) return;
    const std::int32_t key = SelectedKey();
    if (std::exchange(toldKey_, key) != key) emit KeySelected(key);
}

bool RecordListView::TakeCursorRow() {
    const QModelIndex current = currentIndex();
    if (!current.isValid() || selectionModel()->hasSelection()) return false;
    TellOnce(
        [&] { selectionModel()->select(current, QItemSelectionModel::Select | QItemSelectionModel::Rows); });
    return selectionModel()->hasSelection();
}

void RecordListView::ShowKey(std::int32_t key) {
    if (const int row = model_->RowOf(key); row >= 0) scrollTo(model_->index(row, 0));
}

void RecordListView::Rebuild(const std::function<void()>& rebuild) {
    const QModelIndex top = indexAt(QPoint(5, 5));
    const std::int32_t topKey = top.isValid() ? model_->KeyAt(top.row()) : kNoKey;
    rebuild();
    if (const int row = topKey == kNoKey ? -1 : model_->RowOf(topKey); row > 0)
        scrollTo(model_->index(row, 0), QAbstractItemView::PositionAtTop);
}

void RecordListView::keyboardSearch(const QString& letters) {
    // The base class would ask for the text of every row. Look from the current row on, round the end, so far
    // only as typing stays quick.
    if (!sinceLetter_.isValid() || sinceLetter_.elapsed() > QApplication::keyboardInputInterval())
        typed_.clear();
    sinceLetter_.start();
    const bool again = typed_ == letters;  // the same letter once more steps on
    if (!again) typed_ += letters;
    const int rows = model_ ? model_->rowCount() : 0;
    const bool current = currentIndex().isValid();
    const int from = current ? currentIndex().row() : 0;
    for (int i = current && typed_.size() == 1 ? 1 : 0; i < rows && i < kSearched; ++i) {
        const QModelIndex index = model_->index((from + i) % rows, 0);
        if (model_->Heading(index.row()) || !index.data().toString().startsWith(typed_, Qt::CaseInsensitive))
            continue;
        setCurrentIndex(index);
        return;
    }
}

void RecordListView::startDrag(Qt::DropActions) {
    const int count = SelectedCount();
    if (count == 0) return;
    QDrag drag(this);
    auto* rows = new QMimeData;
    rows->setData(RowDrag::Mime(), QByteArray::number(QCoreApplication::applicationPid()));
    drag.setMimeData(rows);
    const QString words = QLocale().toString(count);
    QPixmap label((fontMetrics().size(0, words) + QSize(16, 8)) * devicePixelRatioF());
    label.setDevicePixelRatio(devicePixelRatioF());
    label.fill(palette().color(QPalette::Highlight));
    QPainter painter(&label);
    painter.setFont(font());
    painter.setPen(palette().color(QPalette::HighlightedText));
    painter.drawText(QRectF(QPointF(), label.deviceIndependentSize()), Qt::AlignCenter, words);
    painter.end();
    drag.setPixmap(label);
    emit DragBegun();
    drag.exec(Qt::LinkAction | Qt::MoveAction | Qt::CopyAction, Qt::LinkAction);
    emit DragEnded();
}

void RecordListView::keyPressEvent(QKeyEvent* event) {
    const bool plain = !(event->modifiers() & ~Qt::KeypadModifier);
    const int key = event->key();
    const bool acts = key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Delete ||
                      key == Qt::Key_Space || key == Qt::Key_Down;
    if (plain && acts && TakeCursorRow() && key == Qt::Key_Down) return;
    if (plain && (key == Qt::Key_Return || key == Qt::Key_Enter))
        emit EditWanted();
    else if (plain && key == Qt::Key_Delete)
        emit DeleteWanted();
    else if (plain && key == Qt::Key_Space)
        emit TickWanted();
    else if (key == Qt::Key_Space && currentIndex().isValid())
        // The base class would tick: with Ctrl and Shift the key chooses rows.
        selectionModel()->select(currentIndex(), selectionCommand(currentIndex(), event));
    else if (key == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier)
        MenuByKey();  // for keyboards without the key for it
    else
        TellOnce([&] { QTreeView::keyPressEvent(event); });
}

void RecordListView::MenuByKey() {
    const QRect row = currentIndex().isValid() ? visualRect(currentIndex()) : QRect();
    emit MenuWanted(viewport()->mapToGlobal(QPoint(40, row.isValid() ? row.bottom() : 0)));
}

void RecordListView::contextMenuEvent(QContextMenuEvent* event) {
    event->accept();
    if (event->reason() == QContextMenuEvent::Keyboard)
        MenuByKey();
    else
        emit MenuWanted(event->globalPos());
}

void RecordListView::mousePressEvent(QMouseEvent* event) {
    TellOnce([&] { QTreeView::mousePressEvent(event); });
}

void RecordListView::mouseDoubleClickEvent(QMouseEvent* event) {
    QTreeView::mouseDoubleClickEvent(event);
    const QPoint at = event->position().toPoint();
    const QModelIndex index = indexAt(at);
    if (event->button() != Qt::LeftButton || !index.isValid()) return;
    // Two quick clicks on a check box tick and untick.
    constexpr int kMark = 28;
    const bool checkable = index.flags() & Qt::ItemIsUserCheckable;
    if (checkable && at.x() < visualRect(index).left() + kMark) return;
    emit EditWanted();
}

void RecordListView::HeaderMenu(const QPoint& at) {
    QMenu menu(this);
    menu.setObjectName("columnsMenu");
    for (int column = 1; column < model_->columnCount(); ++column) {
        QAction* show = menu.addAction(model_->headerData(column, Qt::Horizontal).toString());
        show->setCheckable(true);
        show->setChecked(!hidden_[column]);
        connect(show, &QAction::toggled, this, [this, column](bool on) {
            hidden_[column] = !on;
            FitColumns();
        });
    }
    menu.exec(header()->mapToGlobal(at));
    SaveColumns();
}

void RecordListView::SetTextColumn(int column, int least) {
    textColumn_ = column;
    least_ = least;
    header()->setSectionResizeMode(QHeaderView::Interactive);
    header()->setSectionResizeMode(column, QHeaderView::Fixed);
    FitColumns();
}

void RecordListView::SetColumnWidth(int column, int width) {
    header()->resizeSection(column, qMax(width, header()->sectionSizeHint(column)));
}

void RecordListView::ColumnResized(int column, int width) {
    if (fitting_ || column == textColumn_ || width == 0 || column >= widths_.size()) return;
    widths_[column] = width;
    FitColumns();
    SaveColumns();
}

void RecordListView::FitColumns() {
    if (fitting_ || !model_) return;
    fitting_ = true;
    QList<bool> hidden = hidden_;
    int room = viewport()->width() - least_;
    for (int column = 0; column < hidden.size(); ++column)
        if (column != textColumn_ && !hidden[column]) room -= widths_[column];
    for (int place = static_cast<int>(hidden.size()) - 1; place >= 0 && room < 0; --place) {
        const int column = header()->logicalIndex(place);
        if (column == textColumn_ || hidden[column] || !model_->ColumnEmpty(column)) continue;
        hidden[column] = true;
        room += widths_[column];
    }
    for (int column = 0; column < hidden.size(); ++column)
        if (column != textColumn_ && isColumnHidden(column) != hidden[column])
            setColumnHidden(column, hidden[column]);
    const int width = qMax(header()->minimumSectionSize(), least_ + qMax(0, room));
    if (header()->sectionSize(textColumn_) != width) header()->resizeSection(textColumn_, width);
    fitting_ = false;
}

void RecordListView::resizeEvent(QResizeEvent* event) {
    QTreeView::resizeEvent(event);
    FitColumns();
}

void RecordListView::RememberColumns(Registry& registry, const std::string& name) {
    columns_ = new Remembered(registry, "Columns/" + name, this);
    // Of each column in turn: its place, its width, and whether it is shown.
    const QList<int> kept = columns_->Numbers();
    const auto count = widths_.size();
    QList<bool> taken(count, false);
    bool good = kept.size() == 3 * count;
    for (qsizetype at = 0; good && at < count; ++at) {
        const int place = kept[3 * at];
        good = place >= 0 && place < count && !taken[place] && kept[3 * at + 1] <= kWidest;
        if (good) taken[place] = true;
    }
    if (!good) return;
    fitting_ = true;
    for (int place = 0; place < count; ++place)
        for (int column = 0; column < count; ++column)
            if (kept[3 * column] == place) header()->moveSection(header()->visualIndex(column), place);
    for (int column = 0; column < count; ++column) {
        widths_[column] = qMax(header()->minimumSectionSize(), kept[3 * column + 1]);
        hidden_[column] = kept[3 * column + 2] == 0 && column != 0;
        if (column != textColumn_) header()->resizeSection(column, widths_[column]);
    }
    fitting_ = false;
    FitColumns();
}

void RecordListView::SaveColumns() {
    if (!columns_ || fitting_) return;
    QList<int> numbers;
    for (int column = 0; column < widths_.size(); ++column)
        numbers << header()->visualIndex(column) << widths_[column] << (hidden_[column] ? 0 : 1);
    columns_->Keep(numbers);
}

}  // namespace bmr::kit
