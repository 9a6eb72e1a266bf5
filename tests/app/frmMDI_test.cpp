#include "app/frmMDI.h"

#include <gtest/gtest.h>

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QScreen>
#include <QTextBrowser>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <functional>

#include "app/sectioncolumn.h"
#include "app/windowmemory.h"
#include "shell/navigator.h"
#include "support/forms.h"
#include "support/sitting.h"

namespace bmr::app {
namespace {

using store::Section;
using test::kPassphrase;

/// What the forms of a test tell about themselves.
struct Journal {
    std::vector<std::string> lines;
    std::function<void()> onRefresh;
};

/// A section's screen with nothing but what the frame asks for. Its "Edit" opens a dialog and then, as every
/// section does, goes on with its own members.
class FakeSection final : public SectionForm {
  public:
    FakeSection(std::uint8_t code, Journal& journal, QWidget* parent)
        : SectionForm(parent), code_(code), journal_(journal), menu_("&Fake", this), edit_("Edit", this) {
        setFocusPolicy(Qt::StrongFocus);
        setAutoFillBackground(true);
        setPalette(QPalette(Qt::red));
        menu_.addAction(&edit_);
        connect(&edit_, &QAction::triggered, this, [this] { Edit(); });
        Tell("open");
    }
    ~FakeSection() override { Tell("close"); }
    QMenu* SectionMenu() override { return &menu_; }
    QList<QAction*> ToolActions() override {
        return code_ == Section::Todo ? QList<QAction*>{&edit_, nullptr, &wide_} : QList<QAction*>{&edit_};
    }
    QString HelpPage() const override { return code_ == Section::Todo ? "tasks" : "not there"; }
    void Refresh() override {
        Tell("refresh");
        if (journal_.onRefresh) journal_.onRefresh();
    }
    void SetSearch(const QString& text) override { Tell("search " + text.toStdString()); }
    void SelectRecord(std::int32_t) override {}

    void Edit() {
        QDialog editor(this);
        editor.setObjectName("frmFakeEditor");
        const int result = editor.exec();
        Tell(result == QDialog::Accepted ? "saved" : "cancelled");
    }

  private:
    void Tell(const std::string& what) { journal_.lines.push_back(what + " " + std::to_string(code_)); }

    std::uint8_t code_;
    Journal& journal_;
    QMenu menu_;
    QAction edit_;
    QAction wide_{"Something that takes a lot of room", this};
};

class MainWindow : public testing::Test {
  protected:
    MainWindow() {
        sitting.Make();
        SectionTable table;
        for (const std::uint8_t code : {Section::Address, Section::Diary, Section::Todo})
            table[code] = [this, code](store::Session&, QWidget* parent) {
                return new FakeSection(code, journal, parent);
            };
        sitting.Close();
        sections = std::move(table);
        Build();
    }
    void Build() {
        frame = std::make_unique<frmMDI>(
            frmMDI::Parts{sitting.session, sections, {sitting.folder.Path() / "documents"}});
        QObject::connect(frame.get(), &frmMDI::Ended, [this] { ++ended; });
    }
    ~MainWindow() override { sitting.session.ending = true; }

    void Start() {
        sitting.prompter.Type(kPassphrase);
        frame->Start(sitting.file);
        ASSERT_TRUE(sitting.session.DatabaseOpen);
        frame->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(frame.get()));
    }
    QAction& Action(const char* name) { return test::Named<QAction>(*frame, name); }
    QString Text(const char* label) { return test::Named<QLabel>(*frame, label).text(); }
    SectionButton& Button(int code) {
        return test::Named<SectionButton>(*frame, QString("optSection%1").arg(code).toLatin1());
    }
    std::vector<std::string> Lines() { return std::exchange(journal.lines, {}); }
    using Strings = std::vector<std::string>;

