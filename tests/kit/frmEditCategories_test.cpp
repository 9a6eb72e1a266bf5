#include "kit/frmEditCategories.h"

#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QToolButton>

#include "kit/categoryfield.h"
#include "store/section_store.h"
#include "support/forms.h"
#include "support/store.h"

namespace bmr::kit {
namespace {

using store::CategoryList;
using store::Section;
using test::Click;
using test::Named;

struct FormCategories : testing::Test {
    void Show() {
        form = std::make_unique<frmEditCategories>(db.session, Section::Todo);
        form->show();
        list = &Named<QListWidget>(*form, "CatList");
    }
    void New(const char* name) {
        db.prompter.inputs.push_back(name);
        Click(*form, "cmdNew");
    }
    QStringList Names() {
        QStringList names;
        for (int row = 0; row < list->count(); ++row)
            names << list->item(row)->text() + "=" + list->item(row)->data(Qt::UserRole).toString();
        return names;
    }
    CategoryList Stored() { return store::FillCategories(db.session, Section::Todo, false, false, false); }

    test::TempStore db;
    std::unique_ptr<frmEditCategories> form;
    QListWidget* list = nullptr;
};

TEST_F(FormCategories, NumbersNamesAndStores) {
    Show();
    for (const char* name : {"work", "Attic", "  été  "})
        New(name);
    EXPECT_EQ(Names(), (QStringList{"Attic=2", "work=1", "été=3"}));
    EXPECT_EQ(form->LastWorkedOn(-1), 3);
    Click(*form, "cmdEsc");
    EXPECT_TRUE(Stored().empty()) << "nothing is stored before OK";

    Show();
    EXPECT_FALSE(form->CategoriesChanged);
    for (const char* name : {"b", "a", "c"})
        New(name);
    db.prompter.inputs.push_back(std::nullopt);
    Click(*form, "cmdNew");
    list->setCurrentRow(1);  // b, number 1
    db.prompter.Expect(19, Answer::Cancel).Expect(19, Answer::Ok);
    Click(*form, "cmdDelete");
    Click(*form, "cmdDelete");
    EXPECT_EQ(Names(), (QStringList{"a=2", "c=3"}));
    New("d");
    EXPECT_EQ(Names().back(), "d=1") << "the lowest free number comes back";
    list->setCurrentRow(0);
    db.prompter.inputs.push_back("z");
    Click(*form, "cmdRename");
    EXPECT_EQ(Names(), (QStringList{"c=3", "d=1", "z=2"})) << "a rename keeps the number";
    EXPECT_TRUE(form->CategoriesChanged);
    Click(*form, "cmdOK");
    EXPECT_EQ(Stored(), (CategoryList{{"c", 3}, {"d", 1}, {"z", 2}}));
}

TEST_F(FormCategories, SaysWhatItCannotDo) {
    Show();
    db.prompter.Expect(18);
    Click(*form, "cmdRename");
    EXPECT_FALSE(Named(*form, "cmdDelete").isEnabled());
    db.prompter.Expect(0);
    db.prompter.inputs = {"ł", std::nullopt};
    Click(*form, "cmdNew");
    EXPECT_TRUE(Names().isEmpty());
    EXPECT_TRUE(db.prompter.inputs.empty()) << "asked again";

    CategoryList full;
    for (std::int32_t i = 1; i <= 128; ++i)
        full.push_back({"c" + std::to_string(1000 + i), i == 128 ? 255 : i});
    ASSERT_EQ(store::StoreCategories(db.session, full, Section::Todo), 0);
    Show();
    EXPECT_EQ(list->count(), 128);
    db.prompter.Expect(0);
    Click(*form, "cmdNew");
    list->setCurrentRow(127);
    Click(*form, "cmdDelete");
    EXPECT_EQ(list->count(), 128) << "the number 255 never goes";
}

TEST_F(FormCategories, AListThatCannotBeReadStaysUntilAnotherIsBegun) {
    const Bytes damaged(40, 'x');
    ASSERT_EQ(store::StoreSinglePayload(db.session, 10, Section::Todo, damaged), 0);
    const auto stored = [this] { return TextOf(db.Row("SELECT * FROM tt WHERE fSec=10")->Field("fEtx")); };
    const Bytes before = stored();
    Show();
    EXPECT_TRUE(Named<QLabel>(*form, "lblCount").text().contains("cannot be read"));
    Click(*form, "cmdOK");
    EXPECT_EQ(stored(), before) << "OK alone leaves it";

    Show();
    db.prompter.Expect(0, Answer::No);
    Click(*form, "cmdNew");
    EXPECT_TRUE(Names().isEmpty());
    Click(*form, "cmdOK");
    EXPECT_EQ(stored(), before);

    Show();
    db.prompter.Expect(0, Answer::Yes);
    New("Home");
    New("Work");  // asked once
    Click(*form, "cmdEsc");
    EXPECT_EQ(stored(), before) << "nothing is stored before OK";

    ASSERT_EQ(store::StoreRow(db.session, Section::Todo, store::kNewRecord,
                              [](engine::Recordset& row, bool) {
                                  row.SetField("fG1", 1);
                                  return 0;
                              })
                  .error,
              0);
    Show();
    db.prompter.Expect(0, Answer::Yes);
    New("Home");
    Click(*form, "cmdOK");
    EXPECT_EQ(Stored(), (CategoryList{{"Home", 2}})) << "the records of the lost list keep their number";
    EXPECT_FALSE(store::CategoriesUnread(db.session, Section::Todo));
}

TEST_F(FormCategories, TheRecordsOfADeletedCategoryAreNobodyElses) {
    ASSERT_EQ(store::StoreCategories(db.session, {{"a", 1}, {"b", 2}}, Section::Todo), 0);
    const auto record =
        store::StoreRow(db.session, Section::Todo, store::kNewRecord, [](engine::Recordset& row, bool) {
            row.SetField("fG1", 1);
            return 0;
        });
    Show();
    list->setCurrentRow(0);
    db.prompter.Expect(19, Answer::Ok);
    Click(*form, "cmdDelete");
    New("c");
    EXPECT_EQ(Names(), (QStringList{"b=2", "c=3"}));
    Click(*form, "cmdOK");
    EXPECT_EQ(store::CategoryName(Stored(), store::RecordCategory(db.session, record.fPK)), "Unfiled");
}

TEST_F(FormCategories, ARecordKeepsItsNumberWhileTheListCannotBeRead) {
    ASSERT_EQ(store::StoreSinglePayload(db.session, 10, Section::Todo, Bytes(40, 'x')), 0);
    CategoryField field(db.session, Section::Todo, CategoryField::Use::Editor);
    field.Fill(3);
    EXPECT_EQ(field.Number(), 3);
    EXPECT_EQ(field.Combo()->currentText(), "Unfiled");
    EXPECT_TRUE(field.Button()->toolTip().contains("cannot be read"));
    ASSERT_EQ(store::StoreCategories(db.session, {{"a", 1}}, Section::Todo), 0);
    field.Fill(3);
    EXPECT_EQ(field.Number(), 0) << "the category is gone for good";
    EXPECT_FALSE(field.Button()->toolTip().contains("cannot be read"));
}

}  // namespace
}  // namespace bmr::kit
