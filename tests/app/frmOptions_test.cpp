#include "app/frmOptions.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QRegularExpression>
#include <QTabBar>
#include <QTabWidget>
#include <set>

#include "custody/keyrecords.h"
#include "custody/users.h"
#include "kit/secretedit.h"
#include "support/forms.h"
#include "support/sitting.h"

namespace bmr::app {
namespace {

using test::Click;
using test::kPassphrase;
using test::Named;

struct FormOptions : testing::Test {
    FormOptions() { sitting.Make(); }
    ~FormOptions() override {
        form.reset();
        if (sitting.session.DatabaseOpen) sitting.Close();
    }
    void Show(kit::SessionOffer offer = {true, true}) {
        form = std::make_unique<frmOptions>(sitting.session, frmOptions::Surroundings{0, offer});
        QObject::connect(form.get(), &frmOptions::PrivateSwitched, [this] { ++switched; });
        form->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    }
    void Press(const char* button) { Named<QAbstractButton>(*form, button).click(); }
    void Type(const char* field, const QString& text) {
        auto& line = Named<QLineEdit>(*form, field);
        line.selectAll();
        line.insert(text);
    }
    bool On(const char* button) { return Named<QAbstractButton>(*form, button).isChecked(); }
    void Reopen() {
        sitting.Close();
        ASSERT_EQ(sitting.Open(), 0);
    }

