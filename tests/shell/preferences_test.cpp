#include "shell/preferences.h"

#include <sstream>

#include "custody/passphrase.h"
#include "custody/users.h"
#include "shell/navigator.h"
#include "support/failing_disk.h"
#include "support/sitting.h"

namespace bmr::shell {
namespace {

using test::Sitting;

std::string Describe(const Preferences& p) {
    std::ostringstream out;
    out << p.Idle << '|';
    for (const auto& boxes : p.BudgetShow)
        for (const bool on : boxes)
            out << on;
    for (const auto& label : p.txtUserDefined)
        out << '|' << label;
    out << '|' << int{p.StartScreen} << p.cboStartApp << int{p.DiaryShow} << p.TodoShowCompleted
        << int{p.BudgetPrimary} << int{p.CatShow} << int{p.calView} << '|' << p.AppDuration << '|'
        << p.WorkdayStart << '|' << p.WorkdayEnd << '|' << p.DisplayFrom << '|' << p.Pin.view() << '|'
        << p.PinApp << p.PINeveryaccess << '|' << p.switches.endOnSuspend << p.switches.endOnLock
        << p.switches.alsoForeign;
    return out.str();
}

struct Option {
    const char* name;
    void (*change)(Preferences&);
};

const Option kOptions[] = {
    {"Idle", [](Preferences& p) { p.Idle = "15"; }},
    {"Idle 0", [](Preferences& p) { p.Idle = " 0 "; }},
    {"BudgetShow",
     [](Preferences& p) {
         p.BudgetShow = {{{1, 0, 1, 1}, {0, 1, 0, 1}, {1, 1, 1, 0}}};
     }},
    {"labels",
     [](Preferences& p) {
         p.txtUserDefined = {"Größe", "", std::string(500, 'x'), "€"};
     }},
    {"StartScreen", [](Preferences& p) { p.StartScreen = 1; }},
    {"cboStartApp", [](Preferences& p) { p.cboStartApp = 6; }},
    {"DiaryShow", [](Preferences& p) { p.DiaryShow = 0; }},
    {"TodoShowCompleted", [](Preferences& p) { p.TodoShowCompleted = true; }},
    {"BudgetPrimary", [](Preferences& p) { p.BudgetPrimary = 2; }},
    {"CatShow", [](Preferences& p) { p.CatShow = 1; }},
    {"calView", [](Preferences& p) { p.calView = 3; }},
    {"AppDuration", [](Preferences& p) { p.AppDuration = 120; }},
    {"WorkdayStart", [](Preferences& p) { p.WorkdayStart = "23:59"; }},
    {"WorkdayEnd before it", [](Preferences& p) { p.WorkdayEnd = "00:00"; }},
    {"DisplayFrom", [](Preferences& p) { p.DisplayFrom = "6:05"; }},
    {"PIN", [](Preferences& p) { p.Pin = Secret(std::string_view(" \x80 'x\" \0;", 8)); }},
    {"long PIN", [](Preferences& p) { p.Pin = Secret(Bytes(65000, 'z')); }},
    {"PinApp", [](Preferences& p) { p.PinApp = 0x1FF; }},
    {"PINeveryaccess", [](Preferences& p) { p.PINeveryaccess = true; }},
    {"suspend", [](Preferences& p) { p.switches.endOnSuspend = true; }},
    {"lock", [](Preferences& p) { p.switches.endOnLock = true; }},
    {"clipboard", [](Preferences& p) { p.switches.alsoForeign = false; }},
};

TEST(Preferences, EachIsStoredAndReadBackEqual) {
    Sitting sitting;
    sitting.Make();
    for (const Option& option : kOptions) {
        Preferences chosen = FromSession(sitting.session);
        option.change(chosen);
        ASSERT_EQ(StorePreferences(sitting.session, chosen), 0) << option.name;
        sitting.Close();
        ASSERT_EQ(sitting.Open(), 0) << option.name;
        if (chosen.Idle == " 0 ") chosen.Idle = "0";
        if (chosen.DisplayFrom == "6:05") chosen.DisplayFrom = "06:05";
        EXPECT_EQ(Describe(FromSession(sitting.session)), Describe(chosen)) << option.name;
    }
    EXPECT_EQ(sitting.session.pin.PinKind, 1) << "a PIN of the user's own";
    sitting.Close();
}

TEST(Preferences, UnchangedOnesLeaveTheDefaults) {
    Sitting sitting;
    sitting.Make();
    const Preferences shown = FromSession(sitting.session);
    EXPECT_EQ(Describe(shown).substr(0, 15), "5|111111111111|");
    EXPECT_EQ(shown.txtUserDefined, (std::array<std::string, 4>{"User1", "User2", "User3", "User4"}));
    const Bytes pin(shown.Pin.view());
    ASSERT_EQ(StorePreferences(sitting.session, shown), 0);
    EXPECT_EQ(sitting.session.settings.BudgetShow, (std::array<std::uint8_t, 3>{0, 0, 0}));
    EXPECT_EQ(sitting.session.settings.StartSection, 12);
    EXPECT_EQ(sitting.session.pin.PinKind, 0);
    EXPECT_EQ(sitting.session.pin.Pin.view(), pin);
    sitting.Close();
}

TEST(Preferences, StartSectionFollowsTheListAndTheLastSectionUsed) {
    Sitting sitting;
    sitting.Make();
    store::Session& session = sitting.session;
    Preferences chosen = FromSession(session);
    chosen.StartScreen = 1;
    for (const int code : {12, 11, 13, 15, 14, 16, 17}) {
        ASSERT_EQ(StorePreferences(session, chosen), 0);
        EXPECT_EQ(int{session.settings.StartSection}, code);
        EXPECT_EQ(int{StartSectionOf(session, 0x1FF)}, code);
        ++chosen.cboStartApp;
    }
    // The third budget is shown as "Budget", and that alone does not make it the first.
    session.settings.StartSection = 19;
    chosen.cboStartApp = FromSession(session).cboStartApp;
    EXPECT_EQ(chosen.cboStartApp, 6U);
    ASSERT_EQ(StorePreferences(session, chosen), 0);
    EXPECT_EQ(session.settings.StartSection, 19);
    chosen.StartScreen = 2;
    session.SectionCode = 15;
    ASSERT_EQ(StorePreferences(session, chosen), 0);
    EXPECT_EQ(session.settings.StartSection, 15);
    session.SectionCode = 0;
    sitting.Close();
}

TEST(Preferences, FaultsNameTheFieldAndNothingIsStored) {
    struct Case {
        const char* control;
        void (*change)(Preferences&);
        const char* words;
    };
    static const Case cases[] = {
        {"Idle", [](Preferences& p) { p.Idle = "ten"; }, "idle time"},
        {"Idle", [](Preferences& p) { p.Idle = "-1"; }, "idle time"},
        {"Idle", [](Preferences& p) { p.Idle = "16"; }, "to 15"},
        {"Idle", [](Preferences& p) { p.Idle = "5x"; }, "idle time"},
        {"Idle", [](Preferences& p) { p.Idle = "99999999999"; }, "idle time"},
        {"Idle", [](Preferences& p) { p.Idle = ""; }, "idle time"},
        {"WorkdayStart", [](Preferences& p) { p.WorkdayStart = "25:99"; }, "start of the workday"},
        {"WorkdayEnd", [](Preferences& p) { p.WorkdayEnd = "24:00"; }, "end of the workday"},
        {"WorkdayEnd", [](Preferences& p) { p.WorkdayEnd = "-1:00"; }, "end of the workday"},
        {"DisplayFrom", [](Preferences& p) { p.DisplayFrom = "7:60"; }, "display"},
        {"DisplayFrom", [](Preferences& p) { p.DisplayFrom = "7:5"; }, "display"},
        {"DisplayFrom", [](Preferences& p) { p.DisplayFrom = "noon"; }, "display"},
        {"DisplayFrom", [](Preferences& p) { p.DisplayFrom = ""; }, "display"},
        {"txtUserDefined1", [](Preferences& p) { p.txtUserDefined[1] = "Ω"; }, "User Def 2"},
        {"txtUserDefined3", [](Preferences& p) { p.txtUserDefined[3] = std::string(65001, 'x'); }, "65000"},
        {"txtPIN", [](Preferences& p) { p.Pin.Wipe(); }, "PIN"},
        {"txtPIN", [](Preferences& p) { p.Pin = Secret(Bytes(65001, 'x')); }, "65000"},
    };
    Sitting sitting;
    sitting.Make();
    EXPECT_TRUE(FaultsOf(FromSession(sitting.session)).empty());
    const auto before = test::RowsOf(*sitting.session.ProgramDb);
    for (const Case& one : cases) {
        Preferences chosen = FromSession(sitting.session);
        one.change(chosen);
        const auto faults = FaultsOf(chosen);
        ASSERT_EQ(faults.size(), 1U) << one.control;
        EXPECT_EQ(faults[0].control, one.control);
        EXPECT_NE(faults[0].words.find(one.words), std::string::npos) << faults[0].words;
        EXPECT_EQ(StorePreferences(sitting.session, chosen), -43);
    }
    EXPECT_EQ(test::RowsOf(*sitting.session.ProgramDb), before);
    sitting.Close();
}

TEST(Preferences, AFailureAtTheLastStepLeavesFileAndSessionAsTheyWere) {
    Sitting sitting;
    sitting.Make();
    store::Session& session = sitting.session;
    const std::string shown = Describe(FromSession(session));
    Preferences chosen = FromSession(session);
    for (const Option& option : kOptions)
        option.change(chosen);
    const std::int32_t user = std::exchange(session.user.fPK, 12345);
    const auto before = test::RowsOf(*session.ProgramDb);
    session.SettingsUnread = true;
    sitting.prompter.Expect(109);
    EXPECT_EQ(StorePreferences(session, chosen), custody::kQuitProgram);
    EXPECT_EQ(Describe(FromSession(session)), shown);
    EXPECT_TRUE(session.SettingsUnread);
    EXPECT_EQ(test::RowsOf(*session.ProgramDb), before);
    session.SettingsUnread = false;
    session.user.fPK = user;
    sitting.Close();
    EXPECT_EQ(StorePreferences(session, chosen), -98) << "closed meanwhile";
}

TEST(Preferences, AStoreThatTheDiskRefusesChangesNothingInTheSession) {
    Sitting sitting;
    sitting.Make();
    store::Session& session = sitting.session;
    const std::string shown = Describe(FromSession(session));
    Preferences chosen = FromSession(session);
    for (const Option& option : kOptions)
        option.change(chosen);
    int refused = 0;
    for (int call = 1;; ++call) {
        int error = 0;
        {
            const test::FailingDisk disk(call);
            error = StorePreferences(session, chosen);
        }
        if (error == 0) break;
        ++refused;
        EXPECT_EQ(Describe(FromSession(session)), shown) << "call " << call;
        EXPECT_EQ(session.pin.PinKind, 0);
        ASSERT_EQ(custody::LoadPin(session), 0);
        EXPECT_EQ(Describe(FromSession(session)), shown) << "call " << call << ", from the file";
    }
    EXPECT_GT(refused, 5);
    EXPECT_EQ(session.pin.PinApp, 0x1FF);
    session.ProgramDb->TakeDoubt();
    sitting.Close();
}

TEST(Preferences, StoredNumbersThatNoOptionStandsForShowAsWhatTheyActAs) {
    test::TestSession sitting;
    store::Settings& settings = sitting.session.settings;
    settings.Idle = 900;
    settings.BudgetShow = {1, 12, 240};
    settings.StartSection = 200;
    settings.StartScreen = settings.BudgetPrimary = settings.calView = settings.DiaryShow = 77;
    settings.AppDuration = -5;
    sitting.registry.values["Guards/EndOnLock"] = "yes";
    const Preferences shown = FromSession(sitting.session);
    EXPECT_EQ(shown.Idle, "15");
    EXPECT_EQ(shown.BudgetShow[0], (BudgetBoxes{true, false, true, true}));
    EXPECT_EQ(shown.BudgetShow[1], (BudgetBoxes{true, true, true, true}));
    EXPECT_EQ(shown.BudgetShow[2], (BudgetBoxes{true, true, true, true}));
    EXPECT_EQ(shown.cboStartApp, 0U);
    EXPECT_EQ(shown.StartScreen + shown.BudgetPrimary + shown.calView, 0);
    EXPECT_EQ(shown.DiaryShow, 1);
    EXPECT_EQ(shown.AppDuration, 30);
    EXPECT_FALSE(shown.switches.endOnLock);
    settings.AppDuration = 45;
    EXPECT_EQ(FromSession(sitting.session).AppDuration, 45) << "odd, but it works";
}

TEST(KeepPair, OneOfAPairIsAlwaysOn) {
    BudgetBoxes boxes{false, false, true, true};
    KeepPair(boxes, 0);
    EXPECT_EQ(boxes, (BudgetBoxes{false, true, true, true}));
    boxes[3] = false;
    KeepPair(boxes, 3);
    EXPECT_EQ(boxes, (BudgetBoxes{false, true, true, false}));
}

TEST(StepTime, GoesRoundTheClock) {
    EXPECT_EQ(StepTime("08:00", TimePart::Hours, 1), "09:00");
    EXPECT_EQ(StepTime("23:30", TimePart::Hours, 1), "00:30");
    EXPECT_EQ(StepTime("00:30", TimePart::Hours, -1), "23:30");
    EXPECT_EQ(StepTime("08:03", TimePart::Minutes, 1), "08:05");
    EXPECT_EQ(StepTime("08:03", TimePart::Minutes, -1), "08:00");
    EXPECT_EQ(StepTime("08:00", TimePart::Minutes, -1), "07:55");
    EXPECT_EQ(StepTime("23:58", TimePart::Minutes, 1), "00:00");
    EXPECT_EQ(StepTime("25:99", TimePart::Hours, 1), "25:99");
}

}  // namespace
}  // namespace bmr::shell
