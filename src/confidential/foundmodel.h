#pragma once

#include <QString>
#include <unordered_map>

#include "kit/recordlistmodel.h"

namespace bmr::store {
struct Session;
}

namespace bmr::confidential {

/// What a search found in the records of all kinds: below the name of each kind the names of its records.
class FoundModel final : public kit::RecordListModel {
    Q_OBJECT

  public:
    explicit FoundModel(store::Session& session, QObject* parent = nullptr);

    /// Reads the rows anew, those that hold `search`; 0 or an error number, with the list empty.
    [[nodiscard]] int Rebuild(const QString& search);

    void Clear();

    bool Heading(int row) const override { return headings_.contains(KeyAt(row)); }
    int RecordCount() const override { return rowCount() - static_cast<int>(headings_.size()); }
    int columnCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : 1; }
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  protected:
    kit::CellTexts ReadTexts(int row) const override;

  private:
    store::Session& session_;
    std::unordered_map<std::int32_t, QString> headings_;  ///< by keys that no record has
};

}  // namespace bmr::confidential
