#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>
#include <cstdlib>

#include "calendar/periods.h"
#include "calendar/timespan.h"
#include "calendar/weekview.h"
#include "kit/theme.h"

namespace bmr::calendar {

namespace {

constexpr int kDot = 8;
constexpr int kAround = 2;  ///< that the frame of the mark keeps from boxes

/// The times of a span that the hand is drawing, so that one need not read them off the margin.
void PaintTimes(QPainter& painter, const QRect& rect, const DaySpan& span) {
    if (span.allDay) return;
    const QString times = QString::fromStdString(EntryTimes(Minutes{span.start}, Minutes{span.end}, false));
    painter.drawText(rect.adjusted(2 * kit::Space::Tight, 2, 0, 0), Qt::AlignTop | Qt::AlignLeading, times);
}

}  // namespace

void WeekView::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    painter.setFont(font());
    painter.save();
    painter.setClipRect(0, GridTop(), viewport()->width(), viewport()->height() - GridTop());
    PaintGrid(painter);
    PaintHours(painter);
    PaintBoxes(painter, event->rect());
    PaintNow(painter);
    painter.restore();
    PaintHeadings(painter);
    PaintStrip(painter);
    PaintDrag(painter);
}

void WeekView::PaintHeadings(QPainter& painter) const {
    const TableInks inks(palette());
    painter.fillRect(QRect(0, 0, viewport()->width(), heading_), inks.base);
    QFont bold = font();
    bold.setBold(true);
    painter.setPen(inks.quiet);
    painter.drawText(QRect(0, 0, margin_, heading_), Qt::AlignCenter, frame_.weekNr);
    for (int day = 0; day < Days(); ++day) {
        const bool today = frame_.today == day;
        const QRect rect(DayRect(day).left(), 0, DayRect(day).width(), heading_);
        if (today) painter.fillRect(rect, inks.today);
        painter.setFont(today ? bold : font());
        painter.setPen(today ? inks.accent : inks.text);
        const QString& words = frame_.DLabel[static_cast<std::size_t>(day)];
        painter.drawText(rect, Qt::AlignCenter,
                         painter.fontMetrics().elidedText(words, Qt::ElideRight, rect.width() - 4));
        painter.setPen(QPen(inks.line, 0));
        painter.drawLine(rect.topLeft(), rect.bottomLeft());
    }
    painter.setFont(font());
}

void WeekView::PaintStrip(QPainter& painter) const {
    const TableInks inks(palette());
    const QRect strip(0, heading_, viewport()->width(), strip_);
    painter.fillRect(strip, inks.base);
    EntryPainter entries(painter, palette(), font());
    for (int day = 0; day < Days(); ++day) {
        const QRect rect(DayRect(day).left(), heading_, DayRect(day).width(), strip_);
        if (TintsToday(day)) painter.fillRect(rect, inks.today);
        if (selArea_.allDay && selArea_.day == day) PaintMark(painter);
        painter.setPen(QPen(inks.line, 0));
        painter.drawLine(rect.topLeft(), rect.bottomLeft());
        const auto& all = appoD_[static_cast<std::size_t>(day)];
        const int shown = StripShown(day);
        for (int row = 0; row < shown; ++row) {
            const std::size_t entry = all[static_cast<std::size_t>(row)];
            painter.setOpacity(Leaving(entry) ? 0.5 : 1);
            entries.Box(StripRow(day, row), looks_[entry], chosen_ == entry);
        }
        painter.setOpacity(1);
        if (const std::size_t hidden = all.size() - static_cast<std::size_t>(shown); hidden > 0)
            entries.More(StripRow(day, shown), hidden);
    }
    painter.setPen(QPen(inks.line, 0));
    painter.drawLine(strip.topLeft(), strip.topRight());
    painter.drawLine(strip.bottomLeft(), strip.bottomRight());
}

void WeekView::PaintGrid(QPainter& painter) const {
    const TableInks inks(palette());
    const QRect grid(margin_, GridTop(), viewport()->width() - margin_, viewport()->height() - GridTop());
    painter.fillRect(QRect(0, GridTop(), viewport()->width(), grid.height()), inks.base);
    const bool shaded = frame_.workStart < frame_.workEnd;
    for (int day = 0; day < Days(); ++day) {
        const bool today = TintsToday(day);
        const QRect column(DayRect(day).left(), grid.top(), DayRect(day).width(), grid.height());
        if (today) painter.fillRect(column, inks.today);
        if (!shaded) continue;
        const auto shade = [&](std::int32_t from, std::int32_t to) {
            painter.fillRect(column.left(), YOf(from), column.width(), YOf(to) - YOf(from),
                             today ? inks.todayOff : inks.off);
        };
        shade(0, frame_.workStart);
        shade(frame_.workEnd, kMinutesOfDay);
    }
    for (int hour = 0; hour < 24; ++hour) {
        const int y = YOf(hour * 60);
        const int half = YOf(hour * 60 + 30);
        painter.setPen(QPen(inks.half, 0));
        painter.drawLine(margin_, half, viewport()->width(), half);
        painter.setPen(QPen(inks.line, 0));
        if (hour > 0) painter.drawLine(margin_, y, viewport()->width(), y);
    }
    painter.setPen(QPen(inks.line, 0));
    for (int day = 0; day < Days(); ++day)
        painter.drawLine(DayRect(day).left(), grid.top(), DayRect(day).left(), grid.bottom());
    if (!selArea_.allDay) PaintMark(painter);
}

