#include "app/signals.h"

#include <QtGlobal>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>
#include <QSocketNotifier>
#include <csignal>
#endif

namespace bmr::app {

#ifdef Q_OS_UNIX

namespace {

constexpr int kSignals[] = {SIGTERM, SIGINT, SIGHUP};
int pipeEnds[2] = {-1, -1};

// Only what a signal handler may do: one byte into the pipe that the event loop watches.
void OnSignal(int number) {
    const char byte = 1;
    if (write(pipeEnds[1], &byte, 1) < 0) _exit(128 + number);
}

void Handle(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (const int number : kSignals)
        sigaction(number, &action, nullptr);
}

}  // namespace

SignalWatch::SignalWatch() {
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, pipeEnds) != 0) return;
    for (const int end : pipeEnds)
        fcntl(end, F_SETFD, FD_CLOEXEC);
    auto* notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        char byte = 0;
        if (read(pipeEnds[0], &byte, 1) == 1) emit Asked();
    });
    Handle(OnSignal);
}

SignalWatch::~SignalWatch() {
    Handle(SIG_DFL);
    for (int& end : pipeEnds) {
        close(end);
        end = -1;
    }
}

#else

SignalWatch::SignalWatch() = default;
SignalWatch::~SignalWatch() = default;

#endif

}  // namespace bmr::app
