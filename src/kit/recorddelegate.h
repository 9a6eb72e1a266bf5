#pragma once

#include <QStyledItemDelegate>

namespace bmr::kit {

/// Paints a record's row: 28 pixels at the least, what is overdue in red, completed struck through and paler,
/// symbols in the middle of their cell. A selected row stands on a tint, with a bar at its left. A first cell
/// without words shows that there is no name, in a paler ink; the model knows nothing of it.
class RecordDelegate final : public QStyledItemDelegate {
    Q_OBJECT

  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

}  // namespace bmr::kit
