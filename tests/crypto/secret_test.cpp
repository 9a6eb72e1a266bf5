#include "crypto/secret.h"

#ifdef __linux__
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cinttypes>
#include <cstdio>
#include <memory>

#include "support/sanitizer.h"

namespace bmr {
namespace {

/// KiB of the mapping around an address that the system keeps from the swap; -1 where it does not tell.
int LockedAround(const void* address) {
    std::unique_ptr<FILE, int (*)(FILE*)> maps(std::fopen("/proc/self/smaps", "r"), &std::fclose);
    const auto at = reinterpret_cast<std::uintptr_t>(address);
    bool inside = false;
    int locked = -1;
    char line[512];
    while (maps && std::fgets(line, sizeof line, maps.get()) != nullptr) {
        std::uintptr_t begin = 0;
        std::uintptr_t end = 0;
        if (std::sscanf(line, "%" SCNxPTR "-%" SCNxPTR " ", &begin, &end) == 2)
            inside = begin <= at && at < end;
        else if (inside && std::sscanf(line, "Locked: %d kB", &locked) == 1)
            return locked;
    }
    return locked;
}

TEST(Secret, LiesInPagesThatAreKeptFromTheSwap) {
    if (test::kSanitized) GTEST_SKIP() << "the sanitizer locks no pages";
    rlimit limit{};
    if (getrlimit(RLIMIT_MEMLOCK, &limit) != 0 || limit.rlim_cur < (rlim_t{64} << 10))
        GTEST_SKIP() << "the system grants no locked pages";
    for (const std::size_t size : {std::size_t{8}, std::size_t{32}, std::size_t{256}}) {
        const Secret key(size);
        EXPECT_GT(LockedAround(key.view().data()), 0)
            << size << " bytes: a passphrase, a hash, the keystring";
    }
    const std::size_t large = std::size_t{1} << 22;
    EXPECT_EQ(Secret(std::string(large, 'x')).Copy().size(), large)
        << "more than is granted works all the same";
}

}  // namespace
}  // namespace bmr
#endif
