#pragma once

#include <QLineEdit>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <deque>
#include <functional>
#include <memory>
#include <vector>

#include "base/random.h"
#include "kit/keycapture.h"
#include "kit/platform.h"
#include "shell/noise.h"

namespace bmr::kit {

/// Sends bursts of decoys into the hidden box of a prompt, one key after the other as the event loop turns.
/// What the user types meanwhile is kept and handed to the entry in order afterwards; caret, selection and
/// picture of the entry stay as they were. Lives as a child of the entry.
class BurstSender final : public QObject {
    Q_OBJECT

  public:
    /// Both boxes stand in the dialog of `capture`; all must outlive this.
    BurstSender(KeyPort& port, KeyCapture& capture, RandomSource& random, QLineEdit& txtInput,
                QLineEdit& txtBurst);
    ~BurstSender() override;

    /// Asks for bursts; they follow one another. Those that cannot be sent safely fall out.
    void SendNoise(int bursts = 1);

    /// The prompt closes: drops what was typed since, sends five bursts and then calls `closed`, once.
    void CloseAfterNoise(std::function<void()> closed);

    /// A burst is under way, or one is still to come.
    bool Busy() const { return running_ || starting_ || wanted_ > 0; }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    struct Awaited {
        unsigned scan;
        bool press;
    };

    void Begin();
    void Enter();
    void SendNext();
    bool SendKey(std::size_t place);
    void Await(unsigned scan);
    void Reached(quint64 number);
    void Lost();
    void End();
    void RestoreSelection();
    void Replay(bool all);
    void Rest();
    bool CannotArrive() const;
    bool IsDecoy(const QKeyEvent& key);
    bool Hold(QEvent& event);
    bool HoldShortcut(QKeyEvent& key);

    KeyPort& port_;
    KeyCapture& capture_;
    RandomSource& random_;
    QLineEdit& txtInput_;
    QLineEdit& txtBurst_;
    QTimer watchdog_;
    std::function<void()> closed_;

    shell::NoisePlan plan_;
    std::size_t place_ = 0;
    quint64 keys_ = 0;  ///< number of the decoy in hand; tells a late answer from one that is awaited
    int wanted_ = 0;
    bool confirms_ = false;  ///< the platform tells when a decoy has gone through
    bool starting_ = false;
    bool running_ = false;
    const QEvent* replayed_ = nullptr;  ///< is being handed over just now
    std::vector<Awaited> awaited_;
    std::deque<std::unique_ptr<QEvent>> held_;

    // The entry as it was before the burst.
    QPointer<QWidget> focused_;
    int SelStart_ = -1;
    int SelLength_ = 0;
    int caret_ = 0;
};

}  // namespace bmr::kit
