#pragma once

#include <concepts>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace bmr {

/// Overwrites memory in a way that the compiler keeps.
void Overwrite(void* memory, std::size_t size) noexcept;

/// Overwrites all memory of a text, what it once held behind its end included, and empties it.
void WipeText(std::string& text) noexcept;

/// A text of a person: what it held is overwritten whenever it goes, changes or moves to a larger home. As an
/// ordinary text it can be read and filled everywhere; who fills it by parts through `std::string` reserves
/// the room first.
class WipedText : public std::string {
  public:
    WipedText() = default;
    template <class Text>
    requires std::convertible_to<const Text&, std::string_view> WipedText(const Text& text)
        : std::string(std::string_view(text)) {}
    WipedText(std::string&& text) noexcept : std::string(std::move(text)) {}
    WipedText(const WipedText&) = default;
    WipedText(WipedText&&) noexcept = default;
    ~WipedText() { WipeText(*this); }

    WipedText& operator=(const WipedText& other) {
        WipedText copy(other);
        swap(copy);
        return *this;
    }
    WipedText& operator=(WipedText&& other) noexcept {
        WipedText taken(std::move(other));
        swap(taken);
        return *this;
    }
    WipedText& operator+=(std::string_view more) {
        Reserve(more.size());
        append(more);
        return *this;
    }

    /// Makes room for `more` bytes behind the end.
    void Reserve(std::size_t more);
};

/// The parts as one text.
template <class... Part>
WipedText Joined(const Part&... parts) {
    WipedText all;
    all.reserve((std::string_view(parts).size() + ...));
    (all.append(std::string_view(parts)), ...);
    return all;
}

}  // namespace bmr
