#include "kit/frmPW.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <initializer_list>

#include "base/languageus.h"
#include "custody/passphrase.h"
#include "kit/formparts.h"
#include "kit/icons.h"
#include "kit/overparent.h"
#include "kit/secretedit.h"
#include "kit/theme.h"
#include "kit/words.h"

namespace bmr::kit {

namespace {

constexpr int kLeastLength = static_cast<int>(custody::kShortestPassphrase);
/// Guesses as powers of two below which a passphrase is weak, fair and good.
constexpr double kFair = 40, kGood = 60, kStrong = 80;
/// From this length on a request that wants noise only for short texts gets none.
constexpr std::size_t kShort = 6;

QLabel* MakeLabel(const char* name, bool wrap = true) {
    auto* label = new QLabel;
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(wrap);
    return label;
}

void SetInk(QWidget& widget, const QColor& colour) {
    QPalette palette = widget.palette();
    palette.setColor(QPalette::WindowText, colour);
    widget.setPalette(palette);
}

}  // namespace

frmPW::frmPW(const PassphraseRequest& request, Prompter& boxes, QWidget* parent)
    : QDialog(parent), request_(request), boxes_(boxes), entry_(request.confirm, request.checkQuality) {
    setObjectName("frmPW");
    setWindowTitle(request.title.empty() ? QApplication::applicationDisplayName()
                                         : QString::fromStdString(request.title));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    BuildTexts();
    BuildEntry();
    Lay();
    KeepOverParent(*this);
    Restart();
}

frmPW::~frmPW() = default;

void frmPW::BuildTexts() {
    lblTitle = MakeLabel("lblTitle");
    QFont heading = font();
    heading.setPointSizeF(heading.pointSizeF() * kHeadingText);
    heading.setBold(true);
    lblTitle->setFont(heading);
    lblTitle->setText(windowTitle());
    lblPrompt = MakeLabel("lblPrompt");
    lblHint = MakeLabel("lblHint");
    lblHint->setAlignment(Qt::AlignLeft | Qt::AlignTop);
}

void frmPW::BuildEntry() {
    txtInput = new SecretEdit;
    txtInput->setObjectName("txtInput");
    SetMonospaced(*txtInput);  // in the clear, an l is no 1
    txtInput->setAccessibleName(QString::fromStdString(request_.prompt));
    lblPrompt->setBuddy(txtInput);
    // One pixel that can take the focus: a hidden box could not receive the decoys.
    txtBurst = new QLineEdit(this);
    txtBurst->setObjectName("txtBurst");
    txtBurst->setEchoMode(QLineEdit::NoEcho);
    txtBurst->setFrame(false);
    txtBurst->setFocusPolicy(Qt::ClickFocus);
    txtBurst->setGeometry(0, 0, 1, 1);
    txtBurst->setEnabled(false);

    QString caption = QString::fromStdString(request_.clearCaption);
    chkShowClear = new QCheckBox(caption.contains('&') ? caption : "&" + caption);
    chkShowClear->setObjectName("chkShowClear");
    // Beside the entry no decoy covers what is typed, so neither its letter nor a click takes the focus.
    chkShowClear->setFocusPolicy(Qt::TabFocus);

    connect(txtInput, &SecretEdit::ContentChanged, this, &frmPW::InputChanged);
    connect(txtInput, &SecretEdit::Refused, this, [this](const QString& why) { ShowHint(why, true); });
    connect(txtInput, &SecretEdit::CapsLockSeen, this, &frmPW::SetCapsLock);
    connect(chkShowClear, &QCheckBox::toggled, this, [this](bool clear) {
        txtInput->SetClear(clear);
        txtInput->setFocus(Qt::OtherFocusReason);
    });
}

void frmPW::Lay() {
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    cmdOK = buttons->button(QDialogButtonBox::Ok);
    cmdOK->setObjectName("cmdOK");
    cmdCancel = buttons->button(QDialogButtonBox::Cancel);
    cmdCancel->setObjectName("cmdCancel");
    connect(buttons, &QDialogButtonBox::accepted, this, &frmPW::cmdOK_Click);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* heading = new QHBoxLayout;
    auto* key = new QLabel;
    key->setPixmap(Icon("dialog-password", Ink::Accent).pixmap(QSize(32, 32), devicePixelRatioF()));
    heading->addWidget(key);
    heading->addSpacing(Space::Tight);
    heading->addWidget(lblTitle, 1);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(Space::Group, Space::Group, Space::Group, Space::Margin);
    column->setSpacing(Space::Row);
    column->addLayout(heading);
    column->addSpacing(Space::Row);
    column->addWidget(lblPrompt);
    column->addWidget(txtInput);
    if (request_.checkQuality) {
        barQuality = new QProgressBar;
        barQuality->setObjectName("barQuality");
        barQuality->setRange(0, 100);
        barQuality->setTextVisible(false);
        barQuality->setFixedHeight(6);
        lblQuality = MakeLabel("lblQuality", false);
        for (QWidget* meter : std::initializer_list<QWidget*>{barQuality, lblQuality}) {
            QSizePolicy policy = meter->sizePolicy();
            policy.setRetainSizeWhenHidden(true);
            meter->setSizePolicy(policy);
        }
        column->addWidget(barQuality);
        column->addWidget(lblQuality);
    }
    // Two lines are kept free for the hint, so that its coming and going moves nothing.
    lblHint->setMinimumHeight(fontMetrics().lineSpacing() * 2);
    column->addWidget(lblHint);
    column->addWidget(chkShowClear);
    column->addSpacing(Space::Row);
    column->addWidget(buttons);
    GiveLetters(*this);
    cmdOK->setDefault(true);  // earlier it has no dialog yet, whose own default it is to be
    const int width = std::max(440, fontMetrics().averageCharWidth() * 62);
    setFixedSize(width, std::max(column->totalHeightForWidth(width), column->totalSizeHint().height()));
}

void frmPW::Restart() {
    lblPrompt->setText(QString::fromStdString(request_.prompt));
    txtInput->Empty();
    ShowMeter(true);
    ShowHint({}, false);
    txtInput->setFocus();
}

void frmPW::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    txtInput->setFocus();
}

