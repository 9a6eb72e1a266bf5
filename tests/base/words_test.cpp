#include <gtest/gtest.h>

#include "base/languageus.h"
#include "base/money.h"
#include "base/ports.h"

namespace bmr {
namespace {

TEST(FormatAmount, RoundsHalvesAwayFromZeroAndShowsTwoPlaces) {
    EXPECT_EQ(FormatAmount({0}), "0.00");
    EXPECT_EQ(FormatAmount({49}), "0.00");
    EXPECT_EQ(FormatAmount({50}), "0.01");
    EXPECT_EQ(FormatAmount({-50}), "-0.01");
    EXPECT_EQ(FormatAmount({-49}), "0.00");
    EXPECT_EQ(FormatAmount({99999950}), "10000.00");
    EXPECT_EQ(FormatAmount({INT64_MIN}), "-922337203685477.58");
}

TEST(Msg, TextsStandByNumberAndUnknownNumbersAreEmpty) {
    EXPECT_EQ(Msg(1), "No database specified.");
    EXPECT_EQ(Msg(85), "Password not correct!");
    EXPECT_EQ(Msg(111), " items found");
    EXPECT_EQ(Msg(167), "Help File not found!");
    EXPECT_TRUE(Msg(151).ends_with("Starting with next mont"));
    EXPECT_TRUE(Msg(94).ends_with("Please, download the update from https://brindlemere.example/download."));
    EXPECT_NE(Msg(160).find("\"PersonalData.bmr\""), std::string::npos);
    for (const int none : {-85, 0, 2, 69, 74, 148, 157, 168, 10000})
        EXPECT_EQ(Msg(none), "") << none;
}

TEST(Ports, ADeleteIsConfirmedByTheSecondButton) {
    const Box box = ConfirmDelete(29, "Confirm deletion of task:\r\n\r\n   x");
    EXPECT_EQ(box.buttons, Buttons::OkCancel);
    EXPECT_EQ(box.standard, Answer::Cancel);
    EXPECT_EQ(box.icon, BoxIcon::Warning);
    EXPECT_TRUE(box.title.empty());
    EXPECT_EQ(MessageBox(85).text, Msg(85));
}

}  // namespace
}  // namespace bmr
