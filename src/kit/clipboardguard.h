#pragma once

#include <QClipboard>
#include <QMimeData>
#include <QObject>
#include <QTimer>
#include <memory>

#include "base/clock.h"
#include "base/random.h"
#include "crypto/secret.h"
#include "kit/platform.h"
#include "shell/timeout.h"

namespace bmr::kit {

/// Text on its way through the clipboard that can be taken back: it lies in one buffer that is wiped, and it
/// asks clipboard managers not to keep it.
class SecretMime final : public QMimeData {
    Q_OBJECT

  public:
    explicit SecretMime(const QString& text);
    ~SecretMime() override;

    QStringList formats() const override;
    bool hasFormat(const QString& type) const override;

    /// From now on a paste gives the empty text, even where the clipboard itself cannot be changed any more.
    void Wipe();
    /// Characters of the text.
    qsizetype Length() const { return length_; }

  protected:
    QVariant retrieveData(const QString& type, QMetaType preferred) const override;

  private:
    Secret utf8_;
    qsizetype length_ = 0;
};

/// The guard over the clipboard: 30 seconds after the last copy what was copied is overwritten and cleared,
/// and once more when the database closes and when the program ends.
class ClipboardGuard final : public QObject {
    Q_OBJECT

  public:
    ClipboardGuard(QClipboard& clipboard, RandomSource& random, const Clock& clock,
                   QObject* parent = nullptr);
    ~ClipboardGuard() override;

    /// Also text that other programs have copied; on unless the user says otherwise. What is known to be no
    /// text (a picture, files) is left alone.
    bool alsoForeign = true;

    /// Puts `text` into the clipboard and arms the guard.
    void Copy(const QString& text);

    void RestartClipboardTimer();

    /// The tick of `timerClipboard`; also called at the close of the database and at the end of the program.
    void ClearClipboard();

    /// Seconds until the tick, rounded up; -1 while the guard rests.
    int SecondsLeft() const;

    /// While `dialog` has the foreground, text selected in it is not offered to other programs.
    static void GuardSelectionIn(QWidget& dialog);

  signals:
    /// For the status bar: seconds left, each second while the guard runs, then -1.
    void Countdown(int seconds);

  private:
    void ClipboardChanged();
    void SelectionChanged();
    void Tell();

    QClipboard& clipboard_;
    RandomSource& random_;
    std::unique_ptr<ClipboardProbe> probe_;
    shell::ClipboardTimer state_;
    QTimer timerClipboard;
    QTimer second_;
    bool own_ = false;  ///< the clipboard is being changed by this guard
};

}  // namespace bmr::kit
