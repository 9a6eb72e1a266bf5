#include "calendar/occurrences.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "calendar/appointment.h"
#include "calendar/rowcheck.h"
#include "support/calendar.h"
#include "support/store.h"

namespace bmr::calendar {
namespace {

constexpr Day kMonday{46006};  // 2025-12-15

/// Every fraction that is drawn is the same one.
class SameFraction final : public RandomSource {
  public:
    explicit SameFraction(double fraction) : fraction_(fraction) {}
    void Fill(std::span<std::uint8_t> out) override { bytes_.Fill(out); }
    double Uniform() override { return fraction_; }

  private:
    double fraction_;
    test::SeededRandom bytes_;
};

class Occurrences : public testing::Test {
  protected:
    Occurrences() { store.session.ShowPrivate = true; }

    Appointment Make(std::int32_t day, std::int32_t minute, const char* subject) {
        Appointment appointment = ClearRecord({MidnightOf({kMonday.serial + day}).count + minute}, 90);
        appointment.subject = subject;
        return appointment;
    }
    std::int32_t Store(Appointment appointment) {
        EXPECT_EQ(WriteRecord(store.session, appointment).error, 0);
        return appointment.key;
    }
    /// A series that begins on a day of the week.
    std::int32_t AddSeries(std::int32_t day, std::int32_t minute, const char* subject, RedoRule rule) {
        Appointment appointment = Make(day, minute, subject);
        rule.first = DateToDays16({kMonday.serial + day});
        if (rule.last.count == 0) rule.last = {26000};
        appointment.redoString = WriteRedoRule(rule);
        return Store(std::move(appointment));
    }
    /// "day minute subject" of each entry, days counted from the Monday.
    std::vector<std::string> Shown(std::int32_t first, std::int32_t last) {
        const auto entries =
            EntriesInPeriod(store.session, {{kMonday.serial + first}, {kMonday.serial + last}}, locale);
        EXPECT_TRUE(entries);
        std::vector<std::string> shown;
        for (const Entry& entry : *entries)
            shown.push_back(std::to_string(DayOf(entry.start).serial - kMonday.serial) + " " +
                            std::to_string(MinuteOfDay(entry.start)) + " " + entry.subject);
        return shown;
    }
    std::uint64_t DecipheredBy(const std::function<void()>& act) {
        const std::uint64_t before = store.session.cipher.deciphered;
        act();
        return store.session.cipher.deciphered - before;
    }

