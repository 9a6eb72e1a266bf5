// The one map of keys: what the user's page docs/help/keys.md tells is what the windows do, and no two things
// of one window ask for the same key or letter.
#include <gtest/gtest.h>

#include <QDialogButtonBox>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QMenuBar>
#include <QRegularExpression>
#include <QShortcut>
#include <QSignalSpy>
#include <QTabBar>
#include <QTabWidget>
#include <map>
#include <set>

#include "app/frmMDI.h"
#include "app/frmMenuDB.h"
#include "app/helpwindow.h"
#include "calendar/frmCalendar.h"
#include "calendar/frmEnterDate.h"
#include "calendar/frmReach.h"
#include "confidential/frmClassified.h"
#include "kit/prompter.h"
#include "kit/recordlistview.h"
#include "notes/frmNotepad.h"
#include "support/forms.h"
#include "support/sitting.h"
#include "tasks/frmTodo.h"

namespace bmr::app {
namespace {

using store::Section;
using test::Named;
using Keys = std::set<std::string>;

std::string TextOf(const QKeySequence& keys) {
    return keys.toString(QKeySequence::PortableText).toStdString();
}

/// What a cell of the page tells: "Ctrl+1 to Ctrl+3, Del".
Keys KeysOfCell(const QString& cell) {
    Keys keys;
    for (const QString& part : cell.split(", ")) {
        const QStringList ends = part.split(" to ");
        const QString stem = ends.front().chopped(1);
        const int last = ends.back().right(1).toInt();
        for (int digit = ends.front().right(1).toInt(); ends.size() == 2 && digit <= last; ++digit)
            keys.insert(TextOf(QKeySequence(stem + QString::number(digit))));
        if (ends.size() == 1) keys.insert(TextOf(QKeySequence(part)));
    }
    return keys;
}

/// The keys of the page, by the heading above their table.
std::map<std::string, Keys> KeysOfPage() {
    if (!HelpWindow::Available()) throw std::runtime_error("no user guide");
    QFile page(":/help/keys.md");
    if (!page.open(QFile::ReadOnly)) throw std::runtime_error("no page of keys");
    std::map<std::string, Keys> told;
    std::string heading;
    static const QRegularExpression kRow("^\\| ([^|]*[^| ]) +\\| [^|]+\\|$");
    for (const QString& line : QString::fromUtf8(page.readAll()).split('\n')) {
        if (line.startsWith("## ")) heading = line.mid(3).toStdString();
        const auto row = kRow.match(line);
        if (row.hasMatch() && row.captured(1) != "Key") told[heading].merge(KeysOfCell(row.captured(1)));
    }
    return told;
}

/// What asks for keys in a window: an entry of a menu or a shortcut, by its name or text.
struct Asker {
    std::string name;
    const QWidget* place = nullptr;  ///< the only widget in which the keys count; null for the whole window
};

std::multimap<std::string, Asker> AskersIn(const QWidget& window) {
    std::multimap<std::string, Asker> askers;
    for (const QAction* action : window.findChildren<QAction*>()) {
        const QString name = action->objectName().isEmpty() ? action->text() : action->objectName();
        for (const QKeySequence& keys : action->shortcuts()) {
            if (keys.isEmpty() || action->statusTip() == "Not in this version yet") continue;
            EXPECT_FALSE(action->associatedObjects().isEmpty()) << name.toStdString() << " hangs nowhere";
            askers.insert({TextOf(keys), {name.toStdString()}});
        }
    }
    for (const QShortcut* shortcut : window.findChildren<QShortcut*>()) {
        auto* at = qobject_cast<QWidget*>(shortcut->parent());
        const bool narrow = shortcut->context() == Qt::WidgetShortcut;
        askers.insert({TextOf(shortcut->key()),
                       {"shortcut of " + at->objectName().toStdString(), narrow ? at : nullptr}});
    }
    return askers;
}

/// Keys with which every text field moves, selects and deletes. A window must not take them from it.
std::map<std::string, QKeySequence::StandardKey> KeysOfTextFields() {
    std::map<std::string, QKeySequence::StandardKey> keys;
    using enum QKeySequence::StandardKey;
    for (const auto key : {Undo,
                           Redo,
                           Cut,
                           Copy,
                           Paste,
                           SelectAll,
                           Delete,
                           Backspace,
                           DeleteStartOfWord,
                           DeleteEndOfWord,
                           DeleteEndOfLine,
                           DeleteCompleteLine,
                           MoveToNextChar,
                           MoveToPreviousChar,
                           MoveToNextWord,
                           MoveToPreviousWord,
                           MoveToNextLine,
                           MoveToPreviousLine,
                           MoveToStartOfLine,
                           MoveToEndOfLine,
                           MoveToStartOfDocument,
                           MoveToEndOfDocument,
                           MoveToNextPage,
                           MoveToPreviousPage,
                           SelectNextChar,
                           SelectPreviousChar,
                           SelectNextWord,
                           SelectPreviousWord,
                           SelectStartOfLine,
                           SelectEndOfLine,
                           SelectStartOfDocument,
                           SelectEndOfDocument,
                           InsertParagraphSeparator,
                           InsertLineSeparator})
        for (const QKeySequence& binding : QKeySequence::keyBindings(key))
            keys.insert({TextOf(binding), key});
    return keys;
}

void ExpectOneAskerAKey(const QWidget& window) {
    const std::set<std::string> handedOn{"mnuEditCut",       "mnuEditCopy", "mnuEditPaste",
                                         "mnuEditSelectAll", "mnuEditUndo", "mnuEditRedo"};
    const auto fields = KeysOfTextFields();
    const auto askers = AskersIn(window);
    for (auto one = askers.begin(); one != askers.end(); ++one) {
        if (!one->second.place && !handedOn.contains(one->second.name))
            EXPECT_FALSE(fields.contains(one->first))
                << one->second.name << " takes " << one->first << " from the text fields";
        for (auto other = std::next(one); other != askers.upper_bound(one->first); ++other) {
            const QWidget* here = one->second.place;
            const QWidget* there = other->second.place;
            EXPECT_TRUE(here && there && here != there)
                << one->first << " is asked for by " << one->second.name << " and " << other->second.name;
        }
    }
}

/// Who has which letter with Alt.
class Letters {
  public:
    explicit Letters(std::string where) : where_(std::move(where)) {}
    void Add(const QString& text) {
        const std::string letter = TextOf(QKeySequence::mnemonic(text));
        if (letter.empty()) return;
        const auto [other, fresh] = taken_.insert({letter, text.toStdString()});
        EXPECT_TRUE(fresh) << where_ << ": " << letter << " is asked for by \"" << other->second
                           << "\" and \"" << text.toStdString() << '"';
    }

