#pragma once

#include <deque>
#include <random>

#include "base/bytes.h"
#include "base/random.h"

namespace bmr::test {

/// Repeatable random numbers from a seed.
class SeededRandom final : public RandomSource {
  public:
    explicit SeededRandom(std::uint64_t seed = 1) : engine_(seed) {}
    void Fill(std::span<std::uint8_t> out) override {
        for (auto& byte : out)
            byte = static_cast<std::uint8_t>(engine_());
    }
    double Uniform() override { return static_cast<double>(engine_() >> 11) * 0x1.0p-53; }

  private:
    std::mt19937_64 engine_;
};

/// Gives exactly what the test says, and throws when asked for more.
class ScriptedRandom final : public RandomSource {
  public:
    void Fill(std::span<std::uint8_t> out) override {
        for (auto& byte : out) {
            byte = static_cast<std::uint8_t>(bytes.at(0));
            bytes.pop_front();
        }
    }
    double Uniform() override {
        const double next = uniforms.at(0);
        uniforms.pop_front();
        return next;
    }
    void AddBytes(std::string_view more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

    std::deque<char> bytes;
    std::deque<double> uniforms;
};

}  // namespace bmr::test
