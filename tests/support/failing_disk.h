#pragma once

namespace bmr::test {

/// While it lives, calls that change a file or bring it to the disk fail with EIO: the one with the number
/// `first` (from 1) and `count` - 1 behind it.
class FailingDisk {
  public:
    static constexpr int kForEver = 1 << 30;
    explicit FailingDisk(int first, int count = 1);
    ~FailingDisk();
    FailingDisk(const FailingDisk&) = delete;
    FailingDisk& operator=(const FailingDisk&) = delete;

    /// Whether a call has failed.
    static bool Failed();
};

}  // namespace bmr::test
