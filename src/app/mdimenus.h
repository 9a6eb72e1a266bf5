#pragma once

#include <QAction>
#include <QActionGroup>
#include <QMenu>
#include <QMenuBar>
#include <QObject>
#include <array>

namespace bmr::app {

/// The entries of the main window's menus, by the names that they have there. The window connects them.
struct MdiMenus {
    QMenu* mnuFile;
    QMenu* mnuEdit;
    QMenu* mnuView;
    QMenu* mnuTools;
    QMenu* mnuHelp;

    QAction* mnuFileNew;
    QAction* mnuFileOpen;
    QAction* mnuFileCloseSection;
    QAction* mnuFileCloseDB;
    QAction* mnuFileLock;
    QAction* mnuFileQuit;

    QAction* mnuEditUndo;
    QAction* mnuEditRedo;
    QAction* mnuEditCut;
    QAction* mnuEditCopy;
    QAction* mnuEditPaste;
    QAction* mnuEditSelectAll;
    QAction* mnuEditSearch;
    QAction* mnuEditFind;

    QAction* mnuViewShowPrivate;
    QAction* mnuViewToolbarText;
    QAction* mnuViewFold;
    QAction* mnuViewFullScreen;
    QAction* mnuViewStart;
    std::array<QAction*, 9> mnuViewSection;  ///< sections 11 to 19
    QActionGroup* mnuViewTheme;              ///< data: a kit::ThemeChoice

    QAction* mnuToolsPassphrase;
    QAction* mnuToolsPreferences;
    QAction* mnuDbRepair;

    QAction* mnuHelpContents;
    QAction* mnuHelpAbout;
};

/// Fills `bar`; the section's own menu has its place before `mnuTools`.
MdiMenus BuildMenus(QMenuBar& bar);

/// Enables those of Cut, Copy, Paste and Select All that `focus` can do, as far as a menu can tell.
void EnableEditEntries(const MdiMenus& menus, const QWidget* focus);

}  // namespace bmr::app
