#pragma once

#include <QString>
#include <QVariant>
#include <vector>

#include "calendar/taskpane.h"
#include "kit/recordlistmodel.h"

namespace bmr::calendar {

/// The rows of `TodoList` beside the days. Words are deciphered for the rows that are seen.
class PaneModel final : public kit::RecordListModel {
    Q_OBJECT

  public:
    struct Column {
        static constexpr int Priority = 0, Due = 1, Task = 2, Count = 3;
    };

    explicit PaneModel(store::Session& session, QObject* parent = nullptr);

    /// Reads the rows anew. 0 or an error number, with the list empty.
    [[nodiscard]] int Rebuild();
    const PaneRow& RowAt(int row) const { return tasks_[static_cast<std::size_t>(row)]; }

    bool ColumnEmpty(int column) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

  signals:
    /// The row's check box was pressed; the model itself changes nothing.
    void Ticked(std::int32_t key);

  protected:
    kit::CellTexts ReadTexts(int row) const override;

  private:
    store::Session& session_;
    std::vector<PaneRow> tasks_;
};

}  // namespace bmr::calendar
