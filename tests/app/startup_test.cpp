#include <gtest/gtest.h>

#include <QLabel>

#include "app/frmMDI.h"
#include "support/forms.h"
#include "support/sitting.h"

namespace bmr::app {
namespace {

using test::kPassphrase;

/// A main window over an empty machine: no value in the registry, no folder of ours.
class StartUp : public testing::Test {
  protected:
    StartUp() {
        frame = std::make_unique<frmMDI>(frmMDI::Parts{sitting.session, {}, {documents}});
        QObject::connect(frame.get(), &frmMDI::Ended, [this] { ended = true; });
    }
    ~StartUp() override { sitting.session.ending = true; }
    QString Status() { return test::Named<QLabel>(*frame, "status").text(); }

    test::Sitting sitting;
    std::filesystem::path documents = sitting.folder.Path() / "documents";
    std::unique_ptr<frmMDI> frame;
    bool ended = false;
};

TEST_F(StartUp, AFirstRunMakesTheDefaultFile) {
    sitting.prompter.Expect(160, Answer::No).Type(kPassphrase);
    frame->Start(std::nullopt);
    EXPECT_TRUE(sitting.session.DatabaseOpen);
    EXPECT_TRUE(std::filesystem::exists(documents / "Brindlemere" / "PersonalData.bmr"));
    EXPECT_EQ(frame->windowTitle(), "PersonalData — Brindlemere");
}

TEST_F(StartUp, TheMenuStaysAfterAFailureAndLeavesOnCancel) {
    std::filesystem::create_directories(documents / "Brindlemere");
    sitting.prompter.files = {std::nullopt, std::nullopt};
    test::Visitor visitor;
    visitor.Meet("frmMenuDB", [](QWidget& form) {
        test::Click(form, "cmdNewDB");
        EXPECT_TRUE(form.isVisible());
        test::Click(form, "cmdOldDB");
        EXPECT_TRUE(form.isVisible());
        test::Click(form, "cmdCancel");
    });
    frame->Start(std::nullopt);
    EXPECT_TRUE(ended);
    EXPECT_TRUE(sitting.session.ending);
}

TEST_F(StartUp, AnEndBehindTheMenuAsksNothingMore) {
    std::filesystem::create_directories(documents / "Brindlemere");
    test::Visitor visitor;
    visitor.Meet("frmMenuDB", [this](QWidget& form) {
        frame->QuitProgram();
        form.close();  // as the end of the loops does
    });
    frame->Start(std::nullopt);
    EXPECT_TRUE(ended);
    EXPECT_TRUE(sitting.prompter.shown.empty());
}

TEST_F(StartUp, TheMenuLeadsToAnotherFile) {
    sitting.Make();
    sitting.Close();
    sitting.registry.values.clear();
    std::filesystem::create_directories(documents / "Brindlemere");
    sitting.prompter.files = {sitting.file};
    sitting.prompter.Type(kPassphrase);
    test::Visitor visitor;
    visitor.Meet("frmMenuDB", [](QWidget& form) {
        test::Click(form, "cmdOldDB");
        EXPECT_FALSE(form.isVisible());
    });
    frame->Start(std::nullopt);
    EXPECT_TRUE(sitting.session.DatabaseOpen);
    EXPECT_EQ(Status(), "");
    EXPECT_FALSE(ended);
}

TEST_F(StartUp, AFileThatDoesNotOpenFromTheMenuEndsTheProgram) {
    sitting.Make();
    sitting.Close();
    sitting.registry.values.clear();
    std::filesystem::create_directories(documents / "Brindlemere");
    sitting.prompter.files = {sitting.file};
    sitting.prompter.Type(std::nullopt).Expect(97);
    test::Visitor visitor;
    visitor.Meet("frmMenuDB", [](QWidget& form) { test::Click(form, "cmdOldDB"); });
    frame->Start(std::nullopt);
    EXPECT_TRUE(ended);
}

TEST_F(StartUp, AFileNamedAtTheStartComesBeforeTheLastOne) {
    sitting.Make();
    sitting.Close();
    sitting.registry.values["MostRecentFiles/1"] = "/nowhere/else.bmr";
    sitting.prompter.Type(kPassphrase);
    frame->Start(sitting.file);
    EXPECT_EQ(sitting.session.DatabasePath, sitting.file);
    EXPECT_TRUE(sitting.session.DatabaseOpen);
}

TEST_F(StartUp, OpeningAnotherFileClosesTheFirstEvenWhenCancelled) {
    sitting.Make();
    sitting.Close();
    sitting.prompter.Type(kPassphrase);
    frame->Start(sitting.file);
    sitting.prompter.files = {std::nullopt};
    test::Named<QAction>(*frame, "mnuFileOpen").trigger();
    EXPECT_FALSE(sitting.session.DatabaseOpen);
    EXPECT_EQ(Status(), "   No database open");
    EXPECT_FALSE(ended);
}

TEST_F(StartUp, RepairAndCompactAsksForThePassphraseAgain) {
    sitting.Make();
    sitting.Close();
    sitting.prompter.Type(kPassphrase);
    frame->Start(sitting.file);
    sitting.prompter.Expect(166).Type(kPassphrase);
    test::Named<QAction>(*frame, "mnuDbRepair").trigger();
    EXPECT_TRUE(sitting.session.DatabaseOpen);
    EXPECT_EQ(sitting.session.DatabasePath, sitting.file);
    EXPECT_TRUE(test::Named<QAction>(*frame, "mnuDbRepair").isEnabled());
}

}  // namespace
}  // namespace bmr::app
