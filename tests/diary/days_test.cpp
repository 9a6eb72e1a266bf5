#include "diary/days.h"

#include <gtest/gtest.h>

#include "calendar/months.h"
#include "diary_store.h"

namespace bmr::diary {
namespace {

using calendar::RolledDate;

TEST(DiaryDays, AreMarkedAndFoundWithNothingDeciphered) {
    DiaryStore store;
    const Day may = RolledDate(2026, 5, 1);
    for (const int day : {-1, 0, 14, 30, 31})
        store.Write({may.serial + day}, "x");
    store.Double({may.serial + 14}, "again");
    const std::uint64_t before = store.session.cipher.deciphered;
    EXPECT_EQ(*MarkedDays(store.session, may, {may.serial + 30}),
              (std::vector<Day>{may, {may.serial + 14}, {may.serial + 30}}));
    EXPECT_EQ(*PreviousEntry(store.session, {may.serial + 14}), may);
    EXPECT_EQ(*NextEntry(store.session, {may.serial + 14}), Day{may.serial + 30});
    EXPECT_EQ(*NextEntry(store.session, {may.serial + 31}), std::nullopt);
    EXPECT_EQ(*PreviousEntry(store.session, {may.serial - 1}), std::nullopt);
    EXPECT_EQ(store.session.cipher.deciphered, before);
    store.session.ShowPrivate = false;
    EXPECT_TRUE(MarkedDays(store.session, may, {may.serial + 30})->empty());
    EXPECT_EQ(*NextEntry(store.session, may), std::nullopt);
    EXPECT_TRUE(OnThisDay(store.session, {may.serial + 365})->empty());
    EXPECT_TRUE(Search(store.session, "x")->empty());
    EXPECT_TRUE(ExportText(store.session, may, {may.serial + 30}, "yyyy-MM-dd")->empty());
}

TEST(DiaryDays, OfEarlierYearsHaveTheSameDate) {
    DiaryStore store;
    for (const auto& [year, month, day] : std::initializer_list<std::array<int, 3>>{{1979, 3, 1},
                                                                                    {2019, 3, 1},
                                                                                    {2024, 3, 1},
                                                                                    {2024, 2, 29},
                                                                                    {2020, 2, 29},
                                                                                    {2026, 3, 1},
                                                                                    {2027, 3, 1}})
        store.Write(RolledDate(year, month, day), "\r\n  Größer \r\nsecond");
    EXPECT_EQ(*OnThisDay(store.session, RolledDate(2026, 3, 1)),
              (std::vector<Day>{RolledDate(2024, 3, 1), RolledDate(2019, 3, 1), RolledDate(1979, 3, 1)}));
    EXPECT_EQ(*OnThisDay(store.session, RolledDate(2028, 2, 29)),
              (std::vector<Day>{RolledDate(2024, 2, 29), RolledDate(2020, 2, 29)}));
    const std::uint64_t before = store.session.cipher.deciphered;
    EXPECT_EQ(FirstLine(store.session, RolledDate(2019, 3, 1), 40), "Größer");
    EXPECT_EQ(FirstLine(store.session, RolledDate(2019, 3, 1), 3), "Grö");
    EXPECT_EQ(store.session.cipher.deciphered - before, 2U);
    EXPECT_EQ(FirstLine(store.session, RolledDate(2018, 3, 1), 40), "");
}

TEST(DiaryDays, AreSearchedInEveryScript) {
    DiaryStore store;
    const Day day{46000};
    store.Write(day, "Łódź im Regen");
    store.Write({day.serial + 1}, "the café by the canal");
    store.Write({day.serial + 2}, "北京的茶馆");
    EXPECT_EQ(*Search(store.session, "lodz"), std::vector<Day>{day});
    EXPECT_EQ(*Search(store.session, "ŁÓDŹ"), std::vector<Day>{day});
    EXPECT_EQ(*Search(store.session, "CAFE"), std::vector<Day>{{day.serial + 1}});
    EXPECT_EQ(*Search(store.session, "茶"), std::vector<Day>{{day.serial + 2}});
    EXPECT_EQ(Search(store.session, "beijing")->size() + Search(store.session, "bei jing")->size(), 1U);
    EXPECT_TRUE(Search(store.session, "水")->empty());
    EXPECT_TRUE(Search(store.session, "")->empty());
}

TEST(DiaryDays, AreCountedAndExportedAsText) {
    for (const auto& [text, words] :
         std::initializer_list<std::pair<const char*, std::size_t>>{{"", 0},
                                                                    {"  \r\n ", 0},
                                                                    {"one", 1},
                                                                    {"one two\r\nthree", 3},
                                                                    {"don't – well, 5 €", 3},
                                                                    {"Łódź ма́ма", 2},
                                                                    {"北京 tea", 3},
                                                                    {"… ! — *", 0},
                                                                    {"a\xE2\x80\xAF"
                                                                     "b",
                                                                     2}})
        EXPECT_EQ(CountWords(text), words) << text;
    DiaryStore store;
    const Day day = RolledDate(2026, 5, 1);
    store.Write(day, "one\r\ntwo");
    store.Write({day.serial + 3}, "three");
    store.Write({day.serial + 4}, " ");
    store.Write({day.serial + 9}, "behind");
    EXPECT_EQ(*ExportText(store.session, day, {day.serial + 8}, "d.M.yyyy"),
              "1.5.2026\r\n\r\none\r\ntwo\r\n\r\n4.5.2026\r\n\r\nthree\r\n");
}

}  // namespace
}  // namespace bmr::diary
