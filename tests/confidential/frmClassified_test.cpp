#include "confidential/frmClassified.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDialog>
#include <QFontDatabase>
#include <QFontInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <map>

#include "kit/recordlistview.h"
#include "support/forms.h"
#include "support/store.h"

namespace bmr::confidential {
namespace {

void Type(QDialog& editor, const char* name, const QString& text) {
    editor.findChild<QLineEdit*>(name)->setText(text);
}

class Classified : public testing::Test {
  protected:
    Classified() {
        store.session.ShowPrivate = true;
        store.session.ports.desktop = &desktop;
        form = std::make_unique<frmClassified>(store.session, [this](const QString& text) { copied = text; });
        form->resize(1000, 700);
        form->show();
    }
    template <class T>
    T& Find(const std::string& name) {
        return test::Named<T>(*form, name.c_str());
    }
    /// Works the next editor by its controls' names.
    void OnDialog(const std::function<void(QDialog&)>& work) {
        visitor.Meet("frmEditConfidential",
                     [work](QWidget& editor) { work(dynamic_cast<QDialog&>(editor)); });
    }
    void AddLogin(const QString& name, const QString& password) {
        OnDialog([=](QDialog& editor) {
            Type(editor, "txtCtl0", name);
            Type(editor, "txtCtl1", "https://example.org");
            Type(editor, "txtCtl3", password);
            editor.findChild<QPushButton*>("cmdOK")->click();
        });
        form->cmdAdd_Click();
    }
    QStringList Names() {
        QStringList names;
        const auto* model = Find<kit::RecordListView>("ListSelect").model();
        for (int row = 0; row < model->rowCount(); ++row)
            names << model->index(row, 0).data().toString();
        return names;
    }

