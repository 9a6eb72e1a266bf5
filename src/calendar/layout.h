#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "calendar/calendar.h"

/// Where the entries of the day and week views stand. Numbers only: the screen scales and draws them.
namespace bmr::calendar {

/// One occurrence to be placed. An all-day one begins at midnight and takes the whole day.
struct LayoutEntry {
    Minutes start;
    Minutes end;
    bool allDay = false;
};

/// Where an entry stands among those beside it.
struct Place {
    std::int32_t column = 1;   ///< from 1
    std::int32_t columns = 1;  ///< of its group: each is as wide as the others
    bool operator==(const Place&) const = default;
};

/// `appoColumn` and `appoColumns` of each entry, and `dayCount` of each day.
struct Packing {
    std::vector<Place> places;         ///< as many as entries, in their order
    std::vector<std::int32_t> allDay;  ///< all-day entries on each day of the view
};

/// Packs a view of `days` days from `first` on. A day's entries are those that start on it; timed ones that
/// overlap stand side by side, in the lowest column that is free, and all-day ones of a day share its strip.
/// REQUIRES: ascending starts. Entries outside the view keep one column.
Packing PackEntries(std::span<const LayoutEntry> entries, Day first, std::int32_t days);

/// A box of the hour grid: an entry, or what goes on of it on a later day.
struct DayBox {
    std::size_t entry = 0;  ///< index into the entries
    std::int32_t day = 0;   ///< column of days, from 0
    std::int32_t from = 0;  ///< minutes of the day
    std::int32_t to = 0;    ///< at most 1440; never before `from`
    Place place;
    bool goesOn = false;  ///< began on an earlier day: behind the others, in full width
};

/// The timed boxes of a view, those to be drawn first (what goes on over midnight) in front.
std::vector<DayBox> DayBoxes(std::span<const LayoutEntry> entries, const Packing& packing, Day first,
                             std::int32_t days);

/// Entries that find no room beside the others, gathered under "+n more".
struct MoreBox {
    std::int32_t day = 0;
    std::int32_t from = 0;                 ///< of the first of them, minutes of the day
    std::int32_t to = 0;                   ///< of the last
    Place place;                           ///< its own column, the last
    std::vector<std::size_t> hidden = {};  ///< indexes of entries that are not drawn
    std::vector<std::size_t> all = {};     ///< those of the whole group, for the list that it opens
};

/// Takes the boxes that do not fit where a day has room for `most` columns out of `boxes`; the others of
/// their groups then stand in `most` columns, the last of which is the "+n more". There is room for two at
/// least, so that one never stands for all.
std::vector<MoreBox> FitColumns(std::vector<DayBox>& boxes, std::int32_t most);

/// The same for lines of a list (a day's cell of the month, the strip of all-day entries): how many of
/// `count` entries are shown where there is room for `lines`. The rest is "+n more", which takes a line too.
std::int32_t LinesShown(std::int32_t count, std::int32_t lines);

/// The told units of the grid, in which an hour at zoom 1 is 330 high. A screen that draws an hour p pixels
/// high multiplies by p / 330.
struct GridGeometry {
    static constexpr double kHour = 330;
    static constexpr double kMargin = 60;   ///< left of the first column
    static constexpr double kPadding = 78;  ///< what a day's column keeps free of boxes
    static constexpr double kTail = 15;     ///< by which a box is drawn higher

    double gridLeft = 0;     ///< left edge of the day's column
    double columnPitch = 0;  ///< from one day's column to the next
    double columnWidth = 0;
    double zoom = 1;
    double offset = 0;  ///< what is scrolled away above the first visible hour
};

struct BoxGeometry {
    double left = 0;
    double width = 0;
    double top = 0;     ///< never negative
    double height = 0;  ///< of its time
    double drawnHeight = 0;
};

/// The box of the minutes `from` to `to` of a day. An end before the start gives the least height.
BoxGeometry BoxAt(std::int32_t from, std::int32_t to, Place place, const GridGeometry& grid);
/// Start and end of an entry as minutes of its day: an end at or past the next midnight is 1440.
std::int32_t FirstMinute(const LayoutEntry& entry);
std::int32_t LastMinute(const LayoutEntry& entry);

/// The minute of the day at a height on the grid, 0 to 1440, on a line of the rows of `step` minutes (1: no
/// rows).
std::int32_t MinuteAt(double y, const GridGeometry& grid, std::int32_t step);

}  // namespace bmr::calendar
