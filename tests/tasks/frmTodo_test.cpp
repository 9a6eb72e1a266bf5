#include "tasks/frmTodo.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSignalSpy>

#include "kit/dateedit.h"
#include "kit/emptystate.h"
#include "kit/recordlistview.h"
#include "support/forms.h"
#include "support/store.h"
#include "tasks/todomodel.h"

namespace bmr::tasks {
namespace {

using kit::RecordListView;
using test::Click;
using test::Named;
using test::Visitor;

struct FormTodo : testing::Test {
    FormTodo() { Open(); }
    void Open() {
        form.reset();  // stores what it keeps before the next one reads it
        form = std::make_unique<frmTodo>(db.session);
        form->resize(900, 600);
        form->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(form.get()));
        list = &Named<RecordListView>(*form, "TodoList");
        model = form->findChild<TodoModel*>();
    }
    std::int32_t Add(const Bytes& text, const std::function<void(Task&)>& change = {}) {
        Task task = ClearRecord(store::Category::All);
        task.task = text;
        if (change) change(task);
        EXPECT_EQ(WriteRecord(db.session, task).error, 0);
        return task.key;
    }
    QString Cell(int row, int column) { return model->index(row, column).data().toString(); }
    QStringList Shown() {
        QStringList all;
        for (int row = 0; row < model->rowCount(); ++row)
            all << Cell(row, SubItem::Task);
        return all;
    }
    void Press(Qt::Key key) {
        QTest::keyClick(list, key);
        QCoreApplication::processEvents();
    }
    void TickByMouse(int row) {
        const QRect cell = list->visualRect(model->index(row, 0));
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, QPoint(cell.left() + 12, cell.center().y()));
        QCoreApplication::processEvents();
    }
    QAction& Entry(const char* name) { return Named<QAction>(*form, name); }
    Task Stored(std::int32_t key) { return LoadSelected(db.session, key).value(); }
    QString Sentence() {
        auto& empty = Named<kit::EmptyState>(*form, "emptyState");
        return empty.isVisible() ? empty.Sentence() : QString();
    }
    void ChooseCategory(std::int32_t number) {
        auto& combo = Named<QComboBox>(*form, "cboCategories");
        combo.setCurrentIndex(combo.findData(number));
        emit combo.activated(combo.currentIndex());
    }

    test::TempStore db;
    Day today = db.clock.Today();
    std::unique_ptr<frmTodo> form;
    RecordListView* list = nullptr;
    TodoModel* model = nullptr;
};

