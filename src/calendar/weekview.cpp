#include "calendar/weekview.h"

#include <QAccessible>
#include <QApplication>
#include <QHelpEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "calendar/periods.h"
#include "kit/theme.h"

// What the hands do on the grid; how it is painted stands in weekview_paint.cpp.
namespace bmr::calendar {

namespace {

constexpr std::int32_t kDay = kMinutesOfDay;
constexpr int kGap = 2;   ///< between boxes
constexpr int kEdge = 5;  ///< of a box, below which its end is grabbed
constexpr int kLeastBox = 18;
constexpr int kLeastColumn = 36;
constexpr int kLeastMargin = 52;
constexpr int kStripRows = 3;
constexpr int kScrollDelay = 60;  ///< ms between two steps while the hand stays at the edge
constexpr int kScrollStep = 12;
constexpr int kZoomStep = 6;  ///< pixels of an hour
constexpr int kNotch = 120;   ///< what a wheel tells of one

/// Units of the layout in a pixel.
constexpr double kUnits = GridGeometry::kHour / WeekView::kFirstHour;

/// The start of the row of the grid in which a minute lies.
std::int32_t RowOf(std::int32_t minutes) {
    return std::clamp(minutes, 0, kDay - 1) / WeekView::kStep * WeekView::kStep;
}

DaySpan WholeDay(int day) {
    return {day, 0, kDay, true};
}

}  // namespace

WeekView::WeekView(QWidget* parent)
    : QAbstractScrollArea(parent),
      tmrScrolldelay(new QTimer(this)),
      txtQuick(new QuickLine(this, viewport())) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    verticalScrollBar()->setObjectName("VScroll1");
    setAccessibleName(tr("Appointments by hour"));
    viewport()->setMouseTracking(true);
    viewport()->setBackgroundRole(QPalette::Base);
    setAttribute(Qt::WA_InputMethodEnabled);
    tmrScrolldelay->setObjectName("tmrScrolldelay");
    tmrScrolldelay->setInterval(kScrollDelay);
    connect(tmrScrolldelay, &QTimer::timeout, this, &WeekView::ScrollAtEdge);
    // A wheel turned in the middle of a drag takes along what is dragged.
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &WeekView::ContinueDrag);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &WeekView::PlaceQuick);
    connect(txtQuick, &QuickLine::Typed, this, [this](const QString& words) {
        EndDrag();
        if (selArea_ != quickArea_) Take({}, quickArea_);
        emit NewWanted(words);
    });
    UpdateHeights();
}

WeekView::~WeekView() {
    if (list_) list_->Forget();  // it reads our entries
}

void WeekView::SetFrame(Frame frame) {
    EndDrag();
    const bool otherDays = frame.first != frame_.first || frame.DLabel.size() != frame_.DLabel.size();
    if (otherDays) txtQuick->GiveUp();
    frame_ = std::move(frame);
    selArea_.day = std::clamp(selArea_.day, 0, std::max(0, Days() - 1));
    if (otherDays) return SetEntries({});
    Pack();
}

void WeekView::SetNow(std::int32_t minutes, const QString& text) {
    frame_.now = minutes;
    frame_.nowText = text;
    viewport()->update();
}

void WeekView::SetEntries(std::vector<EntryLook> looks) {
    EndDrag();
    DropTip();
    if (list_) list_->Forget();
    chosen_.reset();
    looks_ = std::move(looks);
    Pack();
    Speak();
}

void WeekView::Pack() {
    std::vector<LayoutEntry> entries;
    entries.reserve(looks_.size());
    // What is drawn higher than it lasts needs that room beside its neighbours, too.
    const std::int32_t least = (kLeastBox * 60 + hour_ - 1) / hour_;
    appoD_.assign(static_cast<std::size_t>(Days()), {});
    for (std::size_t i = 0; i < looks_.size(); ++i) {
        const EntryLook& look = looks_[i];
        const std::int32_t room = std::min(least, kDay - MinuteOfDay(look.start));
        entries.push_back({look.start, std::max(look.end, Minutes{look.start.count + room}), look.allDay});
        const int day = SpanOf(i).day;
        if (look.allDay && day >= 0 && day < Days()) appoD_[static_cast<std::size_t>(day)].push_back(i);
    }
    packed_ = DayBoxes(entries, PackEntries(entries, frame_.first, Days()), frame_.first, Days());
    UpdateHeights();
    UpdateRange();
    Fit();
}

