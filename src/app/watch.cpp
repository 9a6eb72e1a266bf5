#include "app/watch.h"

#include <cstdlib>

#include "custody/openfailure.h"
#include "shell/preferences.h"

namespace bmr::app {

using kit::ClipboardGuard;
using kit::IdleGuard;

namespace {

constexpr int kDoubtPeriod = 500;

}  // namespace

Watch::Watch(kit::GuardedApplication& application, store::Session& session, frmMDI& frame,
             ClipboardGuard& clipboard, kit::SessionEvents& events, const Clock& clock)
    : application_(application), timeOut_(clock), idle_(timeOut_, clock, Steps(session, frame, clipboard)) {
    application.SetOnActivity([this] { timeOut_.Activity(); });
    timeOut_.StartActivityHooks();
    // A question about the file may hold it open until it has unwound; where it never does, the keys go
    // first.
    idle_.lastResort = [&session] {
        session.cipher.Keystring.Wipe();
        session.cipher.FieldKey.Wipe();
        session.cipher.FieldPlain.Wipe();
        session.MasterKey.Wipe();
        session.PassHash.Wipe();
        session.PassHashStrong.Wipe();
        std::_Exit(0);
    };
    // Never in the middle of a store: its caller still holds the file.
    doubts_.callOnTimeout([&session] {
        if (session.DatabaseOpen && !session.ending) custody::TellDoubt(session);
    });
    doubts_.start(kDoubtPeriod);
    Connect(session, frame, clipboard);
    ConnectSwitches(session, frame, clipboard, events);
}

Watch::~Watch() {
    timeOut_.StopActivityHooks();
    application_.SetOnActivity({});
}

void Watch::Connect(store::Session& session, frmMDI& frame, ClipboardGuard& clipboard) {
    // The limit of the last database goes on when it is closed.
    const auto limit = [this, &session, &frame] {
        timeOut_.IdleLimit = shell::IdleLimitFrom(session.settings.Idle);
        if (timeOut_.IdleLimit == 0) frame.ShowIdleCountdown({});
    };
    QObject::connect(&frame, &frmMDI::DatabaseOpened, &idle_, limit);
    QObject::connect(&frame, &frmMDI::PreferencesStored, &idle_, limit);
    QObject::connect(&frame, &frmMDI::DatabaseClosed, &clipboard, &ClipboardGuard::ClearClipboard);
    QObject::connect(&frame, &frmMDI::Quitting, &clipboard, &ClipboardGuard::ClearClipboard);
    QObject::connect(&frame, &frmMDI::ClipboardUsed, &clipboard, &ClipboardGuard::RestartClipboardTimer);
    QObject::connect(&frame, &frmMDI::Ended, &idle_, &IdleGuard::End);
    QObject::connect(&signals_, &SignalWatch::Asked, &idle_, &IdleGuard::End);
    QObject::connect(&idle_, &IdleGuard::Panel, &frame, &frmMDI::ShowIdleCountdown);
    QObject::connect(&clipboard, &ClipboardGuard::Countdown, &frame, &frmMDI::ShowClipboardCountdown);
}

void Watch::ConnectSwitches(store::Session& session, frmMDI& frame, ClipboardGuard& clipboard,
                            kit::SessionEvents& events) {
    const auto apply = [&session, &clipboard, &events] {
        const shell::MachineSwitches switches = shell::ReadSwitches(session.ports.registry);
        clipboard.alsoForeign = switches.alsoForeign;
        events.Want(switches.endOnSuspend, switches.endOnLock);
    };
    QObject::connect(&frame, &frmMDI::PreferencesStored, &idle_, apply);
    QObject::connect(&events, &kit::SessionEvents::Suspending, &idle_, &IdleGuard::End);
    QObject::connect(&events, &kit::SessionEvents::Locked, &idle_, &IdleGuard::End);
    apply();
}

IdleGuard::Steps Watch::Steps(store::Session& session, frmMDI& frame, ClipboardGuard& clipboard) {
    return {.markEnding = [&session] { session.ending = true; },
            .clearClipboard = [&clipboard] { clipboard.ClearClipboard(); },
            .closeDatabase = [&frame] { frame.QuitProgram(); }};
}

}  // namespace bmr::app
