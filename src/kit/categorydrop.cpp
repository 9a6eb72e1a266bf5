#include "kit/categorydrop.h"

#include <QCoreApplication>
#include <QCursor>
#include <QDropEvent>
#include <QMimeData>

#include "kit/categorycombo.h"
#include "kit/recorddelegate.h"
#include "kit/words.h"

namespace bmr::kit {

namespace {

constexpr int kAway = 48;  ///< px from the hand to what it could let something fall on

}  // namespace

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
    QRect place(below.x(), below.y(), qMax(combo.width(), sizeHintForColumn(0) + 24), qMin(rows, room));
    // Not below the hand: a drag of some pixels must reach nothing.
    const QPoint hand = parentWidget()->mapFromGlobal(QCursor::pos());
    if (place.adjusted(-kAway, 0, kAway, kAway).contains(hand)) {
        place.moveLeft(hand.x() + kAway);
        if (place.right() > parentWidget()->width()) place.moveRight(hand.x() - kAway);
    }
    setGeometry(place);
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
