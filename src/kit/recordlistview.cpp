#include "kit/recordlistview.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMenu>
#include <QVariantMap>

#include "kit/recorddelegate.h"
#include "kit/recordlistmodel.h"

namespace bmr::kit {

namespace {

/// Type-ahead looks at no more rows than this: each may cost a decipherment.
constexpr int kSearched = 1000;
constexpr const char* kColumnsProperty = "bmrColumns";

}  // namespace

RecordListView::RecordListView(QWidget* parent) : QTreeView(parent) {
    setUniformRowHeights(true);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setAllColumnsShowFocus(true);
    setAlternatingRowColors(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
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
    connect(header(), &QHeaderView::sectionResized, this, &RecordListView::SaveColumns);
    connect(header(), &QHeaderView::sectionMoved, this, &RecordListView::SaveColumns);
}

void RecordListView::SetModel(RecordListModel* model) {
    model_ = model;
    setModel(model);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { emit KeySelected(SelectedKey()); });
}

int RecordListView::SelectedRow() const {
    if (!selectionModel() || !selectionModel()->hasSelection()) return -1;
    return selectionModel()->selectedRows().constFirst().row();
}

std::int32_t RecordListView::SelectedKey() const {
    const int row = SelectedRow();
    return row < 0 ? kNoKey : model_->KeyAt(row);
}

void RecordListView::SelectKey(std::int32_t key) {
    const int row = key == kNoKey ? -1 : model_->RowOf(key);
    if (row < 0) {
        selectionModel()->clear();
        return;
    }
    setCurrentIndex(model_->index(row, 0));
    scrollTo(model_->index(row, 0));
}

void RecordListView::SelectFirst() {
    if (model_->rowCount() > 0) SelectKey(model_->KeyAt(0));
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
        if (!index.data().toString().startsWith(typed_, Qt::CaseInsensitive)) continue;
        setCurrentIndex(index);
        return;
    }
}

void RecordListView::keyPressEvent(QKeyEvent* event) {
    const bool plain = !(event->modifiers() & ~Qt::KeypadModifier);
    if (plain && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter))
        emit EditWanted();
    else if (plain && event->key() == Qt::Key_Delete)
        emit DeleteWanted();
    else if (plain && event->key() == Qt::Key_Space)
        emit TickWanted();
    else
        QTreeView::keyPressEvent(event);
}

void RecordListView::contextMenuEvent(QContextMenuEvent* event) {
    QPoint at = event->globalPos();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        const QRect row = currentIndex().isValid() ? visualRect(currentIndex()) : QRect();
        at = viewport()->mapToGlobal(QPoint(40, row.isValid() ? row.bottom() : 0));
    }
    emit MenuWanted(at);
    event->accept();
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
        show->setChecked(!isColumnHidden(column));
        connect(show, &QAction::toggled, this, [this, column](bool on) { setColumnHidden(column, !on); });
    }
    menu.exec(header()->mapToGlobal(at));
    SaveColumns();
}

void RecordListView::KeepColumns(const QString& name) {
    const QVariantMap all = qApp->property(kColumnsProperty).toMap();
    const QByteArray kept = all.value(name).toByteArray();
    if (!kept.isEmpty()) {
        const int sorted = header()->sortIndicatorSection();
        const auto order = header()->sortIndicatorOrder();
        header()->restoreState(kept);
        header()->setSortIndicator(sorted, order);
    }
    columnsName_ = name;
}

void RecordListView::SaveColumns() const {
    if (columnsName_.isEmpty()) return;
    QVariantMap all = qApp->property(kColumnsProperty).toMap();
    all.insert(columnsName_, header()->saveState());
    qApp->setProperty(kColumnsProperty, all);
}

}  // namespace bmr::kit
