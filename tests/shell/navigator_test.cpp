#include "shell/navigator.h"

#include <gmock/gmock.h>

#include "base/languageus.h"
#include "custody/users.h"
#include "support/sitting.h"

namespace bmr::shell {
namespace {

using test::Sitting;
using ::testing::ElementsAre;

constexpr SectionSet kAll = 0x1FF;

/// Writes down what the window is asked to do.
struct Screen {
    std::vector<std::string> log;
    SectionScreen screen{[this](bool show) { log.push_back(show ? "show" : "hide"); },
                         [this] { log.push_back("close"); },
                         [this](std::uint8_t section) { log.push_back("form " + std::to_string(section)); },
                         [this](std::uint8_t section) { log.push_back("press " + std::to_string(section)); }};
};

TEST(PinRule, AsPlainData) {
    struct Case {
        std::uint8_t section;
        std::int32_t app, passed;
        bool everyAccess, asks;
    };
    // bit 11 + k: address book 1, diary 4, confidential 32, budgets 64 and up
    const Case cases[] = {
        {11, 0, 0, false, false}, {11, 1, 0, false, true},   {11, 1, 1, false, false},
        {11, 1, 1, true, true},   {13, 1, 0, true, false},   {13, 4, 1, false, true},
        {16, 32, 0, false, true}, {17, 64, 0, false, false}, {19, 511, 0, true, false},
        {0, 511, 0, true, false},
    };
    Sitting sitting;
    for (const Case& c : cases) {
        sitting.session.pin.PinApp = c.app;
        sitting.session.pin.PINeveryaccess = c.everyAccess;
        sitting.session.PinPassed = c.passed;
        EXPECT_EQ(NeedsPin(sitting.session, c.section), c.asks) << int{c.section} << " app " << c.app;
    }
    // Which sections it guarded is not known: all that can be guarded are, at every access.
    sitting.session.pin = {.Unread = true};
    sitting.session.PinPassed = 0x1FF;
    for (std::uint8_t section = 11; section <= 16; ++section)
        EXPECT_TRUE(NeedsPin(sitting.session, section)) << int{section};
    EXPECT_FALSE(NeedsPin(sitting.session, 17));
    EXPECT_FALSE(NeedsPin(sitting.session, 0));
}

TEST(Navigator, AsksForThePassphraseWhereThePinCannotBeRead) {
    Sitting sitting;
    sitting.Make();
    sitting.session.pin = {.Unread = true};
    Screen main;
    sitting.prompter.Type("").Expect(85).Type("someone else").Expect(85).Type(test::kPassphrase);
    EXPECT_FALSE(optSection_Click(sitting.session, main.screen, kAll, 14));
    EXPECT_FALSE(optSection_Click(sitting.session, main.screen, kAll, 14));
    EXPECT_TRUE(optSection_Click(sitting.session, main.screen, kAll, 14));
    EXPECT_EQ(sitting.prompter.requests.back().prompt, Msg(159));
    sitting.Close();
}

TEST(Navigator, SwitchesAndTakesARefusedClickBack) {
    Sitting sitting;
    sitting.Make();
    ASSERT_EQ(custody::WritePin(sitting.session, 1, "4711", 0x10 | 0x20, false), 0);
    Screen main;
    EXPECT_TRUE(optSection_Click(sitting.session, main.screen, kAll, 14));
    EXPECT_THAT(main.log, ElementsAre("hide", "press 14", "form 14", "show"));

    main.log.clear();
    sitting.prompter.Type("1").Expect(125).Type(std::nullopt);
    EXPECT_FALSE(optSection_Click(sitting.session, main.screen, kAll, 15));
    EXPECT_FALSE(optSection_Click(sitting.session, main.screen, kAll, 15));
    EXPECT_EQ(sitting.prompter.requests.back().title, "Tasks") << "whose PIN it is";
    EXPECT_EQ(sitting.prompter.requests.back().prompt, "Enter PIN:");
    EXPECT_FALSE(optSection_Click(sitting.session, main.screen, SectionBit(15), 16));  // not in this build
    EXPECT_EQ(sitting.session.SectionCode, 14);
    EXPECT_THAT(main.log, ElementsAre("hide", "press 14", "show", "hide", "press 14", "show", "hide",
                                      "press 14", "show"));

    main.log.clear();
    sitting.prompter.Type("4711");
    EXPECT_TRUE(optSection_Click(sitting.session, main.screen, kAll, 15));
    EXPECT_TRUE(optSection_Click(sitting.session, main.screen, kAll, 0));
    EXPECT_TRUE(optSection_Click(sitting.session, main.screen, kAll, 15));  // once a session
    EXPECT_EQ(sitting.session.PinPassed, 0x10);
    EXPECT_THAT(main.log, ElementsAre("hide", "close", "press 15", "form 15", "show", "hide", "close",
                                      "press 0", "form 0", "show", "hide", "press 15", "form 15", "show"));

    sitting.session.pin.PINeveryaccess = true;
    sitting.prompter.Type("4711").Type("4711");
    EXPECT_TRUE(optSection_Click(sitting.session, main.screen, kAll, 16));
    EXPECT_TRUE(optSection_Click(sitting.session, main.screen, kAll, 16));
    EXPECT_EQ(sitting.session.PinPassed, 0x10);
    sitting.Close();
}

TEST(Navigator, DiaryTellsOfHiddenRecords) {
    Sitting sitting;
    sitting.Make();
    Screen main;
    ASSERT_TRUE(sitting.session.ShowPrivate);  // as stored by default
    EXPECT_TRUE(optSection_Click(sitting.session, main.screen, kAll, 13));
    EXPECT_EQ(ShowPrivateCaption(sitting.session), "Hide Private Records");
    EXPECT_TRUE(mnuViewShowPrivate_Switch(sitting.session));
    EXPECT_EQ(ShowPrivateCaption(sitting.session), "Show Private Records");
    sitting.prompter.Expect(143);
    EXPECT_TRUE(optSection_Click(sitting.session, main.screen, kAll, 13));

    sitting.prompter.Type("not the one").Expect(85).Type(std::nullopt);
    EXPECT_FALSE(mnuViewShowPrivate_Switch(sitting.session));
    EXPECT_FALSE(mnuViewShowPrivate_Switch(sitting.session));
    EXPECT_FALSE(sitting.session.ShowPrivate);
    sitting.prompter.Type(test::kPassphrase);
    EXPECT_TRUE(mnuViewShowPrivate_Switch(sitting.session));
    EXPECT_TRUE(sitting.session.ShowPrivate);
    sitting.Close();
    EXPECT_FALSE(sitting.session.ShowPrivate);
}

TEST(Navigator, StartSectionFollowsTheSettings) {
    Sitting sitting;
    sitting.Make();
    Screen main;
    auto& settings = sitting.session.settings;
    settings.StartSection = 15;
    EXPECT_EQ(StartSectionOf(sitting.session, kAll), 0);
    settings.StartScreen = 1;
    EXPECT_EQ(StartSectionOf(sitting.session, kAll), 15);
    EXPECT_EQ(StartSectionOf(sitting.session, SectionBit(14)), 0);
    optSection_Click(sitting.session, main.screen, kAll, 14);
    EXPECT_EQ(settings.StartSection, 15);  // the chosen one stays

    settings.StartScreen = 2;
    optSection_Click(sitting.session, main.screen, kAll, 14);
    optSection_Click(sitting.session, main.screen, kAll, 0);
    sitting.Close();
    ASSERT_EQ(sitting.Open(), 0);
    EXPECT_EQ(StartSectionOf(sitting.session, kAll), 14);
    settings.StartSection = 99;  // damaged
    EXPECT_EQ(StartSectionOf(sitting.session, kAll), 0);
    sitting.Close();
}

}  // namespace
}  // namespace bmr::shell
