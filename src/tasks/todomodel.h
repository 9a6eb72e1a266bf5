#pragma once

#include <QString>
#include <QVariant>

#include "kit/recordlistmodel.h"
#include "tasks/tasklist.h"

namespace bmr::tasks {

/// The rows of `TodoList`. Plain columns are at hand; task text and private flag are deciphered for the rows
/// that are seen.
class TodoModel final : public kit::RecordListModel {
    Q_OBJECT

  public:
    explicit TodoModel(store::Session& session, QObject* parent = nullptr);

    /// `showListitems`: reads the rows anew, narrowed to those that hold `search`, in standard order. 0 or an
    /// error number, with the list empty.
    [[nodiscard]] int Rebuild(const TaskFilter& filter, const std::string& search);

    /// Brings all rows into another order. 0 or an error number, with the order as it was.
    [[nodiscard]] int SortBy(SortOrder order);

    void SetCategories(store::CategoryList categories) { categories_ = std::move(categories); }

    const TaskRow& RowAt(int row) const { return tasks_[static_cast<std::size_t>(row)]; }
    /// The row's task text; deciphers when it was not seen lately.
    QString TaskText(int row) const;

    /// Shows the record's new state in its row, which stays where it is.
    void Update(const Task& task);

    int CountOverdue() const;

    bool ColumnEmpty(int column) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

  signals:
    /// The row's check box was pressed; the model itself changes nothing.
    void Ticked(std::int32_t key, bool checked);

  protected:
    kit::CellTexts ReadTexts(int row) const override;

  private:
    QVariant Text(int row, int subItem) const;
    static int MarksOf(const TaskRow& task, int column);
    bool IsPrivate(int row) const;
    /// A number that the list no longer has counts as unfiled.
    std::int32_t ListedCategory(std::int32_t number) const;

    store::Session& session_;
    LocaleFacts locale_;
    TaskFilter filter_;
    store::CategoryList categories_;
    std::vector<TaskRow> tasks_;
};

}  // namespace bmr::tasks
