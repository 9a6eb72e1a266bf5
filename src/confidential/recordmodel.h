#pragma once

#include <QString>

#include "confidential/confidential.h"
#include "kit/recordlistmodel.h"

namespace bmr::confidential {

/// The records of a kind: one column of names, deciphered for the rows that are seen.
class RecordModel final : public kit::RecordListModel {
    Q_OBJECT

  public:
    explicit RecordModel(store::Session& session, QObject* parent = nullptr);

    /// Reads the rows anew; 0 or an error number, with the list empty.
    [[nodiscard]] int Rebuild(std::int32_t kind, const QString& search);

    QString Name(int row) const;

    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

  protected:
    kit::RowTexts ReadTexts(int row) const override;

  private:
    store::Session& session_;
};

}  // namespace bmr::confidential
