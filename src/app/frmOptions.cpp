#include "app/frmOptions.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QScrollArea>
#include <QShortcut>
#include <QTabWidget>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include "base/errors.h"
#include "custody/keyrecords.h"
#include "custody/passphrase.h"
#include "custody/users.h"
#include "kit/failure.h"
#include "kit/formparts.h"
#include "kit/guards.h"
#include "kit/secretedit.h"
#include "kit/stepedit.h"
#include "kit/theme.h"
#include "store/session.h"

namespace bmr::app {

using kit::Space;

namespace {

constexpr double kOfScreen = 0.94;  ///< the window frame has to fit as well

void Choose(QButtonGroup& group, int number) {
    group.button(number)->setChecked(true);
    // Tab comes to the option that is on; Qt sees to that only after the first press.
    for (QAbstractButton* button : group.buttons())
        button->setFocusPolicy(button->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
}

std::uint8_t Chosen(const QButtonGroup& group) {
    return static_cast<std::uint8_t>(group.checkedId());
}

}  // namespace

frmOptions::frmOptions(store::Session& session, const Surroundings& surroundings, QWidget* parent)
    : QDialog(parent), session_(session), surroundings_(surroundings) {
    setObjectName("frmOptions");
    setWindowTitle("Preferences");
    Lay();
    Show(shell::FromSession(session_));
    kit::GuardDialog(*this);
}

frmOptions::~frmOptions() = default;

void frmOptions::Lay() {
    SSTab1 = new QTabWidget;
    SSTab1->setObjectName("SSTab1");
    BuildStartup(*AddTab("tabStartup", tr("S&tartup")));
    BuildCalendar(*AddTab("tabCalendar", tr("Calen&dar")));
    BuildSecurity(*AddTab("tabSecurity", tr("Sec&urity")));
    BuildBudget(*AddTab("tabBudget", tr("&Budget")));
    BuildAddress(*AddTab("tabAddress", tr("&Address")));

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setObjectName("cmdOK");
    buttons->button(QDialogButtonBox::Cancel)->setObjectName("cmdCancel");
    connect(buttons, &QDialogButtonBox::accepted, this, &frmOptions::cmdOK_Click);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Space::Margin, Space::Margin, Space::Margin, Space::Margin);
    column->setSpacing(Space::Margin);
    column->addWidget(SSTab1, 1);
    column->addWidget(buttons);
    kit::GiveLetters(*this);
    // Only now: a button remembers no dialog that it does not stand in, and Return would be lost with the
    // focus.
    buttons->button(QDialogButtonBox::Ok)->setDefault(true);
    for (const auto& [keys, by] :
         {std::pair{"Ctrl+Tab", 1}, {"Ctrl+PgDown", 1}, {"Ctrl+Shift+Tab", -1}, {"Ctrl+PgUp", -1}})
        connect(new QShortcut(QKeySequence(keys), this), &QShortcut::activated, this,
                [this, step = by] { NextTab(step); });

