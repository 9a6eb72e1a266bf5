#include <QCheckBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QSignalSpy>

#include "support/forms.h"
#include "support/store.h"
#include "tasks/frmTodo.h"

namespace bmr::tasks {
namespace {

using test::Click;
using test::Named;
using test::Visitor;

TEST(TaskDrafts, WhatIsHalfWrittenComesBackThroughADraft) {
    test::TempStore db;
    db.session.ShowPrivate = true;
    Task stored;
    stored.task = "paint";
    stored.note = "old\nends";
    stored.isPrivate = true;
    ASSERT_EQ(WriteRecord(db.session, stored).error, 0);
    const std::int32_t key = stored.key;
    auto form = std::make_unique<frmTodo>(db.session);
    form->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    test::TypeText(Named(*form, "txtQuickAdd"), "buy");
    QSignalSpy settled(form.get(), &SectionForm::DraftSettled);
    std::vector<custody::Draft> drafts;
    {
        Visitor visitor;
        visitor.Meet("frmEditTodo", [&](QWidget& editor) {
            EXPECT_EQ(form->Drafts().size(), 1u) << "the line alone";
            QTest::keyClick(&Named(editor, "ctlTask"), Qt::Key_End);
            test::TypeText(Named(editor, "ctlTask"), " the d\u00f3\u0142");
            Named<QRadioButton>(editor, "ctlPri2").click();
            Named<QCheckBox>(editor, "ctlPrivate").click();
            Named<QCheckBox>(Named(editor, "ctlDateDue"), "box").click();
            drafts = form->Drafts();
            db.session.ending = true;
            dynamic_cast<QDialog&>(editor).reject();
        });
        Click(*form, "cmdEdit");
        db.session.ending = false;
    }
    ASSERT_EQ(drafts.size(), 2u);
    EXPECT_EQ(drafts[0].key, key);
    EXPECT_TRUE(drafts[0].isPrivate) << "as the record was";
    EXPECT_EQ(drafts[1].key, store::kNewRecord);
    EXPECT_FALSE(drafts[1].isPrivate);

    settled.clear();
    Visitor visitor;
    visitor.Meet("frmEditTodo", [&](QWidget& editor) {
        auto& text = Named<QLineEdit>(editor, "ctlTask");
        EXPECT_EQ(text.text(), QString::fromUtf8("paint the d\u00f3\u0142"));
        EXPECT_EQ(form->Drafts().size(), 2u);
        QCoreApplication::processEvents();
        QTest::keyClick(&text, Qt::Key_Backspace);
        test::TypeText(text, "or");
        Click(editor, "cmdOK");
    });
    form->OpenDraft(drafts[0]);
    EXPECT_EQ(settled.count(), 1);
    const auto task = FetchRecord(db.session, key);
    ASSERT_TRUE(task);
    EXPECT_EQ(task->task, "paint the d\xC3\xB3or") << "typed on, not over what was there";
    EXPECT_EQ(task->note, "old\nends");
    EXPECT_EQ(task->priority, Priority::Low);
    EXPECT_FALSE(task->isPrivate);
    EXPECT_EQ(task->dueDate, db.clock.Today());
    EXPECT_FALSE(task->completed);

    // The line comes back as a new task, and a further new one is none of the draft's.
    visitor.Meet("frmEditTodo", [&](QWidget& editor) {
        EXPECT_EQ(Named<QLineEdit>(editor, "ctlTask").text(), "buy");
        EXPECT_TRUE(Named<QRadioButton>(editor, "ctlPri1").isChecked());
        Click(editor, "cmdSaveNew");
    });
    visitor.Meet("frmEditTodo", [&](QWidget& editor) {
        EXPECT_EQ(settled.count(), 2);
        EXPECT_EQ(form->Drafts().size(), 1u);
        Click(editor, "cmdEsc");
    });
    form->OpenDraft(drafts[1]);
    EXPECT_EQ(db.Count("SELECT fPK FROM tt WHERE fSec=15"), 2);
}

}  // namespace
}  // namespace bmr::tasks
