#include "base/wiped.h"

#include <algorithm>
#include <cstring>

namespace bmr {

void Overwrite(void* memory, std::size_t size) noexcept {
    // The compiler cannot know what is called.
    static void* (*const volatile kSet)(void*, int, std::size_t) = std::memset;
    kSet(memory, 0, size);
}

void WipeText(std::string& text) noexcept {
    text.resize(text.capacity());  // moves nothing, as it is its room
    Overwrite(text.data(), text.size());
    text.clear();
}

void WipedText::Reserve(std::size_t more) {
    const std::size_t needed = size() + more;
    if (needed <= capacity()) return;
    WipedText larger;
    larger.reserve(std::max(needed, 2 * capacity()));
    larger.append(*this);
    swap(larger);
}

}  // namespace bmr
