#pragma once

#include <QStyledItemDelegate>

namespace bmr::kit {

/// Paints a record's row: 28 pixels at the least, overdue in red, completed struck through and paler, symbols
/// in the middle of their cell.
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
