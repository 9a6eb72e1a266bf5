// What the task screen does when something goes wrong while an editor is open.
#include <QLineEdit>

#include "tasks/frmTodo_fixture.h"

namespace bmr::tasks {
namespace {

struct FormTodoFailures : FormTodo {
    /// The editor changes a task that becomes another section's meanwhile.
    void MeetARefusal(Visitor& visitor, std::int32_t key) {
        visitor.Meet("frmEditTodo", [this, key](QWidget& editor) {
            db.Set(key, "fSec", std::int32_t{14});
            test::TypeText(Named(editor, "ctlTask"), "!");
            Click(editor, "cmdOK");
        });
    }
};

TEST_F(FormTodoFailures, AnEndUnderTheOpenEditorStoresNothing) {
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

TEST_F(FormTodoFailures, AStoreOverAnotherSectionsRowIsRefused) {
    const auto key = Add("mine");
    Open();
    Visitor visitor;
    MeetARefusal(visitor, key);
    visitor.Meet("frmEditTodo", [](QWidget& editor) {
        EXPECT_EQ(Named<QLineEdit>(editor, "ctlTask").text(), "!") << "what was typed can still be copied";
        QTest::keyClick(&editor, Qt::Key_Escape);
    });
    db.prompter.Expect(16).Expect(20, Answer::Yes);
    Press(Qt::Key_Return);
    EXPECT_EQ(db.Count("SELECT fPK FROM tt WHERE fSec=14 And fPK=" + std::to_string(key)), 1);
}

TEST_F(FormTodoFailures, AnEndWhileAFailureIsToldOpensNoEditorAgain) {
    const auto key = Add("mine");
    Open();
    Visitor visitor;
    MeetARefusal(visitor, key);
    db.prompter.onAsk = [&] {
        db.session.ending = true;
        db.session.DatabaseOpen = false;
        db.session.ProgramDb.reset();
    };
    db.prompter.Expect(16);
    Press(Qt::Key_Return);
    EXPECT_FALSE(form->Editing());
}

TEST_F(FormTodoFailures, ADamagedTaskIsOnlyWrittenOverWhenAsked) {
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

TEST_F(FormTodoFailures, ACategoryThatEndsInACancelledEditorLeavesTheFilterTrue) {
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
        visitor.Meet("frmEditCategories", [](QWidget& dialog) {
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

}  // namespace
}  // namespace bmr::tasks
