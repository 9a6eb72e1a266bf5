#include "tasks/tasklist.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "store/startvariables.h"
#include "support/sitting.h"
#include "support/store.h"

namespace bmr::tasks {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const Day kToday{46347};  // 21 November 2026

struct ListStore : test::TempStore {
    ListStore() { session.ShowPrivate = true; }
    std::int32_t Add(Task task) {
        EXPECT_EQ(WriteRecord(session, task).error, 0);
        return task.key;
    }
    std::vector<TaskRow> Rows(const TaskFilter& filter = {.showCompleted = true}) {
        auto rows = ListRecords(session, filter);
        EXPECT_TRUE(rows);
        return rows ? std::move(*rows) : std::vector<TaskRow>();
    }
    std::vector<Bytes> Texts(const std::vector<TaskRow>& rows) {
        std::vector<Bytes> texts;
        for (const TaskRow& row : rows)
            texts.push_back(ReadTexts(session, row.fPK).task);
        return texts;
    }
};

Task Named(const Bytes& name, std::optional<Day> due = std::nullopt, std::int32_t priority = 1) {
    Task task;
    task.task = name;
    task.hasDueDate = due.has_value();
    task.dueDate = due.value_or(Day{});
    task.priority = priority;
    return task;
}

Task Done(Task task, Day when = kToday) {
    task.completed = true;
    task.completedDate = when;
    return task;
}

TEST(TaskStatement, IsTheToldOne) {
    ListStore store;
    store::Session& session = store.session;
    EXPECT_EQ(TaskStatement(session, {.category = 3}),
              "SELECT * FROM tt WHERE fSec=15 And fF3 = False And fG1 = 3 WITH OWNERACCESS OPTION;");
    ASSERT_EQ(store::StoreCategories(session, {{"a", 2}, {"b", 5}}, store::Section::Todo), 0);
    EXPECT_EQ(TaskStatement(session, {.showCompleted = true, .category = 0}),
              "SELECT * FROM tt WHERE fSec=15 And (fG1 Is Null Or (fG1 <> 2 And fG1 <> 5)) WITH OWNERACCESS "
              "OPTION;");
    for (const std::int32_t all : {-1, 9999})
        EXPECT_EQ(TaskStatement(session, {.category = all}),
                  "SELECT * FROM tt WHERE fSec=15 And fF3 = False WITH OWNERACCESS OPTION;");
}

TEST(TaskList, StandardOrder) {
    ListStore store;
    const Day tomorrow{kToday.serial + 1};
    const Day longAgo{20000};
    store.Add(Named("undated high", std::nullopt, 0));
    store.Add(Done(Named("done late", longAgo)));
    store.Add(Named("tomorrow low", tomorrow, 2));
    store.Add(Named("today", kToday));
    store.Add(Done(Named("done", tomorrow, 0)));
    store.Add(Named("tomorrow high", tomorrow, 0));
    store.Add(Named("yesterday", Day{kToday.serial - 1}, 2));
    store.Add(Named("long ago", longAgo));
    store.Add(Named("undated twin", std::nullopt, 0));
    const auto rows = store.Rows();
    EXPECT_THAT(store.Texts(rows),
                ElementsAre("long ago", "yesterday", "today", "tomorrow high", "tomorrow low", "undated high",
                            "undated twin", "done late", "done"));
    std::vector<bool> overdue;
    for (const TaskRow& row : rows)
        overdue.push_back(row.Overdue());
    EXPECT_THAT(overdue, ElementsAre(true, true, false, false, false, false, false, false, false));

    // The packed key sorts as the told text does.
    std::string last;
    for (const TaskRow& row : rows) {
        const std::string key = SortKey(*FetchRecord(store.session, row.fPK), kToday);
        EXPECT_LE(last, key);
        last = key;
    }
    EXPECT_EQ(SortKey(Named("", kToday, 2), kToday), "0100463472");
    EXPECT_EQ(SortKey(Done(Named("", Day{9185}, 0)), kToday), "1000091850");
    EXPECT_EQ(SortKey(Named(""), kToday), "0119999991");
}

TEST(TaskList, FiltersByCompletionAndCategory) {
    ListStore store;
    Task inThree = Named("three");
    inThree.category = 3;
    store.Add(inThree);
    store.Add(Done(inThree));
    store.Add(Named("unfiled"));
    EXPECT_THAT(store.Texts(store.Rows({})), ElementsAre("three", "unfiled"));
    EXPECT_EQ(store.Rows({.showCompleted = true, .category = 3}).size(), 2U);
    ASSERT_EQ(store::StoreCategories(store.session, {{"c", 3}}, store::Section::Todo), 0);
    EXPECT_THAT(store.Texts(store.Rows({.category = 0})), ElementsAre("unfiled"));
    ASSERT_EQ(store::StoreCategories(store.session, {}, store::Section::Todo), 0);
    EXPECT_THAT(store.Texts(store.Rows({.category = 0})), ElementsAre("three", "unfiled"))
        << "its category is gone";
    EXPECT_THAT(store.Rows({.category = 4}), IsEmpty());
}

TEST(TaskList, DeciphersOnlyWhatIsAskedFor) {
    ListStore store;
    for (int i = 0; i < 40; ++i) {
        Task task = Named("task " + std::to_string(i));
        task.isPrivate = i % 4 == 0;
        store.Add(task);
    }
    const auto start = store.session.cipher.deciphered;
    auto rows = store.Rows();
    EXPECT_EQ(rows.size(), 40U);
    EXPECT_EQ(store.session.cipher.deciphered, start);
    ReadTexts(store.session, rows[0].fPK);
    EXPECT_EQ(store.session.cipher.deciphered, start + 1);

    EXPECT_EQ(ReadPrivateFlags(store.session, {.showCompleted = true}, rows), 0);
    EXPECT_EQ(std::count_if(rows.begin(), rows.end(),
                            [](const TaskRow& row) { return row.privacy == Privacy::Private; }),
              10);
    SortRows(rows, SortOrderOfColumn(4), {}, {});
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(SubItemText(rows[i], SubItem::Private, {}, {}), i < 10 ? "P" : "");
        EXPECT_EQ(ReadTexts(store.session, rows[i].fPK).isPrivate, i < 10);
    }
}