void WeekView::Fit() {
    appo_ = packed_;
    const double room = DayRect(0).width() - GridGeometry::kPadding / kUnits;
    more_ = FitColumns(appo_, static_cast<std::int32_t>(room) / kLeastColumn);
    PlaceQuick();
    viewport()->update();
}

void WeekView::UpdateHeights() {
    const QFontMetrics metrics(font());
    const int line = metrics.lineSpacing();
    heading_ = line + 2 * kit::Space::Row;
    stripRow_ = std::max(kLeastBox, line + kit::Space::Tight);
    std::size_t most = 1;
    for (const auto& entries : appoD_)
        most = std::max(most, entries.size());
    stripRows_ = static_cast<int>(std::min<std::size_t>(most, kStripRows));
    strip_ = stripRows_ * (stripRow_ + kGap) + kGap + kit::Space::Tight;
    margin_ = kLeastMargin;
    for (const QString& hour : frame_.hours)
        margin_ = std::max(margin_, metrics.horizontalAdvance(hour) + 2 * kit::Space::Row);
}

void WeekView::UpdateRange() {
    const int room = std::max(0, viewport()->height() - GridTop());
    verticalScrollBar()->setRange(0, std::max(0, 24 * hour_ - room));
    verticalScrollBar()->setPageStep(room);
    verticalScrollBar()->setSingleStep(hour_ / 2);
}

void WeekView::ScrollTo(std::int32_t minutes) {
    // With the hour beside the line, half of which stands above it.
    verticalScrollBar()->setValue(minutes * hour_ / 60 - fontMetrics().height() / 2 - 1);
}

void WeekView::SetPixelsOfHour(int pixels) {
    ZoomAround(pixels, GridTop());
}

void WeekView::ZoomAround(int pixels, int y) {
    const int wanted = std::clamp(pixels, kLeastHour, kMostHour);
    if (wanted == hour_) return;
    const int below = std::max(0, y - GridTop());
    const double minutes = (below + verticalScrollBar()->value()) * 60.0 / hour_;
    hour_ = wanted;
    Pack();
    verticalScrollBar()->setValue(static_cast<int>(std::lround(minutes * hour_ / 60 - below)));
    emit HourZoomed(hour_);
}

void WeekView::Take(std::optional<std::size_t> entry, const DaySpan& span) {
    if (entry && *entry >= looks_.size()) entry.reset();
    chosen_ = entry;
    selArea_ = span;
    anchor_ = RowOf(span.start);
    if (!entry && !span.allDay) row_ = anchor_;
    viewport()->update();
    Speak();
    emit ChosenChanged();
}

void WeekView::Choose(std::optional<std::size_t> entry) {
    if (!entry || *entry >= looks_.size()) return Take({}, selArea_);
    const DaySpan span = SpanOf(*entry);
    Reveal(span);
    Take(entry, span);
}

void WeekView::Mark(const DaySpan& span) {
    Reveal(span);
    Take({}, span);
}

void WeekView::Speak() {
    QString words;
    const auto day = static_cast<std::size_t>(std::max(0, selArea_.day));
    if (day < frame_.DLabel.size()) {
        const QString& heading = frame_.DLabel[day];
        const std::string times = EntryTimes(Minutes{selArea_.start}, Minutes{selArea_.end}, selArea_.allDay);
        words = chosen_           ? SpokenWords(looks_[*chosen_], heading)
                : selArea_.allDay ? heading + ", " + tr("all day")
                                  : heading + ", " + QString::fromStdString(times);
    }
    if (words != accessibleDescription()) setAccessibleDescription(words);
}