void frmPW::SetCapsLock(bool on) {
    if (on == capsLock_) return;
    capsLock_ = on;
    ShowHint({}, false);
}

void frmPW::InputChanged() {
    ShowHint({}, false);
    ShowQuality();
    if (isVisible() && (!request_.noiseOnlyWhileShort || txtInput->Content().size() < kShort))
        emit NoiseWanted();
}

void frmPW::ShowHint(const QString& text, bool alarm) {
    SetInk(*lblHint, InkOf(alarm ? Ink::Alarm : Ink::Warning, palette()));
    lblHint->setText(text.isEmpty() && capsLock_ ? tr("Caps Lock is on.") : text);
}

void frmPW::ShowMeter(bool on) {
    if (!barQuality) return;
    barQuality->setVisible(on);
    lblQuality->setVisible(on);
}

void frmPW::ShowQuality() {
    if (!barQuality) return;
    const std::string_view text = txtInput->Content();
    double bits = shell::GuessBits(text);
    const bool weak = shell::IsWeak(text) || bits < kFair;
    // Many guesses do not help a passphrase that will be called weak: bar and word say the same.
    if (weak) bits = std::min(bits, kFair / 2);
    struct Grade {
        QString words;
        Ink ink;
    } grade;
    if (text.empty())
        grade = {tr("At least %1 characters; a sentence is good.").arg(kLeastLength), Ink::Pale};
    else if (text.size() < custody::kShortestPassphrase)
        grade = {tr("Too short: %n more to go", nullptr, kLeastLength - static_cast<int>(text.size())),
                 Ink::Alarm};
    else if (weak)
        grade = {tr("Weak"), Ink::Warning};
    else if (bits < kGood)
        grade = {tr("Fair"), Ink::Accent};
    else
        grade = {bits < kStrong ? tr("Good") : tr("Strong"), Ink::Good};
    lblQuality->setText(grade.words);
    if (grade.ink == Ink::Pale)
        SetInk(*lblQuality, palette().color(QPalette::PlaceholderText));
    else
        SetInk(*lblQuality, InkOf(grade.ink, palette()));
    QPalette bar = palette();
    bar.setColor(QPalette::Highlight, InkOf(grade.ink, bar));
    barQuality->setPalette(bar);
    barQuality->setValue(static_cast<int>(std::min(100.0, bits)));
}

void frmPW::cmdOK_Click() {
    using Step = shell::SecretEntry::Step;
    if (leaving_) return;
    Step step = entry_.Enter(txtInput->TakeContent());
    while (step == Step::AskWeak || step == Step::AskMismatch) {
        Box question = entry_.Question();
        if (step == Step::AskMismatch)
            question.text += "\r\n\r\n" + tr("The two entries are not the same.").toStdString();
        step = entry_.Reply(boxes_.Ask(question));
    }
    if (step == Step::Type) return Restart();
    if (step == Step::Confirm) {
        lblPrompt->setText(QString::fromStdString(Msg(42)));
        ShowMeter(false);  // what was accepted is not judged again
        ShowHint(tr("Type it once more."), false);
        txtInput->setFocus();
        return;
    }
    if (step != Step::Done) return reject();
    TypedSecret = entry_.TakeResult();
    accept();
}

void frmPW::done(int result) {
    if (leaving_) return;
    leaving_ = true;
    if (result != Accepted) {
        entry_.Cancel();
        TypedSecret.Wipe();
    }
    txtInput->Empty();
    const auto hide = [this, result] {
        QDialog::done(result);
        leaving_ = false;
    };
    if (isVisible() && beforeHide_)
        beforeHide_(hide);
    else
        hide();
}

Secret frmPW::TakeTypedSecret() {
    return std::move(TypedSecret);
}

}  // namespace bmr::kit