TEST(TaskList, HidesPrivateRowsAndThoseThatCannotBeRead) {
    ListStore store;
    store.Add(Named("first"));
    Task secret = Named("secret");
    secret.isPrivate = true;
    store.Add(secret);
    const std::int32_t damaged = store.Add(Named("damaged"));
    store.Add(Named("last"));
    auto row = store.session.ProgramDb->OpenRecordset("tt");
    ASSERT_EQ((*row)->FindFirst("fPK=?", {damaged}), 0);
    (*row)->Edit();
    (*row)->SetField("fEtx", Bytes(74, 'x'));
    ASSERT_EQ((*row)->Update(), 0);

    store.session.ShowPrivate = false;
    const auto start = store.session.cipher.deciphered;
    const auto rows = store.Rows();
    EXPECT_EQ(store.session.cipher.deciphered, start + 4);
    EXPECT_THAT(store.Texts(rows), ElementsAre("first", "last"));
    EXPECT_EQ(rows[0].privacy, Privacy::Public);
    store.session.ShowPrivate = true;
    EXPECT_EQ(store.Rows().size(), 4U);
    EXPECT_FALSE(ReadTexts(store.session, damaged).readable);
}

TEST(TaskList, TestsMoreRowsThanOneBatchHolds) {
    ListStore store;
    const Bytes huge((std::size_t{4} << 20) + 1, 'x');  // no cipher text of that length
    engine::Transaction transaction(*store.session.ProgramDb);
    for (int i = 0; i < 24; ++i) {
        const std::int32_t key = store.Add(Named(i % 2 == 0 ? "public" : "damaged"));
        if (i % 2 == 0) continue;
        auto row = store.session.ProgramDb->OpenRecordset("tt");
        ASSERT_EQ((*row)->FindFirst("fPK=?", {key}), 0);
        (*row)->Edit();
        (*row)->SetField("fEtx", huge);
        ASSERT_EQ((*row)->Update(), 0);
    }
    ASSERT_EQ(transaction.Commit(), 0);
    auto rows = store.Rows();
    ASSERT_EQ(ReadPrivateFlags(store.session, {.showCompleted = true}, rows), 0);
    EXPECT_EQ(std::count_if(rows.begin(), rows.end(),
                            [](const TaskRow& row) { return row.privacy == Privacy::Private; }),
              12);
    store.session.ShowPrivate = false;
    EXPECT_EQ(store.Texts(store.Rows()), std::vector<Bytes>(12, "public"));
}