void WeekView::Reveal(const DaySpan& span) {
    if (span.allDay) return;
    QScrollBar& bar = *verticalScrollBar();
    const int top = span.start * hour_ / 60;
    const int bottom = std::min(std::clamp(span.end, span.start + kStep, span.start + 60), kDay) * hour_ / 60;
    if (bottom > bar.value() + bar.pageStep()) bar.setValue(bottom - bar.pageStep());
    if (top < bar.value()) bar.setValue(top);
}

int WeekView::YOf(std::int32_t minutes) const {
    return GridTop() + minutes * hour_ / 60 - verticalScrollBar()->value();
}

QRect WeekView::DayRect(int day) const {
    // The days share the width to the last pixel.
    const int width = std::max(0, viewport()->width() - margin_);
    const int days = std::max(1, Days());
    const int left = margin_ + width * day / days;
    return {left, 0, margin_ + width * (day + 1) / days - left, viewport()->height()};
}

QRect WeekView::RectOf(int day, std::int32_t from, std::int32_t to, Place place) const {
    const QRect column = DayRect(day);
    const GridGeometry grid{.gridLeft = column.left() * kUnits,
                            .columnPitch = column.width() * kUnits,
                            .columnWidth = column.width() * kUnits,
                            .zoom = double{1} * hour_ / kFirstHour,
                            .offset = 0};
    const BoxGeometry box = BoxAt(from, to, place, grid);
    const int left = static_cast<int>(std::lround(box.left / kUnits));
    const int right = static_cast<int>(std::lround((box.left + box.width) / kUnits)) - kGap;
    // What it is drawn higher by is the gap to the one below.
    const int height = std::max(kLeastBox, static_cast<int>(box.drawnHeight / kUnits) - kGap - 1);
    // Just before midnight there is room for the least height above alone.
    const int top = std::min(YOf(from) + 1, YOf(kDay) - height);
    return {left, top, std::max(kGap, right - left), height};
}

QRect WeekView::RectOf(const MoreBox& box) const {
    QRect rect = RectOf(box.day, box.from, box.to, box.place);
    rect.setTop(std::clamp(GridTop() + 1, rect.top(), rect.bottom() - kLeastBox + 1));
    return rect;
}

QRect WeekView::StripRow(int day, int row) const {
    const QRect column = DayRect(day).adjusted(kGap + 1, 0, -kGap, 0);
    return {column.left(), heading_ + kGap + row * (stripRow_ + kGap), column.width(), stripRow_};
}

int WeekView::StripShown(int day) const {
    return LinesShown(static_cast<std::int32_t>(appoD_[static_cast<std::size_t>(day)].size()), stripRows_);
}

std::vector<QRect> WeekView::RectsOf(const DaySpan& span) const {
    std::vector<QRect> rects;
    if (span.day < 0 || span.day >= Days()) return rects;
    if (span.allDay) {
        const QRect day = DayRect(span.day);
        return {QRect(day.left() + 1, heading_ + 1, day.width() - 1, strip_ - 2)};
    }
    std::int32_t from = span.start;
    std::int32_t left = std::max(span.end, span.start + 1) - span.start;
    for (int day = span.day; day < Days() && left > 0; ++day) {
        const std::int32_t part = std::min(left, kDay - from);
        const QRect column = DayRect(day);
        const int bottom = std::max(YOf(from) + kLeastBox, YOf(from + part));
        rects.emplace_back(column.left() + 1, YOf(from), column.width() - 1, bottom - YOf(from));
        left -= part;
        from = 0;
    }
    return rects;
}

QRect WeekView::BoxOf(std::size_t entry) const {
    if (entry >= looks_.size()) return {};
    for (const DayBox& box : appo_)
        if (box.entry == entry && !box.goesOn) return RectOf(box);
    for (int day = 0; day < Days(); ++day) {
        const auto& entries = appoD_[static_cast<std::size_t>(day)];
        for (int row = 0; row < StripShown(day); ++row)
            if (entries[static_cast<std::size_t>(row)] == entry) return StripRow(day, row);
    }
    return {};
}

QRect WeekView::AreaOf(const DaySpan& span) const {
    const auto rects = RectsOf(span);
    return rects.empty() ? QRect() : rects.front();
}

