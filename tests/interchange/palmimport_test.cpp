#include "interchange/palmimport.h"

#include <gtest/gtest.h>

#include "base/errors.h"
#include "calendar/reminder.h"
#include "interchange/palmrepeat.h"
#include "store/undo.h"
#include "support/failing_disk.h"
#include "support/palm.h"
#include "support/sitting.h"

namespace bmr::interchange {
namespace {

using store::Section;

constexpr std::uint32_t kDay = 86400;
constexpr std::uint32_t kStart = 19487 * kDay;  // Wednesday, 10 May 2023

/// An open database and files of a handheld beside it.
struct Import : ::testing::Test {
    void SetUp() override { sitting.Make(); }
    void TearDown() override { sitting.Close(); }

    PalmPlan Plan(std::uint8_t section, const test::PalmWriter& file) {
        const auto path = sitting.folder.Path() / std::string(PalmFileName(section));
        test::WriteFile(path, file.bytes);
        auto plan = PlanPalmImport(sitting.session, section, path, {});
        EXPECT_TRUE(plan);
        return plan ? std::move(*plan) : PalmPlan();
    }
    std::size_t Rows(std::uint8_t section) {
        auto rows = sitting.session.ProgramDb->Select("SELECT fPK FROM tt WHERE fSec=?", {section});
        std::size_t count = 0;
        while (rows->Next())
            ++count;
        return count;
    }
    static test::PalmWriter Tasks() {
        test::PalmWriter file;
        file.Header("TD10", "todo.dat", {"Work", " Home "}, 9, 3);
        file.Todo("Pay\r\nrent", kStart, false, 1, "a\nb\rc\r\nd", 1);
        return file.Todo("Done", 0, true, 5, "", 2).Todo("Odd", 0xFE000000, false, 9, "", 3);
    }

