#include "calendar/monthview.h"

#include <QApplication>
#include <QHelpEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cstdlib>
#include <utility>

#include "calendar/layout.h"
#include "kit/theme.h"

namespace bmr::calendar {

namespace {

constexpr int kWeekWidth = 36;
constexpr int kPadding = 6;
constexpr int kNotch = 120;  ///< what a wheel tells of one

int HeadingHeight(const QFontMetrics& metrics) {
    return metrics.lineSpacing() + 2 * kit::Space::Tight;
}

int RowHeight(const QFontMetrics& metrics) {
    return metrics.lineSpacing() + 4;
}

}  // namespace

MonthView::MonthView(QWidget* parent) : QWidget(parent), txtQuick(new QuickLine(this, this)) {
    setFocusPolicy(Qt::StrongFocus);
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    setMouseTracking(true);
    setMinimumSize(7 * 48 + kWeekWidth, 220);
    setAccessibleName(tr("Appointments of the month"));
    setAttribute(Qt::WA_InputMethodEnabled);
    connect(txtQuick, &QuickLine::Typed, this, [this](const QString& words) {
        EndDrag();
        if (marked_ != quickCell_) MarkCell(quickCell_);
        emit NewWanted(words);
    });
}

MonthView::~MonthView() {
    if (list_) list_->Forget();  // it reads our entries
}

void MonthView::SetFrame(Frame frame) {
    EndDrag();
    const std::int64_t marked = std::int64_t{frame_.first.serial} + marked_ - frame.first.serial;
    const bool otherDays = frame.first != frame_.first;
    if (otherDays) txtQuick->GiveUp();
    if (marked >= 0 && marked < kCells) marked_ = static_cast<int>(marked);
    frame_ = std::move(frame);
    if (otherDays) SetEntries({});
    update();
}

void MonthView::SetEntries(std::vector<EntryLook> looks) {
    EndDrag();
    DropTip();
    if (list_) list_->Forget();
    chosen_.reset();
    looks_ = std::move(looks);
    for (auto& entries : monDayList)
        entries.clear();
    for (std::size_t entry = 0; entry < looks_.size(); ++entry)
        if (const int cell = CellOf(entry); cell >= 0)
            monDayList[static_cast<std::size_t>(cell)].push_back(entry);
    update();
    Speak();
}

void MonthView::Choose(std::optional<std::size_t> entry) {
    if (entry && *entry >= looks_.size()) entry.reset();
    chosen_ = entry;
    if (entry)
        if (const int cell = CellOf(*entry); cell >= 0) marked_ = cell;
    update();
    Speak();
    emit ChosenChanged();
}

void MonthView::MarkCell(int cell) {
    marked_ = std::clamp(cell, 0, kCells - 1);
    Choose({});
}

void MonthView::Speak() {
    const QString& day = frame_.spoken[static_cast<std::size_t>(marked_)];
    const QString words = chosen_ ? SpokenWords(looks_[*chosen_], day) : day;
    if (words != accessibleDescription()) setAccessibleDescription(words);
}

QRect MonthView::CellRect(int cell) const {
    const int top = HeadingHeight(fontMetrics());
    const int wide = width() - kWeekWidth;
    const int high = height() - top;
    const int column = cell % 7;
    const int row = cell / 7;
    const QPoint from(kWeekWidth + wide * column / 7, top + high * row / kWeeks);
    const QPoint to(kWeekWidth + wide * (column + 1) / 7 - 1, top + high * (row + 1) / kWeeks - 1);
    return {from, to};
}

QRect MonthView::RowRect(int cell, int row) const {
    const QRect rect = CellRect(cell);
    const int line = RowHeight(fontMetrics());
    return {rect.left() + 3, rect.top() + HeadingHeight(fontMetrics()) + row * line, rect.width() - 5,
            line - 1};
}

QRect MonthView::LineOf(std::size_t entry) const {
    const int cell = entry < looks_.size() ? CellOf(entry) : -1;
    if (cell < 0) return {};
    const auto& entries = monDayList[static_cast<std::size_t>(cell)];
    const auto row = std::ranges::find(entries, entry) - entries.begin();
    return row < ShownIn(cell) ? RowRect(cell, static_cast<int>(row)) : QRect();
}

int MonthView::ShownIn(int cell) const {
    const int room = CellRect(cell).height() - HeadingHeight(fontMetrics());
    const int rows = std::max(1, room / RowHeight(fontMetrics()));
    return LinesShown(static_cast<std::int32_t>(monDayList[static_cast<std::size_t>(cell)].size()), rows);
}

int MonthView::CellOf(std::size_t entry) const {
    const std::int64_t cell = std::int64_t{DayOf(looks_[entry].start).serial} - frame_.first.serial;
    return cell >= 0 && cell < kCells ? static_cast<int>(cell) : -1;
}

int MonthView::CellAt(const QPoint& at) const {
    for (int cell = 0; cell < kCells; ++cell)
        if (CellRect(cell).contains(at)) return cell;
    return -1;
}

MonthView::Hit MonthView::HitAt(const QPoint& at) const {
    Hit hit;
    hit.cell = CellAt(at);
    if (hit.cell < 0) return hit;
    hit.number = at.y() < RowRect(hit.cell, 0).top();
    const auto& entries = monDayList[static_cast<std::size_t>(hit.cell)];
    const int shown = ShownIn(hit.cell);
    for (int row = 0; row < shown; ++row)
        if (RowRect(hit.cell, row).contains(at)) hit.entry = entries[static_cast<std::size_t>(row)];
    hit.more = static_cast<std::size_t>(shown) < entries.size() && RowRect(hit.cell, shown).contains(at);
    return hit;
}

void MonthView::mousePressEvent(QMouseEvent* event) {
    // Another button takes a drag back, as Esc does, and means no more than that.
    quiet_ = grabbed_.has_value() && event->button() == Qt::RightButton;
    if (grabbed_) return EndDrag();
    const Hit hit = HitAt(event->position().toPoint());
    const bool left = event->button() == Qt::LeftButton;
    if (hit.cell < 0 || (!left && event->button() != Qt::RightButton)) return;
    if (hit.entry)
        Choose(hit.entry);
    else
        MarkCell(hit.cell);
    if (!left) return;
    if (hit.more) return OpenList(hit.cell);
    grabbed_ = hit.entry;
    pressed_ = event->position().toPoint();
}

void MonthView::mouseMoveEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    if (!grabbed_) {
        const Qt::CursorShape shape = HitAt(at).more ? Qt::PointingHandCursor : Qt::ArrowCursor;
        if (cursor().shape() != shape) setCursor(shape);
        return;
    }
    if (!dragging_ && (at - pressed_).manhattanLength() < QApplication::startDragDistance()) return;
    if (!dragging_) DropTip();
    dragging_ = true;
    over_ = CellAt(at);
    ShowCopying(event->modifiers() & Qt::ControlModifier);
}

