#include "store/undo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "confidential/confidential.h"
#include "notes/memo.h"
#include "store/categories.h"
#include "store/indices.h"
#include "store/sections.h"
#include "store/severalrows.h"
#include "store/undostep.h"
#include "support/full_disk.h"
#include "support/store.h"
#include "tasks/task.h"

namespace bmr::store {
namespace {

using notes::Memo;

class Undo : public testing::Test {
  protected:
    std::int32_t Add(const Bytes& subject, std::int32_t category = 0) {
        Memo memo = notes::ClearRecord(store.session, category);
        memo.subject = subject;
        memo.body = "body of " + subject;
        EXPECT_EQ(notes::WriteRecord(store.session, memo), 0);
        return memo.key;
    }
    void Rename(std::int32_t key, const Bytes& subject) {
        Memo memo = *notes::FetchRecord(store.session, key);
        memo.subject = subject;
        EXPECT_EQ(notes::WriteRecord(store.session, memo), 0);
    }
    std::vector<std::string> Rows() { return store.Rows(); }
    UndoOutcome Take(UndoWay way, std::uint8_t section = Section::Memo) {
        EXPECT_TRUE(MayTake(store.session, section, way));
        return TakeStep(store.session, section, way);
    }
    void InOrder() {
        EXPECT_TRUE(FindDisorder(store.session, Section::Memo).empty());
        EXPECT_TRUE(FindDisorder(store.session, Section::Confidential).empty());
    }
    /// The change as one step that comes back to the byte, and goes forward to the byte.
    void ComesBack(const char* what, std::uint8_t section, const std::function<void()>& change) {
        SCOPED_TRACE(what);
        const auto before = Rows();
        change();
        const auto after = Rows();
        ASSERT_NE(before, after);
        store.session.CalendarDirty = false;
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(Take(UndoWay::Undo, section).left, 0U);
            EXPECT_EQ(Rows(), before);
            EXPECT_EQ(Take(UndoWay::Redo, section).left, 0U);
            EXPECT_EQ(Rows(), after);
        }
        EXPECT_TRUE(store.session.CalendarDirty);
        InOrder();
    }

