#include "kit/prompter.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <array>

#include "crypto/secret.h"
#include "kit/formparts.h"
#include "kit/frmInputbox.h"
#include "kit/frmPW.h"
#include "kit/overparent.h"
#include "kit/theme.h"
#include "kit/words.h"

namespace bmr::kit {

namespace {

/// Words on the two buttons of a numbered question. A button that says what it does needs no second reading.
struct Verbs {
    int number;
    const char* yes;
    const char* no;
};

constexpr std::array kVerbs{
    Verbs{7, "Delete", nullptr},
    Verbs{14, "Delete", nullptr},
    Verbs{19, "Delete category", nullptr},
    Verbs{20, "Discard changes", "Save changes"},
    Verbs{22, "Accept", "Change it"},
    Verbs{25, "Delete", nullptr},
    Verbs{26, "Save", "Do not save"},
    Verbs{27, "Delete", nullptr},
    Verbs{29, "Delete", nullptr},
    Verbs{46, "Repair", "Do not repair"},
    Verbs{79, "Delete", nullptr},
    Verbs{80, "Delete all", nullptr},
    Verbs{81, "Delete all", nullptr},
    Verbs{82, "Delete completed", nullptr},
    Verbs{102, "Delete all in category", nullptr},
    Verbs{138, "Restore", nullptr},
    Verbs{139, "Stop restoring", "Go on"},
    Verbs{141, "Open", "Not now"},
    Verbs{145, "Delete file", nullptr},
    Verbs{158, "Use it anyway", "Choose another"},
    Verbs{160, "Choose another place", "Use the default file"},
    Verbs{163, "Delete", nullptr},
};

QMessageBox::StandardButton ButtonOf(Answer answer) {
    switch (answer) {
        case Answer::Ok:
            return QMessageBox::Ok;
        case Answer::Cancel:
            return QMessageBox::Cancel;
        case Answer::Yes:
            return QMessageBox::Yes;
        case Answer::No:
            return QMessageBox::No;
        case Answer::Retry:
            return QMessageBox::Retry;
    }
    return QMessageBox::NoButton;
}

/// The answers of a set of buttons; the last one also stands for a box that was closed.
std::vector<Answer> AnswersOf(Buttons buttons) {
    switch (buttons) {
        case Buttons::Ok:
            return {Answer::Ok};
        case Buttons::OkCancel:
            return {Answer::Ok, Answer::Cancel};
        case Buttons::YesNo:
            return {Answer::Yes, Answer::No};
        case Buttons::RetryCancel:
            return {Answer::Retry, Answer::Cancel};
        case Buttons::YesNoCancel:
            return {Answer::Yes, Answer::No, Answer::Cancel};
    }
    return {Answer::Ok};
}

QMessageBox::Icon IconOf(BoxIcon icon) {
    switch (icon) {
        case BoxIcon::None:
            return QMessageBox::NoIcon;
        case BoxIcon::Information:
            return QMessageBox::Information;
        case BoxIcon::Question:
            return QMessageBox::Question;
        case BoxIcon::Warning:
            return QMessageBox::Warning;
        case BoxIcon::Critical:
            return QMessageBox::Critical;
    }
    return QMessageBox::NoIcon;
}

void NameButtons(QMessageBox& form, const Box& box, const std::vector<Answer>& answers) {
    const Answer yes = answers.front();
    if (yes == Answer::Retry) form.button(QMessageBox::Retry)->setText(QMessageBox::tr("Try again"));
    for (const Verbs& verbs : kVerbs) {
        if (verbs.number != box.number || answers.size() < 2) continue;
        form.button(ButtonOf(yes))->setText(QMessageBox::tr(verbs.yes));
        if (verbs.no) form.button(ButtonOf(answers[1]))->setText(QMessageBox::tr(verbs.no));
    }
    for (std::size_t i = 0; i < answers.size(); ++i)
        if (!box.words[i].empty())
            form.button(ButtonOf(answers[i]))->setText(QString::fromStdString(box.words[i]));
}

/// "Name (*.x)|*.x|All (*.*)|*.*" as the file dialog wants it; `suffix` gets "x".
QStringList NameFilters(const std::string& filter, QString& suffix) {
    const QStringList parts = QString::fromStdString(filter).split('|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString name = parts[i];
        name.remove(QRegularExpression(R"(\s*\([^)]*\)\s*$)"));
        const QString pattern = parts[i + 1] == "*.*" ? QString("*") : parts[i + 1];
        if (suffix.isEmpty() && pattern.startsWith("*.")) suffix = pattern.mid(2);
        filters << name + " (" + pattern + ")";
    }
    return filters;
}

/// A key that writes something and is no command.
bool Writes(const QEvent& event) {
    if (event.type() != QEvent::KeyPress && event.type() != QEvent::KeyRelease) return false;
    const auto& key = static_cast<const QKeyEvent&>(event);
    return !key.text().isEmpty() && key.text()[0].isPrint() &&
           !(key.modifiers() & (Qt::AltModifier | Qt::MetaModifier));
}

/// What a box says that may come up in the middle of a passphrase: there letters and blanks press no button.
bool FollowsSecret(int number) {
    static constexpr std::array kNumbers{40, 84, 85, 124, 125, 158};
    return std::ranges::find(kNumbers, number) != kNumbers.end();
}

class SecretBox final : public QMessageBox {
  public:
    using QMessageBox::QMessageBox;
    /// To be called once all buttons are there.
    void DropLetters() {
        for (QAbstractButton* button : buttons())
            button->installEventFilter(this);
        installEventFilter(this);
    }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        return Writes(*event) || QMessageBox::eventFilter(watched, event);
    }
};

/// Stands over everything for the length of the pause and cannot be closed before its end. Keys that come
/// meanwhile are dropped and that is told; while they still come it stays, as the rest of what is being typed
/// would go to the window behind it.
class PauseForm final : public QDialog {
  public:
    PauseForm(int milliseconds, QWidget* parent) : QDialog(parent), end_(milliseconds) {
        setObjectName("frmPause");
        setWindowTitle(QApplication::applicationDisplayName());
        text_.setObjectName("lblCountdown");
        dropped_.setObjectName("lblDropped");
        dropped_.setText(" ");
        bar_.setRange(0, milliseconds);
        bar_.setTextVisible(false);
        bar_.setFixedHeight(6);
        text_.setMinimumWidth(text_.fontMetrics().horizontalAdvance(Words(9)));
        auto* column = new QVBoxLayout(this);
        column->setContentsMargins(Space::Group, Space::Group, Space::Group, Space::Group);
        column->setSpacing(Space::Margin);
        column->addWidget(&text_);
        column->addWidget(&bar_);
        column->addWidget(&dropped_);
        KeepOverParent(*this);
        timerPW.setObjectName("timerPW");
        timerPW.setSingleShot(true);
        timerPW.setTimerType(Qt::PreciseTimer);
        connect(&timerPW, &QTimer::timeout, this, &PauseForm::EndWhenQuiet);
        connect(&tick_, &QTimer::timeout, this, [this] { Show(); });
        timerPW.start(milliseconds);
        tick_.start(100);
        Show();
    }
    void reject() override {}