DaySpan WeekView::SpanOf(std::size_t entry) const {
    const EntryLook& look = looks_[entry];
    const int day = DayOf(look.start).serial - frame_.first.serial;
    if (look.allDay) return WholeDay(day);
    const std::int32_t start = MinuteOfDay(look.start);
    // A length that goes through every view there is, and by which one can still reckon.
    constexpr std::int64_t kEndless = std::int64_t{1} << 30;
    const std::int64_t length = std::int64_t{look.end.count} - look.start.count;
    return {day, start, start + static_cast<std::int32_t>(std::clamp(length, -kEndless, kEndless)), false};
}

bool WeekView::EndsIn(const DayBox& box) const {
    const DaySpan span = SpanOf(box.entry);
    return span.end <= (box.day - span.day + 1) * kDay;
}

DaySpan WeekView::SlotAt(const QPoint& at) const {
    int day = 0;
    while (day + 1 < Days() && at.x() >= DayRect(day + 1).left())
        ++day;
    if (at.y() < GridTop()) return WholeDay(day);
    GridGeometry grid;
    grid.zoom = double{1} * hour_ / kFirstHour;
    const double y = (at.y() - GridTop() + verticalScrollBar()->value()) * kUnits;
    const std::int32_t start = std::min(MinuteAt(y, grid, kStep), kDay - kStep);
    return {day, start, start + kStep, false};
}

WeekView::Hit WeekView::HitAt(const QPoint& at) const {
    Hit hit;
    hit.at = SlotAt(at);
    hit.heading = at.y() < heading_;
    hit.margin = at.x() < margin_;
    hit.boxDay = hit.at.day;
    if (hit.heading || hit.margin || Days() == 0) return hit;
    if (hit.at.allDay) {
        const auto& entries = appoD_[static_cast<std::size_t>(hit.at.day)];
        const int shown = StripShown(hit.at.day);
        for (int row = 0; row < stripRows_; ++row) {
            if (!StripRow(hit.at.day, row).contains(at)) continue;
            if (row < shown)
                hit.entry = entries[static_cast<std::size_t>(row)];
            else if (static_cast<std::size_t>(shown) < entries.size())
                hit.listed = entries;
        }
        return hit;
    }
    // What is painted last lies on top, and what goes on over midnight is painted first.
    for (const DayBox& box : appo_) {
        const QRect rect = RectOf(box);
        if (box.day != hit.at.day || !rect.contains(at)) continue;
        hit.entry = box.entry;
        hit.edge = EndsIn(box) && at.y() > rect.bottom() - kEdge;
    }
    for (const MoreBox& box : more_)
        if (RectOf(box).contains(at)) {
            hit.entry.reset();
            hit.edge = false;
            hit.listed = box.all;
        }
    return hit;
}

void WeekView::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    UpdateRange();
    Fit();
}

void WeekView::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange) Pack();
}

void WeekView::hideEvent(QHideEvent* event) {
    QAbstractScrollArea::hideEvent(event);
    txtQuick->GiveUp();
    EndDrag();
    DropTip();
    if (list_) list_->Forget();
}

void WeekView::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
}

void WeekView::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    EndDrag();
}

void WeekView::mousePressEvent(QMouseEvent* event) {
    // Another button takes a drag back, as Esc does, and means no more than that.
    quiet_ = drag_ != Drag::None && event->button() == Qt::RightButton;
    if (drag_ != Drag::None) return EndDrag();
    const QPoint at = event->position().toPoint();
    Hit hit = HitAt(at);
    const bool left = event->button() == Qt::LeftButton;
    if (hit.heading && left && !hit.margin && Days() > 0) return emit DayWanted(hit.at.day);
    if (hit.heading || hit.margin || Days() == 0) return;
    if (left && !hit.listed.empty())
        return OpenList(hit.listed, hit.at.day, event->globalPosition().toPoint());
    if (left) return Begin(at, std::move(hit));
    if (event->button() != Qt::RightButton) return;
    if (hit.entry) return Take(hit.entry, SpanOf(*hit.entry));
    // A menu inside what is marked is meant for the whole of it.
    const DaySpan& here = hit.at;
    const bool inside = !chosen_ && here.day == selArea_.day && here.allDay == selArea_.allDay &&
                        here.start >= RowOf(selArea_.start) && here.start < selArea_.end;
    if (!inside) Take({}, here);
}

