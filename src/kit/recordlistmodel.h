#pragma once

#include <QAbstractTableModel>
#include <QHash>
#include <QString>
#include <cstdint>
#include <list>
#include <unordered_map>
#include <vector>

namespace bmr::kit {

/// The enciphered texts of one row, once deciphered; overwritten when they are forgotten.
struct CellTexts {
    CellTexts() = default;
    explicit CellTexts(std::vector<QString> all) : texts(std::move(all)) {}
    CellTexts(CellTexts&&) noexcept = default;
    CellTexts& operator=(CellTexts&&) noexcept = default;
    CellTexts(const CellTexts&) = delete;
    CellTexts& operator=(const CellTexts&) = delete;
    ~CellTexts();

    std::vector<QString> texts;
};

/// Marks of a cell that the delegate shows: struck through and paler, in red, hardly there, or paler alone.
enum RowMark : std::uint8_t { Completed = 1, Overdue = 2, Faint = 4, Quiet = 8 };

/// Roles beyond Qt's own.
struct RecordRole {
    static constexpr int Key = Qt::UserRole;         ///< fPK
    static constexpr int Marks = Qt::UserRole + 1;   ///< RowMark bits
    static constexpr int Symbol = Qt::UserRole + 2;  ///< an icon that stands for the cell's text
};

/// The rows of a list by their keys. Texts are read when the view asks for them and kept for a few screens
/// only, so that opening, sorting and scrolling a long list deciphers what is seen and nothing else. A
/// section's model adds its plain columns by row number.
class RecordListModel : public QAbstractTableModel {
    Q_OBJECT

  public:
    using QAbstractTableModel::QAbstractTableModel;

    int rowCount(const QModelIndex& parent = {}) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    std::int32_t KeyAt(int row) const { return keys_[static_cast<std::size_t>(row)]; }
    /// -1 when the key has no row.
    int RowOf(std::int32_t key) const { return rows_.value(key, -1); }

    /// Overwrites the texts that are kept; the next look at a row reads it anew.
    void ForgetAll();
    /// A row that is no record and only names those below it: nobody can select it.
    virtual bool Heading(int) const { return false; }
    /// How many rows are records.
    virtual int RecordCount() const { return rowCount(); }

    /// True when a column is known to hold nothing in any row. Where room is short such a column gives way;
    /// what would have to be deciphered to know is not looked at.
    virtual bool ColumnEmpty(int) const { return false; }

    /// How many rows were deciphered since the counter was last set to 0.
    int deciphered = 0;

  protected:
    /// The texts of a row, read anew. Called for rows that are not in the cache.
    virtual CellTexts ReadTexts(int row) const = 0;

    const CellTexts& TextsOf(int row) const;
    void Forget(std::int32_t key);

    /// Between beginResetModel and endResetModel.
    void SetKeys(std::vector<std::int32_t> keys);
    /// New order, place by place the old row; selections stay with their records.
    void Reorder(const std::vector<int>& order);
    /// Takes a row out; between beginRemoveRows and endRemoveRows.
    void DropKey(int row);

  private:
    void IndexRows();

    std::vector<std::int32_t> keys_;
    QHash<std::int32_t, int> rows_;

    // Least recently used last. A list keeps references stable while it is rearranged.
    static constexpr std::size_t kKept = 256;
    struct Kept {
        std::int32_t key;
        CellTexts texts;
    };
    mutable std::list<Kept> recent_;
    mutable std::unordered_map<std::int32_t, std::list<Kept>::iterator> kept_;
};

}  // namespace bmr::kit
