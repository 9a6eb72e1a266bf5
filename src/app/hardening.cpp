#include "app/hardening.h"

#include <array>
#include <cstddef>
#include <cstdlib>
#include <vector>

#include "base/wiped.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif
#ifdef __linux__
#include <sys/prctl.h>
#endif
#if defined(__unix__) || defined(__APPLE__)
#include <sys/resource.h>
#include <sys/stat.h>
#endif

namespace bmr::app {

namespace {

/// Deeper than the calls of any of our forms.
constexpr std::size_t kStack = std::size_t{256} << 10;

// In a frame of its own, which is given up behind it.
[[gnu::noinline]] void SweepStack() {
    std::array<char, kStack> rest;
    Overwrite(rest.data(), rest.size());
}

}  // namespace

void OverwriteFreed() {
#if defined(__GLIBC__) && defined(M_PERTURB)
    mallopt(M_PERTURB, 0x5A);
#endif
}

void SweepFreed() {
#ifdef __GLIBC__
    // Blocks of up to this size go to a list of the thread's own first, and so do not pass the overwriting.
    constexpr std::size_t kLargest = 1032;
    constexpr int kOfOneSize = 7;
    constexpr std::size_t kStep = 16;
    std::vector<void*> taken;
    taken.reserve(kOfOneSize * (kLargest / kStep + 1));
    for (std::size_t size = kStep + sizeof(void*); size <= kLargest; size += kStep)
        for (int i = 0; i < kOfOneSize; ++i)
            if (void* block = std::malloc(size)) {
                Overwrite(block, malloc_usable_size(block));
                taken.push_back(block);
            }
    for (void* block : taken)
        std::free(block);
#endif
    SweepStack();
}

void HardenProcess() {
    OverwriteFreed();
#if defined(__unix__) || defined(__APPLE__)
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
    umask(S_IRWXG | S_IRWXO);
#endif
#ifdef __linux__
    // Also takes /proc/self/mem and ptrace from other processes of the same user.
    prctl(PR_SET_DUMPABLE, 0, 0, 0, 0);
#endif
}

}  // namespace bmr::app
