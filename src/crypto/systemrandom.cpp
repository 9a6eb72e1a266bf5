#include "crypto/systemrandom.h"

#include <botan/system_rng.h>

#include <algorithm>
#include <cstring>

#include "crypto/secret.h"

namespace bmr::cry {

SystemRandom::SystemRandom() = default;

SystemRandom::~SystemRandom() {
    WipeMemory(block_.data(), block_.size());
}

void SystemRandom::Fill(std::span<std::uint8_t> out) {
    if (out.size() > block_.size() / 4) {
        Botan::system_rng().randomize(out.data(), out.size());
        return;
    }
    if (block_.size() - used_ < out.size()) {
        Botan::system_rng().randomize(block_.data(), block_.size());
        used_ = 0;
    }
    std::copy_n(block_.begin() + static_cast<std::ptrdiff_t>(used_), out.size(), out.begin());
    WipeMemory(block_.data() + used_, out.size());
    used_ += out.size();
}

double SystemRandom::Uniform() {
    std::uint64_t bits = 0;
    std::array<std::uint8_t, sizeof(bits)> bytes{};
    Fill(bytes);
    std::memcpy(&bits, bytes.data(), sizeof(bits));
    return static_cast<double>(bits >> 11) * 0x1.0p-53;
}

}  // namespace bmr::cry
