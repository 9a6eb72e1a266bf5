#include "app/frmMDI.h"

#include <QApplication>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QScreen>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <utility>

#include "app/frmSplash.h"
#include "app/helpwindow.h"
#include "app/sectioncolumn.h"
#include "app/windowmemory.h"
#include "kit/formparts.h"
#include "kit/icons.h"
#include "kit/listpane.h"
#include "kit/recordlistview.h"
#include "kit/theme.h"
#include "shell/timeout.h"

namespace bmr::app {

namespace {

constexpr int kSearchDelay = 150;  ///< ms after the last key, so that a word is one search

constexpr int kNarrow = 900;  ///< the list and its pad need what the names of the sections take

constexpr int kSearchLeast = 220;
constexpr int kSearchMost = 420;

}  // namespace

frmMDI::frmMDI(Parts parts)
    : parts_(std::move(parts)), session_(parts_.session), menus_(BuildMenus(*menuBar())) {
    setObjectName("frmMDI");
    setWindowIcon(kit::ProgramIcon());
    setContextMenuPolicy(Qt::NoContextMenu);  // else a right click offers to hide the only toolbar
    setUnifiedTitleAndToolBarOnMac(true);

    auto* centre = new QWidget(this);
    column_ = new SectionColumn(centre);
    splash_ = new frmSplash(centre);
    stack_ = new QStackedWidget(centre);
    stack_->addWidget(splash_);
    auto* row = new QHBoxLayout(centre);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(column_);
    row->addWidget(stack_, 1);
    setCentralWidget(centre);

    BuildToolbar();
    BuildStatusBar();
    ConnectMenus();
    ConnectView();
    connect(column_, &SectionColumn::Chosen, this, [this](std::uint8_t code) {
        if (code != session_.SectionCode)
            optSection_Click(code);
        else if (form_)
            form_->setFocus(Qt::OtherFocusReason);
    });
    connect(splash_, &frmSplash::SectionChosen, this, &frmMDI::optSection_Click);
    connect(splash_, &frmSplash::UnlockChosen, this, [this] {
        if (flows_ == 0) Unlock();
    });
    connect(splash_, &frmSplash::NewChosen, this, &frmMDI::mnuFileNew_Click);
    connect(splash_, &frmSplash::OpenChosen, this, &frmMDI::mnuFileOpen_Click);
    for (const auto& [code, factory] : parts_.sections)
        column_->SetAvailable(code, true);
    qApp->installEventFilter(this);  // locking works from every dialog

    RecallWindow();
    ShowWithoutDatabase();
}

frmMDI::~frmMDI() {
    // The form looks at the session and the status bar while it goes, so it goes first.
    delete form_;
}

void frmMDI::RecallWindow() {
    const Registry& registry = session_.ports.registry;
    resize(QSize(1180, 760).boundedTo(screen()->availableSize() * 0.96));  // a scaled screen has less room
    RecallPlace(registry, *this);
    menus_.mnuViewFullScreen->setChecked(isFullScreen());
    column_->SetFolded(RecallSwitch(registry, "Folded", false));
    menus_.mnuViewToolbarText->setChecked(RecallSwitch(registry, "ToolbarText", true));
}

void frmMDI::RememberWindow() {
    Registry& registry = session_.ports.registry;
    RememberPlace(registry, *this);
    RememberSwitch(registry, "Folded", column_->FoldedWhenWide());
    RememberSwitch(registry, "ToolbarText", menus_.mnuViewToolbarText->isChecked());
}

void frmMDI::BuildToolbar() {
    toolbar_ = addToolBar(tr("Toolbar"));
    toolbar_->setObjectName("Toolbar1");
    toolbar_->setMovable(false);
    toolbar_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    toolbar_->setIconSize({20, 20});
    toolbar_->setContentsMargins(kit::Space::Tight, kit::Space::Tight, kit::Space::Tight, kit::Space::Tight);

    const std::pair<const char*, QString> standard[] = {
        {"document-new", tr("New")}, {"document-edit", tr("Edit")}, {"edit-delete", tr("Delete")}};
    undoTool_ = new QAction(kit::Icon("edit-undo"), tr("Undo"), this);
    undoTool_->setObjectName("undoTool");
    undoTool_->setEnabled(false);
    connect(undoTool_, &QAction::triggered, this, [this] { TakeStep(store::UndoWay::Undo); });
    for (const auto& [icon, text] : standard) {
        auto* action = new QAction(kit::Icon(icon), text, this);
        action->setEnabled(false);
        placeholders_ << action;
    }

    auto* spacer = new QWidget(toolbar_);
    spacer->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    spacer_ = toolbar_->addWidget(spacer);
    BuildSearch();
}

void frmMDI::BuildSearch() {
    search_ = new QLineEdit(toolbar_);
    search_->setObjectName("txtSearch");
    search_->setClearButtonEnabled(true);
    search_->addAction(kit::Icon("edit-find"), QLineEdit::LeadingPosition);
    search_->installEventFilter(this);
    kit::LeaveUndoToWindow(*search_);
    searchEntry_ = toolbar_->addWidget(search_);

    searchDelay_ = new QTimer(this);
    searchDelay_->setSingleShot(true);
    searchDelay_->setInterval(kSearchDelay);
    connect(search_, &QLineEdit::textChanged, searchDelay_, qOverload<>(&QTimer::start));
    connect(searchDelay_, &QTimer::timeout, this, [this] {
        if (form_) form_->SetSearch(search_->text().trimmed());
    });
}

void frmMDI::BuildStatusBar() {
    const auto label = [this](const char* name) {
        auto* made = new QLabel(this);
        made->setObjectName(name);
        made->setTextFormat(Qt::PlainText);
        return made;
    };
    status_ = label("status");
    comment_ = label("comment");
    clipboard_ = label("clipboard");
    clipboard_->hide();
    autoshutoff_ = label("autoshutoff");
    autoshutoff_->setText(shell::kIdlePanelText);
    autoshutoff_->setToolTip(shell::kIdlePanelTip);
    autoshutoff_->setAccessibleName(autoshutoff_->toolTip());
    // What stands beside it does not move with every digit.
    autoshutoff_->setMinimumWidth(fontMetrics().horizontalAdvance(tr("closes in %1").arg("00:00")));
    autoshutoff_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    private_ = new QToolButton(this);
    private_->setObjectName("cmdShowPrivate");
    private_->setAutoRaise(true);
    private_->setIconSize({16, 16});
    private_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    connect(private_, &QToolButton::clicked, this, &frmMDI::mnuViewShowPrivate_Switch);

    statusBar()->setSizeGripEnabled(false);
    statusBar()->setContentsMargins(kit::Space::Row, 0, kit::Space::Row, 0);
    status_->setContentsMargins(0, 0, kit::Space::Group, 0);
    statusBar()->addWidget(status_);
    statusBar()->addWidget(comment_, 1);
    statusBar()->addPermanentWidget(clipboard_);
    statusBar()->addPermanentWidget(private_);
    statusBar()->addPermanentWidget(autoshutoff_);
}

void frmMDI::ConnectMenus() {
    const auto on = [this](QAction* action, auto slot) { connect(action, &QAction::triggered, this, slot); };
    on(menus_.mnuFileNew, &frmMDI::mnuFileNew_Click);
    on(menus_.mnuFileOpen, &frmMDI::mnuFileOpen_Click);
    on(menus_.mnuFileCloseSection, [this] { optSection_Click(0); });
    on(menus_.mnuFileCloseDB, &frmMDI::mnuFileCloseDB_Click);
    on(menus_.mnuFileLock, &frmMDI::LockNow);
    on(menus_.mnuFileQuit, &frmMDI::QuitProgram);
    on(menus_.mnuEditSearch, [this] {
        search_->setFocus(Qt::ShortcutFocusReason);
        search_->selectAll();
    });
    on(menus_.mnuToolsPassphrase, &frmMDI::mnuToolsPassphrase_Click);
    on(menus_.mnuDbRepair, &frmMDI::mnuDbRepair_Click);
    on(menus_.mnuToolsPreferences, &frmMDI::mnuToolsPreferences_Click);
    on(menus_.mnuHelpContents, &frmMDI::mnuHelpContents_Click);
    on(menus_.mnuHelpAbout, [this] { ShowAbout(this, parts_.about); });
    on(menus_.mnuEditCut, &frmMDI::ClipboardUsed);
    on(menus_.mnuEditCopy, &frmMDI::ClipboardUsed);
    on(menus_.mnuEditUndo, [this] { TakeStep(store::UndoWay::Undo); });
    on(menus_.mnuEditRedo, [this] { TakeStep(store::UndoWay::Redo); });
    connect(menus_.mnuEdit, &QMenu::aboutToShow, this, [this] {
        EnableEditEntries(menus_, QApplication::focusWidget());
        NameSteps();
    });
    // An entry that is greyed would not hear its key either, and what can be undone changes all the time.
    connect(menus_.mnuEdit, &QMenu::aboutToHide, this, [this] {
        menus_.mnuEditUndo->setEnabled(true);
        menus_.mnuEditRedo->setEnabled(true);
    });
}

void frmMDI::ConnectView() {
    connect(menus_.mnuViewShowPrivate, &QAction::triggered, this, &frmMDI::mnuViewShowPrivate_Switch);
    connect(menus_.mnuViewStart, &QAction::triggered, this, [this] { optSection_Click(0); });
    for (std::size_t at = 0; at < menus_.mnuViewSection.size(); ++at)
        connect(menus_.mnuViewSection[at], &QAction::triggered, this,
                [this, at] { emit column_->Chosen(static_cast<std::uint8_t>(11 + at)); });
    connect(menus_.mnuViewToolbarText, &QAction::toggled, this, &frmMDI::FitToolbar);
    connect(menus_.mnuViewFold, &QAction::toggled, column_, &SectionColumn::SetFolded);
    connect(column_, &SectionColumn::FoldChanged, menus_.mnuViewFold, &QAction::setChecked);
    connect(menus_.mnuViewFullScreen, &QAction::toggled, this,
            [this](bool on) { setWindowState(windowState().setFlag(Qt::WindowFullScreen, on)); });
    connect(menus_.mnuViewTheme, &QActionGroup::triggered, this, [this](QAction* entry) {
        const auto choice = static_cast<kit::ThemeChoice>(entry->data().toInt());
        if (parts_.theme) parts_.theme->Choose(choice);
        RememberTheme(session_.ports.registry, kit::Theme::NameOf(choice));
    });
    const auto choice = parts_.theme ? parts_.theme->Choice() : kit::ThemeChoice::System;
    menus_.mnuViewTheme->actions().at(static_cast<int>(choice))->setChecked(true);
}

void frmMDI::ShowComment(const QString& text) {
    comment_->setText(text);
    comment_->repaint();  // what follows may hold the thread for a while
}

void frmMDI::ShowIdleCountdown(const QString& text) {
    autoshutoff_->setText(text.isEmpty() ? QString() : tr("closes in %1").arg(text));
}

void frmMDI::ShowClipboardCountdown(int seconds) {
    clipboard_->setText(tr("Clipboard is emptied in %1 s").arg(seconds));
    clipboard_->setVisible(seconds >= 0);
}

bool frmMDI::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && session_.DatabaseOpen) {
        // Comes here only from a window that the menu's shortcut does not reach.
        const auto& key = *static_cast<QKeyEvent*>(event);
        if (key.key() == Qt::Key_L && key.modifiers() == Qt::ControlModifier) {
            QMetaObject::invokeMethod(this, &frmMDI::LockNow, Qt::QueuedConnection);
            return true;
        }
    }
    if (event->type() == QEvent::KeyPress && form_ && !search_->text().isEmpty() &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape && form_->Pane() &&
        watched == form_->Pane()->List()) {
        EndSearch();
        return true;
    }
    if (watched == search_ && event->type() == QEvent::KeyPress && form_) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Escape || key == Qt::Key_Down || key == Qt::Key_Return) {
            if (key == Qt::Key_Escape) {
                EndSearch();
                return true;
            }
            searchDelay_->stop();
            form_->SetSearch(search_->text().trimmed());
            form_->setFocus(Qt::OtherFocusReason);
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

void frmMDI::EndSearch() {
    search_->setText({});  // unlike clear, nothing is left to be undone
    searchDelay_->stop();
    form_->SetSearch({});
    form_->setFocus(Qt::OtherFocusReason);
}

void frmMDI::FitToolbar() {
    // The same in every section, whatever stands beside it.
    search_->setFixedWidth(qBound(kSearchLeast, width() * 3 / 10, kSearchMost));
    toolbar_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    if (!menus_.mnuViewToolbarText->isChecked() || toolbar_->sizeHint().width() > width())
        toolbar_->setToolButtonStyle(Qt::ToolButtonIconOnly);
}

void frmMDI::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    column_->SetNarrow(width() < kNarrow);
    FitToolbar();
}

