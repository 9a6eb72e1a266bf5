#include "kit/categorydrop.h"

#include <QCoreApplication>
#include <QDropEvent>
#include <QMimeData>

#include "kit/categorycombo.h"
#include "kit/recorddelegate.h"
#include "kit/words.h"

namespace bmr::kit {

const char* RowDrag::Mime() {
    return "application/x-brindlemere-rows";
}

bool RowDrag::IsOurs(const QMimeData* data) {
    return data->data(Mime()) == QByteArray::number(QCoreApplication::applicationPid());
}

CategoryDrop::CategoryDrop(QWidget* window) : QListWidget(window) {
    setObjectName("categoryDrop");
    setAccessibleName(tr("Categories"));
    setAcceptDrops(true);
    setDragDropMode(QAbstractItemView::DropOnly);
    setFrameShape(QFrame::StyledPanel);
    setItemDelegate(new RecordDelegate(this));
    setFocusPolicy(Qt::NoFocus);
    hide();
}

void CategoryDrop::Unfold(const store::CategoryList& entries, const QWidget& combo) {
    clear();
    for (const store::CategoryEntry& entry : entries) {
        if (entry.number == store::Category::All || entry.number == store::Category::Edit) continue;
        auto* item = new QListWidgetItem(CategoryIcon(entry.number, palette()),
                                         ToQString(TrimBlanks(entry.text)), this);
        item->setData(Qt::UserRole, entry.number);
    }
    const QPoint below = parentWidget()->mapFromGlobal(combo.mapToGlobal(QPoint(0, combo.height())));
    const int rows = sizeHintForRow(0) * count() + 2 * frameWidth();
    const int room = parentWidget()->height() - below.y();
    setGeometry(below.x(), below.y(), qMax(combo.width(), sizeHintForColumn(0) + 24), qMin(rows, room));
    raise();
    show();
}

void CategoryDrop::dragEnterEvent(QDragEnterEvent* event) {
    event->setAccepted(RowDrag::IsOurs(event->mimeData()));
}

void CategoryDrop::dragMoveEvent(QDragMoveEvent* event) {
    QListWidgetItem* item = itemAt(event->position().toPoint());
    setCurrentItem(item);
    event->setAccepted(item && RowDrag::IsOurs(event->mimeData()));
}

void CategoryDrop::dropEvent(QDropEvent* event) {
    const QListWidgetItem* item = itemAt(event->position().toPoint());
    if (!item || !RowDrag::IsOurs(event->mimeData())) return;
    event->accept();
    emit Dropped(item->data(Qt::UserRole).toInt());
}

}  // namespace bmr::kit
