#include "tasks/task.h"

#include <gtest/gtest.h>

#include "store/record_get.h"
#include "store/record_put.h"
#include "support/store.h"

namespace bmr::tasks {
namespace {

using store::Section;

struct TaskStore : test::TempStore {
    std::unique_ptr<engine::Recordset> RowOf(std::int32_t key) {
        return Row("SELECT * FROM tt WHERE fPK=" + std::to_string(key));
    }
    std::int32_t Add(Task task) {
        EXPECT_EQ(WriteRecord(session, task).error, 0);
        return task.key;
    }
    /// Puts `text` into fEtx of a row as it is.
    void Damage(std::int32_t key, const Bytes& text) {
        auto row = session.ProgramDb->OpenRecordset("tt");
        ASSERT_EQ((*row)->FindFirst("fPK=?", {key}), 0);
        (*row)->Edit();
        (*row)->SetField("fEtx", text);
        ASSERT_EQ((*row)->Update(), 0);
    }
};

Task Sample() {
    Task task;
    task.task = "Apples & pears \xC3\xA9";
    task.note = "two lines\r\nof note ";
    task.isPrivate = true;
    task.priority = Priority::Low;
    task.hasDueDate = true;
    task.dueDate = Day{46350};
    task.category = 3;
    return task;
}

TEST(TaskRecord, IsStoredAndReadBack) {
    TaskStore store;
    store.session.user.UserNumber = 7;
    store.session.CalendarDirty = false;
    Task task = Sample();
    const auto outcome = WriteRecord(store.session, task);
    ASSERT_EQ(outcome.error, 0);
    EXPECT_TRUE(outcome.added);
    EXPECT_EQ(task.key, outcome.fPK);
    EXPECT_TRUE(store.session.CalendarDirty);

    const auto row = store.RowOf(task.key);
    const auto number = [&row](const char* column) { return NumberOf(row->Field(column)); };
    EXPECT_EQ(number("fSec"), 15);
    EXPECT_EQ(number("fSub"), 0);
    EXPECT_EQ(number("AE"), 1);
    EXPECT_EQ(number("fG1"), 3);
    EXPECT_EQ(UnpackPriority(number("fR1")), Priority::Low);
    EXPECT_EQ(UnpackDate(number("fR3"), DateKind::First), Day{46350});
    // A date that is not set is the packed day 0, the lowest bucket of its table.
    const SpreadRange none = PackDateAt(Day{}, DateKind::Last, 0);
    EXPECT_GE(number("fR2"), none.low);
    EXPECT_LE(number("fR2"), none.high);
    EXPECT_EQ(number("fF1"), 1);
    EXPECT_EQ(number("fF2"), 1);
    EXPECT_EQ(number("fF3"), 0);
    EXPECT_EQ(cry::FieldCipher(store.session.cipher, 2, TextOf(row->Field("fT1"))), ToBytes(task.task));
    for (const char* noise : {"fT2", "fT3"})
        EXPECT_TRUE(TextOf(row->Field(noise)).size() % 8 == 0 && TextOf(row->Field(noise)).size() >= 8);
    EXPECT_GT(number("fR4"), 0);

    const auto& cipher = store.session.cipher;
    cry::FieldCipher(store.session.cipher, 2, TextOf(row->Field("fEtx")));
    EXPECT_EQ(ToHex(cipher.FieldPlain.view()),
              "000a10" + ToHex(*ToBytes(task.task)) + "010c13" + ToHex(task.note) + "020101" + "030207");

    const auto back = FetchRecord(store.session, task.key);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->task, task.task);
    EXPECT_EQ(back->note, task.note);
    EXPECT_TRUE(back->isPrivate && back->hasNote && back->hasDueDate && back->readable);
    EXPECT_FALSE(back->completed);
    EXPECT_EQ(back->dueDate, Day{46350});
    EXPECT_EQ(back->completedDate, Day{});
    EXPECT_EQ(back->category, 3);
}

TEST(TaskRecord, AnEmptyOneKeepsItsFields) {
    TaskStore store;
    const std::int32_t key = store.Add(ClearRecord(store::Category::Edit));
    const auto row = store.RowOf(key);
    EXPECT_EQ(NumberOf(row->Field("fG1")), 0);
    EXPECT_GE(TextOf(row->Field("fT1")).size(), 18U);
    cry::FieldCipher(store.session.cipher, 2, TextOf(row->Field("fEtx")));
    EXPECT_EQ(ToHex(store.session.cipher.FieldPlain.view()), "000a00010c00020100030200");
    for (const std::int32_t combo : {-1, 9999, 65535, 70000})
        EXPECT_EQ(ClearRecord(combo).category, 0);
    EXPECT_EQ(ClearRecord(12).category, 12);
}

TEST(TaskRecord, EveryStoreDrawsAfresh) {
    TaskStore store;
    Task task = Sample();
    store.Add(task);
    task.key = store.Add(Sample());
    const auto before = store.RowOf(task.key);
    task.task = "edited";
    const auto outcome = WriteRecord(store.session, task);
    ASSERT_EQ(outcome.error, 0);
    EXPECT_FALSE(outcome.added);
    const auto after = store.RowOf(task.key);
    EXPECT_EQ(NumberOf(after->Field("AE")), 3);
    for (const char* column : {"fEtx", "fT1", "fT2", "fT3", "fR1", "fR2", "fR3", "fR4"})
        EXPECT_NE(after->Field(column), before->Field(column)) << column;
    EXPECT_EQ(store.Count("SELECT fPK FROM tt WHERE fSec=15"), 2);
}

TEST(TaskRecord, AKeyOfAnotherSectionIsNotTouched) {
    TaskStore store;
    Task task = Sample();
    task.key = store::StoreRow(store.session, Section::Memo, store::kNewRecord, [](auto& row, bool) {
                   row.SetField("fT1", Bytes("memo"));
                   return 0;
               }).fPK;
    store.session.CalendarDirty = false;
    EXPECT_EQ(WriteRecord(store.session, task).error, -16);
    EXPECT_FALSE(store.session.CalendarDirty);
    EXPECT_EQ(TextOf(store.RowOf(task.key)->Field("fT1")), "memo");
    EXPECT_FALSE(FetchRecord(store.session, task.key));
}

TEST(TaskRecord, EditingAVanishedRowAdds) {
    TaskStore store;
    const std::int32_t key = store.Add(Sample());
    ASSERT_EQ(store::DeleteRow(store.session, key), 0);
    EXPECT_EQ(RecordToEdit(store.session, key, 5).key, store::kNewRecord);
    EXPECT_EQ(RecordToEdit(store.session, key, 5).category, 5);
    EXPECT_EQ(RecordToEdit(store.session, std::nullopt, 5).key, store::kNewRecord);

    Task vanished = Sample();
    vanished.key = key;
    const auto outcome = WriteRecord(store.session, vanished);
    EXPECT_EQ(outcome.error, 0);
    EXPECT_TRUE(outcome.added);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt WHERE fSec=15"), 1);
}

TEST(TaskRecord, WhatDoesNotDecodeIsLeftAlone) {
    TaskStore store;
    const std::int32_t key = store.Add(Sample());
    const Bytes noise(74, 'x');
    store.Damage(key, noise);
    auto task = FetchRecord(store.session, key);
    ASSERT_TRUE(task);
    EXPECT_FALSE(task->readable);
    EXPECT_TRUE(task->isPrivate);

    EXPECT_EQ(SetPriority(store.session, {&key, 1}, Priority::High).error, 0);
    EXPECT_EQ(SetCompleted(store.session, key, true).error, 0);
    const auto row = store.RowOf(key);
    EXPECT_EQ(TextOf(row->Field("fEtx")), noise);
    EXPECT_EQ(cry::FieldCipher(store.session.cipher, 2, TextOf(row->Field("fT1"))), ToBytes(Sample().task));
    EXPECT_EQ(NumberOf(row->Field("fF2")), 1);
    EXPECT_EQ(NumberOf(row->Field("fF3")), 1);

    task = FetchRecord(store.session, key);
    EditorToRecord({.task = "typed anew"}, *task);
    EXPECT_EQ(WriteRecord(store.session, *task).error, 0);
    EXPECT_EQ(FetchRecord(store.session, key)->task, "typed anew");
}

TEST(TaskRecord, NoKeysNoStore) {
    TaskStore store;
    Task task = Sample();
    const std::int32_t key = store.Add(task);
    const Value before = store.RowOf(key)->Field("fEtx");
    task.key = key;
    store.session.cipher.Keystring.Wipe();
    EXPECT_NE(WriteRecord(store.session, task).error, 0);
    EXPECT_EQ(store.RowOf(key)->Field("fEtx"), before);
    EXPECT_EQ(FetchRecord(store.session, key)->task, "");
}

TEST(TaskPriority, ReadsBackOneMoreAtTheTopOfItsSlot) {
    test::ScriptedRandom top;
    for (int draw = 0; draw < 2; ++draw)
        top.uniforms.push_back(0.9999999999);
    EXPECT_EQ(UnpackPriority(PackPriority(Priority::Low, top)), 3);
    test::SeededRandom random;
    for (const std::int32_t priority : {Priority::High, Priority::Normal, Priority::Low})
        for (int i = 0; i < 100; ++i)
            EXPECT_EQ(UnpackPriority(PackPriority(priority, random)), priority);
}

TEST(TaskEditor, RecordAndControls) {
    Task task = Sample();
    const store::CategoryList categories = {{" Work", 3}, {"Unfiled", 0}};
    EditorValues values = RecordToEditor(task, categories);
    EXPECT_EQ(values, (EditorValues{task.task, task.note, Priority::Low, true, Day{46350}, std::nullopt, 3}));
    task.category = 8;  // no longer in the list
    task.priority = 3;
    values = RecordToEditor(task, categories);
    EXPECT_EQ(values.category, 0);
    EXPECT_EQ(values.priority, std::nullopt);

    values.note.clear();
    values.due.reset();
    values.completed = Day{46000};
    EditorToRecord(values, task);
    EXPECT_EQ(task.priority, Priority::Normal);
    EXPECT_EQ(task.category, 0);
    EXPECT_FALSE(task.hasNote || task.hasDueDate);
    EXPECT_EQ(task.dueDate, Day{});
    EXPECT_TRUE(task.completed);
    EXPECT_EQ(task.completedDate, Day{46000});
}

TEST(TaskCheckBox, TicksOnceAndRebuildsOnlyWhenUnticked) {
    TaskStore store;
    const std::int32_t key = store.Add(Sample());
    TickOutcome outcome = SetCompleted(store.session, key, true);
    EXPECT_FALSE(outcome.rebuild);
    ASSERT_TRUE(outcome.record);
    EXPECT_EQ(outcome.record->completedDate, Day{46347});
    EXPECT_TRUE(FetchRecord(store.session, key)->completed);
    EXPECT_EQ(FetchRecord(store.session, key)->completedDate, Day{46347});

    const Value stored = store.RowOf(key)->Field("fEtx");
    store.clock.now = {46350};
    EXPECT_FALSE(SetCompleted(store.session, key, true).rebuild);
    EXPECT_EQ(store.RowOf(key)->Field("fEtx"), stored);

    outcome = SetCompleted(store.session, key, false);
    EXPECT_TRUE(outcome.rebuild);
    EXPECT_EQ(outcome.record->completedDate, Day{});
    EXPECT_FALSE(FetchRecord(store.session, key)->completed);
    EXPECT_EQ(store::DeleteRow(store.session, key), 0);
    outcome = SetCompleted(store.session, key, true);
    EXPECT_TRUE(outcome.rebuild);
    EXPECT_FALSE(outcome.record);
}

}  // namespace
}  // namespace bmr::tasks