TEST(TaskList, ColumnTexts) {
    const LocaleFacts german{.shortDate = "dd.MM.yyyy"};
    const store::CategoryList categories = {{"All", -1}, {"  Work \xE9", 3}, {"Unfiled", 0}};
    TaskRow row;
    row.priority = 0;
    row.category = 3;
    const auto text = [&](int subItem) { return SubItemText(row, subItem, categories, german); };
    EXPECT_EQ(text(SubItem::DueDate), "");
    EXPECT_EQ(text(SubItem::Priority), "X X X");
    EXPECT_EQ(text(SubItem::Private), "");
    EXPECT_EQ(text(SubItem::Note), "");
    EXPECT_EQ(text(SubItem::Category), "Work \xC3\xA9");
    EXPECT_EQ(text(SubItem::ExecDate), "");

    Task task = Done(Named("", Day{46350}, 3), Day{46347});
    task.isPrivate = task.hasNote = true;
    task.category = 77;
    UpdateRow(row, task, kToday);
    EXPECT_EQ(text(SubItem::DueDate), "24.11.2026");
    EXPECT_EQ(text(SubItem::Priority), "");  // no text for what read back as 3
    EXPECT_EQ(text(SubItem::Private), "P");
    EXPECT_EQ(text(SubItem::Note), "  N");
    EXPECT_EQ(text(SubItem::Category), "Unfiled");
    EXPECT_EQ(text(SubItem::ExecDate), "21.11.2026");
    row.category = -1;
    EXPECT_EQ(text(SubItem::Category), "Unfiled");
}

TEST(TaskList, ColumnClicksSortByTheShownText) {
    EXPECT_EQ(SortOrderOfColumn(1), (SortOrder{7, false}));
    EXPECT_EQ(SortOrderOfColumn(2), (SortOrder{1, false}));
    EXPECT_EQ(SortOrderOfColumn(3), (SortOrder{2, true}));
    EXPECT_EQ(SortOrderOfColumn(4), (SortOrder{3, true}));
    EXPECT_EQ(SortOrderOfColumn(5), (SortOrder{4, true}));
    EXPECT_EQ(SortOrderOfColumn(6), (SortOrder{5, false}));
    EXPECT_EQ(SortOrderOfColumn(7), (SortOrder{6, true}));

    const LocaleFacts german{.shortDate = "dd.MM.yyyy"};
    const store::CategoryList categories = {{"  beta", 1}, {"  Alpha", 2}, {"Unfiled", 0}};
    const std::vector<Day> dues = {{46350}, {}, {46335}, {46350}};  // 24.11., none, 09.11., 24.11.
    std::vector<TaskRow> rows(4);
    for (std::uint32_t i = 0; i < rows.size(); ++i) {
        rows[i].fPK = static_cast<std::int32_t>(i);
        rows[i].place = i;
        rows[i].dueDate = dues[i];
        rows[i].hasDueDate = dues[i] != Day{};
        rows[i].priority = i == 2 ? 0 : 2;
        rows[i].category = static_cast<std::int32_t>(i % 3);
    }
    const auto sorted = [&](int column) {
        SortRows(rows, SortOrderOfColumn(column), categories, german);
        std::vector<std::int32_t> keys;
        for (const TaskRow& row : rows)
            keys.push_back(row.fPK);
        return keys;
    };
    EXPECT_THAT(sorted(2), ElementsAre(1, 2, 0, 3));
    EXPECT_THAT(sorted(3), ElementsAre(2, 0, 1, 3));
    EXPECT_THAT(sorted(6), ElementsAre(2, 1, 0, 3));
    EXPECT_THAT(sorted(1), ElementsAre(2, 0, 3, 1));
}

