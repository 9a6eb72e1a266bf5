#include "calendar/layout.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

#include "calendar/periods.h"
#include "calendar/timespan.h"
#include "support/calendar.h"

namespace bmr::calendar {
namespace {

using testing::ElementsAre;

const Day kMonday{46391};

LayoutEntry Timed(std::int32_t from, std::int32_t to, int day = 0) {
    const Minutes midnight = MidnightOf({kMonday.serial + day});
    return {{midnight.count + from}, {midnight.count + to}, false};
}

TEST(Layout, ADayIsPackedByTheKnownAnswers) {
    for (const auto& c : test::CalendarVectors("PackDay")) {
        std::vector<LayoutEntry> entries;
        std::vector<Place> expected;
        for (const auto& entry : c.at("entries"))
            entries.push_back(Timed(entry[0], entry[1]));
        for (const auto& place : c.at("out"))
            expected.push_back({place[0], place[1]});
        EXPECT_EQ(PackEntries(entries, kMonday, 1).places, expected) << c;
    }
}

TEST(Layout, AViewIsPackedByTheKnownAnswers) {
    for (const auto& c : test::CalendarVectors("PackView")) {
        std::vector<LayoutEntry> entries;
        for (const auto& entry : c.at("entries"))
            entries.push_back({{entry.at("start")}, {entry.at("end")}, entry.at("allday")});
        const Packing packing = PackEntries(entries, Day{c.at("viewFirst")}, c.at("viewDays"));
        std::vector<Place> expected;
        for (std::size_t i = 0; i < entries.size(); ++i)
            expected.push_back({c.at("out").at("column")[i], c.at("out").at("columns")[i]});
        EXPECT_EQ(packing.places, expected) << c;
        EXPECT_EQ(packing.allDay, c.at("out").at("dayCount").get<std::vector<std::int32_t>>()) << c;
    }
}

TEST(Layout, EntriesThatOverlapNeverShareAColumnAndGroupsAreNoWiderThanNeeded) {
    std::mt19937 random(4);
    const auto draw = [&random](int below) {
        return static_cast<int>(random() % static_cast<unsigned>(below));
    };
    for (int round = 0; round < 200; ++round) {
        std::vector<LayoutEntry> entries;
        for (int i = draw(40); i >= 0; --i) {
            const int from = draw(1400);
            entries.push_back(Timed(from, from + draw(300)));
        }
        std::ranges::sort(entries, {}, &LayoutEntry::start);
        const Packing packing = PackEntries(entries, kMonday, 1);
        const auto atOnce = [&](Minutes when) {
            return std::ranges::count_if(
                entries, [when](const LayoutEntry& e) { return e.start <= when && when < e.end; });
        };
        for (std::size_t i = 0; i < entries.size(); ++i) {
            const Place place = packing.places[i];
            ASSERT_LE(place.column, place.columns);
            for (std::size_t j = 0; j < i; ++j) {
                if (entries[j].end <= entries[i].start || entries[i].end <= entries[i].start) continue;
                ASSERT_NE(packing.places[j].column, place.column) << round;
                ASSERT_EQ(packing.places[j].columns, place.columns) << round;
            }
        }
        std::int32_t widest = 0;
        std::int64_t most = 1;
        for (std::size_t i = 0; i < entries.size(); ++i) {
            widest = std::max(widest, packing.places[i].columns);
            // An entry without a length takes a column of its own at its minute.
            most =
                std::max<std::int64_t>(most, atOnce(entries[i].start) + (entries[i].end == entries[i].start));
        }
        ASSERT_LE(widest, most) << round;
    }
}

TEST(Layout, AnEntryOverMidnightIsCutAndGoesOnBehindTheOthersInsideThePeriod) {
    const std::vector<LayoutEntry> entries = {Timed(1380, 1440 + 1440 + 90), Timed(1400, 1440),
                                              Timed(30, 60, 1), Timed(1380, 1440 + 600, 2)};
    const auto boxes = DayBoxes(entries, PackEntries(entries, kMonday, 3), kMonday, 3);
    std::vector<std::vector<std::int32_t>> seen;
    for (const DayBox& box : boxes)
        seen.push_back({static_cast<std::int32_t>(box.entry), box.day, box.from, box.to, box.place.column,
                        box.place.columns, box.goesOn});
    using Line = std::vector<std::int32_t>;
    EXPECT_THAT(seen, ElementsAre(Line{0, 1, 0, 1440, 1, 1, 1}, Line{0, 2, 0, 90, 1, 1, 1},
                                  Line{0, 0, 1380, 1440, 1, 2, 0}, Line{1, 0, 1400, 1440, 2, 2, 0},
                                  Line{2, 1, 30, 60, 1, 1, 0}, Line{3, 2, 1380, 1440, 1, 1, 0}));
}

TEST(Layout, ForeignTimesAreDrawnWithTheLeastHeightAndStopNothing) {
    using Limits = std::numeric_limits<std::int32_t>;
    const std::vector<LayoutEntry> entries = {{{Limits::min()}, {Limits::max()}},
                                              Timed(600, 540),
                                              Timed(600, 660),
                                              {{Limits::max()}, {Limits::min()}}};
    const auto boxes = DayBoxes(entries, PackEntries(entries, kMonday, 2), kMonday, 2);
    ASSERT_EQ(boxes.size(), 2U);
    EXPECT_EQ(boxes[0].from, boxes[0].to);
    const BoxGeometry box = BoxAt(boxes[0].from, boxes[0].to, boxes[0].place, {0, 1000, 1000, 1, 0});
    EXPECT_EQ(box.height, 0);
    EXPECT_EQ(box.drawnHeight, GridGeometry::kTail);
}

TEST(Layout, WhatFindsNoRoomStandsUnderMore) {
    std::vector<LayoutEntry> entries(1000, Timed(540, 600));
    entries.push_back(Timed(570, 630));
    entries.push_back(Timed(700, 760));
    entries.push_back(Timed(700, 760));
    const Packing packing = PackEntries(entries, kMonday, 1);
    EXPECT_EQ(packing.places[999], (Place{1000, 1001}));
    auto boxes = DayBoxes(entries, packing, kMonday, 1);
    const auto mores = FitColumns(boxes, 4);
    ASSERT_EQ(mores.size(), 1U);
    EXPECT_EQ(mores[0].place, (Place{4, 4}));
    EXPECT_EQ(mores[0].hidden.size(), 998U);
    EXPECT_EQ(mores[0].all.size(), 1001U);
    EXPECT_EQ(mores[0].from, 540);
    EXPECT_EQ(mores[0].to, 630);
    ASSERT_EQ(boxes.size(), 5U);
    EXPECT_EQ(boxes[2].place, (Place{3, 4}));
    EXPECT_EQ(boxes[4].place, (Place{2, 2})) << "a group that fits stays as it is";

    EXPECT_EQ(LinesShown(3, 3), 3);
    EXPECT_EQ(LinesShown(4, 3), 2);
    EXPECT_EQ(LinesShown(4, 0), 0);
}

TEST(Layout, BoxesStandByTheKnownAnswers) {
    for (const auto& c : test::CalendarVectors("Geometry")) {
        const auto& in = c.at("in");
        const GridGeometry grid{in.at("grid_left"), in.at("pitch"), in.at("width"), in.at("zoom"),
                                in.at("offset")};
        const LayoutEntry entry{{in.at("start")}, {in.at("end")}, false};
        const BoxGeometry box =
            BoxAt(FirstMinute(entry), LastMinute(entry), {in.at("column"), in.at("columns")}, grid);
        const auto& out = c.at("out");
        EXPECT_DOUBLE_EQ(box.left, out.at("left")) << c;
        EXPECT_DOUBLE_EQ(box.width, out.at("width")) << c;
        EXPECT_DOUBLE_EQ(box.top, out.at("top")) << c;
        EXPECT_DOUBLE_EQ(box.height, out.at("height")) << c;
        EXPECT_DOUBLE_EQ(box.drawnHeight, out.at("heightDrawn")) << c;
        EXPECT_EQ(EntryText(entry.start, entry.end, false, "Subject"), c.at("text").get<std::string>());
        // Where nothing is scrolled away the way back gives the start.
        if (box.top > 0) {
            EXPECT_EQ(MinuteAt(box.top + 0.001, grid, 5), FirstMinute(entry)) << c;
        }
    }
    const GridGeometry grid{0, 100, 100, 1, 0};
    EXPECT_EQ(MinuteAt(-500, grid, 15), 0);
    EXPECT_EQ(MinuteAt(1e9, grid, 15), 1440);
    EXPECT_EQ(MinuteAt(GridGeometry::kHour * 9.74, grid, 15), 9 * 60 + 30);
}

}  // namespace
}  // namespace bmr::calendar
