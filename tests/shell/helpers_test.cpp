#include "shell/helpers.h"

#include <gtest/gtest.h>

#include "support/ports.h"

namespace bmr::shell {
namespace {

using test::RecordingDesktop;

TEST(Helpers, NumericOnlyCutsAtTheEndAlone) {
    EXPECT_EQ(NumericOnly("12.50 EUR", '.'), "12.50");
    EXPECT_EQ(NumericOnly("a12,5x", ','), "a12,5");
    EXPECT_EQ(NumericOnly("12.5.", ','), "12.5");
    EXPECT_EQ(NumericOnly("none", '.'), "");
}

TEST(Helpers, ValidEmailTrimsAndTestsTheShape) {
    std::string address = "  ann.b-c@example.org ";
    EXPECT_TRUE(ValidEmail(address));
    EXPECT_EQ(address, "ann.b-c@example.org");
    for (std::string good : {"a@b", "j\u00FCrgen@m\u00FCller.example", "1@2@3"})
        EXPECT_TRUE(ValidEmail(good)) << good;
    for (std::string bad : {"", "   ", "@example.org", "ann@", "ann", "ann b@example.org", "ann@example.org.",
                            "ann_b@example.org", "a@b\u4E2Dc", "a@b?cc=x", "a\n@b"})
        EXPECT_FALSE(ValidEmail(bad)) << bad;
}

TEST(Helpers, WebAddressesAreCompletedAndOnlyHarmlessSchemesPass) {
    EXPECT_EQ(WebAddress(" www.example.org "), "http://www.example.org");
    EXPECT_EQ(WebAddress("HTTPS://example.org/a?b"), "HTTPS://example.org/a?b");
    EXPECT_EQ(WebAddress("ftp://example.org"), "ftp://example.org");
    EXPECT_EQ(WebAddress("javascript:alert(1)"), "http://javascript:alert(1)");
    EXPECT_EQ(WebAddress("example.org/?to=http://x"), "http://example.org/?to=http://x");
    EXPECT_FALSE(WebAddress("file:///etc/passwd"));
    EXPECT_FALSE(WebAddress("smb://host/share"));
    EXPECT_FALSE(WebAddress("http://a\nb"));
    EXPECT_FALSE(WebAddress("  "));

    RecordingDesktop desktop;
    test::ScriptedPrompter prompter;
    OpenWebsite(prompter, desktop, "");
    OpenWebsite(prompter, desktop, "example.org");
    EXPECT_EQ(desktop.asked, std::vector<std::string>{"web http://example.org"});
    prompter.Expect(0).Expect(0);
    OpenWebsite(prompter, desktop, "file:///tmp/x");
    desktop.works = false;
    OpenWebsite(prompter, desktop, "example.org");
    EXPECT_EQ(desktop.asked.size(), 2U);
}

TEST(Helpers, MailOfTheWrongShapeShowsTheOtherMessage) {
    RecordingDesktop desktop;
    test::ScriptedPrompter prompter;
    SendMail(prompter, desktop, " ann@example.org ");
    prompter.Expect(163);
    SendMail(prompter, desktop, "ann b@example.org");
    EXPECT_EQ(desktop.asked, std::vector<std::string>{"mail ann@example.org"});
    EXPECT_EQ(prompter.shown.at(0).text, "Confirm deletion of all events before and including");
}

TEST(Helpers, DialAsksCleansAndCalls) {
    EXPECT_EQ(CleanDialNumber("+44 (0)20-7946,*#+1 ext"), "+440207946,*#1");

    RecordingDesktop desktop;
    test::ScriptedPrompter prompter;
    prompter.Expect(165);
    DialPhone(prompter, desktop, "", "Ann");
    prompter.inputs = {"020 7946", std::nullopt, "", "none"};
    prompter.Expect(165);
    for (int i = 0; i < 4; ++i)
        DialPhone(prompter, desktop, "+44 20", "Ann");
    EXPECT_EQ(desktop.asked, std::vector<std::string>{"dial 0207946 for Ann"});
}

TEST(Helpers, FieldMenuFollowsTheSelection) {
    const FieldMenu spaced = SetMenuForSelection("020 7946", true, false);
    EXPECT_TRUE(spaced.cut && spaced.copy && spaced.copyNoSpaces && spaced.paste);
    const FieldMenu reading = SetMenuForSelection("0207946", false, false);
    EXPECT_TRUE(reading.copy && !reading.cut && !reading.copyNoSpaces && !reading.paste);
    const FieldMenu hidden = SetMenuForSelection("pass word", true, true);
    EXPECT_TRUE(!hidden.cut && !hidden.copy && !hidden.copyNoSpaces && hidden.paste);
    EXPECT_EQ(WithoutBlanks(" 020 79 46 "), "0207946");
}

}  // namespace
}  // namespace bmr::shell
