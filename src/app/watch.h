#pragma once

#include <QTimer>

#include "app/frmMDI.h"
#include "app/signals.h"
#include "base/clock.h"
#include "kit/clipboardguard.h"
#include "kit/guardedapplication.h"
#include "kit/idleguard.h"
#include "kit/sessionevents.h"
#include "shell/timeout.h"
#include "store/session.h"

namespace bmr::app {

/// The guards over a sitting, tied to the window that shows them: the idle end, the end on sleep and lock,
/// the clipboard, and the signals by which the system asks the program to go. It also tells of a disk that
/// failed behind a store, whichever form stored.
class Watch final {
  public:
    /// All must outlive this.
    Watch(kit::GuardedApplication& application, store::Session& session, frmMDI& frame,
          kit::ClipboardGuard& clipboard, kit::SessionEvents& events, const Clock& clock);
    ~Watch();
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    kit::IdleGuard& Idle() { return idle_; }

  private:
    static kit::IdleGuard::Steps Steps(store::Session& session, frmMDI& frame,
                                       kit::ClipboardGuard& clipboard);
    void Connect(store::Session& session, frmMDI& frame, kit::ClipboardGuard& clipboard);
    void ConnectSwitches(store::Session& session, frmMDI& frame, kit::ClipboardGuard& clipboard,
                         kit::SessionEvents& events);

    kit::GuardedApplication& application_;
    shell::TimeOut timeOut_;
    kit::IdleGuard idle_;
    SignalWatch signals_;
    QTimer doubts_;
};

}  // namespace bmr::app