    Journal journal;
    test::Sitting sitting;
    SectionTable sections;
    std::unique_ptr<frmMDI> frame;
    int ended = 0;
};

TEST_F(MainWindow, TellsOfPreferencesThatCannotBeRead) {
    sitting.Edit("fSec=5", [](engine::Recordset& row) { row.SetField("fEtx", Bytes(64, 'x')); });
    sitting.prompter.Expect(0);
    Start();
    EXPECT_NE(sitting.prompter.shown.back().text.find("preferences in this file"), std::string::npos);
    frame->CloseDatabase();
    EXPECT_EQ(sitting.Rows(" WHERE fSec=5").front().at("fEtx"), Value(Bytes(64, 'x')));
}

TEST_F(MainWindow, StandsEmptyUntilADatabaseIsOpen) {
    EXPECT_EQ(Text("status"), "   No database open");
    for (const char* name : {"mnuFileNew", "mnuFileOpen", "mnuFileQuit", "mnuHelpAbout"})
        EXPECT_TRUE(Action(name).isEnabled()) << name;
    const auto needDatabase = {"mnuFileCloseDB", "mnuViewShowPrivate", "mnuToolsPassphrase", "mnuDbRepair",
                               "mnuToolsPreferences"};
    for (const char* name : needDatabase)
        EXPECT_FALSE(Action(name).isEnabled()) << name;
    const auto menuEnabled = [this](const char* name) {
        return test::Named<QMenu>(*frame, name).menuAction()->isEnabled();
    };
    for (const char* name : {"mnuEdit", "mnuView", "mnuTools"})
        EXPECT_FALSE(menuEnabled(name)) << name;
    EXPECT_TRUE(menuEnabled("mnuFile"));
    EXPECT_TRUE(menuEnabled("mnuHelp"));
    EXPECT_FALSE(Button(Section::Todo).isEnabled());

    Start();
    for (const char* name : needDatabase)
        EXPECT_TRUE(Action(name).isEnabled()) << name;
    EXPECT_FALSE(Action("mnuFileCloseSection").isEnabled()) << "no section is open";
    EXPECT_FALSE(test::Named<QToolBar>(*frame, "Toolbar1").isEnabled());
    EXPECT_TRUE(Button(Section::Todo).isEnabled());
    EXPECT_FALSE(Button(Section::Calendar).isEnabled()) << "not in the program";
    EXPECT_FALSE(Action("mnuViewSection12").isEnabled());

    frame->optSection_Click(Section::Todo);
    EXPECT_TRUE(Action("mnuFileCloseSection").isEnabled());
    EXPECT_TRUE(test::Named<QToolBar>(*frame, "Toolbar1").isEnabled());
    frame->HideShow(false);
    EXPECT_FALSE(test::Named<QToolBar>(*frame, "Toolbar1").isEnabled());
    EXPECT_FALSE(menuEnabled("mnuTools"));
    EXPECT_TRUE(menuEnabled("mnuFile"));
}

TEST_F(MainWindow, CoversTheSectionBeforeItsListsAreBuiltWithoutThePrivateRecords) {
    Start();
    frame->optSection_Click(Section::Todo);
    sitting.session.ShowPrivate = true;
    QCoreApplication::processEvents();
    const auto shown = [this] {
        const QPoint middle = frame->Form()->mapTo(frame.get(), frame->Form()->rect().center());
        return frame->screen()->grabWindow(frame->winId()).toImage().pixelColor(middle);
    };
    const QColor form = shown();
    ASSERT_EQ(form, frame->Form()->palette().color(QPalette::Window));
    bool looked = false;
    journal.onRefresh = [&] {
        looked = true;
        EXPECT_NE(shown(), form) << "what was shown still stands on the screen";
    };
    Action("mnuViewShowPrivate").trigger();
    EXPECT_TRUE(looked);
    EXPECT_FALSE(sitting.session.ShowPrivate);
    QCoreApplication::processEvents();
    EXPECT_EQ(shown(), form);
}

TEST_F(MainWindow, ShowsOneSectionAtATime) {
    Start();
    QTest::mouseClick(&Button(Section::Todo), Qt::LeftButton);
    EXPECT_EQ(Lines(), Strings{"open 15"});
    EXPECT_TRUE(Button(Section::Todo).isChecked());
    EXPECT_EQ(sitting.session.SectionCode, Section::Todo);
    const QList<QAction*> bar = frame->menuBar()->actions();
    EXPECT_EQ(bar.indexOf(frame->Form()->SectionMenu()->menuAction()),
              bar.indexOf(test::Named<QMenu>(*frame, "mnuTools").menuAction()) - 1);
    emit frame->Form()->StatusChanged("3 tasks");
    EXPECT_EQ(Text("status"), "3 tasks");

    QTest::mouseClick(&Button(Section::Todo), Qt::LeftButton);
    EXPECT_EQ(Lines(), Strings{}) << "the open section is not opened again";
    QTest::keyClick(frame.get(), Qt::Key_1, Qt::ControlModifier);
    EXPECT_EQ(Lines(), (Strings{"close 15", "open 11"}));
    EXPECT_TRUE(Button(Section::Address).isChecked());
    EXPECT_EQ(Text("status"), "");

    QTest::keyClick(frame.get(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_EQ(Lines(), Strings{"close 11"});
    EXPECT_EQ(sitting.session.SectionCode, Section::None);
    EXPECT_FALSE(Button(Section::Address).isChecked());
    EXPECT_EQ(frame->menuBar()->actions().size(), bar.size() - 1) << "the section took its menu along";
}

TEST_F(MainWindow, ARefusedPinKeepsTheOpenSection) {
    Start();
    frame->optSection_Click(Section::Address);
    Lines();
    sitting.session.pin.Pin = Secret("2580");
    sitting.session.pin.PinApp = static_cast<std::int32_t>(shell::SectionBit(Section::Todo));
    SectionForm* before = frame->Form();

    for (const bool cancelled : {true, false}) {
        if (cancelled)
            sitting.prompter.Type(std::nullopt);
        else
            sitting.prompter.Type("1111").Expect(125);
        QTest::mouseClick(&Button(Section::Todo), Qt::LeftButton);
        EXPECT_EQ(frame->Form(), before);
        EXPECT_TRUE(Button(Section::Address).isChecked());
        EXPECT_FALSE(Button(Section::Todo).isChecked());
        EXPECT_TRUE(Button(Section::Todo).Locked());
        EXPECT_TRUE(Action("mnuFileCloseSection").isEnabled()) << "the section that stays can be worked in";
    }
    EXPECT_EQ(Lines(), Strings{});

    sitting.prompter.Type("2580");
    QTest::mouseClick(&Button(Section::Todo), Qt::LeftButton);
    EXPECT_EQ(Lines(), (Strings{"close 11", "open 15"}));
    EXPECT_FALSE(Button(Section::Todo).Locked());
}

TEST_F(MainWindow, GoesToTheSectionOfTheSettings) {
    Start();
    sitting.session.settings.StartScreen = 1;
    sitting.session.settings.StartSection = Section::Todo;
    Action("mnuFileCloseDB").trigger();
    EXPECT_EQ(Text("status"), "   No database open");
    EXPECT_EQ(Text("comment"), "");
    Start();
    EXPECT_EQ(Lines(), Strings{"open 15"});
    EXPECT_TRUE(Button(Section::Todo).isChecked());
}

TEST_F(MainWindow, PrivateRecordsNeedThePassphraseToShowAgain) {
    Start();
    frame->optSection_Click(Section::Todo);
    Lines();
    ASSERT_TRUE(sitting.session.ShowPrivate);
    EXPECT_EQ(Action("mnuViewShowPrivate").text(), "Hide &Private Records");
    test::Click(*frame, "cmdShowPrivate");
    EXPECT_FALSE(sitting.session.ShowPrivate);
    EXPECT_EQ(Action("mnuViewShowPrivate").text(), "Show &Private Records");
    EXPECT_EQ(Lines(), Strings{"refresh 15"});

    sitting.prompter.Type("wrong passphrase").Expect(85);
    Action("mnuViewShowPrivate").trigger();
    EXPECT_FALSE(sitting.session.ShowPrivate);
    EXPECT_EQ(Lines(), Strings{});
    sitting.prompter.Type(kPassphrase);
    Action("mnuViewShowPrivate").trigger();
    EXPECT_TRUE(sitting.session.ShowPrivate);
    EXPECT_EQ(Lines(), Strings{"refresh 15"});
}

TEST_F(MainWindow, PreferencesShowInTheWindow) {
    Start();
    frame->optSection_Click(Section::Todo);
    Lines();
    int stored = 0;
    QObject::connect(frame.get(), &frmMDI::PreferencesStored, [&] { ++stored; });
    {
        test::Visitor visitor;
        visitor.Meet("frmOptions", [&](QWidget& form) {
            test::Named<QAbstractButton>(form, "chkShowPrivate").click();
            EXPECT_EQ(Action("mnuViewShowPrivate").text(), "Show &Private Records") << "at once";
            EXPECT_EQ(Lines(), Strings{"refresh 15"});
            test::Named<QAbstractButton>(form, "PinApp0").click();
            EXPECT_FALSE(Button(Section::Address).Locked());
            test::Named<QAbstractButton>(form, "cmdOK").click();
        });
        QTest::keyClick(frame.get(), Qt::Key_Comma, Qt::ControlModifier);
    }
    EXPECT_EQ(stored, 1);
    EXPECT_TRUE(Button(Section::Address).Locked());
    EXPECT_EQ(Lines(), Strings{"refresh 15"}) << "what the section shows may follow other preferences, too";
}

TEST_F(MainWindow, SearchesWhenTheTypingRests) {
    Start();
    frame->optSection_Click(Section::Todo);
    Lines();
    auto& field = test::Named<QLineEdit>(*frame, "txtSearch");
    ASSERT_TRUE(QTest::qWaitFor([&] { return field.isVisible(); }));
    QTest::keyClick(frame.get(), Qt::Key_F, Qt::ControlModifier);
    ASSERT_TRUE(field.hasFocus());
    test::TypeText(field, "milk ");
    EXPECT_EQ(Lines(), Strings{}) << "not at each letter";
    ASSERT_TRUE(QTest::qWaitFor([&] { return !journal.lines.empty(); }, 2000));
    EXPECT_EQ(Lines(), Strings{"search milk 15"});
    QTest::keyClick(&field, Qt::Key_Escape);
    EXPECT_EQ(Lines(), Strings{"search  15"});
    EXPECT_TRUE(frame->Form()->hasFocus());
}

TEST_F(MainWindow, TheSearchFieldKeepsItsPlaceAndAnEndedSearchEmptiesIt) {
    frame->resize(1180, 760);
    Start();
    auto& field = test::Named<QLineEdit>(*frame, "txtSearch");
    const auto place = [&](int code) {
        frame->optSection_Click(code);
        EXPECT_TRUE(QTest::qWaitFor([&] { return field.isVisible() && field.x() > 100; }));
        return field.geometry();
    };
    EXPECT_EQ(place(Section::Todo), place(Section::Address));
    auto* clear = field.findChild<QAction*>("_q_qlineeditclearaction");
    ASSERT_TRUE(clear);
    const auto offers = [&](bool wanted) {
        for (const auto* button : field.findChildren<QToolButton*>())
            if (button->defaultAction() == clear)
                return QTest::qWaitFor([&] { return button->property("opacity").toReal() == wanted; }, 1000);
        return false;
    };
    field.setText("milk");
    EXPECT_TRUE(offers(true));
    place(Section::Todo);
    EXPECT_EQ(field.text(), "");
    EXPECT_TRUE(offers(false)) << "an empty field has nothing to clear";
    field.setText("milk");
    emit frame->Form()->SearchEnded();
    EXPECT_EQ(field.text(), "");
    EXPECT_TRUE(offers(false));
    Lines();
    QTest::qWait(300);
    EXPECT_EQ(Lines(), Strings{}) << "the list shows all already";
}

TEST_F(MainWindow, ComesUpAsItWasLeft) {
    const QSize first = frame->size();
    frame->show();
    frame->resize(641, 480);
    frame->move(30, 40);
    Start();
    Action("mnuViewToolbarText").setChecked(false);
    Action("mnuViewThemeDark").trigger();
    frame->QuitProgram();
    auto& kept = sitting.registry.values;
    EXPECT_EQ(kept["Window/Folded"], "0") << "it is the narrow window that folds";
    EXPECT_EQ(RememberedTheme(sitting.registry), "dark");

    sitting.session.ending = false;
    Build();
    EXPECT_EQ(frame->size(), QSize(641, 480));
    EXPECT_FALSE(Action("mnuViewToolbarText").isChecked());
    frame->resize(1000, 480);
    frame->show();
    EXPECT_FALSE(Action("mnuViewFold").isChecked());
    Action("mnuViewFold").setChecked(true);
    frame->QuitProgram();
    sitting.session.ending = false;
    Build();
    EXPECT_TRUE(Action("mnuViewFold").isChecked());

    for (const char* name : {"Window/Place", "Window/Folded", "Window/ToolbarText"})
        kept[name] = "AdnQywADnonsense";
    Build();
    EXPECT_EQ(frame->size(), first) << "what is no place counts as absent";
    EXPECT_FALSE(Action("mnuViewFold").isChecked());
    EXPECT_TRUE(Action("mnuViewToolbarText").isChecked());
}

TEST_F(MainWindow, HelpOpensAtThePageOfTheSection) {
    Start();
    const auto page = [&](int code) {
        frame->optSection_Click(code);
        Action("mnuHelpContents").trigger();
        auto& guide = test::Named<QWidget>(*frame, "frmHelp");
        const QString shown = guide.findChild<QTextBrowser*>()->source().toString();
        guide.close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return shown;
    };
    EXPECT_EQ(page(Section::Todo), "qrc:/help/tasks.md");
    EXPECT_EQ(page(Section::Address), "qrc:/help/index.md");
    EXPECT_EQ(page(Section::None), "qrc:/help/index.md");
}

TEST_F(MainWindow, ClosesTheSectionThenTheFileThenEnds) {
    Start();
    frame->optSection_Click(Section::Todo);
    Lines();
    QObject::connect(frame.get(), &frmMDI::Quitting, [this] {
        journal.lines.push_back(sitting.session.DatabaseOpen ? "quitting" : "too late");
    });
    QObject::connect(frame.get(), &frmMDI::DatabaseClosed, [this] {
        const bool wiped = !sitting.session.ProgramDb && sitting.session.cipher.Keystring.empty();
        journal.lines.push_back(wiped ? "closed" : "keys left");
    });
    QObject::connect(frame.get(), &frmMDI::Ended, [this] { journal.lines.push_back("ended"); });
    frame->close();
    EXPECT_EQ(Lines(), (Strings{"quitting", "close 15", "closed", "ended"}));
    EXPECT_TRUE(sitting.session.ending);
    frame->optSection_Click(Section::Todo);
    EXPECT_EQ(Lines(), Strings{}) << "nothing opens any more";
}

TEST_F(MainWindow, EndsThroughAnOpenEditor) {
    Start();
    frame->optSection_Click(Section::Todo);
    Lines();
    QTimer::singleShot(0, frame.get(), [this] {
        frame->QuitProgram();
        EXPECT_TRUE(sitting.session.cipher.Keystring.empty()) << "the keys go before the dialogs";
        QApplication::activeModalWidget()->close();  // as the end of the loops does
    });
    static_cast<FakeSection*>(frame->Form())->Edit();
    EXPECT_EQ(Lines(), Strings{"cancelled 15"}) << "the form lives until its own code has returned";
    EXPECT_EQ(ended, 1);
    frame.reset();
    EXPECT_EQ(Lines(), Strings{"close 15"});
}

}  // namespace
}  // namespace bmr::app