    connect(qApp, &QApplication::focusChanged, this,
            [this] { QTimer::singleShot(0, this, [this] { ShowFocus(); }); });
    FitPages(*buttons);
}

void frmOptions::FitPages(const QWidget& buttons) {
    // As large as the largest page, but never larger than the screen: then the pages scroll.
    QSize pages(fontMetrics().averageCharWidth() * 92, 0);
    for (int i = 0; i < SSTab1->count(); ++i) {
        const QWidget* page = static_cast<QScrollArea*>(SSTab1->widget(i))->widget();
        pages = pages.expandedTo(page->sizeHint());
    }
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    const QSize around(
        Space::Margin * 2 + Space::Row + bar,
        SSTab1->tabBar()->sizeHint().height() + buttons.sizeHint().height() + Space::Margin * 4);
    resize((pages + around).boundedTo(screen()->availableSize() * kOfScreen));
}

void frmOptions::ShowFocus() {
    QWidget* focus = focusWidget();
    auto* page = static_cast<QScrollArea*>(SSTab1->currentWidget());
    if (focus && page->isAncestorOf(focus)) page->ensureWidgetVisible(focus);
}

void frmOptions::NextTab(int by) {
    SSTab1->tabBar()->setFocus(Qt::ShortcutFocusReason);
    SSTab1->setCurrentIndex((SSTab1->currentIndex() + by + SSTab1->count()) % SSTab1->count());
}

void frmOptions::Show(const shell::Preferences& shown) {
    Choose(*StartScreen, shown.StartScreen);
    cboStartApp->setCurrentIndex(static_cast<int>(shown.cboStartApp));
    StartScreen_Click();
    Choose(*CatShow, shown.CatShow);
    TodoShowCompleted->setChecked(shown.TodoShowCompleted);
    Choose(*DiaryShow, shown.DiaryShow);

    Choose(*calView, shown.calView);
    // A length from another version stays what it is.
    if (AppDuration->findData(shown.AppDuration) < 0)
        AppDuration->addItem(tr("%1 min").arg(shown.AppDuration), shown.AppDuration);
    AppDuration->setCurrentIndex(AppDuration->findData(shown.AppDuration));
    WorkdayStart->SetText(QString::fromStdString(shown.WorkdayStart));
    WorkdayEnd->SetText(QString::fromStdString(shown.WorkdayEnd));
    DisplayFrom->SetText(QString::fromStdString(shown.DisplayFrom));

    Idle->SetText(QString::fromStdString(shown.Idle));
    chkEndOnSuspend->setChecked(shown.switches.endOnSuspend);
    chkEndOnLock->setChecked(shown.switches.endOnLock);
    chkAlsoForeign->setChecked(shown.switches.alsoForeign);
    chkShowPrivate->setChecked(session_.ShowPrivate);
    ShowPin();

    Choose(*BudgetPrimary, shown.BudgetPrimary);
    for (std::size_t budget = 0; budget < BudgetShow.size(); ++budget)
        for (std::size_t box = 0; box < BudgetShow[budget].size(); ++box)
            BudgetShow[budget][box]->setChecked(shown.BudgetShow[budget][box]);
    for (std::size_t i = 0; i < txtUserDefined.size(); ++i) {
        txtUserDefined[i]->setText(QString::fromStdString(shown.txtUserDefined[i]));
        txtUserDefined[i]->setCursorPosition(0);
    }
}

void frmOptions::ShowPin() {
    const store::PinRecord& pin = session_.pin;
    for (std::size_t i = 0; i < PinApp.size(); ++i) {
        PinApp[i]->setChecked(((pin.PinApp >> i) & 1) != 0);
        PinApp[i]->setEnabled(!pin.Unread);
    }
    for (QAbstractButton* option : PINeveryaccess->buttons())
        option->setEnabled(!pin.Unread);
    cmdPIN->setEnabled(!pin.Unread && PinFrame->isHidden());
    lblPinUnread->setVisible(pin.Unread);
    cmdMakePIN->setVisible(pin.Unread);
    Choose(*PINeveryaccess, pin.PINeveryaccess ? 1 : 0);
    txtPIN->SetContent(pin.Pin.Copy());
    txtPIN_Change();
}

void frmOptions::txtPIN_Change() {
    const store::PinRecord& pin = session_.pin;
    const bool same = txtPIN->Content() == pin.Pin.view();
    lblPinKind->setText(!same              ? tr("A new PIN, in force once OK has stored it.")
                        : pin.PinKind == 0 ? tr("This is the default PIN; it follows from the passphrase.")
                                           : tr("This is a PIN of your own."));
    errors_.at("txtPIN")->hide();
}

shell::Preferences frmOptions::Chosen() const {
    shell::Preferences chosen;
    chosen.StartScreen = app::Chosen(*StartScreen);
    chosen.cboStartApp = static_cast<std::size_t>(cboStartApp->currentIndex());
    chosen.CatShow = app::Chosen(*CatShow);
    chosen.TodoShowCompleted = TodoShowCompleted->isChecked();
    chosen.DiaryShow = app::Chosen(*DiaryShow);
    chosen.calView = app::Chosen(*calView);
    chosen.AppDuration = AppDuration->currentData().toInt();
    chosen.WorkdayStart = WorkdayStart->text().toStdString();
    chosen.WorkdayEnd = WorkdayEnd->text().toStdString();
    chosen.DisplayFrom = DisplayFrom->text().toStdString();
    chosen.Idle = Idle->text().toStdString();
    chosen.switches = {chkEndOnSuspend->isChecked(), chkEndOnLock->isChecked(), chkAlsoForeign->isChecked()};
    chosen.Pin = Secret(txtPIN->Content());
    // Bits of sections that a later version may add are kept.
    chosen.PinApp = session_.pin.PinApp;
    for (std::size_t i = 0; i < PinApp.size(); ++i) {
        const std::int32_t bit = 1 << i;
        chosen.PinApp = PinApp[i]->isChecked() ? chosen.PinApp | bit : chosen.PinApp & ~bit;
    }
    chosen.PinUnread = session_.pin.Unread;
    chosen.PINeveryaccess = app::Chosen(*PINeveryaccess) == 1;
    chosen.BudgetPrimary = app::Chosen(*BudgetPrimary);
    for (std::size_t budget = 0; budget < BudgetShow.size(); ++budget)
        for (std::size_t box = 0; box < BudgetShow[budget].size(); ++box)
            chosen.BudgetShow[budget][box] = BudgetShow[budget][box]->isChecked();
    for (std::size_t i = 0; i < txtUserDefined.size(); ++i)
        chosen.txtUserDefined[i] = txtUserDefined[i]->text().toStdString();
    return chosen;
}

void frmOptions::ShowFaults(const std::vector<shell::Fault>& faults) {
    for (const auto& [control, line] : errors_)
        line->hide();
    for (const shell::Fault& fault : faults) {
        errors_.at(fault.control)->setText(QString::fromStdString(fault.words));
        errors_.at(fault.control)->show();
    }
    if (faults.empty()) return;
    const QString first = QString::fromStdString(faults.front().control);
    if (first == "txtPIN") cmdPIN_Click();
    if (first == "Idle") cmdChangeIdle_Click();
    auto* field = findChild<QLineEdit*>(first);
    for (int i = 0; i < SSTab1->count(); ++i) {
        if (!SSTab1->widget(i)->isAncestorOf(field)) continue;
        SSTab1->setCurrentIndex(i);
    }
    field->setFocus(Qt::OtherFocusReason);
    field->selectAll();
}

void frmOptions::StartScreen_Click() {
    constexpr int kGotoSection = 1;
    cboStartApp->setEnabled(StartScreen->checkedId() == kGotoSection);
}

void frmOptions::BudgetShow_Click(std::size_t budget, std::size_t box) {
    shell::BudgetBoxes boxes{};
    for (std::size_t i = 0; i < boxes.size(); ++i)
        boxes[i] = BudgetShow[budget][i]->isChecked();
    shell::KeepPair(boxes, box);
    for (std::size_t i = 0; i < boxes.size(); ++i)
        BudgetShow[budget][i]->setChecked(boxes[i]);
}

void frmOptions::cmdChangeIdle_Click() {
    Idle->setEnabled(true);
    Idle->setFocus(Qt::OtherFocusReason);
    Idle->selectAll();
    cmdChangeIdle->setEnabled(false);
}

void frmOptions::cmdPIN_Click() {
    if (PinFrame->isHidden()) {
        PinFrame->show();
        const int wanted = height() + PinFrame->sizeHint().height() + Space::Row;
        const auto most = static_cast<int>(screen()->availableSize().height() * kOfScreen);
        resize(width(), qMax(height(), qMin(wanted, most)));
    }
    cmdPIN->setEnabled(false);
    txtPIN->setFocus(Qt::OtherFocusReason);
    txtPIN->selectAll();
}

void frmOptions::cmdPINhide_Click() {
    cmdShowPIN->setChecked(false);
    resize(width(), height() - PinFrame->height() - Space::Row);
    PinFrame->hide();
    cmdPIN->setEnabled(true);
    cmdPIN->setFocus(Qt::OtherFocusReason);
}

void frmOptions::cmdMakePIN_Click() {
    const int error = custody::SetDefaultPin(session_);
    if (session_.ending || !session_.DatabaseOpen) return;
    fatal = error == custody::kQuitProgram;
    if (fatal) return reject();
    if (error == 0) return ShowPin();
    if (error != MessageNumber::NoSuchUser)  // that one was told by the prompt
        kit::TellFailure(session_, error, tr("The new PIN was not stored."));
}

void frmOptions::cmdPWchange_Click() {
    const auto change = custody::ChangePassphrase(session_);
    if (session_.ending || !session_.DatabaseOpen) return;
    if (change == custody::PassphraseChange::Unverified) session_.ports.prompter.Ask(MessageBox(124));
    if (change != custody::PassphraseChange::Changed) return;
    ShowPin();
    lblPWchanged->setText(tr("Changed. The PIN is the default one again, and no section asks for it."));
    lblPWchanged->show();
}

void frmOptions::chkShowPrivate_Click() {
    const bool switched = shell::mnuViewShowPrivate_Switch(session_);
    if (session_.ending) return;
    chkShowPrivate->setChecked(session_.ShowPrivate);
    if (switched) emit PrivateSwitched();
}

void frmOptions::cmdOK_Click() {
    const shell::Preferences chosen = Chosen();
    const auto faults = shell::FaultsOf(chosen);
    ShowFaults(faults);
    if (!faults.empty()) return;
    const int error = shell::StorePreferences(session_, chosen);
    if (session_.ending) return;
    fatal = error == custody::kQuitProgram;
    if (error == 0) return accept();
    if (fatal) return reject();
    kit::TellFailure(session_, error, tr("The preferences were not stored."));
}

}  // namespace bmr::app
