#pragma once

#include <QElapsedTimer>
#include <QTreeView>
#include <functional>
#include <string>
#include <vector>

namespace bmr {
class Registry;
}

namespace bmr::kit {

class RecordListModel;
class Remembered;

/// A section's list: rows that can be selected together, rows of even height, columns that can be hidden and
/// moved. Selection and scroll position hang on keys, not on row numbers, so that they survive sorting and
/// rebuilding.
class RecordListView final : public QTreeView {
    Q_OBJECT

  public:
    explicit RecordListView(QWidget* parent = nullptr);

    /// The view does not own it.
    void SetModel(RecordListModel* model);

    /// Key of the selected row, or `none`; of several the one with the cursor, else the first.
    static constexpr std::int32_t kNoKey = -1;
    std::int32_t SelectedKey() const;
    int SelectedRow() const;
    /// All of them, in the order of the list.
    std::vector<std::int32_t> SelectedKeys() const;
    int SelectedCount() const { return static_cast<int>(SelectedRows().size()); }

    /// Selects the row of that key and scrolls to it; without such a row nothing is selected.
    void SelectKey(std::int32_t key);
    /// Selects the rows of these keys, and scrolls to the first.
    void SelectKeys(const std::vector<std::int32_t>& keys);
    void SelectFirst();
    /// Selects the first of these keys that has a row, else the first row.
    void SelectOneOf(std::initializer_list<std::int32_t> keys);
    /// The keyboard goes on from that row, or from the last one; nothing is selected by it. The first key
    /// that does something then does it with that row.
    void PutCursor(int row);
    /// Selects that row, or the last one.
    void SelectRow(int row);
    /// Brings a row into view without selecting it.
    void ShowKey(std::int32_t key);

    /// Runs something that resets the model, keeping the scroll position. The selection is gone afterwards.
    void Rebuild(const std::function<void()>& rebuild);

    /// One column takes the room that the others leave, and has `least` pixels whatever they need: then empty
    /// columns give way first (`RecordListModel::ColumnEmpty`), and in the end the list scrolls sideways.
    void SetTextColumn(int column, int least);
    /// Gives a column that width, or what its caption needs beside the sort arrow if that is more.
    void SetColumnWidth(int column, int width);
    /// Widths, order and visibility of the columns are found again under this name, at the next start too.
    /// Call once the model is set and the first widths are given.
    void RememberColumns(Registry& registry, const std::string& name);

    void keyboardSearch(const QString& letters) override;

  signals:
    /// Rows are being dragged, until `DragEnded`.
    void DragBegun();
    void DragEnded();
    /// `SelectedKey` is another, or the same one was selected anew after a rebuild.
    void KeySelected(std::int32_t key);
    /// Other rows are selected, be it only more or fewer.
    void RowsSelected();
    void EditWanted();
    void DeleteWanted();
    void TickWanted();
    /// A menu at that place of the screen, for the selected rows or for none.
    void MenuWanted(const QPoint& at);

  protected:
    void startDrag(Qt::DropActions actions) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    std::vector<int> SelectedRows() const;
    /// Runs something that moves cursor and selection one after the other, and tells the key that comes of
    /// it.
    void TellOnce(const std::function<void()>& step);
    void TellKey();
    /// Where the cursor stands and nothing is selected, a key that does something means the cursor's row.
    /// Returns whether that row has become selected by it.
    bool TakeCursorRow();
    void MenuByKey();
    void HeaderMenu(const QPoint& at);
    void ColumnResized(int column, int width);
    void SaveColumns();
    void FitColumns();

    RecordListModel* model_ = nullptr;
    std::int32_t toldKey_ = kNoKey;  ///< by `KeySelected`
    int steps_ = 0;                  ///< in which cursor and selection move
    int textColumn_ = -1;
    int least_ = 0;
    bool fitting_ = false;  ///< what changes now is no choice of the person
    QList<int> widths_;     ///< of the columns while they are shown
    QList<bool> hidden_;    ///< by the person
    Remembered* columns_ = nullptr;
    QString typed_;  ///< by type-ahead, until a pause
    QElapsedTimer sinceLetter_;
};

}  // namespace bmr::kit