    test::TempStore store;
    LocaleFacts locale = test::WeekFrom(2);
};

TEST_F(Occurrences, StatementsAreTheKnownOnes) {
    for (const auto& c : test::CalendarVectors("PeriodSql")) {
        const Day first{c.at("first")};
        const Day last{c.at("last")};
        const auto text = [](std::int32_t bound) { return std::to_string(bound); };
        EXPECT_EQ(SeriesStatement("*", text(PackDateAt(last, DateKind::First, 0).high),
                                  text(PackDateAt(first, DateKind::Last, 0).low)),
                  c.at("out").at("recurring"));
        EXPECT_EQ(SinglesStatement("*", text(PackDateAt(first, DateKind::Start, 0).low),
                                   text(PackDateAt(last, DateKind::Start, 0).high)),
                  c.at("out").at("single"));
    }
}

TEST_F(Occurrences, SeriesStandBeforeSinglesAtTheSameMinute) {
    Store(Make(2, 600, "single"));
    Store(Make(2, 540, "early"));
    Store(Make(7, 600, "next week"));
    AddSeries(0, 600, "daily", {.kind = RedoKind::Daily, .interval = 2});
    AddSeries(-30, 600, "over", {.kind = RedoKind::Daily, .endMode = RedoEnd::Date, .last = {1}});
    EXPECT_EQ(Shown(0, 6), (std::vector<std::string>{"0 600 daily", "2 540 early", "2 600 daily",
                                                     "2 600 single", "4 600 daily", "6 600 daily"}));
    EXPECT_EQ(Shown(3, 3), std::vector<std::string>());
    EXPECT_EQ(Shown(7, 7), std::vector<std::string>{"7 600 next week"});

    const auto entries = EntriesInPeriod(store.session, {kMonday, {kMonday.serial + 6}}, locale);
    const auto occurrences = AppointmentsInPeriod(store.session, {kMonday, {kMonday.serial + 6}}, locale);
    ASSERT_EQ(occurrences->size(), entries->size());
    for (std::size_t i = 0; i < entries->size(); ++i) {
        const Entry& entry = (*entries)[i];
        EXPECT_EQ((*occurrences)[i], (Occurrence{entry.pk, entry.start}));
        EXPECT_EQ(entry.end.count, entry.start.count + 90);
        EXPECT_EQ(entry.recurring, entry.subject == "daily");
    }
}

TEST_F(Occurrences, AnExtremeDrawLeavesNoneOutOfItsDay) {
    constexpr double kGreatest = 1 - 0x1.0p-53;
    for (const double fraction : {0.0, kGreatest})
        for (const std::int32_t day : {0, -15000}) {  // the tables are mirrored before 1986
            test::TempStore file;
            SameFraction random(fraction);
            store::Session session{{file.prompter, file.clock, random, file.registry}};
            session.cipher.Keystring = Secret(cry::RandomBytes(random, 256));
            session.ProgramDb = std::move(file.session.ProgramDb);
            session.ShowPrivate = true;
            Appointment single = Make(day, 600, "single");
            ASSERT_EQ(WriteRecord(session, single).error, 0);
            Appointment series = Make(day, 660, "series");
            const DayCount only = DateToDays16({kMonday.serial + day});
            series.redoString = WriteRedoRule(
                {.kind = RedoKind::Daily, .endMode = RedoEnd::Date, .first = only, .last = only});
            ASSERT_EQ(WriteRecord(session, series).error, 0);
            for (const std::int32_t shown : {day - 1, day, day + 1}) {
                const Day each{kMonday.serial + shown};
                const auto found = AppointmentsInPeriod(session, {each, each}, locale);
                ASSERT_TRUE(found);
                EXPECT_EQ(found->size(), shown == day ? 2U : 0U) << fraction << " " << shown;
            }
        }
}

TEST_F(Occurrences, AnEdgeThatOthersDrewIsNoFault) {
    for (const std::int32_t day : {0, -15000}) {
        const std::int32_t key = Store(Make(day, 600, "single"));
        const SpreadRange bucket = PackDateAt({kMonday.serial + day}, DateKind::Start, 0);
        store.Set(key, "fR3", day < 0 ? bucket.low - 1 : bucket.high + 1);
        EXPECT_TRUE(CheckRows(store.session)->empty()) << day;
        store.Set(key, "fR3", day < 0 ? bucket.low - 2 : bucket.high + 2);
        EXPECT_EQ(CheckRows(store.session)->size(), 1U) << day;
        ASSERT_EQ(store::DeleteRow(store.session, key), 0);
    }
}

TEST_F(Occurrences, LongNotesAreCutBetweenCharacters) {
    Appointment wordy = Make(1, 600, "wordy");
    for (const char* letter : {"a", "ä"}) {
        wordy.notes = WipedText();
        for (int i = 0; i < 239; ++i)
            wordy.notes += "n";
        wordy.notes += letter;
        wordy.key = store::kNewRecord;
        Store(wordy);
    }
    const auto entries = EntriesInPeriod(store.session, {kMonday, {kMonday.serial + 6}}, locale);
    ASSERT_EQ(entries->size(), 2U);
    EXPECT_EQ((*entries)[0].notes, std::string(239, 'n') + "a");
    EXPECT_EQ((*entries)[1].notes, std::string(239, 'n') + "…");
}

TEST_F(Occurrences, PrivateAndUnreadableOnesAreLeftOut) {
    Appointment hidden = Make(1, 600, "hidden");
    hidden.isPrivate = true;
    Store(hidden);
    hidden.redoString = WriteRedoRule({.kind = RedoKind::Daily,
                                       .first = DateToDays16(kMonday),
                                       .last = DateToDays16({kMonday.serial + 60})});
    Store(hidden);
    Store(Make(1, 700, "open"));
    EXPECT_EQ(Shown(1, 1), (std::vector<std::string>{"1 600 hidden", "1 600 hidden", "1 700 open"}));
    store.session.ShowPrivate = false;
    EXPECT_EQ(Shown(1, 1), std::vector<std::string>{"1 700 open"});
    EXPECT_EQ(AppointmentsInPeriod(store.session, {kMonday, {kMonday.serial + 60}}, locale)->size(), 1U);

    store.session.ShowPrivate = true;
    const std::int32_t torn = Store(Make(3, 600, "torn"));
    store.Set(torn, "fEtx", cry::FieldCipher(store.session.cipher, 1, Bytes("\x02\x04xx")));
    const std::int32_t startless = Store(Make(3, 660, "startless"));
    store.Set(startless, "fT1", cry::FieldCipher(store.session.cipher, 1, Bytes("\x0a")));
    const std::int32_t even = AddSeries(3, 700, "even", {.kind = RedoKind::Daily});
    store.Set(even, "fT3", cry::FieldCipher(store.session.cipher, 1, Bytes("\x02\x00\x01\x01\x01\x01", 6)));
    EXPECT_EQ(Shown(3, 3), std::vector<std::string>{"3 600 hidden"});
}

TEST_F(Occurrences, AStartThatItsColumnBeliesIsNotOfThePeriod) {
    Store(Make(3, 600, "open"));
    const auto start = [&](std::int32_t day) {
        const auto row =
            store.Row("SELECT * FROM tt WHERE fPK=" + std::to_string(Store(Make(day, 600, "far"))));
        return std::get<Bytes>(row->Field("fT1"));
    };
    for (const std::int32_t day : {-1, 7, 40000})
        store.Set(Store(Make(3, 660, "belied")), "fT1", start(day));
    EXPECT_EQ(Shown(0, 6), std::vector<std::string>{"3 600 open"});
}

TEST_F(Occurrences, OnlyWhatIsShownIsDeciphered) {
    store.session.undo.recording = false;
    std::mt19937 engine(11);
    std::vector<Appointment> many;
    for (int i = 0; i < 1500; ++i)
        many.push_back(Make(static_cast<std::int32_t>(engine() % 700) - 350,
                            static_cast<std::int32_t>(engine() % 1440), "one of many"));
    ASSERT_EQ(AddRecords(store.session, many), 0);
    for (int i = 0; i < 20; ++i) {
        // Ten that run through the week, ten that are over.
        const auto last = static_cast<std::int16_t>(kMonday.serial - kEpoch.serial + (i < 10 ? 40 : -40));
        AddSeries(-100 - i, 60 * i, "weekly",
                  {.kind = RedoKind::Weekly, .endMode = RedoEnd::Date, .pattern = 4, .last = {last}});
    }
    const Period week{kMonday, {kMonday.serial + 6}};
    std::vector<Entry> entries;
    const auto opened = DecipheredBy([&] { entries = *EntriesInPeriod(store.session, week, locale); });
    const auto series = static_cast<std::uint64_t>(std::ranges::count(entries, true, &Entry::recurring));
    EXPECT_EQ(series, 10U);
    EXPECT_GT(entries.size(), 15U);
    EXPECT_EQ(opened, 2 * entries.size() + series);
    // With a look at each, nothing is missing.
    const auto inWeek = [&week](const Appointment& one) {
        return DayOf(one.start) >= week.first && DayOf(one.start) <= week.last;
    };
    EXPECT_EQ(entries.size() - series, static_cast<std::size_t>(std::ranges::count_if(many, inWeek)));
    EXPECT_TRUE(std::ranges::is_sorted(entries, {}, &Entry::start));
    EXPECT_EQ(DecipheredBy([&] { EXPECT_TRUE(AppointmentsInPeriod(store.session, week, locale)); }),
              entries.size() + series);
}

}  // namespace
}  // namespace bmr::calendar
