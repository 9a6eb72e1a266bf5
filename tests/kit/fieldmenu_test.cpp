#include "kit/fieldmenu.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>

#include "support/forms.h"
#include "support/ports.h"
#include "support/store.h"

namespace bmr::kit {
namespace {

struct FieldMenuTest : testing::Test {
    /// Opens the menu as the right button does and chooses an entry; the names of the enabled ones otherwise.
    QStringList Choose(const char* entry = nullptr) { return ChooseIn(field, field, entry); }
    static QStringList ChooseIn(QWidget& owner, QWidget& hit, const char* entry) {
        QStringList enabled;
        QTimer::singleShot(0, &owner, [&] {
            auto* menu = dynamic_cast<QMenu*>(QApplication::activePopupWidget());
            ASSERT_TRUE(menu);
            for (QAction* action : menu->actions()) {
                if (action->isEnabled() && !action->isSeparator()) enabled << action->objectName();
                if (entry && action->objectName() == entry) action->trigger();
            }
            menu->close();
        });
        QContextMenuEvent click(QContextMenuEvent::Mouse, QPoint(3, 3), hit.mapToGlobal(QPoint(3, 3)));
        QCoreApplication::sendEvent(&hit, &click);
        return enabled;
    }

    test::ScriptedPrompter prompter;
    test::RecordingDesktop desktop;
    QLineEdit field;
};

TEST_F(FieldMenuTest, OffersWhatTheSelectionAllows) {
    GiveFieldMenu(field, prompter, desktop);
    field.show();
    field.setText("020 7946");
    EXPECT_EQ(Choose(), (QStringList{"mnuPaste", "mnuSelectAll"}));
    field.setSelection(0, 3);
    EXPECT_EQ(Choose(), (QStringList{"mnuCut", "mnuCopy", "mnuPaste", "mnuSelectAll"}));
    field.selectAll();
    EXPECT_TRUE(Choose("mnuCopyNoSpaces").contains("mnuCopyNoSpaces"));
    EXPECT_EQ(QApplication::clipboard()->text(), "0207946");
    field.setReadOnly(true);
    EXPECT_EQ(Choose(), (QStringList{"mnuCopy", "mnuCopyNoSpaces", "mnuSelectAll"}));
    field.setReadOnly(false);
    field.setEchoMode(QLineEdit::Password);
    EXPECT_EQ(Choose(), (QStringList{"mnuPaste", "mnuSelectAll"}));
}

TEST_F(FieldMenuTest, WebMailAndTelephoneTakeTheSelectionOrAll) {
    GiveFieldMenu(field, prompter, desktop,
                  {.web = true, .mail = true, .dial = true, .person = [] { return QString("Ann"); }});
    field.show();
    field.setText("ann@example.org");
    Choose("mnuMail");
    field.setSelection(4, 11);
    Choose("mnuWeb");
    prompter.inputs = {"123"};
    Choose("mnuDial");
    field.clear();
    prompter.Expect(165);
    EXPECT_FALSE(Choose("mnuDial").contains("mnuWeb"));
    EXPECT_EQ(desktop.asked, (std::vector<std::string>{"mail ann@example.org", "web http://example.org",
                                                       "dial 123 for Ann"}));
}

TEST_F(FieldMenuTest, FreeTextOffersItsUsesForWhatIsSelected) {
    test::TestSession sitting;
    sitting.session.ports.desktop = &desktop;
    QPlainTextEdit note("Ring 020 7946\nor bob@example.org");
    GiveFieldMenu(note, sitting.session);
    note.show();
    const auto choose = [&](const char* entry = nullptr) { return ChooseIn(note, *note.viewport(), entry); };
    EXPECT_EQ(choose(), (QStringList{"mnuPaste", "mnuSelectAll"}));
    EXPECT_TRUE(note.find("bob@example.org"));
    choose("mnuMail");
    EXPECT_EQ(desktop.asked, std::vector<std::string>{"mail bob@example.org"});

    choose("mnuCopy");
    EXPECT_EQ(QApplication::clipboard()->text(), "bob@example.org");
    note.moveCursor(QTextCursor::Start);
    EXPECT_TRUE(note.find("020 7946"));
    choose("mnuCopyNoSpaces");
    EXPECT_EQ(QApplication::clipboard()->text(), "0207946");
}

}  // namespace
}  // namespace bmr::kit
