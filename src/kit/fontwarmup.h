#pragma once

#include <thread>

namespace bmr::kit {

/// Reads the system's font configuration on a thread of its own. Made before the application object, it works
/// while that one talks to the screen, and the first text to be measured finds it read. Does nothing where
/// fonts come without fontconfig.
class FontWarmUp final {
  public:
    FontWarmUp();
    ~FontWarmUp() { Join(); }
    FontWarmUp(const FontWarmUp&) = delete;
    FontWarmUp& operator=(const FontWarmUp&) = delete;

    /// Waits for the reading. To be called before any text is measured, else it would be read twice.
    void Join();

  private:
    std::thread reader_;
};

}  // namespace bmr::kit
