#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace bmr {

/// An error number: negative is the negated message number to show (`MessageNumber`), positive is the
/// engine's own. `detail` says in plain English (UTF-8) what went wrong.
struct Error {
    int number = 0;
    std::string detail;
};

/// A value, or the error that took its place.
template <class T>
class [[nodiscard]] Result {
  public:
    Result(T value) : state_(std::move(value)) {}
    Result(Error error) : state_(std::move(error)) {}
    explicit operator bool() const { return state_.index() == 0; }
    T& operator*() { return std::get<0>(state_); }
    const T& operator*() const { return std::get<0>(state_); }
    T* operator->() { return &std::get<0>(state_); }
    const T* operator->() const { return &std::get<0>(state_); }
    const Error& error() const { return std::get<1>(state_); }

  private:
    std::variant<T, Error> state_;
};

}  // namespace bmr