TEST(TaskList, ReadsAFileOfAnotherProgram) {
    test::Sitting sitting;
    std::filesystem::copy_file(std::string(BMR_TEST_DATA) + "/foreign.bmr", sitting.file);
    ASSERT_EQ(sitting.Open(), 0);
    const LocaleFacts iso;
    const auto categories = store::FillCategories(sitting.session, store::Section::Todo, true, true, true);
    const auto rows = ListRecords(sitting.session, {.showCompleted = true});
    ASSERT_TRUE(rows);
    std::vector<std::vector<std::string>> shown;
    for (const TaskRow& row : *rows) {
        const auto task = FetchRecord(sitting.session, row.fPK);
        ASSERT_TRUE(task && task->readable);
        shown.push_back({task->task, task->note, task->isPrivate ? "P" : ""});
        for (const int subItem : {SubItem::DueDate, SubItem::Priority, SubItem::Category, SubItem::ExecDate})
            shown.back().push_back(SubItemText(row, subItem, categories, iso));
    }
    using Texts = std::vector<std::string>;
    EXPECT_THAT(
        shown,
        ElementsAre(
            Texts{"Prune the apple tree", "before the frost", "", "2026-11-30", "X X X", "At home", ""},
            Texts{"\xC3\x9C"
                  "berraschung besorgen",
                  "", "P", "", "X", "Unfiled", ""},
            Texts{"Pay quarterly invoice", "", "", "2026-10-12", "X X", "Office", "2026-10-11"}));
    EXPECT_EQ(sitting.session.settings.LastCategory[3], 0);
    EXPECT_EQ(store::MinuteOfDay(sitting.session.settings.WorkdayStart), 480);
}

TEST(TaskDeletes, OneAsksByName) {
    ListStore store;
    const std::int32_t key = store.Add(Named("pears \xC3\xA9"));
    store.prompter.Expect(18);
    EXPECT_FALSE(DeleteItem(store.session, std::nullopt, "").rebuild);
    store.prompter.Expect(29, Answer::Cancel);
    EXPECT_FALSE(DeleteItem(store.session, key, "pears \xC3\xA9").rebuild);
    EXPECT_EQ(store.Rows().size(), 1U);
    const Box& box = store.prompter.shown.back();
    EXPECT_EQ(box.text, "Confirm deletion of task: \r\n\r\n   pears \xC3\xA9");
    EXPECT_EQ(box.standard, Answer::Cancel);
    store.prompter.Expect(29);
    EXPECT_TRUE(DeleteItem(store.session, key, "pears").rebuild);
    EXPECT_THAT(store.Rows(), IsEmpty());
}

TEST(TaskDeletes, CompletedAndAllIgnoreFilterAndPrivateSwitch) {
    ListStore store;
    Task elsewhere = Done(Named("done elsewhere"));
    elsewhere.category = 9;
    elsewhere.isPrivate = true;
    store.Add(elsewhere);
    store.Add(Named("open"));
    Task secret = Named("secret");
    secret.isPrivate = true;
    store.Add(secret);
    store.session.ShowPrivate = false;
    store.prompter.Expect(82);
    EXPECT_TRUE(DeleteCompleted(store.session).rebuild);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt WHERE fSec=15"), 2);

    EXPECT_FALSE(DeleteAll(store.session, true).rebuild);
    store.prompter.Expect(80).Expect(81, Answer::Cancel);
    EXPECT_FALSE(DeleteAll(store.session, false).rebuild);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt WHERE fSec=15"), 2);
    store.prompter.Expect(80).Expect(81);
    EXPECT_TRUE(DeleteAll(store.session, false).rebuild);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt"), 0);
}

}  // namespace
}  // namespace bmr::tasks
