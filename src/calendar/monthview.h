#pragma once

#include <QPointer>
#include <QString>
#include <QWidget>
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "calendar/entrylook.h"

namespace bmr::calendar {

/// Six weeks as a table of days, each with its entries: whole days as bars, the others by their time. It
/// draws what it is given and tells what the hands want; it reads no record. Where the entries of a day find
/// no room it opens a list of all of them by itself.
class MonthView final : public QWidget {
    Q_OBJECT

  public:
    static constexpr int kWeeks = 6;
    static constexpr int kCells = 7 * kWeeks;

    explicit MonthView(QWidget* parent = nullptr);
    ~MonthView() override;

    struct Frame {
        Day first;                              ///< of the grid
        std::array<QString, 7> weekdays;        ///< headings
        std::array<QString, kWeeks> monWeek;    ///< numbers of the weeks
        std::array<int, kCells> monDayLabel{};  ///< numbers of the days
        std::array<QString, kCells> spoken;     ///< the days in words, for a screen reader
        std::array<bool, kCells> inMonth{};     ///< false for days of the months before and behind
        std::optional<int> today;               ///< its cell
    };
    /// The days. The mark stays on its day as far as there is one; another grid takes the entries away.
    void SetFrame(Frame frame);
    /// The entries, ascending by their starts, each in the cell of the day on which it begins. None is chosen
    /// afterwards, which `ChosenChanged` does not tell.
    void SetEntries(std::vector<EntryLook> looks);

    std::optional<std::size_t> Chosen() const { return chosen_; }
    void Choose(std::optional<std::size_t> entry);
    int MarkedCell() const { return marked_; }
    void MarkCell(int cell);

    QRect CellRect(int cell) const;
    /// Where the line of an entry is; empty where it has found no room.
    QRect LineOf(std::size_t entry) const;

  signals:
    /// Another entry is chosen or another day marked.
    void ChosenChanged();
    void OpenWanted(std::size_t entry);
    /// A new appointment on the marked day, its subject begun with `letters`.
    void NewWanted(const QString& letters);
    void DeleteWanted(std::size_t entry);
    /// An entry was let fall on another day, where it keeps its time of day.
    void Dropped(std::size_t entry, int cell, bmr::calendar::DropKind kind);
    /// A menu at that place of the screen, for the chosen entry or the marked day.
    void MenuWanted(const QPoint& at);
    /// The number of a day was double clicked.
    void DayWanted(int cell);
    /// Another period: -1 the one before, 1 the next, 0 today's.
    void StepWanted(int way);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool event(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

  private:
    struct Hit {
        int cell = -1;
        std::optional<std::size_t> entry;
        bool more = false;
        bool number = false;
    };
    QRect RowRect(int cell, int row) const;
    /// How many entries of a cell are shown; fewer than it has where the last row says how many more.
    int ShownIn(int cell) const;
    int CellOf(std::size_t entry) const;
    int CellAt(const QPoint& at) const;
    Hit HitAt(const QPoint& at) const;
    void ChooseNext(int by);
    void MoveMark(int by);
    void DropByKey(int by);
    void MenuByKey();
    /// A line over the marked day takes the typing.
    void BeginTyping(const QString& letters);
    void PlaceQuick();
    void ShowCopying(bool control);
    void EndDrag();
    void OpenList(int cell);
    void Speak();
    void PaintCell(QPainter& painter, int cell) const;

    Frame frame_;
    std::vector<EntryLook> looks_;
    std::array<std::vector<std::size_t>, kCells> monDayList;  ///< the entries of each cell
    std::optional<std::size_t> chosen_;
    int marked_ = 0;
    std::optional<std::size_t> grabbed_;
    QPoint pressed_;
    int over_ = -1;  ///< the cell over which an entry is dragged
    bool dragging_ = false;
    bool copying_ = false;
    bool quiet_ = false;  ///< the button that asks for a menu has taken a drag back
    int wheel_ = 0;       ///< parts of a notch
    QPointer<EntryPopup> list_;
    QuickLine* txtQuick;
    int quickCell_ = 0;  ///< over which it stands, whatever is marked meanwhile
};

}  // namespace bmr::calendar
