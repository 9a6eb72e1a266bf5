#include "kit/fieldmenu.h"

#include <QApplication>
#include <QClipboard>
#include <QMenu>

#include "kit/icons.h"
#include "shell/helpers.h"

namespace bmr::kit {
namespace {

QString Tr(const char* text) {
    return QCoreApplication::translate("FieldMenu", text);
}

QAction* Add(QMenu& menu, const char* name, const char* text, const char* icon, bool enabled,
             std::function<void()> run) {
    QAction* action = menu.addAction(Icon(icon), Tr(text), &menu, std::move(run));
    action->setObjectName(name);
    action->setEnabled(enabled);
    return action;
}

/// `selected` keeps what was selected when the menu opened: the field may lose it with the focus.
void AddUses(QMenu& menu, const std::string& content, Prompter& prompter, Desktop& desktop,
             const FieldUse& use) {
    if (!use.web && !use.mail && !use.dial) return;
    menu.addSeparator();
    const bool any = !content.empty();
    if (use.web) {
        Add(menu, "mnuWeb", "Open &Website", "internet-web-browser", any,
            [&prompter, &desktop, content] { shell::OpenWebsite(prompter, desktop, content); });
    }
    if (use.mail) {
        Add(menu, "mnuMail", "Send &Mail", "mail-send", any,
            [&prompter, &desktop, content] { shell::SendMail(prompter, desktop, content); });
    }
    if (use.dial) {
        Add(menu, "mnuDial", "&Dial…", "call-start", true,
            [&prompter, &desktop, content, person = use.person] {
                shell::DialPhone(prompter, desktop, content, person ? person().toStdString() : std::string());
            });
    }
}

void Show(QLineEdit& field, const QPoint& at, Prompter& prompter, Desktop& desktop, const FieldUse& use) {
    const QString selected = field.selectedText();
    const bool secret = field.echoMode() != QLineEdit::Normal;
    const auto allowed = shell::SetMenuForSelection(selected.toStdString(), !field.isReadOnly(), secret);
    QMenu menu(&field);
    menu.setObjectName("mnuAddressBoxRC");
    Add(menu, "mnuCut", "Cu&t", "edit-cut", allowed.cut, [&field] { field.cut(); });
    Add(menu, "mnuCopy", "&Copy", "edit-copy", allowed.copy, [&field] { field.copy(); });
    Add(menu, "mnuCopyNoSpaces", "Copy (&no spaces)", "edit-copy", allowed.copyNoSpaces, [selected] {
        QApplication::clipboard()->setText(
            QString::fromStdString(shell::WithoutBlanks(selected.toStdString())));
    });
    Add(menu, "mnuPaste", "&Paste", "edit-paste", allowed.paste, [&field] { field.paste(); });
    menu.addSeparator();
    Add(menu, "mnuSelectAll", "Select &All", "edit-select-all", !field.text().isEmpty(),
        [&field] { field.selectAll(); });
    const QString content = secret ? QString() : selected.isEmpty() ? field.text() : selected;
    AddUses(menu, content.toStdString(), prompter, desktop, use);
    menu.exec(field.mapToGlobal(at));
}

}  // namespace

void GiveFieldMenu(QLineEdit& field, Prompter& prompter, Desktop& desktop, FieldUse use) {
    field.setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(&field, &QWidget::customContextMenuRequested, &field,
                     [&field, &prompter, &desktop, use = std::move(use)](const QPoint& at) {
                         Show(field, at, prompter, desktop, use);
                     });
}

}  // namespace bmr::kit
