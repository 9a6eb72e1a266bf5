#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace bmr {

/// Overwrites memory in a way that the compiler keeps.
void WipeMemory(void* memory, std::size_t size) noexcept;

/// Memory for secrets: in pages that are never written to the swap, where the system grants any and the block
/// is small, else ordinary memory. Throws `std::bad_alloc`.
void* TakeSecretMemory(std::size_t size);
/// Overwrites it and gives it back. `size` as it was taken.
void GiveSecretMemory(void* memory, std::size_t size) noexcept;

/// Allocator that wipes what it gives back, so that a growing or ending buffer leaves nothing behind.
template <class T>
struct WipingAllocator {
    using value_type = T;
    WipingAllocator() = default;
    template <class U>
    WipingAllocator(const WipingAllocator<U>&) noexcept {}
    T* allocate(std::size_t n) { return static_cast<T*>(TakeSecretMemory(n * sizeof(T))); }
    void deallocate(T* p, std::size_t n) noexcept { GiveSecretMemory(p, n * sizeof(T)); }
    bool operator==(const WipingAllocator&) const { return true; }
};

/// A passphrase, hash, key or plain text: bytes that are wiped when they go, moved but never copied by
/// accident, and never turned into an ordinary string by itself.
class Secret {
  public:
    Secret() = default;
    explicit Secret(std::size_t size) : bytes_(size) {}
    explicit Secret(std::string_view bytes) : bytes_(bytes.begin(), bytes.end()) {}
    Secret(Secret&&) noexcept = default;
    Secret& operator=(Secret&& other) noexcept {
        if (this != &other) {
            Wipe();
            bytes_.swap(other.bytes_);
        }
        return *this;
    }
    Secret(const Secret&) = delete;
    Secret& operator=(const Secret&) = delete;
    ~Secret() = default;

    Secret Copy() const { return Secret(view()); }
    std::string_view view() const { return {bytes_.data(), bytes_.size()}; }
    std::span<std::uint8_t> span() { return {reinterpret_cast<std::uint8_t*>(bytes_.data()), bytes_.size()}; }
    std::span<const std::uint8_t> span() const {
        return {reinterpret_cast<const std::uint8_t*>(bytes_.data()), bytes_.size()};
    }
    std::size_t size() const { return bytes_.size(); }
    bool empty() const { return bytes_.empty(); }
    void Resize(std::size_t size) { bytes_.resize(size); }
    void Append(std::string_view more) { bytes_.insert(bytes_.end(), more.begin(), more.end()); }

    /// Overwrites the bytes and gives the memory back.
    void Wipe() noexcept {
        if (!bytes_.empty()) WipeMemory(bytes_.data(), bytes_.size());
        std::vector<char, WipingAllocator<char>>().swap(bytes_);
    }

  private:
    std::vector<char, WipingAllocator<char>> bytes_;
};

}  // namespace bmr
