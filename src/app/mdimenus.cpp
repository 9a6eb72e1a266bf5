#include "app/mdimenus.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMetaObject>
#include <QPlainTextEdit>
#include <QTextCursor>

#include "app/sectioncolumn.h"
#include "kit/fieldmenu.h"
#include "kit/icons.h"

namespace bmr::app {

namespace {

/// A menu under construction: every entry gets its name, icon and shortcut in one line.
class Builder {
  public:
    Builder(QMenu* menu, const QString& name) : menu_(menu) { menu->setObjectName(name); }

    QAction* Add(const QString& name, const QString& text, const QString& icon = {},
                 const QKeySequence& shortcut = {}, const QString& hint = {}) {
        QAction* action = menu_->addAction(kit::Icon(icon), text);
        action->setObjectName(name);
        action->setShortcut(shortcut);
        action->setStatusTip(hint);
        return action;
    }
    QAction* AddCheck(const QString& name, const QString& text, bool on, const QKeySequence& shortcut = {}) {
        QAction* action = Add(name, text, {}, shortcut);
        action->setCheckable(true);
        action->setChecked(on);
        return action;
    }
    QAction* AddMissing(const QString& name, const QString& text, const QString& icon,
                        const QKeySequence& shortcut = {}) {
        const QString hint = QObject::tr("Not in this version yet");
        QAction* action = Add(name, text, icon, shortcut, hint);
        action->setToolTip(hint);
        action->setEnabled(false);
        return action;
    }
    void Line() { menu_->addSeparator(); }
    QMenu* Menu() const { return menu_; }

  private:
    QMenu* menu_;
};

void BuildFile(MdiMenus& m, QMenuBar& bar) {
    Builder file(m.mnuFile = bar.addMenu(QObject::tr("&File")), "mnuFile");
    m.mnuFileNew = file.Add("mnuFileNew", QObject::tr("&New Database…"), "document-new",
                            QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_N));
    m.mnuFileOpen =
        file.Add("mnuFileOpen", QObject::tr("&Open Database…"), "document-open", QKeySequence::Open);
    file.Line();
    m.mnuFileCloseSection = file.Add("mnuFileCloseSection", QObject::tr("Close &Section"), {},
                                     QKeySequence(Qt::CTRL | Qt::Key_W));
    m.mnuFileCloseDB = file.Add("mnuFileCloseDB", QObject::tr("Close &Database"), "document-close",
                                QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_W));
    m.mnuFileLock = file.Add("mnuFileLock", QObject::tr("&Lock Now"), "object-locked",
                             QKeySequence(Qt::CTRL | Qt::Key_L));
    file.Line();
    m.mnuFileQuit =
        file.Add("mnuFileQuit", QObject::tr("&Quit"), "application-exit", QKeySequence(Qt::CTRL | Qt::Key_Q));
}

/// Lets the widget with the focus do what a line edit, a text edit and a list do by slots of the same names.
void Forward(QAction* action, const char* slot) {
    QObject::connect(action, &QAction::triggered, action, [slot] {
        QWidget* focus = QApplication::focusWidget();
        if (focus && focus->metaObject()->indexOfSlot(QByteArray(slot) + "()") >= 0)
            QMetaObject::invokeMethod(focus, slot);
    });
}

/// As if the key had been pressed: a field that shows something else than it holds copies in its own way.
void ForwardCopy(QAction* action) {
    QObject::connect(action, &QAction::triggered, action, [] {
        QWidget* focus = QApplication::focusWidget();
        if (!focus || focus->metaObject()->indexOfSlot("copy()") < 0) return;
        const QKeyCombination keys = QKeySequence::keyBindings(QKeySequence::Copy).constFirst()[0];
        QKeyEvent press(QEvent::KeyPress, keys.key(), keys.keyboardModifiers());
        QApplication::sendEvent(focus, &press);
    });
}

void BuildEdit(MdiMenus& m, QMenuBar& bar) {
    Builder edit(m.mnuEdit = bar.addMenu(QObject::tr("&Edit")), "mnuEdit");
    m.mnuEditUndo = edit.Add("mnuEditUndo", QObject::tr("&Undo"), "edit-undo", QKeySequence("Ctrl+Z"));
    m.mnuEditRedo = edit.Add("mnuEditRedo", QObject::tr("&Redo"), "edit-redo", QKeySequence("Ctrl+Shift+Z"));
    edit.Line();
    m.mnuEditCut = edit.Add("mnuEditCut", QObject::tr("Cu&t"), "edit-cut", QKeySequence::Cut);
    m.mnuEditCopy = edit.Add("mnuEditCopy", QObject::tr("&Copy"), "edit-copy", QKeySequence::Copy);
    m.mnuEditPaste = edit.Add("mnuEditPaste", QObject::tr("&Paste"), "edit-paste", QKeySequence::Paste);
    m.mnuEditSelectAll =
        edit.Add("mnuEditSelectAll", QObject::tr("Select &All"), "edit-select-all", QKeySequence::SelectAll);
    Forward(m.mnuEditCut, "cut");
    ForwardCopy(m.mnuEditCopy);
    Forward(m.mnuEditPaste, "paste");
    Forward(m.mnuEditSelectAll, "selectAll");
    edit.Line();
    m.mnuEditSearch =
        edit.Add("mnuEditSearch", QObject::tr("&Search This Section"), "edit-find", QKeySequence::Find);
    m.mnuEditFind = edit.AddMissing("mnuEditFind", QObject::tr("&Find in All Sections…"), {},
                                    QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_F));
}

