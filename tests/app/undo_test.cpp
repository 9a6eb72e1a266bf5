// What the user can take back, and what can be done with several rows, by the ways of the window.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>

#include "app/frmMDI.h"
#include "calendar/appointment.h"
#include "calendar/frmCalendar.h"
#include "confidential/frmClassified.h"
#include "custody/lifecycle.h"
#include "kit/categorydrop.h"
#include "kit/listpane.h"
#include "kit/recordlistmodel.h"
#include "kit/recordlistview.h"
#include "notes/frmNotepad.h"
#include "support/forms.h"
#include "support/sitting.h"
#include "tasks/frmTodo.h"
#include "tasks/tasklist.h"

namespace bmr::app {
namespace {

using store::Section;
using test::Named;

class WindowSteps : public testing::Test {
  protected:
    WindowSteps() {
        sitting.Make();
        sitting.session.ShowPrivate = true;
        EXPECT_EQ(store::StoreCategories(sitting.session, {{"Garden", 1}, {"R&D", 2}}, Section::Todo), 0);
        for (const char* text : {"ask", "book", "call", "draw"})
            AddTask(text);
        for (const char* subject : {"Moss", "Oak"}) {
            notes::Memo memo = notes::ClearRecord(sitting.session, 0);
            memo.subject = subject;
            EXPECT_EQ(notes::WriteRecord(sitting.session, memo), 0);
        }
        for (const std::int32_t kind : {1, 4}) {
            confidential::Record record;
            record.kind = kind;
            record.n[0] = "harbour " + std::to_string(kind);
            EXPECT_EQ(confidential::WriteRecord(sitting.session, record), 0);
        }
        sitting.Close();
        SectionTable table;
        table[Section::Calendar] = [](store::Session& s, QWidget* p) {
            return new calendar::frmCalendar(s, {}, p);
        };
        table[Section::Todo] = [](store::Session& s, QWidget* p) { return new tasks::frmTodo(s, p); };
        table[Section::Confidential] = [](store::Session& s, QWidget* p) {
            return new confidential::frmClassified(
                s, [](const QString&) {}, p);
        };
        table[Section::Memo] = [](store::Session& s, QWidget* p) { return new notes::frmNotepad(s, p); };
        frame = std::make_unique<frmMDI>(
            frmMDI::Parts{sitting.session, std::move(table), {sitting.folder.Path() / "documents"}});
        sitting.prompter.Type(test::kPassphrase);
        frame->Start(sitting.file);
        frame->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(frame.get()));
        GoTo(Section::Todo);
    }
    ~WindowSteps() override { sitting.session.ending = true; }

    std::int32_t AddTask(const char* text) {
        tasks::Task task = tasks::ClearRecord(0);
        task.task = text;
        EXPECT_EQ(tasks::WriteRecord(sitting.session, task).error, 0);
        return task.key;
    }
    void GoTo(std::uint8_t section) {
        frame->optSection_Click(section);
        list = frame->findChild<kit::RecordListView*>();
        ASSERT_TRUE(list);
    }
    QStringList Shown() const {
        QStringList texts;
        for (int row = 0; row < list->model()->rowCount(); ++row)
            texts << list->model()->index(row, 0).data().toString();
        texts.sort();
        return texts;
    }
    /// Clicks on the rows of these texts, the first one alone, the others with Ctrl.
    void Select(const QStringList& texts) {
        Qt::KeyboardModifiers held;
        for (const QString& text : texts)
            for (int row = 0; row < list->model()->rowCount(); ++row) {
                if (list->model()->index(row, 0).data().toString() != text) continue;
                const QRect cell = list->visualRect(list->model()->index(row, 0));
                QTest::mouseClick(list->viewport(), Qt::LeftButton, held, cell.center());
                held = Qt::ControlModifier;
            }
        EXPECT_EQ(list->SelectedCount(), texts.size());
    }
    int CategoryOf(const char* text) {
        const auto keys = tasks::ListRecords(sitting.session, {.showCompleted = true});
        for (const auto& row : *keys)
            if (tasks::FetchRecord(sitting.session, row.fPK)->task == text) return row.category;
        ADD_FAILURE() << "no task " << text;
        return -1;
    }
    QAction& Entry(const char* name) { return Named<QAction>(*frame, name); }
    QString Strip() { return Named<QLabel>(*frame->Form()->Pane(), "stripText").text(); }
    void OpenEditMenu() { emit Named<QMenu>(*frame, "mnuEdit").aboutToShow(); }
    void Press(Qt::Key key, Qt::KeyboardModifiers held = {}) {
        QTest::keyClick(QApplication::focusWidget(), key, held);
    }

