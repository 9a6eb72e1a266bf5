#include "kit/frmPW.h"

#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QProgressBar>
#include <QRegularExpression>
#include <QSignalSpy>

#include "kit/secretedit.h"
#include "kit/words.h"
#include "support/forms.h"
#include "support/ports.h"

namespace bmr::kit {
namespace {

using test::Click;
using test::Named;
using test::ScriptedPrompter;

struct FormPW : testing::Test {
    void Show(bool choosing, bool shortOnly = false) {
        form = std::make_unique<frmPW>(
            PassphraseRequest{"Database: A.BMR", "New Passphrase", choosing, choosing, shortOnly}, boxes);
        form->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
        edit = &Named<SecretEdit>(*form, "txtInput");
    }
    void Enter(const QString& text) {
        test::TypeText(*edit, text);
        QTest::keyClick(edit, Qt::Key_Return);
    }
    QString Prompt() { return Named<QLabel>(*form, "lblPrompt").text(); }

    ScriptedPrompter boxes;
    std::unique_ptr<frmPW> form;
    SecretEdit* edit = nullptr;
};

TEST_F(FormPW, TheBaseClassNeverHoldsTheMaskedText) {
    Show(false);
    QTest::keyClicks(edit, "hidden");
    EXPECT_EQ(edit->Content(), "hidden");
    EXPECT_FALSE(edit->text().contains(QRegularExpression("[a-z]")));
    EXPECT_EQ(edit->echoMode(), QLineEdit::Password);

    Named<QCheckBox>(*form, "chkShowClear").click();
    EXPECT_EQ(edit->displayText(), "hidden") << "the text stays";
    QTest::keyClicks(edit, "!");
    Named<QCheckBox>(*form, "chkShowClear").click();
    EXPECT_FALSE(edit->text().contains("hidden"));
    EXPECT_EQ(edit->Content(), "hidden!");
    QTest::keyClick(edit, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_FALSE(edit->text().contains("hidden"));
    EXPECT_EQ(edit->Content(), "hidden!");

    QApplication::clipboard()->setText("before");
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_C, Qt::ControlModifier);
    QTest::keyClick(edit, Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "before");
    EXPECT_EQ(edit->Content(), "hidden!");
}

TEST_F(FormPW, EditsLikeAnyLine) {
    Show(false);
    QTest::keyClicks(edit, "abcdef");
    QTest::keyClick(edit, Qt::Key_Home);
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClick(edit, Qt::Key_Right);
    QTest::keyClick(edit, Qt::Key_Right, Qt::ShiftModifier);
    test::TypeText(*edit, "ÄX");
    EXPECT_EQ(edit->Content(), "b\xC4Xdef");
    QTest::keyClick(edit, Qt::Key_Backspace);
    EXPECT_EQ(edit->Content(),
              "b\xC4"
              "def");
    QTest::keyClick(edit, Qt::Key_Backspace, Qt::ControlModifier);
    EXPECT_EQ(edit->Content(), "def");
    QApplication::clipboard()->setText("12\n3");
    QTest::keyClick(edit, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(edit->Content(), "123def");
    EXPECT_EQ(edit->cursorPosition(), 3);
    edit->setSelection(1, 2);
    QTest::keyClick(edit, Qt::Key_Delete);
    EXPECT_EQ(edit->Content(), "1def");
}

TEST_F(FormPW, RefusesACharacterOutsideTheCodePageInWords) {
    Show(true);
    const QSize size = form->size();
    QTest::keyClicks(edit, "ab");
    test::TypeText(*edit, "ł");
    EXPECT_EQ(edit->Content(), "ab");
    EXPECT_TRUE(Named<QLabel>(*form, "lblHint").text().contains("ł"));
    QTest::keyClicks(edit, "c");
    EXPECT_TRUE(Named<QLabel>(*form, "lblHint").text().isEmpty());
    test::TypeText(*edit, "A");  // without Shift
    EXPECT_EQ(Named<QLabel>(*form, "lblHint").text(), "Caps Lock is on.");
    QTest::keyClicks(edit, "1");
    EXPECT_EQ(Named<QLabel>(*form, "lblHint").text(), "Caps Lock is on.") << "it stays on";
    form->SetCapsLock(false);
    EXPECT_EQ(Named<QLabel>(*form, "lblHint").text(), "");
    QCoreApplication::processEvents();
    EXPECT_EQ(form->size(), size) << "nothing may move";
}

TEST_F(FormPW, TheEntryHasTheFocusAgainOnceTheBoxIsPressed) {
    Show(false);
    QTest::keyClicks(edit, "one three");
    edit->setCursorPosition(4);
    QTest::keyClick(form->windowHandle(), Qt::Key_S, Qt::AltModifier);
    auto& box = Named<QCheckBox>(*form, "chkShowClear");
    EXPECT_EQ(form->focusWidget(), edit) << "else every key is read in clear";
    EXPECT_TRUE(QTest::qWaitFor([&] { return box.isChecked(); }));
    EXPECT_EQ(form->focusWidget(), edit);
    test::Click(*form, "chkShowClear");
    EXPECT_FALSE(box.isChecked());
    EXPECT_EQ(form->focusWidget(), edit);
    box.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&box, Qt::Key_Space);
    ASSERT_EQ(form->focusWidget(), edit);
    QTest::keyClicks(edit, "two ");
    EXPECT_EQ(edit->Content(), "one two three") << "at its place, and nothing is selected";
}

TEST_F(FormPW, TheMeterDoesNotPraiseWhatEverybodyTriesFirst) {
    Show(true);
    const auto grade = [this](const QString& text) {
        edit->SetContent(ToLatinSecret(text));
        return Named<QLabel>(*form, "lblQuality").text();
    };
    EXPECT_EQ(grade("password1!"), "Weak");
    EXPECT_EQ(grade("Qwertyuiop1!"), "Weak");
    EXPECT_EQ(grade("seven77"), "Too short: 1 more to go");
    EXPECT_EQ(grade("gTz41uVq9pLmWx73"), "Strong");
    auto& bar = Named<QProgressBar>(*form, "barQuality");
    const int strong = bar.value();
    EXPECT_EQ(grade("correct horse battery staple"), "Weak");
    EXPECT_LT(bar.value(), strong / 2) << "the bar says the same";
}

TEST_F(FormPW, ANewOneThatIsTooShortGoesToWhoAskedAtOnce) {
    Show(true);
    Enter("short");
    EXPECT_FALSE(form->isVisible()) << "no question about its quality, no second entry";
    EXPECT_EQ(form->TakeTypedSecret().view(), "short");
}

TEST_F(FormPW, StandsInTheMiddleOfItsWindowAlsoWhenThatGetsItsPlaceLater) {
    QWidget window;
    window.resize(700, 500);
    window.show();
    form = std::make_unique<frmPW>(PassphraseRequest{"Database: A.BMR", "Passphrase"}, boxes, &window);
    form->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    const auto offCentre = [&] {
        return (form->frameGeometry().center() - window.frameGeometry().center()).manhattanLength();
    };
    EXPECT_LE(offCentre(), 2);
    window.move(60, 40);
    EXPECT_TRUE(QTest::qWaitFor([&] { return offCentre() <= 2; }, 1000)) << offCentre();
    form.reset();  // before the window that it belongs to
}

TEST_F(FormPW, WeakFirstEntryIsQuestionedAndOnlyThat) {
    boxes.Expect(158, Answer::No).Expect(158, Answer::Yes);
    Show(true);
    Enter("only small letters");
    EXPECT_TRUE(edit->Content().empty());
    EXPECT_EQ(Prompt(), "New Passphrase");
    EXPECT_TRUE(Named(*form, "barQuality").isVisible());
    Enter("ONLYCAPITALS");
    EXPECT_EQ(Prompt(), "Confirm passphrase:");
    EXPECT_FALSE(Named(*form, "barQuality").isVisible()) << "what was accepted is not judged again";
    EXPECT_FALSE(Named(*form, "lblQuality").isVisible());
    Enter("ONLYCAPITALS");
    EXPECT_EQ(form->result(), QDialog::Accepted);
    EXPECT_EQ(form->TakeTypedSecret().view(), "ONLYCAPITALS");
    EXPECT_TRUE(edit->Content().empty());
}

TEST_F(FormPW, TwoDifferentEntriesStartAnewOrCancel) {
    boxes.Expect(84, Answer::Retry).Expect(84, Answer::Cancel);
    Show(true);
    Enter("first one 1");
    Enter("first one 2");
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(Prompt(), "New Passphrase");
    EXPECT_TRUE(edit->Content().empty());
    Enter("first one 1");
    Enter("First one 1");
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(form->result(), QDialog::Rejected);
    EXPECT_TRUE(form->TakeTypedSecret().empty());
}

TEST_F(FormPW, AsksForNoiseWhileTheTextIsShort) {
    Show(false, true);
    QSignalSpy wanted(form.get(), &frmPW::NoiseWanted);
    std::function<void()> hide;
    form->SetBeforeHide([&hide](std::function<void()> go) { hide = std::move(go); });
    QTest::keyClicks(edit, "1234567");
    EXPECT_EQ(wanted.size(), 5);
    auto& burst = Named<QLineEdit>(*form, "txtBurst");
    EXPECT_EQ(&burst, form->BurstBox());
    EXPECT_FALSE(burst.isEnabled());
    EXPECT_TRUE(burst.isVisible()) << "what is hidden cannot take the focus";
    EXPECT_EQ(burst.size(), QSize(1, 1));
    QTest::keyClick(edit, Qt::Key_Return);
    EXPECT_TRUE(form->isVisible() && hide) << "it goes when the last decoys have gone";
    EXPECT_TRUE(edit->Content().empty());
    QTest::keyClick(edit, Qt::Key_Escape);
    hide();
    EXPECT_EQ(form->result(), QDialog::Accepted);
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(form->TakeTypedSecret().view(), "1234567");

    Show(false, false);
    QSignalSpy all(form.get(), &frmPW::NoiseWanted);
    QTest::keyClicks(edit, "1234567");
    EXPECT_EQ(all.size(), 7);
}

}  // namespace
}  // namespace bmr::kit
