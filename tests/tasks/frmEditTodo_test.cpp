#include "tasks/frmEditTodo.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>

#include "kit/dateedit.h"
#include "support/forms.h"
#include "support/store.h"

namespace bmr::tasks {
namespace {

using test::Click;
using test::Named;

struct FormEditTodo : testing::Test {
    void Show(const EditorValues& values) {
        form = std::make_unique<frmEditTodo>(db.session, values, 1);
        form->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
        due = &Named<kit::DateEdit>(*form, "ctlDateDue");
        completed = &Named<kit::DateEdit>(*form, "ctlDateCompleted");
    }
    void TypeDate(kit::DateEdit* edit, const QString& text) {
        auto& line = Named<QLineEdit>(*edit, "line");
        line.setFocus();
        line.selectAll();
        QTest::keyClicks(&line, text);
        QTest::keyClick(&line, Qt::Key_Tab);
    }
    test::TempStore db;
    Day today = db.clock.Today();
    std::unique_ptr<frmEditTodo> form;
    kit::DateEdit* due = nullptr;
    kit::DateEdit* completed = nullptr;
};

TEST_F(FormEditTodo, GivesBackWhatItWasGivenAndSaysNothingChanged) {
    const EditorValues values{.task = "Stamps \x80",
                              .note = "one\r\ntwo",
                              .priority = Priority::Low,
                              .isPrivate = true,
                              .due = Day{today.serial - 100},
                              .completed = today,
                              .category = store::Category::Unfiled};
    Show(values);
    EXPECT_EQ(form->Values(), values);
    EXPECT_FALSE(form->recordChanged) << "a date in the past that is left alone stays";
    EXPECT_TRUE(Named(*form, "ctlTask").hasFocus());
    Click(*form, "cmdEsc");
    EXPECT_FALSE(form->isVisible()) << "nothing changed, nothing asked";
    EditorValues lone = values;
    lone.note = "one\ntwo";
    Show(lone);
    EXPECT_EQ(form->Values().note, "one\ntwo") << "line ends stay as they were";
    lone.note = "10\xA0km\r\n\r\n1\xA0h ";
    Show(lone);
    EXPECT_EQ(form->Values().note, lone.note) << "no-break spaces are no blanks";
}

TEST_F(FormEditTodo, EscapeStoresOnNoAndDiscardsOnYes) {
    db.prompter.Expect(20, Answer::Yes).Expect(20, Answer::No);
    for (const bool stores : {false, true}) {
        Show({.task = "a", .priority = 1});
        QTest::keyClicks(&Named(*form, "ctlTask"), "b");
        QTest::keyClick(form.get(), Qt::Key_Escape);
        EXPECT_FALSE(form->isVisible());
        EXPECT_EQ(form->recordChanged, stores);
    }
    EXPECT_EQ(db.prompter.shown[0].standard, Answer::No) << "the default loses nothing";

    db.prompter.Expect(20, Answer::Cancel).Expect(20, Answer::No);
    Show({.task = "a", .priority = 1});
    QTest::keyClicks(&Named(*form, "ctlTask"), "b");
    QTest::keyClick(form.get(), Qt::Key_Escape);
    EXPECT_TRUE(form->isVisible()) << "the third way goes on editing";
    EXPECT_EQ(db.prompter.shown.back().words[2], "Keep editing");
    EXPECT_EQ(form->Values().task, "b");
    QTest::keyClick(form.get(), Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible());
}

TEST_F(FormEditTodo, ADueDateIsJudged) {
    Show({.task = "a", .priority = 1});
    Named<QCheckBox>(*due, "box").click();
    EXPECT_EQ(due->Date(), today);
    TypeDate(due, "+5");
    EXPECT_EQ(due->Date(), Day{today.serial + 5});
    db.prompter.Expect(24);
    TypeDate(due, "-5");
    EXPECT_EQ(due->Date(), today) << "no due date in the past";
    EXPECT_EQ(db.prompter.shown.back().icon, BoxIcon::Warning);
    EXPECT_TRUE(form->recordChanged);

    Named<QCheckBox>(*completed, "box").click();
    TypeDate(completed, "-3");
    form->recordChanged = false;
    db.prompter.Expect(23);
    TypeDate(due, "+9");
    EXPECT_EQ(due->Date(), Day{today.serial - 3}) << "a completed task is due when it was done";
    EXPECT_FALSE(form->recordChanged);
    Named<QCheckBox>(*due, "box").click();
    EXPECT_FALSE(due->Date());
}

TEST_F(FormEditTodo, ATypedDateIsNeitherLostNorGuessed) {
    Show({.task = "a", .priority = 1, .due = today});
    const auto type = [this](const QString& text) {
        auto& line = Named<QLineEdit>(*due, "line");
        line.setFocus();
        line.selectAll();
        QTest::keyClicks(&line, text);
    };
    auto& words = Named<QLabel>(*form, "lblDueError");
    type("whenever");
    Click(*form, "ctlNote");
    Click(*form, "cmdOK");
    EXPECT_TRUE(form->isVisible()) << "what is no date is not stored as the old one";
    EXPECT_TRUE(words.text().contains("whenever") && words.isVisible());
    db.prompter.Expect(20, Answer::No);
    QTest::keyClick(form.get(), Qt::Key_Escape);
    EXPECT_TRUE(form->isVisible()) << "storing by No is held to the same rule";
    type("+");
    EXPECT_FALSE(words.isVisible());
    type("+2");
    db.prompter.Expect(20, Answer::No);
    QTest::keyClick(form.get(), Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible());
    EXPECT_TRUE(form->recordChanged);
    EXPECT_EQ(form->Values().due, Day{today.serial + 2}) << "Escape asks about a date that is being typed";
}

TEST_F(FormEditTodo, WhatCannotBeStoredIsMarkedInWords) {
    Show({.task = "a", .priority = 1});
    Named<QLineEdit>(*form, "ctlTask").setText(QString(65001, 'x'));
    Click(*form, "ctlNote");
    Click(*form, "cmdOK");
    EXPECT_TRUE(form->isVisible());
    EXPECT_TRUE(Named<QLabel>(*form, "lblTaskError").text().contains("1 character:"));
    EXPECT_TRUE(Named(*form, "ctlTask").hasFocus());
    db.prompter.Expect(20, Answer::No);
    Click(*form, "cmdEsc");
    EXPECT_TRUE(form->isVisible()) << "storing by No is held to the same rule";
    QTest::keyClick(&Named(*form, "ctlTask"), Qt::Key_Backspace);
    EXPECT_FALSE(Named(*form, "lblTaskError").isVisible()) << "the words go with their cause";
    Named<QPlainTextEdit>(*form, "ctlNote").setPlainText(QString(65000, 'x'));
    Click(*form, "cmdOK");
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(form->Values().note.size(), 65000U);
}

TEST_F(FormEditTodo, KeyboardReachesEverythingInTheOrderOfTheEye) {
    Show({.task = "a", .priority = 1, .due = today});
    QStringList seen;
    for (int i = 0; i < 16 && !seen.contains("cmdEsc"); ++i) {
        QWidget* at = form->focusWidget();
        while (at->objectName().isEmpty() || at->objectName() == "qt_spinbox_lineedit")
            at = at->parentWidget();
        seen << at->objectName();
        QTest::keyClick(form->focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(seen.join(' ').toStdString(),
              "ctlTask ctlPri1 cboCategory cmdEditCat ctlPrivate box line drop box ctlNote cmdOK cmdEsc");
    for (const auto& [key, name] :
         {std::pair{Qt::Key_D, "box"}, {Qt::Key_G, "cboCategory"}, {Qt::Key_N, "ctlNote"}}) {
        QTest::keyClick(form->windowHandle(), key, Qt::AltModifier);
        EXPECT_EQ(form->focusWidget()->objectName(), name);
    }
    for (const QWidget* control :
         form->findChildren<QWidget*>(QRegularExpression("^(ctl|cbo|cmd|box|line|drop)"))) {
        const auto* button = qobject_cast<const QAbstractButton*>(control);
        EXPECT_FALSE(control->accessibleName().isEmpty() && (!button || button->text().isEmpty()) &&
                     !qobject_cast<const kit::DateEdit*>(control))
            << control->objectName().toStdString() << " has no name for a screen reader";
    }
}

}  // namespace
}  // namespace bmr::tasks