    test::Sitting sitting;
    std::unique_ptr<frmMDI> frame;
    kit::RecordListView* list = nullptr;
};

TEST_F(WindowSteps, AFormWithoutAListShowsWhatWasTakenBack) {
    frame->optSection_Click(Section::Calendar);
    calendar::Appointment walk =
        calendar::ClearRecord({calendar::MidnightOf(sitting.clock.Today()).count + 600}, 60);
    ASSERT_EQ(calendar::WriteRecord(sitting.session, walk).error, 0);
    frame->Form()->Refresh();
    const auto& status = Named<QLabel>(*frame, "status");
    EXPECT_EQ(status.text(), "1 appointment");
    EXPECT_TRUE(Entry("undoTool").isEnabled());
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(status.text(), "0 appointments");
    EXPECT_FALSE(Entry("undoTool").isEnabled());
    Press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(status.text(), "1 appointment");
    EXPECT_TRUE(Entry("mnuAppoOpen").isEnabled()) << "it is chosen";
}

TEST_F(WindowSteps, TheTasksBesideTheDaysAreTakenBackWhereTheyWereTheLast) {
    GoTo(Section::Calendar);
    calendar::Appointment walk =
        calendar::ClearRecord({calendar::MidnightOf(sitting.clock.Today()).count + 600}, 60);
    ASSERT_EQ(calendar::WriteRecord(sitting.session, walk).error, 0);
    frame->Form()->Refresh();
    const auto& status = Named<QLabel>(*frame, "status");
    OpenEditMenu();
    EXPECT_EQ(Entry("mnuEditUndo").text(), "&Undo new appointment") << "tasks were added, but not here";
    const auto said = [&] {
        QString text;
        for (const auto* line : frame->Form()->findChildren<QLabel*>("stripText"))
            if (line->isVisible()) text += line->text();
        return text;
    };
    const auto tick = [&] {
        list->PutCursor(0);
        list->setFocus();
        Press(Qt::Key_Space);
        QCoreApplication::processEvents();
        EXPECT_EQ(list->model()->rowCount(), 3);
        EXPECT_EQ(QApplication::focusWidget(), list);
    };
    tick();
    EXPECT_EQ(said(), "Task completed.");
    EXPECT_TRUE(Entry("undoTool").toolTip().startsWith("Undo completion of the task"));
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(list->model()->rowCount(), 4);
    EXPECT_EQ(status.text(), "1 appointment");
    EXPECT_EQ(QApplication::focusWidget(), list);
    EXPECT_EQ(said(), "Undone: completion of the task.");
    OpenEditMenu();
    EXPECT_EQ(Entry("mnuEditRedo").text(), "&Redo completion of the task");
    Press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(list->model()->rowCount(), 3);
    Press(Qt::Key_Z, Qt::ControlModifier);
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(status.text(), "0 appointments") << "then what was done before";
    tick();
    // Return presses the button of the line, and the focus goes back.
    for (auto* button : frame->Form()->findChildren<QPushButton*>("stripAction"))
        if (button->isVisible()) button->setFocus();
    Press(Qt::Key_Return);
    EXPECT_EQ(list->model()->rowCount(), 4);
    EXPECT_EQ(QApplication::focusWidget(), list);
}

TEST_F(WindowSteps, ADeleteOfSeveralIsAskedOnceAndTakenBackByLineMenuAndKey) {
    Select({"ask", "call"});
    sitting.prompter.Expect(29, Answer::Cancel).Expect(29, Answer::Ok);
    Press(Qt::Key_Delete);
    EXPECT_EQ(sitting.prompter.shown.back().text, "Confirm deletion of task: \r\n\r\n   2 tasks");
    EXPECT_EQ(sitting.prompter.shown.back().standard, Answer::Cancel);
    EXPECT_EQ(Shown().size(), 4);
    const int first = list->model()->index(0, 0).data() == "ask" ? 0 : 1;
    Press(Qt::Key_Delete);
    EXPECT_EQ(Shown(), (QStringList{"book", "draw"}));
    EXPECT_EQ(list->SelectedRow(), first) << "the row that took the place";
    EXPECT_EQ(list->SelectedCount(), 1);
    EXPECT_EQ(Strip(), "2 tasks deleted.");

    test::Click(*frame->Form()->Pane(), "stripAction");
    EXPECT_EQ(Shown(), (QStringList{"ask", "book", "call", "draw"}));
    EXPECT_EQ(list->SelectedCount(), 2);
    EXPECT_EQ(Strip(), "Undone: delete of 2 tasks.");
    EXPECT_EQ(QApplication::focusWidget(), list);

    OpenEditMenu();
    EXPECT_EQ(Entry("mnuEditRedo").text(), "&Redo delete of 2 tasks");
    Press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(Shown(), (QStringList{"book", "draw"}));
    OpenEditMenu();
    EXPECT_EQ(Entry("mnuEditUndo").text(), "&Undo delete of 2 tasks");
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Shown().size(), 4);

