#pragma once

#include <QListWidget>
#include <cstdint>

#include "store/categories.h"

class QMimeData;

namespace bmr::kit {

/// Rows that are dragged inside the program. Nothing of them leaves it: another program gets no text.
struct RowDrag {
    static const char* Mime();
    static bool IsOurs(const QMimeData* data);
};

/// The categories of a section, unfolded below their combo while rows are being dragged: where they can be
/// let fall.
class CategoryDrop final : public QListWidget {
    Q_OBJECT

  public:
    explicit CategoryDrop(QWidget* window);

    /// Shows the entries that a record can have, below `combo`.
    void Unfold(const store::CategoryList& entries, const QWidget& combo);

  signals:
    void Dropped(std::int32_t category);

  protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
};

}  // namespace bmr::kit