TEST_F(FormTodo, ADayOfUse) {
    db.session.ShowPrivate = true;
    Visitor visitor;
    EXPECT_EQ(Sentence(), "No open tasks.");
    visitor.Meet("frmEditTodo", [](QWidget& editor) {
        test::TypeText(Named(editor, "ctlTask"), "Buy stämps");
        Named<QPlainTextEdit>(editor, "ctlNote").setPlainText("two sheets\nof ten");
        Click(editor, "ctlPri0");
        Named<QCheckBox>(Named<kit::DateEdit>(editor, "ctlDateDue"), "box").click();
        Click(editor, "cmdOK");
    });
    Click(*form, "cmdAdd");
    ASSERT_EQ(Shown(), QStringList{"Buy stämps"});
    EXPECT_EQ(list->SelectedKey(), RecordListView::kNoKey) << "an add selects nothing";
    EXPECT_EQ(Cell(0, SubItem::DueDate), "21/11/2026");
    EXPECT_EQ(Cell(0, SubItem::Priority), "X X X");
    EXPECT_EQ(Cell(0, SubItem::Note), "  N");
    const std::int32_t key = model->KeyAt(0);
    EXPECT_EQ(Stored(key).note, "two sheets\r\nof ten");

    test::TypeText(Named(*form, "txtQuickAdd"), "Water plants");
    QTest::keyClick(&Named(*form, "txtQuickAdd"), Qt::Key_Return);
    EXPECT_EQ(Shown(), (QStringList{"Buy stämps", "Water plants"}));
    EXPECT_TRUE(Named<QLineEdit>(*form, "txtQuickAdd").text().isEmpty());

    list->SelectKey(key);
    visitor.Meet("frmEditTodo", [](QWidget& editor) {
        EXPECT_EQ(Named<QPlainTextEdit>(editor, "ctlNote").toPlainText(), "two sheets\nof ten");
        Click(editor, "ctlPrivate");
        QTest::keyClick(&Named(editor, "ctlTask"), Qt::Key_Return, Qt::ControlModifier);
    });
    Press(Qt::Key_Return);
    EXPECT_EQ(list->SelectedKey(), key) << "an edit keeps its row";
    EXPECT_EQ(Cell(0, SubItem::Private), "P");

    Press(Qt::Key_Space);
    EXPECT_EQ(model->rowCount(), 2) << "a ticked task stays until the next rebuild";
    EXPECT_EQ(Cell(0, SubItem::ExecDate), "21/11/2026");
    form->Refresh();
    EXPECT_EQ(Shown(), QStringList{"Water plants"});
    Click(*form, "ShowCompleted");
    EXPECT_EQ(Shown(), (QStringList{"Water plants", "Buy stämps"}));
    EXPECT_EQ(db.session.settings.TodoShowCompleted, 1);

    list->SelectKey(model->KeyAt(0));
    db.prompter.Expect(29, Answer::Cancel).Expect(29, Answer::Ok);
    Press(Qt::Key_Delete);
    EXPECT_EQ(model->rowCount(), 2);
    Press(Qt::Key_Delete);
    EXPECT_EQ(Shown(), QStringList{"Buy stämps"});
    EXPECT_EQ(db.prompter.shown.back().text, "Confirm deletion of task: \r\n\r\n   Water plants");
    EXPECT_TRUE(db.session.CalendarDirty);

    form.reset();
    db.Reopen();
    Open();
    EXPECT_EQ(Shown(), QStringList{"Buy stämps"});
    EXPECT_EQ(list->SelectedKey(), key) << "a section opens on its first row";
}

TEST_F(FormTodo, ComesUpAsThePreferencesSay) {
    Add("done", [this](Task& task) {
        task.completed = true;
        task.completedDate = today;
    });
    const auto category = [this] { return Named<QComboBox>(*form, "cboCategories").currentData().toInt(); };
    for (const bool completed : {true, false}) {
        db.session.settings.TodoShowCompleted = completed ? 1 : 0;
        Open();
        EXPECT_EQ(Named<QCheckBox>(*form, "ShowCompleted").isChecked(), completed);
        EXPECT_EQ(model->rowCount(), completed ? 1 : 0);
    }
    ChooseCategory(store::Category::Unfiled);
    Open();
    EXPECT_EQ(category(), store::Category::Unfiled) << "the last used";
    db.session.settings.CatShow = 1;
    Open();
    EXPECT_EQ(category(), store::Category::All) << "the first entry";
}

TEST_F(FormTodo, TicksAsToldInBothDirections) {
    const auto a = Add("a", [&](Task& t) { t.hasDueDate = true, t.dueDate = Day{today.serial - 1}; });
    const auto b = Add("b");
    Open();
    EXPECT_EQ(Shown(), (QStringList{"a", "b"}));
    TickByMouse(0);
    EXPECT_EQ(list->SelectedKey(), a);
    EXPECT_TRUE(Stored(a).completed);
    EXPECT_EQ(Stored(a).completedDate, today);
    EXPECT_EQ(Shown(), (QStringList{"a", "b"}));
    TickByMouse(0);
    EXPECT_FALSE(Stored(a).completed);
    EXPECT_EQ(Stored(a).completedDate, Day{0});
    EXPECT_EQ(Cell(0, SubItem::ExecDate), "");
    EXPECT_EQ(list->SelectedKey(), a);

    list->SelectKey(b);
    form->mnuCompleted_Click();
    form->mnuCompleted_Click();
    EXPECT_TRUE(Stored(b).completed) << "the menu only ever ticks";
    Press(Qt::Key_Space);
    EXPECT_FALSE(Stored(b).completed);
    EXPECT_EQ(list->SelectedKey(), b);
}

