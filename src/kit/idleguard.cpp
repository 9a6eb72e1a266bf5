#include "kit/idleguard.h"

#include <QCoreApplication>
#include <cstdlib>

namespace bmr::kit {

IdleGuard::IdleGuard(shell::TimeOut& timeOut, const Clock& clock, Steps steps, QObject* parent)
    : QObject(parent),
      lastResort([] { std::_Exit(0); }),
      timeOut_(timeOut),
      clock_(clock),
      steps_(std::move(steps)) {
    timerTimeout.setObjectName("timerTimeout");
    connect(&timerTimeout, &QTimer::timeout, this, &IdleGuard::timerTimeout_Tick);
    timerTimeout.start(1000);
}

void IdleGuard::timerTimeout_Tick() {
    if (ending_) {
        // Some loop still turns. Nothing may be stored any more, so nothing is lost by the hard way.
        if (clock_.MonotonicMs() - endingSince_ >= kPatience) lastResort();
        return;
    }
    const auto tick = timeOut_.TimerTimeout();
    if (tick.panel) {
        const QString text = QString::fromStdString(*tick.panel);
        if (text != shown_) emit Panel(text);
        shown_ = text;
    }
    if (tick.expired) End();
}

void IdleGuard::End() {
    if (ending_) return;
    ending_ = true;
    endingSince_ = clock_.MonotonicMs();
    steps_.markEnding();
    steps_.clearClipboard();
    steps_.closeDatabase();
    // Not quit(): that asks the windows, and one that refuses would keep the program running.
    QCoreApplication::exit(0);
}

}  // namespace bmr::kit