    test::Sitting sitting;
};

TEST_F(Import, TasksCarryTheirValuesAndCategories) {
    ASSERT_EQ(store::StoreCategories(sitting.session, {{"Home", 5}}, Section::Todo), 0);
    auto plan = Plan(Section::Todo, Tasks());
    EXPECT_EQ(plan.Count(), 3U);
    EXPECT_EQ(plan.Known(), 0U);
    EXPECT_EQ(plan.categories.added, 1U);
    EXPECT_EQ(plan.Changed(), 1U);
    EXPECT_EQ(plan.remarks.size(), 2U) << "its date and its priority";
    EXPECT_EQ(Rows(Section::Todo), 0U) << "a plan writes nothing";
    EXPECT_EQ(store::FillCategories(sitting.session, Section::Todo, false, false, false).size(), 1U);

    const auto outcome = StorePalmPlan(sitting.session, plan, false);
    EXPECT_EQ(outcome.error, 0);
    EXPECT_EQ(outcome.added, 3U);
    EXPECT_EQ(outcome.leftOut, 0U);
    const auto list = store::FillCategories(sitting.session, Section::Todo, false, false, false);
    EXPECT_EQ(list, (store::CategoryList{{"Home", 5}, {"Work", 1}}));
    std::map<std::string, tasks::Task> found;
    auto rows = sitting.session.ProgramDb->Select("SELECT fPK FROM tt WHERE fSec=15");
    while (rows->Next()) {
        auto task = tasks::FetchRecord(sitting.session, rows->Int(0));
        ASSERT_TRUE(task && task->readable);
        found[std::string(task->task)] = std::move(*task);
    }
    ASSERT_EQ(found.size(), 3U);
    const tasks::Task& rent = found.at("Pay rent");
    EXPECT_EQ(rent.note, "a\r\nb\r\nc\r\nd");
    EXPECT_TRUE(rent.hasNote);
    EXPECT_EQ(rent.priority, tasks::Priority::High);
    EXPECT_EQ(IsoDate(rent.dueDate), "2023-05-10");
    EXPECT_EQ(rent.category, 1);
    EXPECT_FALSE(rent.completed);
    const tasks::Task& done = found.at("Done");
    EXPECT_FALSE(done.hasDueDate);
    EXPECT_TRUE(done.completed);
    EXPECT_EQ(done.completedDate, sitting.clock.Today());
    EXPECT_EQ(done.priority, tasks::Priority::Low);
    EXPECT_EQ(done.category, 5);
    EXPECT_EQ(found.at("Odd").priority, tasks::Priority::Normal);
    EXPECT_EQ(IsoDate(found.at("Odd").dueDate), "2069-04-14");
    EXPECT_EQ(found.at("Odd").category, 0) << "beyond the list";

    // The same file again: all are known, and come in only when they are asked for.
    auto again = Plan(Section::Todo, Tasks());
    EXPECT_EQ(again.Known(), 3U);
    EXPECT_EQ(StorePalmPlan(sitting.session, again, false).leftOut, 3U);
    EXPECT_EQ(Rows(Section::Todo), 3U);
    again = Plan(Section::Todo, Tasks());
    EXPECT_EQ(StorePalmPlan(sitting.session, again, true).added, 3U);
    EXPECT_EQ(Rows(Section::Todo), 6U);
    // Another date is another task.
    test::PalmWriter later;
    later.Header("TD10", "todo.dat", {}, 9, 1).Todo("Pay rent", kStart + kDay, false, 1, "a\nb\nc\nd");
    EXPECT_EQ(Plan(Section::Todo, later).Known(), 0U);
}

TEST_F(Import, IsOneStepThatCanBeTakenBack) {
    auto plan = Plan(Section::Todo, Tasks());
    ASSERT_EQ(StorePalmPlan(sitting.session, plan, false).error, 0);
    const auto* step = store::NextStep(sitting.session, Section::Todo, store::UndoWay::Undo);
    ASSERT_TRUE(step);
    EXPECT_EQ(step->words.done, "imported");
    EXPECT_EQ(store::TakeStep(sitting.session, Section::Todo, store::UndoWay::Undo).error, 0);
    EXPECT_EQ(Rows(Section::Todo), 0U);
    EXPECT_TRUE(store::FillCategories(sitting.session, Section::Todo, false, false, false).empty());
    EXPECT_FALSE(store::NextStep(sitting.session, Section::Todo, store::UndoWay::Undo));
}

TEST_F(Import, ACancelAndAFailingDiskStoreNothing) {
    std::size_t told = 0;
    for (const std::size_t stop : {std::size_t{0}, std::size_t{3}}) {
        auto plan = Plan(Section::Todo, Tasks());
        const auto outcome =
            StorePalmPlan(sitting.session, plan, false, [&](std::size_t done, std::size_t all) {
                told = std::max(told, done);
                return all == 3 && done < stop;
            });
        EXPECT_EQ(outcome.error, MessageNumber::Cancelled);
        EXPECT_EQ(outcome.added, 0U);
        EXPECT_EQ(Rows(Section::Todo), 0U);
        EXPECT_TRUE(store::FillCategories(sitting.session, Section::Todo, false, false, false).empty());
    }
    EXPECT_EQ(told, 3U);
    auto plan = Plan(Section::Todo, Tasks());
    {
        const test::FailingDisk failing(1, test::FailingDisk::kForEver);
        EXPECT_GT(StorePalmPlan(sitting.session, plan, false).error, 0);
    }
    EXPECT_EQ(Rows(Section::Todo), 0U);
}

TEST_F(Import, MemosTakeTheirFirstLineAndTellWhatWasCut) {
    test::PalmWriter file;
    file.Header("MP10", "memopad.dat", {"Work"}, 5, 4);
    file.Memo("Shopping\r\nmilk", true, 1).Memo(std::string(300, 's') + "\nrest").Memo("");
    file.Memo(std::string(65535, '\n'));
    auto plan = Plan(Section::Memo, file);
    EXPECT_EQ(plan.Changed(), 1U);
    ASSERT_EQ(StorePalmPlan(sitting.session, plan, false).added, 4U);
    sitting.session.ShowPrivate = true;
    const auto keys = notes::ListRecords(sitting.session, -1);
    ASSERT_TRUE(keys);
    std::map<std::string, std::size_t> bodies;
    for (const std::int32_t key : *keys) {
        const auto memo = notes::FetchRecord(sitting.session, key);
        bodies[std::string(memo->subject)] += memo->body.size();
        EXPECT_EQ(memo->dateCreated.serial, 46347);
        if (memo->subject == "Shopping") {
            EXPECT_EQ(memo->body, "Shopping\r\nmilk");
            EXPECT_TRUE(memo->isPrivate);
            EXPECT_EQ(memo->category, 1);
        }
    }
    EXPECT_EQ(bodies, (std::map<std::string, std::size_t>{
                          {"Shopping", 14}, {std::string(255, 's'), 306}, {"", 65000}}));
}

TEST_F(Import, AppointmentsKeepTimesRemindersAndSeries) {
    test::PalmWriter file;
    file.Header("DB10", "datebook.dat", {"Work"}, 15, 7);
    file.Appointment("timed", kStart + 9 * 3600 + 1800, kStart + 11 * 3600, false, 1).NoRepeat();
    file.Appointment("untimed", kStart + 5 * 3600, kStart, true).NoRepeat();
    file.Appointment("midnights", kStart, kStart + kDay).NoRepeat();
    file.Appointment("backwards", kStart + 3600, kStart).NoRepeat();
    file.Appointment("too late", 0xFE000000, 0xFE000000).NoRepeat();
    // Weekly on Fridays from a Wednesday, with a reminder 3 days ahead.
    file.Int(1)
        .Int(0)
        .Int(0)
        .Int(kStart + 36000)
        .Int(kStart + 39600)
        .Text("weekly")
        .Int(0)
        .Text("note\nmore");
    file.Bool(false).Bool(true).Int(0).Bool(true).Int(3).Int(2);
    file.Long(8).Word(0).Word(32769).Long(2).Long(1).Long(0).Long(0).Long(0).Byte(0x20);
    file.Int(1).Int(0).Int(0).Int(kStart).Int(kStart).Text("alarm").Int(0).Text("").Bool(false).Bool(false);
    file.Int(0).Bool(true).Int(5).Int(3).NoRepeat();
    auto plan = Plan(Section::Calendar, file);
    EXPECT_EQ(plan.Count(), 6U);
    EXPECT_EQ(plan.LeftOut(), 1U);
    EXPECT_EQ(plan.Changed(), 4U);
    const auto outcome = StorePalmPlan(sitting.session, plan, false);
    EXPECT_EQ(outcome.added, 6U);
    EXPECT_EQ(outcome.leftOut, 1U);
    sitting.session.ShowPrivate = true;
    std::map<std::string, calendar::Appointment> found;
    const auto keys = calendar::ListRecords(sitting.session);
    for (const std::int32_t key : *keys) {
        auto appointment = calendar::FetchRecord(sitting.session, key);
        found[std::string(appointment->subject)] = std::move(*appointment);
    }
    ASSERT_EQ(found.size(), 6U);
    const auto midnight = PalmMinutes(kStart).count;
    const auto& timed = found.at("timed");
    EXPECT_EQ(timed.start.count, midnight + 570);
    EXPECT_EQ(timed.end.count, midnight + 660);
    EXPECT_EQ(timed.allDay, 0);
    EXPECT_EQ(timed.alarm, 0);
    for (const char* whole : {"untimed", "midnights"}) {
        EXPECT_EQ(found.at(whole).start.count, midnight) << whole;
        EXPECT_EQ(found.at(whole).end.count, midnight + 1440) << whole;
        EXPECT_EQ(found.at(whole).allDay, 1) << whole;
    }
    EXPECT_EQ(found.at("backwards").end, found.at("backwards").start);
    EXPECT_EQ(found.at("alarm").alarm, 0) << "no such unit";
    const auto& weekly = found.at("weekly");
    EXPECT_TRUE(weekly.isPrivate);
    EXPECT_EQ(weekly.notes, "note\r\nmore");
    EXPECT_EQ(weekly.start.count, midnight + 2 * 1440 + 600) << "the first Friday";
    EXPECT_EQ(weekly.end.count - weekly.start.count, 60);
    EXPECT_EQ(calendar::LeadOf(weekly.start, weekly.alarmTime), 3 * 1440);
    const auto rule = calendar::ReadRedoRule(weekly.redoString);
    ASSERT_TRUE(rule);
    EXPECT_EQ(rule->kind, calendar::RedoKind::Weekly);
    EXPECT_EQ(rule->pattern, 0x40);
    EXPECT_EQ(Plan(Section::Calendar, file).Known(), 6U) << "a series without an end too";
}

TEST_F(Import, AListOfCategoriesThatCannotBeReadStays) {
    ASSERT_EQ(store::StoreCategories(sitting.session, {{"Home", 5}}, Section::Todo), 0);
    {
        auto rows = sitting.session.ProgramDb->OpenRecordset("tt");
        ASSERT_EQ((*rows)->FindFirst("fSec=10 And fSub=15"), 0);
        (*rows)->Edit();
        (*rows)->SetField("fEtx", Bytes("damaged"));
        ASSERT_EQ((*rows)->Update(), 0);
    }
    ASSERT_TRUE(store::CategoriesUnread(sitting.session, Section::Todo));
    auto plan = Plan(Section::Todo, Tasks());
    EXPECT_TRUE(plan.categoriesUnread);
    EXPECT_EQ(plan.Changed(), 3U);
    EXPECT_EQ(StorePalmPlan(sitting.session, plan, false).added, 3U);
    EXPECT_TRUE(store::CategoriesUnread(sitting.session, Section::Todo));
    auto rows = sitting.session.ProgramDb->Select("SELECT fPK FROM tt WHERE fSec=15 And fG1 <> 0");
    EXPECT_FALSE(rows->Next());
}

}  // namespace
}  // namespace bmr::interchange