TEST_F(FormTodo, PopupSetsPrioritiesAndItsDueDatesDoNothing) {
    const auto key = Add("a", [&](Task& t) { t.hasDueDate = true, t.dueDate = today; });
    Open();
    EXPECT_EQ(Named<QMenu>(*form, "mnuTodoRC").title(), "TodoList Rightclick");
    Entry("mnuTodoRCPriorityLevel2").trigger();
    EXPECT_EQ(Stored(key).priority, Priority::Low);
    EXPECT_EQ(Cell(0, SubItem::Priority), "X");
    EXPECT_EQ(list->SelectedKey(), key);
    const Task before = Stored(key);
    Entry("mnuTodoRCDueDateNoDate").trigger();
    Entry("mnuTodoRCDueDateChooseDate").trigger();
    EXPECT_EQ(Stored(key).dueDate, before.dueDate);
    EXPECT_TRUE(Stored(key).hasDueDate);
    db.prompter.Expect(29, Answer::Ok);
    Entry("mnuTodoRCDeleteItem").trigger();
    EXPECT_EQ(model->rowCount(), 0);
    Entry("mnuTodoRCEdit").trigger();  // an empty list: nothing opens
}

TEST_F(FormTodo, DeletesGoBeyondWhatTheFilterShows) {
    Add("open");
    Add("done here", [](Task& t) { t.completed = true; });
    Add("done elsewhere, private", [](Task& t) { t.completed = true, t.category = 7, t.isPrivate = true; });
    Open();
    list->SelectKey(RecordListView::kNoKey);
    db.prompter.Expect(18);
    Press(Qt::Key_Delete);
    db.prompter.Expect(82, Answer::Ok);
    Entry("mnuTodoDeleteCompleted").trigger();
    EXPECT_EQ(db.Count("SELECT fPK FROM tt WHERE fSec=15"), 1);
    Add("hidden", [](Task& t) { t.isPrivate = true; });
    db.prompter.Expect(80, Answer::Ok).Expect(81, Answer::Cancel);
    Entry("mnuTodoDeleteAll").trigger();
    EXPECT_EQ(db.Count("SELECT fPK FROM tt WHERE fSec=15"), 2);
    db.prompter.Expect(80, Answer::Ok).Expect(81, Answer::Ok);
    Entry("mnuTodoDeleteAll").trigger();
    EXPECT_EQ(db.Count("SELECT fPK FROM tt WHERE fSec=15"), 0);
    Entry("mnuTodoDeleteAll").trigger();  // nothing is asked over an empty list
}

TEST_F(FormTodo, PrivateTasksComeAndGoWithTheSwitch) {
    Add("public");
    const auto key = Add("private", [](Task& t) { t.isPrivate = true; });
    Open();
    EXPECT_EQ(Shown(), QStringList{"public"});
    db.session.ShowPrivate = true;
    form->Refresh();
    EXPECT_EQ(model->rowCount(), 2);
    list->SelectKey(key);
    db.session.ShowPrivate = false;
    form->Refresh();
    EXPECT_EQ(Shown(), QStringList{"public"});
    EXPECT_EQ(list->SelectedKey(), RecordListView::kNoKey);
}