  protected:
    bool event(QEvent* event) override {
        if (event->type() != QEvent::KeyPress && event->type() != QEvent::KeyRelease)
            return QDialog::event(event);
        sinceKey_.start();
        dropped_.setText(tr("What you type now is not taken. Go on when the prompt is there again."));
        event->accept();
        return true;
    }

  private:
    static constexpr int kQuiet = 600;  ///< ms without a key after which nobody is typing

    static QString Words(int seconds) {
        return seconds == 1 ? tr("That was not right. The next try is possible in 1 second.")
                            : tr("That was not right. The next try is possible in %1 seconds.").arg(seconds);
    }
    void EndWhenQuiet() {
        const auto quiet = sinceKey_.isValid() ? sinceKey_.elapsed() : kQuiet;
        if (quiet >= kQuiet) return QDialog::accept();
        timerPW.start(static_cast<int>(kQuiet - quiet));
    }
    void Show() {
        const int left = qMax(0, timerPW.remainingTime());
        bar_.setValue(end_ - left);
        text_.setText(Words((left + 999) / 1000));
    }

    int end_;
    QTimer timerPW;
    QTimer tick_;
    QElapsedTimer sinceKey_;
    QLabel text_;
    QProgressBar bar_;
    QLabel dropped_;
};

}  // namespace

QtPrompter::~QtPrompter() {
    if (busy_) QApplication::restoreOverrideCursor();
}