void MonthView::ShowCopying(bool control) {
    copying_ = control;
    setCursor(over_ < 0 ? Qt::ForbiddenCursor : copying_ ? Qt::DragCopyCursor : Qt::DragMoveCursor);
    update();
}

void MonthView::EndDrag() {
    grabbed_.reset();
    dragging_ = false;
    copying_ = false;
    over_ = -1;
    unsetCursor();
    update();
}

void MonthView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    const auto entry = grabbed_;
    const bool dragged = dragging_;
    const int cell = CellAt(event->position().toPoint());
    const bool copy = event->modifiers() & Qt::ControlModifier;
    EndDrag();
    if (!dragged || !entry || *entry >= looks_.size() || cell < 0 || cell == CellOf(*entry)) return;
    emit Dropped(*entry, cell, copy ? DropKind::Copy : DropKind::Move);
}

void MonthView::mouseDoubleClickEvent(QMouseEvent* event) {
    const Hit hit = HitAt(event->position().toPoint());
    EndDrag();
    if (event->button() != Qt::LeftButton || hit.cell < 0 || hit.more) return;
    // The first click may have moved what lies here.
    marked_ = hit.cell;
    Choose(hit.entry);
    if (hit.entry) return emit OpenWanted(*hit.entry);
    if (hit.number) return emit DayWanted(hit.cell);
    emit NewWanted({});
}

void MonthView::wheelEvent(QWheelEvent* event) {
    // One notch, however many small steps a wheel tells it in, is one month.
    event->accept();
    wheel_ += event->angleDelta().y();
    if (std::abs(wheel_) < kNotch) return;
    const int way = wheel_ > 0 ? -1 : 1;
    wheel_ = 0;
    emit StepWanted(way);
}