TEST_F(FormTodo, HeaderClicksSortAsToldAndTaskRestoresTheStandardOrder) {
    Add("z, high", [](Task& t) { t.priority = Priority::High; });
    Add("a, low", [](Task& t) { t.priority = Priority::Low; });
    Add("due", [&](Task& t) { t.hasDueDate = true, t.dueDate = today; });
    Open();
    const QStringList standard{"due", "z, high", "a, low"};
    EXPECT_EQ(Shown(), standard);
    list->SelectKey(model->KeyAt(1));
    const std::int32_t held = list->SelectedKey();
    const auto click = [&](int column) {
        emit list->header()->sectionClicked(column);
        EXPECT_EQ(list->SelectedKey(), held);
    };
    click(SubItem::DueDate);
    EXPECT_EQ(Shown().back(), "due");
    EXPECT_EQ(list->header()->sortIndicatorSection(), SubItem::DueDate);
    click(SubItem::Priority);
    EXPECT_EQ(Shown(), (QStringList{"z, high", "due", "a, low"}));
    form->Refresh();
    EXPECT_EQ(Shown(), standard) << "each build is in standard order";
    EXPECT_EQ(list->header()->sortIndicatorSection(), -1);
    click(SubItem::Priority);
    click(SubItem::Task);
    EXPECT_EQ(Shown(), standard);
}

TEST_F(FormTodo, CategoriesFilterAndAreEditedFromHere) {
    Visitor visitor;
    db.prompter.inputs = {"Garden", "attic"};
    visitor.Meet("frmEditCategories", [](QWidget& dialog) {
        Click(dialog, "cmdNew");
        Click(dialog, "cmdNew");
        Click(dialog, "cmdOK");
    });
    Click(*form, "cmdEditCat");
    auto& combo = Named<QComboBox>(*form, "cboCategories");
    EXPECT_EQ(combo.currentText(), "attic") << "the one that was worked on last";
    QStringList entries;
    for (int i = 0; i < combo.count(); ++i)
        if (combo.itemData(i).isValid()) entries << combo.itemText(i);
    EXPECT_EQ(entries, (QStringList{"All", "attic", "Garden", "Unfiled", "Edit categories"}));
    EXPECT_EQ(Sentence(), "No tasks in this category.");

    test::TypeText(Named(*form, "txtQuickAdd"), "Sweep");
    QTest::keyClick(&Named(*form, "txtQuickAdd"), Qt::Key_Return);
    EXPECT_EQ(Cell(0, SubItem::Category), "attic");
    ChooseCategory(1);  // Garden
    EXPECT_EQ(model->rowCount(), 0);
    Click(*form, "empty_showAll");
    EXPECT_EQ(Shown(), QStringList{"Sweep"});

    visitor.Meet("frmEditCategories", [](QWidget& dialog) { Click(dialog, "cmdEsc"); });
    ChooseCategory(2);
    ChooseCategory(store::Category::Edit);
    EXPECT_EQ(combo.currentText(), "attic") << "back to the entry before";
    form.reset();
    EXPECT_EQ(db.session.settings.LastCategory[3], 2);
    Open();
    EXPECT_EQ(Named<QComboBox>(*form, "cboCategories").currentText(), "attic");
}

TEST_F(FormTodo, SearchNarrowsToWhatTheListShows) {
    Add("Call the M\xFCllers");
    Add("other", [](Task& t) { t.note = "m\xFCller"; });
    Add("dated", [&](Task& t) { t.hasDueDate = true, t.dueDate = today; });
    Add("hidden m\xFCller", [](Task& t) { t.isPrivate = true; });
    Open();
    form->SetSearch("MÜLLER");
    EXPECT_EQ(Shown(), QStringList{"Call the Müllers"}) << "notes and hidden rows are not searched";
    form->SetSearch("21/11");
    EXPECT_EQ(Shown(), QStringList{"dated"});
    form->SetSearch("łódź");
    EXPECT_EQ(Sentence(), "Nothing for “łódź” in Tasks.");
    form->SetSearch("");
    EXPECT_EQ(model->rowCount(), 3);
}

