#include "kit/clipboardguard.h"

#include <QApplication>
#include <QPointer>
#include <QWidget>
#include <array>

#include "kit/words.h"

namespace bmr::kit {
namespace {

const QString kUtf8 = QStringLiteral("text/plain;charset=utf-8");
const QString kPlain = QStringLiteral("text/plain");
const QString kManagerHint = QStringLiteral("x-kde-passwordManagerHint");
const char* const kGuardsSelection = "_bmr_guards_selection";

/// What overwrites a text of another program. It is not read first: an owner that hangs would hold the window
/// for many seconds.
constexpr qsizetype kForeignLength = 64;

}  // namespace

SecretMime::SecretMime(const QString& text) : utf8_(ToSecret(text)), length_(text.size()) {}

SecretMime::~SecretMime() = default;

void SecretMime::Wipe() {
    utf8_.Wipe();
    length_ = 0;
}

QStringList SecretMime::formats() const {
    return {kUtf8, kPlain, kManagerHint};
}

bool SecretMime::hasFormat(const QString& type) const {
    return formats().contains(type);
}

QVariant SecretMime::retrieveData(const QString& type, QMetaType preferred) const {
    if (type == kManagerHint) return QByteArray("secret");
    if (type != kPlain && type != kUtf8) return {};
    const std::string_view text = utf8_.view();
    if (preferred.id() == QMetaType::QString)
        return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    return QByteArray(text.data(), static_cast<qsizetype>(text.size()));
}

ClipboardGuard::ClipboardGuard(QClipboard& clipboard, RandomSource& random, const Clock& clock,
                               QObject* parent)
    : QObject(parent), clipboard_(clipboard), random_(random), probe_(MakeClipboardProbe()), state_(clock) {
    timerClipboard.setObjectName("timerClipboard");
    timerClipboard.setSingleShot(true);
    connect(&timerClipboard, &QTimer::timeout, this, &ClipboardGuard::ClearClipboard);
    connect(&second_, &QTimer::timeout, this, &ClipboardGuard::Tell);
    connect(&clipboard_, &QClipboard::dataChanged, this, &ClipboardGuard::ClipboardChanged);
    connect(&clipboard_, &QClipboard::selectionChanged, this, &ClipboardGuard::SelectionChanged);
    if (probe_) probe_->Ask();
    // On from the start, but without a word: the user has copied nothing yet.
    timerClipboard.start(static_cast<int>(shell::ClipboardTimer::kInterval));
}

ClipboardGuard::~ClipboardGuard() = default;

void ClipboardGuard::Copy(const QString& text) {
    own_ = true;
    clipboard_.setMimeData(new SecretMime(text));
    own_ = false;
    RestartClipboardTimer();
}

void ClipboardGuard::RestartClipboardTimer() {
    state_.RestartClipboardTimer();
    timerClipboard.start(static_cast<int>(shell::ClipboardTimer::kInterval));
    second_.start(1000);
    emit Countdown(SecondsLeft());
}

int ClipboardGuard::SecondsLeft() const {
    return state_.Running() ? static_cast<int>((state_.Remaining() + 999) / 1000) : -1;
}

void ClipboardGuard::Tell() {
    // After a suspend the machine's clock is ahead of the timer's.
    if (state_.Due()) return ClearClipboard();
    emit Countdown(SecondsLeft());
}

void ClipboardGuard::ClearClipboard() {
    own_ = true;
    auto* secret = qobject_cast<SecretMime*>(const_cast<QMimeData*>(clipboard_.mimeData()));
    const bool ours = secret || clipboard_.ownsClipboard();  // some platforms do not tell
    if (ours || (alsoForeign && !(probe_ && probe_->HoldsText() == false))) {
        qsizetype length = kForeignLength;
        if (ours) {
            // Wiped where it lies first: that much works even if the platform refuses the rest.
            length = secret ? secret->Length() : clipboard_.text().size();
            if (secret) secret->Wipe();
        }
        if (length > 0) {
            std::vector<std::uint8_t> noise(static_cast<std::size_t>(length));
            random_.Fill(noise);
            clipboard_.setText(QString::fromLatin1(reinterpret_cast<const char*>(noise.data()), length));
        }
        clipboard_.clear();
    }
    if (clipboard_.supportsSelection() && clipboard_.ownsSelection()) clipboard_.clear(QClipboard::Selection);
    own_ = false;
    state_.Stop();
    timerClipboard.stop();
    second_.stop();
    emit Countdown(-1);
}

void ClipboardGuard::ClipboardChanged() {
    if (own_) return;
    if (!clipboard_.ownsClipboard()) {
        if (probe_) probe_->Ask();
        return;
    }
    // Some field of ours has copied in its own way: put the same text there in a form that can be taken back.
    // Nobody has read it yet, since readers are served by this thread.
    const QMimeData* data = clipboard_.mimeData();
    if (data && !qobject_cast<const SecretMime*>(data) && data->hasText()) {
        QString text = data->text();
        Copy(text);
        WipeQString(text);
    } else {
        RestartClipboardTimer();
    }
}

void ClipboardGuard::SelectionChanged() {
    if (own_ || !clipboard_.ownsSelection()) return;
    const QWidget* active = QApplication::activeWindow();
    if (active && active->property(kGuardsSelection).toBool()) {
        own_ = true;
        clipboard_.clear(QClipboard::Selection);
        own_ = false;
    } else {
        RestartClipboardTimer();
    }
}

void ClipboardGuard::GuardSelectionIn(QWidget& dialog) {
    dialog.setProperty(kGuardsSelection, true);
}

}  // namespace bmr::kit