    Select({"draw"});
    sitting.prompter.Expect(29, Answer::Ok);
    Press(Qt::Key_Delete);
    EXPECT_EQ(Strip(), "Task deleted.");

    GoTo(Section::Memo);
    OpenEditMenu();
    EXPECT_EQ(Entry("mnuEditUndo").text(), "&Undo") << "another section's steps are not told here";
    EXPECT_FALSE(Entry("mnuEditUndo").isEnabled());
    Press(Qt::Key_Z, Qt::ControlModifier);
    GoTo(Section::Todo);
    EXPECT_EQ(Shown().size(), 3);

    frame->CloseDatabase();
    EXPECT_TRUE(sitting.session.undo.sections.empty()) << "what was closed cannot be taken back";
}

TEST_F(WindowSteps, WhatConcernsSeveralConcernsThemAllInOneStep) {
    Press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(list->SelectedCount(), 4);
    Entry("mnuTodoCompleted").trigger();
    EXPECT_TRUE(Shown().isEmpty());
    EXPECT_EQ(Strip(), "4 tasks completed.");
    test::Click(*frame->Form()->Pane(), "stripAction");
    EXPECT_EQ(Shown().size(), 4);

    Select({"ask", "book"});
    QMenu& menu = Named<QMenu>(*frame->Form(), "mnuRowsCategory");
    emit menu.aboutToShow();
    ASSERT_EQ(menu.actions().size(), 3);
    EXPECT_EQ(menu.actions().at(1)->text(), "R&&D");
    menu.actions().at(1)->trigger();
    EXPECT_EQ(CategoryOf("ask"), 2);
    EXPECT_EQ(CategoryOf("call"), 0);
    EXPECT_EQ(Strip(), "2 tasks moved.");
    EXPECT_EQ(list->SelectedCount(), 2) << "they stay chosen";

    emit list->DragBegun();
    auto& drop = Named<kit::CategoryDrop>(*frame, "categoryDrop");
    EXPECT_TRUE(drop.isVisible());
    QMimeData foreign;
    foreign.setText("ask");
    QMimeData ours;
    ours.setData(kit::RowDrag::Mime(), QByteArray::number(QCoreApplication::applicationPid()));
    for (const QMimeData* data : {&foreign, &ours}) {
        const QPointF at = drop.visualItemRect(drop.item(0)).center();
        QDragEnterEvent enter(at.toPoint(), Qt::LinkAction, data, Qt::LeftButton, {});
        QApplication::sendEvent(drop.viewport(), &enter);
        EXPECT_EQ(enter.isAccepted(), data == &ours);
        QDropEvent event(at, Qt::LinkAction, data, Qt::LeftButton, {});
        QApplication::sendEvent(drop.viewport(), &event);
    }
    emit list->DragEnded();
    EXPECT_FALSE(drop.isVisible());
    QCoreApplication::processEvents();
    EXPECT_EQ(CategoryOf("ask"), 1);
    EXPECT_EQ(CategoryOf("book"), 1);
    EXPECT_EQ(CategoryOf("call"), 0);

    Entry("mnuRowsPrivate").trigger();
    EXPECT_TRUE(tasks::FetchRecord(sitting.session, list->SelectedKey())->isPrivate);
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_FALSE(tasks::FetchRecord(sitting.session, list->SelectedKey())->isPrivate);
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(CategoryOf("ask"), 2);
}

