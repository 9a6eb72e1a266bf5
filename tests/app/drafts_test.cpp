// What is kept of an editor when the program ends through it, and what is offered after the next login.
#include <QClipboard>
#include <QLineEdit>

#include "app/watch.h"
#include "custody/drafts.h"
#include "custody/users.h"
#include "shell/navigator.h"
#include "support/forms.h"
#include "support/full_disk.h"
#include "support/sitting.h"

namespace bmr::app {
namespace {

using store::Section;
using Strings = std::vector<std::string>;

/// A section whose editor is one line, and a note of what became of it.
class FakePad final : public SectionForm {
  public:
    FakePad(store::Session& session, Strings& saved, QWidget* parent)
        : SectionForm(parent), session_(session), saved_(saved), menu_("&Fake", this) {}
    QMenu* SectionMenu() override { return &menu_; }
    QList<QAction*> ToolActions() override { return {}; }
    void Refresh() override {}
    void SetSearch(const QString&) override {}
    void SelectRecord(std::int32_t) override {}
    bool Editing() const override { return line_ != nullptr; }

    std::vector<custody::Draft> Drafts() const override {
        std::vector<custody::Draft> drafts;
        for (const QString& text : {line_ ? line_->text() : QString(), begun}) {
            if (text.isEmpty()) continue;
            drafts.emplace_back().section = session_.SectionCode;
            drafts.back().isPrivate = isPrivate;
            drafts.back().key = key;
            drafts.back().Put(1, text.toStdString());
        }
        return drafts;
    }
    void OpenDraft(const custody::Draft& draft) override {
        isPrivate = draft.isPrivate;
        key = draft.key;
        Edit(QString::fromStdString(std::string(draft.Text(1))));
        if (!session_.ending) emit DraftSettled();
    }
    void Resume(const std::vector<custody::Draft>& drafts) override {
        begun = QString::fromStdString(std::string(drafts.back().Text(1)));
    }
    void Edit(const QString& text) {
        QDialog editor(this);
        editor.setObjectName("frmFakeEditor");
        QLineEdit line(text, &editor);
        line_ = &line;
        const int result = editor.exec();
        line_ = nullptr;
        if (!session_.ending && result == QDialog::Accepted) saved_.push_back(line.text().toStdString());
    }

    QString begun;  ///< what stands in a line of the section itself
    bool isPrivate = false;
    std::int32_t key = store::kNewRecord;

  private:
    store::Session& session_;
    Strings& saved_;
    QMenu menu_;
    QLineEdit* line_ = nullptr;
};

/// One start of the program over the file of another sitting.
struct Program {
    explicit Program(const std::filesystem::path& file)
        : clipboard(*QApplication::clipboard(), sitting.random, sitting.clock) {
        sitting.file = file;
        SectionTable table;
        for (const std::uint8_t code : {Section::Memo, Section::Todo})
            table[code] = [this](store::Session& session, QWidget* parent) {
                return new FakePad(session, saved, parent);
            };
        frame.emplace(frmMDI::Parts{sitting.session, table, {file.parent_path() / "documents"}});
        watch.emplace(dynamic_cast<kit::GuardedApplication&>(*qApp), sitting.session, *frame, clipboard,
                      events, sitting.clock);
    }
    ~Program() { sitting.session.ending = true; }

    void Start() {
        sitting.prompter.Type(test::kPassphrase);
        frame->Start(sitting.file);
    }
    FakePad& Pad() { return dynamic_cast<FakePad&>(*frame->Form()); }
    /// In the next editor: `work`, then it is stored.
    void InEditor(const std::function<void(QLineEdit&)>& work) {
        visitor.Meet("frmFakeEditor", [work](QWidget& editor) {
            work(*editor.findChild<QLineEdit*>());
            static_cast<QDialog&>(editor).accept();
        });
    }
    /// Runs `work` and what it opens until the program has ended by itself.
    void UntilTheEnd(const std::function<void()>& work) {
        QTimer::singleShot(0, &*frame, work);
        EXPECT_EQ(QCoreApplication::exec(), 0);
        EXPECT_TRUE(sitting.session.cipher.Keystring.empty());
    }
    /// Nobody touches the program for the set time.
    void Idle() {
        sitting.clock.monotonic += 5 * 60'000;
        watch->Idle().timerTimeout_Tick();
    }

