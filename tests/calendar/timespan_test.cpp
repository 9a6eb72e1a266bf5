#include "calendar/timespan.h"

#include <gtest/gtest.h>

#include <limits>

#include "calendar/reminder.h"

namespace bmr::calendar {
namespace {

const Day kDay{46392};
const std::int32_t kBase = MidnightOf(kDay).count;

Minutes At(std::int32_t minute) {
    return {kBase + minute};
}

TimeSpan Span(std::int32_t from, std::int32_t to) {
    return DrawnSpan(At(from), At(to));
}

void ExpectSpan(const TimeSpan& span, std::int32_t from, std::int32_t to) {
    EXPECT_EQ(span.start.count - kBase, from);
    EXPECT_EQ(span.end.count - kBase, to);
}

TEST(EditorSpan, NewOnesBeginInTheMorningUnlessTheyWereDrawn) {
    ExpectSpan(NewSpan(At(0), 30), 540, 570);
    ExpectSpan(NewSpan(At(1), 45), 1, 46);
    ExpectSpan(DrawnSpan(At(0), At(60)), 0, 60);
    TimeSpan day = AllDaySpan(kDay, 30);
    EXPECT_TRUE(day.allDay);
    ExpectSpan(day, 0, 1440);
    SetAllDay(day, false);
    ExpectSpan(day, 540, 570);
}

TEST(EditorSpan, TheStartTakesTheEndAlongTo24) {
    TimeSpan span = Span(540, 600);
    SlideStart(span, 720);
    ExpectSpan(span, 720, 780);
    SlideStart(span, 23 * 60 + 55);
    ExpectSpan(span, 1435, 1440);
    SlideStart(span, 540);
    ExpectSpan(span, 540, 545);
}

TEST(EditorSpan, TheEndLeavesTheStart) {
    TimeSpan span = Span(540, 600);
    SlideEnd(span, 24 * 60 + 55);
    ExpectSpan(span, 540, 1440);
    SlideEnd(span, 300);
    ExpectSpan(span, 540, 540);
    EXPECT_EQ(span.Length(), 0);
}

TEST(EditorSpan, TypingIsCutAt24AndNeverEndsBeforeItBegins) {
    TimeSpan span = Span(540, 600);
    TypeStart(span, 570);
    ExpectSpan(span, 570, 600);
    TypeStart(span, 660);
    ExpectSpan(span, 660, 660);
    TypeEnd(span, 24 * 60 + 5);
    ExpectSpan(span, 660, 1440);
    TypeDuration(span, 90);
    ExpectSpan(span, 660, 750);
    TypeDuration(span, 24 * 60);
    ExpectSpan(span, 660, 1440);
}

TEST(EditorSpan, AnEndOnAnotherDayIsTold) {
    const std::pair<std::int32_t, std::int32_t> ends[] = {
        {600, 600}, {1440, 1440}, {1441, 1}, {2880, 0}, {-5, 1435}};
    for (const auto& [end, shown] : ends) {
        EXPECT_EQ(EndMinute(Span(540, end)), shown);
        EXPECT_EQ(EndsElsewhere(Span(540, end)), end != shown) << end;
    }
}

TEST(EditorSpan, TheDurationsButtonStepsOnItsGrid) {
    TimeSpan span = Span(540, 547);
    StepDuration(span, 1);
    ExpectSpan(span, 540, 550);
    span = Span(540, 547);
    StepDuration(span, -1);
    ExpectSpan(span, 540, 545);
    StepDuration(span, -1);
    StepDuration(span, -1);
    ExpectSpan(span, 540, 540);
    span = Span(1430, 1440);
    StepDuration(span, 1);
    ExpectSpan(span, 1430, 1440);
}

TEST(EditorSpan, TheAllDayBoxGivesBackWhatItTook) {
    TimeSpan span = Span(1380, 1440 + 120);
    SetAllDay(span, true);
    ExpectSpan(span, 0, 1440);
    SetAllDay(span, true);
    MoveToDay(span, {kDay.serial + 1});
    SetAllDay(span, false);
    ExpectSpan(span, 1440 + 1380, 2 * 1440 + 120);
    TimeSpan loaded = LoadedSpan(At(0), At(1440), true, 45);
    SetAllDay(loaded, false);
    ExpectSpan(loaded, 540, 585);
}

TEST(EditorSpan, WhatIsStored) {
    EXPECT_TRUE(StoredSpan(Span(0, 1440), false, kDay).allDay) << "a whole day, box or no box";
    EXPECT_FALSE(StoredSpan(Span(0, 1439), false, kDay).allDay);
    EXPECT_FALSE(StoredSpan(Span(60, 1500), false, kDay).allDay);
    ExpectSpan(StoredSpan(Span(600, 540), false, kDay), 600, 600);
    const TimeSpan overnight = Span(1380, 1440 + 120);
    ExpectSpan(StoredSpan(overnight, false, {kDay.serial + 7}), 1380, 1440 + 120);
    ExpectSpan(StoredSpan(overnight, true, {kDay.serial + 7}), 7 * 1440 + 1380, 8 * 1440 + 120);
    // A foreign all-day row with times in it.
    ExpectSpan(StoredSpan(LoadedSpan(At(600), At(660), true, 30), false, kDay), 0, 1440);
}

TEST(EditorSpan, ForeignTimesAtTheEndsOfTheRangeHold) {
    const Minutes least{std::numeric_limits<std::int32_t>::min()};
    const Minutes most{std::numeric_limits<std::int32_t>::max()};
    for (TimeSpan span : {DrawnSpan(least, most), DrawnSpan(most, least), DrawnSpan(most, most)}) {
        SlideStart(span, 1439);
        EXPECT_LE(span.start, span.end);
        TypeDuration(span, 1440);
        SetAllDay(span, true);
        MoveToDay(span, kDay);
        EXPECT_EQ(span.start, At(0));
        EXPECT_LE(StoredSpan(span, true, kDay).start, StoredSpan(span, true, kDay).end);
    }
}

TEST(EditorSpan, TypedTextBecomesWhatTheBoxAllows) {
    EXPECT_EQ(TypedHour("7", TimeBox::Start), 7);
    EXPECT_EQ(TypedHour("24", TimeBox::Start), 23);
    EXPECT_EQ(TypedHour("24", TimeBox::End), 24);
    EXPECT_EQ(TypedHour("99999999999", TimeBox::End), 24);
    EXPECT_EQ(TypedHour("-1", TimeBox::Duration), 0);
    EXPECT_EQ(TypedMinute("59"), 55);
    EXPECT_EQ(TypedMinute("60"), 55);
    EXPECT_EQ(TypedMinute("-99999999999"), 0);
    EXPECT_EQ(TypedMinute("14"), 10);
    for (const char* none : {"", "x", "1x", " 1", "-"}) {
        EXPECT_FALSE(TypedHour(none, TimeBox::End)) << none;
        EXPECT_FALSE(TypedMinute(none)) << none;
    }
    EXPECT_EQ(ParseTime("9"), 540);
    EXPECT_EQ(ParseTime(" 09:35 "), 575);
    EXPECT_EQ(ParseTime("935"), 575);
    EXPECT_EQ(ParseTime("0000"), 0);
    EXPECT_EQ(ParseTime("24:00"), 1440);
    for (const char* none :
         {"", ":", "9:", "9:5", "24:01", "25", "9:60", "-9", "9.30", "123456", "9:-5", "+9:30"})
        EXPECT_FALSE(ParseTime(none)) << none;
    EXPECT_EQ(ParseDateTime("2027-01-05 09:30"), At(570));
    EXPECT_EQ(ParseDateTime("2027-01-05T24:00"), At(1440));
    for (const char* none : {"2027-01-05", "2027-01-05 ", "2027-02-30 09:00", "2027-01-05x09:00"})
        EXPECT_FALSE(ParseDateTime(none)) << none;
    EXPECT_EQ(TimeText(5), "00:05");
    EXPECT_EQ(TimeText(1440), "24:00");
}

TEST(Reminders, LeadTimes) {
    EXPECT_EQ(AlarmTime(At(0), true, 1440), At(-1440));
    EXPECT_EQ(AlarmTime(At(600), false, 30), At(600));
    EXPECT_EQ(LeadOf(At(600), At(585)), 15);
    EXPECT_EQ(LeadChoices(15).size(), kLeadTimes.size());
    EXPECT_EQ(LeadChoices(25).back(), 25);
    EXPECT_EQ(LeadText(25), "25 min");
    EXPECT_EQ(LeadText(60), "1 Hour");
    EXPECT_EQ(LeadText(1440), "1 Day");
    const std::int32_t least = std::numeric_limits<std::int32_t>::min();
    EXPECT_EQ(AlarmTime({least}, true, 30).count, least);
}

}  // namespace
}  // namespace bmr::calendar
