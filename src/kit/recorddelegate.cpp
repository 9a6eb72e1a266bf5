#include "kit/recorddelegate.h"

#include <QApplication>
#include <QIcon>
#include <QPainter>

#include "kit/recordlistmodel.h"
#include "kit/theme.h"

namespace bmr::kit {

namespace {

constexpr int kRowHeight = 28;
constexpr int kSymbol = 16;

/// A selected row whose window is not in front has a pale ground: its icons must keep their own ink.
QIcon InOwnInk(const QIcon& icon, QSize size, double ratio) {
    QIcon same;
    const QPixmap pixmap = icon.pixmap(size, ratio);
    same.addPixmap(pixmap, QIcon::Normal);
    same.addPixmap(pixmap, QIcon::Selected);
    return same;
}

}  // namespace

QSize RecordDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
    // No text is asked for: a height must not cost a decipherment.
    return {kRowHeight, qMax(kRowHeight, option.fontMetrics.height() + 2 * Space::Tight + 2)};
}

void RecordDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    const int marks = index.data(RecordRole::Marks).toInt();
    const bool selected = option->state & QStyle::State_Selected;
    const bool active = option->state & QStyle::State_Active;
    const auto group = active ? QPalette::Active : QPalette::Inactive;
    const auto role = selected ? QPalette::HighlightedText : QPalette::Text;
    if (marks & RowMark::Completed) {
        if (index.column() == 0) option->font.setStrikeOut(true);
        const QColor ground = option->palette.color(group, selected ? QPalette::Highlight : QPalette::Base);
        option->palette.setColor(group, role, Blend(ground, option->palette.color(group, role), 0.6));
    }
    if ((marks & RowMark::Overdue) && !selected && index.column() <= 1)
        option->palette.setColor(group, role, InkOf(Ink::Alarm, option->palette));
    if (selected && !active && !option->icon.isNull()) {
        const double ratio = option->widget ? option->widget->devicePixelRatioF() : 1;
        option->icon = InOwnInk(option->icon, option->decorationSize, ratio);
    }
    option->textElideMode = Qt::ElideRight;
    if (index.column() == 0) option->rect.setLeft(option->rect.left() + Space::Tight);
}

void RecordDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                           const QModelIndex& index) const {
    const auto symbol = index.data(RecordRole::Symbol).value<QIcon>();
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const QWidget* widget = cell.widget;
    QStyle* style = widget ? widget->style() : QApplication::style();
    if (index.column() == 0) {
        // The first cell stands off the edge; the ground of a selected row does not.
        QStyleOptionViewItem ground = cell;
        ground.rect = option.rect;
        style->drawPrimitive(QStyle::PE_PanelItemViewItem, &ground, painter, widget);
    }
    if (!symbol.isNull()) cell.text.clear();
    style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, widget);
    if (symbol.isNull()) return;
    QRect box(0, 0, kSymbol, kSymbol);
    box.moveCenter(cell.rect.center());
    const bool inverted = (cell.state & QStyle::State_Selected) && (cell.state & QStyle::State_Active);
    painter->save();
    if (index.data(RecordRole::Marks).toInt() & RowMark::Completed) painter->setOpacity(0.6);
    symbol.paint(painter, box, Qt::AlignCenter, inverted ? QIcon::Selected : QIcon::Normal);
    painter->restore();
}

}  // namespace bmr::kit
