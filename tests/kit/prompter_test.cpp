#include "kit/prompter.h"

#include <QElapsedTimer>
#include <QFileDialog>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QSet>
#include <QTemporaryDir>

#include "crypto/secret.h"
#include "kit/theme.h"
#include "support/forms.h"

namespace bmr::kit {
namespace {

using test::Click;
using test::Named;
using test::Visitor;

TEST(QtPrompter, GivesTheButtonThatWasPressed) {
    QtPrompter prompter;
    Visitor visitor;
    visitor.Box(16, QMessageBox::Ok).Box(29, QMessageBox::Ok).Box(29, QMessageBox::Cancel);
    visitor.Box(20, QMessageBox::Yes).Box(20, QMessageBox::No);
    visitor.Box(85, QMessageBox::Retry).Box(85, QMessageBox::Cancel);
    EXPECT_EQ(prompter.Ask(MessageBox(16)), Answer::Ok);
    for (const Answer answer : {Answer::Ok, Answer::Cancel})
        EXPECT_EQ(prompter.Ask(ConfirmDelete(29, "Buy <b>stamps</b>")), answer);
    for (const Answer answer : {Answer::Yes, Answer::No})
        EXPECT_EQ(prompter.Ask({20, "Discard changes?", Buttons::YesNo, BoxIcon::Question, Answer::No, ""}),
                  answer);
    for (const Answer answer : {Answer::Retry, Answer::Cancel})
        EXPECT_EQ(prompter.Ask({85, "", Buttons::RetryCancel, BoxIcon::Warning, Answer::Retry, ""}), answer);
    const Box three{
        .buttons = Buttons::YesNoCancel, .standard = Answer::Yes, .words = {"Go on", "", "Later"}};
    for (const auto button : {QMessageBox::Yes, QMessageBox::No, QMessageBox::Cancel})
        visitor.Box(0, button);
    for (const Answer answer : {Answer::Yes, Answer::No, Answer::Cancel})
        EXPECT_EQ(prompter.Ask(three), answer);
    visitor.Meet("boxMsg", [](QWidget& box) {
        EXPECT_EQ(dynamic_cast<QMessageBox&>(box).button(QMessageBox::Yes)->text(), "&Go on");
        EXPECT_EQ(dynamic_cast<QMessageBox&>(box).button(QMessageBox::Cancel)->text(), "&Later");
        QTest::keyClick(&box, Qt::Key_Escape);
    });
    EXPECT_EQ(prompter.Ask(three), Answer::Cancel);
}

TEST(QtPrompter, BoxesStandInTheMiddleOfTheirWindowAlsoWhenThatGetsItsPlaceLater) {
    QWidget window;
    window.setGeometry(40, 40, 700, 500);
    window.show();
    QtPrompter prompter;
    prompter.SetWindow(&window);
    Visitor visitor;
    const auto judge = [&window](QWidget& box) {
        const auto offCentre = [&] {
            return (box.frameGeometry().center() - window.frameGeometry().center()).manhattanLength();
        };
        EXPECT_LE(offCentre(), 2);
        window.move(window.pos() + QPoint(50, 30));
        EXPECT_LE(offCentre(), 2);
        QTest::keyClick(&box, Qt::Key_Escape);
    };
    visitor.Meet("boxMsg", judge).Meet("frmInputbox", judge);
    prompter.Ask({20, "Discard changes?", Buttons::YesNo, BoxIcon::Question, Answer::No, ""});
    prompter.InputBox("Memo", "Enter subject:", {});
}

TEST(QtPrompter, BoxSaysWhatItsButtonsDoAndReturnAndEscapeAreSafe) {
    QtPrompter prompter;
    Visitor visitor;
    const auto press = [](Qt::Key key) {
        return [key](QWidget& window) {
            const auto& box = dynamic_cast<const QMessageBox&>(window);
            EXPECT_EQ(box.button(QMessageBox::Ok)->text(), "&Delete");
            EXPECT_EQ(box.text(), "Confirm\n\n   <b>x</b>");
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            QTest::keyClick(&window, key);
        };
    };
    visitor.Meet("boxMsg", press(Qt::Key_Return)).Meet("boxMsg", press(Qt::Key_Escape));
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(prompter.Ask(ConfirmDelete(29, "Confirm\r\n\r\n   <b>x</b>")), Answer::Cancel);
    visitor.Meet("boxMsg", [](QWidget& box) { box.close(); });
    EXPECT_EQ(prompter.Ask({20, "", Buttons::YesNo, BoxIcon::Question, Answer::Yes, ""}), Answer::No);
}

TEST(QtPrompter, BoxesHaveRoomAndALetterForEveryButton) {
    QtPrompter prompter;
    Visitor visitor;
    const auto judge = [](const QSet<QString>& texts) {
        return [texts](QWidget& window) {
            auto& box = dynamic_cast<QMessageBox&>(window);
            QSet<QString> shown;  // in which order depends on the desktop
            for (const QAbstractButton* button : box.buttons())
                shown << button->text();
            EXPECT_EQ(shown, texts);
            const QMargins room = box.layout()->contentsMargins();
            EXPECT_GE(std::min({room.left(), room.top(), room.right(), room.bottom()}), 12);
            box.close();
        };
    };
    visitor.Meet("boxMsg", judge({"&OK"}))
        .Meet("boxMsg", judge({"&Discard changes", "&Save changes", "&Cancel"}));
    visitor.Meet("boxMsg", judge({"D&elete", "De&lete all", "&Delete"}));
    prompter.Ask(MessageBox(16));
    prompter.Ask({.number = 20, .buttons = Buttons::YesNoCancel});
    prompter.Ask({.buttons = Buttons::YesNoCancel, .words = {"Delete", "Delete all", "&Delete"}});
}

TEST(QtPrompter, AsksNothingOnceTheSessionEnds) {
    QtPrompter prompter;
    bool ending = false;
    prompter.SetEnding([&] { return ending; });
    Visitor visitor;
    visitor.Meet("boxMsg", [&](QWidget& box) {
        ending = true;  // the idle shutdown strikes while the box stands
        dynamic_cast<QDialog&>(box).done(QMessageBox::Yes);
    });
    const Box question{20, "", Buttons::YesNo, BoxIcon::Question, Answer::Yes, ""};
    EXPECT_EQ(prompter.Ask(question), Answer::No);

    EXPECT_EQ(prompter.Ask(question), Answer::No);
    EXPECT_EQ(prompter.Ask(ConfirmDelete(29, "")), Answer::Cancel);
    EXPECT_FALSE(prompter.InputBox("a", "b", "c"));
    Secret typed("left over");
    EXPECT_FALSE(prompter.AskSecret({}, typed));
    EXPECT_TRUE(typed.empty());
    EXPECT_FALSE(prompter.AskOpenFile({}));
    prompter.PauseAfterFailure();
}

TEST(QtPrompter, OneLineStandsAtTheMiddleOfItsIcon) {
    QtPrompter prompter;
    Visitor visitor;
    visitor.Meet("boxMsg", [](QWidget& box) {
        const auto middle = [&](const char* name) { return Named(box, name).geometry().center().y(); };
        EXPECT_NEAR(middle("qt_msgbox_label"), middle("qt_msgboxex_icon_label"), 1);
        box.close();
    });
    prompter.Ask({20, "Discard changes?", Buttons::YesNo, BoxIcon::Question, Answer::Yes, ""});
    visitor.Meet("boxMsg", [](QWidget& box) {
        const auto& text = Named(box, "qt_msgbox_label");
        EXPECT_GE(text.height(), 7 * text.fontMetrics().lineSpacing()) << "many lines are shown whole";
        box.close();
    });
    prompter.Ask({0, "1\r\n2\r\n3\r\n4\r\n5\r\n6\r\n7", Buttons::YesNo, BoxIcon::Question, Answer::Yes, ""});
}

TEST(QtPrompter, InputBoxWantsWords) {
    QtPrompter prompter;
    Visitor visitor;
    visitor.Meet("frmInputbox", [](QWidget& form) {
        auto& edit = Named<QLineEdit>(form, "txtInput");
        EXPECT_EQ(edit.text(), "Garden");
        EXPECT_EQ(edit.selectedText(), "Garden");
        edit.setText("  ");
        EXPECT_FALSE(Named(form, "cmdOK").isEnabled());
        QTest::keyClick(&edit, Qt::Key_Return);
        EXPECT_TRUE(form.isVisible());
        edit.setText("Ogródek ł");
        Click(form, "cmdOK");
    });
    EXPECT_EQ(prompter.InputBox("Rename category", "", "Garden"), "Ogródek ł");
    visitor.Meet("frmInputbox", [](QWidget& form) { Click(form, "cmdEsc"); });
    EXPECT_FALSE(prompter.InputBox("New category", "", ""));
}

TEST(QtPrompter, PassphraseComesAsBytesOfTheCodePage) {
    QtPrompter prompter;
    int attached = 0;
    prompter.SetOnPrompt([&](QWidget& form) { attached += form.objectName() == "frmPW"; });
    Visitor visitor;
    visitor.Meet("frmPW", [](QWidget& form) {
        test::TypeText(Named(form, "txtInput"), "schlüssel €7");
        QTest::keyClick(&Named(form, "txtInput"), Qt::Key_Return);
    });
    Secret typed;
    EXPECT_TRUE(prompter.AskSecret({.title = "Database: A.BMR", .prompt = "Enter Passphrase"}, typed));
    EXPECT_EQ(typed.view(),
              "schl\xFCssel \x80"
              "7");
    visitor.Meet("frmPW", [](QWidget& form) {
        QTest::keyClicks(&Named(form, "txtInput"), "typed");
        QTest::keyClick(&form, Qt::Key_Escape);
    });
    EXPECT_FALSE(prompter.AskSecret({}, typed));
    EXPECT_TRUE(typed.empty());
    visitor.Meet("frmPW", [](QWidget& form) { Click(form, "cmdOK"); });
    EXPECT_FALSE(prompter.AskSecret({}, typed)) << "an empty text is a cancel";
    EXPECT_EQ(attached, 3);
}

TEST(QtPrompter, PauseCannotBeCutShortAndKeepsTheLoopAlive) {
    QtPrompter prompter;
    prompter.SetPause(300);
    Visitor visitor;
    visitor.Meet("frmPause", [](QWidget& form) {
        EXPECT_TRUE(Named<QLabel>(form, "lblCountdown").text().contains("1 second."));
        QTest::keyClick(&form, Qt::Key_Escape);
        form.close();
        EXPECT_TRUE(form.isVisible());
        EXPECT_TRUE(QTest::qWaitFor([&] { return !form.isVisible(); }, 2000));
    });
    QElapsedTimer clock;
    clock.start();
    prompter.PauseAfterFailure();
    EXPECT_GE(clock.elapsed(), 300);
}

TEST(QtPrompter, WhatIsTypedWhileThePauseRunsReachesNoOtherWindow) {
    QtPrompter prompter;
    prompter.SetPause(200);
    Visitor visitor;
    QElapsedTimer sinceKey;
    visitor.Meet("frmPause", [&](QWidget& form) {
        EXPECT_EQ(Named<QLabel>(form, "lblDropped").text(), " ");
        for (int i = 0; i < 6; ++i) {
            QTest::keyClick(&form, Qt::Key_A);
            sinceKey.start();
            QTest::qWait(60);
        }
        EXPECT_TRUE(form.isVisible()) << "the pause is over, and still somebody types";
        EXPECT_NE(Named<QLabel>(form, "lblDropped").text(), " ");
        EXPECT_TRUE(QTest::qWaitFor([&] { return !form.isVisible(); }, 3000));
    });
    prompter.PauseAfterFailure();
    EXPECT_GE(sinceKey.elapsed(), 500);
}

TEST(QtPrompter, LettersPressNoButtonOfABoxThatComesUpInAPassphrase) {
    QtPrompter prompter;
    Box wrong = MessageBox(85, BoxIcon::Warning);
    wrong.buttons = Buttons::RetryCancel;
    wrong.standard = Answer::Retry;
    Visitor visitor;
    visitor.Meet("boxMsg", [](QWidget& box) {
        for (const int key : {Qt::Key_C, Qt::Key_T, Qt::Key_Space})
            QTest::keyClick(box.windowHandle(), static_cast<Qt::Key>(key));
        EXPECT_TRUE(QTest::qWaitFor([&] { return box.isVisible(); }, 300));
        QTest::keyClick(box.windowHandle(), Qt::Key_Return);
    });
    EXPECT_EQ(prompter.Ask(wrong), Answer::Retry);
}

TEST(QtPrompter, FileDialogsOfferTheToldPatterns) {
    QTemporaryDir folder;
    QtPrompter prompter;
    Visitor visitor;
    visitor.Meet("dlgFile", [&](QWidget& window) {
        auto& dialog = dynamic_cast<QFileDialog&>(window);
        EXPECT_EQ(dialog.nameFilters(), (QStringList{"Brindlemere BMR (*.bmr)", "All Files (*)"}));
        EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
        dialog.close();
    });
    EXPECT_FALSE(prompter.AskOpenFile({"Open", "Brindlemere BMR (*.bmr)|*.bmr|All Files (*.*)|*.*", true}));
    visitor.Meet("dlgFile", [&](QWidget& window) {
        auto& name = Named<QLineEdit>(window, "fileNameEdit");
        EXPECT_EQ(name.text(), "") << "no name is proposed";
        name.setText(folder.filePath("mine"));
        QMetaObject::invokeMethod(&window, "accept");
    });
    const auto path = prompter.AskSaveFile({"New", "Tolvane BMR-files (*.bmr)|*.bmr", false});
    ASSERT_TRUE(path);
    EXPECT_EQ(*path, std::filesystem::path(folder.path().toStdString()) / "mine.bmr");
}

TEST(Theme, InksAndTintsAreReadableInEveryPalette) {
    const auto light = [](const QColor& colour) {
        const auto part = [](double c) {
            return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
    };
    const auto contrast = [&](const QColor& a, const QColor& b) {
        const double x = light(a), y = light(b);
        return (std::max(x, y) + 0.05) / (std::min(x, y) + 0.05);
    };
    for (const QPalette& palette : {LightPalette(), DarkPalette(), HighContrastPalette()}) {
        const QColor base = palette.color(QPalette::AlternateBase), window = palette.color(QPalette::Window);
        for (const Ink ink : {Ink::Alarm, Ink::Warning, Ink::Good, Ink::Accent}) {
            EXPECT_GE(contrast(InkOf(ink, palette), base), 4.5) << int(ink);
            EXPECT_GE(contrast(InkOf(ink, palette), window), 4.5) << int(ink);
            EXPECT_GE(contrast(InkOf(ink, palette), SelectionTint(palette)), 4.5) << int(ink);
        }
        EXPECT_GE(contrast(palette.color(QPalette::Text), SelectionTint(palette)), 7);
        for (int category = 0; category < 16; ++category) {
            const Tint tint = CategoryTint(category, palette);
            EXPECT_GE(contrast(palette.color(QPalette::Text), tint.ground), 7) << category;
            EXPECT_GE(contrast(tint.stripe, tint.ground), 4) << category;
        }
        for (const auto group : {QPalette::Active, QPalette::Inactive})
            EXPECT_GE(contrast(palette.color(group, QPalette::HighlightedText),
                               palette.color(group, QPalette::Highlight)),
                      4.5);
        EXPECT_GE(contrast(palette.color(QPalette::PlaceholderText), base), 4.5);
    }
}

}  // namespace
}  // namespace bmr::kit
