#pragma once

#include <QDialog>
#include <array>
#include <map>

#include "kit/sessionevents.h"
#include "shell/navigator.h"
#include "shell/preferences.h"

class QBoxLayout;
class QButtonGroup;
class QCheckBox;
class QComboBox;
class QFrame;
class QLabel;
class QLineEdit;
class QPushButton;
class QTabWidget;
class QToolButton;
class QVBoxLayout;

namespace bmr::kit {
class SecretEdit;
class StepEdit;
}  // namespace bmr::kit

namespace bmr::app {

/// All settings of the user, on five tabs. OK stores them, Cancel leaves without change; only "Show Private"
/// and a change of the passphrase take effect at once.
class frmOptions final : public QDialog {
    Q_OBJECT

  public:
    struct Surroundings {
        shell::SectionSet available = 0;  ///< sections that this build has
        kit::SessionOffer offer = {};     ///< what this machine can tell of itself
    };

    frmOptions(store::Session& session, const Surroundings& surroundings, QWidget* parent = nullptr);
    ~frmOptions() override;

    /// The store found that the program cannot go on; its message was shown.
    bool fatal = false;

  signals:
    /// Private records are shown now, or hidden.
    void PrivateSwitched();

  private:
    // Building (frmOptions_tabs.cpp, frmOptions_security.cpp).
    void Lay();
    void FitPages(const QWidget& buttons);
    QVBoxLayout* AddTab(const char* name, const QString& caption);
    void BuildStartup(QVBoxLayout& page);
    void BuildCalendar(QVBoxLayout& page);
    void BuildBudget(QVBoxLayout& page);
    void BuildAddress(QVBoxLayout& page);
    void BuildSecurity(QVBoxLayout& page);
    void BuildGuards(QVBoxLayout& page);
    void BuildPin(QVBoxLayout& page);
    void BuildPinFrame();
    QButtonGroup* MakeOptions(const char* name, const QStringList& captions, QBoxLayout& into);
    QButtonGroup* MakeRow(const char* name, const QStringList& captions, QVBoxLayout& into);
    QCheckBox* MakeBox(const QString& name, const QString& caption);
    kit::StepEdit* MakeTime(const char* name, const char* tag, const QString& caption);
    QLabel* ErrorFor(const char* control);
    void AddMissingHint(QVBoxLayout& page, std::uint8_t section, const QString& words);

    void Show(const shell::Preferences& shown);
    void ShowPin();
    shell::Preferences Chosen() const;
    void ShowFaults(const std::vector<shell::Fault>& faults);
    void NextTab(int by);
    /// Scrolls the page to the control that has the focus.
    void ShowFocus();

    void StartScreen_Click();
    void BudgetShow_Click(std::size_t budget, std::size_t box);
    void cmdChangeIdle_Click();
    void cmdPIN_Click();
    void cmdPINhide_Click();
    void txtPIN_Change();
    void cmdMakePIN_Click();
    void cmdPWchange_Click();
    void chkShowPrivate_Click();
    void cmdOK_Click();

    store::Session& session_;
    const Surroundings surroundings_;
    std::map<std::string, QLabel*> errors_;  ///< by the control that they stand below

    QTabWidget* SSTab1 = nullptr;
    QButtonGroup* StartScreen = nullptr;
    QComboBox* cboStartApp = nullptr;
    QButtonGroup* CatShow = nullptr;
    QCheckBox* TodoShowCompleted = nullptr;
    QButtonGroup* DiaryShow = nullptr;

    QButtonGroup* calView = nullptr;
    QComboBox* AppDuration = nullptr;
    kit::StepEdit* WorkdayStart = nullptr;
    kit::StepEdit* WorkdayEnd = nullptr;
    kit::StepEdit* DisplayFrom = nullptr;

    kit::StepEdit* Idle = nullptr;
    QPushButton* cmdChangeIdle = nullptr;
    QCheckBox* chkEndOnSuspend = nullptr;
    QCheckBox* chkEndOnLock = nullptr;
    QCheckBox* chkAlsoForeign = nullptr;
    QCheckBox* chkShowPrivate = nullptr;
    std::array<QCheckBox*, 9> PinApp{};
    QButtonGroup* PINeveryaccess = nullptr;
    QPushButton* cmdPIN = nullptr;
    QLabel* lblPinUnread = nullptr;
    QPushButton* cmdMakePIN = nullptr;
    QPushButton* cmdPWchange = nullptr;
    QLabel* lblPWchanged = nullptr;
    QFrame* PinFrame = nullptr;
    kit::SecretEdit* txtPIN = nullptr;
    QToolButton* cmdShowPIN = nullptr;
    QLabel* lblPinKind = nullptr;

    QButtonGroup* BudgetPrimary = nullptr;
    std::array<std::array<QCheckBox*, 4>, 3> BudgetShow{};
    std::array<QLineEdit*, 4> txtUserDefined{};
};

}  // namespace bmr::app
