// The main window's half that has to do with the database and its sections.
#include <QApplication>
#include <QDialog>
#include <QDrag>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenuBar>
#include <QStackedWidget>
#include <QThread>
#include <QTimer>
#include <QToolBar>
#include <QToolButton>
#include <algorithm>
#include <utility>

#include "app/frmMDI.h"
#include "app/frmMenuDB.h"
#include "app/frmOptions.h"
#include "app/frmSplash.h"
#include "app/hardening.h"
#include "app/helpwindow.h"
#include "app/sectioncolumn.h"
#include "app/start.h"
#include "custody/keyrecords.h"
#include "custody/lifecycle.h"
#include "custody/openfailure.h"
#include "custody/passphrase.h"
#include "kit/emptycontrols.h"
#include "kit/failure.h"
#include "kit/frmEditCategories.h"
#include "kit/frmInputbox.h"
#include "kit/icons.h"
#include "kit/listpane.h"
#include "kit/recordlistview.h"
#include "kit/steps.h"
#include "shell/navigator.h"

namespace bmr::app {

namespace {

using shell::StartOutcome;

StartOutcome OutcomeOf(int error) {
    if (error == 0) return StartOutcome::Open;
    return error == custody::kQuitProgram ? StartOutcome::Quit : StartOutcome::ShowMenuDB;
}

/// The file that the person named at the start.
StartOutcome OpenNamed(store::Session& session, const std::filesystem::path& file) {
    const int unusable = custody::TestOpen(session, file);
    if (unusable == 0) return OutcomeOf(custody::OpenDatabaseFile(session));
    if (unusable > 0) custody::TellOpenFailure(session, unusable);
    return StartOutcome::ShowMenuDB;
}

/// Whether code of a form may stand below us on the stack, waiting for a dialog or a menu.
bool DialogsUnwinding() {
    return QApplication::activeModalWidget() || QApplication::activePopupWidget() ||
           QThread::currentThread()->loopLevel() > 1;
}

}  // namespace

void frmMDI::RunFlow(const std::function<void()>& flow) {
    ++flows_;
    flow();
    --flows_;
    if (flows_ > 0) return;
    if (session_.ending)
        CloseAll();
    else if (std::exchange(opened_, false))
        OfferDrafts();  // not in the flow: an editor of long standing must not hold up the end
}

void frmMDI::Start(const std::optional<std::filesystem::path>& file) {
    splash_->ShowOpening();
    RunFlow([&] { Settle(file ? OpenNamed(session_, *file) : shell::Start(session_, parts_.environment)); });
}

StartOutcome frmMDI::ShowMenuDB() {
    StartOutcome outcome = StartOutcome::Quit;
    const auto step = [&](StartOutcome (*choice)(store::Session&)) {
        const StartOutcome came = choice(session_);
        if (came != StartOutcome::ShowMenuDB) outcome = came;
        return came != StartOutcome::ShowMenuDB;
    };
    const bool hadOne = !session_.ports.registry.Read("MostRecentFiles/1").empty();
    frmMenuDB form([&] { return step(shell::MenuNewDB); }, [&] { return step(shell::MenuOldDB); }, hadOne,
                   this);
    if (!session_.ending) form.exec();
    return outcome;
}

void frmMDI::Settle(StartOutcome outcome) {
    if (outcome == StartOutcome::ShowMenuDB) outcome = ShowMenuDB();
    if (outcome == StartOutcome::Open) outcome = shell::EndStart(session_);
    if (session_.ending || outcome == StartOutcome::Quit)
        QuitProgram();
    else if (outcome == StartOutcome::Open)
        Opened();
    else
        ShowWithoutDatabase();
}

void frmMDI::Opened() {
    locked_.clear();
    const QString file = ToQString(session_.DatabasePath);
    setWindowTitle(QFileInfo(file).completeBaseName() + " — Brindlemere");
    status_->clear();
    session_.SectionCode = store::Section::None;
    column_->SetCurrent(0);
    ShowPrivateState();
    ShowForm(store::Section::None);
    HideShow(true);
    ShowLocks();  // only now can a button show that it asks for the PIN
    emit DatabaseOpened();
    opened_ = true;
    if (session_.SettingsUnread) {
        Box box;
        box.text = tr("The preferences in this file cannot be read. They are left as they are, and the usual "
                      "ones hold, until you store others under Tools > Preferences.")
                       .toStdString();
        box.icon = BoxIcon::Warning;
        session_.ports.prompter.Ask(box);
        if (session_.ending) return;
    }
    const std::uint8_t first = shell::StartSectionOf(session_, AvailableSet());
    if (first != store::Section::None) optSection_Click(first);
}

void frmMDI::ShowWithoutDatabase() {
    setWindowTitle("Brindlemere");
    column_->SetCurrent(0);
    ShowLocks();
    splash_->ShowNoDatabase(ToQString(locked_));
    stack_->setCurrentWidget(splash_);
    ShowActions(placeholders_);
    ShowComment({});
    status_->setText("   No database open");
    HideShow(false);
    splash_->FocusFirst();
}

std::vector<std::uint8_t> frmMDI::AvailableSections() const {
    std::vector<std::uint8_t> codes;
    for (const auto& [code, factory] : parts_.sections)
        codes.push_back(code);
    return codes;
}

shell::SectionSet frmMDI::AvailableSet() const {
    shell::SectionSet available = 0;
    for (const std::uint8_t code : AvailableSections())
        available |= shell::SectionBit(code);
    return available;
}

void frmMDI::optSection_Click(int Index) {
    if (session_.ending || !session_.DatabaseOpen) return;
    const shell::SectionScreen screen{
        .HideShow = [this](bool show) { HideShow(show); },
        .CloseSection = [this] { CloseForm(); },
        .ShowSection = [this](std::uint8_t code) { ShowForm(code); },
        .PressButton = [this](std::uint8_t code) { column_->SetCurrent(code); },
    };
    RunFlow([&] {
        const bool switched =
            shell::optSection_Click(session_, screen, AvailableSet(), static_cast<std::uint8_t>(Index));
        if (session_.ending) return;
        ShowLocks();
        // A prompt took the focus from a button that was greyed meanwhile.
        if (form_ && !switched) form_->setFocus(Qt::OtherFocusReason);
    });
}

void frmMDI::ShowLocks() {
    column_->SetLocked([this](std::uint8_t code) {
        return session_.DatabaseOpen && parts_.sections.contains(code) && shell::NeedsPin(session_, code);
    });
}

void frmMDI::ShowForm(std::uint8_t code) {
    const auto factory = parts_.sections.find(code);
    if (factory == parts_.sections.end()) {
        splash_->ShowDatabase(ToQString(session_.DatabasePath), AvailableSections());
        stack_->setCurrentWidget(splash_);
        splash_->FocusFirst();
        status_->clear();
        ShowActions(placeholders_);
        return;
    }
    status_->clear();
    form_ = factory->second(session_, stack_);
    connect(form_, &SectionForm::StatusChanged, status_, &QLabel::setText);
    connect(form_, &SectionForm::StatusChanged, this, &frmMDI::ShowUndo);
    if (const auto* pane = form_->Pane())
        connect(pane, &kit::ListPane::UndoWanted, form_, &SectionForm::UndoWanted);
    connect(form_, &SectionForm::UndoWanted, this, [this] { TakeStep(store::UndoWay::Undo); });
    connect(form_, &SectionForm::SearchEnded, this, &frmMDI::EmptySearch);
    connect(form_, &SectionForm::DraftSettled, this, &frmMDI::ForgetDraft);
    stack_->addWidget(form_);
    stack_->setCurrentWidget(form_);
    sectionMenu_ = form_->SectionMenu();
    if (sectionMenu_) menuBar()->insertMenu(menus_.mnuTools->menuAction(), sectionMenu_);
    ShowActions(form_->ToolActions());
    ShowUndo();
    search_->setPlaceholderText(tr("Search in %1").arg(SectionName(code)));
    search_->setAccessibleName(search_->placeholderText());
    if (const auto left = left_.extract(code)) form_->Resume(left.mapped());
    form_->setFocus(Qt::OtherFocusReason);
}

void frmMDI::EmptySearch() {
    // The field hears its own signals: its button goes by them.
    search_->setText({});  // unlike clear, nothing is left to be undone
    searchDelay_->stop();
}

void frmMDI::CloseForm() {
    if (!form_) return;
    // With an editor open the database goes, and what it holds has been taken already.
    if (auto begun = form_->Editing() ? std::vector<custody::Draft>() : form_->Drafts(); !begun.empty())
        left_[session_.SectionCode] = std::move(begun);
    EmptySearch();
    search_->setPlaceholderText({});
    stack_->setCurrentWidget(splash_);
    status_->clear();
    sectionMenu_ = nullptr;
    session_.SectionCode = store::Section::None;
    std::unique_ptr<SectionForm> form(std::exchange(form_, nullptr));
    ShowActions(placeholders_);
    form->disconnect(status_);
    disconnect(form.get(), &SectionForm::StatusChanged, this, nullptr);
    ShowUndo();
    kit::EmptyControls(*form);
    if (!DialogsUnwinding() && !form->Editing()) return;
    form->hide();
    menuBar()->removeAction(form->SectionMenu()->menuAction());
    leaving_ = std::move(form);
}

void frmMDI::ShowActions(const QList<QAction*>& actions) {
    for (QAction* action : shownActions_)
        toolbar_->removeAction(action);
    qDeleteAll(toolbarLines_);
    toolbarLines_.clear();
    shownActions_.clear();
    QList<QAction*> all = actions;
    constexpr qsizetype kStandard = 3;  // New, Edit and Delete
    all.insert(qMin(kStandard, all.size()), undoTool_);
    all.insert(qMin(kStandard, all.size()), nullptr);
    for (QAction* action : all) {
        if (action) {
            toolbar_->insertAction(spacer_, action);
            shownActions_ << action;
        } else {
            toolbarLines_ << toolbar_->insertSeparator(spacer_);
        }
    }
    searchEntry_->setVisible(form_ != nullptr);
    FitToolbar();
}

void frmMDI::ShowPrivateState() {
    const QString caption = QString::fromStdString(shell::ShowPrivateCaption(session_));
    const QIcon icon = kit::Icon(session_.ShowPrivate ? "view-visible" : "view-hidden");
    menus_.mnuViewShowPrivate->setText(QString(caption).replace("Private", "&Private"));
    menus_.mnuViewShowPrivate->setIcon(icon);
    private_->setIcon(icon);
    private_->setText(session_.ShowPrivate ? tr("Private records shown") : tr("Private records hidden"));
    private_->setToolTip(caption);
}

void frmMDI::mnuViewShowPrivate_Switch() {
    if (flows_ > 0 || !session_.DatabaseOpen) return;
    RunFlow([this] {
        if (shell::mnuViewShowPrivate_Switch(session_) && !session_.ending) PrivateSwitched();
    });
}

void frmMDI::PrivateSwitched() {
    // Without the private ones a long list takes a while to build; what it shows must not stand there so
    // long.
    QWidget cover(stack_);
    if (form_ && !session_.ShowPrivate) {
        cover.setObjectName("cover");
        cover.setAutoFillBackground(true);
        cover.setGeometry(stack_->rect());
        cover.show();
        cover.raise();
        cover.repaint();
    }
    ShowPrivateState();
    if (form_) form_->Refresh();
}

void frmMDI::CloseDatabase() {
    if (session_.DatabaseOpen) {
        KeepBegun();
        CloseForm();
        left_.clear();
        std::ignore = custody::CloseDatabase(session_);  // it tells what it could not write
        emit DatabaseClosed();
    }
    ShowWithoutDatabase();
    SweepFreed();
}

std::uint8_t frmMDI::StepSection(store::UndoWay way) const {
    return (form_ ? form_->StepSection(way) : std::nullopt).value_or(session_.SectionCode);
}

void frmMDI::NameSteps() {
    const auto name = [this](QAction* entry, const QString& word, store::UndoWay way) {
        const std::uint8_t section = StepSection(way);
        const auto* step = form_ ? store::NextStep(session_, section, way) : nullptr;
        entry->setText(step ? word + " " + kit::StepName(*step) : word);
        entry->setEnabled(form_ && store::MayTake(session_, section, way));
    };
    name(menus_.mnuEditUndo, tr("&Undo"), store::UndoWay::Undo);
    name(menus_.mnuEditRedo, tr("&Redo"), store::UndoWay::Redo);
}

void frmMDI::ShowUndo() {
    const std::uint8_t section = StepSection(store::UndoWay::Undo);
    const bool may = form_ && store::MayTake(session_, section, store::UndoWay::Undo);
    const auto* step = may ? store::NextStep(session_, section, store::UndoWay::Undo) : nullptr;
    undoTool_->setEnabled(may);
    undoTool_->setToolTip((step ? tr("Undo %1").arg(kit::StepName(*step)) : tr("Undo")) + " (Ctrl+Z)");
}

void frmMDI::TakeStep(store::UndoWay way) {
    const std::uint8_t section = StepSection(way);
    kit::ListPane* pane = form_ ? form_->Pane() : nullptr;
    if (flows_ > 0 || !form_ || form_->Editing() || !store::MayTake(session_, section, way)) return;
    const QString step = kit::StepName(*store::NextStep(session_, section, way));
    const auto outcome = store::TakeStep(session_, section, way);
    kit::TellFailure(session_, outcome.error, tr("Nothing was taken back."));
    if (outcome.error != 0 || !form_) return;
    const QString done = (way == store::UndoWay::Undo ? tr("Undone: %1.") : tr("Done again: %1.")).arg(step);
    const QString words = kit::StepTaken(done, outcome);
    if (!pane) return form_->ShowTaken(section, outcome.keys, words);
    const int row = pane->List()->currentIndex().row();
    form_->Refresh();
    // Filter or search may hide what has come back, or the row be one of another kind.
    if (!outcome.keys.empty() && !pane->Shows(outcome.keys.front()))
        form_->SelectRecord(outcome.keys.front());
    pane = form_->Pane();
    if (!outcome.keys.empty())
        pane->List()->SelectKeys(outcome.keys);
    else if (pane->List()->SelectedRow() < 0)
        pane->List()->PutCursor(row);
    pane->Say(words);
    pane->setFocus(Qt::OtherFocusReason);
}

void frmMDI::mnuFileCloseDB_Click() {
    if (flows_ > 0) return;
    RunFlow([this] { CloseDatabase(); });
}

void frmMDI::mnuFileNew_Click() {
    if (flows_ > 0) return;
    RunFlow([this] {
        CloseDatabase();
        splash_->ShowOpening();
        Settle(OutcomeOf(custody::NewDatabase(session_)));
    });
}

void frmMDI::mnuFileOpen_Click() {
    if (flows_ > 0) return;
    RunFlow([this] {
        CloseDatabase();
        if (custody::OpenFileDialog(session_) != 0) return;
        splash_->ShowOpening();
        const StartOutcome outcome = OutcomeOf(custody::OpenDatabaseFile(session_));
        Settle(outcome == StartOutcome::ShowMenuDB ? StartOutcome::Empty : outcome);
    });
}

void frmMDI::mnuToolsPassphrase_Click() {
    if (flows_ > 0 || !session_.DatabaseOpen) return;
    RunFlow([this] {
        const auto change = custody::ChangePassphrase(session_);
        if (session_.ending || change != custody::PassphraseChange::Changed) return;
        ShowLocks();  // no section asks for the new PIN yet
        ShowComment(tr("Passphrase changed"));
        QTimer::singleShot(6000, comment_, [this] { ShowComment({}); });
    });
}

void frmMDI::mnuDbRepair_Click() {
    if (flows_ > 0 || !session_.DatabaseOpen) return;
    RunFlow([this] {
        KeepBegun();
        CloseForm();
        left_.clear();
        HideShow(false);
        splash_->ShowOpening();
        const int error = custody::RepairAndCompact(session_);
        if (error == custody::kQuitProgram)
            QuitProgram();
        else if (session_.DatabaseOpen)
            Opened();
        else
            ShowWithoutDatabase();
    });
}

void frmMDI::mnuToolsPreferences_Click() {
    if (flows_ > 0 || !session_.DatabaseOpen) return;
    RunFlow([this] {
        frmOptions form(session_, {AvailableSet(), parts_.offer ? parts_.offer() : kit::SessionOffer()},
                        this);
        connect(&form, &frmOptions::PrivateSwitched, this, &frmMDI::PrivateSwitched);
        const bool stored = form.exec() == QDialog::Accepted;
        if (session_.ending) return;
        if (form.fatal) return QuitProgram();
        ShowLocks();  // a change of the passphrase, too, has changed what asks for the PIN
        if (stored && form_) form_->Refresh();  // the calendar's hours, for one
        if (stored) emit PreferencesStored();
    });
}

void frmMDI::mnuHelpContents_Click() {
    if (!HelpWindow::Available()) {
        session_.ports.prompter.Ask(MessageBox(167, BoxIcon::Warning));
        return;
    }
    auto* open = findChild<HelpWindow*>();
    auto* help = open ? open : new HelpWindow(this);
    help->Open(form_ ? form_->HelpPage() : "index");
    help->show();
    help->raise();
    help->activateWindow();
}

void frmMDI::QuitProgram() {
    CollectDrafts();
    session_.ending = true;
    if (!std::exchange(quitting_, true)) {
        RememberWindow();
        emit Quitting();
    }
    if (flows_ == 0) CloseAll();
    emit Ended();
}

void frmMDI::CloseAll() {
    if (!session_.DatabaseOpen) return;
    // Nobody can be asked any more: at the end of the program, what a failed write loses is lost.
    lostDrafts_ = custody::StoreDrafts(session_, std::exchange(drafts_, {}));
    CloseForm();
    left_.clear();
    std::ignore = custody::CloseDatabase(session_);
    emit DatabaseClosed();
    SweepFreed();
}

void frmMDI::LockNow() {
    if (!session_.DatabaseOpen || session_.ending) return;
    locked_ = session_.DatabasePath;
    const auto windows = QApplication::topLevelWidgets();
    lostCategories_ = std::ranges::any_of(windows, [](const QWidget* window) {
        const auto* form = qobject_cast<const kit::frmEditCategories*>(window);
        const auto* name = form ? form->findChild<const kit::frmInputbox*>() : nullptr;
        return form && form->isVisible() && (form->CategoriesChanged || (name && !name->Text().isEmpty()));
    });
    CollectDrafts();
    session_.ending = true;  // what stands open unwinds as cancelled and stores nothing
    if (flows_ == 0) CloseAll();
    AwaitUnlocking();
}

void frmMDI::AwaitUnlocking() {
    if (quitting_) return;  // the idle end came first
    if (flows_ == 0 && !DialogsUnwinding()) return Unlock();
    QDrag::cancel();
    QWidget* popup = QApplication::activePopupWidget();
    QWidget* modal = QApplication::activeModalWidget();
    if (popup)
        popup->close();
    else if (auto* dialog = qobject_cast<QDialog*>(modal))
        dialog->done(QDialog::Rejected);  // not close(), which some refuse
    else if (modal)
        modal->close();
    constexpr int kLook = 5;  // ms
    QTimer::singleShot(kLook, this, &frmMDI::AwaitUnlocking);
}

void frmMDI::Unlock() {
    session_.ending = false;
    leaving_.reset();
    ShowWithoutDatabase();
    SweepFreed();
    RunFlow([this] {
        if (const int error = std::exchange(lostDrafts_, 0)) {
            Box box;
            box.text = tr("What you were writing could not be kept.").toStdString() + " " +
                       custody::ExplainOpenFailure(error);
            box.icon = BoxIcon::Critical;
            session_.ports.prompter.Ask(box);
            if (session_.ending) return;
        }
        if (std::exchange(lostCategories_, false)) {
            Box box;
            box.text = tr("Changes of categories that were not saved are lost.").toStdString();
            box.icon = BoxIcon::Warning;
            session_.ports.prompter.Ask(box);
            if (session_.ending) return;
        }
        splash_->ShowOpening();
        const StartOutcome outcome = OpenNamed(session_, locked_);
        Settle(outcome == StartOutcome::ShowMenuDB ? StartOutcome::Empty : outcome);
    });
}

}  // namespace bmr::app
