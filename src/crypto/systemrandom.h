#pragma once

#include <array>
#include <cstddef>
#include <memory>

#include "base/random.h"

namespace bmr::cry {

/// Random numbers of the operating system's generator, drawn in blocks: one call for each field would cost
/// more than the field. Bytes handed out are wiped from the block.
class SystemRandom final : public RandomSource {
  public:
    SystemRandom();
    ~SystemRandom() override;
    void Fill(std::span<std::uint8_t> out) override;
    double Uniform() override;

  private:
    std::array<std::uint8_t, 4096> block_{};
    std::size_t used_ = sizeof(block_);
};

}  // namespace bmr::cry
