#include "calendar/nextdates.h"

#include <gtest/gtest.h>

#include "calendar/redowords.h"
#include "support/calendar.h"

namespace bmr::calendar {
namespace {

const LocaleFacts kMondays = test::WeekFrom(2);

Day On(const char* date) {
    return ParseIsoDate(date).value();
}

RedoRule RuleOf(const char* words, const char* start) {
    return ReadRedoRule(BuildRedoString(*ParseRule(words, On(start), kMondays), kMondays)).value();
}

std::string Listed(const RedoRule& rule, const char* from) {
    std::string text;
    for (const Day day : NextDates(rule, On(from), 5, kMondays))
        text += IsoDate(day) + " ";
    return text;
}

TEST(NextDates, EachMonthByItself) {
    EXPECT_EQ(Listed(RuleOf("2 weeks on mon,thu", "2027-01-04"), "2027-01-05"),
              "2027-01-07 2027-01-18 2027-01-21 2027-02-01 2027-02-04 ");
    EXPECT_EQ(Listed(RuleOf("month on 31", "2027-01-31"), "2027-01-31"),
              "2027-01-31 2027-03-31 2027-05-31 2027-07-31 2027-08-31 ");
    EXPECT_EQ(Listed(RuleOf("year on last sun of feb", "2027-01-31"), "2030-01-01"),
              "2030-02-24 2031-02-23 2032-02-29 2033-02-27 2034-02-26 ");
    RedoRule ended = RuleOf("day", "2027-01-30");
    ended.endMode = RedoEnd::Date;
    ended.last = DateToDays16(On("2027-02-02"));
    ended.excluded = {DateToDays16(On("2027-02-01"))};
    EXPECT_EQ(Listed(ended, "2027-01-30"), "2027-01-30 2027-01-31 2027-02-02 ");
    EXPECT_EQ(Listed(ended, "2027-03-01"), "");
    RedoRule rare = RuleOf("2 months on last fri", "2027-01-01");
    rare.interval = 255;
    EXPECT_EQ(NextDates(rare, On("2027-01-01"), 5, kMondays).size(), 2U) << "up to the limit of dates";
}

TEST(NextDates, WhereTheMonthViewShowsAnotherDay) {
    const auto sentence = [](const char* words, const char* start) {
        const auto found = NextGridDifference(RuleOf(words, start), On(start), kMondays);
        return found ? GridSentence(*found, {}) : std::string();
    };
    // April 2027 begins on a Thursday, so its six weeks begin in March.
    EXPECT_EQ(sentence("month on 31", "2027-03-31"), "The month view of April 2027 also shows 1 May 2027.");
    // That of January shows a day before the series besides, which is no day of it.
    EXPECT_EQ(sentence("month on 31", "2027-01-31"),
              "The month view of February 2027 also shows 3 March 2027.");
    EXPECT_EQ(sentence("month on 31", "2027-05-31"),
              "The month view of May 2027 shows 1 May 2027 instead of 31 May 2027.");
    EXPECT_EQ(sentence("12 months on 29", "2028-02-29"),
              "The month view of February 2029 also shows 1 March 2029.");
    EXPECT_EQ(sentence("12 months on 31", "2027-01-31"), "") << "each January has the day";
    EXPECT_EQ(sentence("month on 28", "2027-01-28"), "");
    EXPECT_EQ(sentence("month on last fri", "2027-01-29"), "");
}

}  // namespace
}  // namespace bmr::calendar
