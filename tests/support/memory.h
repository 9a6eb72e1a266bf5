#pragma once

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "crypto/secret.h"

namespace bmr::test {

/// Words that stand nowhere in this process but where a test puts them: kept here as other characters.
class Marker {
  public:
    static constexpr std::size_t kSize = 20;

    /// The words, and a letter behind them by which a finding tells which text it is.
    static Secret Text(char which) {
        Secret text(kSize + 1);
        for (std::size_t i = 0; i < kSize; ++i)
            text.span()[i] = Plain(i);
        text.span()[kSize] = static_cast<std::uint8_t>(which);
        return text;
    }
    /// True when they stand at `at`, in any case, a character every `step` bytes.
    static bool StandsAt(const std::uint8_t* at, std::size_t step) {
        for (std::size_t i = 0; i < kSize; ++i) {
            if ((at[i * step] | 0x20U) != Plain(i)) return false;
            if (step == 2 && at[i * 2 + 1] != 0) return false;
        }
        return true;
    }

  private:
    static std::uint8_t Plain(std::size_t i) {
        static constexpr std::array<std::uint8_t, kSize> kOther = {0x2B, 0x20, 0x2C, 0x30, 0x22, 0x31, 0x2D,
                                                                   0x3C, 0x2B, 0x22, 0x30, 0x20, 0x2C, 0x2B,
                                                                   0x31, 0x22, 0x2D, 0x30, 0x20, 0x2B};
        static volatile std::uint8_t key = 0x5A;  // or the compiler would write the words down
        return kOther[i] ^ key;
    }
};

/// Where words stand in the memory of this process.
struct Findings {
    int bytes = 0;    ///< as code page 1252 or UTF-8
    int letters = 0;  ///< as UTF-16
    std::string where;
};

/// Looks for the marker in everything that this process can write, its stacks and what the allocator has got
/// back included.
class MemorySearch {
  public:
    static Findings Run() {
        Findings findings;
        const int memory = ::open("/proc/self/mem", O_RDONLY);
        std::unique_ptr<FILE, int (*)(FILE*)> maps(std::fopen("/proc/self/maps", "r"), &std::fclose);
        std::vector<Region> regions;
        char line[512];
        while (maps && std::fgets(line, sizeof line, maps.get()) != nullptr) {
            Region region;
            char rights[5] = {};
            int name = 0;
            if (std::sscanf(line, "%" SCNx64 "-%" SCNx64 " %4s %*s %*s %*s %n", &region.begin, &region.end,
                            rights, &name) >= 3 &&
                rights[0] == 'r' && rights[1] == 'w') {
                region.name.assign(line + name, std::strcspn(line + name, "\n"));
                regions.push_back(region);
            }
        }
        static std::array<std::uint8_t, std::size_t{1} << 20> buffer;
        const auto own = reinterpret_cast<std::uint64_t>(buffer.data());
        for (const Region& region : regions) {
            // What is read lands in the buffer, which would be found again.
            if (region.begin < own + buffer.size() && own < region.end) {
                Look(memory, {region.begin, own, region.name}, buffer, findings);
                Look(memory, {own + buffer.size(), region.end, region.name}, buffer, findings);
            } else {
                Look(memory, region, buffer, findings);
            }
        }
        ::close(memory);
        WipeMemory(buffer.data(), buffer.size());
        return findings;
    }

  private:
    struct Region {
        std::uint64_t begin = 0, end = 0;
        std::string name;
    };
    static constexpr std::size_t kLongest = 2 * Marker::kSize + 2;

    template <class Buffer>
    static void Look(int memory, const Region& region, Buffer& buffer, Findings& findings) {
        for (std::uint64_t at = region.begin; at + kLongest < region.end;) {
            const std::size_t wanted = std::min<std::uint64_t>(buffer.size(), region.end - at);
            const ssize_t got = ::pread(memory, buffer.data(), wanted, static_cast<off_t>(at));
            if (got <= static_cast<ssize_t>(kLongest)) return;
            const std::size_t last = static_cast<std::size_t>(got) - kLongest;
            for (std::size_t i = 0; i < last; ++i)
                for (const std::size_t step : {std::size_t{1}, std::size_t{2}})
                    if (Marker::StandsAt(buffer.data() + i, step)) {
                        (step == 1 ? findings.bytes : findings.letters)++;
                        Describe(region, at + i, step, buffer[i + Marker::kSize * step], findings);
                    }
            at += last;
        }
    }
    static void Describe(const Region& region, std::uint64_t at, std::size_t step, std::uint8_t which,
                         Findings& findings) {
        if (findings.where.size() > 4000) return;
        char text[100];
        std::snprintf(text, sizeof text, "%c %s at %" PRIx64 " ", which < ' ' || which > 126 ? '?' : which,
                      step == 1 ? "in bytes" : "in letters", at);
        findings.where += text + region.name + "\n";
    }
};

}  // namespace bmr::test
