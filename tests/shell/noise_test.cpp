#include "shell/noise.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "support/random.h"

namespace bmr::shell {
namespace {

TEST(Noise, KeyTableStandsAsTold) {
    const std::string letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    const std::string expected = letters + "0123456789" + letters + " " + "0123456789" +
                                 "\xBB\xBC\xBD\xBE\xBF" + letters + " " + letters + "    ";
    EXPECT_EQ(std::string(KeyTable.begin(), KeyTable.end()), expected);
}

TEST(Noise, BurstFollowsTheDraws) {
    test::ScriptedRandom random;
    // 0.26 * 8 + 2 = 4.08: four places; k = 0, 35, 36, 103 at the edges of the shifted range and of the draw.
    random.uniforms = {0.26, 0.0, 35.5 / 104, 36.0001 / 104, 0.9999999};
    const NoisePlan plan = DrawBurst(random);
    EXPECT_EQ(plan.count, 4);
    EXPECT_EQ(
        (std::array<int, 4>{plan.NoiseKeys[0], plan.NoiseKeys[1], plan.NoiseKeys[2], plan.NoiseKeys[3]}),
        (std::array<int, 4>{'A', '9', 'A', 'Z'}));
    EXPECT_EQ(
        (std::array<int, 4>{plan.NoiseShift[0], plan.NoiseShift[1], plan.NoiseShift[2], plan.NoiseShift[3]}),
        (std::array<int, 4>{1, 1, 0, 0}));
    EXPECT_TRUE(random.uniforms.empty());
}

TEST(Noise, CountsRunFromTwoToNineEvenly) {
    test::SeededRandom random(7);
    std::array<int, 11> seen{};
    for (int i = 0; i < 8000; ++i)
        ++seen[static_cast<std::size_t>(DrawBurst(random).count)];
    EXPECT_EQ(seen[0] + seen[1] + seen[10], 0);
    EXPECT_GT(*std::min_element(seen.begin() + 2, seen.begin() + 10), 850);
}

}  // namespace
}  // namespace bmr::shell
