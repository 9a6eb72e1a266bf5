#pragma once

#include <QAbstractScrollArea>
#include <QPointer>
#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

#include "calendar/entrylook.h"
#include "calendar/layout.h"

class QTimer;

namespace bmr::calendar {

/// A span that begins on a day of the view: what is marked, or where an entry was let fall.
struct DaySpan {
    int day = 0;             ///< of the view, from 0
    std::int32_t start = 0;  ///< minutes of the day
    std::int32_t end = 0;    ///< above 1440 where an entry goes on past midnight
    bool allDay = false;     ///< then 0 to 1440
    bool operator==(const DaySpan&) const = default;
};

/// Days side by side over a grid of hours, with a strip for whole days above. It draws what it is given and
/// tells what the hands want; it reads no record, whatever is scrolled, resized or painted anew. Where
/// entries find no room it opens a list of all of them by itself.
class WeekView final : public QAbstractScrollArea {
    Q_OBJECT

  public:
    explicit WeekView(QWidget* parent = nullptr);
    ~WeekView() override;

    struct Frame {
        Day first;
        std::vector<QString> DLabel;   ///< headings of the days: as many as the view has
        QString weekNr;                ///< stands at the left of the headings
        std::vector<QString> hours;    ///< 24 of them: "09:00"
        std::optional<int> today;      ///< the day of the view that is today
        std::int32_t workStart = 480;  ///< minutes of the day; nothing is shaded where the end is not
        std::int32_t workEnd = 1020;   ///< behind the start
        std::int32_t now = 0;          ///< minutes of today, where the line stands
        QString nowText;               ///< "14:05"
        std::int32_t dropLength = 60;  ///< minutes that a whole day takes when it falls among hours
    };
    /// The days. The mark stays on its column as far as there is one; other days take the entries away.
    void SetFrame(Frame frame);
    void SetNow(std::int32_t minutes, const QString& text);
    /// The entries, ascending by their starts; those that do not begin on a day of the view are not drawn.
    /// None is chosen afterwards, which `ChosenChanged` does not tell.
    void SetEntries(std::vector<EntryLook> looks);
    /// Brings a time of day to the top.
    void ScrollTo(std::int32_t minutes);

    /// The entry that is chosen, if any, as its place among those given.
    std::optional<std::size_t> Chosen() const { return chosen_; }
    void Choose(std::optional<std::size_t> entry);
    /// The span that is marked: what a new appointment takes. While an entry is chosen, that entry's.
    const DaySpan& Marked() const { return selArea_; }
    void Mark(const DaySpan& span);

    /// Where the box of an entry is on the viewport, scrolled away or not; empty where there is none.
    QRect BoxOf(std::size_t entry) const;
    /// The same of a span, on the day on which it begins.
    QRect AreaOf(const DaySpan& span) const;

    int PixelsOfHour() const { return hour_; }
    /// Within the bounds below; what stands at the top stays there.
    void SetPixelsOfHour(int pixels);

    static constexpr int kLeastHour = 24;
    static constexpr int kFirstHour = 44;
    static constexpr int kMostHour = 120;
    /// Minutes of a row of the grid: what hands move by.
    static constexpr std::int32_t kStep = 30;

  signals:
    /// Another entry is chosen or another span marked.
    void ChosenChanged();
    void OpenWanted(std::size_t entry);
    /// A new appointment in the marked span, its subject begun with `letters`.
    void NewWanted(const QString& letters);
    void DeleteWanted(std::size_t entry);
    /// Never with the span that the entry has already.
    void Dropped(std::size_t entry, const bmr::calendar::DaySpan& span, bmr::calendar::DropKind kind);
    /// A menu at that place of the screen, for the chosen entry or the marked span.
    void MenuWanted(const QPoint& at);
    /// The heading of a day was clicked.
    void DayWanted(int day);
    /// Another period: -1 the one before, 1 the next, 0 today's.
    void StepWanted(int way);
    void HourZoomed(int pixels);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

  private:
    enum class Drag : std::uint8_t { None, Pressed, Marking, Moving, Sizing };
    struct Hit {
        std::optional<std::size_t> entry;
        int boxDay = 0;     ///< day of the box that was hit
        bool edge = false;  ///< the lower edge of what ends there
        bool heading = false;
        bool margin = false;                   ///< left of the days
        std::vector<std::size_t> listed = {};  ///< of a "+n more"
        DaySpan at = {};                       ///< the row of the grid, or the day of the strip
    };

