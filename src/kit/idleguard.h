#pragma once

#include <QObject>
#include <QTimer>
#include <functional>

#include "base/clock.h"
#include "shell/timeout.h"

namespace bmr::kit {

/// Ends the program when nobody has touched it for the set time, whatever dialog stands open.
class IdleGuard final : public QObject {
    Q_OBJECT

  public:
    static constexpr std::int64_t kPatience = 2000;  ///< ms that the loops may take to unwind

    /// What must be done before the program goes, in this order: first nothing may ask or store any more,
    /// then nothing may stay behind.
    struct Steps {
        std::function<void()> markEnding;  ///< sets `Session::ending`
        std::function<void()> clearClipboard;
        std::function<void()> closeDatabase;  ///< wipes the keys
    };

    /// `clock` is the one of `timeOut`; both must outlive this.
    IdleGuard(shell::TimeOut& timeOut, const Clock& clock, Steps steps, QObject* parent = nullptr);

    /// The tick of `timerTimeout`, each second.
    void timerTimeout_Tick();

    /// Ends at once, through all modal dialogs. The idle limit calls it; other reasons to end may as well.
    void End();

    /// What ends the process when the loops do not unwind. A test puts its own in place.
    std::function<void()> lastResort;

  signals:
    /// The text of the panel `autoshutoff`, only when it changes.
    void Panel(const QString& text);

  private:
    shell::TimeOut& timeOut_;
    const Clock& clock_;
    Steps steps_;
    QTimer timerTimeout;
    QString shown_;
    bool ending_ = false;
    std::int64_t endingSince_ = 0;
};

}  // namespace bmr::kit
