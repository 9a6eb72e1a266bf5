#include "support/failing_disk.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>

// Takes the place of the system's calls in the whole process. It is linked into the tests, and it is a
// library that stands before the system's in a program that is started: that one reads from FAIL_CALLS ("3",
// "3-" or "3!") which call fails, alone or with all behind it, or is never made because the program is
// killed.
namespace {

std::atomic<int> calls = 0;
std::atomic<int> first = 0;  ///< 0: none fails
std::atomic<int> last = 0;
std::atomic<bool> dies = false;

bool FailsNow() {
    if (first == 0) return false;
    const int call = ++calls;
    if (call < first || call > last) return false;
    if (dies) std::raise(SIGKILL);
    errno = EIO;
    return true;
}

template <class Call>
Call* Real(const char* name) {
    return reinterpret_cast<Call*>(dlsym(RTLD_NEXT, name));
}

[[gnu::constructor]] void ReadEnvironment() {
    const char* words = std::getenv("FAIL_CALLS");
    if (words == nullptr) return;
    char* end = nullptr;
    const long number = std::strtol(words, &end, 10);
    last = *end == '-' ? bmr::test::FailingDisk::kForEver : static_cast<int>(number);
    dies = *end == '!';
    first = static_cast<int>(number);
}

}  // namespace

extern "C" {

int fdatasync(int file) {
    return FailsNow() ? -1 : Real<int(int)>("fdatasync")(file);
}

int fsync(int file) {
    return FailsNow() ? -1 : Real<int(int)>("fsync")(file);
}

int ftruncate64(int file, off64_t size) noexcept {
    return FailsNow() ? -1 : Real<int(int, off64_t)>("ftruncate64")(file, size);
}

ssize_t pwrite64(int file, const void* data, size_t size, off64_t at) {
    return FailsNow() ? -1
                      : Real<ssize_t(int, const void*, size_t, off64_t)>("pwrite64")(file, data, size, at);
}

}  // extern "C"

namespace bmr::test {

FailingDisk::FailingDisk(int firstCall, int count) {
    calls = 0;
    last = count == kForEver ? kForEver : firstCall + count - 1;
    first = firstCall;
}

FailingDisk::~FailingDisk() {
    first = 0;
}

bool FailingDisk::Failed() {
    return first != 0 && calls >= first;
}

}  // namespace bmr::test