void WeekView::Begin(const QPoint& at, Hit hit) {
    drag_ = Drag::Pressed;
    pressed_ = hand_ = at;
    copying_ = false;
    grabbed_ = std::move(hit);
    const DaySpan span = grabbed_.entry ? SpanOf(*grabbed_.entry) : grabbed_.at;
    txtMove_ = span;
    Take(grabbed_.entry, span);
}

DaySpan WeekView::MarkedTo(const DaySpan& here) const {
    const DaySpan& from = grabbed_.at;
    if (from.allDay) return from;
    // Up into the strip means from midnight on; beside the day, the height alone counts.
    const std::int32_t row = here.allDay ? 0 : here.start;
    return {from.day, std::min(from.start, row), std::max(from.end, row + kStep), false};
}

DaySpan WeekView::SizedTo(const DaySpan& here) const {
    DaySpan span = SpanOf(*grabbed_.entry);
    const std::int32_t row = here.allDay ? 0 : here.start;
    if (row == grabbed_.at.start) return span;
    // Its end lies on the day whose box was grabbed, whichever day the hand goes over.
    const std::int32_t end = (grabbed_.boxDay - span.day) * kDay + row + kStep;
    span.end = std::max(end, RowOf(span.start) + kStep);
    return span;
}

DaySpan WeekView::MovedTo(const DaySpan& here) const {
    const DaySpan span = SpanOf(*grabbed_.entry);
    const int day = std::clamp(span.day + here.day - grabbed_.at.day, 0, Days() - 1);
    if (here.allDay) return WholeDay(day);
    if (span.allDay) return {day, here.start, here.start + std::max(kStep, frame_.dropLength), false};
    // By whole rows: what begins beside a line keeps its minutes. The start stays on a day of the view.
    const std::int32_t beside = span.start % kStep;
    const std::int32_t start =
        std::clamp(span.start + here.start - grabbed_.at.start, beside, kDay - kStep + beside);
    return {day, start, start + span.end - span.start, false};
}

void WeekView::mouseMoveEvent(QMouseEvent* event) {
    hand_ = event->position().toPoint();
    if (drag_ == Drag::Pressed && (hand_ - pressed_).manhattanLength() >= QApplication::startDragDistance()) {
        drag_ = !grabbed_.entry ? Drag::Marking : grabbed_.edge ? Drag::Sizing : Drag::Moving;
        DropTip();
        tmrScrolldelay->start();
    }
    ShowCursor(event->modifiers());
    ContinueDrag();
}

void WeekView::ShowCursor(Qt::KeyboardModifiers modifiers) {
    copying_ = drag_ == Drag::Moving && modifiers.testFlag(Qt::ControlModifier);
    Qt::CursorShape shape = Qt::ArrowCursor;
    if (drag_ == Drag::Moving)
        shape = copying_ ? Qt::DragCopyCursor : Qt::DragMoveCursor;
    else if (drag_ == Drag::Sizing)
        shape = Qt::SizeVerCursor;
    else if (drag_ == Drag::None) {
        const Hit hit = HitAt(hand_);
        const bool link = (hit.heading && !hit.margin) || !hit.listed.empty();
        shape = hit.edge ? Qt::SizeVerCursor : link ? Qt::PointingHandCursor : Qt::ArrowCursor;
    }
    if (viewport()->cursor().shape() != shape) viewport()->setCursor(shape);
    if (Dragging()) viewport()->update();
}

void WeekView::ScrollAtEdge() {
    // Above the hours lies the strip, into which an entry may be meant to go.
    const bool up = hand_.y() < GridTop() + kEdge && !(drag_ == Drag::Moving && hand_.y() < GridTop());
    const bool down = hand_.y() > viewport()->height() - kEdge;
    const bool inStrip = drag_ == Drag::Marking && grabbed_.at.allDay;
    if ((up || down) && !inStrip)
        verticalScrollBar()->setValue(verticalScrollBar()->value() + (up ? -kScrollStep : kScrollStep));
}