void MonthView::ChooseNext(int by) {
    // In the order of their starts; where none is chosen, from the marked day on.
    const int count = static_cast<int>(looks_.size());
    int to = chosen_ ? static_cast<int>(*chosen_) + by : by > 0 ? 0 : count - 1;
    for (; to >= 0 && to < count; to += by) {
        const int cell = CellOf(static_cast<std::size_t>(to));
        const bool passed = by > 0 ? cell < marked_ : cell > marked_;
        if (cell >= 0 && (chosen_ || !passed)) return Choose(static_cast<std::size_t>(to));
    }
}

void MonthView::MoveMark(int by) {
    const int cell = marked_ + by;
    if (cell >= 0 && cell < kCells) return MarkCell(cell);
    const std::int64_t wanted = std::int64_t{frame_.first.serial} + cell;
    const Day before = frame_.first;
    emit StepWanted(by < 0 ? -1 : 1);
    if (frame_.first != before)
        MarkCell(static_cast<int>(std::clamp<std::int64_t>(wanted - frame_.first.serial, 0, kCells - 1)));
}

void MonthView::DropByKey(int by) {
    const int cell = chosen_ ? CellOf(*chosen_) + by : -1;
    if (cell >= 0 && cell < kCells) emit Dropped(*chosen_, cell, DropKind::Move);
}

void MonthView::keyPressEvent(QKeyEvent* event) {
    const bool control = event->modifiers() & Qt::ControlModifier;
    const bool shift = event->modifiers() & Qt::ShiftModifier;
    if (dragging_) {
        // The hand has the word; keys change nothing below it.
        if (event->key() == Qt::Key_Escape) EndDrag();
        if (event->key() == Qt::Key_Control) ShowCopying(true);
        return;
    }
    const auto step = [&](int days) {
        return event->modifiers().testFlag(Qt::AltModifier) ? DropByKey(days) : MoveMark(days);
    };
    switch (event->key()) {
        case Qt::Key_Up:
            return control ? ChooseNext(-1) : step(-7);
        case Qt::Key_Down:
            return control ? ChooseNext(1) : step(7);
        case Qt::Key_Left:
            return step(-1);
        case Qt::Key_Right:
            return step(1);
        case Qt::Key_PageUp:
            if (control) break;
            return emit StepWanted(-1);
        case Qt::Key_PageDown:
            if (control) break;
            return emit StepWanted(1);
        case Qt::Key_Home:
            if (control) break;
            return emit StepWanted(0);
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
    QWidget::keyPressEvent(event);
}

void MonthView::keyReleaseEvent(QKeyEvent* event) {
    if (dragging_ && event->key() == Qt::Key_Control) ShowCopying(false);
    QWidget::keyReleaseEvent(event);
}

void MonthView::OpenList(int cell) {
    if (list_) list_->Forget();
    list_ = new EntryPopup(looks_, monDayList[static_cast<std::size_t>(cell)],
                           frame_.spoken[static_cast<std::size_t>(cell)], this);
    connect(list_, &EntryPopup::Chosen, this, &MonthView::Choose);
    connect(list_, &EntryPopup::OpenWanted, this, &MonthView::OpenWanted);
    list_->ShowAt(mapToGlobal(RowRect(cell, 0).topLeft()));
}

void MonthView::BeginTyping(const QString& letters) {
    if (txtQuick->isHidden()) quickCell_ = marked_;
    txtQuick->Begin(letters);
    PlaceQuick();
}

void MonthView::PlaceQuick() {
    if (!txtQuick->isHidden()) txtQuick->Place(RowRect(quickCell_, 0), 0);
}

void MonthView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    PlaceQuick();
}

void MonthView::inputMethodEvent(QInputMethodEvent* event) {
    if (const QString begun = BegunBy(*event); !begun.isEmpty() && !dragging_) BeginTyping(begun);
    event->accept();
}

QVariant MonthView::inputMethodQuery(Qt::InputMethodQuery query) const {
    return query == Qt::ImCursorRectangle ? CellRect(marked_) : QWidget::inputMethodQuery(query);
}

