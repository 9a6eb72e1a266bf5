#include "budget/transaction.h"

#include <gtest/gtest.h>

#include <set>

#include "base/errors.h"
#include "budget/entry.h"
#include "store/record_get.h"
#include "store/undo.h"
#include "support/calendar.h"
#include "support/store.h"

namespace bmr::budget {
namespace {

using store::Section;
using test::TempStore;

constexpr std::uint8_t kBudget = Section::Budget1;

Transaction Entry(Day date, std::int64_t amount, std::int32_t cdbw, std::string_view item = "Bread") {
    Transaction entry;
    entry.date = date;
    entry.amount = {amount};
    entry.cdbw = cdbw;
    entry.isPrivate = (cdbw & kPrivate) != 0;
    entry.description = item;
    return entry;
}

std::int32_t Stored(TempStore& store, Transaction entry, std::uint8_t section = kBudget) {
    EXPECT_EQ(WriteRecord(store.session, section, entry).error, 0);
    return entry.key;
}

TEST(Cdbw, KnownAnswers) {
    for (const auto& c : test::CalendarVectors("Cdbw")) {
        const std::int32_t packed = PackCdbwAt(c.at("cdbw"), c.at("fraction"));
        EXPECT_EQ(packed, c.at("out")) << c;
        EXPECT_EQ(UnpackCdbw(packed), c.at("cdbw")) << c;
    }
    EXPECT_EQ(UnpackCdbw(-1), 3);  // no class beyond the four, whatever stands there
}

TEST(Transactions, AreStoredWholeAndReadBack) {
    TempStore store;
    store.session.user.UserNumber = 3;
    Transaction entry = Entry({46000}, -1999999, kDebit | kPrivate, "Żółć & Ελλάς – 北京");
    entry.partner = "Łukasz 🎉";
    entry.note = "one\r\ntwo";
    entry.paymentType = 200;
    entry.category = 7;
    const auto outcome = WriteRecord(store.session, Section::Budget2, entry);
    EXPECT_EQ(outcome.error, 0);
    EXPECT_TRUE(outcome.added);
    const auto read = FetchRecord(store.session, Section::Budget2, entry.key);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->description, entry.description);
    EXPECT_EQ(read->partner, entry.partner);
    EXPECT_EQ(read->note, entry.note);
    EXPECT_EQ(read->amount, entry.amount);
    EXPECT_EQ(read->cdbw, 3);
    EXPECT_EQ(read->date, entry.date);
    EXPECT_EQ(read->paymentType, 200);
    EXPECT_EQ(PaymentText(read->paymentType), "Unfiled");
    EXPECT_EQ(read->category, 7);
    EXPECT_EQ(read->userNumber, 3);
    EXPECT_TRUE(read->hasNote && read->isPrivate && read->readable && read->amountRead);
    EXPECT_FALSE(FetchRecord(store.session, Section::Budget1, entry.key));

