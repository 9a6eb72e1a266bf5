#pragma once

#include <QString>
#include <functional>
#include <string>
#include <unordered_map>

#include "base/result.h"
#include "base/wiped.h"
#include "kit/recordlistmodel.h"

namespace bmr::store {
struct Session;
}

namespace bmr::kit {

/// The rows of a section that lists its records by name: one column of names, deciphered for the rows that
/// are seen, and where a section wants them a lock and a date.
class NamedListModel final : public RecordListModel {
    Q_OBJECT

  public:
    /// The keys of the records whose name holds `search`, in the order of the list; of all when it is empty.
    using List = std::function<Result<std::vector<std::int32_t>>(const std::string& search)>;
    /// The name of one record.
    using NameOf = std::function<WipedText(std::int32_t fPK)>;

    NamedListModel(const QString& caption, List list, NameOf nameOf, QObject* parent = nullptr);

    /// What a row tells beside its name.
    struct Details {
        bool isPrivate = false;
        QString date;
    };
    using DetailsOf = std::function<Details(std::int32_t fPK)>;
    /// Two columns more, a lock and a date, read for the rows that are seen. While private records are hidden
    /// the one of the lock is empty.
    void SetDetails(store::Session& session, DetailsOf detailsOf);

    /// Reads the rows anew; 0 or an error number, with the list empty.
    [[nodiscard]] int Rebuild(const QString& search);

    QString Name(int row) const;

    bool ColumnEmpty(int column) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  protected:
    CellTexts ReadTexts(int row) const override;

  private:
    const Details& DetailsAt(int row) const;

    QString caption_;
    store::Session* session_ = nullptr;
    DetailsOf detailsOf_;
    // Apart from the names: typing looks through many of those, and a payload may be long.
    mutable std::unordered_map<std::int32_t, Details> details_;
    List list_;
    NameOf nameOf_;
};

}  // namespace bmr::kit