  private:
    std::string where_;
    std::map<std::string, std::string> taken_;
};

void AddControls(Letters& letters, const QWidget& window) {
    for (const auto* control : window.findChildren<QWidget*>()) {
        if (!control->isVisibleTo(&window) || control->window() != &window) continue;
        if (const auto* button = qobject_cast<const QAbstractButton*>(control)) letters.Add(button->text());
        if (const auto* group = qobject_cast<const QGroupBox*>(control)) letters.Add(group->title());
        if (const auto* label = qobject_cast<const QLabel*>(control); label && label->buddy())
            letters.Add(label->text());
        if (const auto* tabs = qobject_cast<const QTabBar*>(control))
            for (int i = 0; i < tabs->count(); ++i)
                letters.Add(tabs->tabText(i));
        if (const auto* bar = qobject_cast<const QMenuBar*>(control))
            for (const QAction* menu : bar->actions())
                if (menu->isVisible()) letters.Add(menu->text());
    }
}

void ExpectOwnLetters(QWidget& window) {
    const std::string name = window.objectName().toStdString();
    auto* tabs = window.findChild<QTabWidget*>();
    for (int page = 0; page < (tabs ? tabs->count() : 1); ++page) {
        if (tabs) tabs->setCurrentIndex(page);
        Letters letters(name + (tabs ? ", page " + tabs->tabText(page).toStdString() : ""));
        AddControls(letters, window);
    }
    for (const QMenu* menu : window.findChildren<QMenu*>()) {
        Letters letters(name + ", menu " + menu->title().toStdString());
        for (const QAction* entry : menu->actions())
            if (entry->isVisible() && !entry->isSeparator()) letters.Add(entry->text());
    }
}

/// The whole judgement on a window: its keys and letters, and that its keys are those of the page's headings.
void Judge(QWidget& window, const std::vector<std::string>& headings = {}) {
    const std::string name = window.objectName().toStdString();
    SCOPED_TRACE(name);
    ExpectOneAskerAKey(window);
    ExpectOwnLetters(window);
    // What a screen of 1600 x 1000 has at twice the size, without the window's frame.
    const QSize least = window.minimumSizeHint().expandedTo(window.minimumSize());
    EXPECT_LE(least.width(), 792);
    EXPECT_LE(least.height(), 464);
    for (const auto* foot : window.findChildren<QDialogButtonBox*>())
        for (const QAbstractButton* button : foot->buttons())
            EXPECT_FALSE(QKeySequence::mnemonic(button->text()).isEmpty()) << button->text().toStdString();
    auto page = KeysOfPage();
    Keys told;
    for (const std::string& heading : headings) {
        EXPECT_FALSE(page[heading].empty()) << "the page has no keys below \"" << heading << '"';
        told.merge(page[heading]);
    }
    Keys asked;
    for (const auto& [keys, asker] : AskersIn(window))
        asked.insert(keys);
    for (const std::string& keys : asked)
        EXPECT_TRUE(told.contains(keys)) << keys << " does something, and the page is silent";
    for (const std::string& keys : told)
        EXPECT_TRUE(asked.contains(keys)) << keys << " stands on the page and does nothing";
}

void JudgeDialog(QWidget& window, const std::vector<std::string>& headings = {}) {
    Judge(window, headings);
    dynamic_cast<QDialog&>(window).reject();
}

class Shortcuts : public testing::Test {
  protected:
    Shortcuts() {
        sitting.Make();
        sitting.Close();
        SectionTable sections;
        sections[Section::Calendar] = [](store::Session& session, QWidget* parent) {
            return new calendar::frmCalendar(session, {}, parent);
        };
        sections[Section::Todo] = [](store::Session& session, QWidget* parent) {
            return new tasks::frmTodo(session, parent);
        };
        sections[Section::Memo] = [](store::Session& session, QWidget* parent) {
            return new notes::frmNotepad(session, parent);
        };
        sections[Section::Confidential] = [](store::Session& session, QWidget* parent) {
            return new confidential::frmClassified(
                session, [](const QString&) {}, parent);
        };
        frame = std::make_unique<frmMDI>(
            frmMDI::Parts{sitting.session, std::move(sections), {sitting.folder.Path() / "documents"}});
        frame->show();
    }
    ~Shortcuts() override { sitting.session.ending = true; }
    void Open(std::uint8_t section = Section::None) {
        sitting.prompter.Type(test::kPassphrase);
        frame->Start(sitting.file);
        ASSERT_TRUE(QTest::qWaitForWindowActive(frame.get()));
        frame->optSection_Click(section);
    }
    void Trigger(const char* action) { Named<QAction>(*frame, action).trigger(); }

