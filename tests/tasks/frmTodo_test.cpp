#include <QCheckBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSignalSpy>

#include "kit/dateedit.h"
#include "tasks/frmTodo_fixture.h"

namespace bmr::tasks {
namespace {

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

TEST_F(FormTodo, ScatteredRowsAreChosenByKeysAndWithoutRowsNothingIsOffered) {
    for (const char* name : {"mnuTodoEdit", "mnuTodoDeleteSelected", "mnuTodoCompleted"})
        EXPECT_FALSE(Entry(name).isEnabled()) << name;
    const auto a = Add("a"), b = Add("b"), c = Add("c");
    Open();
    for (const char* name : {"mnuTodoEdit", "mnuTodoDeleteSelected", "mnuTodoCompleted"})
        EXPECT_TRUE(Entry(name).isEnabled()) << name;
    for (const auto key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Space})
        QTest::keyClick(list, key, Qt::ControlModifier);
    QCoreApplication::processEvents();
    EXPECT_EQ(list->SelectedKeys(), (std::vector{a, c}));
    EXPECT_FALSE(Stored(c).completed) << "only the plain key ticks";
    db.prompter.Expect(29, Answer::Ok).Expect(29, Answer::Ok);
    Press(Qt::Key_Delete);
    EXPECT_EQ(list->SelectedKeys(), std::vector{b}) << "what is left beside them";
    const auto d = Add("d");
    form->Refresh();
    Press(Qt::Key_Delete);
    EXPECT_EQ(list->SelectedKey(), RecordListView::kNoKey);
    Press(Qt::Key_Space);
    EXPECT_TRUE(Stored(d).completed) << "the key means the row with the frame";
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

TEST_F(FormTodo, DueEntriesBesideTheToldOnes) {
    const auto key = Add("a");
    const auto done = Add("b", [&](Task& t) { t.completed = true, t.completedDate = today; });
    db.session.settings.TodoShowCompleted = 1;
    Open();
    const auto due = [&] {
        const Task task = Stored(key);
        return task.hasDueDate ? task.dueDate.serial - today.serial : -1;
    };
    for (const std::string menu : {"mnuTodoRCDue", "mnuTodoDue"})
        for (const auto& [entry, days] :
             {std::pair{"Today", 0}, {"Tomorrow", 1}, {"NextWeek", 7}, {"None", -1}}) {
            list->SelectKey(key);
            Entry((menu + entry).c_str()).trigger();
            EXPECT_EQ(due(), days) << menu << entry;
            EXPECT_EQ(list->SelectedKey(), key);
        }
    list->SelectKey(done);
    db.prompter.Expect(23);
    Entry("mnuTodoDueTomorrow").trigger();
    EXPECT_FALSE(Stored(done).hasDueDate) << "a completed task keeps its due date";
}

TEST_F(FormTodo, TheNoteOfTheSelectedTaskStandsBelowTheList) {
    const auto plain = Add("plain");
    Open();
    auto& note = Named<QPlainTextEdit>(*form, "txtNote");
    EXPECT_FALSE(note.isVisible()) << "no task has a note";
    const auto noted = Add("noted", [](Task& t) { t.note = "one\ntwo", t.hasNote = true; });
    form->Refresh();
    EXPECT_TRUE(note.isVisible());
    list->SelectKey(noted);
    EXPECT_EQ(note.toPlainText(), "one\ntwo");
    list->SelectKey(plain);
    EXPECT_EQ(note.toPlainText(), "");
    list->SelectKey(noted);
    form->SetSearch("plain");
    EXPECT_EQ(note.toPlainText(), "") << "its task is not listed any more";
    EXPECT_FALSE(note.isVisible());
}

TEST_F(FormTodo, RedIsTheDateAloneAndPaleWhatIsNormal) {
    Add("late", [&](Task& t) { t.hasDueDate = true, t.dueDate = Day{today.serial - 2}; });
    Add("urgent", [&](Task& t) { t.priority = Priority::High; });
    Open();
    const auto mark = [&](int row, int column) {
        return model->index(row, column).data(kit::RecordRole::Marks).toInt();
    };
    EXPECT_EQ(Shown(), (QStringList{"late", "urgent"}));
    EXPECT_EQ(mark(0, SubItem::Task), 0);
    EXPECT_EQ(mark(0, SubItem::DueDate), kit::RowMark::Overdue);
    EXPECT_EQ(mark(0, SubItem::Priority), kit::RowMark::Faint);
    EXPECT_EQ(mark(1, SubItem::Priority), 0);
    EXPECT_EQ(mark(1, SubItem::DueDate), 0);
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
    Add("Call the M\xC3\xBCllers");
    Add("other", [](Task& t) { t.note = "m\xC3\xBCller"; });
    Add("dated", [&](Task& t) { t.hasDueDate = true, t.dueDate = today; });
    Add("hidden m\xC3\xBCller", [](Task& t) { t.isPrivate = true; });
    Open();
    form->SetSearch("MÜLLER");
    EXPECT_EQ(Shown(), QStringList{"Call the Müllers"}) << "notes and hidden rows are not searched";
    form->SetSearch("21/11");
    EXPECT_EQ(Shown(), QStringList{"dated"});
    form->SetSearch("łódź");
    EXPECT_EQ(Sentence(), "Nothing for “łódź” in Tasks.");
    form->SetSearch("");
    EXPECT_EQ(model->rowCount(), 3);
    const std::int32_t third = model->KeyAt(2);
    list->SelectKey(third);
    form->SetSearch("call");
    EXPECT_EQ(list->SelectedRow(), 0) << "Return opens what was found, not a new task";
    form->SetSearch("nowhere");
    form->SetSearch("");
    EXPECT_EQ(list->SelectedKey(), third) << "the row from before the search";
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

TEST_F(FormTodo, WhatWasBegunInTheQuickLineCanBePutBack) {
    test::TypeText(Named(*form, "txtQuickAdd"), "łódź");
    const auto begun = form->Drafts();
    Open();
    EXPECT_EQ(Named<QLineEdit>(*form, "txtQuickAdd").text(), "");
    form->Resume(begun);
    EXPECT_EQ(Named<QLineEdit>(*form, "txtQuickAdd").text(), "łódź");
}

TEST_F(FormTodo, TheListDeciphersOnlyWhatIsSeen) {
    db.session.ShowPrivate = true;
    engine::Transaction all(*db.session.ProgramDb);
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
