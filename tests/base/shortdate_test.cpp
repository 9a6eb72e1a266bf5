#include "base/shortdate.h"

#include <gtest/gtest.h>

namespace bmr {
namespace {

const Day kDay = *ParseIsoDate("2026-03-05");

TEST(ShortDate, FollowsThePatternOfTheLocale) {
    const struct {
        const char* pattern;
        const char* text;
    } cases[] = {{"yyyy-MM-dd", "2026-03-05"},
                 {"M/d/yyyy", "3/5/2026"},
                 {"dd.MM.yy", "05.03.26"},
                 {"d.MM.yy 'г'.", "5.03.26 г."},
                 {"dd 'de' MM yyyy", "05 de 03 2026"}};
    for (const auto& c : cases) {
        EXPECT_EQ(FormatShortDate(kDay, c.pattern), c.text);
        EXPECT_EQ(ParseShortDate(c.text, c.pattern), kDay) << c.text;
    }
}

TEST(ShortDate, ReadsWhatPeopleType) {
    EXPECT_EQ(ParseShortDate(" 5-3-26 ", "dd/MM/yyyy"), kDay);
    EXPECT_EQ(ParseShortDate("2026-03-05", "dd/MM/yyyy"), kDay);
    EXPECT_EQ(ParseShortDate("31/12/29", "dd/MM/yyyy"), ParseIsoDate("2029-12-31"));
    EXPECT_EQ(ParseShortDate("31/12/30", "dd/MM/yyyy"), ParseIsoDate("1930-12-31"));
    for (const char* bad : {"", "5/3", "30/2/2026", "5/3/26/1", "99999999999/1/1", "tomorrow", "3/15/2026"})
        EXPECT_FALSE(ParseShortDate(bad, "dd/MM/yyyy")) << bad;
}

}  // namespace
}  // namespace bmr
