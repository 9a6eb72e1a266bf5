#include "crypto/secret.h"

#include <botan/mem_ops.h>

namespace bmr {

void WipeMemory(void* memory, std::size_t size) noexcept {
    Botan::secure_scrub_memory(memory, size);
}

}  // namespace bmr
