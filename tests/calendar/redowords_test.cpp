#include "calendar/redowords.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/calendar.h"

namespace bmr::calendar {
namespace {

using testing::HasSubstr;

constexpr int kSunday = 1;
constexpr int kMonday = 2;

Day On(const char* date) {
    const auto day = ParseIsoDate(date);
    if (!day) throw std::runtime_error(date);
    return *day;
}

constexpr int Bit(int weekday) {
    return 1 << weekday;
}

TEST(RuleWords, BecomeTheStringOfTheirKind) {
    struct Case {
        const char* words;
        RedoKind kind;
        int pattern;
        int interval;
        const char* first;  ///< of a series that is to begin on Wednesday, 6 January 2027
        const char* sentence;
    };
    const Case cases[] = {
        {"day", RedoKind::Daily, 0, 1, "2027-01-06", "every day"},
        {"3 days", RedoKind::Daily, 0, 3, "2027-01-06", "every 3 days"},
        {"workday", RedoKind::Workdays, 124, 1, "2027-01-06", "every workday, Monday to Friday"},
        {"week", RedoKind::Weekly, Bit(4), 1, "2027-01-06", "every week on Wednesday"},
        {"week on mon,thu", RedoKind::Weekly, Bit(2) | Bit(5), 1, "2027-01-07",
         "every week on Monday and Thursday"},
        {"2 Weeks on Mon, Tuesday", RedoKind::Weekly, Bit(2) | Bit(3), 2, "2027-01-11",
         "every 2 weeks on Monday and Tuesday"},
        {"1 week on sun,mon,sat", RedoKind::Weekly, Bit(1) | Bit(2) | Bit(7), 1, "2027-01-09",
         "every week on Monday, Saturday and Sunday"},
        {"month", RedoKind::MonthDay, 6, 1, "2027-01-06", "every month on day 6"},
        {"month on 31", RedoKind::MonthDay, 31, 1, "2027-01-31", "every month on day 31"},
        {"2 months on 5", RedoKind::MonthDay, 5, 2, "2027-02-05", "every 2 months on day 5"},
        {"month on first mon", RedoKind::MonthWeekday, 2 + 8 * 1, 1, "2027-02-01",
         "every month on the first Monday"},
        {"2 months on last fri", RedoKind::MonthWeekday, 6 + 8 * 5, 2, "2027-01-29",
         "every 2 months on the last Friday"},
        {"year", RedoKind::YearDay, 6, 1, "2027-01-06", "every year on 6 January"},
        {"year on second tue of may", RedoKind::YearWeekday, 3 + 8 * 2, 5, "2027-05-11",
         "every year on the second Tuesday of May"},
        {"year on forth sun of january", RedoKind::YearWeekday, 1 + 8 * 4, 1, "2027-01-24",
         "every year on the fourth Sunday of January"},
        {"year on first tue of jan", RedoKind::YearWeekday, 3 + 8 * 1, 1, "2028-01-04",
         "every year on the first Tuesday of January"},
    };
    for (const int weekFirst : {kMonday, kSunday})
        for (const Case& c : cases) {
            const LocaleFacts locale = test::WeekFrom(weekFirst);
            const auto state = ParseRule(c.words, On("2027-01-06"), locale);
            ASSERT_TRUE(state) << c.words;
            const auto rule = ReadRedoRule(BuildRedoString(*state, locale));
            ASSERT_TRUE(rule) << c.words;
            EXPECT_EQ(rule->kind, c.kind) << c.words;
            EXPECT_EQ(rule->pattern, c.pattern) << c.words;
            EXPECT_EQ(rule->interval, c.interval) << c.words;
            EXPECT_EQ(IsoDate(state->start), c.first) << c.words;
            EXPECT_EQ(state->date, state->start) << c.words;
            if (weekFirst == kMonday) {
                EXPECT_EQ(RuleSentence(*state, {}, locale), c.sentence);
            }
            // The first day of a series is one of its occurrences.
            std::vector<Day> days;
            ExpandRule(*rule, {state->start, state->start}, locale, days);
            EXPECT_EQ(days.size(), 1U) << c.words;
        }
}

TEST(RuleWords, TheDayThatAMonthLacksWaitsForOneThatHasIt) {
    EXPECT_EQ(IsoDate(ParseRule("month on 31", On("2027-02-01"), {})->start), "2027-03-31");
    EXPECT_EQ(IsoDate(ParseRule("month on 29", On("2027-01-30"), {})->start), "2027-03-29");
}

TEST(RuleWords, WhatIsNoRuleIsRefusedWithTheForms) {
    for (const char* words : {"",
                              " ",
                              "never",
                              "0 days",
                              "256 days",
                              "-1 days",
                              "days",
                              "3 day of",
                              "weeks on mon",
                              "week on",
                              "week on ,",
                              "week on mon,",
                              "week on mon thu",
                              "week on moon",
                              "2 workdays",
                              "workday on mon",
                              "month on 32",
                              "month on 0",
                              "month on sixth mon",
                              "month on first",
                              "month on first mon of may",
                              "2 years",
                              "year on second tue",
                              "year on second tue of",
                              "year on second tue of smarch",
                              "year on 5 may",
                              "day day"}) {
        const auto state = ParseRule(words, On("2027-01-06"), {});
        ASSERT_FALSE(state) << words;
        EXPECT_THAT(state.error().detail, HasSubstr(kRuleForms)) << words;
    }
}

TEST(RuleWords, ASentenceTellsTheEnd) {
    const LocaleFacts locale = test::WeekFrom(kMonday);
    auto state = *ParseRule("2 weeks on mon,thu", On("2027-01-04"), locale);
    state.endMode = RedoEnd::Count;
    state.count = 9;
    RecalcRedoEnd(state, locale);
    EXPECT_EQ(RuleSentence(state, {}, locale),
              "every 2 weeks on Monday and Thursday until 1 March 2027, 9 times");
    state.endMode = RedoEnd::Date;
    state.end = state.start;
    RecalcRedoEnd(state, locale);
    EXPECT_EQ(RuleSentence(state, {}, locale),
              "every 2 weeks on Monday and Thursday until 4 January 2027, once");
    EXPECT_EQ(RuleSentence(NewRedoState(On("2027-01-04"), locale), {}, locale), "");
    const auto counted = [&](const char* rule, const char* start, int count) {
        auto series = *ParseRule(rule, On(start), locale);
        series.endMode = RedoEnd::Count;
        series.count = count;
        RecalcRedoEnd(series, locale);
        const std::string sentence = RuleSentence(series, {}, locale);
        return sentence.substr(sentence.find(", ") + 2);
    };
    EXPECT_EQ(counted("month on 31", "2027-01-31", 5), "5 times by the count of months, shown on 3 days");
    EXPECT_EQ(counted("month on 30", "2026-03-30", 5), "5 times");
    EXPECT_EQ(counted("month on last mon", "2027-01-25", 5), "5 times");
    EXPECT_EQ(counted("year", "2028-03-01", 5), "5 times");
}

}  // namespace
}  // namespace bmr::calendar