void BuildView(MdiMenus& m, QMenuBar& bar) {
    Builder view(m.mnuView = bar.addMenu(QObject::tr("&View")), "mnuView");
    m.mnuViewShowPrivate =
        view.Add("mnuViewShowPrivate", QObject::tr("Show &Private Records"), "view-visible");
    view.Line();
    Builder go(view.Menu()->addMenu(QObject::tr("&Go To")), "mnuViewGo");
    m.mnuViewStart = go.Add("mnuViewStart", QObject::tr("S&tart Screen"), "go-home", QKeySequence("Ctrl+0"));
    go.Line();
    for (std::size_t at = 0; at < m.mnuViewSection.size(); ++at) {
        const auto code = static_cast<std::uint8_t>(11 + at);
        m.mnuViewSection[at] = go.Add(QString("mnuViewSection%1").arg(code), SectionName(code), {},
                                      QKeySequence(QString("Ctrl+%1").arg(at + 1)));
        m.mnuViewSection[at]->setIcon(kit::SectionIcon(code));
    }
    view.Line();
    m.mnuViewToolbarText = view.AddCheck("mnuViewToolbarText", QObject::tr("&Text in the Toolbar"), true);
    m.mnuViewFold =
        view.AddCheck("mnuViewFold", QObject::tr("&Fold the Sections"), false, QKeySequence("F9"));
    m.mnuViewFullScreen =
        view.AddCheck("mnuViewFullScreen", QObject::tr("F&ull Screen"), false, QKeySequence("F11"));
    view.Line();
    Builder theme(view.Menu()->addMenu(QObject::tr("&Colours")), "mnuViewTheme");
    m.mnuViewTheme = new QActionGroup(&bar);
    const std::array<std::pair<const char*, QString>, 4> themes{
        {{"mnuViewThemeSystem", QObject::tr("Like the De&sktop")},
         {"mnuViewThemeLight", QObject::tr("&Light")},
         {"mnuViewThemeDark", QObject::tr("&Dark")},
         {"mnuViewThemeContrast", QObject::tr("High &Contrast")}}};
    for (std::size_t at = 0; at < themes.size(); ++at) {
        QAction* entry = theme.AddCheck(themes[at].first, themes[at].second, at == 0);
        entry->setData(static_cast<int>(at));
        m.mnuViewTheme->addAction(entry);
    }
}

void BuildTools(MdiMenus& m, QMenuBar& bar) {
    Builder tools(m.mnuTools = bar.addMenu(QObject::tr("Too&ls")), "mnuTools");
    m.mnuToolsPassphrase =
        tools.Add("mnuToolsPassphrase", QObject::tr("Change &Passphrase…"), "dialog-password");
    tools.Line();
    m.mnuDbRepair = tools.Add("mnuDbRepair", QObject::tr("&Repair and Compact"), "tools-repair");
    tools.Line();
    m.mnuToolsPreferences = tools.Add("mnuToolsPreferences", QObject::tr("Pre&ferences…"), "configure",
                                      QKeySequence(Qt::CTRL | Qt::Key_Comma));
    Builder help(m.mnuHelp = bar.addMenu(QObject::tr("&Help")), "mnuHelp");
    m.mnuHelpContents =
        help.Add("mnuHelpContents", QObject::tr("&User Guide"), "help-contents", QKeySequence("F1"));
    help.Line();
    m.mnuHelpAbout = help.Add("mnuHelpAbout", QObject::tr("&About Brindlemere"), "help-about");
}

}  // namespace

MdiMenus BuildMenus(QMenuBar& bar) {
    MdiMenus m{};
    BuildFile(m, bar);
    BuildEdit(m, bar);
    BuildView(m, bar);
    BuildTools(m, bar);
    // The desktops that move entries by their role would else guess it from the words.
    m.mnuFileQuit->setMenuRole(QAction::QuitRole);
    m.mnuHelpAbout->setMenuRole(QAction::AboutRole);
    m.mnuToolsPreferences->setMenuRole(QAction::PreferencesRole);
    for (QAction* action : {m.mnuViewShowPrivate, m.mnuViewFold, m.mnuViewToolbarText, m.mnuToolsPassphrase})
        action->setMenuRole(QAction::NoRole);
    return m;
}

void EnableEditEntries(const MdiMenus& menus, const QWidget* focus) {
    const auto has = [focus](const char* slot) {
        return focus && focus->metaObject()->indexOfSlot(slot) >= 0;
    };
    const auto* line = qobject_cast<const QLineEdit*>(focus);
    const auto* text = qobject_cast<const QPlainTextEdit*>(focus);
    const bool readOnly = (line && line->isReadOnly()) || (text && text->isReadOnly());
    const bool secret = line && line->echoMode() != QLineEdit::Normal;
    const bool selected =
        (!line && !text) || (line && line->hasSelectedText()) || (text && text->textCursor().hasSelection());
    const bool whole = line && !line->text().isEmpty() && kit::CopiesWhole(*line);
    menus.mnuEditCut->setEnabled(has("cut()") && selected && !readOnly && !secret);
    menus.mnuEditCopy->setEnabled(has("copy()") && (selected || whole) && !secret);
    menus.mnuEditPaste->setEnabled(has("paste()") && !readOnly);
    menus.mnuEditSelectAll->setEnabled(has("selectAll()"));
}

}  // namespace bmr::app
