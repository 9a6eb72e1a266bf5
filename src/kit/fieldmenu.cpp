#include "kit/fieldmenu.h"

#include <QApplication>
#include <QClipboard>
#include <QMenu>

#include "kit/icons.h"
#include "kit/words.h"
#include "shell/helpers.h"
#include "store/session.h"

namespace bmr::kit {
namespace {

constexpr const char* kCopiesWhole = "_bmr_copies_whole";

QString Tr(const char* text) {
    return QCoreApplication::translate("FieldMenu", text);
}

/// A text field of either sort as the menu finds it. The selection is kept: the field may lose it with the
/// focus.
struct FieldState {
    WipedLetters selected;
    WipedLetters content;  ///< what web, mail and dial take
    bool writable = true;
    bool secret = false;
    bool empty = false;
};

FieldState StateOf(const QLineEdit& field, bool onlySelected) {
    FieldState state;
    state.selected = field.selectedText();
    state.writable = !field.isReadOnly();
    state.secret = field.echoMode() != QLineEdit::Normal;
    state.empty = field.text().isEmpty();
    if (!state.secret)
        state.content = onlySelected || field.hasSelectedText() ? state.selected : field.text();
    return state;
}

FieldState StateOf(const QPlainTextEdit& field, bool) {
    FieldState state;
    state.selected = field.textCursor().selectedText().replace(QChar::ParagraphSeparator, QChar('\n'));
    state.content = state.selected;
    state.writable = !field.isReadOnly();
    state.empty = field.document()->isEmpty();
    return state;
}

/// Whom the entries for web, mail and dial call; none of both, no such entry.
struct Outward {
    Prompter* prompter = nullptr;
    Desktop* desktop = nullptr;
    FieldUse use;
    bool onlySelected = false;
};

Outward ForFreeText(store::Session& session) {
    return {&session.ports.prompter, session.ports.desktop, {.web = true, .mail = true, .dial = true}, true};
}

QAction* Add(QMenu& menu, const char* name, const char* text, const char* icon, bool enabled,
             std::function<void()> run) {
    QAction* action = menu.addAction(Icon(icon), Tr(text), &menu, std::move(run));
    action->setObjectName(name);
    action->setEnabled(enabled);
    return action;
}

void AddUses(QMenu& menu, const FieldState& state, const Outward& to) {
    const FieldUse& use = to.use;
    if (!to.prompter || !to.desktop || (!use.web && !use.mail && !use.dial)) return;
    Prompter& prompter = *to.prompter;
    Desktop& desktop = *to.desktop;
    const WipedText content = TakeWords(state.content);
    const bool any = !content.empty();
    menu.addSeparator();
    if (use.web) {
        Add(menu, "mnuWeb", "Open &Website", "internet-web-browser", any,
            [&prompter, &desktop, content] { shell::OpenWebsite(prompter, desktop, content); });
    }
    if (use.mail) {
        Add(menu, "mnuMail", "Send &Mail", "mail-send", any,
            [&prompter, &desktop, content] { shell::SendMail(prompter, desktop, content); });
    }
    if (use.dial) {
        // A field for a number says itself that it is empty; free text without a selection is no number.
        Add(menu, "mnuDial", "&Dial…", "call-start", any || !to.onlySelected,
            [&prompter, &desktop, content, person = use.person] {
                shell::DialPhone(prompter, desktop, content, person ? person().toStdString() : std::string());
            });
    }
}

template <class Field>
void Show(Field& field, const QPoint& at, const Outward& to) {
    FieldState state = StateOf(field, to.onlySelected);
    if (!state.writable && state.empty) return;
    const FieldUse& use = to.use;
    if (use.whole && (use.masked || state.selected.isEmpty())) state.selected = state.content = *use.whole;
    const auto allowed = shell::SetMenuForSelection(TakeWords(state.selected), state.writable, state.secret);
    QMenu menu(&field);
    menu.setObjectName("mnuAddressBoxRC");
    Add(menu, "mnuCut", "Cu&t", "edit-cut", allowed.cut, [&field] { field.cut(); });
    Add(menu, "mnuCopy", "&Copy", "edit-copy", allowed.copy,
        [&state] { QApplication::clipboard()->setText(state.selected); });
    Add(menu, "mnuCopyNoSpaces", "Copy (&no spaces)", "edit-copy", allowed.copyNoSpaces, [&state] {
        QApplication::clipboard()->setText(
            ShowWords(WipedText(shell::WithoutBlanks(TakeWords(state.selected)))));
    });
    Add(menu, "mnuPaste", "&Paste", "edit-paste", allowed.paste, [&field] { field.paste(); });
    menu.addSeparator();
    Add(menu, "mnuSelectAll", "Select &All", "edit-select-all", !state.empty,
        [&field] { field.selectAll(); });
    AddUses(menu, state, to);
    menu.exec(at);
}

using Ask = std::function<Outward()>;

void Give(QLineEdit& field, Ask ask) {
    field.setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(
        &field, &QWidget::customContextMenuRequested, &field,
        [&field, ask = std::move(ask)](const QPoint& at) { Show(field, field.mapToGlobal(at), ask()); });
}

void Give(QPlainTextEdit& field, Ask ask) {
    field.setContextMenuPolicy(Qt::CustomContextMenu);
    // Such a field tells places within its viewport.
    QObject::connect(&field, &QWidget::customContextMenuRequested, &field,
                     [&field, ask = std::move(ask)](const QPoint& at) {
                         Outward to = ask();
                         to.onlySelected = true;
                         Show(field, field.viewport()->mapToGlobal(at), to);
                     });
}

Ask Always(Outward to) {
    return [to = std::move(to)] { return to; };
}

Ask InSession(store::Session& session, std::function<FieldUse()> use) {
    return [&session, use = std::move(use)] {
        return Outward{&session.ports.prompter, session.ports.desktop, use()};
    };
}

}  // namespace

void SetCopiesWhole(QLineEdit& field) {
    field.setProperty(kCopiesWhole, true);
}

bool CopiesWhole(const QLineEdit& field) {
    return field.property(kCopiesWhole).toBool();
}

void GiveFieldMenu(QLineEdit& field, Prompter& prompter, Desktop& desktop, FieldUse use) {
    Give(field, Always({&prompter, &desktop, std::move(use)}));
}

void GiveFieldMenu(QPlainTextEdit& field, Prompter& prompter, Desktop& desktop, FieldUse use) {
    Give(field, Always({&prompter, &desktop, std::move(use)}));
}

void GiveFieldMenu(QLineEdit& field) {
    Give(field, Always({}));
}

void GiveFieldMenu(QLineEdit& field, store::Session& session) {
    Give(field, Always(ForFreeText(session)));
}

void GiveFieldMenu(QPlainTextEdit& field, store::Session& session) {
    Give(field, Always(ForFreeText(session)));
}

void GiveFieldMenu(QLineEdit& field, store::Session& session, std::function<FieldUse()> use) {
    Give(field, InSession(session, std::move(use)));
}

void GiveFieldMenu(QPlainTextEdit& field, store::Session& session, std::function<FieldUse()> use) {
    Give(field, InSession(session, std::move(use)));
}

}  // namespace bmr::kit
