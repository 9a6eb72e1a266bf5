#include "notes/frmNotepad.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSplitter>

#include "kit/recordlistmodel.h"
#include "kit/recordlistview.h"
#include "store/categories.h"
#include "support/forms.h"
#include "support/store.h"

namespace bmr::notes {
namespace {

class Notepad : public testing::Test {
  protected:
    Notepad() {
        store.session.ShowPrivate = true;
        form = std::make_unique<frmNotepad>(store.session);
        form->resize(900, 600);
        form->show();
    }
    template <class T>
    T& Find(const char* name) {
        return test::Named<T>(*form, name);
    }
    /// Works the next editor by its controls' names.
    void OnDialog(const std::function<void(QDialog&)>& work) {
        visitor.Meet("frmEditNotepad", [work](QWidget& editor) { work(dynamic_cast<QDialog&>(editor)); });
    }
    void Add(const std::string& subject, const std::string& body, std::int32_t category = 0) {
        store.prompter.inputs.push_back(subject);
        OnDialog([&](QDialog& editor) {
            auto* combo = editor.findChild<QComboBox*>("cboCategory");
            if (const int at = combo->findData(category); at >= 0) {
                combo->setCurrentIndex(at);
                emit combo->activated(at);
            }
            editor.findChild<QPlainTextEdit*>("ctlNote")->setPlainText(QString::fromStdString(body));
            editor.findChild<QPushButton*>("cmdOK")->click();
        });
        form->cmdAdd_Click();
    }
    QStringList Subjects() {
        QStringList subjects;
        const auto* model = list().model();
        for (int row = 0; row < model->rowCount(); ++row)
            subjects << model->index(row, 0).data().toString();
        return subjects;
    }
    kit::RecordListView& list() { return Find<kit::RecordListView>("listSelect"); }