    test::TempStore store;
};

TEST_F(Undo, EveryChangeComesBackToTheByte) {
    Session& session = store.session;
    const auto* memos = FactsOf(Section::Memo);
    std::vector<std::int32_t> keys;
    for (const char* subject : {"Moss", "Mole", "", "Mop", "Adder", "Ash"})
        keys.push_back(Add(subject, 3));
    ComesBack("a new memo", Section::Memo, [&] { Add("Moon"); });
    ComesBack("another subject", Section::Memo, [&] { Rename(keys[0], "Aloe"); });
    ComesBack("another body", Section::Memo, [&] {
        Memo memo = *notes::FetchRecord(session, keys[1]);
        memo.body = "quite another";
        ASSERT_EQ(notes::WriteRecord(session, memo), 0);
    });
    ComesBack("a delete", Section::Memo, [&] { ASSERT_EQ(DeleteRow(session, keys[3]), 0); });
    ComesBack("several moved", Section::Memo, [&] { ASSERT_EQ(memos->move(session, keys, 4).changed, 5U); });
    ComesBack("several hidden", Section::Memo,
              [&] { ASSERT_EQ(memos->hide(session, keys, true).changed, 5U); });
    ComesBack("several deleted", Section::Memo,
              [&] { ASSERT_EQ(memos->remove(session, Keys(keys).first(3)).changed, 3U); });
    ComesBack("an import", Section::Memo, [&] {
        std::vector<Memo> more(40, notes::ClearRecord(session, 1));
        for (std::size_t i = 0; i < more.size(); ++i)
            more[i].subject = std::string("Zoo ") + static_cast<char>('a' + i % 26);
        ASSERT_EQ(notes::AddRecords(session, more), 0);
    });
    ComesBack("categories", Section::Memo, [&] {
        ASSERT_EQ(StoreCategories(session, {{"Work", 1}}, Section::Memo), 0);
    });
    ComesBack("other categories", Section::Memo, [&] {
        ASSERT_EQ(StoreCategories(session, {{"Home", 2}}, Section::Memo), 0);
    });
    ComesBack("all deleted", Section::Memo,
              [&] { ASSERT_EQ(notes::DeleteRecords(session, Category::All), 0); });

    tasks::Task task = tasks::ClearRecord(2);
    task.task = "water the plants";
    ComesBack("a new task", Section::Todo, [&] { ASSERT_EQ(tasks::WriteRecord(session, task).error, 0); });
    task.key = NumberOf(store.Row("SELECT * FROM tt WHERE fSec=15")->Field("fPK"));
    ComesBack("a tick", Section::Todo,
              [&] { ASSERT_EQ(tasks::SetCompleted(session, task.key, true).error, 0); });
    ComesBack("a priority", Section::Todo, [&] {
        ASSERT_EQ(tasks::SetPriority(session, {&task.key, 1}, 0).error, 0);
    });
    confidential::Record record;
    record.kind = 4;
    ComesBack("a record without a name", Section::Confidential,
              [&] { ASSERT_EQ(confidential::WriteRecord(session, record), 0); });
    EXPECT_EQ(NumberOf(store.Row("SELECT * FROM tt WHERE fSec=16")->Field("fR2")), 0);
    record.n[0] = "bank";
    ComesBack("which gets one", Section::Confidential,
              [&] { ASSERT_EQ(confidential::WriteRecord(session, record), 0); });
}

TEST_F(Undo, AllStepsComeBackInTheirOrder) {
    std::vector<std::vector<std::string>> states{Rows()};
    const auto did = [&] { states.push_back(Rows()); };
    const std::int32_t first = Add("Moss");
    did();
    const std::int32_t second = Add("Mole");
    did();
    Rename(first, "Mane");
    did();
    ASSERT_EQ(DeleteRow(store.session, second), 0);
    did();
    Add("Mid");
    did();
    Rename(first, "Zinc");
    did();
    for (auto state = states.rbegin() + 1; state != states.rend(); ++state) {
        Take(UndoWay::Undo);
        EXPECT_EQ(Rows(), *state);
    }
    EXPECT_FALSE(MayTake(store.session, Section::Memo, UndoWay::Undo));
    for (auto state = states.begin() + 1; state != states.end(); ++state) {
        Take(UndoWay::Redo);
        EXPECT_EQ(Rows(), *state);
    }
    Take(UndoWay::Undo);
    Add("a change of another kind ends what could be done again");
    EXPECT_FALSE(MayTake(store.session, Section::Memo, UndoWay::Redo));
}

TEST_F(Undo, ARowIsPlacedAnewOnceItsNeighboursHaveMoved) {
    const std::int32_t key = Add("Moss");
    Add("Mole");
    ASSERT_EQ(DeleteRow(store.session, key), 0);
    // So many that the stretch is spread anew, while no step knows of it.
    for (int i = 0; i < 60; ++i)
        Add("Mos" + std::string(static_cast<std::size_t>(i % 9), 's') + std::to_string(i));
    store.session.undo.sections[Section::Memo].done.resize(3);
    const UndoOutcome outcome = Take(UndoWay::Undo);
    EXPECT_EQ(outcome.keys, std::vector{key});
    EXPECT_EQ(notes::RecordName(store.session, key), "Moss");
    InOrder();
    Take(UndoWay::Redo);
    EXPECT_FALSE(notes::FetchRecord(store.session, key));
    InOrder();
}

TEST_F(Undo, WhatWasChangedMeanwhileIsNotOverwritten) {
    const std::vector<std::int32_t> keys{Add("Moss"), Add("Mole"), Add("Mop")};
    ASSERT_EQ(FactsOf(Section::Memo)->move(store.session, keys, 4).changed, 3U);
    store.Set(keys[0], "fG1", 9);   // somebody else's change
    store.Set(keys[1], "fR1", 17);  // a neighbour's save moved it
    store.Set(keys[2], "AE", 2);
    UndoOutcome outcome = Take(UndoWay::Undo);
    EXPECT_EQ(outcome.written, 2U);
    EXPECT_EQ(outcome.left, 1U);
    EXPECT_EQ(RecordCategory(store.session, keys[0]), 9);
    EXPECT_EQ(RecordCategory(store.session, keys[1]), 0);
    EXPECT_EQ(NumberOf(store.Row("SELECT * FROM tt WHERE fPK=" + std::to_string(keys[1]))->Field("fR1")), 17)
        << "it stays where its neighbours expect it";
    outcome = Take(UndoWay::Redo);
    EXPECT_EQ(outcome.written, 2U);
    EXPECT_EQ(RecordCategory(store.session, keys[2]), 4);

    ASSERT_EQ(DeleteRow(store.session, keys[2]), 0);
    ASSERT_EQ(store.session.ProgramDb->Execute("DELETE * FROM tt WHERE fSec=14"), 0);
    store.session.undo.sections[Section::Memo].done.pop_back();
    outcome = Take(UndoWay::Undo);
    EXPECT_EQ(outcome.left, 2U) << "rows that are gone are not made again";
    EXPECT_FALSE(MayTake(store.session, Section::Memo, UndoWay::Redo));
}

TEST_F(Undo, StepsBelongToTheirSectionAndToWhatWasShown) {
    Add("Moss");
    EXPECT_FALSE(MayTake(store.session, Section::Todo, UndoWay::Undo));
    EXPECT_TRUE(MayTake(store.session, Section::Memo, UndoWay::Undo));
    store.session.ShowPrivate = true;
    Add("Mole");
    store.session.ShowPrivate = false;
    EXPECT_FALSE(MayTake(store.session, Section::Memo, UndoWay::Undo));
    EXPECT_NE(NextStep(store.session, Section::Memo, UndoWay::Undo), nullptr);
    store.session.ShowPrivate = true;
    EXPECT_TRUE(MayTake(store.session, Section::Memo, UndoWay::Undo));
}

TEST_F(Undo, WhatFailsChangesNeitherFileNorSteps) {
    const std::vector<std::int32_t> keys{Add("Moss"), Add("Mole")};
    const auto before = Rows();
    const auto* step = NextStep(store.session, Section::Memo, UndoWay::Undo);
    ASSERT_NE(step, nullptr);
    const std::uint64_t last = step->number;
    const auto failing = ChangeSeveral(store.session, Section::Memo, keys, {}, [&](std::int32_t key) {
        if (key == keys[1]) return Result<RowChange>(Error{77, {}});
        EXPECT_EQ(DeleteRow(store.session, key), 0);
        return Result<RowChange>(RowChange::Changed);
    });
    EXPECT_EQ(failing.error, 77);
    EXPECT_EQ(Rows(), before);
    EXPECT_EQ(NextStep(store.session, Section::Memo, UndoWay::Undo)->number, last) << "no step for nothing";

    ASSERT_EQ(FactsOf(Section::Memo)->remove(store.session, keys).changed, 2U);
    const auto after = Rows();
    {
        const test::FullDisk full;
        EXPECT_NE(Take(UndoWay::Undo).error, 0);
    }
    EXPECT_EQ(Rows(), after);
    EXPECT_EQ(Take(UndoWay::Undo).written, 2U);
    EXPECT_EQ(Rows(), before);
}

TEST_F(Undo, MemoryHasItsLimit) {
    Session& session = store.session;
    const auto longMemos = [&](int count) {
        std::vector<Memo> memos(static_cast<std::size_t>(count), notes::ClearRecord(session, 0));
        for (Memo& memo : memos)
            memo.body = std::string(60000, 'x');
        EXPECT_EQ(notes::AddRecords(session, memos), 0);
        std::vector<std::int32_t> keys;
        for (const Memo& memo : memos)
            keys.push_back(memo.key);
        return keys;
    };
    const auto keys = longMemos(300);
    const UndoRecord* import = NextStep(session, Section::Memo, UndoWay::Undo);
    ASSERT_NE(import, nullptr);
    EXPECT_LT(import->size, 300U * 200U) << "an import keeps keys and stamps";
    EXPECT_TRUE(TooLargeToUndo(session, Section::Memo, ""));
    EXPECT_TRUE(TooLargeToUndo(session, keys));
    EXPECT_FALSE(TooLargeToUndo(session, Keys(keys).first(200)));

    // Two steps of 12 MB: the older one goes.
    ASSERT_EQ(FactsOf(Section::Memo)->move(session, Keys(keys).first(200), 3).changed, 200U);
    ASSERT_EQ(FactsOf(Section::Memo)->move(session, Keys(keys).first(200), 4).changed, 200U);
    EXPECT_EQ(session.undo.sections[Section::Memo].done.size(), 1U);

    ASSERT_EQ(DeleteRows(session, Section::Memo), 0);
    const UndoRecord* step = NextStep(session, Section::Memo, UndoWay::Undo);
    ASSERT_NE(step, nullptr);
    EXPECT_TRUE(step->tooLarge);
    EXPECT_EQ(step->rows, 300U) << "those that were not recorded count as well";
    EXPECT_EQ(session.undo.sections[Section::Memo].done.size(), 1U) << "no way back over its head";
    EXPECT_FALSE(MayTake(session, Section::Memo, UndoWay::Undo));
    Add("after it");
    EXPECT_TRUE(MayTake(session, Section::Memo, UndoWay::Undo));
}

TEST_F(Undo, TheQuestionKnowsWhatTheStepWillTake) {
    Session& session = store.session;
    std::vector<Memo> memos(1, notes::ClearRecord(session, 0));
    ASSERT_EQ(notes::AddRecords(session, memos), 0);
    ASSERT_EQ(DeleteRows(session, Section::Memo), 0);
    const std::size_t one = NextStep(session, Section::Memo, UndoWay::Undo)->size;
    // As many as fit, and one more.
    memos.assign(UndoLog::kMostBytes / one + 1, notes::ClearRecord(session, 0));
    ASSERT_EQ(notes::AddRecords(session, memos), 0);
    for (const std::size_t fewer : {0U, 400U}) {
        for (std::size_t i = 0; i < fewer; ++i)
            ASSERT_EQ(DeleteRow(session, memos[i].key), 0);
        const bool told = TooLargeToUndo(session, Section::Memo, "");
        engine::Transaction trial(*session.ProgramDb);
        ASSERT_EQ(DeleteRows(session, Section::Memo), 0);
        EXPECT_EQ(NextStep(session, Section::Memo, UndoWay::Undo)->tooLarge, told);
        EXPECT_EQ(told, fewer == 0);
    }
}

TEST_F(Undo, KnowsTheNumbersThatWouldComeBack) {
    ASSERT_EQ(StoreCategories(store.session, {{"Work", 5}, {"Home", 7}}, Section::Memo), 0);
    const std::int32_t key = Add("Moss", 3);
    ASSERT_EQ(StoreCategories(store.session, {{"Home", 7}}, Section::Memo), 0);
    ASSERT_EQ(DeleteRow(store.session, key), 0);
    const auto numbers = NumbersInSteps(store.session, Section::Memo);
    for (const std::int32_t number : {3, 5, 7})
        EXPECT_TRUE(numbers.contains(number)) << number;
    EXPECT_EQ(*NewCategoryNumber(store.session, Section::Memo, {}), 1);
    EXPECT_EQ(*NewCategoryNumber(store.session, Section::Memo, {{"a", 1}, {"b", 2}, {"c", 4}}), 6);
    EXPECT_TRUE(NumbersInSteps(store.session, Section::Todo).empty());
}

TEST_F(Undo, SeveralLeaveWhatCannotBeRead) {
    const std::vector<std::int32_t> keys{Add("Moss"), Add("Mole"), Add("Mop")};
    store.Set(keys[1], "fEtx", Bytes(40, 'x'));
    for (const auto& outcome : {FactsOf(Section::Memo)->hide(store.session, keys, true),
                                FactsOf(Section::Memo)->remove(store.session, keys)}) {
        EXPECT_EQ(outcome.changed, 2U);
        EXPECT_EQ(outcome.unread, 1U);
    }
    EXPECT_EQ(store.Count("SELECT fPK FROM tt WHERE fSec=14"), 1);
    EXPECT_EQ(FactsOf(Section::Memo)->remove(store.session, Keys(keys).subspan(1, 1)).changed, 1U)
        << "chosen alone it may go";
}

}  // namespace
}  // namespace bmr::store
