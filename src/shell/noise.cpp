#include "shell/noise.h"

namespace bmr::shell {
namespace {

constexpr std::array<std::uint8_t, 135> MakeKeyTable() {
    struct Run {
        int first, last, code;
        bool rising;
    };
    constexpr Run kRuns[] = {
        {0, 25, 'A', true},    {26, 35, '0', true},    {36, 61, 'A', true},  {62, 62, ' ', false},
        {63, 72, '0', true},   {73, 77, 187, true},    {78, 103, 'A', true}, {104, 104, ' ', false},
        {105, 130, 'A', true}, {131, 134, ' ', false},
    };
    std::array<std::uint8_t, 135> table{};
    for (const Run& run : kRuns) {
        for (int i = run.first; i <= run.last; ++i)
            table[static_cast<std::size_t>(i)] =
                static_cast<std::uint8_t>(run.code + (run.rising ? i - run.first : 0));
    }
    return table;
}

}  // namespace

const std::array<std::uint8_t, 135> KeyTable = MakeKeyTable();

void RedrawKey(NoisePlan& plan, std::size_t place, RandomSource& random) {
    const std::int32_t k = DrawBelow(random, kDrawnKeys);
    plan.NoiseKeys[place] = KeyTable[static_cast<std::size_t>(k)];
    plan.NoiseShift[place] = k < kShiftedKeys ? 1 : 0;
}

NoisePlan DrawBurst(RandomSource& random) {
    NoisePlan plan;
    plan.count = static_cast<int>(random.Uniform() * 8 + 2);
    for (std::size_t place = 0; place < static_cast<std::size_t>(plan.count); ++place)
        RedrawKey(plan, place, random);
    return plan;
}

}  // namespace bmr::shell
