#include "calendar/layout.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace bmr::calendar {
namespace {

/// The packing of one day's timed entries, in the order of their starts.
class DayPacker {
  public:
    explicit DayPacker(std::span<const LayoutEntry> entries, std::vector<Place>& places)
        : entries_(entries), places_(places) {}
    ~DayPacker() { Close(); }
    DayPacker(const DayPacker&) = delete;
    DayPacker& operator=(const DayPacker&) = delete;

    void Add(std::size_t index) {
        const LayoutEntry& entry = entries_[index];
        if (group_.empty() || entry.start >= groupEnd_) {
            Close();
            groupEnd_ = entry.end;
        }
        // A column whose last entry has ended is taken again, so that the group does not widen.
        const auto free = std::ranges::find_if(columnEnds_, [&](Minutes end) { return end <= entry.start; });
        places_[index].column = static_cast<std::int32_t>(free - columnEnds_.begin()) + 1;
        if (free == columnEnds_.end())
            columnEnds_.push_back(entry.end);
        else
            *free = entry.end;
        groupEnd_ = std::max(groupEnd_, entry.end);
        group_.push_back(index);
    }

  private:
    /// Every member of a group is as wide as the others.
    void Close() {
        for (const std::size_t index : group_)
            places_[index].columns = static_cast<std::int32_t>(columnEnds_.size());
        group_.clear();
        columnEnds_.clear();
    }

    std::span<const LayoutEntry> entries_;
    std::vector<Place>& places_;
    std::vector<Minutes> columnEnds_;
    std::vector<std::size_t> group_;
    Minutes groupEnd_;
};

/// The members of each overlap group among the boxes of a view that began on their day.
std::vector<std::vector<std::size_t>> GroupsOf(const std::vector<DayBox>& boxes) {
    std::vector<std::vector<std::size_t>> groups;
    std::int32_t day = -1;
    std::int32_t end = 0;
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        const DayBox& box = boxes[i];
        if (box.goesOn) continue;
        if (groups.empty() || box.day != day || box.from >= end) {
            groups.emplace_back();
            end = box.to;
        }
        day = box.day;
        end = std::max(end, box.to);
        groups.back().push_back(i);
    }
    return groups;
}

}  // namespace

Packing PackEntries(std::span<const LayoutEntry> entries, Day first, std::int32_t days) {
    Packing packing{std::vector<Place>(entries.size()),
                    std::vector<std::int32_t>(static_cast<std::size_t>(std::max(0, days)))};
    for (std::size_t begin = 0; begin < entries.size();) {
        const Day day = DayOf(entries[begin].start);
        std::size_t end = begin;
        while (end < entries.size() && DayOf(entries[end].start) == day)
            ++end;
        const std::int64_t column = std::int64_t{day.serial} - first.serial;
        if (column >= 0 && column < days) {
            DayPacker packer(entries, packing.places);
            std::int32_t& allDay = packing.allDay[static_cast<std::size_t>(column)];
            for (std::size_t i = begin; i < end; ++i)
                if (entries[i].allDay)
                    packing.places[i].column = ++allDay;
                else
                    packer.Add(i);
            for (std::size_t i = begin; i < end; ++i)
                if (entries[i].allDay) packing.places[i].columns = allDay;
        }
        begin = end;
    }
    return packing;
}

std::vector<DayBox> DayBoxes(std::span<const LayoutEntry> entries, const Packing& packing, Day first,
                             std::int32_t days) {
    std::vector<DayBox> boxes;
    std::vector<DayBox> behind;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const LayoutEntry& entry = entries[i];
        const std::int64_t column = std::int64_t{DayOf(entry.start).serial} - first.serial;
        if (entry.allDay || column < 0 || column >= days) continue;
        const auto day = static_cast<std::int32_t>(column);
        boxes.push_back({i, day, FirstMinute(entry), std::max(FirstMinute(entry), LastMinute(entry)),
                         packing.places[i], false});
        // An end at midnight sharp has nothing left for the day that begins there.
        std::int64_t left =
            std::int64_t{entry.end.count} - entry.start.count - (kMinutesOfDay - FirstMinute(entry));
        for (std::int32_t later = day + 1; left > 0 && later < days; ++later, left -= kMinutesOfDay)
            behind.push_back({i,
                              later,
                              0,
                              static_cast<std::int32_t>(std::min<std::int64_t>(left, kMinutesOfDay)),
                              {},
                              true});
    }
    behind.insert(behind.end(), boxes.begin(), boxes.end());
    return behind;
}

std::vector<MoreBox> FitColumns(std::vector<DayBox>& boxes, std::int32_t most) {
    most = std::max(2, most);
    std::vector<MoreBox> mores;
    std::vector<bool> hidden(boxes.size());
    for (const auto& group : GroupsOf(boxes)) {
        if (boxes[group.front()].place.columns <= most) continue;
        MoreBox more{.day = boxes[group.front()].day, .from = kMinutesOfDay, .place = {most, most}};
        for (const std::size_t at : group) {
            DayBox& box = boxes[at];
            more.all.push_back(box.entry);
            box.place.columns = most;
            if (box.place.column < most) continue;
            hidden[at] = true;
            more.hidden.push_back(box.entry);
            more.from = std::min(more.from, box.from);
            more.to = std::max(more.to, box.to);
        }
        mores.push_back(std::move(more));
    }
    std::size_t at = 0;
    std::erase_if(boxes, [&](const DayBox&) { return hidden[at++]; });
    return mores;
}

std::int32_t LinesShown(std::int32_t count, std::int32_t lines) {
    return count <= lines ? count : std::max(0, lines - 1);
}

std::int32_t FirstMinute(const LayoutEntry& entry) {
    return MinuteOfDay(entry.start);
}

std::int32_t LastMinute(const LayoutEntry& entry) {
    const std::int64_t last = FirstMinute(entry) + std::int64_t{entry.end.count} - entry.start.count;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(last, 0, kMinutesOfDay));
}

BoxGeometry BoxAt(std::int32_t from, std::int32_t to, Place place, const GridGeometry& grid) {
    BoxGeometry box;
    const double columns = std::max(1, place.columns);
    box.left = grid.gridLeft + GridGeometry::kMargin +
               (place.column - 1) * ((grid.columnPitch - GridGeometry::kPadding) / columns);
    box.width = (grid.columnWidth - GridGeometry::kPadding) / columns;
    box.top = std::max(0.0, from * grid.zoom / 60 * GridGeometry::kHour - grid.offset);
    box.height = std::max(0, to - from) / 60.0 * GridGeometry::kHour * grid.zoom;
    box.drawnHeight = box.height + GridGeometry::kTail;
    return box;
}

std::int32_t MinuteAt(double y, const GridGeometry& grid, std::int32_t step) {
    const double minute = (y + grid.offset) / GridGeometry::kHour * 60 / grid.zoom;
    const double line = std::floor(minute / step) * step;
    return static_cast<std::int32_t>(std::clamp(line, 0.0, double{kMinutesOfDay}));
}

}  // namespace bmr::calendar
