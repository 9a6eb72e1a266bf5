#pragma once

#include <QString>

#include "kit/recordlistmodel.h"
#include "notes/memo.h"

namespace bmr::notes {

/// The rows of the memo list: one column of subjects, deciphered for the rows that are seen.
class MemoModel final : public kit::RecordListModel {
    Q_OBJECT

  public:
    explicit MemoModel(store::Session& session, QObject* parent = nullptr);

    /// Reads the rows anew; 0 or an error number, with the list empty.
    [[nodiscard]] int Rebuild(std::int32_t category, const QString& search);

    QString Subject(int row) const;

    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  protected:
    kit::RowTexts ReadTexts(int row) const override;

  private:
    store::Session& session_;
};

}  // namespace bmr::notes