    test::Sitting sitting;
    Strings saved;
    test::Visitor visitor;
    kit::ClipboardGuard clipboard;
    kit::SessionEvents events;
    std::optional<frmMDI> frame;
    std::optional<Watch> watch;
};

class FrameDrafts : public testing::Test {
  protected:
    FrameDrafts() {
        home.Make();
        home.Close();
    }
    /// A program that ends by itself while `text` stands in an editor of the memo pad.
    void LeaveBehind(const QString& text, bool isPrivate = false, bool fullDisk = false) {
        const std::size_t before = Kept().size();
        Program program(home.file);
        for (std::size_t i = 0; i < before; ++i)
            program.sitting.prompter.Expect(0, Answer::Cancel);
        program.Start();
        program.frame->optSection_Click(Section::Memo);
        program.Pad().isPrivate = isPrivate;
        program.visitor.Meet("frmFakeEditor", [&](QWidget&) {
            std::optional<test::FullDisk> full;
            if (fullDisk) full.emplace();
            program.Idle();
        });
        program.UntilTheEnd([&] { program.Pad().Edit(text); });
        EXPECT_EQ(program.saved, Strings{});
    }
    /// The texts of the drafts in the closed file.
    Strings Kept() {
        EXPECT_EQ(home.Open(), 0);
        Strings texts;
        for (const auto& draft : custody::LoadDrafts(home.session))
            texts.emplace_back(draft.Text(1));
        home.Close();
        return texts;
    }

