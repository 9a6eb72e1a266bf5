#pragma once

#include <QMainWindow>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "app/mdimenus.h"
#include "kit/programtheme.h"
#include "kit/sectionform.h"
#include "kit/sessionevents.h"
#include "kit/tabring.h"
#include "shell/navigator.h"
#include "shell/startflow.h"
#include "store/session.h"
#include "store/undo.h"

class QLabel;
class QLineEdit;
class QStackedWidget;
class QTimer;
class QToolBar;
class QToolButton;

namespace bmr::app {

class SectionColumn;
class frmSplash;

/// The main window: a column of section buttons, menus, `Toolbar1`, the form of the open section and the
/// status bar with the panels `comment` and `autoshutoff`.
class frmMDI final : public QMainWindow {
    Q_OBJECT

  public:
    struct Parts {
        store::Session& session;
        SectionTable sections;
        shell::Environment environment;
        kit::Theme* theme = nullptr;  ///< none in tests
        QString about = {};           ///< what About adds: how far the keyboard is guarded here
        std::function<kit::SessionOffer()> offer =
            {};  ///< what the machine can tell of itself; none: nothing
    };

    explicit frmMDI(Parts parts);
    ~frmMDI() override;

    /// Finds or makes a database: `file`, else the last one, else by asking. Returns when one is open, when
    /// the window stands empty, or when the program is ending.
    void Start(const std::optional<std::filesystem::path>& file);

    /// Enables or disables together the menus that need an open database and the buttons of the toolbar.
    void HideShow(bool show);
    /// Enables or disables the column of sections.
    void OutlookBarEnabled(bool enabled);
    /// Switches to the section of code `Index`, 0 for none. A refused PIN changes nothing.
    void optSection_Click(int Index);
    void mnuViewShowPrivate_Switch();
    /// Section, settings, keys: all closed and wiped; the window stands without a database.
    void CloseDatabase();
    /// Closes the database as the end of the program does, through whatever dialogs are open, and asks for
    /// its passphrase. Nothing without an open database.
    void LockNow();
    /// Closes the database and ends the program, whatever dialogs are open: they unwind as cancelled.
    void QuitProgram();

    /// The words in the panel `comment`.
    void ShowComment(const QString& text);
    /// The panel `autoshutoff`, at the right end: minutes and seconds until the idle end.
    void ShowIdleCountdown(const QString& text);
    /// Seconds until the clipboard is emptied; nothing is shown below 0.
    void ShowClipboardCountdown(int seconds);
    SectionForm* Form() const { return form_; }

  signals:
    void DatabaseOpened();
    void DatabaseClosed();
    /// The user has stored other preferences.
    void PreferencesStored();
    /// The program goes down: hooks are to be freed and the clipboard overwritten. The keys are still there.
    void Quitting();
    /// Cut or Copy was chosen in the menu.
    void ClipboardUsed();
    /// Everything is closed; the event loops may end.
    void Ended();

  protected:
    bool focusNextPrevChild(bool next) override { return kit::StepFocus(*this, next); }
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void BuildToolbar();
    void BuildSearch();
    void BuildStatusBar();
    void ConnectMenus();
    void ConnectView();
    void EnableCommands();
    /// The window as it was left, or as it is at first.
    void RecallWindow();
    void RememberWindow();

    void mnuFileNew_Click();
    void mnuFileOpen_Click();
    void mnuFileCloseDB_Click();
    /// The section whose step is meant now.
    std::uint8_t StepSection(store::UndoWay way) const;
    /// Takes the open section's last step back, or does it again.
    void TakeStep(store::UndoWay way);
    /// What the entries Undo and Redo say, and whether they can be chosen.
    void NameSteps();
    /// The same for the button in the toolbar, which has no key that it could keep from being heard.
    void ShowUndo();
    void mnuToolsPassphrase_Click();
    void mnuDbRepair_Click();
    void mnuToolsPreferences_Click();
    void mnuHelpContents_Click();

    /// Runs what may ask questions about the database. When the program ends meanwhile, the closing waits
    /// until the questions have unwound, as the code behind them still holds the file.
    void RunFlow(const std::function<void()>& flow);
    shell::StartOutcome ShowMenuDB();
    /// Brings the window in line with what came of an opening.
    void Settle(shell::StartOutcome outcome);
    void Opened();
    void ShowWithoutDatabase();
    void CloseAll();
    /// Waits until nothing stands on the locked database any more, then asks for its passphrase.
    void AwaitUnlocking();
    void Unlock();

    /// Takes what stands half-written, while the dialogs that hold it are still there.
    void CollectDrafts();
    /// What the form and those that were closed for it hold; nothing of it is left here.
    std::vector<custody::Draft> TakeBegun();
    /// Stores it where nobody ends: at a closing that the user chose.
    void KeepBegun();
    void OfferDrafts();
    void OfferDraft(custody::Draft& draft);
    void ContinueDraft(const custody::Draft& draft);
    /// Forgets the draft that is being continued.
    void ForgetDraft();
    std::vector<std::uint8_t> AvailableSections() const;
    shell::SectionSet AvailableSet() const;

    void ShowForm(std::uint8_t code);
    void CloseForm();
    void EmptySearch();
    void ShowActions(const QList<QAction*>& actions);
    /// Empties the search field; the list shows all again and has the focus.
    void EndSearch();
    void ShowPrivateState();
    /// After private records were shown or hidden: the switch, and the lists.
    void PrivateSwitched();
    void ShowLocks();
    /// Words beside the icons only where all of them have room.
    void FitToolbar();

    Parts parts_;
    store::Session& session_;
    MdiMenus menus_;
    SectionColumn* column_;
    frmSplash* splash_;
    QStackedWidget* stack_;
    QToolBar* toolbar_ = nullptr;
    QList<QAction*> placeholders_;  ///< New, Edit, Delete while no section is open
    QList<QAction*> shownActions_;  ///< what stands in the toolbar before the search field
    QList<QAction*> toolbarLines_;
    QAction* undoTool_ = nullptr;
    QAction* spacer_ = nullptr;
    QAction* searchEntry_ = nullptr;
    QLineEdit* search_ = nullptr;
    QTimer* searchDelay_ = nullptr;
    QLabel* status_ = nullptr;
    QLabel* comment_ = nullptr;
    QToolButton* private_ = nullptr;
    QLabel* clipboard_ = nullptr;
    QLabel* autoshutoff_ = nullptr;
    SectionForm* form_ = nullptr;
    std::unique_ptr<SectionForm> leaving_;  ///< closed while its own dialogs were still unwinding
    QMenu* sectionMenu_ = nullptr;
    bool shown_ = false;
    bool quitting_ = false;
    int flows_ = 0;
    bool opened_ = false;                 ///< a database was opened whose drafts were not offered yet
    std::vector<custody::Draft> drafts_;  ///< collected for the end
    int lostDrafts_ = 0;                  ///< why the last closing could not keep them
    std::int32_t continuing_ = 0;         ///< id of the draft that is worked on
    std::map<std::uint8_t, std::vector<custody::Draft>> left_;  ///< begun in sections that are closed
    bool lostCategories_ = false;   ///< the lock closed the category editor over changes
    std::filesystem::path locked_;  ///< to be opened again; empty unless locked
};

}  // namespace bmr::app