TEST_F(FormTodo, SaveAndNewGoesOnUntilNothingIsTyped) {
    Visitor visitor;
    for (const char* text : {"one", "two"})
        visitor.Meet("frmEditTodo", [text](QWidget& editor) {
            test::TypeText(Named(editor, "ctlTask"), text);
            Click(editor, "cmdSaveNew");
        });
    visitor.Meet("frmEditTodo", [](QWidget& editor) { Click(editor, "cmdSaveNew"); });
    Click(*form, "cmdAdd");
    EXPECT_EQ(Shown(), (QStringList{"one", "two"}));
}

TEST_F(FormTodo, AnEndUnderTheOpenEditorStoresNothing) {
    Visitor visitor;
    visitor.Meet("frmEditTodo", [&](QWidget& editor) {
        test::TypeText(Named(editor, "ctlTask"), "half a thought");
        EXPECT_TRUE(form->Editing());
        db.session.ending = true;  // the idle shutdown: database closed, then every loop unwinds
        db.session.DatabaseOpen = false;
        db.session.ProgramDb.reset();
        dynamic_cast<QDialog&>(editor).done(QDialog::Accepted);
    });
    Click(*form, "cmdAdd");
    EXPECT_FALSE(form->Editing());
    form->repaint();
    form.reset();
    db.session.ending = false;
    db.Reopen();
    EXPECT_EQ(db.Count("SELECT fPK FROM tt WHERE fSec=15"), 0);
}

TEST_F(FormTodo, SelectRecordFindsItsWayThroughEveryFilter) {
    Add("other");
    const auto key = Add("wanted", [](Task& t) { t.completed = true, t.category = 5; });
    Open();
    ChooseCategory(store::Category::Unfiled);
    form->SetSearch("oth");
    form->SelectRecord(key);
    EXPECT_EQ(list->SelectedKey(), key);
    form->SelectRecord(12345);  // gone: nothing happens
    EXPECT_EQ(list->SelectedKey(), key);
}

TEST_F(FormTodo, QuickLineRefusesWhatCannotBeStored) {
    test::TypeText(Named(*form, "txtQuickAdd"), "łódź");
    QTest::keyClick(&Named(*form, "txtQuickAdd"), Qt::Key_Return);
    EXPECT_EQ(model->rowCount(), 0);
    EXPECT_EQ(Named<QLineEdit>(*form, "txtQuickAdd").text(), "łódź");
    EXPECT_TRUE(Named(*form, "strip").isVisible());
}

TEST_F(FormTodo, AStoreOverAnotherSectionsRowIsRefused) {
    const auto key = Add("mine");
    Open();
    Visitor visitor;
    visitor.Meet("frmEditTodo", [&](QWidget& editor) {
        db.Set(key, "fSec", std::int32_t{14});
        test::TypeText(Named(editor, "ctlTask"), "!");
        Click(editor, "cmdOK");
    });
    visitor.Meet("frmEditTodo", [](QWidget& editor) {
        EXPECT_EQ(Named<QLineEdit>(editor, "ctlTask").text(), "!") << "what was typed can still be copied";
        QTest::keyClick(&editor, Qt::Key_Escape);
    });
    db.prompter.Expect(16).Expect(20, Answer::Yes);
    Press(Qt::Key_Return);
    EXPECT_EQ(db.Count("SELECT fPK FROM tt WHERE fSec=14 And fPK=" + std::to_string(key)), 1);
}

TEST_F(FormTodo, AnEndWhileAFailureIsToldOpensNoEditorAgain) {
    const auto key = Add("mine");
    Open();
    Visitor visitor;
    visitor.Meet("frmEditTodo", [&](QWidget& editor) {
        db.Set(key, "fSec", std::int32_t{14});
        test::TypeText(Named(editor, "ctlTask"), "!");
        Click(editor, "cmdOK");
    });
    db.prompter.onAsk = [&] {
        db.session.ending = true;
        db.session.DatabaseOpen = false;
        db.session.ProgramDb.reset();
    };
    db.prompter.Expect(16);
    Press(Qt::Key_Return);
    EXPECT_FALSE(form->Editing());
}