    void Pack();
    void Fit();
    void UpdateHeights();
    void UpdateRange();
    int Days() const { return static_cast<int>(frame_.DLabel.size()); }
    int GridTop() const { return heading_ + strip_; }
    int YOf(std::int32_t minutes) const;
    QRect DayRect(int day) const;
    QRect RectOf(int day, std::int32_t from, std::int32_t to, Place place) const;
    QRect RectOf(const DayBox& box) const { return RectOf(box.day, box.from, box.to, box.place); }
    /// As much of it as is in sight, so that its words stay there.
    QRect RectOf(const MoreBox& box) const;
    QRect StripRow(int day, int row) const;
    /// How many entries of a day the strip shows; fewer than it has where the last row says how many more.
    int StripShown(int day) const;
    /// The parts of a span, one for each day on which it lies.
    std::vector<QRect> RectsOf(const DaySpan& span) const;
    DaySpan SlotAt(const QPoint& at) const;
    Hit HitAt(const QPoint& at) const;
    DaySpan SpanOf(std::size_t entry) const;

    void Begin(const QPoint& at, Hit hit);
    /// Where the drag would leave what is dragged, if the hand were at that slot.
    DaySpan MarkedTo(const DaySpan& here) const;
    DaySpan SizedTo(const DaySpan& here) const;
    DaySpan MovedTo(const DaySpan& here) const;
    bool Dragging() const { return drag_ != Drag::None && drag_ != Drag::Pressed; }
    void ContinueDrag();
    void ScrollAtEdge();
    void ShowCursor(Qt::KeyboardModifiers modifiers);
    void EndDrag();

    void ZoomAround(int pixels, int y);
    /// Chooses an entry or none without bringing anything into view.
    void Take(std::optional<std::size_t> entry, const DaySpan& span);
    void ChooseNext(int by);
    void MoveMark(int days, std::int32_t minutes, bool stretch);
    bool MoveChosen(const QKeyEvent& event);
    /// The row of the hours to which an entry of a whole day goes by keys.
    std::int32_t RowForWhole() const;
    void Reveal(const DaySpan& span);
    void MenuByKey();
    /// A line over what is marked takes the typing.
    void BeginTyping(const QString& letters);
    void PlaceQuick();
    void OpenList(const std::vector<std::size_t>& entries, int day, const QPoint& at);
    void Speak();

    void PaintHeadings(QPainter& painter) const;
    void PaintStrip(QPainter& painter) const;
    void PaintGrid(QPainter& painter) const;
    void PaintHours(QPainter& painter) const;
    /// Being moved or sized: still seen where it was, but paler.
    bool Leaving(std::size_t entry) const;
    /// What a box of an entry that began on an earlier day says: until when it goes on.
    EntryLook RestOf(const DayBox& box) const;
    /// The ground and the frame of what is marked, beside the boxes that lie on it.
    void PaintMark(QPainter& painter) const;
    /// Of the one day that is shown the line says enough, and the working hours are read better.
    bool TintsToday(int day) const { return frame_.today == day && Days() > 1; }
    /// Whether an entry ends on the day of a box of it.
    bool EndsIn(const DayBox& box) const;
    void PaintBoxes(QPainter& painter, const QRect& within) const;
    void PaintNow(QPainter& painter) const;
    void PaintDrag(QPainter& painter) const;

    Frame frame_;
    std::vector<EntryLook> looks_;
    std::vector<DayBox> packed_;  ///< of all timed entries, as if each had room
    std::vector<DayBox> appo_;    ///< those for which there is
    std::vector<MoreBox> more_;
    std::vector<std::vector<std::size_t>> appoD_;  ///< the entries of each day's strip
    std::optional<std::size_t> chosen_;
    DaySpan selArea_{0, 540, 570, false};
    std::int32_t anchor_ = 540;  ///< the row of the mark that stays while Shift stretches it
    std::int32_t row_ = 540;     ///< of the hours, marked last

    int hour_ = kFirstHour;
    int margin_ = 52;  ///< width of the column of hours
    int heading_ = 0;  ///< heights of the headings and of the strip
    int strip_ = 0;
    int stripRow_ = 0;
    int stripRows_ = 1;
    int wheel_ = 0;  ///< parts of a notch

    Drag drag_ = Drag::None;
    QPoint pressed_;
    QPoint hand_;  ///< where it is now
    Hit grabbed_;
    DaySpan txtMove_;  ///< where the frame of a drag stands
    bool copying_ = false;
    bool quiet_ = false;  ///< the button that asks for a menu has taken a drag back
    QTimer* tmrScrolldelay;
    QPointer<EntryPopup> list_;
    QuickLine* txtQuick;
    DaySpan quickArea_;  ///< what it stands over, whatever is marked meanwhile
};

}  // namespace bmr::calendar
