#include <QCheckBox>
#include <QClipboard>
#include <QLineEdit>
#include <QMainWindow>

#include "app/mdimenus.h"
#include "confidential/frmClassified.h"
#include "support/forms.h"
#include "support/store.h"

namespace bmr::app {
namespace {

using test::Named;

TEST(EditMenu, CopiesOfAMaskedFieldWhatItsKeyCopies) {
    test::TempStore store;
    store.session.ShowPrivate = true;
    confidential::Record record;
    record.kind = 1;
    record.n = {"Library", "https://example.org", "me", "rosebud", ""};
    ASSERT_EQ(confidential::WriteRecord(store.session, record), 0);
    QMainWindow window;
    const MdiMenus menus = BuildMenus(*window.menuBar());
    QString copied;
    auto* form = new confidential::frmClassified(store.session, [&](const QString& text) { copied = text; });
    window.setCentralWidget(form);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    form->cat_Click(1);

    auto& password = Named<QLineEdit>(*form, "txtCtl3");
    for (const bool selected : {false, true}) {
        copied.clear();
        password.setFocus();
        selected ? password.selectAll() : password.deselect();
        EnableEditEntries(menus, &password);
        ASSERT_TRUE(menus.mnuEditCopy->isEnabled()) << "without a selection all there is, as by the key";
        menus.mnuEditCopy->trigger();
        EXPECT_EQ(copied, "rosebud");
        EXPECT_EQ(QApplication::clipboard()->text(), "") << "not the question marks that it shows";
    }
    auto& user = Named<QLineEdit>(*form, "txtCtl2");
    user.setFocus();
    user.setSelection(0, 1);
    menus.mnuEditCopy->trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), "m") << "a part where a part is selected";
    EnableEditEntries(menus, &Named<QLineEdit>(*form, "txtCtl4"));
    EXPECT_FALSE(menus.mnuEditCopy->isEnabled()) << "nothing is in it";
}

}  // namespace
}  // namespace bmr::app