void WeekView::PaintMark(QPainter& painter) const {
    if (chosen_) return;
    const TableInks inks(palette());
    painter.save();
    for (const QRect& rect : RectsOf(selArea_)) {
        // A box with the frame around it would look as if it were chosen.
        QRegion free(rect);
        const auto leave = [&](const QRect& box) {
            free -= box.adjusted(-kAround, -kAround, kAround, kAround);
        };
        if (selArea_.allDay)
            for (int row = 0; row < static_cast<int>(appoD_[static_cast<std::size_t>(selArea_.day)].size());
                 ++row)
                leave(StripRow(selArea_.day, std::min(row, stripRows_ - 1)));
        else if (drag_ != Drag::Marking)
            for (const DayBox& box : appo_)
                leave(RectOf(box));
        painter.save();
        painter.setClipRegion(free, Qt::IntersectClip);
        painter.fillRect(rect, kit::SelectionTint(palette(), hasFocus()));
        painter.setPen(QPen(inks.accent, 1));
        if (hasFocus()) painter.drawRect(rect.adjusted(0, 0, -1, -1));
        painter.restore();
        painter.setPen(inks.text);
        if (drag_ == Drag::Marking) PaintTimes(painter, rect, selArea_);
    }
    painter.restore();
}

void WeekView::PaintHours(QPainter& painter) const {
    const TableInks inks(palette());
    const int height = painter.fontMetrics().height();
    const int now = YOf(frame_.now);
    for (std::size_t hour = 1; hour < frame_.hours.size(); ++hour) {
        const int y = YOf(static_cast<std::int32_t>(hour) * 60);
        if (frame_.today && std::abs(y - now) < height) continue;
        painter.setPen(inks.quiet);
        painter.drawText(QRect(0, y - height / 2, margin_ - kit::Space::Row, height),
                         Qt::AlignRight | Qt::AlignVCenter, frame_.hours[hour]);
    }
    if (!frame_.today) return;
    QFont bold = font();
    bold.setBold(true);
    painter.setFont(bold);
    painter.setPen(inks.accent);
    painter.drawText(QRect(0, now - height / 2, margin_ - kit::Space::Row, height),
                     Qt::AlignRight | Qt::AlignVCenter, frame_.nowText);
    painter.setFont(font());
}

bool WeekView::Leaving(std::size_t entry) const {
    return (drag_ == Drag::Moving || drag_ == Drag::Sizing) && !copying_ && grabbed_.entry == entry;
}

EntryLook WeekView::RestOf(const DayBox& box) const {
    EntryLook rest = looks_[box.entry];
    const QString end = QString::fromStdString(TimeText(box.to));
    rest.time = EndsIn(box) ? tr("until %1").arg(end) : QString();
    rest.from = EndsIn(box) ? "-" + end : QString();
    return rest;
}

void WeekView::PaintBoxes(QPainter& painter, const QRect& within) const {
    EntryPainter entries(painter, palette(), font());
    for (const DayBox& box : appo_) {
        const QRect rect = RectOf(box);
        if (!rect.intersects(within)) continue;
        painter.setOpacity(Leaving(box.entry) ? 0.5 : 1);
        entries.Box(rect, box.goesOn ? RestOf(box) : looks_[box.entry], chosen_ == box.entry);
    }
    painter.setOpacity(1);
    for (const MoreBox& box : more_)
        if (const QRect rect = RectOf(box); rect.intersects(within)) entries.More(rect, box.hidden.size());
}

void WeekView::PaintNow(QPainter& painter) const {
    if (!frame_.today) return;
    const QColor accent = TableInks(palette()).accent;
    const int y = YOf(frame_.now);
    const QRect day = DayRect(*frame_.today);
    painter.save();
    painter.fillRect(day.left(), y - 1, day.width(), 2, accent);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(accent);
    painter.drawEllipse(QPointF(day.left() + .5, y), kDot / 2.0, kDot / 2.0);
    painter.restore();
}

void WeekView::PaintDrag(QPainter& painter) const {
    if (drag_ != Drag::Moving && drag_ != Drag::Sizing) return;
    painter.save();
    if (!txtMove_.allDay)
        painter.setClipRect(0, GridTop(), viewport()->width(), viewport()->height() - GridTop());
    // As it will be where it is let fall.
    EntryLook look = looks_[*grabbed_.entry];
    look.allDay = txtMove_.allDay;
    look.time =
        QString::fromStdString(EntryTimes(Minutes{txtMove_.start}, Minutes{txtMove_.end}, look.allDay));
    look.from = look.time.section('-', 0, 0);
    EntryPainter entries(painter, palette(), font());
    if (txtMove_.allDay) {
        const auto& below = appoD_[static_cast<std::size_t>(txtMove_.day)];
        const int row = std::min(static_cast<int>(below.size()), stripRows_ - 1);
        entries.Box(StripRow(txtMove_.day, row), look, true);
    } else {
        for (const QRect& rect : RectsOf(txtMove_))
            entries.Box(rect.adjusted(2, 1, -2, -1), look, true);
    }
    painter.restore();
}

}  // namespace bmr::calendar