TEST_F(WindowSteps, AnEmptyListLeavesTheKeysAndTheButtonToTheStep) {
    EXPECT_FALSE(Entry("undoTool").isEnabled());
    Press(Qt::Key_A, Qt::ControlModifier);
    sitting.prompter.Expect(29, Answer::Ok);
    Press(Qt::Key_Delete);
    EXPECT_EQ(QApplication::focusWidget(), &Named<QLineEdit>(*frame, "txtQuickAdd"));
    EXPECT_TRUE(Entry("undoTool").isEnabled());
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Shown().size(), 4);
    EXPECT_FALSE(Entry("undoTool").isEnabled());
    Named<QLineEdit>(*frame, "txtSearch").setFocus();
    Press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(Shown().isEmpty());
    Entry("undoTool").trigger();
    EXPECT_EQ(Shown().size(), 4);

    auto& line = Named<QLineEdit>(*frame, "txtQuickAdd");
    line.setFocus();
    test::TypeText(line, "eat");
    Press(Qt::Key_Return);
    EXPECT_EQ(Shown().size(), 5);
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Shown().size(), 4);
    EXPECT_TRUE(line.text().isEmpty());
    GoTo(Section::Memo);
    EXPECT_FALSE(Entry("undoTool").isEnabled()) << "another section's steps are not taken here";
}

TEST_F(WindowSteps, EscInTheListEndsTheSearch) {
    auto& search = Named<QLineEdit>(*frame, "txtSearch");
    search.setText("ask");
    QTest::keyClick(&search, Qt::Key_Return);
    EXPECT_EQ(Shown(), QStringList{"ask"});
    Press(Qt::Key_Escape);
    EXPECT_EQ(Shown().size(), 4);
    EXPECT_TRUE(search.text().isEmpty());
    EXPECT_EQ(QApplication::focusWidget(), list);
}

TEST_F(WindowSteps, ATextFieldKeepsItsOwnUndo) {
    Select({"ask"});
    sitting.prompter.Expect(29, Answer::Ok);
    Press(Qt::Key_Delete);
    auto& line = Named<QLineEdit>(*frame, "txtQuickAdd");
    line.setFocus();
    test::TypeText(line, "x");
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(line.text().isEmpty());
    Press(Qt::Key_Z, Qt::ControlModifier);
    Press(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(Shown().size(), 3);
    EXPECT_LT(list->SelectedCount(), 2);
}

TEST_F(WindowSteps, StepsAmongPrivateRecordsWaitUntilThoseAreShown) {
    Select({"ask"});
    sitting.prompter.Expect(29, Answer::Ok);
    Press(Qt::Key_Delete);
    frame->mnuViewShowPrivate_Switch();
    EXPECT_TRUE(Strip().isEmpty());
    OpenEditMenu();
    EXPECT_EQ(Entry("mnuEditUndo").text(), "&Undo delete of the task");
    EXPECT_FALSE(Entry("mnuEditUndo").isEnabled());
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Shown().size(), 3);
}

TEST_F(WindowSteps, WhatWasChangedMeanwhileIsLeftAndTold) {
    Select({"ask", "book"});
    Entry("mnuRowsPrivate").trigger();
    const auto keys = list->SelectedKeys();
    auto rows = sitting.session.ProgramDb->OpenRecordset("tt");
    ASSERT_EQ((*rows)->FindFirst("fPK=?", {keys[0]}), 0);
    (*rows)->Edit();
    (*rows)->SetField("fG1", 2);
    ASSERT_EQ((*rows)->Update(), 0);
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Strip(), "Undone: change of 2 tasks. One row was changed meanwhile and stays as it is.");
    EXPECT_TRUE(tasks::FetchRecord(sitting.session, keys[0])->isPrivate);
    EXPECT_FALSE(tasks::FetchRecord(sitting.session, keys[1])->isPrivate);
}

