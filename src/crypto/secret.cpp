#include "crypto/secret.h"

#include <botan/mem_ops.h>

#include <algorithm>

namespace bmr {

void WipeMemory(void* memory, std::size_t size) noexcept {
    Botan::secure_scrub_memory(memory, size);
}

namespace {

/// Smaller blocks get no locked memory.
constexpr std::size_t kLeast = 16;

}  // namespace

void* TakeSecretMemory(std::size_t size) {
    return Botan::allocate_memory(std::max(size, kLeast), 1);
}

void GiveSecretMemory(void* memory, std::size_t size) noexcept {
    Botan::deallocate_memory(memory, std::max(size, kLeast), 1);  // which overwrites it first
}

}  // namespace bmr