    test::TempStore store;
    test::RecordingDesktop desktop;
    std::unique_ptr<frmClassified> form;
    QString copied;
    test::Visitor visitor;
};

TEST_F(Classified, NothingIsShownUntilAKindIsChosen) {
    form->cat_Click(0);
    form->cmdAdd_Click();  // ignored: no dialog comes
    EXPECT_FALSE(Find<QPushButton>("cmdAdd").isEnabled());
    EXPECT_FALSE(Find<kit::RecordListView>("ListSelect").isEnabled());
    EXPECT_FALSE(Find<QWidget>("padFrame").isVisible());
    EXPECT_TRUE(Find<QWidget>("padHint").isVisible()) << "the empty pad says what to do";
}

struct ClassifiedSearch : Classified {
    ClassifiedSearch() {
        for (const auto& [kind, name] :
             {std::pair{16, "Garden shop"}, {1, "Garden forum"}, {7, "Rose card"}, {1, "Bank"}}) {
            Record record;
            record.kind = kind;
            record.n[0] = name;
            record.n[3] = "secret";
            EXPECT_EQ(WriteRecord(store.session, record), 0);
            keys[name] = record.key;
        }
    }
    QStringList Found() {
        QStringList rows;
        const auto* model = found().model();
        for (int row = 0; row < model->rowCount(); ++row)
            rows << model->index(row, 0).data().toString();
        return rows;
    }
    kit::RecordListView& found() { return Find<kit::RecordListView>("listFound"); }
    QString Shown() { return Find<QLineEdit>("txtCtl0").text(); }
    bool Pressed(int kind) { return Find<QAbstractButton>("cat" + std::to_string(kind)).isChecked(); }
    std::map<std::string, std::int32_t> keys;
};

TEST_F(ClassifiedSearch, GoesThroughAllKindsAndEndsAtTheOneThatWasChosen) {
    QSignalSpy status(form.get(), &SectionForm::StatusChanged);
    form->SetSearch("garden");
    EXPECT_TRUE(found().isVisible());
    EXPECT_EQ(Found(), (QStringList{"Web Login", "Garden forum", "E-Commerce", "Garden shop"}));
    EXPECT_EQ(status.back()[0].toString(), "2 records found, 1 selected");
    EXPECT_EQ(found().SelectedKey(), keys["Garden forum"]) << "a heading is no record";
    EXPECT_EQ(Find<QLabel>("lblTxt4").isVisible(), false);
    QTest::keyClick(&found(), Qt::Key_Down);
    EXPECT_EQ(found().SelectedKey(), keys["Garden shop"]);
    EXPECT_EQ(Shown(), "Garden shop");
    EXPECT_EQ(Find<QLabel>("lblTxt0").text(), "Company") << "its own kind's captions";
    EXPECT_EQ(Find<QLabel>("lblTxt4").text(), "Customer Number");
    EXPECT_TRUE(Find<QLabel>("lblTxt4").isVisible());
    EXPECT_EQ(Find<QLineEdit>("txtCtl3").text(), QString(10, '?'));
    EXPECT_FALSE(Pressed(16)) << "not before the search is left";

    QSignalSpy ended(form.get(), &SectionForm::SearchEnded);
    form->SetSearch("");
    EXPECT_TRUE(Pressed(16));
    EXPECT_FALSE(found().isVisible());
    EXPECT_EQ(Names(), QStringList{"Garden shop"});
    EXPECT_EQ(Shown(), "Garden shop");
    EXPECT_EQ(ended.size(), 1);
    EXPECT_TRUE(Found().isEmpty()) << "nothing is kept of it";

    form->SetSearch("nobody has this");
    EXPECT_FALSE(Find<QWidget>("padFrame").isVisible());
    EXPECT_FALSE(Find<QWidget>("padHint").isVisible()) << "there is nothing to choose";
    form->SetSearch("");
    EXPECT_TRUE(Pressed(16)) << "where it began";
    EXPECT_EQ(Shown(), "Garden shop");
}

TEST_F(ClassifiedSearch, OfSeveralRowsPadAndCopyMeanTheOneWithTheCursor) {
    auto record = FetchRecord(store.session, keys["Bank"]);
    ASSERT_TRUE(record);
    record->n[3] = "the bank's";
    ASSERT_EQ(WriteRecord(store.session, *record), 0);
    form->cat_Click(1);
    auto& list = Find<kit::RecordListView>("ListSelect");
    ASSERT_EQ(Names(), (QStringList{"Bank", "Garden forum"}));
    const auto click = [&](int row, Qt::KeyboardModifiers held, Qt::MouseButton button) {
        const QRect cell = list.visualRect(list.model()->index(row, 0));
        QTest::mouseClick(list.viewport(), button, held, cell.center());
    };
    const auto copy = [this] {
        Find<QAction>("mnuConfidentialCopy").trigger();
        return std::exchange(copied, {});
    };
    click(1, Qt::ControlModifier, Qt::LeftButton);
    EXPECT_EQ(Shown(), "Garden forum");
    EXPECT_EQ(copy(), "secret");
    click(0, {}, Qt::RightButton);
    EXPECT_EQ(list.SelectedCount(), 2);
    EXPECT_EQ(Shown(), "Bank");
    EXPECT_EQ(copy(), "the bank's");
    QTest::keyClick(&list, Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(Shown(), "Garden forum");
    EXPECT_EQ(copy(), "secret");
}

TEST_F(ClassifiedSearch, EditsAndDeletesWhatWasFoundAndAKindEndsIt) {
    form->SetSearch("garden");
    found().SelectKey(keys["Garden shop"]);
    OnDialog([](QDialog& editor) {
        EXPECT_EQ(editor.findChild<QLineEdit*>("txtCtl0")->text(), "Garden shop");
        Type(editor, "txtCtl0", "A garden");
        editor.findChild<QPushButton*>("cmdOK")->click();
    });
    form->cmdEdit_Click();
    EXPECT_EQ(Found(), (QStringList{"Web Login", "Garden forum", "E-Commerce", "A garden"}));
    EXPECT_EQ(Shown(), "A garden");
    store.prompter.Expect(79, Answer::Ok);
    form->cmdDelete_Click();
    EXPECT_EQ(Found(), (QStringList{"Web Login", "Garden forum"}));

    QSignalSpy ended(form.get(), &SectionForm::SearchEnded);
    Find<QAbstractButton>("cat7").click();
    EXPECT_EQ(ended.size(), 1);
    EXPECT_EQ(Names(), QStringList{"Rose card"});
    form->SetSearch("garden");
    AddLogin("New one", "x");
    EXPECT_TRUE(Pressed(1)) << "a new record is of the found one's kind";
    EXPECT_EQ(Names(), (QStringList{"Bank", "Garden forum", "New one"}));
}

TEST_F(ClassifiedSearch, ANewRecordAsksForItsKindOnlyWhileNoneIsChosen) {
    EXPECT_FALSE(Find<QPushButton>("cmdAdd").isEnabled());
    const auto add = [this](const QString& expectedTitle) {
        OnDialog([=](QDialog& editor) {
            EXPECT_EQ(editor.windowTitle(), expectedTitle);
            editor.reject();
        });
        Find<QAction>("mnuConfidentialAdd").trigger();
    };
    const auto onMenu = [this](const std::function<void(QMenu&)>& work) {
        QTimer::singleShot(0, form.get(), [work] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            ASSERT_NE(menu, nullptr);
            EXPECT_EQ(menu->objectName(), "kindsMenu");
            work(*menu);
        });
    };
    onMenu([](QMenu& menu) { menu.close(); });
    Find<QAction>("mnuConfidentialAdd").trigger();  // no dialog comes
    onMenu([](QMenu& menu) {
        QTest::keyClick(&menu, Qt::Key_Down);
        QTest::keyClick(&menu, Qt::Key_Return);
    });
    add("Email Accounts");
    EXPECT_TRUE(Pressed(2));
    add("Email Accounts");  // no menu comes
}

TEST_F(ClassifiedSearch, TheLastKindIsPressedAgainUntilTheDatabaseIsClosed) {
    const auto reopen = [this] {
        form.reset();
        form = std::make_unique<frmClassified>(store.session, [](const QString&) {});
        form->show();
    };
    reopen();
    EXPECT_TRUE(Pressed(0)) << "nothing was chosen yet";
    form->cat_Click(7);
    reopen();
    EXPECT_TRUE(Pressed(7));
    EXPECT_EQ(Shown(), "Rose card");
    EXPECT_TRUE(Find<QPushButton>("cmdAdd").isEnabled());
}

TEST_F(Classified, TheKeyboardAloneChoosesKindsAndKeepsTheFocus) {
    QApplication::setActiveWindow(form.get());
    form->setFocus();
    const auto press = [this](Qt::Key key) { QTest::keyClick(form->focusWidget(), key); };
    const auto focus = [this] { return form->focusWidget()->objectName(); };
    EXPECT_EQ(focus(), "cat1");
    for (int i = 0; i < 9; ++i)
        press(Qt::Key_Down);
    EXPECT_EQ(focus(), "cat16");
    EXPECT_TRUE(Find<QLabel>("lblCategory").text().endsWith("E-COMMERCE"));
    press(Qt::Key_Up);
    EXPECT_EQ(focus(), "cat8");
    AddLogin("Library", "hunter2");
    EXPECT_EQ(focus(), "ListSelect");
    QApplication::setActiveWindow(form.get());
    Find<QToolButton>("copy0").setFocus();
    store.prompter.Expect(79, Answer::Ok);
    form->cmdDelete_Click();
    EXPECT_EQ(focus(), "cat8") << "not outside, when what had it is gone";
}

TEST_F(Classified, APasswordIsMaskedOnThePadCopiedAsItIsAndOpenInTheDialog) {
    form->cat_Click(1);
    AddLogin("Library", "hunter2");
    AddLogin("Allotment", "rosebud");
    EXPECT_EQ(Names(), (QStringList{"Allotment", "Library"}));
    auto& password = Find<QLineEdit>("txtCtl3");
    EXPECT_EQ(password.text(), QString(10, '?'));
    EXPECT_TRUE(QFontInfo(password.font()).fixedPitch() ||
                password.font().family() == QFontDatabase::systemFont(QFontDatabase::FixedFont).family());
    EXPECT_EQ(Find<QLineEdit>("txtCtl2").font(), form->font()) << "only the secret";
    Find<QToolButton>("copy3").click();
    EXPECT_EQ(copied, "rosebud");
    Find<QToolButton>("open1").click();
    EXPECT_EQ(desktop.asked, std::vector<std::string>{"web https://example.org"});
    Find<QCheckBox>("chkPlainPW").click();
    EXPECT_EQ(password.text(), "rosebud");
    Find<QCheckBox>("chkPlainPW").click();
    EXPECT_EQ(password.text(), QString(10, '?'));
    OnDialog([](QDialog& editor) {
        EXPECT_EQ(editor.findChild<QLineEdit*>("txtCtl3")->text(), "rosebud");
        Type(editor, "txtCtl0", "Zoo");
        editor.findChild<QPushButton*>("cmdOK")->click();
    });
    form->cmdEdit_Click();
    EXPECT_EQ(Names(), (QStringList{"Library", "Zoo"}));
    EXPECT_EQ(Find<QLineEdit>("txtCtl0").text(), "Zoo");  // the selection followed its record
    store.prompter.Expect(79, Answer::Ok);
    form->cmdDelete_Click();
    EXPECT_EQ(Names(), (QStringList{"Library"}));
}

TEST_F(Classified, CancellingANewRecordShowsNoHalfMadeOne) {
    form->cat_Click(5);
    store.prompter.Expect(20, Answer::No).Expect(20, Answer::Yes);
    store.prompter.onAsk = [this] { EXPECT_EQ(store.prompter.shown.back().words[1], "Keep editing"); };
    OnDialog([](QDialog& editor) {
        Type(editor, "txtCtl0", "Bank");
        editor.findChild<QPushButton*>("cmdEsc")->click();
        EXPECT_TRUE(editor.isVisible());  // No stays
        editor.findChild<QPushButton*>("cmdEsc")->click();
    });
    form->cmdAdd_Click();
    EXPECT_TRUE(Names().isEmpty());
    EXPECT_FALSE(Find<QWidget>("padFrame").isVisible());
}

TEST_F(Classified, AHighFieldKeepsItsLinesAndTabAndEnterGoTheToldWay) {
    form->cat_Click(5);
    OnDialog([](QDialog& editor) {
        QApplication::setActiveWindow(&editor);
        auto* name = editor.findChild<QLineEdit*>("txtCtl0");
        name->setFocus();
        QTest::keyClick(name, Qt::Key_Return);
        auto* high = editor.findChild<QPlainTextEdit*>("tmpTxt");
        EXPECT_EQ(editor.focusWidget(), high);
        high->setPlainText("Long Lane 1\nOld Town");
        QTest::keyClick(high, Qt::Key_Tab);
        EXPECT_EQ(editor.focusWidget()->objectName(), "txtCtl2");
        auto* last = editor.findChild<QLineEdit*>("txtCtl4");
        last->setFocus();
        QTest::keyClick(last, Qt::Key_Tab);
        EXPECT_EQ(editor.focusWidget()->objectName(), "txtNotes");
        name->setText("Bank");
        QTest::keyClick(editor.windowHandle(), Qt::Key_Return, Qt::ControlModifier);
    });
    form->cmdAdd_Click();
    EXPECT_EQ(Find<QPlainTextEdit>("txtTall").toPlainText(), "Long Lane 1\nOld Town");
}

TEST_F(Classified, EnterInAMaskedFieldGoesOnAndOnlyTabStopsAtTheDice) {
    form->cat_Click(7);  // the last two are masked
    OnDialog([](QDialog& editor) {
        auto* masked = editor.findChild<QLineEdit*>("txtCtl4");
        for (const auto key : {Qt::Key_Return, Qt::Key_Enter}) {
            masked->setFocus();
            QTest::keyClick(masked, key);
            EXPECT_EQ(editor.focusWidget()->objectName(), "txtNotes");
            EXPECT_TRUE(editor.isVisible()) << "and does not save";
        }
        masked->setFocus();
        QTest::keyClick(masked, Qt::Key_Tab);
        EXPECT_EQ(editor.focusWidget()->objectName(), "dice4");
        editor.reject();
    });
    form->cmdAdd_Click();
}

TEST_F(Classified, ADamagedRecordIsShownAsSuchAndOnlyWrittenOverWhenAsked) {
    form->cat_Click(1);
    AddLogin("Broken", "rosebud");
    auto& list = Find<kit::RecordListView>("ListSelect");
    const std::int32_t key = list.SelectedKey();
    EXPECT_FALSE(Find<QLabel>("lblDamaged").isVisible());
    EXPECT_NE(Find<QLabel>("lblLastModified").text(), "");
    store.Set(key, "fEtx", Bytes("xxxx"));
    form->Refresh();
    EXPECT_TRUE(Find<QLabel>("lblDamaged").isVisible());
    EXPECT_EQ(Find<QLabel>("lblLastModified").text(), "") << "no date is no day in 1899";
    store.prompter.Expect(0, Answer::No);
    form->cmdEdit_Click();  // no dialog comes
    EXPECT_EQ(store.prompter.shown.back().standard, Answer::No);

    // A kind that no version knows: no list holds it, and nothing asks what its fields mean.
    store.Set(key, "fG1", std::int32_t{99});
    form->SelectRecord(key);
    custody::Draft draft;
    draft.key = key;
    form->OpenDraft(draft);
    EXPECT_EQ(Names(), QStringList{"Broken"}) << "the list was not read anew";
}

TEST_F(Classified, TheMenuAndTheKeysCopyWhatStandsBehindTheMask) {
    form->cat_Click(1);
    AddLogin("Library", "hun ter2");
    auto& password = Find<QLineEdit>("txtCtl3");
    const auto choose = [](QWidget& field, const char* entry) {
        QStringList names;
        QTimer::singleShot(0, &field, [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            ASSERT_NE(menu, nullptr);
            for (QAction* action : menu->actions()) {
                if (action->isEnabled() && !action->isSeparator()) names << action->objectName();
                if (action->objectName() == entry) action->trigger();
            }
            menu->close();
        });
        QContextMenuEvent click(QContextMenuEvent::Mouse, QPoint(3, 3), field.mapToGlobal(QPoint(3, 3)));
        QCoreApplication::sendEvent(&field, &click);
        return names;
    };
    const auto clipboard = [] { return QApplication::clipboard()->text(); };
    password.selectAll();
    EXPECT_EQ(choose(password, "mnuCopy"), (QStringList{"mnuCopy", "mnuCopyNoSpaces", "mnuSelectAll"}));
    EXPECT_EQ(clipboard(), "hun ter2");
    choose(password, "mnuCopyNoSpaces");
    EXPECT_EQ(clipboard(), "hunter2");
    auto& url = Find<QLineEdit>("txtCtl1");
    url.setSelection(0, 5);
    EXPECT_TRUE(choose(url, "mnuCopy").contains("mnuWeb"));
    EXPECT_EQ(clipboard(), "https");

    QApplication::setActiveWindow(form.get());
    password.setFocus();
    password.selectAll();
    QTest::keyClick(&password, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(copied, "hun ter2") << "not the mask";
    url.setFocus();
    Find<QAction>("mnuConfidentialCopy").trigger();
    EXPECT_EQ(copied, "https://example.org") << "the field with the cursor";
    Find<kit::RecordListView>("ListSelect").setFocus();
    Find<QAction>("mnuConfidentialCopy").trigger();
    EXPECT_EQ(copied, "hun ter2") << "from the list, the secret";
}

TEST_F(Classified, AFifthFieldThatTheKindDoesNotShowSurvivesAnEdit) {
    Record record;
    record.kind = 1;
    record.n = {"Site", "", "", "", "of another\nprogram"};
    ASSERT_EQ(WriteRecord(store.session, record), 0);
    form->cat_Click(1);
    OnDialog([](QDialog& editor) {
        EXPECT_FALSE(editor.findChild<QLineEdit*>("txtCtl4")->isVisible());
        Type(editor, "txtCtl2", "me");
        editor.findChild<QPushButton*>("cmdOK")->click();
    });
    form->cmdEdit_Click();
    const auto stored = FetchRecord(store.session, record.key);
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->n[2], "me");
    EXPECT_EQ(stored->n[4], record.n[4]);
}

TEST_F(Classified, TextsAreMeasuredAndLeftToTheByte) {
    Record record;
    record.kind = 5;
    record.n[0] = "Bank";
    record.n[1] = "Lane 1\nTown";  // ended as another program does
    record.notes = "a\rb";
    ASSERT_EQ(WriteRecord(store.session, record), 0);
    form->cat_Click(5);
    OnDialog([](QDialog& editor) {
        auto* high = editor.findChild<QPlainTextEdit*>("tmpTxt");
        const QString before = high->toPlainText();
        high->setPlainText(QString(70000, 'x'));
        editor.findChild<QPushButton*>("cmdOK")->click();
        EXPECT_TRUE(editor.isVisible());
        EXPECT_TRUE(editor.findChild<QLabel*>("lblTxtError")->text().contains("5,000"));
        high->setPlainText(before);
        Type(editor, "txtCtl4", "4711");
        editor.findChild<QPushButton*>("cmdOK")->click();
    });
    form->cmdEdit_Click();
    const auto stored = FetchRecord(store.session, record.key);
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->n[4], "4711");
    EXPECT_EQ(stored->n[1], record.n[1]);
    EXPECT_EQ(stored->notes, record.notes);
}

TEST_F(Classified, ARecordThatWasDeletedBehindTheEditorComesBack) {
    form->cat_Click(1);
    AddLogin("Library", "hunter2");
    const std::int32_t key = Find<kit::RecordListView>("ListSelect").SelectedKey();
    OnDialog([&](QDialog& editor) {
        ASSERT_EQ(store::DeleteRow(store.session, key), 0);
        Type(editor, "txtCtl2", "me");
        editor.findChild<QPushButton*>("cmdOK")->click();
    });
    form->cmdEdit_Click();
    EXPECT_EQ(Find<QLineEdit>("txtCtl2").text(), "me");
    EXPECT_EQ(Names(), QStringList{"Library"});
}

TEST_F(Classified, TheDiceFillAPassword) {
    form->cat_Click(1);
    OnDialog([this](QDialog& editor) {
        visitor.Meet("frmGenerate", [](QWidget& dice) { test::Click(dice, "cmdOK"); });
        editor.findChild<QToolButton*>("dice3")->click();
        EXPECT_EQ(editor.findChild<QLineEdit*>("txtCtl3")->text().size(), 20);
        EXPECT_EQ(editor.findChild<QToolButton*>("dice2"), nullptr);
        Type(editor, "txtCtl0", "Made");
        editor.findChild<QPushButton*>("cmdOK")->click();
    });
    form->cmdAdd_Click();
    EXPECT_EQ(Names(), (QStringList{"Made"}));
}

TEST_F(Classified, WhatIsHalfWrittenComesBackThroughADraft) {
    QSignalSpy settled(form.get(), &SectionForm::DraftSettled);
    form->cat_Click(5);  // a kind with a high second field
    std::vector<custody::Draft> drafts;
    OnDialog([&](QDialog& editor) {
        EXPECT_TRUE(form->Drafts().empty());
        Type(editor, "txtCtl0", "Bank");
        editor.findChild<QPlainTextEdit*>("tmpTxt")->setPlainText("Long Lane 1\nOld Town");
        Type(editor, "txtCtl4", "4711");
        editor.findChild<QPlainTextEdit*>("txtNotes")->setPlainText("ask for\nMs M");
        drafts = form->Drafts();
        store.session.ending = true;
        editor.reject();
    });
    form->cmdAdd_Click();
    store.session.ending = false;
    ASSERT_EQ(drafts.size(), 1u);
    EXPECT_FALSE(drafts[0].isPrivate);
    EXPECT_EQ(drafts[0].title.view(), "Bank");

    settled.clear();
    form->cat_Click(1);
    OnDialog([&](QDialog& editor) {
        EXPECT_EQ(editor.findChild<QLineEdit*>("txtCtl4")->text(), "4711");
        EXPECT_EQ(form->Drafts().size(), 1u);
        editor.findChild<QPushButton*>("cmdOK")->click();
    });
    form->OpenDraft(drafts[0]);
    EXPECT_EQ(settled.count(), 1);
    EXPECT_EQ(Names(), QStringList{"Bank"}) << "its kind is shown";
    EXPECT_EQ(Find<QPlainTextEdit>("txtTall").toPlainText(), "Long Lane 1\nOld Town");
    EXPECT_EQ(Find<QPlainTextEdit>("txtNotes").toPlainText(), "ask for\nMs M");

    drafts[0].category = 99;
    form->OpenDraft(drafts[0]);  // a kind that is none: no dialog comes, and the draft stays
    EXPECT_EQ(settled.count(), 1);
}

}  // namespace
}  // namespace bmr::confidential