    auto row = store.Row("SELECT * FROM tt WHERE fSec=18");
    EXPECT_EQ(NumberOf(row->Field("fR1")) % 4, 3);
    EXPECT_EQ(UnpackDate(NumberOf(row->Field("fR3")), DateKind::First), entry.date);
    EXPECT_EQ(NumberOf(row->Field("fF2")), 1);
    EXPECT_EQ(NumberOf(row->Field("fF1")), 0);
    EXPECT_EQ(NumberOf(row->Field("AE")), 1);
    const Bytes plain(cry::DecipherField(store.session.cipher, TextOf(row->Field("fT1"))));
    EXPECT_EQ(ToHex(plain), "05817be1ffffffffff");
    EXPECT_GE(TextOf(row->Field("fT2")).size(), 8U);
    EXPECT_NE(NumberOf(row->Field("fR4")), 0);
}

TEST(Transactions, AnotherSectionsRowIsNotWrittenOver) {
    TempStore store;
    const std::int32_t key = Stored(store, Entry({46000}, 10000, 0), Section::Budget3);
    const auto before = store.Rows();
    Transaction entry = Entry({46000}, 20000, 0);
    entry.key = key;
    EXPECT_EQ(WriteRecord(store.session, kBudget, entry).error, MessageNumber::UpdateImpossible);
    EXPECT_EQ(store.Rows(), before);
}

TEST(Transactions, WhatIsNoAmountCountsAsNothingAndIsKept) {
    EXPECT_EQ(ReadAmount(""), Money{});
    EXPECT_EQ(ReadAmount("   "), Money{});
    EXPECT_EQ(ReadAmount(test::Hex("051027000000000000")), Money{10000});
    EXPECT_EQ(ReadAmount(test::Hex("052000000000000020")), Money{0x2000000000000020});
    for (const char* bad : {"041027000000000000", "0510270000000000", "05102700000000000000", "05"})
        EXPECT_FALSE(ReadAmount(test::Hex(bad))) << bad;

    TempStore store;
    const std::int32_t key = Stored(store, Entry({46000}, 10000, 0));
    const Bytes odd = cry::FieldCipher(store.session.cipher, 1,
                                       Bytes("\x04"
                                             "1234"));
    store.Set(key, "fT1", odd);
    auto entry = FetchRecord(store.session, kBudget, key);
    EXPECT_FALSE(entry->amountRead);
    EXPECT_EQ(entry->amount, Money{});
    entry->description = "Butter";
    EXPECT_EQ(WriteRecord(store.session, kBudget, *entry).error, 0);
    EXPECT_EQ(TextOf(store.Row("SELECT * FROM tt WHERE fSec=17")->Field("fT1")), odd);
    EXPECT_EQ(FetchRecord(store.session, kBudget, key)->description, "Butter");
    entry->amount = {5};
    EXPECT_EQ(WriteRecord(store.session, kBudget, *entry).error, 0);
    EXPECT_EQ(FetchRecord(store.session, kBudget, key)->amount, Money{5});
}

TEST(Transactions, APayloadThatDoesNotDecodeStaysAsItIs) {
    TempStore store;
    const std::int32_t key = Stored(store, Entry({46000}, 10000, 0));
    store.Set(key, "fEtx", Bytes("garbage"));
    auto entry = FetchRecord(store.session, kBudget, key);
    EXPECT_FALSE(entry->readable);
    EXPECT_TRUE(entry->isPrivate);  // what cannot be read stays hidden
    EXPECT_EQ(MoveSeveral(store.session, kBudget, std::array{key}, 5).error, 0);
    auto row = store.Row("SELECT * FROM tt WHERE fSec=17");
    EXPECT_EQ(TextOf(row->Field("fEtx")), "garbage");
    EXPECT_EQ(NumberOf(row->Field("fG1")), 5);
    EXPECT_EQ(FetchRecord(store.session, kBudget, key)->amount, Money{10000});
    EXPECT_EQ(DuplicateSeveral(store.session, kBudget, std::array{key}, {}).unread, 1U);
}

TEST(Transactions, ManyAreAddedAtOnceInOneStep) {
    TempStore store;
    std::vector<Transaction> entries;
    for (int i = 0; i < 1300; ++i)
        entries.push_back(Entry({46000 + i % 30}, 10000 * i + 1, i % 4, "Item " + std::to_string(i)));
    ASSERT_EQ(AddRecords(store.session, kBudget, entries), 0);
    for (const int i : {0, 511, 512, 1299}) {
        const auto read = FetchRecord(store.session, kBudget, entries[static_cast<std::size_t>(i)].key);
        ASSERT_TRUE(read);
        EXPECT_EQ(read->description, "Item " + std::to_string(i));
        EXPECT_EQ(read->amount, Money{10000 * i + 1});
        EXPECT_EQ(read->cdbw, i % 4);
    }
    ASSERT_TRUE(store::MayTake(store.session, kBudget, store::UndoWay::Undo) || !store.session.ShowPrivate);
    EXPECT_EQ(store::TakeStep(store.session, kBudget, store::UndoWay::Undo).written, 1300U);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt"), 0);
}

TEST(SeveralTransactions, AreHiddenWithTheirClassAndDuplicated) {
    TempStore store;
    const std::int32_t one = Stored(store, Entry({46000}, 10000, kDebit));
    const std::int32_t two = Stored(store, Entry({46001}, 20000, kPrivate));
    const std::array keys{one, two};
    EXPECT_EQ(HideSeveral(store.session, kBudget, keys, true).changed, 1U);
    EXPECT_EQ(FetchRecord(store.session, kBudget, one)->cdbw, kDebit | kPrivate);
    EXPECT_TRUE(FetchRecord(store.session, kBudget, one)->isPrivate);
    std::vector<std::int32_t> added;
    EXPECT_EQ(DuplicateSeveral(store.session, kBudget, keys, Day{46100}, &added).changed, 2U);
    ASSERT_EQ(added.size(), 2U);
    const auto copy = FetchRecord(store.session, kBudget, added[0]);
    EXPECT_EQ(copy->date, Day{46100});
    EXPECT_EQ(copy->amount, Money{10000});
    EXPECT_EQ(store::TakeStep(store.session, kBudget, store::UndoWay::Undo).written, 2U);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt"), 2);
}

TEST(SeveralTransactions, GoToAnotherBudgetAndComeBackAsTheyWere) {
    TempStore store;
    ASSERT_EQ(store::StoreCategories(store.session, {{"Food", 3}, {"Rent", 4}}, kBudget), 0);
    ASSERT_EQ(store::StoreCategories(store.session, {{"food", 9}}, Section::Budget3), 0);
    Transaction food = Entry({46000}, 10000, kDebit), rent = Entry({46000}, 20000, kDebit, "Rent");
    food.category = 3;
    rent.category = 4;
    const std::array keys{Stored(store, food), Stored(store, rent)};
    const auto before = store.Rows();
    EXPECT_EQ(GiveToBudget(store.session, kBudget, keys, Section::Budget3).changed, 2U);
    EXPECT_EQ(FetchRecord(store.session, Section::Budget3, keys[0])->category, 9);
    EXPECT_EQ(FetchRecord(store.session, Section::Budget3, keys[1])->category, 0);
    EXPECT_EQ(FetchRecord(store.session, Section::Budget3, keys[1])->description, "Rent");
    EXPECT_FALSE(FetchRecord(store.session, kBudget, keys[0]));
    EXPECT_EQ(store::NextStep(store.session, kBudget, store::UndoWay::Undo)->words.done, "moved to Budget 3");
    EXPECT_EQ(store::NextStep(store.session, Section::Budget3, store::UndoWay::Undo)->rows, 1U);  // its list
    EXPECT_EQ(store::TakeStep(store.session, kBudget, store::UndoWay::Undo).written, 2U);
    EXPECT_EQ(store.Rows(), before);
    EXPECT_EQ(store::TakeStep(store.session, kBudget, store::UndoWay::Redo).written, 2U);
    EXPECT_EQ(FetchRecord(store.session, Section::Budget3, keys[0])->category, 9);
}

TEST(EntryEditors, KeepWhatTheyDoNotShow) {
    const AmountFormat point;
    Transaction entry = Entry({46000}, 1999999, kDebit | kPrivate);
    entry.key = 5;
    entry.paymentType = 200;
    EntryValues values = RecordToEditor(entry, {}, point, AddKind::Credit);
    EXPECT_EQ(values.amount, "200.00");
    EXPECT_EQ(values.debit, true);
    values.subject = "Gift";
    EditorToRecord(values, point, entry);
    EXPECT_EQ(entry.amount, Money{1999999});
    EXPECT_EQ(entry.paymentType, 200);
    EXPECT_EQ(entry.cdbw, 3);
    values.amount = "2*3";
    values.debit = false;
    values.isPrivate = false;
    values.paymentType = 4;
    values.note = "n";
    EditorToRecord(values, point, entry);
    EXPECT_EQ(entry.amount, Money{60000});
    EXPECT_EQ(entry.cdbw, 0);
    EXPECT_FALSE(entry.isPrivate);
    EXPECT_TRUE(entry.hasNote);
    EXPECT_EQ(entry.paymentType, 4);

    const Transaction empty = ClearRecord({46000}, store::Category::Edit);
    EXPECT_EQ(empty.category, 0);
    EXPECT_EQ(RecordToEditor(empty, {}, point, AddKind::Credit).debit, false);
    EXPECT_EQ(RecordToEditor(empty, {}, point, AddKind::Debit).debit, true);
    EXPECT_EQ(RecordToEditor(empty, {}, point, AddKind::Neither).debit, std::nullopt);
    const Transaction next = NextAfter(Entry({46005}, 10000, kDebit | kPrivate));
    EXPECT_EQ(next.date, Day{46005});
    EXPECT_EQ(next.cdbw, kDebit);
    EXPECT_EQ(next.key, store::kNewRecord);
}

}  // namespace
}  // namespace bmr::budget