void WeekView::ContinueDrag() {
    if (!Dragging()) return;
    // Behind the last row that is seen one reaches it, not those below.
    const DaySpan here = SlotAt({hand_.x(), std::min(hand_.y(), viewport()->height() - 1)});
    if (drag_ == Drag::Marking)
        selArea_ = MarkedTo(here);
    else
        txtMove_ = drag_ == Drag::Sizing ? SizedTo(here) : MovedTo(here);
    viewport()->update();
}

void WeekView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || drag_ == Drag::None) return;
    hand_ = event->position().toPoint();
    ContinueDrag();
    const Drag drag = drag_;
    const auto entry = grabbed_.entry;
    const DaySpan span = txtMove_;
    const bool copy = drag == Drag::Moving && event->modifiers().testFlag(Qt::ControlModifier);
    drag_ = Drag::None;
    EndDrag();
    if (drag == Drag::Marking) {
        Take({}, selArea_);
        anchor_ = RowOf(grabbed_.at.start);
    }
    ShowCursor(event->modifiers());
    if (drag != Drag::Moving && drag != Drag::Sizing) return;
    if (!entry || *entry >= looks_.size() || span == SpanOf(*entry)) return;
    emit Dropped(*entry, span,
                 copy                   ? DropKind::Copy
                 : drag == Drag::Sizing ? DropKind::Resize
                                        : DropKind::Move);
}

void WeekView::EndDrag() {
    if (drag_ == Drag::Marking) selArea_ = grabbed_.at;
    drag_ = Drag::None;
    copying_ = false;
    tmrScrolldelay->stop();
    viewport()->unsetCursor();
    viewport()->update();
}

void WeekView::mouseDoubleClickEvent(QMouseEvent* event) {
    const Hit hit = HitAt(event->position().toPoint());
    EndDrag();
    if (event->button() != Qt::LeftButton || hit.heading || hit.margin || Days() == 0) return;
    if (!hit.listed.empty()) return;
    // The first click may have moved what lies here.
    Take(hit.entry, hit.entry ? SpanOf(*hit.entry) : hit.at);
    if (hit.entry) return emit OpenWanted(*hit.entry);
    emit NewWanted({});
}

void WeekView::wheelEvent(QWheelEvent* event) {
    if (!(event->modifiers() & Qt::ControlModifier)) return QAbstractScrollArea::wheelEvent(event);
    event->accept();
    wheel_ += event->angleDelta().y();
    const int notches = wheel_ / kNotch;
    wheel_ -= notches * kNotch;
    if (notches != 0) ZoomAround(hour_ + notches * kZoomStep, event->position().toPoint().y());
}

void WeekView::BeginTyping(const QString& letters) {
    if (txtQuick->isHidden()) {
        quickArea_ = selArea_;
        Reveal(quickArea_);
    }
    txtQuick->Begin(letters);
    PlaceQuick();
}

void WeekView::PlaceQuick() {
    if (!txtQuick->isHidden()) txtQuick->Place(AreaOf(quickArea_), quickArea_.allDay ? heading_ : GridTop());
}

void WeekView::inputMethodEvent(QInputMethodEvent* event) {
    if (const QString begun = BegunBy(*event); !begun.isEmpty() && !Dragging()) BeginTyping(begun);
    event->accept();
}

QVariant WeekView::inputMethodQuery(Qt::InputMethodQuery query) const {
    if (query != Qt::ImCursorRectangle) return QAbstractScrollArea::inputMethodQuery(query);
    return AreaOf(selArea_).translated(viewport()->pos());
}

void WeekView::OpenList(const std::vector<std::size_t>& entries, int day, const QPoint& at) {
    if (list_) list_->Forget();
    list_ = new EntryPopup(looks_, entries, frame_.DLabel[static_cast<std::size_t>(day)], this);
    connect(list_, &EntryPopup::Chosen, this, &WeekView::Choose);
    connect(list_, &EntryPopup::OpenWanted, this, &WeekView::OpenWanted);
    list_->ShowAt(at);
}