TEST_F(WindowSteps, TheLineTakesBackWhatItNamesOrNothing) {
    Select({"ask"});
    sitting.prompter.Expect(29, Answer::Ok);
    Press(Qt::Key_Delete);
    auto& offer = Named<QPushButton>(*frame->Form()->Pane(), "stripAction");
    EXPECT_TRUE(offer.isVisible());
    auto& line = Named<QLineEdit>(*frame, "txtQuickAdd");
    test::TypeText(line, "eat");
    QTest::keyClick(&line, Qt::Key_Return);
    EXPECT_FALSE(offer.isVisible()) << "another step is the last now";
    offer.click();
    EXPECT_EQ(Shown(), (QStringList{"book", "call", "draw", "eat"}));
}

TEST_F(WindowSteps, ASearchStaysUnlessItHidesWhatComesBack) {
    auto& search = Named<QLineEdit>(*frame, "txtSearch");
    const auto look = [&](const char* words) {
        search.setText(words);
        QTest::keyClick(&search, Qt::Key_Return);
    };
    look("ask");
    Select({"ask"});
    sitting.prompter.Expect(29, Answer::Ok);
    Press(Qt::Key_Delete);
    EXPECT_TRUE(Shown().isEmpty());
    Entry("mnuEditUndo").trigger();
    EXPECT_EQ(Shown(), QStringList{"ask"});
    EXPECT_EQ(search.text(), "ask");
    look("draw");
    Entry("mnuEditRedo").trigger();
    EXPECT_EQ(Shown(), QStringList{"draw"});
    Entry("mnuEditUndo").trigger();
    EXPECT_EQ(Shown().size(), 4) << "it would have hidden the row";
    EXPECT_TRUE(search.text().isEmpty());

    GoTo(Section::Confidential);
    look("harbour");
    list = frame->Form()->Pane()->List();
    ASSERT_EQ(list->objectName(), "listFound");
    Select({"harbour 4"});
    sitting.prompter.Expect(79, Answer::Ok);
    QTest::keyClick(list, Qt::Key_Delete);
    EXPECT_EQ(Shown().filter("harbour").size(), 1);
    Entry("mnuEditUndo").trigger();
    EXPECT_EQ(frame->Form()->Pane()->List(), list) << "still what was found";
    EXPECT_EQ(Shown().filter("harbour").size(), 2);
    EXPECT_EQ(Strip(), "Undone: delete of the record.");
    EXPECT_EQ(QApplication::focusWidget(), list);
}

TEST_F(WindowSteps, SearchWordsDoNotComeBackInAnotherSection) {
    auto& search = Named<QLineEdit>(*frame, "txtSearch");
    search.setFocus();
    test::TypeText(search, "secret");
    QTest::keyClick(&search, Qt::Key_Escape);
    EXPECT_FALSE(search.isUndoAvailable());
    test::TypeText(search, "secret");
    GoTo(Section::Memo);
    search.setFocus();
    Press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(search.text().isEmpty());
}

TEST_F(WindowSteps, ADragOfSomePixelsReachesNoCategory) {
    QCursor::setPos(list->viewport()->mapToGlobal(QPoint(60, 10)));
    emit list->DragBegun();
    const auto& drop = Named<kit::CategoryDrop>(*frame, "categoryDrop");
    EXPECT_TRUE(drop.isVisible());
    const QPoint hand = frame->mapFromGlobal(QCursor::pos());
    EXPECT_FALSE(drop.geometry().adjusted(-20, -20, 20, 20).contains(hand));
    EXPECT_TRUE(frame->rect().contains(drop.geometry()));
    emit list->DragEnded();
    for (int row = 0; row < list->model()->rowCount(); ++row)
        EXPECT_TRUE(list->model()->index(row, 0).flags() & Qt::ItemIsDragEnabled);
}

}  // namespace
}  // namespace bmr::app
