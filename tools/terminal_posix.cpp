#include <fcntl.h>
#include <sys/resource.h>
#include <sys/select.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif

#include <array>
#include <cerrno>
#include <csignal>

#include "terminal.h"
#include "terminal_system.h"

namespace bmr::tools {
namespace {

volatile std::sig_atomic_t g_signal = 0;

void NoteSignal(int number) {
    g_signal = number;
}

/// While it lives, a signal that would end the program waits until `Await`, where it breaks off the reading,
/// so that the terminal gets its echo back first; then it is raised again.
class SignalsHeld {
  public:
    SignalsHeld() {
        g_signal = 0;
        sigset_t held;
        sigemptyset(&held);
        for (const int number : kNumbers)
            sigaddset(&held, number);
        sigprocmask(SIG_BLOCK, &held, &mask_);
        struct sigaction action {};
        action.sa_handler = NoteSignal;
        for (std::size_t i = 0; i < kNumbers.size(); ++i)
            sigaction(kNumbers[i], &action, &old_[i]);
    }
    ~SignalsHeld() {
        for (std::size_t i = 0; i < kNumbers.size(); ++i)
            sigaction(kNumbers[i], &old_[i], nullptr);
        sigprocmask(SIG_SETMASK, &mask_, nullptr);
        if (g_signal != 0) raise(g_signal);
    }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

    /// Until `fd` can be read; false when a signal came instead.
    bool Await(int fd) const {
        fd_set wanted;
        do {
            FD_ZERO(&wanted);
            FD_SET(fd, &wanted);
        } while (pselect(fd + 1, &wanted, nullptr, nullptr, nullptr, &mask_) < 0 && errno == EINTR &&
                 g_signal == 0);
        return g_signal == 0;
    }

  private:
    static constexpr std::array<int, 5> kNumbers = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP};
    std::array<struct sigaction, 5> old_{};
    sigset_t mask_{};
};

class EchoOff {
  public:
    EchoOff(int fd, bool echo) : fd_(fd) {
        if (echo || tcgetattr(fd, &old_) != 0) return;
        termios quiet = old_;
        quiet.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL);
        changed_ = tcsetattr(fd, TCSAFLUSH, &quiet) == 0;
    }
    ~EchoOff() {
        if (changed_) tcsetattr(fd_, TCSAFLUSH, &old_);
    }
    EchoOff(const EchoOff&) = delete;
    EchoOff& operator=(const EchoOff&) = delete;
    bool changed() const { return changed_; }

  private:
    int fd_;
    termios old_{};
    bool changed_ = false;
};

void Put(int fd, const std::string& text) {
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t n = write(fd, text.data() + done, text.size() - done);
        if (n <= 0) return;
        done += static_cast<std::size_t>(n);
    }
}

/// One line from `fd`; `await` tells before each byte whether to go on.
template <class Await>
LineResult ReadLine(int fd, Secret& line, Await await) {
    line.Wipe();
    for (;;) {
        char byte = 0;
        if (!await()) return LineResult::NoInput;
        const ssize_t n = read(fd, &byte, 1);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 || (n == 0 && line.empty())) return LineResult::NoInput;
        if (n == 0 || byte == '\n') break;
        if (line.size() == kLongestLine) return LineResult::TooLong;
        line.Append({&byte, 1});
    }
    if (!line.empty() && line.view().back() == '\r') line.Resize(line.size() - 1);
    return LineResult::Read;
}

}  // namespace

void HardenProcess() {
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    umask(S_IRWXG | S_IRWXO);
#ifdef __linux__
    prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
#endif
}

LineResult ReadFdLine(int fd, Secret& line) {
    return ReadLine(fd, line, [] { return true; });
}

LineResult ReadTerminalLine(const std::string& prompt, bool echo, Secret& line) {
    const int fd = open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (fd < 0) return LineResult::NoTerminal;
    LineResult result = LineResult::NoTerminal;
    {
        const SignalsHeld signals;
        const EchoOff quiet(fd, echo);
        if (echo || quiet.changed()) {
            Put(fd, prompt);
            result = ReadLine(fd, line, [&] { return signals.Await(fd); });
            if (!echo) Put(fd, "\n");
        }
    }
    close(fd);
    return result;
}

}  // namespace bmr::tools