void frmMDI::closeEvent(QCloseEvent* event) {
    QuitProgram();
    event->accept();
}

void frmMDI::HideShow(bool show) {
    shown_ = show;
    EnableCommands();
}

void frmMDI::OutlookBarEnabled(bool enabled) {
    column_->SetOpenable(enabled);
}

void frmMDI::EnableCommands() {
    const bool open = shown_ && session_.DatabaseOpen && !session_.ending;
    const bool section = open && form_;
    for (QMenu* menu : {menus_.mnuEdit, menus_.mnuView, menus_.mnuTools})
        menu->menuAction()->setEnabled(open);
    if (sectionMenu_) sectionMenu_->menuAction()->setEnabled(section);
    for (QAction* action : {menus_.mnuFileCloseDB, menus_.mnuFileLock, menus_.mnuViewShowPrivate,
                            menus_.mnuViewStart, menus_.mnuViewToolbarText, menus_.mnuViewFold,
                            menus_.mnuToolsPassphrase, menus_.mnuDbRepair, menus_.mnuToolsPreferences})
        action->setEnabled(open);
    for (QAction* action : {menus_.mnuFileCloseSection, menus_.mnuEditSearch})
        action->setEnabled(section);
    for (std::size_t at = 0; at < menus_.mnuViewSection.size(); ++at)
        menus_.mnuViewSection[at]->setEnabled(open &&
                                              parts_.sections.contains(static_cast<std::uint8_t>(11 + at)));
    toolbar_->setEnabled(section);
    private_->setVisible(session_.DatabaseOpen);
    private_->setEnabled(open);
    OutlookBarEnabled(open);
}

}  // namespace bmr::app
