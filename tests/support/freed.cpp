#include "support/freed.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<bmr::test::SeesFreed> g_sees = nullptr;
std::atomic<int> g_found = 0;

}  // namespace

// Every block of this program that is given back is searched while a test watches.
void* operator new(std::size_t size) {
    if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size == 0 ? 1 : size);
}
void operator delete(void* memory) noexcept {
    const bmr::test::SeesFreed sees = g_sees;
    if (memory != nullptr && sees != nullptr &&
        sees(static_cast<const char*>(memory), malloc_usable_size(memory)))
        ++g_found;
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    operator delete(memory);
}

namespace bmr::test {

int CountFreed(SeesFreed sees, const std::function<void()>& work) {
    g_found = 0;
    g_sees = sees;
    work();
    g_sees = nullptr;
    return g_found;
}

}  // namespace bmr::test