void WeekView::MenuByKey() {
    const QRect seen = AreaOf(selArea_).intersected(viewport()->rect());
    emit MenuWanted(viewport()->mapToGlobal(seen.isEmpty() ? QPoint(margin_, GridTop()) : seen.center()));
}

void WeekView::contextMenuEvent(QContextMenuEvent* event) {
    event->accept();
    EndDrag();
    if (std::exchange(quiet_, false)) return;
    if (event->reason() == QContextMenuEvent::Keyboard) return MenuByKey();
    const QPoint at = viewport()->mapFromGlobal(event->globalPos());
    if (at.y() >= heading_ && at.x() >= margin_) emit MenuWanted(event->globalPos());
}

bool WeekView::event(QEvent* event) {
    // Esc belongs to the drag while there is one, whatever else it does in the window.
    if (event->type() == QEvent::ShortcutOverride && drag_ != Drag::None &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape)
        event->accept();
    return QAbstractScrollArea::event(event);
}

bool WeekView::viewportEvent(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QAbstractScrollArea::viewportEvent(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const Hit hit = HitAt(help->pos());
    if (hit.entry && drag_ == Drag::None)
        ShowTip(help->globalPos(), looks_[*hit.entry], viewport());
    else
        DropTip();
    return true;
}

void WeekView::ChooseNext(int by) {
    // In the order of their starts; where none is chosen, from the mark on.
    const auto at = [](const DaySpan& span) {
        return std::int64_t{span.day} * kDay + (span.allDay ? -1 : span.start);
    };
    const int count = static_cast<int>(looks_.size());
    int to = by > 0 ? 0 : count - 1;
    if (chosen_) to = static_cast<int>(*chosen_) + by;
    for (; to >= 0 && to < count; to += by) {
        const DaySpan span = SpanOf(static_cast<std::size_t>(to));
        const bool passed = by > 0 ? at(span) < at(selArea_) : at(span) >= at(selArea_);
        const bool shown = span.day >= 0 && span.day < Days();
        if (shown && (chosen_ || !passed)) return Choose(static_cast<std::size_t>(to));
    }
}

void WeekView::MoveMark(int days, std::int32_t minutes, bool stretch) {
    if (Days() == 0) return;
    DaySpan span = selArea_;
    if (stretch) {
        if (span.allDay || chosen_ || days != 0) return;
        const std::int32_t moving = span.start < anchor_ ? span.start : RowOf(span.end - 1);
        const std::int32_t row = std::clamp(moving + minutes, 0, kDay - kStep);
        const std::int32_t anchor = anchor_;
        Mark({span.day, std::min(anchor, row), std::max(anchor, row) + kStep, false});
        anchor_ = anchor;
        Reveal({span.day, row, row + kStep, false});
        return;
    }
    if (days != 0) {
        const std::int32_t row = RowOf(span.start);
        if (chosen_ && !span.allDay) span = {span.day, row, row + kStep, false};
        const std::int64_t wanted = std::int64_t{frame_.first.serial} + span.day + days;
        const int way = span.day + days < 0 ? -1 : span.day + days >= Days() ? 1 : 0;
        if (way != 0) {
            const Day before = frame_.first;
            emit StepWanted(way);
            if (frame_.first == before || Days() == 0) return;
        }
        span.day = static_cast<int>(std::clamp<std::int64_t>(wanted - frame_.first.serial, 0, Days() - 1));
    } else if (span.allDay) {
        if (minutes < 0) return Mark(span);
        // Down to the first row that is seen whole.
        const int top = verticalScrollBar()->value() * 60 / hour_;
        const std::int32_t row = RowOf(top + kStep - 1);
        span = {span.day, row, row + kStep, false};
    } else {
        const std::int32_t row =
            minutes < 0 ? RowOf(span.start) - kStep : RowOf(std::max(span.end, span.start + 1) + kStep - 1);
        span = row < 0 ? WholeDay(span.day) : DaySpan{span.day, row, row + kStep, false};
    }
    Mark(span);
}

std::int32_t WeekView::RowForWhole() const {
    // One that is out of sight is not what was meant.
    const int y = YOf(row_);
    if (y >= GridTop() && y < viewport()->height()) return row_;
    const int top = verticalScrollBar()->value() * 60 / hour_;
    return std::min((top + 59) / 60 * 60, kDay - kStep);
}

bool WeekView::MoveChosen(const QKeyEvent& event) {
    if (!chosen_) return false;
    const int key = event.key();
    const int across = key == Qt::Key_Left ? -1 : key == Qt::Key_Right ? 1 : 0;
    const int down = key == Qt::Key_Up ? -1 : key == Qt::Key_Down ? 1 : 0;
    const bool resize = event.modifiers().testFlag(Qt::ShiftModifier);
    DaySpan span = SpanOf(*chosen_);
    if ((across == 0 && down == 0) || (resize && across != 0)) return false;
    if (span.allDay && (down < 0 || resize)) return true;
    const DaySpan before = span;
    if (span.allDay && down > 0) {
        const std::int32_t row = RowForWhole();
        span = {span.day, row, row + std::max(kStep, frame_.dropLength), false};
    } else if (!resize && down < 0 && span.start < kStep)
        span = WholeDay(span.day);
    else if (resize)
        span.end = std::max(span.end + down * kStep, span.start + std::min(kStep, span.end - span.start));
    else
        span = {span.day + across, span.start + down * kStep, span.end + down * kStep, span.allDay};
    const bool nonsense =
        span.day < 0 || span.day >= Days() || span.start < 0 || span.start >= kDay || span.end <= span.start;
    if (!nonsense && span != before) emit Dropped(*chosen_, span, resize ? DropKind::Resize : DropKind::Move);
    return true;
}

void WeekView::keyPressEvent(QKeyEvent* event) {
    const bool control = event->modifiers() & Qt::ControlModifier;
    const bool shift = event->modifiers() & Qt::ShiftModifier;
    if (Dragging()) {
        // The hand has the word; keys change nothing below it.
        if (event->key() == Qt::Key_Escape) return EndDrag();
        if (event->key() == Qt::Key_Control) ShowCursor(event->modifiers() | Qt::ControlModifier);
        return;
    }
    if (event->modifiers().testFlag(Qt::AltModifier)) {
        if (!MoveChosen(*event)) event->ignore();
        return;
    }
    switch (event->key()) {
        case Qt::Key_Up:
            return control ? ChooseNext(-1) : MoveMark(0, -kStep, shift);
        case Qt::Key_Down:
            return control ? ChooseNext(1) : MoveMark(0, kStep, shift);
        case Qt::Key_Left:
            return MoveMark(-1, 0, shift);
        case Qt::Key_Right:
            return MoveMark(1, 0, shift);
        case Qt::Key_PageUp:
            if (control) break;
            return emit StepWanted(-1);
        case Qt::Key_PageDown:
            if (control) break;
            return emit StepWanted(1);
        case Qt::Key_Home:
            if (control) break;
            return emit StepWanted(0);
        case Qt::Key_Plus:
        case Qt::Key_Minus:
            if (!control) break;
            return ZoomAround(hour_ + (event->key() == Qt::Key_Plus ? kZoomStep : -kZoomStep), GridTop());
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (control || shift) break;
            if (chosen_) return emit OpenWanted(*chosen_);
            return emit NewWanted({});
        case Qt::Key_Delete:
            if (chosen_ && !control && !shift) return emit DeleteWanted(*chosen_);
            break;
        case Qt::Key_F10:
            if (shift) return MenuByKey();
            break;
        default:
            break;
    }
    if (const QString begun = BegunBy(*event); !begun.isEmpty()) return BeginTyping(begun);
    // The base class would scroll by the keys that mean nothing here.
    event->ignore();
}

void WeekView::keyReleaseEvent(QKeyEvent* event) {
    if (Dragging() && event->key() == Qt::Key_Control)
        ShowCursor(event->modifiers() & ~Qt::KeyboardModifiers(Qt::ControlModifier));
    QAbstractScrollArea::keyReleaseEvent(event);
}

}  // namespace bmr::calendar