    test::TempStore store;
    std::unique_ptr<frmNotepad> form;
    test::Visitor visitor;
};

TEST_F(Notepad, ADayOfUse) {
    Add("Wine list", "red\nwhite");
    Add("Garden", "roses");
    EXPECT_EQ(Subjects(), (QStringList{"Garden", "Wine list"}));
    EXPECT_EQ(Find<QLabel>("txtSubject").text(), "Garden");
    list().SelectFirst();
    OnDialog([](QDialog& editor) {
        editor.findChild<QLineEdit*>("ctlSubject")->setText("Zen garden");
        QTest::keyClick(editor.windowHandle(), Qt::Key_Return, Qt::ControlModifier);
    });
    form->cmdEdit_Click();
    EXPECT_EQ(Subjects(), (QStringList{"Wine list", "Zen garden"}));
    EXPECT_EQ(Find<QLabel>("txtSubject").text(), "Zen garden");
    form->SetSearch("WINE");
    EXPECT_EQ(Subjects(), (QStringList{"Wine list"}));
    form->SetSearch("");
    list().SelectFirst();
    EXPECT_EQ(Find<QPlainTextEdit>("txtInput").toPlainText(), "red\nwhite");
    store.prompter.Expect(27, Answer::Ok);
    form->cmdDelete_Click();
    EXPECT_EQ(Subjects(), (QStringList{"Zen garden"}));
    store.prompter.Expect(80, Answer::Ok).Expect(81, Answer::Cancel);
    form->mnuMemoDeleteAll_Click(false);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt WHERE fSec=14"), 1);
}

TEST_F(Notepad, ComesUpWithTheCategoryThatThePreferencesSay) {
    for (const bool lastUsed : {true, false}) {
        form.reset();  // it keeps its category at its end
        store.session.settings.LastCategory[2] = store::Category::Unfiled;
        store.session.settings.CatShow = lastUsed ? 0 : 1;
        form = std::make_unique<frmNotepad>(store.session);
        EXPECT_EQ(Find<QComboBox>("cboCategories").currentData().toInt(),
                  lastUsed ? store::Category::Unfiled : store::Category::All);
    }
}

TEST_F(Notepad, RowsTellTheDayAndALockAndThePadWhatToDo) {
    auto& hint = Find<QWidget>("padHint");
    EXPECT_FALSE(hint.isVisible()) << "there is nothing to choose";
    Add("Open", "body");
    EXPECT_FALSE(hint.isVisible());
    auto memo = ClearRecord(store.session, 0);
    memo.subject = "Secret";
    memo.isPrivate = true;
    ASSERT_EQ(WriteRecord(store.session, memo), 0);
    form->Refresh();
    const auto* model = list().model();
    const auto cell = [&](int row, int column, int role) { return model->index(row, column).data(role); };
    ASSERT_EQ(model->rowCount(), 2);
    EXPECT_EQ(cell(0, 2, Qt::DisplayRole), "21/11/2026");
    EXPECT_TRUE(cell(0, 1, kit::RecordRole::Symbol).isNull());
    EXPECT_FALSE(cell(1, 1, kit::RecordRole::Symbol).isNull());
    EXPECT_FALSE(Find<QWidget>("ctlPrivate").isVisible());
    memo.isPrivate = false;
    ASSERT_EQ(WriteRecord(store.session, memo), 0);
    form->Refresh();
    EXPECT_TRUE(cell(1, 1, kit::RecordRole::Symbol).isNull()) << "read anew";
    memo.isPrivate = true;
    ASSERT_EQ(WriteRecord(store.session, memo), 0);
    list().SelectKey(memo.key);
    EXPECT_TRUE(Find<QWidget>("ctlPrivate").isVisible());
    list().SelectKey(kit::RecordListView::kNoKey);
    EXPECT_TRUE(hint.isVisible());
    EXPECT_FALSE(Find<QWidget>("padFrame").isVisible());
    form->SetSearch("nobody has this");
    EXPECT_FALSE(hint.isVisible());
    form->SetSearch("");
    store.session.ShowPrivate = false;
    ASSERT_EQ(DeleteRecords(store.session, store::Category::All), 0);
    for (const char* subject : {"One", "Two", "Three"}) {
        memo = ClearRecord(store.session, 0);
        memo.subject = subject;
        ASSERT_EQ(WriteRecord(store.session, memo), 0);
    }
    form->Refresh();
    QSignalSpy status(form.get(), &SectionForm::StatusChanged);
    list().selectAll();
    EXPECT_EQ(status.back()[0].toString(), "3 memos, 3 selected, private ones hidden");
}

TEST_F(Notepad, TheLineBetweenListAndPadIsFoundAgain) {
    const auto widths = [this] { return form->findChild<QSplitter*>()->sizes(); };
    const QList<int> before = widths();
    auto* handle = form->findChild<QSplitter*>()->handle(1);
    QTest::mousePress(handle, Qt::LeftButton);
    QTest::mouseMove(handle, QPoint(90, 10));
    QTest::mouseRelease(handle, Qt::LeftButton, {}, QPoint(90, 10));
    const QList<int> dragged = widths();
    ASSERT_GT(dragged[0], before[0] + 50);
    const auto again = [this] {
        form.reset();  // a drag is written half a second after it rests, or now
        form = std::make_unique<frmNotepad>(store.session);
        form->resize(900, 600);
        form->show();
    };
    again();
    EXPECT_NEAR(widths()[0], dragged[0], 2);
    for (const char* wrong : {"5", "1,2,3", "-5,90", "x,y", "99999,1"}) {
        store.registry.values["Window/Splitter/memos"] = wrong;
        again();
        EXPECT_EQ(widths(), before) << wrong;
    }
}

TEST_F(Notepad, CancellingTheInputBoxAddsNothing) {
    store.prompter.inputs.push_back(std::nullopt);
    form->cmdAdd_Click();
    EXPECT_EQ(store.Count("SELECT fPK FROM tt WHERE fSec=14"), 0);
    EXPECT_FALSE(Find<QWidget>("padFrame").isVisible());
}

TEST_F(Notepad, NothingIsStoredWhileATextIsTooLong) {
    Add("Long", "short");
    list().SelectFirst();
    store.prompter.Expect(20, Answer::Cancel).Expect(20, Answer::No);
    OnDialog([&](QDialog& editor) {
        auto* note = editor.findChild<QPlainTextEdit*>("ctlNote");
        auto* error = editor.findChild<QLabel*>("lblNoteError");
        note->setPlainText(QString(40000, 'x') + "\n" + QString(25010, 'x'));
        editor.findChild<QPushButton*>("cmdOK")->click();
        editor.findChild<QPushButton*>("cmdEsc")->click();  // goes on editing
        EXPECT_TRUE(editor.isVisible());
        editor.findChild<QPushButton*>("cmdEsc")->click();  // No stores, by the same rule
        EXPECT_TRUE(editor.isVisible());
        EXPECT_EQ(error->text(), "Too long by 12 characters: 65,000 fit.") << "a line ends in two";
        note->setPlainText(QString(65000, 'x'));
        EXPECT_FALSE(error->isVisible()) << "the words go with their cause";
        editor.findChild<QPushButton*>("cmdOK")->click();
    });
    form->cmdEdit_Click();
    EXPECT_EQ(Find<QPlainTextEdit>("txtInput").toPlainText().size(), 65000);
}

TEST_F(Notepad, TheDeleteOfACategoryNeverReachesFurther) {
    ASSERT_EQ(store::StoreCategories(store.session, {{"Garden", 3}}, store::Section::Memo), 0);
    form->Refresh();
    Add("Roses", "red", 3);
    Add("Wine", "white");
    auto& deleteCategory = Find<QAction>("mnuMemoDeleteCategory");
    EXPECT_FALSE(deleteCategory.isEnabled());
    form->mnuMemoDeleteAll_Click(true);
    EXPECT_EQ(Subjects(), (QStringList{"Roses", "Wine"})) << "all categories are no category";
    auto& combo = Find<QComboBox>("cboCategories");
    combo.setCurrentIndex(combo.findData(3));
    emit combo.activated(combo.currentIndex());
    store.prompter.Expect(102).Expect(81);
    deleteCategory.trigger();
    combo.setCurrentIndex(combo.findData(-1));
    emit combo.activated(combo.currentIndex());
    EXPECT_EQ(Subjects(), QStringList{"Wine"});
}

TEST_F(Notepad, ADamagedMemoIsOnlyWrittenOverWhenAsked) {
    Add("Broken", "lost");
    store.Set(list().SelectedKey(), "fEtx", Bytes("xxxx"));
    form->Refresh();
    list().SelectFirst();
    EXPECT_EQ(Find<QLabel>("txtSubject").text(), "(cannot be read)");
    EXPECT_EQ(Find<QLabel>("ctlDateCreated").text(), "") << "no date is no day in 1899";
    store.prompter.Expect(0, Answer::No);
    form->cmdEdit_Click();
    EXPECT_EQ(store.prompter.shown.back().standard, Answer::No);
    EXPECT_FALSE(form->Editing());
}

TEST_F(Notepad, WhatIsHalfWrittenComesBackThroughADraft) {
    Add("Garden", "roses");
    list().SelectFirst();
    QSignalSpy settled(form.get(), &SectionForm::DraftSettled);
    const QString half = QString::fromUtf8("\xE5\xAD\x97 of any script\nand a second li");
    std::vector<custody::Draft> drafts;
    OnDialog([&](QDialog& editor) {
        EXPECT_TRUE(form->Drafts().empty()) << "nothing was changed yet";
        editor.findChild<QLineEdit*>("ctlSubject")->setText("Orchard");
        editor.findChild<QPlainTextEdit*>("ctlNote")->setPlainText(half);
        editor.findChild<QCheckBox*>("ctlPrivate")->click();
        drafts = form->Drafts();
        store.session.ending = true;
        editor.reject();
    });
    form->cmdEdit_Click();
    store.session.ending = false;
    ASSERT_EQ(drafts.size(), 1u);
    EXPECT_TRUE(form->Drafts().empty());
    EXPECT_TRUE(drafts[0].isPrivate);
    EXPECT_EQ(drafts[0].title.view(), "Orchard");
    EXPECT_EQ(Subjects(), QStringList{"Garden"});

    settled.clear();
    OnDialog([&](QDialog& editor) {
        EXPECT_EQ(editor.findChild<QLineEdit*>("ctlSubject")->text(), "Orchard");
        auto* note = editor.findChild<QPlainTextEdit*>("ctlNote");
        EXPECT_EQ(note->toPlainText(), half);
        EXPECT_TRUE(editor.findChild<QCheckBox*>("ctlPrivate")->isChecked());
        EXPECT_EQ(form->Drafts().size(), 1u) << "it is no less of a draft than before";
        note->setPlainText("plums");
        editor.findChild<QPushButton*>("cmdOK")->click();
        EXPECT_EQ(settled.count(), 0);
    });
    form->OpenDraft(drafts[0]);
    EXPECT_EQ(settled.count(), 1);
    EXPECT_EQ(Subjects(), QStringList{"Orchard"});
    EXPECT_EQ(Find<QPlainTextEdit>("txtInput").toPlainText(), "plums");

    // One without a record; the end comes again, and nothing is settled.
    drafts[0].key = store::kNewRecord;
    OnDialog([&](QDialog& editor) {
        EXPECT_EQ(editor.findChild<QLineEdit*>("ctlSubject")->text(), "Orchard");
        store.session.ending = true;
        editor.reject();
    });
    form->OpenDraft(drafts[0]);
    store.session.ending = false;
    EXPECT_EQ(settled.count(), 1);
    EXPECT_EQ(store.Count("SELECT fPK FROM tt WHERE fSec=14"), 1);
}

}  // namespace
}  // namespace bmr::notes