    test::Sitting sitting;
    std::unique_ptr<frmOptions> form;
    int switched = 0;
};

TEST_F(FormOptions, WhatIsChosenComesBackFromTheFile) {
    const std::pair<const char*, QString> texts[] = {
        {"Idle", "15"},           {"WorkdayStart", "09:15"},    {"WorkdayEnd", "16:00"},
        {"DisplayFrom", "06:30"}, {"txtUserDefined0", "Größe"}, {"txtUserDefined3", QString(500, 'x')},
        {"txtPIN", "täglich 'n"}};
    const char* const options[] = {"StartScreen1",   "CatShow1",        "DiaryShow0",        "calView2",
                                   "BudgetPrimary1", "PINeveryaccess1", "TodoShowCompleted", "PinApp2",
                                   "PinApp8",        "chkEndOnSuspend", "chkEndOnLock"};
    const char* const off[] = {"BudgetShow0_1", "BudgetShow2_3", "chkAlsoForeign"};
    Show();
    Press("cmdChangeIdle");
    Press("cmdPIN");
    for (const auto& [field, text] : texts)
        Type(field, text);
    for (const char* option : options)
        Press(option);
    for (const char* option : off)
        Press(option);
    Named<QComboBox>(*form, "cboStartApp").setCurrentText("Memo Pad");
    Named<QComboBox>(*form, "AppDuration").setCurrentText("90 min");
    Click(*form, "cmdOK");
    EXPECT_EQ(form->result(), QDialog::Accepted);

    Reopen();
    EXPECT_EQ(sitting.session.settings.StartSection, 14);
    EXPECT_EQ(sitting.session.pin.PinApp, 4 + 256);
    EXPECT_EQ(ToUtf8(sitting.session.pin.Pin.view()), "täglich 'n");
    Show();
    for (const auto& [field, text] : texts)
        if (QString(field) != "txtPIN") EXPECT_EQ(Named<QLineEdit>(*form, field).text(), text) << field;
    for (const char* option : options)
        EXPECT_TRUE(On(option)) << option;
    for (const char* option : off)
        EXPECT_FALSE(On(option)) << option;
    EXPECT_TRUE(On("BudgetShow0_0"));
    EXPECT_EQ(Named<QComboBox>(*form, "cboStartApp").currentText(), "Memo Pad");
    EXPECT_EQ(Named<QComboBox>(*form, "AppDuration").currentText(), "90 min");
}

TEST_F(FormOptions, CancelLeavesWithoutChange) {
    const auto before = test::RowsOf(*sitting.session.ProgramDb);
    for (const bool escape : {false, true}) {
        Show();
        Press("calView3");
        Press("chkAlsoForeign");
        Type("txtUserDefined1", "other");
        if (escape)
            QTest::keyClick(form.get(), Qt::Key_Escape);
        else
            Click(*form, "cmdCancel");
        EXPECT_FALSE(form->isVisible());
    }
    EXPECT_EQ(test::RowsOf(*sitting.session.ProgramDb), before);
    EXPECT_EQ(sitting.session.settings.calView, 0);
    EXPECT_EQ(sitting.session.userLabels, store::BuiltInUserLabels());
    EXPECT_EQ(sitting.registry.values.count("Guards/ClearForeign"), 0U);
}

TEST_F(FormOptions, AnEntryThatCannotBeStoredIsToldWhereItStands) {
    const struct {
        const char* field;
        QString text;
        const char* tab;
    } cases[] = {{"Idle", "-1", "tabSecurity"},
                 {"WorkdayEnd", "25:99", "tabCalendar"},
                 {"txtPIN", "", "tabSecurity"},
                 {"txtUserDefined2", "Ω", "tabAddress"}};
    const auto before = test::RowsOf(*sitting.session.ProgramDb);
    for (const auto& one : cases) {
        Show();
        Type(one.field, one.text);
        QTest::keyClick(form.get(), Qt::Key_Return);
        EXPECT_TRUE(form->isVisible()) << one.field;
        EXPECT_EQ(Named<QTabWidget>(*form, "SSTab1").currentWidget()->objectName(), one.tab);
        const auto& error = Named<QLabel>(*form, ("lbl" + QByteArray(one.field) + "Error").constData());
        EXPECT_TRUE(error.isVisible()) << one.field;
        EXPECT_FALSE(error.text().isEmpty());
        const QWidget* focus = form->focusWidget();
        EXPECT_TRUE(focus->objectName() == one.field || focus->findChild<QLineEdit*>(one.field))
            << focus->objectName().toStdString();
    }
    EXPECT_EQ(test::RowsOf(*sitting.session.ProgramDb), before);
}

TEST_F(FormOptions, ControlsDependOnEachOther) {
    Show({false, true});
    EXPECT_FALSE(Named(*form, "cboStartApp").isEnabled());
    Press("StartScreen1");
    EXPECT_TRUE(Named(*form, "cboStartApp").isEnabled());
    Press("StartScreen2");
    EXPECT_FALSE(Named(*form, "cboStartApp").isEnabled());

    EXPECT_FALSE(Named(*form, "Idle").isEnabled());
    Press("cmdChangeIdle");
    EXPECT_TRUE(Named(*form, "Idle").isEnabled());
    for (int i = 0; i < 12; ++i)
        QTest::keyClick(&Named(*form, "UpDownIdle"), Qt::Key_Up);
    EXPECT_EQ(Named<QLineEdit>(*form, "Idle").text(), "15");

    Press("BudgetShow1_2");
    Press("BudgetShow1_3");
    EXPECT_TRUE(On("BudgetShow1_2")) << "one of the pair stays on";
    EXPECT_FALSE(On("BudgetShow1_3"));

    EXPECT_FALSE(Named(*form, "chkEndOnSuspend").isEnabled());
    EXPECT_TRUE(Named(*form, "chkEndOnLock").isEnabled());
    EXPECT_TRUE(form->findChild<QLabel*>("lblNoSessionEvents"));
}

TEST_F(FormOptions, ReturnStoresWhereverTheFocusWas) {
    Show();
    Press("calView2");
    auto& tabs = Named<QTabWidget>(*form, "SSTab1");
    tabs.setCurrentIndex(1);
    Named(*form, "WorkdayStart").setFocus();
    tabs.setCurrentIndex(2);  // the focus goes somewhere else with its page
    QTest::keyClick(form->focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
    QTest::keyClick(form->focusWidget(), Qt::Key_Return);
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(sitting.session.settings.calView, 2);
}

TEST_F(FormOptions, UpAndDownStepThePartOfTheTimeThatTheCursorStandsIn) {
    Show();
    auto& line = Named<QLineEdit>(*form, "WorkdayStart");
    auto& spin = Named(*form, "udHN_workdaystart");
    line.selectAll();
    QTest::keyClick(&spin, Qt::Key_Up);
    EXPECT_EQ(line.text(), "09:00");
    line.setCursorPosition(4);
    QTest::keyClick(&spin, Qt::Key_Down);
    EXPECT_EQ(line.text(), "08:55");
}

TEST_F(FormOptions, ThePinIsMaskedUntilItIsToBeShown) {
    Show();
    auto& frame = Named(*form, "PinFrame");
    auto& edit = Named<kit::SecretEdit>(*form, "txtPIN");
    const QString pin = QString::fromStdString(ToUtf8(sitting.session.pin.Pin.view()));
    EXPECT_TRUE(frame.isHidden());
    Named<QTabWidget>(*form, "SSTab1").setCurrentIndex(2);
    form->resize(500, 200);
    Press("cmdPIN");
    EXPECT_TRUE(frame.isVisible());
    EXPECT_TRUE(QTest::qWaitFor([&edit] { return !edit.visibleRegion().isEmpty(); }, 500)) << "scrolled to";
    EXPECT_FALSE(edit.text().contains(pin.left(2)));
    Press("cmdShowPIN");
    EXPECT_EQ(edit.text(), pin) << "the default one can be looked up";
    Press("cmdPINhide");
    EXPECT_TRUE(frame.isHidden());
    EXPECT_FALSE(edit.text().contains(pin.left(2)));
    Press("cmdPIN");
    edit.selectAll();
    test::TypeText(edit, "Ω");
    EXPECT_TRUE(Named(*form, "lbltxtPINError").isVisible());
    test::TypeText(edit, "é1");
    Click(*form, "cmdOK");
    EXPECT_EQ(sitting.session.pin.PinKind, 1);
    EXPECT_EQ(sitting.session.pin.Pin.view(),
              "\xE9"
              "1");
}

TEST_F(FormOptions, ThePinFollowsAChangeOfThePassphrase) {
    ASSERT_EQ(custody::WritePin(sitting.session, 1, "4711", 3, true), 0);
    Show();
    sitting.prompter.Type(std::nullopt).Expect(124);
    Press("cmdPWchange");
    sitting.prompter.Type("wrong one").Expect(85).Expect(124);
    Press("cmdPWchange");
    sitting.prompter.Type(kPassphrase).Type(std::nullopt).Expect(124);
    Press("cmdPWchange");
    EXPECT_TRUE(On("PinApp0"));

    sitting.prompter.Type(kPassphrase).Type("another Horse 10");
    Press("cmdPWchange");
    EXPECT_FALSE(On("PinApp0"));
    EXPECT_TRUE(On("PINeveryaccess0"));
    EXPECT_NE(sitting.session.pin.Pin.view(), "4711");
    EXPECT_EQ(Named<kit::SecretEdit>(*form, "txtPIN").Content(), sitting.session.pin.Pin.view());
    Click(*form, "cmdOK");
    EXPECT_EQ(sitting.session.pin.PinKind, 0) << "still the default one";
    sitting.Close();
    ASSERT_EQ(sitting.Open("another Horse 10"), 0);
}

TEST_F(FormOptions, APinThatCannotBeReadStaysUntilAnotherIsMade) {
    ASSERT_EQ(custody::WritePin(sitting.session, 1, "4711", 3, true), 0);
    sitting.Close();
    sitting.Edit("fSec=2", [](engine::Recordset& row) { row.SetField("fT2", Bytes(42, 'n')); });
    const auto stored = [this] {
        return TextOf(test::RowsOf(*sitting.session.ProgramDb, " WHERE fSec=2").at(0).at("fT2"));
    };
    ASSERT_EQ(sitting.Open(), 0);
    Show();
    Named<QTabWidget>(*form, "SSTab1").setCurrentIndex(2);
    for (const char* control : {"PinApp0", "PinApp8", "PINeveryaccess1", "cmdPIN"})
        EXPECT_FALSE(Named(*form, control).isEnabled()) << control;
    Named<QComboBox>(*form, "AppDuration").setCurrentText("90 min");
    Click(*form, "cmdOK");
    EXPECT_EQ(form->result(), QDialog::Accepted);
    EXPECT_EQ(sitting.session.settings.AppDuration, 90);
    EXPECT_EQ(stored(), Bytes(42, 'n')) << "OK alone leaves it";
    Reopen();
    EXPECT_TRUE(sitting.session.pin.Unread);

    Show();
    Named<QTabWidget>(*form, "SSTab1").setCurrentIndex(2);
    sitting.prompter.Type("wrong one").Expect(85).Type(std::nullopt).Type(kPassphrase);
    Press("cmdMakePIN");
    Press("cmdMakePIN");
    EXPECT_EQ(stored(), Bytes(42, 'n')) << "only the user makes another";
    Press("cmdMakePIN");
    EXPECT_FALSE(Named(*form, "cmdMakePIN").isVisible());
    EXPECT_FALSE(Named(*form, "lblPinUnread").isVisible());
    Press("PinApp4");
    Click(*form, "cmdOK");
    Reopen();
    EXPECT_EQ(sitting.session.pin.PinApp, 0x10);
    EXPECT_FALSE(sitting.session.pin.Unread);
    Show();
    EXPECT_TRUE(Named(*form, "cmdMakePIN").isHidden());
}

TEST_F(FormOptions, GuardsOfSectionsThatALaterVersionHasAreKept) {
    ASSERT_EQ(custody::WritePin(sitting.session, 1, "4711", 0x40000201, false), 0);
    Show();
    EXPECT_TRUE(On("PinApp0"));
    Press("PinApp0");
    Press("PinApp1");
    Click(*form, "cmdOK");
    Reopen();
    EXPECT_EQ(sitting.session.pin.PinApp, 0x40000202);
}

TEST_F(FormOptions, PrivateRecordsAreSwitchedAtOnce) {
    Show();
    Press("chkShowPrivate");
    EXPECT_FALSE(sitting.session.ShowPrivate);
    EXPECT_EQ(switched, 1);
    sitting.prompter.Type("wrong one").Expect(85);
    Press("chkShowPrivate");
    EXPECT_FALSE(On("chkShowPrivate")) << "a refusal leaves the box";
    EXPECT_FALSE(sitting.session.ShowPrivate);
    EXPECT_EQ(switched, 1);
    sitting.prompter.Type(kPassphrase);
    Press("chkShowPrivate");
    EXPECT_TRUE(On("chkShowPrivate"));
    EXPECT_EQ(switched, 2);
    Press("chkShowPrivate");
    Click(*form, "cmdCancel");
    EXPECT_FALSE(sitting.session.ShowPrivate);
}

TEST_F(FormOptions, AStoreThatFailsIsToldAndTheFormStays) {
    Show();
    Press("calView1");
    const std::int32_t user = std::exchange(sitting.session.user.fPK, 1);
    sitting.prompter.Expect(109);
    Click(*form, "cmdOK");
    EXPECT_TRUE(form->fatal);
    sitting.session.user.fPK = user;

    Show();
    Press("calView1");
    Secret keystring = std::move(sitting.session.cipher.Keystring);
    sitting.prompter.Expect(0);
    Click(*form, "cmdOK");
    EXPECT_TRUE(form->isVisible());
    EXPECT_FALSE(form->fatal);
    EXPECT_EQ(sitting.session.settings.calView, 0);
    sitting.session.cipher.Keystring = std::move(keystring);
    Click(*form, "cmdOK");
    EXPECT_EQ(sitting.session.settings.calView, 1);
}

TEST_F(FormOptions, TheKeyboardReachesEverything) {
    Show();
    auto& tabs = Named<QTabWidget>(*form, "SSTab1");
    for (int tab = 0; tab < 5; ++tab) {
        EXPECT_EQ(tabs.currentIndex(), tab);
        std::set<QString> reached;
        for (int i = 0; i < 60; ++i) {
            QTest::keyClick(form->focusWidget(), Qt::Key_Tab);
            const QWidget* at = form->focusWidget();
            // An option stands for its group: the arrow keys go to the others.
            reached.insert(at->objectName().remove(at->inherits("QRadioButton") ? QRegularExpression("\\d$")
                                                                                : QRegularExpression("$^")));
        }
        for (const QWidget* control : tabs.currentWidget()->findChildren<QWidget*>()) {
            if (!control->isVisible() || !control->isEnabled() || control->focusProxy() ||
                control->objectName().isEmpty() || control->objectName().startsWith("qt_"))
                continue;
            if (!control->inherits("QAbstractButton") && !control->inherits("QAbstractSpinBox") &&
                !control->inherits("QComboBox"))
                continue;
            QString name = control->objectName();
            if (control->inherits("QRadioButton")) name.chop(1);
            EXPECT_TRUE(reached.contains(name)) << name.toStdString();
        }
        QTest::keyClick(form.get(), Qt::Key_Tab, Qt::ControlModifier);
    }
    EXPECT_EQ(tabs.currentIndex(), 0);
    QTest::keyClick(form.get(), Qt::Key_Tab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(tabs.currentIndex(), 4);
}

TEST_F(FormOptions, NoMnemonicStandsTwiceOnAPage) {
    Show();
    auto& tabs = Named<QTabWidget>(*form, "SSTab1");
    Press("cmdPIN");
    const auto take = [](QString& taken, const QString& text) {
        const QKeySequence key = QKeySequence::mnemonic(text);
        if (key.isEmpty()) return;
        EXPECT_FALSE(taken.contains(key.toString() + ";")) << text.toStdString();
        taken += key.toString() + ";";
    };
    QString common;
    for (int i = 0; i < tabs.count(); ++i)
        take(common, tabs.tabText(i));
    take(common, Named<QAbstractButton>(*form, "cmdOK").text());
    take(common, Named<QAbstractButton>(*form, "cmdCancel").text());
    for (int i = 0; i < tabs.count(); ++i) {
        QString taken = common;
        for (const auto* button : tabs.widget(i)->findChildren<QAbstractButton*>())
            take(taken, button->text());
        for (const auto* label : tabs.widget(i)->findChildren<QLabel*>())
            if (label->buddy()) take(taken, label->text());
    }
}

}  // namespace
}  // namespace bmr::app
