#include "store/categories.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "store/section_store.h"
#include "support/store.h"

namespace bmr::store {
namespace {

using test::TempStore;
using testing::ElementsAre;

CategoryEntry Entry(const char* text, std::int32_t number) {
    return {text, number};
}

CategoryList Filled(TempStore& store, bool withAll, bool withUnfiled, bool withEdit) {
    return FillCategories(store.session, Section::Todo, withAll, withUnfiled, withEdit);
}

TEST(Categories, StandInAlphabeticalOrderBetweenTheFixedEntries) {
    TempStore store;
    EXPECT_THAT(Filled(store, true, true, true),
                ElementsAre(Entry("All", -1), Entry("Unfiled", 0), Entry("Edit categories", 9999)));
    ASSERT_EQ(StoreCategories(store.session, {{"work", 3}, {"Zoo", 1}, {"\xE9t\xE9", 7}, {"Car", 2}},
                              Section::Todo),
              0);
    EXPECT_THAT(Filled(store, true, true, true),
                ElementsAre(Entry("All", -1), Entry("  Car", 2), Entry("  work", 3), Entry("  Zoo", 1),
                            Entry("  \xE9t\xE9", 7), Entry("Unfiled", 0), Entry("Edit categories", 9999)));
    EXPECT_EQ(FillCategories(store.session, Section::Memo, false, false, false), CategoryList());

    EXPECT_EQ(Filled(store, false, false, false)[0], Entry("Car", 2));
    EXPECT_EQ(Filled(store, false, true, false)[0], Entry(" Car", 2));
    EXPECT_EQ(Filled(store, false, false, true)[0], Entry(" Car", 2));
    EXPECT_EQ(Filled(store, true, true, false)[1], Entry("  Car", 2));
    EXPECT_EQ(Filled(store, true, false, true)[1], Entry("  Car", 2));
}

TEST(Categories, AreStoredAsPairsInTheirOrder) {
    TempStore store;
    ASSERT_EQ(StoreCategories(store.session, {{"b", 258}, {"A", 1}}, Section::Todo), 0);
    const auto payload = FetchSinglePayload(store.session, 10, Section::Todo);
    ASSERT_TRUE(payload && *payload);
    EXPECT_EQ(ToHex((*payload)->view()),
              "000a016201030201"
              "020a014103030100");
    EXPECT_EQ(NumberOf(store.Row("SELECT * FROM tt WHERE fSec=10 And fSub=15")->Field("AE")), 1);

    ASSERT_EQ(StoreCategories(store.session, {}, Section::Todo), 0);
    EXPECT_EQ(NumberOf(store.Row("SELECT * FROM tt WHERE fSec=10 And fSub=15")->Field("AE")), 3);
    EXPECT_EQ(Filled(store, false, true, false), (CategoryList{{"Unfiled", 0}}));
}

TEST(Categories, AsManyAsFieldNumbersAllow) {
    TempStore store;
    CategoryList list;
    for (std::int32_t i = 0; i < 128; ++i)
        InsertCategory(list, {"name " + std::to_string(1000 + i), i + 1});
    ASSERT_EQ(StoreCategories(store.session, list, Section::Todo), 0);
    EXPECT_EQ(Filled(store, false, false, false), list);
    CategoryList tooMany = list;
    InsertCategory(tooMany, {"name", 129});
    EXPECT_EQ(StoreCategories(store.session, tooMany, Section::Todo), -52);
    EXPECT_EQ(Filled(store, false, false, false), list);
}

TEST(Categories, ADamagedListLeavesTheFixedEntries) {
    TempStore store;
    ASSERT_EQ(StoreSinglePayload(store.session, 10, Section::Todo, Bytes(40, 'x')), 0);
    EXPECT_THAT(Filled(store, true, true, false), ElementsAre(Entry("All", -1), Entry("Unfiled", 0)));
    // A name without its number does not move the pairs behind it.
    ASSERT_EQ(StoreSinglePayload(store.session, 10, Section::Todo, *FromHex("000a0161020a016203030200")), 0);
    EXPECT_THAT(Filled(store, false, false, false), ElementsAre(Entry("b", 2)));
}

TEST(Categories, AListThatDoesNotDecodeIsToldFromOneWithoutEntries) {
    TempStore store;
    EXPECT_FALSE(CategoriesUnread(store.session, Section::Todo)) << "no list";
    ASSERT_EQ(StoreCategories(store.session, {}, Section::Todo), 0);
    EXPECT_FALSE(CategoriesUnread(store.session, Section::Todo)) << "an empty one";
    ASSERT_EQ(StoreCategories(store.session, {{"a", 1}, {"b", 2}}, Section::Todo), 0);
    EXPECT_FALSE(CategoriesUnread(store.session, Section::Todo));
    const auto key = NumberOf(store.Row("SELECT * FROM tt WHERE fSec=10 And fSub=15")->Field("fPK"));
    const Bytes whole = TextOf(store.Row("SELECT * FROM tt WHERE fSec=10 And fSub=15")->Field("fEtx"));
    for (const Bytes& damaged : {Bytes(), Bytes(3, 'x'), whole.substr(0, whole.size() - 3), Bytes(40, 'x')}) {
        store.Set(key, "fEtx", damaged);
        EXPECT_TRUE(CategoriesUnread(store.session, Section::Todo)) << damaged.size();
        EXPECT_EQ(Filled(store, false, false, false), CategoryList());
    }
}

/// Adds a task with that category; its key.
std::int32_t Filed(TempStore& store, const Value& category, std::uint8_t section = Section::Todo) {
    return StoreRow(store.session, section, kNewRecord,
                    [&](engine::Recordset& row, bool) {
                        row.SetField("fG1", category);
                        return 0;
                    })
        .fPK;
}

TEST(Categories, UnfiledIsWhateverTheListHasNoNameFor) {
    TempStore store;
    const auto shown = [&](std::int32_t category) {
        return store.Count("SELECT fPK FROM tt WHERE fSec=15" +
                           CategoryClause(store.session, Section::Todo, category));
    };
    for (const Value& category : {Value(Null{}), Value(0), Value(1), Value(2), Value(2), Value(7), Value(-1)})
        Filed(store, category);
    EXPECT_EQ(shown(Category::Unfiled), 7) << "without a list nothing has a name";
    ASSERT_EQ(StoreCategories(store.session, {{"a", 1}, {"b", 2}, {"c", 300}}, Section::Todo), 0);
    EXPECT_EQ(shown(Category::Unfiled), 4);
    EXPECT_EQ(shown(1), 1);
    EXPECT_EQ(shown(2), 2);
    EXPECT_EQ(shown(Category::All), 7);
    EXPECT_EQ(shown(Category::Edit), 7);
    ASSERT_EQ(StoreCategories(store.session, {{"b", 2}}, Section::Todo), 0);
    EXPECT_EQ(shown(Category::Unfiled), 5) << "the records of a deleted category";
    ASSERT_EQ(StoreSinglePayload(store.session, 10, Section::Todo, Bytes(40, 'x')), 0);
    EXPECT_EQ(shown(Category::Unfiled), 2) << "what has a category may get its name back";
    CategoryList full;
    for (std::int32_t number = 1; number <= 128; ++number)
        full.push_back({"x", number});
    ASSERT_EQ(StoreCategories(store.session, full, Section::Todo), 0);
    EXPECT_EQ(shown(Category::Unfiled), 3) << "a condition for each of the most that there can be";
}

TEST(Categories, ANumberThatARecordCarriesIsNotGivenAnew) {
    TempStore store;
    EXPECT_EQ(*NewCategoryNumber(store.session, Section::Todo, {{"a", 1}, {"b", 3}, {"c", 2}}), 4);
    EXPECT_EQ(*NewCategoryNumber(store.session, Section::Todo, {{"a", 2}, {"Unfiled", 0}}), 1);
    for (const Value& category :
         {Value(Null{}), Value(0), Value(-1), Value(9999), Value(1), Value(4), Value(4)})
        Filed(store, category);
    Filed(store, 2, Section::Memo);
    EXPECT_THAT(*CarriedNumbers(store.session, Section::Todo, {{"c", 3}, {"a", 1}, {"Unfiled", 0}}),
                ElementsAre(1, 3, 4));
    EXPECT_EQ(*NewCategoryNumber(store.session, Section::Todo, {{"c", 3}}), 2) << "another section's is free";
    CategoryList all;
    for (std::int32_t number = 1; number <= 9998; ++number)
        if (number != 4) all.push_back({"", number});
    EXPECT_EQ(*NewCategoryNumber(store.session, Section::Todo, all), 0);
}

TEST(Categories, NewOnesGoBeforeWhatIsEqualOrAbove) {
    CategoryList list = {{"All", -1}, {"  Bed", 1}, {"  car", 2}, {"Unfiled", 0}, {"Edit categories", 9999}};
    EXPECT_EQ(InsertCategory(list, {"  CAR", 3}), 2U);
    EXPECT_EQ(InsertCategory(list, {"  zoo", 4}), 4U);
    EXPECT_EQ(InsertCategory(list, {"  a", 5}), 1U);
    EXPECT_EQ(CategoryName(list, 3), "CAR");
    EXPECT_EQ(CategoryName(list, 6), "Unfiled");
    EXPECT_EQ(CategoryName(list, -1), "Unfiled");
}

TEST(Categories, FreeNumbersOfAnImport) {
    EXPECT_EQ(FreeCategoryNumber({}), 1);
    EXPECT_EQ(FreeCategoryNumber({1, 2, 3}), 3);  // the last entry does not count
    EXPECT_EQ(FreeCategoryNumber({5, 9999}), 1);
    for (const std::int32_t fixed : {0, -1, 9999})
        EXPECT_EQ(FreeCategoryNumber({fixed, 5}), 0);
}

TEST(Categories, OfARecord) {
    TempStore store;
    const auto stored = StoreRow(store.session, Section::Todo, kNewRecord, [](engine::Recordset& row, bool) {
        row.SetField("fG1", 12);
        return 0;
    });
    EXPECT_EQ(RecordCategory(store.session, stored.fPK), 12);
    EXPECT_EQ(RecordCategory(store.session, stored.fPK ^ 1), 0);
    for (const std::int32_t none : {-1, 0, 9999, 65535})
        EXPECT_EQ(RealCategory(none), 0);
    EXPECT_EQ(RealCategory(9998), 9998);
}

}  // namespace
}  // namespace bmr::store
