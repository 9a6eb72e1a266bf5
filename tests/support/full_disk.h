#pragma once

#include <sys/resource.h>

#include <csignal>
#include <stdexcept>

namespace bmr::test {

/// While it lives, every write to a file fails as on a full disk.
class FullDisk {
  public:
    FullDisk() {
        if (getrlimit(RLIMIT_FSIZE, &old_) != 0) throw std::runtime_error("no limit of file sizes");
        rlimit none = old_;
        none.rlim_cur = 0;
        if (setrlimit(RLIMIT_FSIZE, &none) != 0) throw std::runtime_error("file sizes cannot be limited");
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &old_);
        std::signal(SIGXFSZ, oldHandler_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

  private:
    void (*oldHandler_)(int) = std::signal(SIGXFSZ, SIG_IGN);
    rlimit old_{};
};

}  // namespace bmr::test