    test::Sitting sitting;
    std::unique_ptr<frmMDI> frame;
    test::Visitor visitor;
};

TEST_F(Shortcuts, TheMainWindowWithEachSection) {
    Judge(*frame, {"In the main window"});
    Open();
    Judge(*frame, {"In the main window"});
    const std::pair<std::uint8_t, std::vector<std::string>> sections[] = {
        {Section::Calendar, {"In the main window", "In every section", "Calendar"}},
        {Section::Todo, {"In the main window", "In every section", "Tasks"}},
        {Section::Memo, {"In the main window", "In every section"}},
        {Section::Confidential, {"In the main window", "In every section", "Confidential"}}};
    for (const auto& [code, headings] : sections) {
        frame->optSection_Click(code);
        Judge(*frame, headings);
    }
}

TEST_F(Shortcuts, TheEditorsAndWhatTheyOpen) {
    Open(Section::Todo);
    visitor.Meet("frmEditTodo", [](QWidget& editor) { JudgeDialog(editor, {"In an editor"}); });
    Trigger("mnuTodoNew");
    visitor.Meet("frmEditCategories", [](QWidget& editor) { JudgeDialog(editor, {"Categories"}); });
    test::Click(*frame, "cmdEditCat");

    frame->optSection_Click(Section::Calendar);
    visitor.Meet("frmAppointment", [](QWidget& editor) { JudgeDialog(editor, {"In an editor"}); });
    Trigger("mnuNewAppointment");
    visitor.Meet("frmEnterDate", [](QWidget& dialog) { JudgeDialog(dialog); });
    Trigger("mnuArchive");
    calendar::frmReach reach("Move", "?", {true, true, true, {}});
    reach.show();
    Judge(reach);

    frame->optSection_Click(Section::Memo);
    sitting.prompter.inputs = {"Garden"};
    sitting.prompter.Expect(20, Answer::Yes);
    visitor.Meet("frmEditNotepad", [](QWidget& editor) { JudgeDialog(editor, {"In an editor"}); });
    Trigger("mnuMemoAdd");

    frame->optSection_Click(Section::Confidential);
    for (int kind = 1; kind <= 16; ++kind) {
        Named<QAbstractButton>(*frame, ("cat" + std::to_string(kind)).c_str()).click();
        const bool hasDice = kind == 1;
        visitor.Meet("frmEditConfidential", [hasDice](QWidget& editor) {
            if (hasDice) Named<QAbstractButton>(editor, "dice3").click();
            JudgeDialog(editor, {"In an editor"});
        });
        if (hasDice) visitor.Meet("frmGenerate", [](QWidget& dice) { JudgeDialog(dice); });
        Trigger("mnuConfidentialAdd");
    }
}

TEST_F(Shortcuts, TheDialogsOfTheProgram) {
    Open();
    visitor.Meet("frmOptions", [](QWidget& form) {
        Judge(form, {"Preferences"});
        Named<QAbstractButton>(form, "cmdPIN").click();  // more controls come up
        JudgeDialog(form, {"Preferences"});
    });
    Trigger("mnuToolsPreferences");
    visitor.Meet("frmAbout", [](QWidget& box) { JudgeDialog(box); });
    Trigger("mnuHelpAbout");
    Trigger("mnuHelpContents");
    auto* guide = frame->findChild<QWidget*>("frmHelp");
    ASSERT_TRUE(guide);
    Judge(*guide, {"This guide"});
    guide->close();

    frmMenuDB menu([] { return true; }, [] { return true; }, true);
    menu.show();
    Judge(menu);
}

TEST_F(Shortcuts, TheBoxesAndPrompts) {
    kit::QtPrompter prompter;
    for (const Buttons buttons :
         {Buttons::Ok, Buttons::OkCancel, Buttons::YesNo, Buttons::YesNoCancel, Buttons::RetryCancel}) {
        visitor.Meet("boxMsg", [](QWidget& box) { JudgeDialog(box); });
        prompter.Ask({.buttons = buttons});
    }
    visitor.Meet("frmInputbox", [](QWidget& box) { JudgeDialog(box); });
    prompter.InputBox("New category", "Name", "");
    for (const bool choosing : {false, true}) {
        visitor.Meet("frmPW", [](QWidget& prompt) { JudgeDialog(prompt); });
        Secret typed;
        prompter.AskSecret({"Database", "Passphrase", choosing, choosing, false}, typed);
    }
}

TEST(ListKeys, AreThoseOfThePage) {
    kit::RecordListView list;
    QSignalSpy edit(&list, &kit::RecordListView::EditWanted);
    QSignalSpy remove(&list, &kit::RecordListView::DeleteWanted);
    QSignalSpy tick(&list, &kit::RecordListView::TickWanted);
    const auto wanted = [&] { return edit.size() + remove.size() + tick.size(); };
    Keys done;
    const auto press = [&](int first, int last) {
        for (int key = first; key <= last; ++key) {
            const auto before = wanted();
            QTest::sendKeyEvent(QTest::Click, &list, static_cast<Qt::Key>(key), QString(), {});
            if (wanted() > before) done.insert(TextOf(QKeySequence(key)));
        }
    };
    press(Qt::Key_Space, Qt::Key_AsciiTilde);
    press(Qt::Key_Escape, Qt::Key_F35);
    EXPECT_EQ(done, KeysOfPage()["In a list"]);
}

}  // namespace
}  // namespace bmr::app
