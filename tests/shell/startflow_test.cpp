#include "shell/startflow.h"

#include "base/languageus.h"
#include "support/sitting.h"

namespace bmr::shell {
namespace {

using test::kPassphrase;
using test::Sitting;

struct StartTest : ::testing::Test {
    Sitting sitting;
    Environment environment{sitting.folder.Path() / "documents"};
    StartOutcome StartNow() { return Start(sitting.session, environment); }
};

TEST_F(StartTest, FirstRunMakesTheDefaultFileWithoutADialog) {
    sitting.prompter.Expect(160, Answer::No).Type(kPassphrase);
    EXPECT_EQ(StartNow(), StartOutcome::Open);
    const auto file = sitting.folder.Path() / "documents/Brindlemere/PersonalData.bmr";
    EXPECT_TRUE(std::filesystem::exists(file));
    EXPECT_EQ(sitting.registry.values["MostRecentFiles/1"], file.string());
    EXPECT_EQ(sitting.prompter.shown[0].text, Msg(160) + "\r\n\r\n" + file.string()) << "the real path";
    EXPECT_EQ(sitting.prompter.shown[0].standard, Answer::No);
    sitting.Close();

    sitting.prompter.Type(kPassphrase);  // the next start finds it
    EXPECT_EQ(StartNow(), StartOutcome::Open);
    sitting.Close();
}

TEST_F(StartTest, EscapeAtTheFirstQuestionMakesNoFile) {
    sitting.prompter.Expect(160, Answer::Cancel);
    EXPECT_EQ(StartNow(), StartOutcome::ShowMenuDB);
    EXPECT_EQ(sitting.prompter.shown[0].buttons, Buttons::YesNoCancel) << "Esc needs an answer of its own";
    EXPECT_FALSE(std::filesystem::exists(DefaultFolder(environment)));
}

TEST_F(StartTest, OtherPlaceOrCancelledPromptLeadsToTheMenu) {
    sitting.prompter.Expect(160, Answer::Yes);
    EXPECT_EQ(StartNow(), StartOutcome::ShowMenuDB);
    EXPECT_FALSE(std::filesystem::exists(DefaultFolder(environment)));
    sitting.prompter.Expect(160, Answer::No).Type(std::nullopt);
    EXPECT_EQ(StartNow(), StartOutcome::ShowMenuDB);
    EXPECT_FALSE(sitting.session.DefaultPathChosen);
    // The folder stands now: no first run any more.
    EXPECT_EQ(StartNow(), StartOutcome::ShowMenuDB);
}

TEST_F(StartTest, KnownFileThatDoesNotOpen) {
    sitting.registry.values["MostRecentFiles/1"] = (sitting.folder.Path() / "gone.bmr").string();
    EXPECT_EQ(StartNow(), StartOutcome::ShowMenuDB);
    EXPECT_TRUE(sitting.session.DatabasePath.empty());

    sitting.Make();
    {
        test::ScriptedPrompter prompter;
        prompter.Expect(0);  // in use: told in a sentence
        store::Session second{{prompter, sitting.clock, sitting.random, sitting.registry}};
        EXPECT_EQ(Start(second, environment), StartOutcome::ShowMenuDB);
    }
    sitting.Close();
    sitting.prompter.Type(std::nullopt);
    EXPECT_EQ(StartNow(), StartOutcome::ShowMenuDB);
    sitting.prompter.Type("wrong one").Expect(85, Answer::Cancel);
    EXPECT_EQ(StartNow(), StartOutcome::Quit);
}

TEST_F(StartTest, MenuChoices) {
    auto& prompter = sitting.prompter;
    prompter.files = {std::nullopt, std::nullopt, sitting.file, sitting.file, sitting.file};
    EXPECT_EQ(MenuNewDB(sitting.session), StartOutcome::ShowMenuDB);
    EXPECT_EQ(MenuOldDB(sitting.session), StartOutcome::ShowMenuDB);
    prompter.Expect(97);
    EXPECT_EQ(EndStart(sitting.session), StartOutcome::Empty);

    prompter.Type(kPassphrase);
    EXPECT_EQ(MenuNewDB(sitting.session), StartOutcome::Open);
    EXPECT_EQ(EndStart(sitting.session), StartOutcome::Open);
    sitting.Close();
    prompter.Type(kPassphrase);
    EXPECT_EQ(MenuOldDB(sitting.session), StartOutcome::Open);
    sitting.Close();
    prompter.Type(std::nullopt).Expect(97);
    EXPECT_EQ(MenuOldDB(sitting.session), StartOutcome::Quit);
}

}  // namespace
}  // namespace bmr::shell