TEST_F(FormTodo, ADamagedTaskIsOnlyWrittenOverWhenAsked) {
    db.session.ShowPrivate = true;
    const auto key = Add("broken");
    const std::string row = "SELECT fEtx FROM tt WHERE fPK=" + std::to_string(key);
    db.Set(key, "fEtx", Bytes("xxxx"));
    const auto before = db.Row(row)->Field("fEtx");
    Open();
    db.prompter.Expect(0, Answer::No);
    Press(Qt::Key_Return);
    EXPECT_EQ(db.prompter.shown.back().standard, Answer::No);
    EXPECT_EQ(db.Row(row)->Field("fEtx"), before);
    db.prompter.Expect(0, Answer::Yes);
    Visitor visitor;
    visitor.Meet("frmEditTodo", [&](QWidget& editor) {
        test::TypeText(Named(editor, "ctlTask"), "again");
        Click(editor, "cmdOK");
    });
    Press(Qt::Key_Return);
    EXPECT_EQ(Stored(key).task, "again");
}

TEST_F(FormTodo, ACategoryThatEndsInACancelledEditorLeavesTheFilterTrue) {
    Visitor visitor;
    db.prompter.inputs = {"Garden"};
    visitor.Meet("frmEditCategories", [](QWidget& dialog) {
        Click(dialog, "cmdNew");
        Click(dialog, "cmdOK");
    });
    Click(*form, "cmdEditCat");
    Add("in no category");
    visitor.Meet("frmEditTodo", [&](QWidget& editor) {
        db.prompter.Expect(19);
        QTimer::singleShot(20, [] {
            QWidget& dialog = *QApplication::activeModalWidget();
            Click(dialog, "cmdDelete");
            Click(dialog, "cmdOK");
        });
        Click(editor, "cmdEditCat");
        EXPECT_EQ(Named<QComboBox>(editor, "cboCategory").currentText(), "Unfiled");
        db.prompter.Expect(20, Answer::Yes);
        Click(editor, "cmdEsc");
    });
    Click(*form, "cmdAdd");
    EXPECT_EQ(Named<QComboBox>(*form, "cboCategories").currentText(), "All");
    EXPECT_EQ(Shown(), QStringList{"in no category"});
}

TEST_F(FormTodo, TheListDeciphersOnlyWhatIsSeen) {
    db.session.ShowPrivate = true;
    store::Transaction all(*db.session.ProgramDb);
    for (int i = 0; i < 2000; ++i)
        Add("task " + std::to_string(i), [&](Task& t) {
            t.hasDueDate = i % 3 == 0;
            t.dueDate = Day{today.serial + i % 50 - 10};
            t.hasNote = true;
        });
    ASSERT_EQ(all.Commit(), 0);
    const auto spent = [&](const std::function<void()>& step) {
        const auto before = db.session.cipher.deciphered;
        step();
        QCoreApplication::processEvents();
        return db.session.cipher.deciphered - before;
    };
    std::uint64_t opening = spent([&] { Open(); });
    const auto rows = list->viewport()->height() / list->visualRect(model->index(0, 0)).height() + 1;
    const auto most = static_cast<std::uint64_t>(2 * rows);
    // The categories are one field more.
    EXPECT_LE(opening, most + 1);
    EXPECT_GT(opening, 0U) << "something must be shown";
    EXPECT_LE(spent([&] { emit list->header()->sectionClicked(SubItem::DueDate); }), most);
    EXPECT_LE(spent([&] { list->verticalScrollBar()->setValue(list->verticalScrollBar()->maximum()); }),
              most);
    EXPECT_LE(spent([&] { form->Refresh(); }), most + 1);
    EXPECT_LE(spent([&] { QTest::keyClick(list, Qt::Key_PageUp); }), most);
}

}  // namespace
}  // namespace bmr::tasks