    test::Sitting home;
};

TEST_F(FrameDrafts, WhatStoodInTheEditorAtTheIdleEndIsOfferedUntilItIsStored) {
    LeaveBehind("half a sen");
    {
        Program later(home.file);
        later.sitting.prompter.Expect(0, Answer::Cancel);
        later.Start();
        EXPECT_EQ(later.frame->Form(), nullptr) << "nothing was opened for it";
        later.UntilTheEnd([&] { later.frame->QuitProgram(); });
    }
    Program program(home.file);
    program.sitting.prompter.Expect(0, Answer::Yes);
    program.InEditor([&](QLineEdit& line) {
        EXPECT_EQ(line.text(), "half a sen");
        EXPECT_EQ(program.sitting.session.SectionCode, Section::Memo);
        line.setText("half a sentence");
    });
    program.Start();
    EXPECT_EQ(program.saved, Strings{"half a sentence"});
    program.frame->CloseDatabase();
    EXPECT_EQ(Kept(), Strings{});
}

TEST_F(FrameDrafts, AnEndInTheMiddleOfADraftKeepsTheNewerState) {
    LeaveBehind("one");
    LeaveBehind("other");
    Program program(home.file);
    program.sitting.prompter.Expect(0, Answer::Yes);
    program.visitor.Meet("frmFakeEditor", [&](QWidget& editor) {
        editor.findChild<QLineEdit*>()->setText("one and more");
        program.watch->Idle().End();
    });
    program.UntilTheEnd([&] { program.Start(); });
    EXPECT_EQ(Kept(), (Strings{"one and more", "other"}));
}

TEST_F(FrameDrafts, ALineThatWasBegunIsKeptHoweverTheDatabaseCloses) {
    struct Way {
        const char* name;
        std::function<void(Program&)> close;
    };
    const Way ways[] = {
        {"idle end", [](Program& program) { program.Idle(); }},
        {"quit", [](Program& program) { program.frame->QuitProgram(); }},
        {"close", [](Program& program) { test::Named<QAction>(*program.frame, "mnuFileCloseDB").trigger(); }},
    };
    for (const Way& way : ways)
        for (const bool elsewhere : {false, true}) {
            {
                Program program(home.file);
                program.Start();
                program.frame->optSection_Click(Section::Todo);
                program.Pad().begun = "buy";
                if (elsewhere) program.frame->optSection_Click(Section::Memo);
                way.close(program);
                EXPECT_FALSE(program.sitting.session.DatabaseOpen);
            }
            EXPECT_EQ(Kept(), Strings{"buy"}) << way.name << (elsewhere ? " in another section" : "");
            Program program(home.file);
            program.sitting.prompter.Expect(0, Answer::No);
            program.Start();
            program.frame->CloseDatabase();
            EXPECT_EQ(Kept(), Strings{}) << "discarded";
        }
}

TEST_F(FrameDrafts, ALineThatWasBegunIsOfferedOnceTheFileIsRepaired) {
    Program program(home.file);
    program.Start();
    program.frame->optSection_Click(Section::Todo);
    program.Pad().begun = "buy";
    program.frame->optSection_Click(Section::Memo);
    program.sitting.prompter.Type(test::kPassphrase).Expect(166).Expect(0, Answer::Yes);
    program.InEditor([](QLineEdit& line) { EXPECT_EQ(line.text(), "buy"); });
    test::Named<QAction>(*program.frame, "mnuDbRepair").trigger();
    EXPECT_EQ(program.saved, Strings{"buy"});
    program.frame->CloseDatabase();
}

TEST_F(FrameDrafts, ALineThatWasBegunStandsThereAgainWhenItsSectionDoes) {
    Program program(home.file);
    program.Start();
    program.frame->optSection_Click(Section::Todo);
    program.Pad().begun = "buy";
    program.frame->optSection_Click(Section::Memo);
    EXPECT_EQ(program.Pad().begun, "");
    program.frame->optSection_Click(Section::Todo);
    EXPECT_EQ(program.Pad().begun, "buy");
    program.Pad().begun.clear();
    program.frame->CloseDatabase();
    EXPECT_EQ(Kept(), Strings{}) << "it was used";
}

TEST_F(FrameDrafts, ALineBegunBehindAPromptIsKeptOnceThePromptHasGone) {
    Program program(home.file);
    program.Start();
    program.frame->optSection_Click(Section::Todo);
    program.Pad().begun = "buy";
    program.sitting.session.pin.Pin = Secret("2580");
    program.sitting.session.pin.PinApp = static_cast<std::int32_t>(shell::SectionBit(Section::Memo));
    program.sitting.prompter.onSecret = [&] { program.Idle(); };
    program.sitting.prompter.Type(std::nullopt);
    program.UntilTheEnd([&] { program.frame->optSection_Click(Section::Memo); });
    EXPECT_EQ(Kept(), Strings{"buy"});
}

TEST_F(FrameDrafts, AFullDiskDoesNotHoldUpTheEnd) {
    LeaveBehind("one");
    LeaveBehind("two", false, true);
    EXPECT_EQ(Kept(), Strings{"one"});
}

TEST_F(FrameDrafts, NothingIsShownBeforePinAndPassphrase) {
    LeaveBehind("secret plan", true);
    ASSERT_EQ(home.Open(), 0);
    ASSERT_EQ(custody::WritePin(home.session, 1, "2580",
                                static_cast<std::int32_t>(shell::SectionBit(Section::Memo)), false),
              0);
    home.session.ShowPrivate = false;
    home.Close();
    using Typed = std::optional<std::string>;
    const std::vector<std::vector<Typed>> refused{{std::nullopt}, {"2580", std::nullopt}};
    for (const auto& typed : refused) {
        Program program(home.file);
        program.sitting.prompter.Expect(0, Answer::Yes).Type(test::kPassphrase);
        for (const Typed& text : typed)
            program.sitting.prompter.Type(text);
        program.frame->Start(home.file);
        EXPECT_EQ(program.sitting.prompter.shown.front().text.find("plan"), std::string::npos);
        program.frame->CloseDatabase();
    }
    EXPECT_EQ(Kept(), Strings{"secret plan"});
    Program program(home.file);
    program.sitting.prompter.Expect(0, Answer::Yes);
    program.sitting.prompter.Type(test::kPassphrase).Type("2580").Type(test::kPassphrase);
    program.InEditor([](QLineEdit& line) { EXPECT_EQ(line.text(), "secret plan"); });
    program.frame->Start(home.file);
    EXPECT_EQ(program.saved, Strings{"secret plan"});
    program.frame->CloseDatabase();
}

TEST_F(FrameDrafts, ADeletedRecordComesBackAsANewOne) {
    {
        Program program(home.file);
        program.Start();
        program.frame->optSection_Click(Section::Memo);
        program.Pad().key = 4711;
        program.visitor.Meet("frmFakeEditor", [&](QWidget&) { program.Idle(); });
        program.UntilTheEnd([&] { program.Pad().Edit("text"); });
    }
    Program program(home.file);
    program.sitting.prompter.Expect(0, Answer::Yes);
    program.InEditor([&](QLineEdit&) { EXPECT_EQ(program.Pad().key, store::kNewRecord); });
    program.Start();
    EXPECT_NE(program.sitting.prompter.shown.front().text.find("deleted"), std::string::npos);
    program.frame->CloseDatabase();
}

}  // namespace
}  // namespace bmr::app
