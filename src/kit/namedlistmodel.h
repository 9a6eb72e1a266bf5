#pragma once

#include <QString>
#include <functional>
#include <string>

#include "base/result.h"
#include "base/wiped.h"
#include "kit/recordlistmodel.h"

namespace bmr::kit {

/// The rows of a section that lists its records by name: one column of names, deciphered for the rows that
/// are seen.
class NamedListModel final : public RecordListModel {
    Q_OBJECT

  public:
    /// The keys of the records whose name holds `search`, in the order of the list; of all when it is empty.
    using List = std::function<Result<std::vector<std::int32_t>>(const std::string& search)>;
    /// The name of one record.
    using NameOf = std::function<WipedText(std::int32_t fPK)>;

    NamedListModel(const QString& caption, List list, NameOf nameOf, QObject* parent = nullptr);

    /// Reads the rows anew; 0 or an error number, with the list empty.
    [[nodiscard]] int Rebuild(const QString& search);

    QString Name(int row) const;

    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  protected:
    CellTexts ReadTexts(int row) const override;

  private:
    QString caption_;
    List list_;
    NameOf nameOf_;
};

}  // namespace bmr::kit