QWidget* QtPrompter::Over() const {
    if (QWidget* dialog = QApplication::activeModalWidget()) return dialog;
    return window_ ? window_.data() : QApplication::activeWindow();
}

Answer QtPrompter::Ask(const Box& box) {
    const std::vector<Answer> answers = AnswersOf(box.buttons);
    if (Ending()) return answers.back();
    SecretBox form(Over());
    form.setObjectName("boxMsg");
    form.setWindowTitle(box.title.empty() ? QApplication::applicationDisplayName()
                                          : QString::fromStdString(box.title));
    form.setTextFormat(Qt::PlainText);  // a record's own words may stand in it
    form.setText(ShowLines(box.text));
    form.setIcon(IconOf(box.icon));
    form.setProperty("number", box.number);
    for (const Answer answer : answers)
        form.addButton(ButtonOf(answer));
    NameButtons(form, box, answers);
    FinishBox(form);
    KeepOverParent(form);
    if (FollowsSecret(box.number)) form.DropLetters();
    form.setDefaultButton(ButtonOf(box.standard));
    form.setEscapeButton(ButtonOf(answers.back()));
    const int pressed = form.exec();
    // A box that the end of the program closed gives no button at all.
    for (const Answer answer : answers)
        if (!Ending() && pressed == ButtonOf(answer)) return answer;
    return answers.back();
}

std::optional<std::string> QtPrompter::InputBox(const std::string& title, const std::string& prompt,
                                                const std::string& initial) {
    if (Ending()) return std::nullopt;
    frmInputbox form(QString::fromStdString(title), QString::fromStdString(prompt),
                     QString::fromStdString(initial), Over());
    if (form.exec() != QDialog::Accepted || Ending()) return std::nullopt;
    return TakeWords(form.Text());
}

bool QtPrompter::AskSecret(const PassphraseRequest& request, Secret& typed) {
    typed.Wipe();
    if (Ending()) return false;
    frmPW form(request, *this, Over());
    if (onPrompt_) onPrompt_(form);
    if (form.exec() != QDialog::Accepted || Ending()) return false;
    typed = form.TakeTypedSecret();
    return !typed.empty();
}

void QtPrompter::SetFolder(const std::filesystem::path& folder) {
    folder_ = QString::fromStdU16String(folder.u16string());
}

std::optional<std::filesystem::path> QtPrompter::AskOpenFile(const FileRequest& request) {
    return AskFile(request, false);
}

std::optional<std::filesystem::path> QtPrompter::AskSaveFile(const FileRequest& request) {
    return AskFile(request, true);
}

std::optional<std::filesystem::path> QtPrompter::AskFile(const FileRequest& request, bool save) {
    if (Ending()) return std::nullopt;
    if (folder_.isEmpty()) folder_ = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (!QFileInfo(folder_).isDir())
        folder_ = QDir::homePath();  // else its name would be offered as a file's
    QString suffix;
    const QStringList filters = NameFilters(request.filter, suffix);
    QFileDialog form(Over(), QString::fromStdString(request.title), folder_);
    form.setObjectName("dlgFile");
    form.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    form.setFileMode(request.mustExist ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    if (!filters.isEmpty()) form.setNameFilters(filters);
    if (save) form.setDefaultSuffix(suffix);
    form.setOption(QFileDialog::DontConfirmOverwrite, request.addsTo);
    if (form.exec() != QDialog::Accepted || Ending() || form.selectedFiles().isEmpty()) return std::nullopt;
    const QString file = form.selectedFiles().constFirst();
    folder_ = QFileInfo(file).absolutePath();
    return std::filesystem::path(file.toStdU16String());
}

void QtPrompter::Comment(const std::string& text, bool busy) {
    if (busy && !busy_) QApplication::setOverrideCursor(Qt::WaitCursor);
    if (!busy && busy_) QApplication::restoreOverrideCursor();
    busy_ = busy;
    emit CommentChanged(QString::fromStdString(text));
    // The work that the words announce holds the thread: paint them first. Running the event loop for it
    // would let timers in, and one of them closes databases.
    if (!window_) return;
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    window_->repaint();
}

void QtPrompter::PauseAfterFailure() {
    if (Ending()) return;
    // A modal window and not a bare event loop: nothing else may be started meanwhile, yet all windows stay
    // alive.
    PauseForm form(pause_, Over());
    form.exec();
}

}  // namespace bmr::kit
