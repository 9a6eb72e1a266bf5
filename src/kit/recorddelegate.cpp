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

constexpr int kBar = 3;

/// The ground of a selected row, and the bar at its left end.
void PaintSelection(QPainter& painter, const QStyleOptionViewItem& cell) {
    const QPalette& palette = cell.palette;
    painter.fillRect(cell.rect, SelectionTint(palette, cell.state & QStyle::State_Active));
    using Option = QStyleOptionViewItem;
    if (cell.viewItemPosition != Option::Beginning && cell.viewItemPosition != Option::OnlyOne) return;
    const QRect bar(cell.rect.left(), cell.rect.top(), kBar, cell.rect.height());
    painter.fillRect(QStyle::visualRect(cell.direction, cell.rect, bar), InkOf(Ink::Accent, palette));
}

}  // namespace

QSize RecordDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
    // No text is asked for: a height must not cost a decipherment.
    return {kRowHeight, qMax(kRowHeight, option.fontMetrics.height() + 2 * Space::Tight + 2)};
}

void RecordDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    const int marks = index.data(RecordRole::Marks).toInt();
    // A selected row keeps its inks, and so its icons: its ground tells that it is selected.
    option->state &= ~QStyle::State_Selected;
    const QPalette& palette = option->palette;
    const QColor ink = palette.color(QPalette::Active, QPalette::Text);
    const QColor base = palette.color(QPalette::Active, QPalette::Base);
    const auto paint = [option](const QColor& colour) { option->palette.setColor(QPalette::Text, colour); };
    if (marks & RowMark::Completed) {
        if (index.column() == 0) option->font.setStrikeOut(true);
        paint(Blend(base, ink, 0.6));
    } else if (marks & RowMark::Overdue) {
        paint(InkOf(Ink::Alarm, palette));
    } else if (marks & RowMark::Faint) {
        // Who asked for high contrast has not asked for a hint.
        paint(IsContrast(palette) ? palette.color(QPalette::PlaceholderText) : Blend(base, ink, 0.4));
    } else if (marks & RowMark::Quiet) {
        paint(palette.color(QPalette::PlaceholderText));
    }
    if (index.column() == 0 && option->text.isEmpty()) {
        option->text = tr("(no name)");
        option->features |= QStyleOptionViewItem::HasDisplay;
        paint(palette.color(QPalette::PlaceholderText));
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
    if (option.state & QStyle::State_Selected) PaintSelection(*painter, option);
    if (!symbol.isNull()) cell.text.clear();
    style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, widget);
    if (symbol.isNull()) return;
    QRect box(0, 0, kSymbol, kSymbol);
    box.moveCenter(cell.rect.center());
    painter->save();
    if (index.data(RecordRole::Marks).toInt() & RowMark::Completed) painter->setOpacity(0.6);
    symbol.paint(painter, box, Qt::AlignCenter, QIcon::Normal);
    painter->restore();
}

}  // namespace bmr::kit