void MonthView::MenuByKey() {
    emit MenuWanted(mapToGlobal(CellRect(marked_).center()));
}

void MonthView::contextMenuEvent(QContextMenuEvent* event) {
    event->accept();
    EndDrag();
    if (std::exchange(quiet_, false)) return;
    if (event->reason() == QContextMenuEvent::Keyboard) return MenuByKey();
    if (CellAt(mapFromGlobal(event->globalPos())) >= 0) emit MenuWanted(event->globalPos());
}

bool MonthView::event(QEvent* event) {
    // Esc belongs to the drag while there is one, whatever else it does in the window.
    if (event->type() == QEvent::ShortcutOverride && dragging_ &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape)
        event->accept();
    if (event->type() != QEvent::ToolTip) return QWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const Hit hit = HitAt(help->pos());
    if (hit.entry && !dragging_)
        ShowTip(help->globalPos(), looks_[*hit.entry], this);
    else
        DropTip();
    return true;
}

void MonthView::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    txtQuick->GiveUp();
    EndDrag();
    DropTip();
    if (list_) list_->Forget();
}

void MonthView::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    update();
}

void MonthView::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    EndDrag();
}

void MonthView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const TableInks inks(palette());
    const int heading = HeadingHeight(fontMetrics());
    painter.setPen(inks.quiet);
    for (int column = 0; column < 7; ++column) {
        const QRect cell = CellRect(column);
        painter.drawText(QRect(cell.left(), 0, cell.width(), heading), Qt::AlignCenter,
                         painter.fontMetrics().elidedText(frame_.weekdays[static_cast<std::size_t>(column)],
                                                          Qt::ElideRight, cell.width()));
    }
    for (int week = 0; week < kWeeks; ++week)
        painter.drawText(QRect(0, CellRect(7 * week).top(), kWeekWidth, heading), Qt::AlignCenter,
                         frame_.monWeek[static_cast<std::size_t>(week)]);
    for (int cell = 0; cell < kCells; ++cell)
        PaintCell(painter, cell);
    painter.setPen(QPen(inks.line, 0));
    for (int week = 0; week < kWeeks; ++week)
        painter.drawLine(kWeekWidth, CellRect(7 * week).top(), width(), CellRect(7 * week).top());
    for (int column = 0; column < 7; ++column)
        painter.drawLine(CellRect(column).left(), heading, CellRect(column).left(), height());
}

void MonthView::PaintCell(QPainter& painter, int cell) const {
    const auto at = static_cast<std::size_t>(cell);
    const TableInks inks(palette());
    const QRect rect = CellRect(cell);
    const bool today = frame_.today == cell;
    if (today)
        painter.fillRect(rect, inks.today);
    else if (!frame_.inMonth[at])
        painter.fillRect(rect, inks.off);
    const bool marked = marked_ == cell && !chosen_;
    if (marked || (dragging_ && over_ == cell))
        painter.fillRect(rect, kit::SelectionTint(palette(), hasFocus()));
    if (marked && hasFocus()) {
        painter.setPen(QPen(inks.accent, 1));
        painter.drawRect(rect.adjusted(1, 1, -1, -1));
    }
    QFont number = font();
    number.setBold(today);
    painter.setFont(number);
    painter.setPen(today ? inks.accent : frame_.inMonth[at] ? inks.text : inks.quiet);
    painter.drawText(rect.adjusted(0, kit::Space::Tight, -kPadding, 0), Qt::AlignRight | Qt::AlignTop,
                     QLocale().toString(frame_.monDayLabel[at]));
    painter.setFont(font());
    painter.save();
    painter.setClipRect(rect, Qt::IntersectClip);
    EntryPainter entries(painter, palette(), font());
    const int shown = ShownIn(cell);
    for (int row = 0; row < shown; ++row) {
        const std::size_t entry = monDayList[at][static_cast<std::size_t>(row)];
        painter.setOpacity(dragging_ && !copying_ && grabbed_ == entry ? 0.5 : 1);
        entries.Line(RowRect(cell, row), looks_[entry], chosen_ == entry);
    }
    painter.setOpacity(1);
    if (const std::size_t hidden = monDayList[at].size() - static_cast<std::size_t>(shown); hidden > 0)
        entries.More(RowRect(cell, shown), hidden);
    painter.restore();
}

}  // namespace bmr::calendar
