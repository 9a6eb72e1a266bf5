#include "calendar/series.h"

#include <gtest/gtest.h>

#include "calendar/appointment.h"
#include "calendar/months.h"
#include "support/calendar.h"
#include "support/random.h"

namespace bmr::calendar {
namespace {

using nlohmann::json;
using test::CalendarVectors;
using test::WeekFrom;

/// Gives the answers of a script to Msg 151; without one it is not to be asked.
struct Script {
    explicit Script(const json& c) : mayAsk(c.contains("answers")) {
        if (mayAsk) answers = c.at("answers");
    }
    SeriesVoice Voice() {
        if (!mayAsk) return {};
        return {.beginNextMonth = [this] { return answers.at(asked++).get<bool>(); }};
    }
    bool mayAsk;
    json answers = json::array();
    std::size_t asked = 0;
};

WeekDays DaysFrom(const json& flags) {
    WeekDays days{};
    for (std::size_t i = 0; i < days.size(); ++i)
        days[i] = flags.at(i) == 1;
    return days;
}

RedoState StateFrom(const json& j) {
    RedoState state;
    state.frequency = j.at("frequency");
    state.alternative = j.at("alternative");
    state.kind = j.at("kind");
    state.endMode = j.at("endMode");
    state.start = {j.at("start")};
    state.end = {j.at("end")};
    state.count = j.at("count");
    state.interval = j.at("interval");
    state.intervalAlt = j.at("intervalAlt");
    state.weekday = j.at("weekday");
    state.nth = j.at("nth");
    state.month = j.at("month");
    state.days = DaysFrom(j.at("days"));
    state.date = {j.at("date")};
    state.filling = j.at("filling");
    return state;
}

json ToJson(const RedoState& state) {
    json days = json::array();
    for (const bool chosen : state.days)
        days.push_back(chosen ? 1 : 0);
    return {{"frequency", state.frequency},
            {"alternative", state.alternative},
            {"kind", state.kind},
            {"endMode", state.endMode},
            {"start", state.start.serial},
            {"end", state.end.serial},
            {"count", state.count},
            {"interval", state.interval},
            {"intervalAlt", state.intervalAlt},
            {"weekday", state.weekday},
            {"nth", state.nth},
            {"month", state.month},
            {"days", days},
            {"date", state.date.serial},
            {"filling", state.filling}};
}

/// Which parts of a state differ from those that `expected` tells.
json Differences(const RedoState& state, json expected) {
    expected.erase("iso");
    json different;
    const json actual = ToJson(state);
    for (const auto& [name, value] : expected.items())
        if (actual.at(name) != value) different[name] = {{"is", actual.at(name)}, {"expected", value}};
    return different;
}

TEST(SeriesArithmetic, NthWeekdaysAskOnlyWhereTheDayLiesBefore) {
    for (const auto& c : CalendarVectors("NthWeekdayOfMonth")) {
        Script script(c);
        Day date{c.at("date")};
        EXPECT_EQ(FirstNthWeekday(c.at("nth"), c.at("weekday"), date, script.Voice()).serial,
                  c.at("out").at("r"))
            << c;
        EXPECT_EQ(script.asked, c.at("out").at("asked")) << c;
    }
}

TEST(SeriesArithmetic, KnownAnswers) {
    for (const auto& c : CalendarVectors("NthOccurrenceDate")) {
        Script script(c);
        const auto unit = c.at("unit") == "m" ? SeriesUnit::Months : SeriesUnit::Years;
        EXPECT_EQ(
            NthOccurrenceDate(Day{c.at("start")}, c.at("nth"), c.at("localWeekday"), c.at("count"), unit,
                              c.at("interval"), c.at("month"), WeekFrom(c.at("dow")), script.Voice())
                .serial,
            c.at("out"))
            << c;
        EXPECT_EQ(script.asked, script.answers.size()) << c;
    }
    for (const auto& c : CalendarVectors("CountNthOccurrences")) {
        const auto unit = c.at("unit") == "m" ? SeriesUnit::Months : SeriesUnit::Years;
        EXPECT_EQ(CountNthOccurrences(Day{c.at("start")}, c.at("nth"), c.at("localWeekday"), Day{c.at("end")},
                                      unit, c.at("interval"), WeekFrom(c.at("dow"))),
                  c.at("out"))
            << c;
    }
    for (const auto& c : CalendarVectors("WeeklyEndDate")) {
        Day start{c.at("start")};
        const Day end = WeeklyEndDate(start, c.at("count"), c.at("interval"), DaysFrom(c.at("days")),
                                      WeekFrom(c.at("dow")));
        EXPECT_EQ(end.serial, c.at("out").at("end")) << c;
        EXPECT_EQ(start.serial, c.at("out").at("startAfter")) << c;
    }
    for (const auto& c : CalendarVectors("WeeklyCount")) {
        Day start{c.at("start")};
        EXPECT_EQ(WeeklyCount(start, Day{c.at("end")}, DaysFrom(c.at("days")), c.at("interval"),
                              WeekFrom(c.at("dow"))),
                  c.at("out").at("count"))
            << c;
        EXPECT_EQ(start.serial, c.at("out").at("startAfter")) << c;
    }
}

TEST(SeriesArithmetic, StatesComeToTheKnownAnswers) {
    for (const auto& c : CalendarVectors("SeriesState")) {
        RedoState state = StateFrom(c.at("in"));
        const LocaleFacts locale = WeekFrom(c.at("dow"));
        if (c.at("call") == "SeriesFromCount")
            SeriesFromCount(state, locale);
        else
            CountFromEndDate(state, locale);
        EXPECT_EQ(Differences(state, c.at("out")), json()) << c;
    }
}

TEST(SeriesArithmetic, StringsBothWays) {
    for (const auto& c : CalendarVectors("BuildRedoString"))
        EXPECT_EQ(ToHex(BuildRedoString(StateFrom(c.at("in")), WeekFrom(c.at("dow")))), c.at("out")) << c;
    for (const auto& c : CalendarVectors("ParseRedoString")) {
        const Bytes text = test::Hex(c.at("string"));
        const LocaleFacts locale = WeekFrom(c.at("dow"));
        const RedoState state = ParseRedoString(text, Day{c.at("ctlDate")}, locale);
        EXPECT_EQ(Differences(state, c.at("out")), json()) << c;
    }
}

/// A state of some kind that begins and ends on these days.
RedoState StateOf(int frequency, int alternative, const char* start, const char* end) {
    RedoState state = NewRedoState(*ParseIsoDate(start), {});
    state.frequency = frequency;
    state.alternative = alternative;
    state.kind = static_cast<int>(KindOf(frequency, alternative));
    state.endMode = RedoEnd::Date;
    state.end = *ParseIsoDate(end);
    return state;
}

TEST(SeriesArithmetic, AChangeAsksOnceAndFillingNever) {
    // Thursday 15 January 2026, on every first Monday: that of January lies before.
    for (const bool next : {true, false}) {
        RedoState state = StateOf(3, 1, "2026-01-15", "2026-12-31");
        state.nth = 1;
        state.weekday = 2;
        int asked = 0;
        const SeriesVoice voice{.beginNextMonth = [&] { return ++asked > 0 && next; }};
        RedoState filling = state;
        filling.filling = true;
        const Day before = filling.end;
        CountFromEndDate(filling, {}, voice);
        EXPECT_EQ(asked, 0);
        EXPECT_EQ(filling.count, 12);
        EXPECT_EQ(filling.end, before);
        RecalcRedoEnd(state, {}, voice);
        EXPECT_EQ(asked, 1);
        EXPECT_EQ(IsoDate(state.start), next ? "2026-02-02" : "2026-01-05");
        EXPECT_EQ(state.date, state.start);
        EXPECT_EQ(IsoDate(state.end), "2026-12-07");
        EXPECT_EQ(state.count, next ? 11 : 12);
    }
}

TEST(SeriesArithmetic, TheLastDayNeverLeavesItsLimits) {
    int told = 0;
    const SeriesVoice voice{.limitTaken = [&told] { ++told; }};
    for (const auto& [frequency, alternative] :
         {std::pair(1, 0), {2, 0}, {2, 1}, {3, 0}, {3, 1}, {4, 0}, {4, 1}}) {
        RedoState state = StateOf(frequency, alternative, "2060-05-14", "2060-05-14");
        state.endMode = RedoEnd::Count;
        state.interval = state.intervalAlt = 200;
        state.count = 30000;
        told = 0;
        RecalcRedoEnd(state, {}, voice);
        EXPECT_GT(told, 0) << state.kind;
        EXPECT_LE(state.end, kUpperLimit) << state.kind;
        // The number of a day of the month stays as it was given.
        EXPECT_EQ(state.count < 3300, state.kind != 4) << state.kind;
        // A number below 1 acts as 1, and the last day stays at or behind the first.
        state.count = -3;
        RecalcRedoEnd(state, {}, voice);
        EXPECT_EQ(state.count, 1) << state.kind;
        EXPECT_GE(state.end, state.start) << state.kind;
    }
    // Counted by months \ n as told, which may give none.
    RedoState monthly = StateOf(3, 0, "2026-01-31", "2026-02-03");
    monthly.interval = 4;
    RecalcRedoEnd(monthly, {});
    EXPECT_EQ(monthly.end, monthly.start);
}

TEST(SeriesArithmetic, ASeriesThatNobodyChangedKeepsItsString) {
    test::SeededRandom random;
    const LocaleFacts locale;
    // Every 2 weeks on Monday and Wednesday, two days excluded; once until a day, once without an end.
    for (const char* hex : {"1114023726cf263a263c26", "0114023726ff593a263c26"}) {
        const Bytes stored = test::Hex(hex);
        const RedoState state = ParseRedoString(stored, Day{45301}, locale);
        const RedoRule rule = *ReadRedoRule(stored);
        RedoState same = state;
        EXPECT_EQ(ToHex(StringToStore(same, stored, locale, random)), hex);
        EXPECT_EQ(same.end, DayOf(rule.last));
        RedoState other = state;
        other.interval = 3;
        const RedoRule changed = *ReadRedoRule(StringToStore(other, stored, locale, random));
        EXPECT_EQ(changed.interval, 3);
        EXPECT_TRUE(changed.excluded.empty());
        EXPECT_EQ(changed.last, DateToDays16(other.end));
        EXPECT_EQ(changed.last == rule.last, rule.endMode != RedoEnd::Never);
    }
    for (const auto& c : CalendarVectors("NoEndLastDay")) {
        test::ScriptedRandom scripted;
        scripted.uniforms = {c.at("rnd"), c.at("rnd")};
        EXPECT_EQ(NoEndLastDay(Day{45000}, scripted).serial, c.at("out")) << c;
        EXPECT_EQ(NoEndLastDay(kUpperLimit, scripted), kUpperLimit);
    }
}

}  // namespace
}  // namespace bmr::calendar
